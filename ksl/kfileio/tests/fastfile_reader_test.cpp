#include "errtrace.h"
#include "fastfile.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

using korv::KFastFileReader;
using korv::testing::LogCapture;
using korv::testing::ScratchDir;
using korv::testing::ScratchRoot;
using Lines = std::vector<std::string>;

namespace {

Lines all_lines(const std::string& path) {
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

TEST(FastFileReader, LinesEndInEveryWayAcrossWindowBorders) {
    ScratchDir dir;
    dir.write("a.txt", "one\r\ntwo\nthree\rfour\n\nlast");
    EXPECT_EQ(all_lines(dir / "a.txt"), (Lines{"one", "two", "three", "four", "", "last"}));
    dir.write("empty.txt", "");
    EXPECT_EQ(all_lines(dir / "empty.txt"), Lines{});

    // CR as byte 8191 and LF as byte 8192 are one ending; so is a lone CR there.
    const std::string first(8191, 'x');
    dir.write("split.txt", first + "\r\nnext\r\n");
    EXPECT_EQ(all_lines(dir / "split.txt"), (Lines{first, "next"}));
    dir.write("lone.txt", first + "\rnext");
    EXPECT_EQ(all_lines(dir / "lone.txt"), (Lines{first, "next"}));

    std::string big;
    for (int i = 0; i < 30000; ++i)
        big += static_cast<char>('a' + i % 26);
    dir.write("long.txt", big + "\n" + big + "\r\nend");
    EXPECT_EQ(all_lines(dir / "long.txt"), (Lines{big, big, "end"}));
}

TEST(FastFileReader, BufferFormsCutAtMaxAndNeverOverrun) {
    ScratchDir dir;
    dir.write("a.txt", std::string(8191, 'x') + "\r\nabcdefgh\r\nij\nklmno\n");
    KFastFileReader reader(dir / "a.txt");
    std::vector<char> wide(9000);
    EXPECT_EQ(reader.ReadLine(wide.data(), 8999), 8191);
    char buffer[6 + 4];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(reader.ReadLine(buffer, 5), 5);
    EXPECT_STREQ(buffer, "abcde");
    EXPECT_EQ(reader.ReadLine(buffer, 5), 3); // the rest of the cut line
    EXPECT_STREQ(buffer, "fgh");
    EXPECT_EQ(reader.ReadLine(buffer, 5), 2);
    // A line exactly `max` long leaves its ending for the next call.
    EXPECT_EQ(reader.ReadLine(buffer, 5), 5);
    EXPECT_EQ(reader.ReadLine(buffer, 5), 0);
    EXPECT_TRUE(reader.IsEOF());
    EXPECT_EQ(std::string(buffer + 6, 4), "####");

    dir.write("b.txt", "key=value;tail");
    KFastFileReader strings(dir / "b.txt");
    EXPECT_EQ(strings.ReadString(buffer, 5, '='), 3);
    EXPECT_STREQ(buffer, "key");
    EXPECT_EQ(strings.ReadString(buffer, 3, ';'), 3);
    EXPECT_EQ(strings.ReadString(buffer, 5, ';'), 2);
    EXPECT_STREQ(buffer, "ue");
    EXPECT_EQ(strings.ReadString(buffer, 5, ';'), 4);
    EXPECT_STREQ(buffer, "tail");
}

TEST(FastFileReader, CharactersWithLineEndingsAndRewind) {
    ScratchDir dir;
    dir.write("a.txt", "a\r\nb\rc\n\r");
    KFastFileReader reader(dir / "a.txt");
    KErrTrace_ClearContext();
    EXPECT_FALSE(reader.UnReadChar()); // nothing read yet
    EXPECT_EQ(korv::diag::error_trace_lines(),
              Lines{"KFastFileReader::UnReadChar(): can't rewind"});
    KErrTrace_ClearContext();
    std::string seen;
    char c = 0;
    while (reader.ReadCharNL(c) == 1)
        seen += c;
    EXPECT_EQ(seen, "a\nb\nc\n\n");
    EXPECT_TRUE(reader.UnReadChar());
    EXPECT_EQ(reader.ReadChar(c), 1);
    EXPECT_EQ(c, '\r');
    EXPECT_EQ(reader.ReadChar(c), 0);
}

TEST(FastFileReader, BulkReadsBypassTheWindowAndKeepTheirPlace) {
    ScratchDir dir;
    std::string data(50000, '\0');
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<char>(i * 7 + i / 251);
    dir.write("bin", data);
    KFastFileReader reader(dir / "bin");
    std::string got(50000, '\0');
    EXPECT_EQ(reader.Read(got.data(), 10), 10);
    EXPECT_EQ(reader.Read(got.data() + 10, 20000), 20000);    // past the window
    EXPECT_EQ(reader.Read(got.data() + 20010, 100), 100);     // a refill after it
    EXPECT_EQ(reader.Read(got.data() + 20110, 40000), 29890); // short at the end
    EXPECT_EQ(got, data);
    EXPECT_TRUE(reader.IsEOF());
}

TEST(FastFileReader, BinaryValuesRoundTrip) {
    ScratchDir dir;
    {
        korv::KFastFileWriter writer(dir / "v.bin", korv::KFF_CREATE_NEW);
        EXPECT_EQ(writer.WriteLong(-123456) + writer.WriteShort(-2) + writer.WriteDouble(-0.5), 14);
    }
    KFastFileReader reader(dir / "v.bin");
    std::int32_t l = 0;
    std::int16_t s = 0;
    double d = 0;
    EXPECT_EQ(reader.ReadLong(l) + reader.ReadShort(s) + reader.ReadDouble(d), 14);
    EXPECT_EQ(l, -123456);
    EXPECT_EQ(s, -2);
    EXPECT_EQ(d, -0.5);
    EXPECT_TRUE(reader.IsEOF()); // a long is exactly 4 bytes on disk
}

TEST(FastFileReader, FailuresReachTheirChannels) {
    ScratchDir dir;
    LogCapture log;
    const std::string missing = dir / "missing.txt";
    {
        KFastFileReader reader(missing);
        EXPECT_TRUE(reader.IsEOF());
        char c;
        EXPECT_EQ(reader.Read(&c, 1), -1);
    }
    EXPECT_EQ(log.errors(),
              (Lines{"openfile(): CreateFile(\"" + missing + "\") failed: 2",
                     "KFastFileReader::Open(): openfile(\"" + missing + "\") failed: 2",
                     "KFastFileReader::KFastFileReader(): Open(\"" + missing + "\") failed",
                     "KFastFileReader::IsEOF(): no open file"}));
    EXPECT_EQ(korv::diag::error_trace_lines().back(),
              "KFastFileReader::Read(): read_from_buffer() failed");
    KErrTrace_ClearContext();
}

namespace {

// A reader whose refill fails once the first window is used up.
class FailingReader : public KFastFileReader {
public:
    using KFastFileReader::KFastFileReader;

protected:
    bool fill_buffer() override { return m_fills++ == 0 && KFastFileReader::fill_buffer(); }

private:
    int m_fills = 0;
};

} // namespace

TEST(FastFileReader, IsEofCountsAReadErrorAsTheEndAndClearsItsContext) {
    ScratchDir dir;
    dir.write("a.txt", "x\n");
    LogCapture log;
    KErrTrace_ClearContext();
    FailingReader reader(dir / "a.txt");
    EXPECT_FALSE(reader.IsEOF());
    std::string line;
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_TRUE(reader.IsEOF());
    EXPECT_EQ(log.errors(), Lines{"KFastFileReader::IsEOF(): fill_buffer() failed"});
    EXPECT_TRUE(korv::diag::error_trace_lines().empty());
}

TEST(FastFileReader, WindowsPathsWithOtherCaseOpen) {
    ScratchRoot root;
    root.write("drive_c/Data/SP_Support/Load.ini", "[General]\r\n");
    EXPECT_EQ(all_lines("c:\\DATA\\sp_SUPPORT/load.INI"), Lines{"[General]"});
}
