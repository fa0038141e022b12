// Silent runs killed at random moments: at the Nth call that changes a file,
// a write cut in half. After each kill every file of the installation holds
// its old bytes or those of a complete run, and only leftovers of
// replacements lie beside them; the next complete run clears those.
#include "installation.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <set>

namespace fs = std::filesystem;
using korv::faults::exit_code;
using korv::faults::Files;
using korv::faults::Installation;
using korv::faults::Run;
using korv::faults::temp_target;

namespace {

unsigned long env_or(const char* name, unsigned long fallback) {
    const char* text = std::getenv(name);
    return text && *text ? std::strtoul(text, nullptr, 10) : fallback;
}

// The paths of `now` that hold neither their old nor their new bytes (an
// absent file counts as bytes of its own); leftovers of replacements of
// installation files are counted apart.
std::vector<std::string> torn_files(const Files& now, const Files& old, const Files& fresh,
                                    unsigned long& leftovers) {
    leftovers = 0;
    std::set<std::string> paths;
    for (const Files* files : {&now, &old, &fresh})
        for (const auto& [path, bytes] : *files)
            paths.insert(path);
    std::vector<std::string> torn;
    for (const std::string& path : paths) {
        const fs::path file(path);
        const std::string target = temp_target(file.filename().string());
        if (!target.empty()) {
            const std::string beside = (file.parent_path() / target).string();
            if (old.count(beside) || fresh.count(beside)) {
                ++leftovers;
                continue;
            }
        }
        const auto state = [&path](const Files& files) {
            const auto it = files.find(path);
            return it == files.end() ? std::string("\x01(absent)") : it->second;
        };
        if (state(now) != state(old) && state(now) != state(fresh))
            torn.push_back(path);
    }
    return torn;
}

struct Course {
    const char* name;
    std::vector<std::string> args;
};

} // namespace

TEST(KilledRuns, LeaveEveryFileWithItsOldOrItsNewBytes) {
    const unsigned long seed = env_or("KORV_KILL_SEED", std::random_device{}());
    const unsigned long rounds = env_or("KORV_KILL_ROUNDS", 100);
    std::mt19937_64 random(seed);
    const Course courses[] = {
        {"copy", {"file=VD_140.ini", "variant=6140001"}},
        {"create", {"control=korecon", "file=KMX_100_create.ini", "variant=9100100"}},
    };
    for (const Course& course : courses) {
        SCOPED_TRACE(course.name);
        Installation inst;
        const Files old = inst.files();
        // One complete run under the shim gives the new bytes and the number of calls.
        const std::string count_file = inst.scratch() / "calls.txt";
        ASSERT_EQ(exit_code(inst.run({course.args, {{"KORV_FAULT_COUNT_TO", count_file}}, true})),
                  0)
            << inst.log();
        const Files fresh = inst.files();
        const unsigned long calls =
            std::strtoul(inst.scratch().read("calls.txt").c_str(), nullptr, 10);
        ASSERT_GT(calls, 0u);
        ASSERT_NE(fresh, old);
        inst.restore(old);

        unsigned long kills = 0;
        unsigned long torn = 0;
        unsigned long leftovers = 0;
        std::uniform_int_distribution<unsigned long> moment(1, calls);
        for (unsigned long round = 0; round < rounds; ++round) {
            const unsigned long at = moment(random);
            const int status =
                inst.run({course.args, {{"KORV_FAULT_KILL_AT", std::to_string(at)}}, true});
            if (exit_code(status) == -1000 - SIGKILL)
                ++kills;
            else
                EXPECT_EQ(exit_code(status), 0) << "round " << round << " at call " << at;
            for (const std::string& path : torn_files(inst.files(), old, fresh, leftovers)) {
                ++torn;
                ADD_FAILURE() << path << " torn in round " << round << " at call " << at;
            }
            inst.restore(old);
        }
        std::cout << "[ killed   ] " << course.name << ": seed " << seed << ", rounds " << rounds
                  << ", calls per run " << calls << ", kills mid-run " << kills << ", torn files "
                  << torn << ", leftovers before the last run " << leftovers << std::endl;
        EXPECT_EQ(torn, 0u);
        EXPECT_EQ(kills, rounds);

        // A complete run afterwards succeeds, writes the new bytes and clears the leftovers.
        ASSERT_EQ(exit_code(inst.run({course.args, {}, false})), 0) << inst.log();
        EXPECT_EQ(inst.files(), fresh);
    }
}
