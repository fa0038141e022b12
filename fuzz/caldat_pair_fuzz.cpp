// The calibration pair: any key file and data file, read through CCaldatFormPC
// and the record layer, then changed by a run of writes and deletes.
//
// Input: a flag byte (bit 0: open the pair read-only), the key file's length
// (two bytes, little-endian), the number of operations and one byte each, then
// the key file's bytes and the data file's bytes.
//
// Besides crashes it checks what callers rely on: a read-only pair is never
// changed; whole records are only ever added, so a key file of whole records
// stays so and one with a fragment never grows; the data file grows by whole
// records only; every enumeration ends within one call per record.
#include "fuzz_support.h"
#include "wizard/CaldatFormPC.h"
#include "wizard/caldat_files.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

using korv::fuzz::scratch;

namespace {

const char* const kNames[] = {"P1", "P2", "S1", "S2", "T1", "U1", "", "*"};

struct Key {
    std::string k1, k2, k3;
};

// Each hit of one enumeration, which must end within one call per record.
std::vector<Key> Enumerate(const Key& patterns, std::size_t records) {
    std::vector<Key> hits;
    for (std::size_t calls = 0;; ++calls) {
        FUZZ_CHECK(calls <= records + 1, "the enumeration of \"%s\" does not end",
                   patterns.k1.c_str());
        Key k = patterns;
        if (!NextKey(k.k1, k.k2, k.k3))
            return hits;
        FUZZ_CHECK(!k.k1.empty(), "a hit without a first key");
        hits.push_back(k);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korv::fuzz::ErrTraceScope trace;
    korv::fuzz::trim_logs();
    korv::fuzz::Choices choices(data, size);
    const bool readOnly = choices.byte() & 1;
    std::size_t keyLength = choices.byte();
    keyLength |= std::size_t(choices.byte()) << 8;
    std::vector<std::uint8_t> ops(choices.byte() % 33);
    for (std::uint8_t& op : ops)
        op = choices.byte();
    keyLength = std::min(keyLength, size);
    const std::string keys(reinterpret_cast<const char*>(data), keyLength);
    const std::string bytes(reinterpret_cast<const char*>(data) + keyLength, size - keyLength);

    const std::string stem = scratch() + "/cal/pair.";
    korv::fuzz::write_file(stem + "KKY", keys);
    korv::fuzz::write_file(stem + "KKL", bytes);
    const std::size_t records = keys.size() / sizeof(KeyRecord) + 64 * ops.size();

    if (readOnly)
        FUZZ_CHECK(OpenKeyFilesReadOnly(stem + "dat"), "an existing pair does not open");
    {
        // Takes the open pair as it is, and closes it at the end.
        CCaldatFormPC reader(stem + "dat");
        FUZZ_CHECK(KeyFilesOpen(), "the pair is not open");
        std::vector<Key> known = Enumerate({"*", "", ""}, records);
        for (std::size_t i = 0; i < known.size() && i < 16; ++i) {
            std::string out;
            reader.GetLength1(known[i].k1, out);
            reader.GetLength2(known[i].k1, out);
            for (const Key& sub : Enumerate({known[i].k1, "*", ""}, records)) {
                reader.GetReference(sub.k1, sub.k2, out);
                known.push_back(sub);
            }
        }
        std::string probe;
        while (reader.GetFirstProbe(probe)) {
        }

        for (const std::uint8_t op : ops) {
            const std::uint8_t arg = op >> 4;
            Key key = known.empty() || (arg & 8) ? Key{} : known[arg % known.size()];
            if (key.k1.empty())
                key = {kNames[arg & 1], arg & 2 ? kNames[2 + (arg & 1)] : "",
                       arg & 4 ? kNames[4 + (arg & 1)] : ""};
            DataRecord record;
            std::memset(record.bytes, op, sizeof record.bytes);
            KeyRecord found;
            switch (op & 15) {
            case 0:
                Enumerate({key.k1, "*", ""}, records);
                break;
            case 1:
                Enumerate({key.k1, key.k2, "*"}, records);
                break;
            case 2:
                ReadData(key.k1, key.k2, key.k3, &record);
                break;
            case 3:
            case 4:
                WriteData(key.k1, key.k2, key.k3, &record, op & 1);
                break;
            case 5:
                WriteKey(key.k1, key.k2, key.k3, arg, (arg & 1) ? -1 : 1, kWriteKeyAddChildren);
                break;
            case 6:
                WriteKey(key.k1, key.k2, key.k3, arg * 146, 0, kWriteKeyNew);
                break;
            case 7:
                ClearKey(key.k1, key.k2, key.k3);
                break;
            case 8:
                DeleteEntry(key.k1, key.k2, key.k3);
                break;
            case 9:
                DeleteTree(key.k1, key.k2, key.k3);
                break;
            case 10:
                FindFreeData(&found);
                FindKey(key.k1, key.k2, key.k3, &found);
                break;
            default: {
                std::string out;
                reader.GetReference(key.k1, key.k2, out);
                FUZZ_CHECK(!reader.GetFirstProbe(out) || !out.empty(), "true with nothing");
            }
            }
        }
        while (reader.GetFirstProbe(probe)) {
        }
    }
    FUZZ_CHECK(!KeyFilesOpen(), "the reader left the pair open");

    const std::string keysAfter = korv::fuzz::read_file(stem + "KKY");
    const std::string bytesAfter = korv::fuzz::read_file(stem + "KKL");
    if (readOnly) {
        FUZZ_CHECK(keysAfter == keys && bytesAfter == bytes, "a read-only pair changed");
    } else {
        FUZZ_CHECK(keysAfter.size() >= keys.size(), "the key file shrank");
        if (keys.size() % sizeof(KeyRecord))
            FUZZ_CHECK(keysAfter.size() == keys.size(), "a key file with a fragment grew");
        else
            FUZZ_CHECK(keysAfter.size() % sizeof(KeyRecord) == 0, "a part record was added");
        FUZZ_CHECK(bytesAfter.size() >= bytes.size() &&
                       (bytesAfter.size() - bytes.size()) % sizeof(DataRecord) == 0,
                   "the data file grew by %zu bytes", bytesAfter.size() - bytes.size());
    }
    return 0;
}
