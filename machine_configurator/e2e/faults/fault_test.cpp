// Silent runs that meet a broken installation or a failing file system: each
// ends with its exit code and a logged line, no file holds anything but its
// bytes from before or those a complete run gives it, and no leftover of a
// replacement stays behind.
#include "installation.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using korv::faults::exit_code;
using korv::faults::Files;
using korv::faults::Installation;
using korv::faults::kCopy;
using korv::faults::kCreate;
using korv::faults::kKorECon;
using korv::faults::kMachines;
using korv::faults::kMidspan;
using korv::faults::Run;
using korv::faults::temp_target;

namespace {

// The files of a complete run on an untouched installation.
const Files& complete(const std::vector<std::string>& args) {
    static std::map<std::vector<std::string>, Files> done;
    auto it = done.find(args);
    if (it == done.end()) {
        Installation inst;
        const int code = exit_code(inst.run({args, {}, false}));
        EXPECT_EQ(code, 0) << inst.log();
        it = done.emplace(args, inst.files()).first;
    }
    return it->second;
}

// Paths of `now` that hold neither their bytes from `before` nor those of
// `fresh`, and leftovers of replacements: each named with what is wrong.
std::vector<std::string> damage(const Files& now, const Files& before, const Files& fresh) {
    std::vector<std::string> found;
    for (const auto& [path, bytes] : now) {
        if (!temp_target(fs::path(path).filename().string()).empty()) {
            found.push_back(path + " (leftover)");
            continue;
        }
        const auto was = before.find(path);
        const auto is = fresh.find(path);
        if ((was == before.end() || was->second != bytes) &&
            (is == fresh.end() || is->second != bytes))
            found.push_back(path + " (neither before nor complete)");
    }
    for (const auto& [path, bytes] : before)
        if (!now.count(path) && !fresh.count(path))
            found.push_back(path + " (gone)");
    return found;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string utf16(const std::string& text) {
    std::string out = "\xFF\xFE";
    for (const char c : text) {
        out += c;
        out += '\0';
    }
    return out;
}

void set_mode(const Installation& inst, const std::string& path, mode_t mode) {
    ASSERT_EQ(::chmod((inst / path).c_str(), mode), 0) << path;
}

mode_t mode_of(const Installation& inst, const std::string& path) {
    struct stat st {};
    ::stat((inst / path).c_str(), &st);
    return st.st_mode & 07777;
}

void replace_by_folder(const Installation& inst, const std::string& path) {
    fs::remove(inst / path);
    inst.write(path + "/inside.txt", "kept");
}

} // namespace

TEST(Faults, EachEndsWithItsCodeALineAndWholeFiles) {
    const bool root = ::geteuid() == 0;
    const struct {
        const char* name;
        const std::vector<std::string>& args;
        std::function<void(const Installation&)> arrange;
        int exit;
        std::string logged;
        std::vector<std::string> kept;      // hold their bytes from before
        std::vector<std::string> completed; // hold those of a complete run
        bool unprivileged;
    } faults[] = {
        {"folder of the probe file missing",
         kCopy,
         [](const Installation& inst) { fs::remove_all(inst / (kMidspan + "SP_SUPPORT")); },
         0,
         "ResetLoadIni() for C:\\ProgramData\\Korv\\Midspan Plugin\\SP_SUPPORT\\load.ini failed",
         {},
         {kMidspan + "sp_load.ini"},
         false},
        {"folder of the copy target missing",
         kCopy,
         [](const Installation& inst) {
             std::string machine = inst.read(kMachines + "VD_140.ini");
             for (std::size_t at;
                  (at = machine.find("<AppData>\\Korv\\Midspan Plugin")) != std::string::npos;)
                 machine.replace(at, 29, "C:\\Gone");
             inst.write(kMachines + "VD_140.ini", machine);
         },
         255,
         "CopyConfig(): error save target=C:\\Gone\\sp_load.ini",
         {kMidspan + "sp_load.ini"},
         {},
         false},
        {"application folder missing, made at start",
         kCreate,
         [](const Installation& inst) { fs::remove_all(inst / kKorECon); },
         0,
         "InitInstance(): create mode succeeded",
         {},
         {kKorECon + "RigCfg.ini"},
         false},
        {"loader file not writable",
         kCopy,
         [](const Installation& inst) { set_mode(inst, kMidspan + "sp_load.ini", 0444); },
         255,
         "CopyConfig(): error save target=C:\\ProgramData\\Korv\\Midspan Plugin\\sp_load.ini",
         {kMidspan + "sp_load.ini", kMidspan + "SP_SUPPORT/load.ini"},
         {},
         false},
        {"control file not writable",
         kCreate,
         [](const Installation& inst) { set_mode(inst, kKorECon + "korecon.ini", 0444); },
         0,
         "StoreConfigFolder_KorEcon() mini::Save() failed",
         {kKorECon + "korecon.ini"},
         {kKorECon + "RigCfg.ini", kKorECon + "launcher.ini"},
         false},
        {"application ini not writable",
         kCreate,
         [](const Installation& inst) {
             inst.write(kKorECon + "RigCfg.ini", "[General]\r\nktrace_level=4\r\n");
             set_mode(inst, kKorECon + "RigCfg.ini", 0444);
         },
         255,
         "InitInstance(): create mode failed. CfgIniFileMachinIni() failed.",
         {kKorECon + "RigCfg.ini", kKorECon + "korecon.ini"},
         {},
         false},
        // Root writes into any folder: the run drops to the unprivileged user
        // "nobody", for whom the installation's folders are read-only; the
        // file itself is made writable, so that only its folder refuses.
        {"loader folder read-only",
         kCopy,
         [root](const Installation& inst) {
             if (root)
                 set_mode(inst, kMidspan + "sp_load.ini", 0666);
             else
                 set_mode(inst, kMidspan.substr(0, kMidspan.size() - 1), 0555);
         },
         255,
         "CopyConfig(): error save target=C:\\ProgramData\\Korv\\Midspan Plugin\\sp_load.ini",
         {kMidspan + "sp_load.ini"},
         {},
         true},
        {"folder in place of the loader file",
         kCopy,
         [](const Installation& inst) { replace_by_folder(inst, kMidspan + "sp_load.ini"); },
         255,
         "CopyConfig(): error open C:\\ProgramData\\Korv\\Midspan Plugin\\sp_load.ini",
         {kMidspan + "sp_load.ini/inside.txt"},
         {},
         false},
        {"folder in place of the control file",
         kCreate,
         [](const Installation& inst) { replace_by_folder(inst, kKorECon + "korecon.ini"); },
         0,
         "KIniData::Open(): KFastFileReader::Open() failed",
         {kKorECon + "korecon.ini/inside.txt", kKorECon + "launcher.ini"},
         {kKorECon + "RigCfg.ini"},
         false},
        {"UTF-16 loader file",
         kCopy,
         [](const Installation& inst) {
             inst.write(kMidspan + "sp_load.ini", utf16(inst.read(kMidspan + "sp_load.ini")));
         },
         255,
         "CopyConfig(): error open C:\\ProgramData\\Korv\\Midspan Plugin\\sp_load.ini",
         {kMidspan + "sp_load.ini"},
         {},
         false},
        {"UTF-16 control file",
         kCreate,
         [](const Installation& inst) {
             inst.write(kKorECon + "korecon.ini", utf16(inst.read(kKorECon + "korecon.ini")));
         },
         0,
         "UTF16/32 Unicode format not supported",
         {kKorECon + "korecon.ini", kKorECon + "launcher.ini"},
         {kKorECon + "RigCfg.ini"},
         false},
        // The mark is read past and not written back.
        {"UTF-8 mark on the control file",
         kCreate,
         [](const Installation& inst) {
             inst.write(kKorECon + "korecon.ini",
                        "\xEF\xBB\xBF" + inst.read(kKorECon + "korecon.ini"));
         },
         0,
         "InitInstance(): create mode succeeded",
         {},
         {kKorECon + "korecon.ini"},
         false},
    };
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        const Files& fresh = complete(fault.args);
        Installation inst;
        fault.arrange(inst);
        const Files before = inst.files();
        const int code = exit_code(inst.run({fault.args, {}, false, fault.unprivileged}));
        EXPECT_EQ(code, fault.exit) << inst.log();
        EXPECT_TRUE(contains(inst.log(), fault.logged)) << inst.log();
        const Files now = inst.files();
        EXPECT_EQ(damage(now, before, fresh), std::vector<std::string>());
        for (const std::string& path : fault.kept)
            EXPECT_EQ(now.count(path) ? now.at(path) : "(absent)",
                      before.count(path) ? before.at(path) : "(absent)")
                << path;
        for (const std::string& path : fault.completed)
            EXPECT_EQ(now.count(path) ? now.at(path) : "(absent)", fresh.at(path)) << path;
    }
}

TEST(Faults, RefusedFilesKeepTheirKind) {
    // What the table above can't see in the bytes: modes and folders stay.
    Installation inst;
    set_mode(inst, kMidspan + "sp_load.ini", 0444);
    replace_by_folder(inst, kKorECon + "korecon.ini");
    EXPECT_EQ(exit_code(inst.run({kCopy, {}, false})), 255);
    EXPECT_EQ(exit_code(inst.run({kCreate, {}, false})), 0);
    EXPECT_EQ(mode_of(inst, kMidspan + "sp_load.ini"), 0444u);
    EXPECT_TRUE(fs::is_directory(inst / (kKorECon + "korecon.ini")));
}
