#include "kbase64.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using namespace korv;

namespace {

// A plain bit-by-bit encoder to hold the table-driven one against.
std::string reference_encode(const std::vector<unsigned char>& data) {
    static const char alphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    unsigned buffer = 0;
    int bits = 0;
    for (unsigned char byte : data) {
        buffer = (buffer << 8) | byte;
        bits += 8;
        while (bits >= 6) {
            bits -= 6;
            out += alphabet[(buffer >> bits) & 63];
        }
    }
    if (bits > 0)
        out += alphabet[(buffer << (6 - bits)) & 63];
    while (out.size() % 4 != 0)
        out += '=';
    return out;
}

std::size_t inverted(std::size_t n) {
    return ~n;
}

constexpr char kCanary = '\x5a';

class KBase64 : public korv::testing::TraceContextTest {
protected:
    // Decodes `text` between buffers and returns the bytes, or "<fail>".
    static std::string decode(const std::string& text) {
        std::string out(KBase64_DecodedSize(text.data(), text.size()), kCanary);
        const std::ptrdiff_t n = KBase64_Decode(out.data(), text.data(), text.size());
        if (n < 0)
            return "<fail>";
        EXPECT_EQ(out[static_cast<std::size_t>(n)], '\0');
        out.resize(static_cast<std::size_t>(n));
        return out;
    }
};

TEST_F(KBase64, KnownVectorsAndSizes) {
    const std::pair<std::string, std::string> vectors[] = {{"", ""},
                                                           {"f", "Zg=="},
                                                           {"fo", "Zm8="},
                                                           {"foo", "Zm9v"},
                                                           {"foob", "Zm9vYg=="},
                                                           {"fooba", "Zm9vYmE="},
                                                           {"foobar", "Zm9vYmFy"},
                                                           {"\xff\xfe\xfd", "//79"},
                                                           {std::string("\0\0", 2), "AAA="}};
    for (const auto& [plain, encoded] : vectors) {
        std::string out(KBase64_EncodedSize(plain.size()), kCanary);
        ASSERT_EQ(out.size(), encoded.size() + 1);
        EXPECT_EQ(KBase64_Encode(out.data(), plain.data(), plain.size()), encoded.size());
        EXPECT_EQ(out, encoded + '\0') << plain;
        EXPECT_EQ(KBase64_DecodedSize(encoded.data(), encoded.size()), plain.size() + 1);
        EXPECT_EQ(decode(encoded), plain) << encoded;
    }
    // A '=' in third place before a real fourth character still means two bytes.
    EXPECT_EQ(KBase64_DecodedSize("QQ=A", 4), 3u);
    EXPECT_EQ(decode("QQ=A"), std::string("A\0", 2));
    EXPECT_EQ(KBase64_EncodedSize(inverted(3)), 4u);
    EXPECT_EQ(KBase64_DecodedSize("Zm8=", inverted(4)), 2u);
    EXPECT_TRUE(trace().empty());
}

TEST_F(KBase64, RandomDataOfEveryLengthRoundTripsInPlaceAndBetweenBuffers) {
    std::mt19937 random(20240611);
    for (std::size_t length = 0; length <= 300; ++length) {
        std::vector<unsigned char> data(length);
        for (auto& byte : data)
            byte = static_cast<unsigned char>(random());
        const std::string plain(data.begin(), data.end());
        const std::string expected = reference_encode(data);
        const std::size_t encoded_size = KBase64_EncodedSize(length);
        ASSERT_EQ(encoded_size, expected.size() + 1);

        // Between buffers, with a canary behind the target.
        std::string apart(encoded_size + 1, kCanary);
        ASSERT_EQ(KBase64_Encode(apart.data(), data.data(), length), expected.size());
        ASSERT_EQ(apart, expected + '\0' + kCanary) << length;

        // In place: the buffer holds the data and has room for the text.
        std::string buffer(encoded_size + 1, kCanary);
        buffer.replace(0, length, plain);
        ASSERT_EQ(KBase64_Encode(buffer.data(), buffer.data(), length), expected.size());
        ASSERT_EQ(buffer, expected + '\0' + kCanary) << length;

        // Back again in place, and between buffers.
        const std::size_t decoded_size = KBase64_DecodedSize(buffer.data(), expected.size());
        ASSERT_EQ(decoded_size, length + 1);
        ASSERT_EQ(KBase64_Decode(buffer.data(), buffer.data(), expected.size()),
                  static_cast<std::ptrdiff_t>(length));
        ASSERT_EQ(buffer[length], '\0');
        ASSERT_EQ(buffer.substr(0, length), plain);

        std::string back(decoded_size + 1, kCanary);
        ASSERT_EQ(KBase64_Decode(back.data(), expected.data(), expected.size()),
                  static_cast<std::ptrdiff_t>(length));
        ASSERT_EQ(back, plain + '\0' + kCanary) << length;
    }
    EXPECT_TRUE(trace().empty());
}

TEST_F(KBase64, InvertedLengthWritesNoTerminator) {
    const std::string plain = "abcd";
    std::string out(9, kCanary);
    EXPECT_EQ(KBase64_Encode(out.data(), plain.data(), inverted(plain.size())), 8u);
    EXPECT_EQ(out, std::string("YWJjZA==") + kCanary);

    std::string back(3, kCanary);
    EXPECT_EQ(KBase64_Decode(back.data(), "YWJj", inverted(4)), 3);
    EXPECT_EQ(back, "abc");

    std::string empty(1, kCanary);
    EXPECT_EQ(KBase64_Encode(empty.data(), "", inverted(0)), 0u);
    EXPECT_EQ(KBase64_Decode(empty.data(), "", inverted(0)), 0);
    EXPECT_EQ(empty[0], kCanary);
    EXPECT_EQ(KBase64_Decode(empty.data(), "", 0), 0);
    EXPECT_EQ(empty[0], '\0');
}

TEST_F(KBase64, IllegalCharactersAndLengthsAreRefused) {
    char out[8];
    EXPECT_EQ(KBase64_Decode(out, "QUJDR", 5), -1);
    EXPECT_EQ(KBase64_Decode(out, "QUJDR", inverted(5)), -1);
    EXPECT_EQ(take_trace().size(), 2u);

    const std::string bad_byte = "KBase64_Decode(): illegal character 0xffffffff read, terminating";
    const std::string misplaced_pad = "KBase64_Decode(): illegal character 0x40 read, terminating";
    const std::pair<std::string, std::string> cases[] = {
        {"QUJD\r\nQQ", bad_byte},                        // line endings, in the last group
        {"QU\r\nQUJD", bad_byte},                        // and before it
        {"QU D", bad_byte},          {"QUJ-", bad_byte}, // the URL-safe alphabet is not this one
        {"QQ=\xff", bad_byte},                           // a high byte in the padding places
        {"QQ==QUJD", misplaced_pad},                     // padding before the last group
        {"Q===", misplaced_pad},     {"=QQQ", misplaced_pad}};
    for (const auto& [text, message] : cases) {
        EXPECT_EQ(decode(text), "<fail>") << text;
        EXPECT_EQ(take_trace(), std::vector<std::string>{message}) << text;
    }
}

} // namespace
