#include "kplatform_file.h"
#include "kplatform_paths.h"
#include "kplatform_shell_folders.h"
#include "scratch_dir.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>

using korv::platform::native_path;
using korv::testing::ScratchRoot;

TEST(NativePath, DriveLettersLandBelowTheRootAndSeparatorsCollapse) {
    ScratchRoot root;
    EXPECT_EQ(native_path("C:\\ProgramData\\Korv"), root.path() + "/drive_c/ProgramData/Korv");
    EXPECT_EQ(native_path("d:/x"), root.path() + "/drive_d/x");
    EXPECT_EQ(native_path("E:"), root.path() + "/drive_e");
    EXPECT_EQ(native_path("C:\\\\a//b\\/c\\"), root.path() + "/drive_c/a/b/c");
    EXPECT_EQ(native_path("/tmp\\x"), "/tmp/x");
    EXPECT_EQ(native_path("rel\\dir/file.ini"), "rel/dir/file.ini");
    EXPECT_EQ(native_path(""), "");
}

TEST(NativePath, MissingComponentTakesTheEntryThatMatchesIgnoringCase) {
    ScratchRoot root;
    root.write("drive_c/Korv/SP_Support/Load.INI", "x");
    EXPECT_EQ(native_path("C:\\korv\\SP_SUPPORT\\load.ini"),
              root.path() + "/drive_c/Korv/SP_Support/Load.INI");
    // Below a folder that exists under another case, a new name keeps its case.
    EXPECT_EQ(native_path("c:\\KORV\\NewDir\\New.ini"),
              root.path() + "/drive_c/Korv/NewDir/New.ini");
    // The exact case wins over another match.
    root.write("drive_c/a/File.txt", "1");
    root.write("drive_c/a/file.txt", "2");
    EXPECT_EQ(native_path("C:\\a\\file.txt"), root.path() + "/drive_c/a/file.txt");
    EXPECT_EQ(native_path("C:\\a\\FILE.txt"), root.path() + "/drive_c/a/File.txt");
}

TEST(NativePath, ALargeFolderIsListedOnceUntilItChanges) {
    ScratchRoot root;
    for (int i = 0; i < 2000; ++i)
        root.write("drive_c/Big/Machine_" + std::to_string(i) + ".ini", "");
    // A folder read right after a change could change again unseen within
    // one tick of the file system's clock; only a settled folder is kept.
    std::this_thread::sleep_for(std::chrono::milliseconds(120));

    const std::size_t before = korv::platform::folder_listings_read();
    for (int i = 0; i < 2000; i += 97)
        EXPECT_EQ(native_path("C:\\Big\\MACHINE_" + std::to_string(i) + ".INI"),
                  root.path() + "/drive_c/Big/Machine_" + std::to_string(i) + ".ini");
    EXPECT_EQ(native_path("C:\\Big\\missing.ini"), root.path() + "/drive_c/Big/missing.ini");
    EXPECT_FALSE(korv::platform::path_exists("C:\\Big\\missing.ini"));
    EXPECT_TRUE(korv::platform::path_exists("C:\\BIG\\machine_7.ini"));
    // Big's listing, and drive_c's for "BIG".
    EXPECT_EQ(korv::platform::folder_listings_read() - before, 2u);

    // Another writer's new file is seen at once, the folder then read again.
    root.write("drive_c/Big/NEW.ini", "");
    EXPECT_EQ(native_path("C:\\Big\\new.ini"), root.path() + "/drive_c/Big/NEW.ini");
    EXPECT_TRUE(korv::platform::path_exists("C:\\Big\\New.ini"));
    root.write("drive_c/Big/new.ini", "");
    EXPECT_EQ(native_path("C:\\Big\\new.ini"), root.path() + "/drive_c/Big/new.ini");
    EXPECT_EQ(native_path("C:\\Big\\nEw.ini"), root.path() + "/drive_c/Big/NEW.ini");
    std::filesystem::remove(root.path() + "/drive_c/Big/NEW.ini");
    std::filesystem::remove(root.path() + "/drive_c/Big/new.ini");
    EXPECT_FALSE(korv::platform::path_exists("C:\\Big\\NEW.INI"));
}

TEST(SpecialFolders, AnswerInWindowsFormAndCreateBelowTheRoot) {
    ScratchRoot root;
    char path[korv::platform::MAX_PATH];
    ASSERT_TRUE(korv::platform::SHGetSpecialFolderPathA(
        nullptr, path, korv::platform::CSIDL_PROGRAM_FILESX86, true));
    EXPECT_STREQ(path, "C:\\Program Files (x86)");
    std::string folder;
    EXPECT_TRUE(korv::platform::special_folder(korv::platform::CSIDL_COMMON_APPDATA, folder));
    EXPECT_EQ(folder, "C:\\ProgramData");
    EXPECT_FALSE(korv::platform::special_folder(12345, folder));
    EXPECT_EQ(native_path("C:\\program files (x86)"), root.path() + "/drive_c/Program Files (x86)");
}
