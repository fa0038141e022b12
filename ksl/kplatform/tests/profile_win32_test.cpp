// The system's profile calls, as the program uses them: a bare file name is
// in the current directory, not in the Windows folder.
#include "kplatform_folders.h"
#include "kplatform_profile.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <string>

using namespace korv::platform;

TEST(ProfileWin32, ABareNameIsInTheCurrentDirectoryAndValuesAreCutToFit) {
    korv::testing::ScratchDir dir;
    std::string before;
    ASSERT_TRUE(current_folder(before));
    ASSERT_TRUE(set_current_folder(dir.path()));
    const BOOL written = WritePrivateProfileStringA("Machine", "Name", "VD_140", "loader.ini");
    char value[4];
    const DWORD cut =
        GetPrivateProfileStringA("machine", "NAME", "", value, sizeof value, "loader.ini");
    ASSERT_TRUE(set_current_folder(before));
    EXPECT_TRUE(written);
    EXPECT_EQ(dir.read("loader.ini"), "[Machine]\r\nName=VD_140\r\n");
    EXPECT_EQ(cut, 3u);
    EXPECT_EQ(std::string(value), "VD_");

    char fallback[16];
    EXPECT_EQ(GetPrivateProfileStringA("Machine", "Missing", "none", fallback, sizeof fallback,
                                       (dir / "loader.ini").c_str()),
              4u);
    EXPECT_EQ(std::string(fallback), "none");
}
