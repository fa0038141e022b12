#include "dir_walk_fixture.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace korv;
using korv::testing::Entries;

namespace {

class DirTools : public korv::testing::DirWalkTest {
protected:
    mode_t mode_of(const std::string& relative) const {
        struct stat st;
        return ::stat((m_root / relative).c_str(), &st) == 0 ? (st.st_mode & 07777) : 0;
    }
};

} // namespace

TEST_F(DirTools, SingleLevelsAndTheWorkingDirectory) {
    EXPECT_FALSE(dir_mk("C:\\Data")); // no drive folder yet
    m_root.write("drive_c/.keep", "");
    EXPECT_TRUE(dir_mk("C:\\Data"));
    EXPECT_TRUE(dir_exists("c:/DATA\\"));
    EXPECT_FALSE(dir_mk("c:\\data")); // it exists, in another case
    EXPECT_FALSE(dir_mk("C:\\Data\\a\\b"));
    EXPECT_FALSE(dir_exists("C:\\.keep")); // a file
    EXPECT_FALSE(dir_exists(""));

    std::string cwd, moved;
    ASSERT_TRUE(dir_getwd(cwd));
    char expected[PATH_MAX];
    EXPECT_EQ(cwd, ::getcwd(expected, sizeof expected));
    EXPECT_TRUE(dir_setwd("C:\\Data"));
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
    ASSERT_TRUE(createDirectoryRecursive("D:\\data\\x")); // another drive, below the root
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_d/data/x"));
    EXPECT_TRUE(createDirectoryRecursive("\\/")); // the root exists
    EXPECT_EQ(take_trace(), Entries{});

    // A relative path lies below the working directory.
    std::string cwd;
    ASSERT_TRUE(dir_getwd(cwd));
    ASSERT_TRUE(dir_setwd("D:\\data"));
    const bool made = createDirectoryRecursive("rel\\deeper");
    ASSERT_TRUE(dir_setwd(cwd));
    EXPECT_TRUE(made);
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_d/data/rel/deeper"));

    // A drive alone names no directory to make.
    EXPECT_FALSE(createDirectoryRecursive("E:\\/"));
    EXPECT_FALSE(createDirectoryRecursive("E:"));
    m_root.write("drive_c/file", "in the way");
    EXPECT_FALSE(createDirectoryRecursive("C:\\file\\sub"));
    EXPECT_TRUE(traced("createDirectoryRecursive(): dir_mk(C:\\file) failed"));
}

TEST_F(DirTools, FoldersThatCantBeReadAreLoggedAndSkipped) {
    m_root.write("drive_c/file.txt", "");
    for (const std::string& path : {std::string("C:\\missing"), std::string("C:\\file.txt"),
                                    "C:\\" + std::string(300, 'x')}) {
        EXPECT_EQ(list(path, 0), Entries{});
        EXPECT_FALSE(m_walked);
        EXPECT_EQ(take_trace().size(), 1u);
    }
    // An unreadable folder in the tree: the rest is still walked.
    m_root.write("drive_c/tree/a.txt", "a");
    m_root.write("drive_c/tree/locked/secret.txt", "s");
    m_root.write("drive_c/tree/z/b.txt", "b");
    for (const char* folder : {"", "/drive_c", "/drive_c/tree", "/drive_c/tree/z"})
        ASSERT_EQ(::chmod((m_root.path() + folder).c_str(), 0755), 0);
    ASSERT_EQ(::chmod((m_root.path() + "/drive_c/tree/locked").c_str(), 0), 0);
    ::setfsuid(65534); // as an unprivileged user, so that a run as root meets permissions too
    const Entries entries = list("C:\\tree", KDIR_RECURSIVE);
    ::setfsuid(0);
    EXPECT_FALSE(m_walked);
    EXPECT_EQ(entries, (Entries{"C:\\tree\\a.txt", "C:\\tree\\locked", "C:\\tree\\z",
                                "C:\\tree\\z\\b.txt"}));
    EXPECT_EQ(take_trace(), Entries{"iterateDirectory(): FindFirstFile(C:\\tree\\locked\\*) == "
                                    "INVALID_HANDLE_VALUE"});
}

TEST_F(DirTools, LinksBackUpTheTreeAreListedButNotEntered) {
    m_root.write("drive_c/tree/a.txt", "a");
    m_root.write("drive_c/tree/sub/b.txt", "b");
    m_root.write("drive_c/other/c.txt", "c");
    for (const auto& [target, link] :
         {std::pair{".", "tree/self"}, std::pair{"..", "tree/sub/up"},
          std::pair{"../sub", "tree/sub/again"}, std::pair{"../other", "tree/aside"}})
        std::filesystem::create_directory_symlink(target,
                                                  m_root / (std::string("drive_c/") + link));
    // A link to a folder elsewhere is walked as any folder.
    EXPECT_EQ(list("C:\\tree", KDIR_RECURSIVE),
              (Entries{"C:\\tree\\a.txt", "C:\\tree\\aside", "C:\\tree\\aside\\c.txt",
                       "C:\\tree\\self", "C:\\tree\\sub", "C:\\tree\\sub\\again",
                       "C:\\tree\\sub\\b.txt", "C:\\tree\\sub\\up"}));
    EXPECT_TRUE(m_walked);
}

TEST_F(DirTools, CopiesATreeIntoANewDirectory) {
    m_root.write("drive_c/src/a.txt", "alpha");
    m_root.write("drive_c/src/sub/deep/c.txt", "gamma");
    m_root.write("drive_c/src/empty/.keep", "");
    ::umask(022);
    ASSERT_EQ(::chmod((m_root / "drive_c/src/a.txt").c_str(), 0750), 0);
    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\dst", true, true));
    EXPECT_EQ(m_root.read("drive_c/dst/a.txt"), "alpha");
    EXPECT_EQ(m_root.read("drive_c/dst/sub/deep/c.txt"), "gamma");
    EXPECT_TRUE(dir_exists("C:\\dst\\empty"));
    EXPECT_EQ(mode_of("drive_c/dst/a.txt"), 0750u); // "keep"
    // Without recursion only the files at the top, and "discard" leaves modes alone.
    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\flat", false, false));
    EXPECT_EQ(list("C:\\flat", KDIR_RECURSIVE), (Entries{"C:\\flat\\a.txt"}));
    EXPECT_NE(mode_of("drive_c/flat/a.txt"), 0750u);

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
    EXPECT_EQ(list("C:\\a\\b", 0), (Entries{"C:\\a\\b\\.keep"}));
    // Spelled otherwise, it is still the same folder.
    EXPECT_FALSE(
        copy_directory("C:/A/", "c:\\a\\B\\new", true, true, false, copyFile, create_directory));
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

    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\dst"));
    EXPECT_EQ(m_root.read("drive_c/dst/a.txt"), "new a");
    EXPECT_EQ(m_root.read("drive_c/dst/sub/b.txt"), "new b");
    EXPECT_EQ(m_root.read("drive_c/dst/sub/own.txt"), "own");
    ASSERT_TRUE(copyDirectory("C:\\src", "C:\\fresh\\merge"));
    EXPECT_EQ(m_root.read("drive_c/fresh/merge/sub/b.txt"), "new b");
    EXPECT_FALSE(copyFile(nullptr, "C:\\src\\a.txt"));
}
