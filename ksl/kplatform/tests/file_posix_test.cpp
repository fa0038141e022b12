#include "kplatform_file.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <regex>

using namespace korv::platform;
using korv::testing::ScratchRoot;

TEST(PlatformFile, TempFileNamesAreUniqueEmptyFilesInTheGivenFolder) {
    ScratchRoot root;
    std::filesystem::create_directories(root / "drive_c/Cfg");
    std::string first, second;
    ASSERT_TRUE(temp_file_name("C:\\cfg", "ffwxyz", first));
    ASSERT_TRUE(temp_file_name("C:\\cfg\\", "ffw", second));
    const std::regex shape(R"(C:\\cfg\\ffw[0-9A-F]{4}\.tmp)");
    EXPECT_TRUE(std::regex_match(first, shape)) << first;
    EXPECT_TRUE(std::regex_match(second, shape)) << second;
    EXPECT_NE(first, second);
    FileInfo info;
    ASSERT_TRUE(get_file_info(first, info));
    EXPECT_EQ(info.size, 0);
    EXPECT_EQ(info.attributes, FILE_ATTR_NORMAL);

    EXPECT_FALSE(temp_file_name("C:\\missing", "ffw", first));
    EXPECT_EQ(last_error(), static_cast<std::uint32_t>(ENOENT));
}
