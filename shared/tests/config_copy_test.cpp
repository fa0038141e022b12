#include "machines_fixture.h"
#include "stl_utilities.h"

using korv::testing::LogCapture;

namespace {

const char* const kLoader = "drive_c/ProgramData/Korv/Midspan Plugin/sp_load.ini";

std::string b64(std::string text) {
    EXPECT_TRUE(korv::stl_encode_base64(text));
    return text;
}

} // namespace

TEST_F(MachinesTest, CopyConfigLeavesTheTargetOnEveryFailure) {
    const std::string old = "[old]\r\nkeep=1\r\n";
    m_root.write("drive_c/out/t.ini", old);
    const std::string t = "C:\\out\\t.ini";
    const std::string set_failed = "CopyConfig(): error set content for " + t;
    const struct {
        std::string target, config, message;
    } cases[] = {
        {"", b64("[a]\n"), "CopyConfig(): error, no target specified"},
        {t, "", "CopyConfig(): error, configuration is empty"},
        {t, "W2Fd\nCg==", "CopyConfig(): base64 decode failed"},
        {t, b64("x=1\n[a]\n"), set_failed},
        {"C:\\missing\\t.ini", b64("[a]\n"), "CopyConfig(): error save target=C:\\missing\\t.ini"},
    };
    for (const auto& c : cases) {
        MachineEntry e;
        e.target = c.target;
        e.config = c.config;
        LogCapture log;
        EXPECT_FALSE(configs().CopyConfig(e, "")) << c.message;
        EXPECT_EQ(log.errors(), Strings{c.message});
        EXPECT_EQ(m_root.read("drive_c/out/t.ini"), old) << c.message;
    }
    EXPECT_FALSE(exists("drive_c/missing"));
}

// A "new" run saves the live loader file into the machine file; a "copy" run
// of the same file and variant puts back the same lines. Without the variant
// the entry's own [configuration] carries it.
TEST_F(MachinesTest, SavedLoaderFileComesBackByCopy) {
    m_root.write(kLoader, "; loader\n[SP]\nb=2\n\n[Machine]\n  a = 1 ; one\n");
    machine("user_rig.ini", plain_machine("variants=V1, V2\n", "[configure]\nmode=new\n"
                                                               "[other]\nkeep=me\n"));
    // The parser's view: sections sorted, empty lines gone, CR LF.
    const std::string expected = "; loader\r\n[Machine]\r\n  a = 1 ; one\r\n[SP]\r\nb=2\r\n";
    for (const char* variant : {"V2", ""}) {
        SCOPED_TRACE(variant);
        {
            Configs saver;
            MachineEntry e;
            ASSERT_TRUE(saver.ReadMachineFile("user_rig.ini", e));
            if (!*variant)
                e.variants.clear();
            ASSERT_TRUE(saver.SaveConfigurationToMachineConfigFile(0, e, variant));
        }
        const std::string written = text("user_rig.ini");
        for (const char* kept : {"mode=copy\r\n", "[other]\r\nkeep=me\r\n",
                                 "target=<AppData>\\Korv\\Midspan Plugin\\sp_load.ini\r\n"})
            EXPECT_NE(written.find(kept), std::string::npos) << kept;

        m_root.write(kLoader, "[replaced]\r\n");
        Configs copier;
        MachineEntry e;
        ASSERT_TRUE(copier.ReadMachineFile("user_rig.ini", e));
        ASSERT_TRUE(copier.CopyConfig(e, variant));
        EXPECT_EQ(m_root.read(kLoader), expected);
    }

    // A loader file that doesn't parse is refused, and nothing is written.
    m_root.write(kLoader, "x=1\r\n");
    MachineEntry e;
    ASSERT_TRUE(configs().ReadMachineFile("user_rig.ini", e));
    const std::string before = text("user_rig.ini");
    LogCapture log;
    EXPECT_FALSE(configs().SaveConfigurationToMachineConfigFile(0, e, "V2"));
    EXPECT_EQ(log.errors(), Strings{"SaveConfigurationToMachineConfigFile(): error open "
                                    "C:\\ProgramData\\Korv\\Midspan Plugin\\sp_load.ini"});
    EXPECT_EQ(text("user_rig.ini"), before);
}
