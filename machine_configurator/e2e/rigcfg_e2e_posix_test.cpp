// The built program run as the suite's tools run it, over a copy of the
// example installation: exit codes and the files a run leaves behind.
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <sys/wait.h>

namespace fs = std::filesystem;
using korv::testing::ScratchDir;

namespace {

const std::string kMidspan = "root/drive_c/ProgramData/Korv/Midspan Plugin/";
const std::string kKorECon = "root/drive_c/ProgramData/Korv/KorECon/";
const std::string kMachines = "root/drive_c/ProgramData/Korv/KorSystemConfig/machines/";

std::string Quote(const std::string& text) {
    std::string out = "'";
    for (char c : text)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

class RigCfgRun : public ::testing::Test {
protected:
    void SetUp() override {
        fs::copy(RIGCFG_EXAMPLES, m_dir / "root", fs::copy_options::recursive);
        fs::create_directories(m_dir / "log");
    }

    // Runs the program in the scratch folder; the exit code as a caller sees it.
    // The log holds this run only.
    int Run(std::initializer_list<std::string> args, const std::string& script = {}) {
        fs::remove_all(m_dir / "log");
        fs::create_directories(m_dir / "log");
        // No display: without a script, no host can show a dialog.
        std::string command =
            "cd " + Quote(m_dir.path()) +
            " && env -u DISPLAY -u WAYLAND_DISPLAY KORV_ROOT=" + Quote(m_dir / "root") +
            " KORV_LOG_DIR=" + Quote(m_dir / "log") + " KORV_TRACE=RigCfg=5";
        if (!script.empty()) {
            m_dir.write("script.txt", script);
            command += " KORV_UI_SCRIPT=" + Quote(m_dir / "script.txt") +
                       " KORV_UI_TRANSCRIPT=" + Quote(m_dir / "transcript.txt");
        } else {
            command += " KORV_UI_SCRIPT=";
        }
        command += " " + Quote(RIGCFG_EXE);
        for (const std::string& arg : args)
            command += " " + Quote(arg);
        command += " >stdout.txt 2>stderr.txt";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1000;
    }

    // Everything the run wrote to its log folder.
    std::string Log() const {
        std::string all;
        for (const auto& file : fs::directory_iterator(m_dir / "log"))
            all += m_dir.read("log/" + file.path().filename().string());
        return all;
    }

    // Every file below the installation with its size and time of change.
    std::string Listing() const {
        std::string all;
        for (const auto& entry : fs::recursive_directory_iterator(m_dir / "root"))
            all += entry.path().string() + " " +
                   std::to_string(entry.last_write_time().time_since_epoch().count()) + " " +
                   (entry.is_regular_file() ? std::to_string(entry.file_size()) : "-") + "\n";
        return all;
    }

    ScratchDir m_dir;
};

TEST_F(RigCfgRun, HelpAndVersionAnswerAndTouchNothing) {
    const std::string before = Listing();
    for (const char* ask : {"--help", "-h", "/?"}) {
        EXPECT_EQ(Run({"productgroup=FORM", ask}), 0) << ask;
        const std::string help = m_dir.read("stdout.txt");
        for (const char* line :
             {"  alias_variant=NAME", "  -5  the cwd= folder does not exist", "  KORV_LOG_DIR "})
            EXPECT_NE(help.find(line), std::string::npos) << ask << help;
    }
    // It wins over a silent copy, which would change the loader file.
    EXPECT_EQ(Run({"file=VD_140.ini", "variant=6140001", "--version"}), 0);
    EXPECT_EQ(m_dir.read("stdout.txt"), "Midspan Plugin 6.05-0\n");
    EXPECT_TRUE(fs::is_empty(m_dir / "log"));
    EXPECT_EQ(Listing(), before);
}

TEST_F(RigCfgRun, TheDialogOnTheExampleInstallationLogsNoError) {
    EXPECT_EQ(Run({}, "click 2\n"), 2);
    EXPECT_EQ(Log().find("ERR"), std::string::npos) << Log();
}

// Sets every value of `key` in the machine file to `value`.
void SetEveryValue(std::string& machine, const std::string& key, const std::string& value) {
    const std::string line_start = "\n" + key + "=";
    for (std::size_t at = 0; (at = machine.find(line_start, at)) != std::string::npos;) {
        const std::size_t from = at + line_start.size();
        machine.replace(from, machine.find('\r', from) - from, value);
        at = from + value.size();
    }
}

TEST_F(RigCfgRun, EachCopyFailureEndsWithMinusOneAndLeavesTheLoaderFile) {
    const struct {
        const char *key, *value, *logged;
    } failures[] = {
        {"config", "%%%", "CopyConfig(): base64 decode failed"},
        {"config",
         "a2V5PTENCg==", "CopyConfig(): error set content for"}, // "key=1" before any section
        {"target", "C:\\nowhere\\sp_load.ini", "CopyConfig(): error save target="},
    };
    const std::string before = m_dir.read(kMidspan + "sp_load.ini");
    const std::string original = m_dir.read(kMachines + "VD_140.ini");
    for (const auto& failure : failures) {
        std::string machine = original;
        SetEveryValue(machine, failure.key, failure.value);
        m_dir.write(kMachines + "VD_140.ini", machine);
        // A missing cwd= folder gives -5 at first, which the copy failure replaces.
        EXPECT_EQ(Run({"file=VD_140.ini", "variant=6140001", "cwd=C:\\nowhere"}), 255)
            << failure.value;
        EXPECT_EQ(m_dir.read(kMidspan + "sp_load.ini"), before) << failure.value;
        EXPECT_NE(Log().find(failure.logged), std::string::npos) << failure.value << Log();
        EXPECT_NE(Log().find("InitInstance(): copy mode failed"), std::string::npos) << Log();
    }
}

TEST_F(RigCfgRun, CreateForKorEConWritesTheAppIniAndTheControlFiles) {
    ASSERT_EQ(Run({"control=KORECON", "file=\"KMX_100_create.ini\"", "variant=9100200",
                   "cwd=<CSIDL_PROGRAM_FILES>\\Korv"}),
              0)
        << Log();
    const std::string app = m_dir.read(kKorECon + "RigCfg.ini");
    EXPECT_NE(app.find("machine=KMX 100\r\norder_no=9100200\r\nproduct_group=KORGEAR\r\n"),
              std::string::npos)
        << app;
    const std::string korecon = m_dir.read(kKorECon + "korecon.ini");
    EXPECT_NE(korecon.find("dynamic_path=C:\\Program Files\\korv\\korecon\\KorGear\\machines\\KMX "
                           "100\\9100200"),
              std::string::npos)
        << korecon;
    EXPECT_NE(Log().find("InitInstance(): change cwd to : "), std::string::npos) << Log();
}

TEST_F(RigCfgRun, CreateWithAnAliasKeepsTheTrueVariantInTheFolder) {
    ASSERT_EQ(Run({"control=korecon", "file=KMX_100_create.ini", "variant=9100100",
                   "alias_machine_name=KMX 100 Light", "alias_variant=9100111"}),
              0)
        << Log();
    const std::string app = m_dir.read(kKorECon + "RigCfg.ini");
    EXPECT_NE(app.find("machine=KMX 100 Light\r\norder_no=9100111\r\n"), std::string::npos) << app;
    EXPECT_NE(app.find("\\KMX 100\\9100100\r\n"), std::string::npos) << app;
}

TEST_F(RigCfgRun, CreateOfAMidspanFormMachineWritesTheFormLoaderButFails) {
    // The application ini takes only the KorECon family: the write is refused
    // after it is done, and the run ends as a failed create.
    EXPECT_EQ(Run({"file=MFU_100_create.ini", "variant=6420101", "cwd=C:\\nowhere"}), 251);
    const std::string form = m_dir.read(kMidspan + "form_load.ini");
    EXPECT_NE(form.find("active_section=MFU 100:OrderNo:6420101,"), std::string::npos) << form;
    EXPECT_NE(Log().find("InitInstance(): create mode failed. CfgIniFileMachinIni() failed."),
              std::string::npos)
        << Log();
}

TEST_F(RigCfgRun, UnreadableOrUnknownMachineFilesFallBackToTheDialog) {
    EXPECT_EQ(Run({"file=missing.ini"}, "click 2\n"), 2);
    EXPECT_NE(Log().find("InitInstance(): failed to read file missing.ini"), std::string::npos);
    EXPECT_NE(m_dir.read("transcript.txt").find("open 102"), std::string::npos);

    std::string machine = m_dir.read(kMachines + "KMX_100_create.ini");
    machine.replace(machine.find("mode=create"), 11, "mode=Create");
    m_dir.write(kMachines + "KMX_100_create.ini", machine);
    // OK in a run that is not "new" keeps the initial code.
    EXPECT_EQ(Run({"file=KMX_100_create.ini", "variant=9100100"}, "click 1\n"), 255);
    EXPECT_NE(Log().find("InitInstance(): unknown mode Create"), std::string::npos) << Log();

    // An empty file= is no silent run at all.
    EXPECT_EQ(Run({"file=", "variant=9100100"}, "click 2\n"), 2);
    EXPECT_EQ(Log().find("processing commandline parameter(s)"), std::string::npos) << Log();

    // Nothing to show dialogs with: the dialog course ends at once.
    EXPECT_EQ(Run({"cwd=C:\\nowhere"}), 251);
}

TEST_F(RigCfgRun, NewModeSavesWhatTheWizardMadeIntoTheMachineFile) {
    // The wizard opens at once, whatever the control; a cancel ends with 2 and saves nothing.
    const std::string before = m_dir.read(kMachines + "VD_120_new.ini");
    const std::string old_loader = m_dir.read(kMidspan + "sp_load.ini");
    EXPECT_EQ(Run({"control=korecon", "file=VD_120_new.ini", "variant=6120001"}, "click 2\n"), 2);
    EXPECT_EQ(m_dir.read(kMachines + "VD_120_new.ini"), before);
    EXPECT_EQ(m_dir.read(kMidspan + "sp_load.ini"), old_loader);

    // At the interfaces of "SURFACE": COM1, VD 120, the first table and stand, Finish.
    const std::string script = "check 1026\nclick 1\nselect 1090 \"VD 120\"\n"
                               "click 1\nclick 1\nclick 1\nclick 1\n";
    // A variant the file does not have: the run ends as saved, yet stored nowhere, and says so.
    ASSERT_EQ(Run({"file=VD_120_new.ini", "variant=6120999"}, script), 1) << Log();
    EXPECT_NE(Log().find("VD_120_new.ini has no variant \"6120999\", the configuration is "
                         "stored nowhere"),
              std::string::npos)
        << Log();

    m_dir.write(kMachines + "VD_120_new.ini", before);

    ASSERT_EQ(Run({"file=VD_120_new.ini", "variant=6120001"}, script), 1) << Log();
    const std::string loader = m_dir.read(kMidspan + "sp_load.ini");
    EXPECT_NE(loader.find("active_section=DRIVEUNIT[VD 120:COM1],TABLE[Y-Table 100],"
                          "MEASURESTAND[SZ 750 D:horizontal],CONTROL[]\r\n"
                          "active=CONTOUR/SURFACE"),
              std::string::npos)
        << loader;
    const std::string machine = m_dir.read(kMachines + "VD_120_new.ini");
    EXPECT_NE(machine.find("mode=copy"), std::string::npos) << machine;
    EXPECT_NE(machine.find("target=<AppData>\\Korv\\Midspan Plugin\\sp_load.ini"),
              std::string::npos)
        << machine;

    // The saved copy brings the same loader file back and empties the load list.
    m_dir.write(kMidspan + "sp_load.ini", "[General]\r\n");
    ASSERT_EQ(Run({"file=VD_120_new.ini", "variant=6120001"}), 0) << Log();
    EXPECT_EQ(m_dir.read(kMidspan + "sp_load.ini"), loader);
    EXPECT_EQ(m_dir.read(kMidspan + "SP_SUPPORT/load.ini").find("TK 300"), std::string::npos);
    EXPECT_EQ(Log().find("ERR"), std::string::npos) << Log();
}

} // namespace
