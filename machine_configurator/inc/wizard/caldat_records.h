// The two records of a calibration data pair as they lie on disk: fixed
// sizes, little-endian numbers, no padding. Every field is a byte array, so
// the layout is the same whatever the compiler aligns, and the numbers are
// put together byte by byte, whatever the host's byte order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

inline constexpr std::size_t kCaldatKeySize = 30;
// Room for a key's text: one byte stays for the terminator.
inline constexpr std::size_t kCaldatKeyMaxLength = kCaldatKeySize - 1;

std::int32_t CaldatGetInt32(const unsigned char* bytes);
void CaldatPutInt32(unsigned char* bytes, std::int32_t value);
double CaldatGetDouble(const unsigned char* bytes);
void CaldatPutDouble(unsigned char* bytes, double value);

// A key field's text: up to its terminator, or all 30 bytes if it has none.
std::string_view CaldatKeyText(const char (&field)[kCaldatKeySize]);
// Fills a key field with `text` and zeros behind it; false, leaving the field
// alone, if the text does not fit with its terminator.
bool CaldatSetKeyText(char (&field)[kCaldatKeySize], std::string_view text);

// One entry of the key file ("KKY"). An empty first key marks a free record.
struct KeyRecord {
    char key1[kCaldatKeySize];
    char key2[kCaldatKeySize];
    char key3[kCaldatKeySize];
    unsigned char childCount[4]; // entries one level below
    unsigned char dataOffset[4]; // byte offset of the DataRecord in the data file

    std::string_view Key1() const { return CaldatKeyText(key1); }
    std::string_view Key2() const { return CaldatKeyText(key2); }
    std::string_view Key3() const { return CaldatKeyText(key3); }
    bool IsFree() const { return key1[0] == '\0'; }
    std::int32_t ChildCount() const { return CaldatGetInt32(childCount); }
    void SetChildCount(std::int32_t value) { CaldatPutInt32(childCount, value); }
    std::int32_t DataOffset() const { return CaldatGetInt32(dataOffset); }
    void SetDataOffset(std::int32_t value) { CaldatPutInt32(dataOffset, value); }
};

static_assert(alignof(KeyRecord) == 1);
static_assert(offsetof(KeyRecord, key1) == 0);
static_assert(offsetof(KeyRecord, key2) == 30);
static_assert(offsetof(KeyRecord, key3) == 60);
static_assert(offsetof(KeyRecord, childCount) == 90);
static_assert(offsetof(KeyRecord, dataOffset) == 94);
static_assert(sizeof(KeyRecord) == 98);

// One entry of the data file ("KKL"). Only the flag byte and three numbers
// are read; the rest is carried through untouched. The reference and the
// first length overlap: the flag byte tells the two kinds of record apart.
struct DataRecord {
    static constexpr std::size_t kFlagsAt = 0;
    static constexpr std::size_t kReferenceAt = 46; // degrees
    static constexpr std::size_t kLength1At = 52;   // mm
    static constexpr std::size_t kLength2At = 60;   // mm

    unsigned char bytes[146];

    unsigned char Flags() const { return bytes[kFlagsAt]; }
    // The high four bits equal to 1.
    bool HasReference() const { return (bytes[kFlagsAt] >> 4) == 1; }
    double Reference() const { return CaldatGetDouble(bytes + kReferenceAt); }
    double Length1() const { return CaldatGetDouble(bytes + kLength1At); }
    double Length2() const { return CaldatGetDouble(bytes + kLength2At); }
    void SetFlags(unsigned char flags) { bytes[kFlagsAt] = flags; }
    void SetReference(double value) { CaldatPutDouble(bytes + kReferenceAt, value); }
    void SetLength1(double value) { CaldatPutDouble(bytes + kLength1At, value); }
    void SetLength2(double value) { CaldatPutDouble(bytes + kLength2At, value); }
};

static_assert(alignof(DataRecord) == 1);
static_assert(sizeof(DataRecord) == 146);
static_assert(DataRecord::kLength2At + sizeof(double) <= sizeof(DataRecord));
static_assert(sizeof(double) == 8);

inline constexpr std::int32_t kCaldatKeyRecordSize = sizeof(KeyRecord);
inline constexpr std::int32_t kCaldatDataRecordSize = sizeof(DataRecord);
