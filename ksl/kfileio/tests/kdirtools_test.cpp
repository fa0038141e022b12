// Walks over folders on either platform: what they list, in which form, and
// how a failing callback ends them.
#include "dir_walk_fixture.h"

#include <gtest/gtest.h>

using namespace korv;
using korv::testing::Entries;

namespace {

class DirWalk : public korv::testing::DirWalkTest {};

} // namespace

TEST_F(DirWalk, WalksFilesAndDirectoriesUntilACallbackFails) {
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
    EXPECT_EQ(take_trace(), Entries{});

    int calls = 0;
    auto second_fails = [](void* data, const std::string&) {
        return ++*static_cast<int*>(data) < 2;
    };
    EXPECT_FALSE(iterateDirectory("C:\\tree", 0, nullptr, nullptr, second_fails, &calls));
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(iterateDirectory("C:\\tree", 0, nullptr, nullptr, addEntry, nullptr));
    take_trace();
    auto yes = [](void*, const std::string&) { return true; };
    auto no = [](void*, const std::string&) { return false; };
    EXPECT_FALSE(iterateDirectory("C:\\tree", KDIR_RECURSIVE, no, nullptr, yes, nullptr));
    EXPECT_EQ(take_trace(),
              Entries{"iterateDirectory(): directory callback failed for C:\\tree\\sub"});

    // deleteFile removes what the walk finds.
    EXPECT_TRUE(
        iterateDirectory("C:\\tree", KDIR_RECURSIVE, nullptr, nullptr, deleteFile, nullptr));
    EXPECT_EQ(list("C:\\tree", KDIR_RECURSIVE), (Entries{"C:\\tree\\sub", "C:\\tree\\sub\\deep"}));
    EXPECT_FALSE(deleteFile(nullptr, "C:\\tree\\gone.txt"));
    EXPECT_TRUE(traced("deleteFile(): file_remove(C:\\tree\\gone.txt) failed "));
}
