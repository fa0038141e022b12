#include "application/CustomCommandLineInfo.h"

#include <gtest/gtest.h>

namespace {

CCustomCommandLineInfo parse(std::vector<std::string> arguments) {
    korv::ui::CWinApp app("RigCfg");
    app.m_arguments = {"rigcfg"};
    app.m_arguments.insert(app.m_arguments.end(), arguments.begin(), arguments.end());
    CCustomCommandLineInfo info;
    app.ParseCommandLine(info);
    return info;
}

} // namespace

TEST(CommandLine, EveryKeyFillsItsFieldAndLaterArgumentsWin) {
    const CCustomCommandLineInfo info =
        parse({"control=korecon", "cwd=C:\\work", "lang=DE", "productgroup=FORM", "machine=MFU 100",
               "file=m.ini", "variant=v1", "proxy=SIM", "alias_machine_name=Alias",
               "alias_variant=av", "variant=v2", "lang="});
    EXPECT_EQ(info.m_control, "korecon");
    EXPECT_EQ(info.m_cwd, "C:\\work");
    EXPECT_EQ(info.m_lang, "");
    EXPECT_EQ(info.m_productgroup, "FORM");
    EXPECT_EQ(info.m_machine, "MFU 100");
    EXPECT_EQ(info.m_file, "m.ini");
    EXPECT_EQ(info.m_variant, "v2");
    EXPECT_EQ(info.m_proxy, "SIM");
    EXPECT_EQ(info.m_alias_machine_name, "Alias");
    EXPECT_EQ(info.m_alias_variant, "av");
}

TEST(CommandLine, QuotesLeaveOnlyTheFileValueAndKeysAreCaseSensitive) {
    const CCustomCommandLineInfo info = parse({"/file=\"C:\\Program Files\\m \"x\".ini\"",
                                               "-machine=\"A B\"", "CONTROL=korecon", "junk"});
    EXPECT_EQ(info.m_file, "C:\\Program Files\\m x.ini");
    EXPECT_EQ(info.m_machine, "\"A B\"");
    EXPECT_EQ(info.m_control, "");
    // An argument must begin with its key, so "machine=" takes nothing from the alias.
    const CCustomCommandLineInfo alias = parse({"alias_machine_name=x", "machine=y"});
    EXPECT_EQ(alias.m_alias_machine_name + alias.m_machine, "xy");
}
