// Execute through CreateProcess: exit codes come back whole, including the
// negative ones the suite's tools end with.
#include "Configure.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

TEST(ExecuteWin32, ExitCodesWorkingFolderAndTheNoExitCodeRule) {
    korv::testing::ScratchDir dir;
    EXPECT_EQ(Execute({"cmd.exe", "", "/c exit 0", true}), 0);
    EXPECT_EQ(Execute({"cmd.exe", "", "/c exit 3", true}), 3);
    EXPECT_EQ(Execute({"cmd.exe", "", "/c exit -1", true}), -1);
    EXPECT_EQ(Execute({"cmd.exe", "", "/c exit -5", true}), -5);
    // Not waited for, never started: no exit code.
    EXPECT_EQ(Execute({"cmd.exe", "", "/c exit 3", false}), kExecuteNoExitCode);
    EXPECT_EQ(Execute({"C:\\no\\such\\program.exe", "", "", true}), kExecuteNoExitCode);
    EXPECT_EQ(Execute({"cmd.exe", "C:\\no\\such\\folder", "/c exit 0", true}), kExecuteNoExitCode);
    // The working folder is the one given.
    EXPECT_EQ(Execute({"cmd.exe", dir.path(), "/c echo here>mark.txt", true}), 0);
    EXPECT_EQ(dir.read("mark.txt"), "here\r\n");
}
