#include "caldat_commands.h"

#include "errtrace.h"
#include "stl_utilities.h"
#include "wizard/CaldatFormPC.h"
#include "wizard/caldat_files.h"

#include <map>
#include <ostream>
#include <tuple>

namespace caldat {

namespace {

const char* const kUsage =
    "usage: caldat COMMAND STEM [KEY...]\n"
    "\n"
    "  caldat list STEM                 print the probes, their two lengths, and below\n"
    "                                   each its sub-entries with their references\n"
    "  caldat dump STEM KEY [KEY [KEY]] print the fields of one entry and its data\n"
    "  caldat check STEM                report damage: data outside the data file,\n"
    "                                   keys that come back, wrong child counts\n"
    "  caldat --help                    print this text\n"
    "\n"
    "STEM names the pair: \"probes.dat\" or \"probes.KKY\" read probes.KKY and\n"
    "probes.KKL, \"probes\" reads probesKKY and probesKKL. Nothing is ever written.\n"
    "Exit codes: 0 fine; 1 problems found, or no such entry; 2 a usage error, or a\n"
    "pair that cannot be read.\n";

int Usage(std::ostream& err, const std::string& why) {
    err << "caldat: " << why << "\n" << kUsage;
    return kExitFailure;
}

// A key as text: bytes outside printable ASCII as \xHH.
std::string Printable(std::string_view key) {
    std::string out;
    for (unsigned char c : key) {
        if (c >= 0x20 && c < 0x7F && c != '\\')
            out += static_cast<char>(c);
        else
            out += korv::stl_string_format("\\x%02X", c);
    }
    return out;
}

std::string Path(std::string_view k1, std::string_view k2, std::string_view k3) {
    std::string path = Printable(k1);
    if (!k2.empty() || !k3.empty())
        path += "/" + Printable(k2);
    if (!k3.empty())
        path += "/" + Printable(k3);
    return path;
}

std::string Path(const KeyRecord& key) {
    return Path(key.Key1(), key.Key2(), key.Key3());
}

// Opens the pair for reading only and closes it at the end; creates nothing.
class ReadOnlyPair {
public:
    explicit ReadOnlyPair(const std::string& stem) {
        KErrTrace_BeginContext();
        m_open = OpenKeyFilesReadOnly(stem);
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }
    ~ReadOnlyPair() { CloseKeyFiles(); }
    ReadOnlyPair(const ReadOnlyPair&) = delete;
    ReadOnlyPair& operator=(const ReadOnlyPair&) = delete;
    bool open() const { return m_open; }

private:
    bool m_open = false;
};

// A whole data record lies at `offset`.
bool DataReachable(std::int64_t offset, std::int64_t dataLength) {
    return offset >= 0 && offset + kCaldatDataRecordSize <= dataLength;
}

int CannotOpen(std::ostream& err, const std::string& stem) {
    err << "caldat: cannot read the pair " << CaldatFileName(stem, "KKY") << " and "
        << CaldatFileName(stem, "KKL") << "\n";
    return kExitFailure;
}

// Bytes behind the last whole key record: a problem for every command.
int TrailingKeyBytes(const std::string& stem, std::ostream& out) {
    const std::int64_t rest = KeyFileLength() % kCaldatKeyRecordSize;
    if (rest)
        out << CaldatFileName(stem, "KKY") << ": " << rest
            << " bytes behind the last whole record\n";
    return rest ? 1 : 0;
}

int List(const std::string& stem, std::ostream& out, std::ostream& err) {
    ReadOnlyPair pair(stem);
    if (!pair.open())
        return CannotOpen(err, stem);
    // The pair is open already, so the reader takes it as it is.
    CCaldatFormPC reader(stem);
    int problems = TrailingKeyBytes(stem, err);
    // One enumeration at a time: each level is read to its end first.
    std::vector<std::string> probes;
    for (std::string probe; reader.GetFirstProbe(probe);)
        probes.push_back(probe);
    for (const std::string& probe : probes) {
        std::string length1, length2;
        const bool lengths = reader.GetLength1(probe, length1) && reader.GetLength2(probe, length2);
        if (lengths) {
            out << Printable(probe) << " " << length1 << " " << length2 << "\n";
        } else {
            out << Printable(probe) << " (no data)\n";
            ++problems;
        }
        std::vector<std::string> subs;
        for (std::string sub; reader.GetNextSub(probe, sub);)
            subs.push_back(sub);
        for (const std::string& sub : subs) {
            std::string reference;
            if (reader.GetReference(probe, sub, reference)) {
                out << "  " << Printable(sub) << " " << reference << "\n";
            } else {
                out << "  " << Printable(sub) << " (no data)\n";
                ++problems;
            }
            for (std::string k1 = probe, k2 = sub, k3 = "*"; NextKey(k1, k2, k3);
                 k1 = probe, k2 = sub, k3 = "*")
                out << "    " << Printable(k3) << "\n";
        }
    }
    if (problems)
        err << "caldat: " << problems << " entries without data; caldat check tells more\n";
    return problems ? kExitProblems : kExitOk;
}

int Dump(const std::string& stem, const std::vector<std::string>& keys, std::ostream& out,
         std::ostream& err) {
    ReadOnlyPair pair(stem);
    if (!pair.open())
        return CannotOpen(err, stem);
    const std::string k1 = keys[0], k2 = keys.size() > 1 ? keys[1] : "",
                      k3 = keys.size() > 2 ? keys[2] : "";
    KeyRecord key;
    const std::int32_t position = FindKey(k1, k2, k3, &key);
    if (position < 0) {
        err << "caldat: no entry " << Path(k1, k2, k3) << " in " << CaldatFileName(stem, "KKY")
            << "\n";
        return kExitProblems;
    }
    const std::int32_t offset = key.DataOffset();
    out << "key         " << Path(key) << "\n"
        << "record      " << position / kCaldatKeyRecordSize << " (byte " << position << ")\n"
        << "children    " << key.ChildCount() << "\n"
        << "data offset " << offset << "\n";
    DataRecord data;
    if (!ReadDataAt(offset, data)) {
        out << "data        outside the data file (" << DataFileLength() << " bytes)\n";
        return kExitProblems;
    }
    out << korv::stl_string_format("flags       0x%02X (%s)\n", data.Flags(),
                                   data.HasReference() ? "reference" : "no reference")
        << korv::stl_string_format("reference   %8.3f \xC2\xB0 (byte 46)\n", data.Reference())
        << korv::stl_string_format("length 1    %8.3f mm (byte 52)\n", data.Length1())
        << korv::stl_string_format("length 2    %8.3f mm (byte 60)\n", data.Length2());
    for (std::size_t at = 0; at < sizeof data.bytes; at += 16) {
        out << (at == 0 ? "bytes      " : "           ");
        for (std::size_t i = at; i < at + 16 && i < sizeof data.bytes; ++i)
            out << korv::stl_string_format(" %02X", data.bytes[i]);
        out << "\n";
    }
    return kExitOk;
}

using KeyPath = std::tuple<std::string, std::string, std::string>;

int Check(const std::string& stem, std::ostream& out, std::ostream& err) {
    ReadOnlyPair pair(stem);
    if (!pair.open())
        return CannotOpen(err, stem);
    int problems = TrailingKeyBytes(stem, out);
    const std::int64_t dataLength = DataFileLength();
    const std::int64_t count = KeyFileLength() / kCaldatKeyRecordSize;
    std::vector<KeyRecord> records;
    for (std::int64_t i = 0; i < count; ++i) {
        KeyRecord record;
        if (!ReadKeyAt(i, record)) {
            err << "caldat: record " << i << " cannot be read\n";
            return kExitFailure;
        }
        records.push_back(record);
    }
    auto report = [&](std::int64_t index, const KeyRecord& record, const std::string& what) {
        out << "record " << index << " " << Path(record) << ": " << what << "\n";
        ++problems;
    };

    std::map<KeyPath, std::int64_t> first;     // where each key is first seen
    std::map<KeyPath, std::int32_t> found;     // entries found one level below
    std::map<std::int32_t, std::int64_t> data; // which record names each data offset
    std::int64_t used = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const KeyRecord& r = records[i];
        if (r.IsFree())
            continue;
        ++used;
        const std::string k1(r.Key1()), k2(r.Key2()), k3(r.Key3());
        for (std::string_view key : {r.Key1(), r.Key2(), r.Key3()})
            if (key.size() == kCaldatKeySize)
                report(i, r, "a key field without its terminator");
        if (k2.empty() && !k3.empty())
            report(i, r, "a third key without a second; no enumeration finds it");
        if (!DataReachable(r.DataOffset(), dataLength))
            report(i, r,
                   korv::stl_string_format("data offset %d lies outside the data file (%lld bytes)",
                                           r.DataOffset(), static_cast<long long>(dataLength)));
        else if (auto [at, fresh] = data.emplace(r.DataOffset(), i); !fresh)
            report(i, r, "shares its data record with record " + std::to_string(at->second));
        if (r.ChildCount() < 0)
            report(i, r, "child count " + std::to_string(r.ChildCount()));
        // A key met again, or a name that repeats one above it on its own path,
        // leads a walk by names back to where it was.
        if (auto [at, fresh] = first.emplace(KeyPath{k1, k2, k3}, i); !fresh)
            report(i, r, "loop: the same key as record " + std::to_string(at->second));
        if ((!k2.empty() && k2 == k1) || (!k3.empty() && (k3 == k1 || k3 == k2)))
            report(i, r, "loop: a name that repeats one above it on its path");
        if (!k3.empty() && !k2.empty())
            ++found[KeyPath{k1, k2, ""}];
        else if (!k2.empty())
            ++found[KeyPath{k1, "", ""}];
    }
    // Child counts, once per key, against the entries found one level below.
    for (const auto& [path, index] : first) {
        const KeyRecord& r = records[index];
        if (!std::get<2>(path).empty()) {
            if (r.ChildCount() > 0)
                report(index, r,
                       "child count " + std::to_string(r.ChildCount()) +
                           ", but nothing lies below a third key");
            continue;
        }
        const auto below = found.find(path);
        const std::int32_t n = below == found.end() ? 0 : below->second;
        if (n != r.ChildCount())
            report(
                index, r,
                korv::stl_string_format("child count %d, but %d found below", r.ChildCount(), n));
    }
    for (const auto& [path, n] : found) {
        if (first.count(path))
            continue;
        out << "no entry " << Path(std::get<0>(path), std::get<1>(path), "") << ", but " << n
            << " below it\n";
        ++problems;
    }
    out << CaldatFileName(stem, "KKY") << ": " << count << " records, " << used << " in use; "
        << CaldatFileName(stem, "KKL") << ": " << dataLength << " bytes; " << problems
        << (problems == 1 ? " problem\n" : " problems\n");
    return problems ? kExitProblems : kExitOk;
}

} // namespace

int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
        out << kUsage;
        return kExitOk;
    }
    if (args.empty())
        return Usage(err, "no command");
    const std::string& command = args[0];
    if (command == "list" && args.size() == 2)
        return List(args[1], out, err);
    if (command == "check" && args.size() == 2)
        return Check(args[1], out, err);
    if (command == "dump" && args.size() >= 3 && args.size() <= 5)
        return Dump(args[1], {args.begin() + 2, args.end()}, out, err);
    if (command != "list" && command != "check" && command != "dump")
        return Usage(err, "unknown command \"" + command + "\"");
    return Usage(err, "wrong number of arguments for " + command);
}

} // namespace caldat
