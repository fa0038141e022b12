#include "wizard/caldat_files.h"

#include "errtrace.h"
#include "kplatform_file.h"
#include "kplatform_paths.h"

#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

namespace {

// Positions and offsets are 32-bit in the files; nothing beyond is addressed.
constexpr std::int64_t kMaxPosition = std::numeric_limits<std::int32_t>::max();
// Key records read at once while scanning.
constexpr std::size_t kScanBlock = 128;

struct OpenPair {
    std::FILE* keys = nullptr;
    std::FILE* data = nullptr;
};
OpenPair g_pair;

// NextKey's enumeration: the patterns it runs with and where it stands.
struct Enumeration {
    bool running = false;
    std::string k1, k2, k3;
    std::int64_t position = 0;
};
Enumeration g_enum;

std::int64_t Length(std::FILE* file) {
    if (!file || std::fseek(file, 0, SEEK_END) != 0)
        return -1;
    return std::ftell(file);
}

// A failed call leaves the stream's error flag set; each access starts afresh.
bool ReadAt(std::FILE* file, std::int64_t position, void* buffer, std::size_t size) {
    std::clearerr(file);
    return std::fseek(file, static_cast<long>(position), SEEK_SET) == 0 &&
           std::fread(buffer, 1, size, file) == size;
}

bool WriteAt(std::FILE* file, std::int64_t position, const void* buffer, std::size_t size) {
    std::clearerr(file);
    return std::fseek(file, static_cast<long>(position), SEEK_SET) == 0 &&
           std::fwrite(buffer, 1, size, file) == size && std::fflush(file) == 0;
}

// A whole data record lies at `offset`.
bool DataReachable(std::int64_t offset, std::int64_t dataLength) {
    return offset >= 0 && offset + kCaldatDataRecordSize <= dataLength;
}

bool KeysEqual(const KeyRecord& record, std::string_view k1, std::string_view k2,
               std::string_view k3) {
    return record.Key1() == k1 && record.Key2() == k2 && record.Key3() == k3;
}

// Calls `visit(position, record)` for each whole key record from the start of
// the file until it answers true, and answers that record's position; -1 at the
// end. Bytes behind the last whole record are no record and are left alone.
template <class Visit> std::int64_t ScanKeys(const char* caller, Visit visit) {
    std::FILE* keys = g_pair.keys;
    if (!keys) {
        KERRTRACE("%s(): no key file open", caller);
        return -1;
    }
    std::clearerr(keys);
    if (std::fseek(keys, 0, SEEK_SET) != 0) {
        KERRTRACE("%s(): cannot seek in the key file", caller);
        return -1;
    }
    unsigned char block[kScanBlock * sizeof(KeyRecord)];
    std::int64_t position = 0;
    for (;;) {
        const std::size_t got = std::fread(block, 1, sizeof block, keys);
        for (std::size_t at = 0; at + sizeof(KeyRecord) <= got; at += sizeof(KeyRecord)) {
            if (position > kMaxPosition - kCaldatKeyRecordSize) {
                KERRTRACE("%s(): the key file is longer than 32-bit positions reach", caller);
                return -1;
            }
            KeyRecord record;
            std::memcpy(&record, block + at, sizeof record);
            if (visit(position, record))
                return position;
            position += kCaldatKeyRecordSize;
        }
        if (got < sizeof block) {
            if (std::ferror(keys))
                KERRTRACE("%s(): reading the key file failed", caller);
            else if (got % sizeof(KeyRecord))
                KERRTRACE("%s(): %zu bytes at the end of the key file are no whole record", caller,
                          got % sizeof(KeyRecord));
            return -1;
        }
    }
}

// Where a new key record goes: the first free one, or the end of a key file
// that holds whole records only.
std::int64_t NewKeyPosition() {
    const std::int64_t free =
        ScanKeys("WriteKey", [](std::int64_t, const KeyRecord& record) { return record.IsFree(); });
    if (free >= 0)
        return free;
    const std::int64_t length = Length(g_pair.keys);
    if (length < 0 || length % kCaldatKeyRecordSize != 0 ||
        length > kMaxPosition - kCaldatKeyRecordSize) {
        KERRTRACE("WriteKey(): no whole record can be added to a key file of %lld bytes",
                  static_cast<long long>(length));
        return -1;
    }
    return length;
}

bool WriteKeyRecord(const char* caller, std::int64_t position, const KeyRecord& record) {
    if (!WriteAt(g_pair.keys, position, &record, sizeof record)) {
        KERRTRACE("%s(): writing the key record at %lld failed", caller,
                  static_cast<long long>(position));
        return false;
    }
    return true;
}

bool CheckKeys(const char* caller, std::string_view k1, std::string_view k2, std::string_view k3) {
    if (k1.empty()) {
        KERRTRACE("%s(): no first key", caller);
        return false;
    }
    for (std::string_view key : {k1, k2, k3}) {
        if (key.size() > kCaldatKeyMaxLength || key.find('\0') != std::string_view::npos) {
            KERRTRACE("%s(): the key \"%.*s\" does not fit a key field", caller,
                      static_cast<int>(key.size()), key.data());
            return false;
        }
    }
    return true;
}

// A path that names a directory opens as no file.
bool IsDirectory(const std::string& path) {
    korv::platform::FileInfo info;
    return korv::platform::get_file_info(path, info) &&
           (info.attributes & korv::platform::FILE_ATTR_DIRECTORY) != 0;
}

std::FILE* OpenOne(const std::string& path, bool readOnly) {
    if (IsDirectory(path))
        return nullptr;
    const std::string native = korv::platform::native_path(path);
    if (readOnly)
        return std::fopen(native.c_str(), "rb");
    const bool exists = korv::platform::path_exists(path);
    return std::fopen(native.c_str(), exists ? "r+b" : "w+b");
}

bool OpenPairOf(const char* caller, const std::string& path, bool readOnly) {
    if (g_pair.keys || g_pair.data) {
        KTRACE(4, "%s(): a pair is open already, \"%s\" ignored", caller, path.c_str());
        return false;
    }
    if (path.empty()) {
        KERRTRACE("%s(): no path", caller);
        return false;
    }
    const std::string keyName = CaldatFileName(path, "KKY");
    const std::string dataName = CaldatFileName(path, "KKL");
    g_pair.keys = OpenOne(keyName, readOnly);
    g_pair.data = OpenOne(dataName, readOnly);
    if (g_pair.keys && g_pair.data)
        return true;
    KERRTRACE("%s(): cannot open \"%s\"", caller, (g_pair.keys ? dataName : keyName).c_str());
    CloseKeyFiles();
    return false;
}

} // namespace

std::string CaldatFileName(const std::string& path, const char* extension) {
    const std::size_t dot = path.rfind('.');
    return (dot == std::string::npos ? path : path.substr(0, dot + 1)) + extension;
}

bool OpenKeyFiles(const std::string& path) {
    return OpenPairOf("OpenKeyFiles", path, false);
}

bool OpenKeyFilesReadOnly(const std::string& path) {
    return OpenPairOf("OpenKeyFilesReadOnly", path, true);
}

void CloseKeyFiles() {
    for (std::FILE** file : {&g_pair.keys, &g_pair.data}) {
        if (*file)
            std::fclose(*file);
        *file = nullptr;
    }
    // A position in a closed file means nothing in the next one.
    g_enum.running = false;
}

bool KeyFilesOpen() {
    return g_pair.keys && g_pair.data;
}

std::int32_t FindKey(std::string_view k1, std::string_view k2, std::string_view k3,
                     KeyRecord* record) {
    if (!record) {
        KERRTRACE("FindKey(): no record buffer");
        return -1;
    }
    if (k1.empty()) {
        KERRTRACE("FindKey(): no first key");
        return -1;
    }
    KeyRecord found;
    const std::int64_t position =
        ScanKeys("FindKey", [&](std::int64_t, const KeyRecord& candidate) {
            if (!KeysEqual(candidate, k1, k2, k3))
                return false;
            found = candidate;
            return true;
        });
    if (position >= 0)
        *record = found;
    return static_cast<std::int32_t>(position);
}

bool KeyExists(std::string_view k1, std::string_view k2, std::string_view k3) {
    KeyRecord record;
    return FindKey(k1, k2, k3, &record) >= 0;
}

std::int32_t FindFreeData(KeyRecord* record) {
    if (!record) {
        KERRTRACE("FindFreeData(): no record buffer");
        return -1;
    }
    KeyRecord found;
    const std::int64_t position =
        ScanKeys("FindFreeData", [&](std::int64_t, const KeyRecord& candidate) {
            if (!candidate.IsFree())
                return false;
            found = candidate;
            return true;
        });
    if (position < 0)
        return -1;
    *record = found;
    return found.DataOffset();
}

bool WriteKey(std::string_view k1, std::string_view k2, std::string_view k3,
              std::int32_t dataOffset, std::int32_t delta, int mode) {
    if (!g_pair.keys) {
        KERRTRACE("WriteKey(): no key file open");
        return false;
    }
    if (!CheckKeys("WriteKey", k1, k2, k3))
        return false;
    KeyRecord record;
    const std::int32_t position = FindKey(k1, k2, k3, &record);
    if (mode == kWriteKeyNew) {
        if (position >= 0) {
            KTRACE(5, "WriteKey(): \"%.*s\" exists already", static_cast<int>(k1.size()),
                   k1.data());
            return false;
        }
        const std::int64_t at = NewKeyPosition();
        if (at < 0)
            return false;
        std::memset(&record, 0, sizeof record);
        CaldatSetKeyText(record.key1, k1);
        CaldatSetKeyText(record.key2, k2);
        CaldatSetKeyText(record.key3, k3);
        record.SetChildCount(delta);
        record.SetDataOffset(dataOffset);
        return WriteKeyRecord("WriteKey", at, record);
    }
    if (mode == kWriteKeyAddChildren) {
        if (position < 0)
            return false;
        const std::int64_t sum = std::int64_t(record.ChildCount()) + delta;
        if (sum < 0 || sum > std::numeric_limits<std::int32_t>::max()) {
            KERRTRACE("WriteKey(): child count %d of \"%.*s\" and %d make %lld",
                      record.ChildCount(), static_cast<int>(k1.size()), k1.data(), delta,
                      static_cast<long long>(sum));
            return false;
        }
        record.SetChildCount(static_cast<std::int32_t>(sum));
        return WriteKeyRecord("WriteKey", position, record);
    }
    KERRTRACE("WriteKey(): unknown mode %d", mode);
    return false;
}

bool ClearKey(std::string_view k1, std::string_view k2, std::string_view k3) {
    KeyRecord record;
    const std::int32_t position = FindKey(k1, k2, k3, &record);
    if (position < 0 || record.ChildCount() != 0)
        return false;
    record.key1[0] = record.key2[0] = record.key3[0] = '\0';
    return WriteKeyRecord("ClearKey", position, record);
}

bool DeleteEntry(std::string_view k1, std::string_view k2, std::string_view k3) {
    if (!ClearKey(k1, k2, k3))
        return false;
    if (!k3.empty())
        WriteKey(k1, k2, {}, 0, -1, kWriteKeyAddChildren);
    if (!k2.empty())
        WriteKey(k1, {}, {}, 0, -1, kWriteKeyAddChildren);
    return true;
}

int DeleteTree(std::string_view k1, std::string_view k2, std::string_view k3) {
    if (k1.empty()) {
        KERRTRACE("DeleteTree(): no first key");
        return -1;
    }
    // Gathered first: the scan reads the stream that the rewrites would move.
    std::vector<std::pair<std::int64_t, KeyRecord>> hits;
    ScanKeys("DeleteTree", [&](std::int64_t position, const KeyRecord& record) {
        if (!record.IsFree() && record.Key1() == k1 && (k2.empty() || record.Key2() == k2) &&
            (k3.empty() || record.Key3() == k3))
            hits.emplace_back(position, record);
        return false;
    });
    if (!g_pair.keys)
        return -1;
    int freed = 0;
    for (auto& [position, record] : hits) {
        record.key1[0] = '\0';
        if (!WriteKeyRecord("DeleteTree", position, record))
            return -1;
        ++freed;
    }
    return freed;
}

bool ReadData(std::string_view k1, std::string_view k2, std::string_view k3, DataRecord* record) {
    if (!record) {
        KERRTRACE("ReadData(): no record buffer");
        return false;
    }
    KeyRecord key;
    if (FindKey(k1, k2, k3, &key) < 0)
        return false;
    if (!ReadDataAt(key.DataOffset(), *record)) {
        KERRTRACE("ReadData(): the data of \"%.*s\" at %d cannot be read",
                  static_cast<int>(k1.size()), k1.data(), key.DataOffset());
        return false;
    }
    return true;
}

std::int32_t WriteData(std::string_view k1, std::string_view k2, std::string_view k3,
                       const DataRecord* record, int mode) {
    if (!record || !g_pair.data) {
        KERRTRACE("WriteData(): %s", record ? "no data file open" : "no record");
        return -1;
    }
    if (!CheckKeys("WriteData", k1, k2, k3))
        return -1;
    KeyRecord key;
    const std::int32_t position = FindKey(k1, k2, k3, &key);
    const std::int64_t dataLength = Length(g_pair.data);
    if (dataLength < 0) {
        KERRTRACE("WriteData(): the length of the data file is unknown");
        return -1;
    }
    std::int64_t at = -1;
    if (mode == kWriteDataReplace) {
        if (position >= 0 && DataReachable(key.DataOffset(), dataLength))
            at = key.DataOffset();
    } else if (position < 0) {
        KeyRecord free;
        const std::int32_t offset = FindFreeData(&free);
        if (offset >= 0 && DataReachable(offset, dataLength))
            at = offset;
    }
    if (at < 0) {
        if (dataLength > kMaxPosition - kCaldatDataRecordSize) {
            KERRTRACE("WriteData(): the data file is full");
            return -1;
        }
        at = dataLength;
    }
    if (!WriteAt(g_pair.data, at, record, sizeof *record)) {
        KERRTRACE("WriteData(): writing the data record at %lld failed",
                  static_cast<long long>(at));
        return -1;
    }
    const auto offset = static_cast<std::int32_t>(at);
    if (mode != kWriteDataReplace && WriteKey(k1, k2, k3, offset, 0, kWriteKeyNew)) {
        if (!k3.empty() && WriteKey(k1, k2, {}, 0, 1, kWriteKeyAddChildren))
            return offset;
        if (!k2.empty())
            WriteKey(k1, {}, {}, 0, 1, kWriteKeyAddChildren);
    }
    return offset;
}

bool NextKey(std::string& k1, std::string& k2, std::string& k3) {
    if (!g_enum.running) {
        g_enum.k1 = k1;
        g_enum.k2 = k2;
        g_enum.k3 = k3;
        g_enum.position = 0;
        g_enum.running = g_pair.keys && std::fseek(g_pair.keys, 0, SEEK_SET) == 0;
    }
    k1.clear();
    k2.clear();
    k3.clear();
    if (!g_enum.running)
        return false;
    KeyRecord record;
    while (g_enum.position <= kMaxPosition - kCaldatKeyRecordSize &&
           ReadAt(g_pair.keys, g_enum.position, &record, sizeof record)) {
        g_enum.position += kCaldatKeyRecordSize;
        const std::string_view r1 = record.Key1(), r2 = record.Key2(), r3 = record.Key3();
        const bool hit = (g_enum.k1 == "*" && !r1.empty() && r2.empty() && r3.empty()) ||
                         (g_enum.k2 == "*" && !r2.empty() && r3.empty() && r1 == g_enum.k1) ||
                         (g_enum.k3 == "*" && !r3.empty() && r1 == g_enum.k1 && r2 == g_enum.k2);
        if (hit) {
            k1 = r1;
            k2 = r2;
            k3 = r3;
            return true;
        }
    }
    g_enum.running = false;
    return false;
}

bool KeyEnumerationRunning() {
    return g_enum.running;
}

std::int64_t KeyFileLength() {
    return Length(g_pair.keys);
}

std::int64_t DataFileLength() {
    return Length(g_pair.data);
}

bool ReadKeyAt(std::int64_t index, KeyRecord& record) {
    if (!g_pair.keys || index < 0 ||
        index > (kMaxPosition - kCaldatKeyRecordSize) / kCaldatKeyRecordSize)
        return false;
    return ReadAt(g_pair.keys, index * kCaldatKeyRecordSize, &record, sizeof record);
}

bool ReadDataAt(std::int64_t offset, DataRecord& record) {
    if (!DataReachable(offset, Length(g_pair.data))) {
        KERRTRACE("ReadDataAt(): no whole data record at %lld", static_cast<long long>(offset));
        return false;
    }
    return ReadAt(g_pair.data, offset, &record, sizeof record);
}
