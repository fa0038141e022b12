#include "Configure.h"
#include "common.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

TEST(ConfigureTest, ExecuteAndTheInstallLanguage) {
    korv::testing::ScratchRoot root;
    Expand_ClearTable();
    Expand("");
    EXPECT_EQ(Execute({"true", "", "", true}), 0);
    EXPECT_EQ(Execute({"sh", "", "-c \"exit 3\"", true}), 3);
    EXPECT_EQ(Execute({"sh", "", "-c \"exit 3\"", false}), kExecuteNoExitCode);
    // The working directory is a Windows path below the root.
    root.write("drive_c/work/keep", "");
    EXPECT_EQ(Execute({"sh", "C:\\work", "-c \"test -f keep\"", true}), 0);
    EXPECT_EQ(Execute({"sh", "", "-c \"test -f keep\"", true}), 1);

    korv::testing::LogCapture log;
    EXPECT_EQ(Execute({"no_such_program_here", "C:\\", "-x", true}), kExecuteNoExitCode);
    EXPECT_EQ(log.errors(),
              (std::vector<std::string>{
                  "Execute(): CreateProcess() failed no_such_program_here -x (working_dir=C:\\)",
                  "Execute(): CreateProcess() failed with error [2] The system cannot find the "
                  "file specified."}));
    Expand_ClearTable();

    // The install language comes from the registry.
    EXPECT_EQ(GetInstallLanguage(), "EN");
    root.write("registry.reg", "Windows Registry Editor Version 5.00\r\n\r\n"
                               "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\Hub32\\Settings]\r\n"
                               "\"install_language\"=\"DE\"\r\n");
    EXPECT_EQ(GetInstallLanguage(), "DE");
}
