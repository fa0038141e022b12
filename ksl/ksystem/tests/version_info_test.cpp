#include "kregistry.h"
#include "kversioninfo.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

using namespace korv;
using korv::testing::ScratchRoot;

TEST(FileVersionInfo, TheRunningProgramHasItsBuildTable) {
    ScratchRoot root; // no registry: no service pack
    FileVersionInfo info;
    ASSERT_NE(info.m_block, nullptr);
    EXPECT_EQ(info.m_language, "040904b0");
    const std::string product = info.GetProductName();
    EXPECT_TRUE(product == "Midspan Plugin" || product == "KorECon") << product;
    EXPECT_EQ(info.GetCompanyName(), "Korv");
    EXPECT_FALSE(info.GetFileVersion().empty());
    EXPECT_EQ(info.GetProductVersionText(), info.GetValue("ProductVersion"));
    EXPECT_EQ(info.GetVersionNumber(), VersionNumberFromText(info.GetFileVersion()));
    EXPECT_GT(info.GetVersionNumber(), 0);
    EXPECT_EQ(info.GetComments(), "");
    EXPECT_EQ(info.GetSpecialBuild(), "");
    EXPECT_EQ(info.GetValue("NoSuchName"), "");
}

TEST(FileVersionInfo, AFileWithoutResourceGivesEmptyStrings) {
    korv::testing::ScratchDir dir;
    dir.write("plain.exe", "MZ");
    for (const std::string& file : {dir / "plain.exe", dir / "missing.exe", std::string()}) {
        FileVersionInfo info(file);
        EXPECT_EQ(info.m_block, nullptr);
        EXPECT_EQ(info.GetProductName(), "");
        EXPECT_EQ(info.GetFileVersion(), "");
        EXPECT_EQ(info.GetVersionNumber(), 0);
    }
}

TEST(FileVersionInfo, ServicePackFromTheInstallationRoot) {
    ScratchRoot root;
    FileVersionInfo info;
    const std::string version = info.GetValue("ProductVersion");
    EXPECT_EQ(info.GetServicePackText(), "");

    ASSERT_TRUE(RegWriteString(platform::HKEY_LOCAL_MACHINE, "Software\\Korv\\Hub32\\volatile",
                               "root", "C:\\Korv\\Hub32"));
    EXPECT_EQ(info.GetServicePackText(), ""); // no version_sr.txt
    EXPECT_EQ(info.GetProductVersionText(), version);

    root.write("drive_c/korv/hub32/Version_SR.txt", "[version]\r\nservicepack = 2\r\n");
    EXPECT_EQ(info.GetServicePackText(), "SP 2");
    EXPECT_EQ(info.GetProductVersionText(), version + " SP 2");
    EXPECT_EQ(info.GetVersionNumber(), VersionNumberFromText(version) + 2);

    root.write("drive_c/korv/hub32/Version_SR.txt", "[Version]\r\nServicePack=\r\n");
    EXPECT_EQ(info.GetServicePackText(), "");
}

TEST(FileVersionInfo, VersionNumbersFromText) {
    EXPECT_EQ(VersionNumberFromText("6.05-0"), 6050000);
    EXPECT_EQ(VersionNumberFromText("6.05-0 SP 2"), 6050002);
    EXPECT_EQ(VersionNumberFromText(" 10 . 1 - 3sp12"), 10010312);
    EXPECT_EQ(VersionNumberFromText("6.05"), 6050000);
    EXPECT_EQ(VersionNumberFromText("7"), 7000000);
    EXPECT_EQ(VersionNumberFromText(""), 0);
    EXPECT_EQ(VersionNumberFromText("SP3"), 3);
}
