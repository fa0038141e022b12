#include "errtrace.h"
#include "fileops.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <vector>

using namespace korv;

TEST(FileOps, KindSizeAndExistenceOfFilesFoldersAndHiddenFiles) {
    korv::testing::ScratchRoot root;
    root.write("drive_c/Data/Machine.INI", "12345");
    root.write("drive_c/Data/.hidden", "x");
    std::filesystem::create_directory(root / "drive_c/Data/Sub");
    // path, kind, size, exists, regular; the find answers wildcards too
    const struct {
        const char* path;
        int kind, size;
        bool exists, regular;
    } cases[] = {
        {"c:\\data\\machine.ini", '-', 5, true, true}, {"C:\\Data\\sub", 'd', 0, true, false},
        {"C:\\Data\\.hidden", ' ', 1, true, true},     {"C:\\Data\\none", -1, -1, false, false},
        {"C:\\data\\*.ini", '-', -1, false, false},    {"C:\\data\\S?b", 'd', -1, false, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(file_kind(c.path), c.kind) << c.path;
        EXPECT_EQ(file_size(c.path), c.size) << c.path;
        EXPECT_EQ(file_exists(c.path), c.exists) << c.path;
        EXPECT_EQ(file_is_regular(c.path), c.regular) << c.path;
    }
}

TEST(FileOps, RemoveAndRenameReplacingTheTarget) {
    korv::testing::ScratchDir dir;
    dir.write("a.txt", "a");
    dir.write("b.txt", "b");
    EXPECT_TRUE(file_rename(dir / "a.txt", dir / "b.txt"));
    EXPECT_EQ(dir.read("b.txt"), "a");
    EXPECT_FALSE(file_exists(dir / "a.txt"));
    EXPECT_FALSE(file_rename(dir / "a.txt", dir / "c.txt"));
    KErrTrace_ClearContext();

    EXPECT_TRUE(file_remove(dir / "b.txt"));
    EXPECT_FALSE(file_remove(dir / "b.txt"));
    std::filesystem::create_directory(dir / "sub");
    EXPECT_FALSE(file_remove(dir / "sub"));
    EXPECT_TRUE(std::filesystem::is_directory(dir / "sub"));
}

TEST(FileOps, DirnameAndAbsolutePaths) {
    char target[64];
    EXPECT_STREQ(file_dirname("C:\\Korv\\Cfg\\RigCfg.ini", target), "C:\\Korv\\Cfg\\");
    EXPECT_STREQ(file_dirname("rel/dir/x.ini", target), "rel/dir\\");
    EXPECT_STREQ(file_dirname("dir\\", target), "dir\\");
    EXPECT_STREQ(file_dirname("/x", target), "\\");
    std::strcpy(target, "untouched");
    EXPECT_EQ(file_dirname("name.ini", target), nullptr);
    EXPECT_EQ(file_dirname("", target), nullptr);
    EXPECT_STREQ(target, "untouched");
    char exact[sizeof "a\\b"]; // the result fits in as many bytes as the path has
    EXPECT_STREQ(file_dirname("a\\b", exact), "a\\");

    for (const char* path : {"\\x", "/", "C:", "z:\\a", "a:rel"})
        EXPECT_TRUE(file_is_absolute(path)) << path;
    for (const char* path : {"", "a", "ab", "1:\\x", "rel\\C:", ".\\x"})
        EXPECT_FALSE(file_is_absolute(path)) << path;
}
