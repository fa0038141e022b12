// Calibration pairs made byte by byte from the record layouts, for the tests
// of the record layer, of the caldat tool and for fuzz seeds. Nothing here
// uses the code under test.
#pragma once

#include <bit>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace caldat_test {

constexpr std::size_t kKeySize = 98;
constexpr std::size_t kDataSize = 146;

inline std::string Le32(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    return {char(bits & 0xFF), char(bits >> 8 & 0xFF), char(bits >> 16 & 0xFF),
            char(bits >> 24 & 0xFF)};
}

inline std::string LeDouble(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    std::string out;
    for (int shift = 0; shift < 64; shift += 8)
        out += char(bits >> shift & 0xFF);
    return out;
}

// A key field: the text, then zeros to 30 bytes; a 30-byte text has no terminator.
inline std::string KeyField(std::string_view text) {
    std::string field(text.substr(0, 30));
    field.resize(30, '\0');
    return field;
}

// A key record: offsets 0, 30, 60 the keys, 90 the child count, 94 the data offset.
inline std::string KeyBytes(std::string_view k1, std::string_view k2, std::string_view k3,
                            std::int32_t children, std::int32_t offset) {
    return KeyField(k1) + KeyField(k2) + KeyField(k3) + Le32(children) + Le32(offset);
}

// A free record as ClearKey leaves it: the first byte of each key is 0, the
// rest of the old texts stays.
inline std::string FreeKeyBytes(std::string_view k1, std::string_view k2, std::int32_t offset) {
    std::string bytes = KeyBytes(k1, k2, "", 0, offset);
    bytes[0] = bytes[30] = bytes[60] = '\0';
    return bytes;
}

// A data record: `flags` at 0, the given doubles at their offsets, and the
// other bytes a pattern of `seed`, which a writer must carry through.
inline std::string DataBytes(unsigned char flags, std::vector<std::pair<int, double>> values,
                             unsigned char seed = 0x40) {
    std::string bytes(kDataSize, '\0');
    for (std::size_t i = 1; i < kDataSize; ++i)
        bytes[i] = char(seed + i % 31);
    bytes[0] = char(flags);
    for (const auto& [at, value] : values)
        bytes.replace(at, 8, LeDouble(value));
    return bytes;
}
inline std::string ProbeData(double length1, double length2, unsigned char seed = 0x40) {
    return DataBytes(0x00, {{52, length1}, {60, length2}}, seed);
}
inline std::string SubData(unsigned char flags, double reference, unsigned char seed = 0x60) {
    return DataBytes(flags, {{46, reference}}, seed);
}

struct PairBytes {
    std::string keys;
    std::string data;
};

// Two probes with sub-entries, a free record among them whose data record
// (the last) is free for reuse:
//   0 P1 (2 children)      data 0     10.5 mm, 20.25 mm
//   1 P1/S1                data 146   reference 12.5
//   2 free                 data 876
//   3 P2 (1 child)         data 292   1 mm, -2.125 mm
//   4 P1/S2                data 438   flags 0x20: no reference
//   5 P2/T1 (1 child)      data 584   flags 0x1F: reference -3.25
//   6 P2/T1/U1             data 730   7 mm, 8 mm
inline PairBytes TwoProbeTree() {
    PairBytes pair;
    pair.keys = KeyBytes("P1", "", "", 2, 0) + KeyBytes("P1", "S1", "", 0, 146) +
                FreeKeyBytes("Old", "Gone", 876) + KeyBytes("P2", "", "", 1, 292) +
                KeyBytes("P1", "S2", "", 0, 438) + KeyBytes("P2", "T1", "", 1, 584) +
                KeyBytes("P2", "T1", "U1", 0, 730);
    pair.data = ProbeData(10.5, 20.25) + SubData(0x10, 12.5) + ProbeData(1.0, -2.125) +
                SubData(0x20, 99.0) + SubData(0x1F, -3.25) + ProbeData(7.0, 8.0) +
                ProbeData(-1.0, -1.0, 0x70);
    return pair;
}

// `stem` + "KKY" and `stem` + "KKL"; a file is left out if its bytes are null.
inline bool WritePair(const std::string& stem, const std::string* keys, const std::string* data) {
    bool ok = true;
    for (const auto& [name, bytes] :
         {std::pair{stem + "KKY", keys}, std::pair{stem + "KKL", data}}) {
        if (!bytes)
            continue;
        std::ofstream out(name, std::ios::binary | std::ios::trunc);
        out.write(bytes->data(), static_cast<std::streamsize>(bytes->size()));
        ok = ok && out.good();
    }
    return ok;
}
inline bool WritePair(const std::string& stem, const PairBytes& pair) {
    return WritePair(stem, &pair.keys, &pair.data);
}

inline std::string ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace caldat_test
