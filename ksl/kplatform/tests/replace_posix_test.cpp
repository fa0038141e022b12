#include "kplatform_replace.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <regex>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace korv::platform;
using korv::testing::ScratchRoot;
namespace fs = std::filesystem;

namespace {

std::set<std::string> names_in(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename().string());
    return names;
}

mode_t mode_of(const std::string& path) {
    struct stat st {};
    ::stat(path.c_str(), &st);
    return st.st_mode & 07777;
}

// A pid that no process holds: a child that has ended and been reaped.
pid_t gone_pid() {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    ::waitpid(child, nullptr, 0);
    return child;
}

} // namespace

TEST(ReplaceFile, ReplacesWholeKeepsBitsAndFollowsLinks) {
    ScratchRoot root;
    root.write("drive_c/Cfg/Old.ini", "old");
    ::chmod((root / "drive_c/Cfg/Old.ini").c_str(), 0640);
    fs::create_symlink("Old.ini", root / "drive_c/Cfg/link.ini");

    // Windows form, another case: the existing file is found and keeps its bits.
    ASSERT_TRUE(replace_file("C:\\cfg\\OLD.INI", "new\r\n"));
    EXPECT_EQ(root.read("drive_c/Cfg/Old.ini"), "new\r\n");
    EXPECT_EQ(mode_of(root / "drive_c/Cfg/Old.ini"), 0640u);
    // Through the link: the link stays a link, the file it names changes.
    ASSERT_TRUE(replace_file(root / "drive_c/Cfg/link.ini", "linked"));
    EXPECT_TRUE(fs::is_symlink(root / "drive_c/Cfg/link.ini"));
    EXPECT_EQ(root.read("drive_c/Cfg/Old.ini"), "linked");
    // A new file gets what an ordinary create gives.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ASSERT_TRUE(replace_file("C:\\Cfg\\fresh.ini", std::string_view()));
    EXPECT_EQ(root.read("drive_c/Cfg/fresh.ini"), "");
    EXPECT_EQ(mode_of(root / "drive_c/Cfg/fresh.ini"), 0666u & ~mask);
    // A name near the longest allowed still finds room for its temporary file.
    const std::string long_name(250, 'n');
    ASSERT_TRUE(replace_file(root / ("drive_c/Cfg/" + long_name), "long"));
    EXPECT_EQ(names_in(root / "drive_c/Cfg"),
              (std::set<std::string>{"Old.ini", "link.ini", "fresh.ini", long_name}));
}

TEST(ReplaceFile, RefusalsAndFailuresLeaveTheTargetAndNoTemporaryFile) {
    ScratchRoot root;
    root.write("drive_c/Cfg/ro.ini", "read only");
    ::chmod((root / "drive_c/Cfg/ro.ini").c_str(), 0444);
    root.write("drive_c/Cfg/keep.ini", "keep");
    fs::create_directories(root / "drive_c/Cfg/folder.ini");
    fs::create_symlink("loop_b", root / "drive_c/Cfg/loop_a");
    fs::create_symlink("loop_a", root / "drive_c/Cfg/loop_b");
    const std::set<std::string> before = names_in(root / "drive_c/Cfg");

    const auto failing_write = [](FileHandle file) {
        std::uint32_t put = 0;
        write_file(file, "part", 4, put);
        set_last_error(ENOSPC);
        return false;
    };
    const struct {
        const char* path;
        ContentWriter write;
        ReplaceStep step;
        int error;
    } cases[] = {
        {"C:\\Cfg\\ro.ini", nullptr, ReplaceStep::Target, EACCES},
        {"C:\\Cfg\\folder.ini", nullptr, ReplaceStep::Target, EISDIR},
        {"C:\\Cfg\\loop_a", nullptr, ReplaceStep::Target, ELOOP},
        {"C:\\Missing\\new.ini", nullptr, ReplaceStep::Create, ENOENT},
        {"C:\\Cfg\\keep.ini", failing_write, ReplaceStep::Write, ENOSPC},
    };
    for (const auto& c : cases) {
        ReplaceFailure failure;
        const bool done = c.write ? replace_file(c.path, c.write, &failure)
                                  : replace_file(c.path, "new", &failure);
        EXPECT_FALSE(done) << c.path;
        EXPECT_EQ(failure.step, c.step) << c.path;
        EXPECT_EQ(last_error(), static_cast<std::uint32_t>(c.error)) << c.path;
    }
    EXPECT_EQ(root.read("drive_c/Cfg/ro.ini"), "read only");
    EXPECT_EQ(root.read("drive_c/Cfg/keep.ini"), "keep");
    EXPECT_EQ(names_in(root / "drive_c/Cfg"), before);
    EXPECT_FALSE(fs::exists(root / "drive_c/Missing"));
}

TEST(ReplaceFile, RemovesOnlyItsOwnTargetsTemporaryFilesOfEndedProcesses) {
    ScratchRoot root;
    root.write("drive_c/Cfg/a.ini", "old");
    const std::string dead = std::to_string(gone_pid());
    const std::string alive = std::to_string(::getppid());
    const struct {
        std::string name;
        bool stays;
    } leftovers[] = {
        {".~a.ini." + dead + ".0123abcd.tmp", false},
        {".~a.ini." + alive + ".0123abcd.tmp", true},  // its process still runs
        {".~b.ini." + dead + ".0123abcd.tmp", true},   // another target
        {".~a.ini.5." + dead + ".0123abcd.tmp", true}, // the target "a.ini.5"
        {".~a.ini." + dead + ".0123ABCD.tmp", true},   // not a name this code makes
        {".~a.ini." + dead + ".tmp", true},
    };
    for (const auto& leftover : leftovers)
        root.write("drive_c/Cfg/" + leftover.name, "stale");
    ASSERT_TRUE(replace_file("C:\\Cfg\\a.ini", "new"));
    for (const auto& leftover : leftovers)
        EXPECT_EQ(fs::exists(root / ("drive_c/Cfg/" + leftover.name)), leftover.stays)
            << leftover.name;

    // What a killed run leaves has the documented shape.
    ReplaceFailure failure;
    const auto stop = [](FileHandle) {
        set_last_error(EIO);
        return false;
    };
    EXPECT_FALSE(replace_file("C:\\Cfg\\a.ini", stop, &failure));
    const std::regex shape(".*/\\.~a\\.ini\\." + std::to_string(::getpid()) +
                           "\\.[0-9a-f]{8}\\.tmp");
    EXPECT_TRUE(std::regex_match(failure.temp, shape)) << failure.temp;
    EXPECT_FALSE(fs::exists(failure.temp));
}
