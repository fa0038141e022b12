#include "errtrace.h"
#include "kdirtools.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace korv;
using korv::testing::ScratchRoot;

namespace {

// Each test reads the error trace of its own context.
class DirTools : public ::testing::Test {
protected:
    void SetUp() override { KErrTrace_BeginContext(); }
    void TearDown() override {
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
    }
    static std::vector<std::string> trace() { return diag::error_trace_lines(); }
    static bool traced(const std::string& text) {
        const auto lines = trace();
        return std::find(lines.begin(), lines.end(), text) != lines.end();
    }

    std::vector<std::string> list(const std::string& path, int flags, bool directories = true) {
        std::vector<std::string> entries;
        m_walked = iterateDirectory(path, flags, directories ? addEntry : nullptr, &entries,
                                    addEntry, &entries);
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    ScratchRoot m_root;
    bool m_walked = false;
};

using Entries = std::vector<std::string>;

mode_t mode_of(const std::string& host) {
    struct stat st;
    return ::stat(host.c_str(), &st) == 0 ? (st.st_mode & 07777) : 0;
}

// Looks at files as an unprivileged user for its lifetime, so that a test
// run as root meets permissions too.
class Unprivileged {
public:
    Unprivileged() { ::setfsuid(65534); }
    ~Unprivileged() { ::setfsuid(0); }
};

} // namespace

TEST_F(DirTools, SingleLevelsInWindowsForm) {
    EXPECT_FALSE(dir_exists("C:\\Data"));
    EXPECT_FALSE(dir_mk("C:\\Data")); // no drive folder yet
    m_root.write("drive_c/.keep", "");
    EXPECT_TRUE(dir_mk("C:\\Data"));
    EXPECT_TRUE(dir_exists("c:/DATA\\"));
    EXPECT_FALSE(dir_mk("c:\\data")); // it exists, in another case
    EXPECT_FALSE(dir_mk("C:\\Data\\a\\b"));
    EXPECT_FALSE(dir_exists("C:\\.keep")); // a file
    EXPECT_FALSE(dir_exists(""));

    std::string cwd;
    ASSERT_TRUE(dir_getwd(cwd));
    char expected[PATH_MAX];
    EXPECT_EQ(cwd, ::getcwd(expected, sizeof expected));
    EXPECT_TRUE(dir_setwd("C:\\Data"));
    std::string moved;
    ASSERT_TRUE(dir_getwd(moved));
    EXPECT_EQ(moved, m_root.path() + "/drive_c/Data");
    EXPECT_TRUE(dir_setwd("C:\\no such folder")); // reports true in every case
    EXPECT_TRUE(dir_setwd(cwd));
}

TEST_F(DirTools, CreatesEveryMissingLevel) {
    m_root.write("drive_c/Korv/.keep", "");
    ASSERT_TRUE(createDirectoryRecursive("C:\\KORV\\Midspan Plugin/logs\\\\old\\"));
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_c/Korv/Midspan Plugin/logs/old"));
    EXPECT_TRUE(createDirectoryRecursive("c:\\korv\\midspan plugin")); // exists: nothing to do
    // Another drive gets its folder below the root.
    ASSERT_TRUE(createDirectoryRecursive("D:\\data\\x"));
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_d/data/x"));
    EXPECT_TRUE(trace().empty());

    // A relative path lies below the working directory.
    std::string cwd;
    ASSERT_TRUE(dir_getwd(cwd));
    ASSERT_TRUE(dir_setwd("D:\\data"));
    const bool made = createDirectoryRecursive("rel\\deeper");
    ASSERT_TRUE(dir_setwd(cwd));
    EXPECT_TRUE(made);
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_d/data/rel/deeper"));
}

TEST_F(DirTools, CreationFailuresAreTraced) {
    // A drive alone names no directory to make.
    EXPECT_FALSE(createDirectoryRecursive("E:\\/"));
    EXPECT_TRUE(traced("korv::createDirectoryRecursive(): Malformed path \"E:\\/\""));
    EXPECT_FALSE(createDirectoryRecursive("E:"));
    EXPECT_TRUE(traced("korv::createDirectoryRecursive(): Malformed path \"E:\""));
    EXPECT_TRUE(createDirectoryRecursive("\\/")); // the root exists

    KErrTrace_ClearContext();
    m_root.write("drive_c/file", "in the way");
    EXPECT_FALSE(createDirectoryRecursive("C:\\file\\sub"));
    EXPECT_EQ(trace(), (Entries{"createDirectoryRecursive(): dir_mk(C:\\file) failed",
                                "createDirectoryRecursive(): want to create \"C:\\file\\sub\"",
                                "createDirectoryRecursive(): system error: [17] \"File exists\""}));
}

TEST_F(DirTools, WalksFilesAndDirectories) {
    m_root.write("drive_c/tree/a.txt", "a");
    m_root.write("drive_c/tree/.hidden", "h");
    m_root.write("drive_c/tree/sub/b.txt", "b");
    m_root.write("drive_c/tree/sub/deep/c.txt", "c");

    EXPECT_EQ(
        list("C:\\tree", KDIR_RECURSIVE),
        (Entries{"C:\\tree\\.hidden", "C:\\tree\\a.txt", "C:\\tree\\sub", "C:\\tree\\sub\\b.txt",
                 "C:\\tree\\sub\\deep", "C:\\tree\\sub\\deep\\c.txt"}));
    EXPECT_TRUE(m_walked);
    EXPECT_EQ(list("c:/TREE/", 0), (Entries{"c:/TREE\\.hidden", "c:/TREE\\a.txt", "c:/TREE\\sub"}));
    EXPECT_EQ(list("C:\\tree", KDIR_RECURSIVE, false),
              (Entries{"C:\\tree\\.hidden", "C:\\tree\\a.txt", "C:\\tree\\sub\\b.txt",
                       "C:\\tree\\sub\\deep\\c.txt"}));
    EXPECT_TRUE(trace().empty());
}

TEST_F(DirTools, ACallbackEndsTheWalk) {
    m_root.write("drive_c/tree/a.txt", "a");
    m_root.write("drive_c/tree/b.txt", "b");
    m_root.write("drive_c/tree/c.txt", "c");
    int calls = 0;
    auto second_fails = [](void* data, const std::string&) {
        return ++*static_cast<int*>(data) < 2;
    };
    EXPECT_FALSE(iterateDirectory("C:\\tree", 0, nullptr, nullptr, second_fails, &calls));
    EXPECT_EQ(calls, 2);
    ASSERT_EQ(trace().size(), 1u);
    EXPECT_EQ(trace()[0].rfind("iterateDirectory(): file callback failed for C:\\tree\\", 0), 0u);

    KErrTrace_ClearContext();
    EXPECT_FALSE(iterateDirectory("C:\\tree", 0, nullptr, nullptr, addEntry, nullptr));
    EXPECT_EQ(trace().at(0), "addEntry(): no vector<string> *listOfEntries provided");

    KErrTrace_ClearContext();
    m_root.write("drive_c/dirs/one/x", "");
    EXPECT_FALSE(iterateDirectory(
        "C:\\dirs", KDIR_RECURSIVE, [](void*, const std::string&) { return false; }, nullptr,
        addEntry, nullptr));
    EXPECT_EQ(trace(),
              (Entries{"iterateDirectory(): directory callback failed for C:\\dirs\\one"}));
}

TEST_F(DirTools, FoldersThatCantBeReadAreLoggedAndSkipped) {
    EXPECT_EQ(list("C:\\missing", 0), Entries{});
    EXPECT_FALSE(m_walked);
    EXPECT_EQ(
        trace(),
        (Entries{"iterateDirectory(): FindFirstFile(C:\\missing\\*) == INVALID_HANDLE_VALUE"}));

    m_root.write("drive_c/file.txt", "");
    EXPECT_EQ(list("C:\\file.txt", 0), Entries{});
    EXPECT_FALSE(m_walked);

    KErrTrace_ClearContext();
    EXPECT_EQ(list("C:\\" + std::string(300, 'x'), 0), Entries{});
    EXPECT_FALSE(m_walked);
    EXPECT_EQ(trace().size(), 1u);

    // An unreadable folder in the tree: the rest is still walked.
    KErrTrace_ClearContext();
    m_root.write("drive_c/tree/a.txt", "a");
    m_root.write("drive_c/tree/locked/secret.txt", "s");
    m_root.write("drive_c/tree/z/b.txt", "b");
    for (const char* folder : {"", "/drive_c", "/drive_c/tree", "/drive_c/tree/z"})
        ASSERT_EQ(::chmod((m_root.path() + folder).c_str(), 0755), 0);
    ASSERT_EQ(::chmod((m_root.path() + "/drive_c/tree/locked").c_str(), 0), 0);
    Entries entries;
    {
        Unprivileged nobody;
        entries = list("C:\\tree", KDIR_RECURSIVE);
    }
    EXPECT_FALSE(m_walked);
    EXPECT_EQ(entries, (Entries{"C:\\tree\\a.txt", "C:\\tree\\locked", "C:\\tree\\z",
                                "C:\\tree\\z\\b.txt"}));
    EXPECT_EQ(
        trace(),
        (Entries{
            "iterateDirectory(): FindFirstFile(C:\\tree\\locked\\*) == INVALID_HANDLE_VALUE"}));
}

TEST_F(DirTools, DeleteFileRemovesWhatTheWalkFinds) {
    m_root.write("drive_c/tree/a.txt", "a");
    m_root.write("drive_c/tree/sub/b.txt", "b");
    EXPECT_TRUE(
        iterateDirectory("C:\\tree", KDIR_RECURSIVE, nullptr, nullptr, deleteFile, nullptr));
    EXPECT_EQ(list("C:\\tree", KDIR_RECURSIVE), (Entries{"C:\\tree\\sub"}));
    EXPECT_FALSE(deleteFile(nullptr, "C:\\tree\\gone.txt"));
    EXPECT_TRUE(traced("deleteFile(): file_remove(C:\\tree\\gone.txt) failed "));
}

TEST_F(DirTools, CopiesATreeIntoANewDirectory) {
    m_root.write("drive_c/src/a.txt", "alpha");
    m_root.write("drive_c/src/sub/b.txt", "beta");
    m_root.write("drive_c/src/sub/deep/c.txt", "gamma");
    m_root.write("drive_c/src/empty/.keep", "");
    ::umask(022);
    ASSERT_EQ(::chmod((m_root.path() + "/drive_c/src/a.txt").c_str(), 0750), 0);

    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\dst", true, true))
        << ::testing::PrintToString(trace());
    EXPECT_EQ(m_root.read("drive_c/dst/a.txt"), "alpha");
    EXPECT_EQ(m_root.read("drive_c/dst/sub/b.txt"), "beta");
    EXPECT_EQ(m_root.read("drive_c/dst/sub/deep/c.txt"), "gamma");
    EXPECT_TRUE(dir_exists("C:\\dst\\empty"));
    EXPECT_EQ(mode_of(m_root.path() + "/drive_c/dst/a.txt"), 0750u); // "keep"

    // Without recursion only the files at the top, and "discard" leaves modes alone.
    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\flat", false, false));
    EXPECT_EQ(list("C:\\flat", KDIR_RECURSIVE), (Entries{"C:\\flat\\a.txt"}));
    EXPECT_NE(mode_of(m_root.path() + "/drive_c/flat/a.txt"), 0750u);

    EXPECT_FALSE(copyDirectory("C:\\src", "C:\\dst", true, true));
    EXPECT_TRUE(traced("copyDirectory(): directory \"C:\\dst\" already exist"));
    EXPECT_FALSE(copyDirectory("C:\\src", "C:\\no\\such", true, true));
    EXPECT_TRUE(traced("copyDirectory(): dir_mk(C:\\no\\such) failed"));
}

TEST_F(DirTools, ATargetInsideTheSourceIsRefusedOnlyWhenRecursive) {
    m_root.write("drive_c/a/file.txt", "x");
    m_root.write("drive_c/a/b/.keep", "");
    EXPECT_FALSE(
        copy_directory("c:\\a", "c:\\a\\b", true, true, false, copyFile, create_directory));
    EXPECT_EQ(trace(),
              (Entries{"copy_directory(): cannot recursively copy directories because 'target' "
                       "is a subdirectory of 'source' (c:\\a,c:\\a\\b)."}));
    EXPECT_EQ(list("C:\\a\\b", 0), (Entries{"C:\\a\\b\\.keep"}));
    // Spelled otherwise, it is still the same folder.
    EXPECT_FALSE(
        copy_directory("C:/A/", "c:\\a\\B\\new", true, true, false, copyFile, create_directory));

    KErrTrace_ClearContext();
    EXPECT_TRUE(
        copy_directory("c:\\a", "c:\\a\\b", false, true, false, copyFile, create_directory));
    EXPECT_EQ(m_root.read("drive_c/a/b/file.txt"), "x");
    // A sibling whose name only starts like the source is no subdirectory.
    EXPECT_TRUE(createDirectoryRecursive("C:\\ab"));
    EXPECT_TRUE(copy_directory("c:\\a", "c:\\ab", true, true, false, copyFile, create_directory));
}

TEST_F(DirTools, MergingOverwritesAndKeepsWhatIsThere) {
    m_root.write("drive_c/src/a.txt", "new a");
    m_root.write("drive_c/src/sub/b.txt", "new b");
    m_root.write("drive_c/dst/a.txt", "old a");
    m_root.write("drive_c/dst/sub/own.txt", "own");

    // Without "overwrite" an existing file stops the copy.
    EXPECT_FALSE(
        copy_directory("C:\\src", "C:\\dst", true, true, false, copyFile, create_directory));
    EXPECT_EQ(m_root.read("drive_c/dst/a.txt"), "old a");

    KErrTrace_ClearContext();
    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\dst")) << ::testing::PrintToString(trace());
    EXPECT_EQ(m_root.read("drive_c/dst/a.txt"), "new a");
    EXPECT_EQ(m_root.read("drive_c/dst/sub/b.txt"), "new b");
    EXPECT_EQ(m_root.read("drive_c/dst/sub/own.txt"), "own");
    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\fresh\\merge"));
    EXPECT_EQ(m_root.read("drive_c/fresh/merge/sub/b.txt"), "new b");

    EXPECT_FALSE(copyFile(nullptr, "C:\\src\\a.txt"));
}
