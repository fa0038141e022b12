#include "kbase64.h"

#include "errtrace.h"

#include <cstdint>
#include <cstring>

namespace korv {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Two output characters per 12 bits, so a group of three bytes takes two lookups.
struct PairTable {
    char pair[4096][2];
};

constexpr PairTable make_pair_table() {
    PairTable table{};
    for (int bits = 0; bits < 4096; ++bits) {
        table.pair[bits][0] = kAlphabet[bits >> 6];
        table.pair[bits][1] = kAlphabet[bits & 63];
    }
    return table;
}

constexpr PairTable kPairs = make_pair_table();

constexpr int kPadValue = 64;
constexpr int kIllegalValue = -1;

// 0..63 for the alphabet, 64 for '=', -1 for anything else.
struct DecodeTable {
    std::int8_t value[256];
};

constexpr DecodeTable make_decode_table() {
    DecodeTable table{};
    for (auto& v : table.value)
        v = kIllegalValue;
    for (int i = 0; i < 64; ++i)
        table.value[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
    table.value[static_cast<unsigned char>('=')] = kPadValue;
    return table;
}

constexpr DecodeTable kDecode = make_decode_table();

// The length argument: a real length, or the inverted one that refuses the NUL.
struct Length {
    std::size_t n;
    bool nul;
};

Length unpack(std::size_t length) {
    if (length >= static_cast<std::size_t>(PTRDIFF_MAX))
        return {~length, false};
    return {length, true};
}

void put_pair(char* out, std::uint32_t twelve_bits) {
    std::memcpy(out, kPairs.pair[twelve_bits], 2);
}

bool illegal(int value) {
    return (value & ~63) != 0;
}

} // namespace

std::size_t KBase64_EncodedSize(std::size_t length) {
    const auto [n, nul] = unpack(length);
    return (n / 3 + (n % 3 != 0)) * 4 + (nul ? 1 : 0);
}

std::size_t KBase64_DecodedSize(const char* text, std::size_t length) {
    const auto [n, nul] = unpack(length);
    std::size_t size = (n / 4 + (n % 4 != 0)) * 3;
    if (text != nullptr && n >= 4 && n % 4 == 0) {
        size -= text[n - 2] == '=';
        size -= text[n - 1] == '=';
    }
    return size + (nul ? 1 : 0);
}

std::size_t KBase64_Encode(char* target, const void* source, std::size_t length) {
    const auto [n, nul] = unpack(length);
    const auto* in = static_cast<const unsigned char*>(source);
    const std::size_t groups = n / 3;
    const std::size_t rest = n % 3;
    const std::size_t written = (groups + (rest != 0)) * 4;
    // Behind the input for any n > 0, so it can go first even in place.
    if (nul)
        target[written] = '\0';

    // From the end backwards: the output of a group never reaches below its own
    // input, and every group is read before its output is stored.
    if (rest != 0) {
        const unsigned char* group = in + groups * 3;
        std::uint32_t bits = std::uint32_t{group[0]} << 16;
        if (rest == 2)
            bits |= std::uint32_t{group[1]} << 8;
        char* out = target + groups * 4;
        put_pair(out, bits >> 12);
        out[2] = rest == 2 ? kPairs.pair[bits & 0xfff][0] : '=';
        out[3] = '=';
    }
    for (std::size_t i = groups; i-- > 0;) {
        const unsigned char* group = in + i * 3;
        const std::uint32_t bits =
            std::uint32_t{group[0]} << 16 | std::uint32_t{group[1]} << 8 | group[2];
        char* out = target + i * 4;
        put_pair(out, bits >> 12);
        put_pair(out + 2, bits & 0xfff);
    }
    return written;
}

std::ptrdiff_t KBase64_Decode(void* target, const char* source, std::size_t length) {
    const auto [n, nul] = unpack(length);
    if (n % 4 != 0) {
        KERRTRACE("KBase64_Decode(): source_len has to be multiple of 4, not %zu", n);
        return -1;
    }
    const auto* in = reinterpret_cast<const unsigned char*>(source);
    auto* out = static_cast<unsigned char*>(target);
    std::size_t written = 0;

    // Forwards: three bytes out never pass the four characters just read.
    for (std::size_t pos = 0; pos < n; pos += 4) {
        const int value[4] = {kDecode.value[in[pos]], kDecode.value[in[pos + 1]],
                              kDecode.value[in[pos + 2]], kDecode.value[in[pos + 3]]};
        const bool last = pos + 4 == n;
        // Padding may stand in the last two places of the last group only.
        const int checked = last ? 2 : 4;
        for (int k = 0; k < 4; ++k) {
            const bool bad = k < checked ? illegal(value[k]) : value[k] == kIllegalValue;
            if (bad) {
                KERRTRACE("KBase64_Decode(): illegal character 0x%02x read, terminating",
                          static_cast<unsigned>(value[k]));
                return -1;
            }
        }
        const std::uint32_t bits = std::uint32_t(value[0]) << 18 | std::uint32_t(value[1]) << 12 |
                                   std::uint32_t(value[2] & 63) << 6 | std::uint32_t(value[3] & 63);
        const int bytes = 3 - (value[2] == kPadValue) - (value[3] == kPadValue);
        out[written++] = static_cast<unsigned char>(bits >> 16);
        if (bytes > 1)
            out[written++] = static_cast<unsigned char>(bits >> 8);
        if (bytes > 2)
            out[written++] = static_cast<unsigned char>(bits);
    }
    if (nul)
        out[written] = '\0';
    return static_cast<std::ptrdiff_t>(written);
}

} // namespace korv
