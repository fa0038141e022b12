#include "errtrace.h"
#include "fileops.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <vector>

using namespace korv;
using korv::testing::ScratchDir;
using korv::testing::ScratchRoot;

TEST(FileOps, KindSizeAndExistenceOfFilesFoldersAndHiddenFiles) {
    ScratchRoot root;
    root.write("drive_c/Data/Machine.INI", "12345");
    root.write("drive_c/Data/.hidden", "x");
    std::filesystem::create_directory(root / "drive_c/Data/Sub");

    EXPECT_TRUE(file_exists("c:\\data\\machine.ini"));
    EXPECT_TRUE(file_exists("C:\\Data\\Sub"));
    EXPECT_FALSE(file_exists("C:\\Data\\none"));

    EXPECT_EQ(file_kind("C:\\DATA\\Machine.ini"), '-');
    EXPECT_EQ(file_kind("C:\\Data\\sub"), 'd');
    EXPECT_EQ(file_kind("C:\\Data\\.hidden"), ' ');
    EXPECT_EQ(file_kind("C:\\Data\\none"), -1);
    EXPECT_EQ(file_kind("C:\\data\\*.ini"), '-'); // the find answers wildcards too
    EXPECT_EQ(file_kind("C:\\data\\S?b"), 'd');
    EXPECT_EQ(file_kind("C:\\data\\*.none"), -1);

    EXPECT_EQ(file_size("c:/data/machine.ini"), 5);
    EXPECT_EQ(file_size("C:\\Data\\Sub"), 0);
    EXPECT_EQ(file_size("C:\\Data\\none"), -1);

    EXPECT_TRUE(file_is_regular("C:\\Data\\Machine.INI"));
    EXPECT_FALSE(file_is_regular("C:\\Data\\Sub"));
    EXPECT_FALSE(file_is_regular("C:\\Data\\none"));
}

TEST(FileOps, RemoveAndRenameReplacingTheTarget) {
    ScratchDir dir;
    KErrTrace_ClearContext();
    dir.write("a.txt", "a");
    dir.write("b.txt", "b");
    EXPECT_TRUE(file_rename(dir / "a.txt", dir / "b.txt"));
    EXPECT_EQ(dir.read("b.txt"), "a");
    EXPECT_FALSE(file_exists(dir / "a.txt"));

    EXPECT_FALSE(file_rename(dir / "a.txt", dir / "c.txt"));
    EXPECT_EQ(diag::error_trace_lines(),
              std::vector<std::string>{"file_rename(): MoveFileEx(" + dir / "a.txt" + "," +
                                       dir / "c.txt" + ") failed: 2"});
    KErrTrace_ClearContext();

    EXPECT_TRUE(file_remove(dir / "b.txt"));
    EXPECT_FALSE(file_remove(dir / "b.txt"));
    std::filesystem::create_directory(dir / "sub");
    EXPECT_FALSE(file_remove(dir / "sub"));
    EXPECT_TRUE(std::filesystem::is_directory(dir / "sub"));
}

TEST(FileOps, DirnameEndsInBackslashOrLeavesTheTargetAlone) {
    char target[64];
    EXPECT_STREQ(file_dirname("C:\\Korv\\Cfg\\RigCfg.ini", target), "C:\\Korv\\Cfg\\");
    EXPECT_STREQ(file_dirname("rel/dir/x.ini", target), "rel/dir\\");
    EXPECT_STREQ(file_dirname("dir\\", target), "dir\\");
    EXPECT_STREQ(file_dirname("/x", target), "\\");
    std::strcpy(target, "untouched");
    EXPECT_EQ(file_dirname("name.ini", target), nullptr);
    EXPECT_EQ(file_dirname("", target), nullptr);
    EXPECT_STREQ(target, "untouched");
    // The result fits in as many bytes as the path has.
    char exact[sizeof "a\\b"];
    EXPECT_STREQ(file_dirname("a\\b", exact), "a\\");
}

TEST(FileOps, AbsolutePaths) {
    for (const char* path : {"\\x", "/", "C:", "z:\\a", "a:rel"})
        EXPECT_TRUE(file_is_absolute(path)) << path;
    for (const char* path : {"", "a", "ab", "1:\\x", "rel\\C:", ".\\x"})
        EXPECT_FALSE(file_is_absolute(path)) << path;
}
