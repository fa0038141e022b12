// Disks that fill up part-way, large files and long lines, a machine tree that
// loops, and two runs at the same moment.
#include "installation.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <unistd.h>

namespace fs = std::filesystem;
using korv::faults::exit_code;
using korv::faults::Files;
using korv::faults::Installation;
using korv::faults::kCopy;
using korv::faults::kCreate;
using korv::faults::kKorECon;
using korv::faults::kMidspan;
using korv::faults::temp_target;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// Files of `now` that are neither as `before` nor as `fresh`, and leftovers.
std::vector<std::string> damage(const Files& now, const Files& before, const Files& fresh) {
    std::vector<std::string> found;
    for (const auto& [path, bytes] : now) {
        const auto was = before.find(path);
        const auto is = fresh.find(path);
        if (!temp_target(fs::path(path).filename().string()).empty())
            found.push_back(path + " (leftover)");
        else if ((was == before.end() || was->second != bytes) &&
                 (is == fresh.end() || is->second != bytes))
            found.push_back(path + " (neither)");
    }
    return found;
}

// The paths whose bytes differ between `a` and `b`.
std::set<std::string> changed(const Files& a, const Files& b) {
    std::set<std::string> paths;
    for (const auto& [path, bytes] : a)
        if (!b.count(path) || b.at(path) != bytes)
            paths.insert(path);
    for (const auto& [path, bytes] : b)
        if (!a.count(path))
            paths.insert(path);
    return paths;
}

// What each outcome of a disk-full run must show: the exit code that the
// files on disk call for, and a logged line for every file left behind.
void check_outcome(const std::vector<std::string>& args, int code, const std::string& log,
                   const Files& now, const Files& before, const Files& fresh) {
    EXPECT_EQ(damage(now, before, fresh), std::vector<std::string>());
    const std::string first = args == kCopy ? kMidspan + "sp_load.ini" : kKorECon + "RigCfg.ini";
    const bool first_written = now.count(first) && now.at(first) == fresh.at(first);
    EXPECT_EQ(code, first_written ? 0 : 255) << log;
    if (!first_written) {
        EXPECT_TRUE(contains(log, args == kCopy ? "InitInstance(): copy mode failed"
                                                : "InitInstance(): create mode failed"))
            << log;
    } else if (!changed(now, fresh).empty()) {
        EXPECT_TRUE(contains(log, args == kCopy ? "ResetLoadIni() for" : "() failed")) << log;
    }
}

} // namespace

TEST(DiskFull, WritesFailingAfterSomeBytesLeaveEachFileOldOrNew) {
    for (const auto& args : {kCopy, kCreate}) {
        Installation inst;
        const Files before = inst.files();
        ASSERT_EQ(exit_code(inst.run({args, {}, false})), 0) << inst.log();
        const Files fresh = inst.files();
        inst.restore(before);
        std::set<std::size_t> outcomes; // how many files a run left short of the complete run
        int runs = 0;
        // Steps shorter than any file, so that each write is cut somewhere.
        for (long budget = 0;; budget += 8) {
            SCOPED_TRACE(args[0] + " with " + std::to_string(budget) + " bytes of room");
            const int code = exit_code(
                inst.run({args, {{"KORV_FAULT_ENOSPC_AFTER", std::to_string(budget)}}, true}));
            const Files now = inst.files();
            check_outcome(args, code, inst.log(), now, before, fresh);
            const std::size_t left = changed(now, fresh).size();
            outcomes.insert(left);
            ++runs;
            inst.restore(before);
            if (left == 0)
                break;
            ASSERT_LT(budget, 1 << 20);
        }
        // From nothing written to everything, with files written in between.
        std::cout << "[ full     ] " << args[0] << ": " << runs << " runs, " << outcomes.size()
                  << " different numbers of files left old" << std::endl;
        EXPECT_GE(outcomes.size(), 3u) << args[0];
    }
}

// A real full disk: the installation on a small tmpfs in a mount namespace of
// this test's own, with a filler leaving a few pages free.
TEST(DiskFull, ASmallTmpfsThatFillsUp) {
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        GTEST_SKIP() << "no mount namespace of its own here: " << std::strerror(errno);
    const Files fresh = [] {
        Installation inst;
        EXPECT_EQ(exit_code(inst.run({kCreate, {}, false})), 0);
        return inst.files();
    }();
    std::set<std::size_t> outcomes;
    for (const long free_pages : {0, 1, 2, 3, 4, 6, 8}) {
        SCOPED_TRACE(std::to_string(free_pages) + " pages free");
        Installation inst;
        const std::string held = inst.scratch() / "held";
        fs::rename(inst.root(), held);
        fs::create_directory(inst.root());
        if (::mount("tmpfs", inst.root().c_str(), "tmpfs", 0, "size=4m") != 0)
            GTEST_SKIP() << "tmpfs cannot be mounted here: " << std::strerror(errno);
        fs::copy(held, inst.root(), fs::copy_options::recursive);
        {
            // Fill the disk, then give back what the run may have.
            const int fd = ::open((inst / "filler.bin").c_str(), O_WRONLY | O_CREAT, 0644);
            ASSERT_GE(fd, 0);
            const std::string page(4096, 'f');
            off_t size = 0;
            while (::write(fd, page.data(), page.size()) == static_cast<ssize_t>(page.size()))
                size += static_cast<off_t>(page.size());
            ASSERT_EQ(errno, ENOSPC);
            ASSERT_EQ(::ftruncate(fd, size > free_pages * 4096 ? size - free_pages * 4096 : 0), 0);
            ::close(fd);
        }
        Files before = inst.files();
        Files fresh_here = fresh;
        fresh_here["filler.bin"] = before["filler.bin"];
        const int code = exit_code(inst.run({kCreate, {}, false}));
        const Files now = inst.files();
        check_outcome(kCreate, code, inst.log(), now, before, fresh_here);
        outcomes.insert(changed(now, fresh_here).size());
        ::umount2(inst.root().c_str(), MNT_DETACH);
    }
    std::cout << "[ tmpfs    ] 7 runs, " << outcomes.size()
              << " different numbers of files left old" << std::endl;
    EXPECT_GE(outcomes.size(), 2u);
}

TEST(LargeFiles, AHundredMegabyteControlFileWithAMegabyteLineIsReadAndSavedWhole) {
    Installation inst;
    const std::string korecon = kKorECon + "korecon.ini";
    // Sections that sort behind the file's own, so the saved file is the
    // small one's result followed by them, unchanged.
    std::string filler;
    filler.reserve(101 << 20);
    const std::string entry = "=" + std::string(1000, 'v') + "\r\n";
    char header[32];
    for (int section = 0; filler.size() < (99u << 20); ++section) {
        std::snprintf(header, sizeof header, "[zz_%06d]\r\n", section);
        filler += header;
        for (int key = 0; key < 100; ++key)
            filler += "k" + std::to_string(key) + entry;
    }
    filler += "[zz_long_line]\r\nvalue=" + std::string(1 << 20, 'L') + "\r\n";
    const Files small = [] {
        Installation plain;
        EXPECT_EQ(exit_code(plain.run({kCreate, {}, false})), 0);
        return plain.files();
    }();
    inst.write(korecon, inst.read(korecon) + filler);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(exit_code(inst.run({kCreate, {}, false})), 0) << inst.log().substr(0, 4000);
    std::cout << "[ large    ] " << (filler.size() >> 20) << " MB control file: run took "
              << std::chrono::duration_cast<std::chrono::milliseconds>(
                     std::chrono::steady_clock::now() - start)
                     .count()
              << " ms" << std::endl;
    EXPECT_TRUE(contains(inst.log(), "InitInstance(): create mode succeeded"));
    const std::string saved = inst.read(korecon);
    EXPECT_EQ(saved.size(), small.at(korecon).size() + filler.size());
    EXPECT_TRUE(saved == small.at(korecon) + filler);
}

TEST(MachineTree, ALoopOfLinksEndsTheRunsAsUsual) {
    const std::string machines = "drive_c/Program Files/Korv/KorECon/KorGear/machines/";
    const std::vector<std::string> dialog = {"control=korecon",
                                             "cwd=<CSIDL_PROGRAM_FILES>\\Korv\\KorECon"};
    const auto with_script = [](const Installation& inst, std::vector<std::string> args) {
        inst.write("../script.txt", "click 2\n");
        return korv::faults::Run{
            std::move(args), {{"KORV_UI_SCRIPT", inst.root() + "/../script.txt"}}, false};
    };
    for (const auto& [args, code] : {std::pair{dialog, 2}, std::pair{kCreate, 0}}) {
        SCOPED_TRACE(args[0] + " " + args[1]);
        Installation plain;
        ASSERT_EQ(exit_code(plain.run(with_script(plain, args))), code);
        Installation inst;
        fs::create_directory_symlink(".", inst / (machines + "loop"));
        fs::create_directory_symlink("..", inst / (machines + "KMX 100/up"));
        fs::create_directory_symlink("../../KMX 100", inst / (machines + "KMX 100/9100100/again"));
        fs::create_symlink("nowhere", inst / (machines + "dangling"));
        EXPECT_EQ(exit_code(inst.run(with_script(inst, args))), code) << inst.log();
        if (args == dialog) {
            EXPECT_TRUE(contains(inst.log(), "machines\\loop\\")) << inst.log();
        }
        // The loop adds no file and changes none beyond what the run does anyway.
        EXPECT_EQ(inst.files(), plain.files());
    }
}

TEST(TwoRuns, CreatingAtTheSameMomentLeaveEachFileAsOneOfThem) {
    const std::vector<std::string> other = {"control=korecon", "file=KMX_100_create.ini",
                                            "variant=9100200"};
    Files results[2];
    for (int i = 0; i < 2; ++i) {
        Installation inst;
        ASSERT_EQ(exit_code(inst.run({i ? other : kCreate, {}, false})), 0);
        results[i] = inst.files();
    }
    ASSERT_NE(results[0], results[1]);
    Installation inst;
    const Files before = inst.files();
    std::set<std::string> mixes;
    for (int round = 0; round < 50; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        inst.clear_log();
        const pid_t first = inst.start({kCreate, {}, false}, "first");
        const pid_t second = inst.start({other, {}, false}, "second");
        EXPECT_EQ(exit_code(korv::faults::wait_for(first)), 0);
        EXPECT_EQ(exit_code(korv::faults::wait_for(second)), 0);
        const Files now = inst.files();
        std::string mix;
        for (const auto& [path, bytes] : now) {
            const bool a = results[0].count(path) && results[0].at(path) == bytes;
            const bool b = results[1].count(path) && results[1].at(path) == bytes;
            EXPECT_TRUE(a || b) << path;
            if (a != b)
                mix += a ? 'A' : 'B';
        }
        EXPECT_EQ(now.size(), results[0].size());
        EXPECT_EQ(now.at("registry.reg"), before.at("registry.reg"));
        mixes.insert(mix);
        inst.restore(before);
    }
    std::cout << "[ together ] 50 rounds, " << mixes.size() << " different mixes of the two results"
              << std::endl;
}
