// Calibration pairs made byte by byte from the record layouts, for the tests
// of the record layer and of caldat, and for fuzz seeds. Uses no code under test.
#pragma once

#include <bit>
#include <cstdint>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace caldat_test {

inline std::string Le32(std::int32_t value) {
    std::string out;
    for (int shift = 0; shift < 32; shift += 8)
        out += char(static_cast<std::uint32_t>(value) >> shift & 0xFF);
    return out;
}

inline std::string LeDouble(double value) {
    std::string out;
    for (int shift = 0; shift < 64; shift += 8)
        out += char(std::bit_cast<std::uint64_t>(value) >> shift & 0xFF);
    return out;
}

// Keys at 0, 30 and 60 (zero-padded; 30 bytes leave no terminator), the child
// count at 90, the data offset at 94.
inline std::string KeyBytes(std::string k1, std::string k2, std::string k3, std::int32_t children,
                            std::int32_t offset) {
    for (std::string* key : {&k1, &k2, &k3})
        key->resize(30, '\0');
    return k1 + k2 + k3 + Le32(children) + Le32(offset);
}

// A record as ClearKey leaves it: the first byte of each key 0, the rest kept.
inline std::string FreeKeyBytes(const std::string& k1, const std::string& k2, std::int32_t offset,
                                const std::string& k3 = "") {
    std::string bytes = KeyBytes(k1, k2, k3, 0, offset);
    bytes[0] = bytes[30] = bytes[60] = '\0';
    return bytes;
}

// 146 bytes: `flags` at 0, doubles at their offsets, the rest a pattern of `seed`.
inline std::string DataBytes(unsigned char flags, std::vector<std::pair<int, double>> values,
                             unsigned char seed) {
    std::string bytes(146, '\0');
    for (std::size_t i = 1; i < bytes.size(); ++i)
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

// Two probes with sub-entries, and a free record whose data (the last) is free:
//   0 P1 (2 children) data 0: 10.5 mm, 20.25 mm   4 P1/S2 data 438: flags 0x20, no reference
//   1 P1/S1 data 146: reference 12.5              5 P2/T1 (1) data 584: flags 0x1F, -3.25
//   2 free, data 876                              6 P2/T1/U1 data 730
//   3 P2 (1 child) data 292: 1 mm, -2.125 mm
inline PairBytes TwoProbeTree() {
    return {KeyBytes("P1", "", "", 2, 0) + KeyBytes("P1", "S1", "", 0, 146) +
                FreeKeyBytes("Old", "Gone", 876) + KeyBytes("P2", "", "", 1, 292) +
                KeyBytes("P1", "S2", "", 0, 438) + KeyBytes("P2", "T1", "", 1, 584) +
                KeyBytes("P2", "T1", "U1", 0, 730),
            ProbeData(10.5, 20.25) + SubData(0x10, 12.5) + ProbeData(1.0, -2.125) +
                SubData(0x20, 99.0) + SubData(0x1F, -3.25) + ProbeData(7.0, 8.0) +
                ProbeData(-1.0, -1.0, 0x70)};
}

// `stem` + "KKY" and `stem` + "KKL"; a null file is left out.
inline bool WritePair(const std::string& stem, const std::string* keys, const std::string* data) {
    bool ok = true;
    for (const auto& [name, bytes] : {std::pair{stem + "KKY", keys}, std::pair{stem + "KKL", data}})
        if (bytes)
            ok = std::ofstream(name, std::ios::binary).write(bytes->data(), bytes->size()).good() &&
                 ok;
    return ok;
}
inline bool WritePair(const std::string& stem, const PairBytes& pair) {
    return WritePair(stem, &pair.keys, &pair.data);
}

} // namespace caldat_test
