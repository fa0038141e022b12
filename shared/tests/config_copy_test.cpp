#include "machines_fixture.h"
#include "stl_utilities.h"

using korv::diag::Channel;
using korv::testing::LogCapture;
using Strings = std::vector<std::string>;

namespace {

const char* const kLoader = "drive_c/ProgramData/Korv/Midspan Plugin/sp_load.ini";
const char* const kOld = "[old]\r\nkeep=1\r\n";

std::string b64(std::string text) {
    EXPECT_TRUE(korv::stl_encode_base64(text));
    return text;
}

} // namespace

TEST_F(MachinesTest, CopyConfigLeavesTheTargetOnEveryFailure) {
    m_root.write("drive_c/out/t.ini", kOld);
    struct Case {
        std::string target;
        std::string config;
        std::string message;
    };
    const Case cases[] = {
        {"", b64("[a]\nx=1\n"), "CopyConfig(): error, no target specified"},
        {"C:\\out\\t.ini", "", "CopyConfig(): error, configuration is empty"},
        {"C:\\out\\t.ini", b64("[a"), "CopyConfig(): error set content for C:\\out\\t.ini"},
        {"C:\\out\\t.ini", "W2Fd\nCg==", "CopyConfig(): base64 decode failed"},
        {"C:\\out\\t.ini", "W2FdCg=", "CopyConfig(): base64 decode failed"},
        {"C:\\out\\t.ini", b64("x=1\n[a]\n"), "CopyConfig(): error set content for C:\\out\\t.ini"},
        {"C:\\out\\t.ini", b64("[a]\n[a]\n"), "CopyConfig(): error set content for C:\\out\\t.ini"},
        {"C:\\missing\\t.ini", b64("[a]\nx=1\n"),
         "CopyConfig(): error save target=C:\\missing\\t.ini"},
    };
    for (const Case& c : cases) {
        MachineEntry e;
        e.target = c.target;
        e.config = c.config;
        LogCapture log;
        EXPECT_FALSE(configs().CopyConfig(e, "")) << c.message;
        EXPECT_EQ(log.errors(), Strings{c.message});
        EXPECT_EQ(m_root.read("drive_c/out/t.ini"), kOld) << c.message;
    }
    EXPECT_FALSE(std::filesystem::exists(m_root / "drive_c/missing"));
}

TEST_F(MachinesTest, CopyConfigTakesTheNamedVariantOrTheEntry) {
    machine("m.ini", plain_machine("variants=V1, V2\n",
                                   "[configure]\nmode=copy\n"
                                   "[configuration]\ntarget=C:\\out\\own.ini\nconfig=" +
                                       b64("[own]\n") +
                                       "\n[V1.configuration]\ntarget=C:\\out\\v1.ini\nconfig=" +
                                       b64("[b]\nx=1\n\n[a]\ny=2\n") +
                                       "\n[V2.configuration]\ntarget=\nconfig=\n"));
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("m.ini", e));
    m_root.write("drive_c/out/keep", "");
    LogCapture log;
    ASSERT_TRUE(configs().CopyConfig(e, "V1"));
    // The parser's view: sections sorted, CR LF, empty lines kept.
    EXPECT_EQ(m_root.read("drive_c/out/v1.ini"), "[a]\r\ny=2\r\n[b]\r\nx=1\r\n\r\n");
    EXPECT_TRUE(logged(log, Channel::Trace, 5, "CopyConfig(): target = C:\\out\\v1.ini"));
    EXPECT_TRUE(logged(log, Channel::Trace, 5, "CopyConfig(): done"));

    ASSERT_TRUE(configs().CopyConfig(e, "V9"));
    EXPECT_EQ(m_root.read("drive_c/out/own.ini"), "[own]\r\n");
    EXPECT_FALSE(configs().CopyConfig(e, "V2"));
    EXPECT_EQ(log.errors(), Strings{"CopyConfig(): error, no target specified"});
}

// A "new" run saves the live loader file into the machine file; a later "copy"
// run of the same file and variant puts back the same lines.
TEST_F(MachinesTest, SavedLoaderFileComesBackByCopy) {
    m_root.write(kLoader, "; loader\n[SP]\nb=2\n\n[Machine]\n  a = 1 ; one\n");
    machine("user_rig.ini",
            plain_machine("variants=V1, V2\n", "[configure]\nmode=new\ncmdline=rigcfg.exe\n"
                                               "[other]\nkeep=me\n"));
    const std::string expected = "; loader\r\n[Machine]\r\n  a = 1 ; one\r\n[SP]\r\nb=2\r\n";

    for (const char* variant : {"V2", ""}) {
        SCOPED_TRACE(variant);
        {
            Configs saver;
            MachineEntry e;
            ASSERT_TRUE(saver.ReadMachineFile("user_rig.ini", e));
            if (!*variant)
                e.variants.clear(); // the entry's own [configuration] then
            ASSERT_TRUE(saver.SaveConfigurationToMachineConfigFile(0, e, variant));
            EXPECT_EQ(e.configure.mode, "copy");
        }
        const std::string text = machine_text("user_rig.ini");
        EXPECT_NE(text.find("mode=copy\r\n"), std::string::npos);
        EXPECT_NE(text.find("[other]\r\nkeep=me\r\n"), std::string::npos);
        EXPECT_NE(text.find("target=<AppData>\\Korv\\Midspan Plugin\\sp_load.ini\r\n"),
                  std::string::npos);

        m_root.write(kLoader, "[replaced]\r\n");
        Configs copier;
        MachineEntry e;
        ASSERT_TRUE(copier.ReadMachineFile("user_rig.ini", e));
        ASSERT_EQ(e.configure.mode, "copy");
        ASSERT_TRUE(copier.CopyConfig(e, variant));
        EXPECT_EQ(m_root.read(kLoader), expected);
    }
}

TEST_F(MachinesTest, SaveReportsItsFailures) {
    MachineEntry e;
    e.file_name = "no_dir\\m.ini";
    LogCapture log;
    m_root.write(kLoader, "[a]\r\nx=1\r\n");
    EXPECT_FALSE(configs().SaveConfigurationToMachineConfigFile(0, e, ""));
    EXPECT_EQ(log.errors(),
              (Strings{std::string("WriteMachineFile(): error save file ") + kWinMachines +
                           "no_dir\\m.ini",
                       "SaveConfigurationToMachineConfigFile(): save no_dir\\m.ini failed"}));

    m_root.write(kLoader, "x=1\r\n");
    machine("m.ini", plain_machine());
    e.file_name = "m.ini";
    log.clear();
    EXPECT_FALSE(configs().SaveConfigurationToMachineConfigFile(0, e, ""));
    EXPECT_EQ(log.errors(), Strings{"SaveConfigurationToMachineConfigFile(): error open "
                                    "C:\\ProgramData\\Korv\\Midspan Plugin\\sp_load.ini"});
    EXPECT_EQ(machine_text("m.ini"), plain_machine());
}
