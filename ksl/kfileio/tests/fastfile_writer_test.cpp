#include "errtrace.h"
#include "fastfile.h"
#include "fileops.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <vector>

using korv::KFastFileWriter;
using korv::testing::LogCapture;
using korv::testing::ScratchDir;

TEST(FastFileWriter, LinesGetCrLfAndCountTheEndingAsOneByte) {
    ScratchDir dir;
    const std::string path = dir / "out.txt";
    {
        KFastFileWriter writer(path, korv::KFF_REPLACE);
        EXPECT_EQ(writer.WriteLine("abc"), 4);
        EXPECT_EQ(writer.WriteLine("cr\rstays"), 9);
        EXPECT_EQ(writer.WriteLineNL("x\ny"), 4);
        EXPECT_EQ(writer.WriteStringNL("\n"), 1);
        EXPECT_EQ(writer.WriteString("raw\n"), 4);
        EXPECT_EQ(writer.WriteCharNL('z'), 1);
        EXPECT_EQ(writer.WriteChar('\n'), 1);
    }
    EXPECT_EQ(dir.read("out.txt"), "abc\r\ncr\rstays\r\nx\r\ny\r\n\r\nraw\nz\n");
}

TEST(FastFileWriter, LineWithLfWritesNothingAndReportsThePosition) {
    ScratchDir dir;
    KErrTrace_ClearContext();
    {
        KFastFileWriter writer(dir / "out.txt", korv::KFF_REPLACE);
        EXPECT_EQ(writer.WriteLine("ab\ncd"), -1);
    }
    EXPECT_EQ(dir.read("out.txt"), "");
    EXPECT_EQ(
        korv::diag::error_trace_lines(),
        std::vector<std::string>{"KFastFileWriter::WriteLine(): EOL detected in string at pos 2"});
    KErrTrace_ClearContext();
}

// What reaches the disk before Close shows the window's rules.
TEST(FastFileWriter, ShortWritesStayBufferedAndLongOnesGoStraightToDisk) {
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

TEST(FastFileWriter, ModesCreateAppendReplaceAndRefuse) {
    ScratchDir dir;
    const std::string path = dir / "out.txt";
    dir.write("out.txt", "old");
    LogCapture log;
    KErrTrace_ClearContext();
    KFastFileWriter writer;
    EXPECT_FALSE(writer.Open(path, korv::KFF_CREATE_NEW));
    EXPECT_EQ(korv::diag::error_trace_lines(),
              (std::vector<std::string>{"openwritefile(): CreateFile(" + path + ", ...) failed: 17",
                                        "KFastFileWriter::Open(): openwritefile(" + path +
                                            ", 0) failed"}));
    KErrTrace_ClearContext();
    EXPECT_FALSE(writer.Open(path, 3));
    EXPECT_EQ(korv::diag::error_trace_lines().front(),
              "openwritefile(): unknown mode 3 for " + path);
    KErrTrace_ClearContext();
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
    KErrTrace_ClearContext();
}

TEST(FastFileWriter, FlushWritesTheWindowYetFailsOnAnOpenFile) {
    ScratchDir dir;
    const std::string path = dir / "out.txt";
    KErrTrace_ClearContext();
    KFastFileWriter writer(path, korv::KFF_REPLACE);
    writer.WriteString("held");
    EXPECT_FALSE(writer.Flush());
    EXPECT_EQ(dir.read("out.txt"), "held");
    EXPECT_EQ(korv::diag::error_trace_lines(),
              std::vector<std::string>{"KFastFileWriter::Flush(): hFile not valid"});
    KErrTrace_ClearContext();
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
    const std::vector<std::string> trace = korv::diag::error_trace_lines();
    const bool traced =
        !trace.empty() && trace.back() == "KFastFileWriter::write_to_disk(): write64() failed";
    return (wrote ? 0 : 1) | (closed ? 0 : 2) | (traced ? 0 : 4) |
           (korv::file_size(path) == 0 ? 0 : 8);
}

TEST(FastFileWriterDeathTest, CloseIgnoresAFailedWriteOfTheWindow) {
    ScratchDir dir;
    EXPECT_EXIT(std::_Exit(close_without_room(dir / "out.txt")), ::testing::ExitedWithCode(0), "");
}
