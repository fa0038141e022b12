#include "fastfile.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using namespace korv;
using korv::testing::ScratchDir;
using korv::testing::ScratchRoot;

namespace {

std::set<std::string> names_in(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

std::string all_bytes() {
    std::string bytes;
    for (int i = 0; i < 256 * 40; ++i)
        bytes += static_cast<char>(i);
    return bytes;
}

class FastFileAtOnce : public korv::testing::TraceContextTest {};
class FastFileAtOnceDeathTest : public korv::testing::TraceContextTest {};

} // namespace

TEST_F(FastFileAtOnce, RoundTripsAppendReplaceAndTheBufferForm) {
    ScratchDir dir;
    const std::string bytes = all_bytes();
    EXPECT_EQ(KFastFile_WriteAtOnce(dir / "b.bin", bytes.data(), bytes.size(), KFF_CREATE_NEW),
              static_cast<std::int64_t>(bytes.size()));
    std::string back;
    EXPECT_EQ(KFastFile_ReadAtOnce(dir / "b.bin", back), static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(back, bytes);
    EXPECT_EQ(KFastFile_WriteAtOnce(dir / "b.bin", "+", 1, KFF_APPEND | KFF_FLUSH), 1);
    EXPECT_EQ(dir.read("b.bin"), bytes + "+");
    EXPECT_EQ(KFastFile_WriteAtOnce(dir / "b.bin", "new", 3, KFF_REPLACE | KFF_FLUSH), 3);
    EXPECT_EQ(dir.read("b.bin"), "new");

    dir.write("r.txt", "a\r\nb\rc\n");
    char buffer[32];
    EXPECT_EQ(KFastFile_ReadLinesAtOnce(dir / "r.txt", buffer, 5), 4); // "a\r\nb\r" read, 4 left
    EXPECT_EQ(std::string(buffer, 4), "a\nb\n");
}

TEST_F(FastFileAtOnce, FailuresLeaveTheFileAndEmptyTheString) {
    ScratchDir dir;
    dir.write("keep.txt", "keep");
    EXPECT_EQ(KFastFile_WriteAtOnce(dir / "keep.txt", "x", 1, KFF_CREATE_NEW), -1);
    EXPECT_EQ(dir.read("keep.txt"), "keep");
    EXPECT_TRUE(
        traced("KFastFile_WriteAtOnce(): openwritefile(" + dir / "keep.txt" + ", 0) failed"));

    const std::string missing = dir / "missing.txt";
    std::string out = "stale";
    EXPECT_EQ(KFastFile_ReadAtOnce(missing, out), -1);
    EXPECT_EQ(out, "");
    EXPECT_TRUE(traced("KFastFile_ReadAtOnce(): file_size(\"" + missing + "\") returned -1"));
    // A directory has a size (0) but cannot be read as a file.
    EXPECT_EQ(KFastFile_ReadAtOnce(dir.path(), out), -1);
    EXPECT_TRUE(
        traced("KFastFile_ReadAtOnce(): KFastFile_ReadAtOnce(\"" + dir.path() + "\",..,0) failed"));
}

TEST_F(FastFileAtOnce, EveryReplaceIsAtomicAndLeavesNoTemporaryFile) {
    ScratchRoot root;
    root.write("drive_c/Korv/Cfg/RigCfg.ini", "old content");
    const std::string path = "C:\\korv\\CFG\\rigcfg.INI"; // mixed case, as real data has
    for (const int mode :
         {KFF_REPLACE, KFF_REPLACE | KFF_ATOMIC, KFF_REPLACE | KFF_ATOMIC | KFF_FLUSH}) {
        const std::string old_text = root.read("drive_c/Korv/Cfg/RigCfg.ini");
        KFastFileReader before(path); // reads nothing until asked
        const std::string text = "mode " + std::to_string(mode);
        EXPECT_EQ(KFastFile_WriteAtOnce(path, text.data(), text.size(), mode),
                  static_cast<std::int64_t>(text.size()));
        EXPECT_EQ(root.read("drive_c/Korv/Cfg/RigCfg.ini"), text);
        // A reader of the old file still sees all of it: the file was replaced, not rewritten.
        std::string line;
        EXPECT_TRUE(before.ReadLine(line));
        EXPECT_EQ(line, old_text);
        EXPECT_EQ(names_in(root / "drive_c/Korv/Cfg"), std::set<std::string>{"RigCfg.ini"});
    }
    // A target that does not exist yet comes into being.
    EXPECT_EQ(KFastFile_WriteLinesAtOnce("c:\\KORV\\cfg\\new.ini", "x\n", 2, 10), 3);
    EXPECT_EQ(root.read("drive_c/Korv/Cfg/new.ini"), "x\r\n");
    EXPECT_EQ(names_in(root / "drive_c/Korv/Cfg").size(), 2u);
}

TEST_F(FastFileAtOnce, AtomicReplaceWithoutFolderWorksInTheCurrentDirectory) {
    ScratchDir dir;
    const std::string old_cwd = std::filesystem::current_path().string();
    ASSERT_EQ(::chdir(dir.path().c_str()), 0);
    const std::int64_t written = KFastFile_WriteAtOnce("plain.txt", "abc", 3, 10);
    ASSERT_EQ(::chdir(old_cwd.c_str()), 0);
    EXPECT_EQ(written, 3);
    EXPECT_EQ(names_in(dir.path()), std::set<std::string>{"plain.txt"});
}

TEST_F(FastFileAtOnce, AReplaceThatCannotHappenLeavesTheTargetAndNoTemporaryFile) {
    ScratchDir dir;
    std::filesystem::create_directory(dir / "target");
    dir.write("ro.txt", "read only");
    ::chmod((dir / "ro.txt").c_str(), 0444);
    for (const char* name : {"target", "ro.txt"}) {
        EXPECT_EQ(KFastFile_WriteAtOnce(dir / name, "abc", 3, KFF_REPLACE), -1) << name;
        EXPECT_TRUE(traced("KFastFile_WriteAtOnce(): openwritefile(" + dir / name + ", 2) failed"))
            << name;
    }
    EXPECT_EQ(dir.read("ro.txt"), "read only");
    EXPECT_EQ(names_in(dir.path()), (std::set<std::string>{"ro.txt", "target"}));
}

// Runs in a child whose files cannot grow past `limit` bytes; 0 if all checks hold.
template <typename Check> void run_with_file_limit(rlim_t limit, Check check) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{limit, limit};
    ::setrlimit(RLIMIT_FSIZE, &small);
    std::_Exit(check());
}

TEST_F(FastFileAtOnceDeathTest, AFailedWriteLeavesTheOldTargetWhole) {
    ScratchDir dir;
    dir.write("target.txt", "old");
    const std::string data(1000, 'n');
    for (const int mode : {KFF_REPLACE, KFF_REPLACE | KFF_ATOMIC}) {
        EXPECT_EXIT(run_with_file_limit(
                        100,
                        [&] {
                            const std::int64_t result = KFastFile_WriteLinesAtOnce(
                                dir / "target.txt", data.data(), data.size(), mode);
                            return (result == -1 ? 0 : 1) |
                                   (dir.read("target.txt") == "old" ? 0 : 2) |
                                   (names_in(dir.path()).size() == 1 ? 0 : 4) |
                                   (traced("KFastFile_WriteAtOnce(): write64() failed") ? 0 : 8);
                        }),
                    ::testing::ExitedWithCode(0), "")
            << mode;
    }
}

TEST_F(FastFileAtOnce, CopyFile) {
    ScratchDir dir;
    const std::string bytes = all_bytes();
    dir.write("src.bin", bytes);
    EXPECT_TRUE(KFastFile_CopyFile(dir / "src.bin", dir / "dst.bin", KFF_CREATE_NEW));
    EXPECT_EQ(dir.read("dst.bin"), bytes);
    EXPECT_FALSE(KFastFile_CopyFile(dir / "src.bin", dir / "dst.bin", KFF_CREATE_NEW));
    EXPECT_TRUE(traced("KFastFile_CopyFile(): KFastFile_WriteAtOnce(\"" + dir / "dst.bin" +
                       "\",..,10240,0) failed"));

    dir.write("empty.txt", "");
    EXPECT_TRUE(KFastFile_CopyFile(dir / "empty.txt", dir / "dst.bin", KFF_REPLACE));
    EXPECT_EQ(dir.read("dst.bin"), "");

    dir.write("target.txt", "untouched");
    EXPECT_FALSE(KFastFile_CopyFile(dir / "nope", dir / "target.txt", KFF_REPLACE));
    EXPECT_EQ(dir.read("target.txt"), "untouched");
    EXPECT_TRUE(traced("KFastFile_CopyFile(): file_size(\"" + dir / "nope" + "\") failed"));

    std::filesystem::create_directory(dir / "folder");
    EXPECT_TRUE(KFastFile_CopyFile(dir / "folder", dir / "target.txt", KFF_REPLACE));
    EXPECT_EQ(dir.read("target.txt"), "");
}
