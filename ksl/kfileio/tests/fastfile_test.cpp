#include "fastfile.h"
#include "fileops.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <vector>

using korv::KFastFileReader;
using korv::KFastFileWriter;
using korv::testing::LogCapture;
using korv::testing::ScratchDir;
using Lines = std::vector<std::string>;

namespace {

class FastFileWriter : public korv::testing::TraceContextTest {};
class FastFileReader : public korv::testing::TraceContextTest {};

} // namespace

TEST_F(FastFileWriter, LinesGetCrLfAndCountTheEndingAsOneByte) {
    ScratchDir dir;
    {
        KFastFileWriter writer(dir / "out.txt", korv::KFF_REPLACE);
        EXPECT_EQ(writer.WriteLine("abc"), 4);
        EXPECT_EQ(writer.WriteLine("cr\rstays"), 9);
        EXPECT_EQ(writer.WriteLineNL("x\ny"), 4);
        EXPECT_EQ(writer.WriteStringNL("\n"), 1);
        EXPECT_EQ(writer.WriteString("raw\n"), 4);
        EXPECT_EQ(writer.WriteCharNL('z'), 1);
        EXPECT_EQ(writer.WriteChar('\n'), 1);
        EXPECT_EQ(writer.WriteLine("ab\ncd"), -1); // writes nothing
    }
    EXPECT_EQ(dir.read("out.txt"), "abc\r\ncr\rstays\r\nx\r\ny\r\n\r\nraw\nz\n");
    EXPECT_EQ(take_trace(), Lines{"KFastFileWriter::WriteLine(): EOL detected in string at pos 2"});
}

// What reaches the disk before Close shows the window's rules.
TEST_F(FastFileWriter, ShortWritesStayBufferedAndLongOnesGoStraightToDisk) {
    ScratchDir dir;
    const std::string path = dir / "out.bin";
    KFastFileWriter writer(path, korv::KFF_REPLACE);
    EXPECT_EQ(writer.WriteString(std::string(100, 'a')), 100);
    EXPECT_EQ(korv::file_size(path), 0);
    // 100 held + 16252 = 16352: one full window out, 8160 stay buffered.
    EXPECT_EQ(writer.WriteString(std::string(16252, 'b')), 16252);
    EXPECT_EQ(korv::file_size(path), 8192);
    EXPECT_EQ(writer.WriteString(std::string(32, 'c')), 32); // fills the window exactly
    EXPECT_EQ(korv::file_size(path), 16384);
    // 100 held + 16253 is one byte over: everything goes out.
    EXPECT_EQ(writer.WriteString(std::string(100, 'd')), 100);
    EXPECT_EQ(writer.WriteString(std::string(16253, 'e')), 16253);
    EXPECT_EQ(korv::file_size(path), 16384 + 100 + 16253);
    for (int i = 0; i < 9000; ++i)
        ASSERT_EQ(writer.WriteChar('f'), 1);
    EXPECT_EQ(korv::file_size(path), 16384 + 100 + 16253 + 8192);
    EXPECT_TRUE(writer.Close());
    EXPECT_EQ(dir.read("out.bin"), std::string(100, 'a') + std::string(16252, 'b') +
                                       std::string(32, 'c') + std::string(100, 'd') +
                                       std::string(16253, 'e') + std::string(9000, 'f'));
}

TEST_F(FastFileWriter, ModesCreateAppendReplaceAndRefuse) {
    ScratchDir dir;
    const std::string path = dir / "out.txt";
    dir.write("out.txt", "old");
    LogCapture log;
    KFastFileWriter writer;
    EXPECT_FALSE(writer.Open(path, korv::KFF_CREATE_NEW));
    EXPECT_FALSE(writer.Open(path, 3));
    EXPECT_TRUE(traced("openwritefile(): unknown mode 3 for " + path));
    EXPECT_EQ(dir.read("out.txt"), "old");

    ASSERT_TRUE(writer.Open(path, korv::KFF_APPEND | korv::KFF_FLUSH));
    writer.WriteString("+1");
    ASSERT_TRUE(writer.Open(path, korv::KFF_APPEND)); // closes the first, writing it out
    writer.WriteString("+2");
    EXPECT_TRUE(writer.Close());
    EXPECT_EQ(dir.read("out.txt"), "old+1+2");
    ASSERT_TRUE(writer.Open(path, korv::KFF_REPLACE));
    writer.WriteString("new");
    EXPECT_TRUE(writer.Close());
    EXPECT_EQ(dir.read("out.txt"), "new");

    { KFastFileWriter failing(path, korv::KFF_CREATE_NEW); }
    EXPECT_EQ(log.errors().back(),
              "KFastFileWriter::KFastFileWriter(): Open(\"" + path + "\",0) failed");
    take_trace();

    // Flush writes the window out yet fails on a file that stays open.
    KFastFileWriter flushing(path, korv::KFF_REPLACE);
    flushing.WriteString("held");
    EXPECT_FALSE(flushing.Flush());
    EXPECT_EQ(dir.read("out.txt"), "held");
    EXPECT_EQ(take_trace(), Lines{"KFastFileWriter::Flush(): hFile not valid"});
}

// Runs in a child whose files cannot grow at all; 0 if every check holds.
int close_without_room(const std::string& path) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_FSIZE, &none);
    KErrTrace_ClearContext();
    KFastFileWriter writer(path, korv::KFF_REPLACE);
    const bool wrote = writer.WriteString("lost") == 4; // only buffered
    const bool closed = writer.Close();
    const Lines trace = korv::diag::error_trace_lines();
    const bool traced =
        !trace.empty() && trace.back() == "KFastFileWriter::write_to_disk(): write64() failed";
    return (wrote ? 0 : 1) | (closed ? 0 : 2) | (traced ? 0 : 4) |
           (korv::file_size(path) == 0 ? 0 : 8);
}

TEST(FastFileWriterDeathTest, CloseIgnoresAFailedWriteOfTheWindow) {
    ScratchDir dir;
    EXPECT_EXIT(std::_Exit(close_without_room(dir / "out.txt")), ::testing::ExitedWithCode(0), "");
}

TEST_F(FastFileReader, BufferFormsCutAtMaxAndNeverOverrun) {
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
    EXPECT_EQ(strings.ReadString(buffer, 3, ';'), 3);
    EXPECT_EQ(strings.ReadString(buffer, 5, ';'), 2);
    EXPECT_STREQ(buffer, "ue");
    EXPECT_EQ(strings.ReadString(buffer, 5, ';'), 4);
    EXPECT_STREQ(buffer, "tail");
}

TEST_F(FastFileReader, CharactersWithLineEndingsAndRewind) {
    ScratchDir dir;
    dir.write("a.txt", "a\r\nb\rc\n\r");
    KFastFileReader reader(dir / "a.txt");
    EXPECT_FALSE(reader.UnReadChar()); // nothing read yet
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

TEST_F(FastFileReader, BulkAndBinaryReadsKeepTheirPlace) {
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

    {
        korv::KFastFileWriter writer(dir / "v.bin", korv::KFF_CREATE_NEW);
        EXPECT_EQ(writer.WriteLong(-123456) + writer.WriteShort(-2) + writer.WriteDouble(-0.5), 14);
    }
    KFastFileReader values(dir / "v.bin");
    std::int32_t l = 0;
    std::int16_t s = 0;
    double d = 0;
    EXPECT_EQ(values.ReadLong(l) + values.ReadShort(s) + values.ReadDouble(d), 14);
    EXPECT_EQ(l, -123456);
    EXPECT_EQ(s, -2);
    EXPECT_EQ(d, -0.5);
    EXPECT_TRUE(values.IsEOF()); // a long is exactly 4 bytes on disk
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

TEST_F(FastFileReader, FailuresReachTheirChannels) {
    ScratchDir dir;
    LogCapture log;
    const std::string missing = dir / "missing.txt";
    {
        KFastFileReader reader(missing);
        EXPECT_TRUE(reader.IsEOF());
        char c;
        EXPECT_EQ(reader.Read(&c, 1), -1);
    }
    EXPECT_EQ(log.errors().size(), 4u);
    EXPECT_EQ(log.errors().back(), "KFastFileReader::IsEOF(): no open file");
    EXPECT_TRUE(traced("KFastFileReader::Read(): read_from_buffer() failed"));

    // IsEOF counts a read error as the end and clears its context.
    dir.write("a.txt", "x\n");
    log.clear();
    take_trace();
    FailingReader reader(dir / "a.txt");
    EXPECT_FALSE(reader.IsEOF());
    std::string line;
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_TRUE(reader.IsEOF());
    EXPECT_EQ(log.errors(), Lines{"KFastFileReader::IsEOF(): fill_buffer() failed"});
    EXPECT_TRUE(trace().empty());
}
