// Line reading and line-ending conversion on large, mixed texts, checked against
// a byte-at-a-time model: the scans skip ahead many bytes at a time and the
// writer converts in pieces, so endings at every offset and across every border
// must come out as the model says.
#include "fastfile.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using korv::KFastFileReader;
using korv::testing::ScratchDir;
using Lines = std::vector<std::string>;

namespace {

// Lines of every length from 0 to 70 and a few long ones, ended by LF, CR LF or
// a lone CR, over bytes of all values (high ones too) except the endings.
std::string mixed_text(std::uint32_t seed, std::size_t lines) {
    std::string text;
    const char* const endings[] = {"\n", "\r\n", "\r"};
    for (std::size_t i = 0; i < lines; ++i) {
        seed = seed * 1103515245u + 12345u;
        const std::size_t length = i % 97 == 0 ? 9000 + i : (seed >> 8) % 71;
        for (std::size_t k = 0; k < length; ++k) {
            seed = seed * 1103515245u + 12345u;
            const char c = static_cast<char>(seed >> 16);
            text += c == '\r' || c == '\n' ? static_cast<char>(c + 0x80) : c;
        }
        text += endings[(seed >> 4) % 3];
    }
    return text;
}

// The model: CR LF, LF and a lone CR each end a line and become `eol`.
std::string model(const std::string& text, const char* eol) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') {
            out += text[i];
            continue;
        }
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            ++i;
        out += eol;
    }
    return out;
}

Lines model_lines(const std::string& text) {
    Lines lines{""};
    for (char c : model(text, "\n")) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    if (lines.back().empty())
        lines.pop_back();
    return lines;
}

Lines read_all(const std::string& path) {
    KFastFileReader reader(path);
    Lines lines;
    std::string line;
    while (!reader.IsEOF()) {
        EXPECT_TRUE(reader.ReadLine(line));
        lines.push_back(line);
    }
    EXPECT_TRUE(reader.ReadLine(line)); // at the end: true with an empty line
    EXPECT_EQ(line, "");
    return lines;
}

} // namespace

TEST(FastFileLines, ReadLineAgreesWithTheModel) {
    ScratchDir dir;
    for (std::uint32_t seed : {1u, 2u, 3u}) {
        const std::string text = mixed_text(seed, 3000);
        dir.write("mixed.txt", text);
        EXPECT_EQ(read_all(dir / "mixed.txt"), model_lines(text)) << "seed " << seed;
    }
    // A CR LF pair, or a lone CR, split at every window border of the file.
    std::string borders;
    for (int i = 0; borders.size() < 6 * korv::KFF_BUFFER_SIZE; ++i) {
        borders.append(korv::KFF_BUFFER_SIZE - 1 - borders.size() % korv::KFF_BUFFER_SIZE, 'x');
        borders += i % 2 ? "\rx" : "\r\n";
    }
    for (const std::string& text : {borders, std::string("one\r\ntwo\n\nlast"), std::string()}) {
        dir.write("a.txt", text);
        EXPECT_EQ(read_all(dir / "a.txt"), model_lines(text));
    }
}

TEST(FastFileLines, ReadStringFindsItsTerminatorAtEveryOffset) {
    ScratchDir dir;
    // Terminators after runs of 0 to 40 bytes that differ from it by one bit or the high bit.
    std::string text;
    Lines fields;
    for (std::size_t length = 0; length <= 40; ++length) {
        fields.emplace_back();
        for (std::size_t k = 0; k < length; ++k)
            fields.back() += "\x3a\x3c\xbb\x7b\x01"[k % 5]; // near ';' (0x3b), never it
        text += fields.back() + ";";
    }
    dir.write("fields.txt", text);
    KFastFileReader reader(dir / "fields.txt");
    std::vector<char> buffer(64);
    for (const std::string& field : fields) {
        // The terminator at the very end of the bytes the call may take, and shortly before it.
        const std::size_t max = field.size() + 1 + field.size() % 3;
        ASSERT_EQ(reader.ReadString(buffer.data(), max, ';'),
                  static_cast<std::int64_t>(field.size()));
        EXPECT_EQ(std::string(buffer.data()), field);
    }
    EXPECT_TRUE(reader.IsEOF());
}

TEST(FastFileLines, WholeFileConversionsAgreeWithTheModelInEveryMode) {
    ScratchDir dir;
    // Several conversion pieces: pairs, lone CRs and LFs at every offset, and a
    // run far longer than a piece without any ending.
    std::string text = mixed_text(7, 6000);
    text += std::string(200000, 'r') + "\r";
    text.insert(70000, "\r\r\n\n\r");
    const std::string expected = model(text, "\r\n");
    for (int mode : {korv::KFF_REPLACE, korv::KFF_REPLACE | korv::KFF_ATOMIC}) {
        EXPECT_EQ(korv::KFastFile_WriteLinesAtOnce(dir / "w.txt", text.data(), text.size(), mode),
                  static_cast<std::int64_t>(expected.size()));
        EXPECT_EQ(dir.read("w.txt"), expected) << "mode " << mode;
    }
    // An ending that would end one byte short of a piece's end, in front of and behind it.
    for (std::size_t before = 65533; before <= 65536; ++before) {
        for (const char* ending : {"\n", "\r\n", "\r"}) {
            const std::string edge = std::string(before, 'e') + ending + "tail\r";
            EXPECT_EQ(korv::KFastFile_WriteLinesAtOnce(dir / "e.txt", edge.data(), edge.size(),
                                                       korv::KFF_REPLACE),
                      static_cast<std::int64_t>(before + 8));
            EXPECT_EQ(dir.read("e.txt"), model(edge, "\r\n"));
        }
    }
    dir.write("r.txt", text);
    std::string lines;
    EXPECT_EQ(korv::KFastFile_ReadLinesAtOnce(dir / "r.txt", lines),
              static_cast<std::int64_t>(model(text, "\n").size()));
    EXPECT_EQ(lines, model(text, "\n"));
}
