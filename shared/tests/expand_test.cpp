// Path macros over the special folders and the registry, on either platform.
#include "common.h"
#include "kregistry.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

using korv::testing::LogCapture;
using korv::testing::ScratchRoot;

namespace {

// A fresh table over a registry that holds `registry` (export text, may be empty).
class ExpandTest : public ::testing::Test {
protected:
    void use_registry(const std::string& registry) {
        if (!registry.empty())
            m_root.set_registry("Windows Registry Editor Version 5.00\r\n\r\n" + registry);
        Expand_ClearTable();
    }
    void TearDown() override { Expand_ClearTable(); }

    ScratchRoot m_root;
};

const char* const kBoth = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\KorWin\\Main]\r\n"
                          "\"TargetDir\"=\"d:\\\\a\"\r\n"
                          "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\Hub32\\volatile]\r\n"
                          "\"UserData\"=\"e:\\\\data\"\r\n";

} // namespace

TEST_F(ExpandTest, FoldersOfThePlatformAndDefaults) {
    LogCapture log;
    use_registry("");
    EXPECT_EQ(
        Expand("<KORECON>|<KorCtrlTools>|<AppData>|<hub32>|$(PROGRAM_FILES)"),
        "C:\\Program Files\\korv\\korecon|C:\\Program Files\\korv\\korctrltools|"
        "C:\\ProgramData|C:\\Program Files (x86)\\Common Files\\korv\\hub32|C:\\Program Files");
    EXPECT_EQ(Expand("<powerpcctrl>|<midspan>|<mtsurf>|<mtmillikor>|$(program_files_x86)"),
              "C:\\Program Files (x86)\\korv\\powerpcctrl|C:\\Program Files (x86)\\korv\\midspan "
              "plugin|C:\\Program Files (x86)\\korv\\mtsurf|C:\\Program Files "
              "(x86)\\korv\\mtmillikor|C:\\Program Files (x86)");
    // Unknown and unfinished macros stay.
    for (const char* same : {"", "<unknown>\\x", "c:\\plain\\path.ini", "<korecon"})
        EXPECT_EQ(Expand(same), same);

    // Defaults stand in for the registry values, each miss logged. <korwin> ends
    // with its bracket, so it leaves <korwin_userdata> alone.
    EXPECT_EQ(Expand("<korwin>|<product_infos>|<korwin_userdata>\\x"),
              "C:\\Program Files\\korv\\korwin|C:\\Program Files\\korv\\korwin\\product_infos|"
              "c:\\korv\\x");
    EXPECT_EQ(log.errors(),
              (std::vector<std::string>{
                  "Expand(): get registry key TargetDir failed. Using default korwin folders !!!",
                  "Expand(): get registry key UserData failed. Using default korwin folders !!!"}));
}

TEST_F(ExpandTest, RegistryValuesReplaceTheDefaults) {
    LogCapture log;
    use_registry(kBoth);
    EXPECT_EQ(Expand("<product_infos>|<KorWin>\\bin|<korwin_userdata>\\x"),
              "d:\\a\\product_infos|d:\\a\\bin|e:\\data\\x");
    EXPECT_TRUE(log.errors().empty());

    // The table is built once: later changes of the registry aren't seen.
    ASSERT_TRUE(korv::RegWriteString(korv::platform::HKEY_LOCAL_MACHINE,
                                     "SOFTWARE\\Korv\\KorWin\\Main", "TargetDir", "f:\\other"));
    EXPECT_EQ(Expand("<korwin>"), "d:\\a");

    // Values of other types, or empty, count as missing.
    use_registry("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\KorWin\\Main]\r\n"
                 "\"TargetDir\"=dword:00000001\r\n"
                 "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\Hub32\\volatile]\r\n"
                 "\"UserData\"=\"\"\r\n");
    EXPECT_EQ(Expand("<korwin>|<korwin_userdata>"), "C:\\Program Files\\korv\\korwin|c:\\korv");
    EXPECT_EQ(log.errors().size(), 2u);

    // A later macro in a value is expanded, an earlier one is not.
    use_registry("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\KorWin\\Main]\r\n"
                 "\"TargetDir\"=\"<korwin_userdata>\\\\kw\"\r\n"
                 "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Korv\\Hub32\\volatile]\r\n"
                 "\"UserData\"=\"<korecon>\"\r\n");
    EXPECT_EQ(Expand("<korwin>"), "<korecon>\\kw");
}

TEST_F(ExpandTest, ASecondOccurrenceLandsAtItsOldPosition) {
    use_registry("");
    // The value is shorter than the macro: the second hit is applied where
    // it stood before the first replacement moved it.
    EXPECT_EQ(Expand("<korwin_userdata>\\a;<korwin_userdata>\\b"),
              "c:\\korv\\a;<korwin_usc:\\korv");
    // The value is longer: the search goes on behind it, past the second hit.
    EXPECT_EQ(Expand("<korecon>;<korecon>"), "C:\\Program Files\\korv\\korecon;<korecon>");
    // A third hit's old position lies beyond the end of the shrunk text.
    EXPECT_EQ(Expand("<korwin_userdata><korwin_userdata><korwin_userdata>"),
              "c:\\korv<korwin_usc:\\korverdata>");
}
