// Folders on either platform: existence, creation, the current directory and
// the identity that tells one folder under two names.
#include "kplatform_folders.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <string>

using namespace korv::platform;

TEST(Folders, CreateExistCurrentAndIdentity) {
    korv::testing::ScratchDir dir;
    const std::string sub = dir.path() + "\\sub";
    EXPECT_FALSE(folder_exists(sub));
    EXPECT_TRUE(create_folder(sub));
    EXPECT_FALSE(create_folder(sub));            // there already
    EXPECT_FALSE(create_folder(sub + "\\a\\b")); // one level only
    EXPECT_TRUE(folder_exists(sub));
    dir.write("file.txt", "x");
    EXPECT_FALSE(folder_exists(dir.path() + "\\file.txt"));

    std::string before;
    ASSERT_TRUE(current_folder(before));
    ASSERT_TRUE(set_current_folder(sub));
    std::string now;
    EXPECT_TRUE(current_folder(now));
    FolderId here, same, parent, other;
    EXPECT_TRUE(folder_id(".", here));
    EXPECT_TRUE(folder_id("..", parent));
    ASSERT_TRUE(set_current_folder(before));
    EXPECT_FALSE(set_current_folder(dir.path() + "\\missing"));

    EXPECT_TRUE(folder_id(now, same));
    EXPECT_TRUE(folder_id(dir.path() + "\\sub\\..\\sub", other));
    EXPECT_EQ(here, same);
    EXPECT_EQ(here, other);
    FolderId top;
    EXPECT_TRUE(folder_id(dir.path(), top));
    EXPECT_EQ(parent, top);
    EXPECT_FALSE(here == top);
    EXPECT_FALSE(folder_id(dir.path() + "\\missing", other));
}
