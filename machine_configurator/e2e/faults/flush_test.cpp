// Crash-safe writes pay for their flushes once: every new file is flushed
// before the rename that puts it in place, and every folder that received a
// rename is flushed once, after the last one, however many files of it a run
// replaces.
#include "installation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using korv::faults::exit_code;
using korv::faults::Installation;

TEST(Flushes, EveryFileBeforeItsRenameAndEveryFolderOnceAfterItsLast) {
    for (const auto* course : {&korv::faults::kCopy, &korv::faults::kCreate}) {
        SCOPED_TRACE(course->front());
        Installation inst;
        const std::string log = inst.scratch() / "flushes.txt";
        ASSERT_EQ(exit_code(inst.run({*course, {{"KORV_FAULT_LOG_TO", log}}, true})), 0)
            << inst.log();
        std::istringstream lines(inst.scratch().read("flushes.txt"));
        std::set<std::string> flushed_files;
        std::map<std::string, std::size_t> last_rename_into;
        std::map<std::string, std::vector<std::size_t>> folder_flushes;
        std::size_t at = 0;
        for (std::string line; std::getline(lines, line); ++at) {
            std::vector<std::string> fields;
            std::istringstream split(line);
            for (std::string field; std::getline(split, field, '\t');)
                fields.push_back(field);
            ASSERT_GE(fields.size(), 2u) << line;
            if (fields[0] == "fsync") {
                if (fs::is_directory(fields[1]))
                    folder_flushes[fields[1]].push_back(at);
                else
                    flushed_files.insert(fields[1]);
            } else {
                ASSERT_EQ(fields.size(), 3u) << line;
                EXPECT_TRUE(flushed_files.count(fields[1])) << fields[1] << " renamed unflushed";
                last_rename_into[fs::path(fields[2]).parent_path().string()] = at;
            }
        }
        EXPECT_FALSE(last_rename_into.empty());
        for (const auto& [folder, last] : last_rename_into) {
            SCOPED_TRACE(folder);
            ASSERT_EQ(folder_flushes[folder].size(), 1u);
            EXPECT_GT(folder_flushes[folder].front(), last);
        }
        EXPECT_EQ(folder_flushes.size(), last_rename_into.size());
    }
}
