// The common data folder, the system's or the one KORV_CONFIGPATH names, on
// either platform.
#include "common_app_data.h"
#include "kdirtools.h"
#include "kplatform_system.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

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
    EXPECT_TRUE(dir_exists("C:\\ProgramData\\Korv\\Midspan Plugin"));
    ASSERT_TRUE(GetCommonAppDataFolderForProduct(folder, nullptr, "KorSystemConfig", false));
    EXPECT_EQ(folder, "C:\\ProgramData\\KorSystemConfig\\");
    EXPECT_FALSE(dir_exists("C:\\ProgramData\\KorSystemConfig"));

    korv::platform::set_environment("KORV_CONFIGPATH", "C:\\cfg");
    ASSERT_TRUE(GetCommonAppDataFolderForProduct(folder, "Korv", "KorECon", true));
    EXPECT_EQ(folder, "C:\\cfg\\Korv\\KorECon\\");
    EXPECT_TRUE(dir_exists("C:\\cfg\\Korv\\KorECon"));
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
