// The calibration data pair of a form measuring station: a key file and a
// data file with a common stem, the extensions "KKY" and "KKL", each an array
// of fixed records without a header (wizard/caldat_records.h).
//
// The keys form a tree of at most three levels: an entry with only the first
// key is a top node (a probe), one with two keys is below it, one with three
// below that. Keys compare byte by byte; an omitted key is an empty one.
//
// One pair is open in the process at a time, and the enumeration of NextKey
// is process-wide too: one thread only. Failures answer -1, false or nothing
// done, with a line in the error trace; nothing goes to the error log. No
// operation reads or writes outside a whole record of either file.
#pragma once

#include "wizard/caldat_records.h"

#include <cstdint>
#include <string>
#include <string_view>

// Modes of WriteKey.
inline constexpr int kWriteKeyNew = 0;         // add the key unless it exists
inline constexpr int kWriteKeyAddChildren = 2; // add `delta` to its child count
// Mode of WriteData that replaces the entry's data; any other adds an entry.
inline constexpr int kWriteDataReplace = 1;

// The file of the pair for `path`: cut after the last dot, which stays, and
// `extension` appended ("a.b" gives "a.KKY", "probes" gives "probesKKY").
std::string CaldatFileName(const std::string& path, const char* extension);

// Opens the pair of `path` for reading and writing, creating a missing file
// empty. Ignored, answering false, while a pair is open or for an empty path.
// If either file fails to open, neither stays open.
bool OpenKeyFiles(const std::string& path);
// Opens an existing pair for reading only; creates nothing. Every write on it
// fails. Ignored like OpenKeyFiles.
bool OpenKeyFilesReadOnly(const std::string& path);
// Closes both files and ends a running enumeration.
void CloseKeyFiles();
bool KeyFilesOpen();

// The first record, from the start of the key file, whose three keys equal
// the given ones, and its byte position; -1 if there is none, no file is open,
// `k1` is empty or `record` is null.
std::int32_t FindKey(std::string_view k1, std::string_view k2, std::string_view k3,
                     KeyRecord* record);
bool KeyExists(std::string_view k1, std::string_view k2 = {}, std::string_view k3 = {});
// The data offset of the first free record, which goes to `record`; -1 if there
// is none.
std::int32_t FindFreeData(KeyRecord* record);

// Mode 0: writes a new record with the keys, `delta` as its child count and
// `dataOffset`, into the first free record or at the end; false if the key
// exists already. Mode 2: adds `delta` to the child count of the key's record;
// false if the key is missing or the sum would be negative.
bool WriteKey(std::string_view k1, std::string_view k2, std::string_view k3,
              std::int32_t dataOffset, std::int32_t delta, int mode);
// Frees the key's record if it has no children: the first byte of each key
// becomes 0. Its data record stays, for reuse by the next new entry.
bool ClearKey(std::string_view k1, std::string_view k2, std::string_view k3);
// ClearKey, then lowers the child count of each parent level that was given.
bool DeleteEntry(std::string_view k1, std::string_view k2, std::string_view k3);
// Frees every used record whose first key is `k1` and whose second and third
// keys equal `k2` and `k3` where those are given, child counts or not. The
// number of records freed, or -1.
int DeleteTree(std::string_view k1, std::string_view k2, std::string_view k3);

// The data record of the key.
bool ReadData(std::string_view k1, std::string_view k2, std::string_view k3, DataRecord* record);
// Mode 1 writes over the key's data, or appends if it has none that can be
// reached. Any other mode adds an entry: the data goes into the data record of
// the first free key record if it can be reached, else to the end; then the
// key is written (mode 0) and its parent's child count raised: (k1, k2) for a
// three-key entry, or (k1) if that one is missing or for a two-key entry.
// The offset at which the data went, or -1.
std::int32_t WriteData(std::string_view k1, std::string_view k2, std::string_view k3,
                       const DataRecord* record, int mode);

// The next key that matches the patterns, into the arguments. The patterns
// are taken only when no enumeration is running: "*" as the first pattern
// lists top nodes; a first key and "*" lists the second keys below it; two
// keys and "*" the third keys below them. False, with the arguments emptied,
// at the end, which ends the enumeration.
bool NextKey(std::string& k1, std::string& k2, std::string& k3);
bool KeyEnumerationRunning();

// For inspection: the lengths of the open files (-1 if none), the key record
// with index `index`, the data record at byte `offset`.
std::int64_t KeyFileLength();
std::int64_t DataFileLength();
bool ReadKeyAt(std::int64_t index, KeyRecord& record);
bool ReadDataAt(std::int64_t offset, DataRecord& record);
