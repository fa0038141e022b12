#include "common_app_data.h"
#include "kdirtools.h"
#include "kplatform_system.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace korv;
using korv::testing::ScopedEnv;
using Lines = std::vector<std::string>;

namespace {

class AppData : public korv::testing::TraceContextTest {
protected:
    korv::testing::ScratchRoot m_root;
    ScopedEnv m_env{"KORV_CONFIGPATH", ""}; // restores the variable afterwards
};

} // namespace

TEST_F(AppData, CommonDataOfThePlatformOrOfTheVariable) {
    korv::platform::set_environment("KORV_CONFIGPATH", nullptr);
    std::string folder;
    ASSERT_TRUE(GetCommonAppDataFolder(folder));
    EXPECT_EQ(folder, "C:\\ProgramData");
    ASSERT_TRUE(GetCommonAppDataFolderForProduct(folder, "Korv", "Midspan Plugin", true));
    EXPECT_EQ(folder, "C:\\ProgramData\\Korv\\Midspan Plugin\\");
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_c/ProgramData/Korv/Midspan Plugin"));
    ASSERT_TRUE(GetCommonAppDataFolderForProduct(folder, nullptr, "KorSystemConfig", false));
    EXPECT_EQ(folder, "C:\\ProgramData\\KorSystemConfig\\");
    EXPECT_FALSE(dir_exists("C:\\ProgramData\\KorSystemConfig"));

    korv::platform::set_environment("KORV_CONFIGPATH", "D:\\cfg");
    ASSERT_TRUE(GetCommonAppDataFolderForProduct(folder, "Korv", "KorECon", true));
    EXPECT_EQ(folder, "D:\\cfg\\Korv\\KorECon\\");
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_d/cfg/Korv/KorECon"));
    // Set but empty: an empty base, so the folder starts with a separator.
    korv::platform::set_environment("KORV_CONFIGPATH", "");
    ASSERT_TRUE(GetCommonAppDataFolder(folder));
    EXPECT_EQ(folder, "");
    ASSERT_TRUE(GetCommonAppDataFolderForProduct(folder, "Korv", "RigCfg", false));
    EXPECT_EQ(folder, "\\Korv\\RigCfg\\");
}

TEST_F(AppData, BufferFormAndRefusals) {
    korv::platform::set_environment("KORV_CONFIGPATH", nullptr);
    std::string folder = "untouched";
    EXPECT_FALSE(GetCommonAppDataFolderForProduct(folder, "Korv", "", false));
    EXPECT_FALSE(GetCommonAppDataFolderForProduct(folder, "Korv", nullptr, false));
    EXPECT_EQ(take_trace().at(0), "GetCommonAppDataFolderForProduct(): no company name");
    EXPECT_EQ(folder, "untouched");

    // "C:\ProgramData\Korv\RigCfg\" is 27 bytes and needs 28 with its terminator.
    char buffer[64];
    ASSERT_TRUE(GetCommonAppDataFolderProduct(buffer, 28, "Korv", "RigCfg", false));
    EXPECT_STREQ(buffer, "C:\\ProgramData\\Korv\\RigCfg\\");
    EXPECT_FALSE(GetCommonAppDataFolderProduct(buffer, 27, "Korv", "RigCfg", false));
    EXPECT_EQ(take_trace(),
              Lines{"GetCommonAppDataFolderProduct(): folder name too long (27 <= 27)"});

    m_root.write("drive_c/ProgramData/Korv", "a file, not a folder");
    EXPECT_FALSE(GetCommonAppDataFolderProduct(buffer, sizeof buffer, "Korv", "RigCfg", true));
}

TEST_F(AppData, CacheFolderIgnoresTheVariable) {
    korv::platform::set_environment("KORV_CONFIGPATH", "D:\\cfg");
    ScopedEnv user("USER", "tester");
    std::string folder;
    ASSERT_TRUE(get_cache_data_folder(folder));
    EXPECT_EQ(folder, "C:\\Users\\tester\\AppData\\Local");
    ASSERT_TRUE(GetCacheDataFolderProduct(folder, "Korv", "RigCfg", true));
    EXPECT_EQ(folder, "C:\\Users\\tester\\AppData\\Local\\Korv\\RigCfg\\");
    EXPECT_TRUE(dir_exists(m_root.path() + "/drive_c/Users/tester/AppData/Local/Korv/RigCfg"));

    EXPECT_FALSE(GetCacheDataFolderProduct(folder, "", "RigCfg", false));
    EXPECT_FALSE(GetCacheDataFolderProduct(folder, "Korv", nullptr, false));
    char buffer[16];
    EXPECT_FALSE(GetCacheDataFolderProduct(buffer, sizeof buffer, "Korv", "RigCfg", false));
    EXPECT_TRUE(traced("GetCacheDataFolderProduct(): folder name too long (16 <= 42)"));
}
