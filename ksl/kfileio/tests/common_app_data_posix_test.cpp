#include "common_app_data.h"
#include "kdirtools.h"
#include "kplatform_system.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

using namespace korv;
using korv::testing::ScopedEnv;

namespace {

// What only POSIX has: a variable that is set but empty (Windows' C runtime
// drops it), and the cache folder as the stand-in names it, from the user.
class AppDataPosix : public korv::testing::TraceContextTest {
protected:
    korv::testing::ScratchRoot m_root;
    ScopedEnv m_env{"KORV_CONFIGPATH", ""}; // restores the variable afterwards
};

} // namespace

TEST_F(AppDataPosix, AVariableSetButEmptyIsAnEmptyBase) {
    korv::platform::set_environment("KORV_CONFIGPATH", "");
    std::string folder;
    ASSERT_TRUE(GetCommonAppDataFolder(folder));
    EXPECT_EQ(folder, "");
    // So the folder starts with a separator.
    ASSERT_TRUE(GetCommonAppDataFolderForProduct(folder, "Korv", "RigCfg", false));
    EXPECT_EQ(folder, "\\Korv\\RigCfg\\");
}

TEST_F(AppDataPosix, CacheFolderFromTheUserNameIgnoresTheVariable) {
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
