#include "kplatform_process.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

using korv::platform::Process;
using korv::platform::split_command_line;
using korv::testing::ScratchRoot;

using Args = std::vector<std::string>;

TEST(CommandLine, SplitsByTheWindowsRules) {
    // The examples of the C runtime's documentation, behind a program name.
    EXPECT_EQ(split_command_line("p \"a b c\" d e"), (Args{"p", "a b c", "d", "e"}));
    EXPECT_EQ(split_command_line("p \"ab\\\"c\" \"\\\\\" d"), (Args{"p", "ab\"c", "\\", "d"}));
    EXPECT_EQ(split_command_line("p a\\\\\\b d\"e f\"g h"), (Args{"p", "a\\\\\\b", "de fg", "h"}));
    EXPECT_EQ(split_command_line("p a\\\\\\\"b c d"), (Args{"p", "a\\\"b", "c", "d"}));
    EXPECT_EQ(split_command_line("p a\\\\\\\\\"b c\" d e"), (Args{"p", "a\\\\b c", "d", "e"}));
    EXPECT_EQ(split_command_line("p a\"b\"\" c d"), (Args{"p", "ab\"", "c", "d"}));

    // The program takes quotes but no escapes; blanks and empty arguments.
    EXPECT_EQ(split_command_line("\"C:\\Program Files\\x.exe\"\t \"\" end\\"),
              (Args{"C:\\Program Files\\x.exe", "", "end\\"}));
    EXPECT_EQ(split_command_line("C:\\dir\\\"x\" \"unterminated arg"),
              (Args{"C:\\dir\\x", "unterminated arg"}));
    EXPECT_EQ(split_command_line(""), (Args{""}));
}

namespace {

// A script below the root that records its arguments and ends with `code`.
void install_tool(ScratchRoot& root, const std::string& relative, int code) {
    root.write(relative, "#!/bin/sh\nprintf '%s|' \"$@\" > \"$(dirname \"$0\")/args.txt\"\nexit " +
                             std::to_string(code) + "\n");
    ASSERT_EQ(::chmod((root / relative).c_str(), 0755), 0);
}

} // namespace

TEST(Process, RunsWithoutAShellAndGivesTheExitCode) {
    ScratchRoot root;
    install_tool(root, "drive_c/Program Files/korv/bin/tool", 7);

    // An unquoted path with blanks is found, and ".exe" means the file without it.
    Process process;
    ASSERT_TRUE(
        process.start("C:\\Program Files\\korv\\bin\\tool.exe a \"b c\" d\\\"e $HOME;x", ""))
        << process.error();
    EXPECT_EQ(process.program(), root.path() + "/drive_c/Program Files/korv/bin/tool");
    std::uint32_t code = 0;
    EXPECT_FALSE(process.exit_code(code)); // not waited for yet
    ASSERT_TRUE(process.wait());
    ASSERT_TRUE(process.exit_code(code));
    EXPECT_EQ(code, 7u);
    EXPECT_EQ(root.read("drive_c/Program Files/korv/bin/args.txt"), "a|b c|d\"e|$HOME;x|");

    Process quoted;
    ASSERT_TRUE(quoted.start("\"c:\\program files\\KORV\\bin\\tool\" x", ""));
    ASSERT_TRUE(quoted.wait());
    EXPECT_EQ(root.read("drive_c/Program Files/korv/bin/args.txt"), "x|");
}

// How runs that did start end: in their working directory, with their exit
// code or, killed by a signal, without one, and without the parent's handles.
TEST(Process, RunsEndWithTheirExitCodeInTheirFolder) {
    ScratchRoot root;
    root.write("drive_c/Work Dir/.keep", "");
    const int fd = ::open("/dev/null", O_RDONLY); // deliberately inheritable
    ASSERT_GE(fd, 0);
    // command, working directory, exit code (-1: none)
    const std::tuple<std::string, const char*, int> runs[] = {
        {"sh -c \"pwd > here.txt; exit 255\"", "c:\\work dir", 255}, // what -1 becomes on POSIX
        {"sh -c \"kill -9 $$\"", "", -1},
        {"sh -c \"test -e /proc/self/fd/" + std::to_string(fd) + " && exit 1; exit 0\"", "", 0}};
    for (const auto& [command, folder, expected] : runs) {
        Process process;
        ASSERT_TRUE(process.start(command, folder)) << command;
        ASSERT_TRUE(process.wait()) << command;
        std::uint32_t code = 99;
        EXPECT_EQ(process.exit_code(code), expected >= 0) << command;
        if (expected >= 0) {
            EXPECT_EQ(code, static_cast<std::uint32_t>(expected)) << command;
        }
    }
    ::close(fd);
    EXPECT_EQ(root.read("drive_c/Work Dir/here.txt"), root.path() + "/drive_c/Work Dir\n");
}

TEST(Process, AFailedStartTellsWhy) {
    ScratchRoot root;
    Process missing;
    EXPECT_FALSE(missing.start("C:\\nowhere\\tool.exe arg", ""));
    EXPECT_EQ(missing.error(), ENOENT);
    EXPECT_FALSE(missing.wait());

    Process no_folder;
    EXPECT_FALSE(no_folder.start("sh -c \"exit 0\"", "C:\\no such folder"));
    EXPECT_EQ(no_folder.error(), ENOENT);

    root.write("drive_c/plain.txt", "not a program");
    Process not_executable;
    EXPECT_FALSE(not_executable.start("C:\\plain.txt", ""));
    EXPECT_EQ(not_executable.error(), EACCES);

    Process empty;
    EXPECT_FALSE(empty.start("", ""));
}
