#include "catalogue/alias_maschines.h"
#include "catalogue/catalogue_test_files.h"

#include <gtest/gtest.h>

using namespace catalogue_test;

namespace {

const std::string kMachines = kAliasMachinesFolder;

const char* const kParent = "[general]\nmachine=KMX 100\nvariantfolder=KMX_100\n";
const char* const kLight = "[General]\nfile = KMX_100.ini ; parent\n"
                           "alias_machine_name= KMX 100 Light \n"
                           "[AliasIdentNo_900]\nparent_identno=100\n"
                           "[AliasIdentNo_901]\nparent_identno= 200 // the big one\n";

MachineProperties parent_record(const std::string& order) {
    return {"",
            "KORGEAR",
            order,
            "C:\\work\\KorGear\\machines\\KMX 100\\" + order + "\\machine.ini",
            "C:\\work\\KorGear\\machines\\KMX 100\\" + order,
            "automatic",
            "kmx.dll"};
}

MachineTreeMap root_with_parent() {
    return {{"KMX 100", {parent_record("100"), parent_record("200")}},
            {"Other", {parent_record("1")}}};
}

class AliasMachines : public korv::testing::TraceContextTest {
protected:
    void SetUp() override {
        TraceContextTest::SetUp();
        m_install.folder_c(kMachines);
    }
    void alias(const std::string& name, const std::string& text) {
        m_install.write_c(kMachines + "\\" + name, text);
    }

    Install m_install;
};

} // namespace

TEST_F(AliasMachines, AliasCopiesItsParentsRecordsUnderItsOwnNameAndNumbers) {
    alias("KMX_100.ini", kParent);
    alias("KMX_100_Light.alias", kLight);
    // The number is cut at a fixed place, so these two give the same one.
    alias("Twins.alias", "[General]\nfile=KMX_100.ini\nalias_machine_name=Twins\n"
                         "[AliasIdentNo__1]\nparent_identno=100\n"
                         "[zAliasIdentNo_1]\nparent_identno=200\n");
    // The extension compares case-sensitively.
    alias("Upper.ALIAS", "[General]\nfile=KMX_100.ini\nalias_machine_name=Upper\n");
    alias("Old.alias.bak", "[General]\nfile=KMX_100.ini\nalias_machine_name=Old\n");

    std::vector<AliasMachineInfo> infos;
    ASSERT_TRUE(getAliasMachinesInfo(infos));
    ASSERT_EQ(infos.size(), 2u);
    const auto light = std::find_if(infos.begin(), infos.end(), [](const AliasMachineInfo& info) {
        return info.alias_machine_name == "KMX 100 Light";
    });
    ASSERT_NE(light, infos.end());
    EXPECT_EQ(light->file, kMachines + "\\KMX_100.ini");
    EXPECT_EQ(light->variantfolder, "KMX_100");

    MachineTreeMap map = root_with_parent();
    ASSERT_TRUE(getAliasMachines(map));
    ASSERT_EQ(map.size(), 4u);
    std::vector<MachineProperties> expected = {parent_record("100"), parent_record("200")};
    expected[0].order_no = "900";
    expected[1].order_no = "901";
    EXPECT_EQ(map.find("KMX 100 Light")->second, expected);

    const auto& twins = map.find("Twins")->second;
    ASSERT_EQ(twins.size(), 2u);
    EXPECT_EQ(twins[0].order_no + twins[1].order_no, "_1_1");
    EXPECT_EQ(twins[1].ini_path, parent_record("200").ini_path);
}

TEST_F(AliasMachines, FolderWithoutAliasFilesIsFineAndAMissingFolderIsNot) {
    alias("KMX_100.ini", kParent);
    MachineTreeMap map = root_with_parent();
    EXPECT_TRUE(getAliasMachines(map));
    EXPECT_EQ(map, root_with_parent());

    std::filesystem::remove_all(m_install.host(kMachines));
    EXPECT_FALSE(getAliasMachines(map));
    EXPECT_EQ(map, root_with_parent());
    EXPECT_TRUE(
        traced_part("getAliasMachineFiles(): listDirectory() failed for \"" + kMachines + "\""));
}

// One damaged alias, or one number its parent lacks, stops every alias of the root.
TEST_F(AliasMachines, DamagedOrUnmatchedAliasFailsTheWholeRead) {
    const struct {
        std::string alias, parent, message;
    } cases[] = {
        {"[General]\nfile=KMX_100.ini\nalias_machine_name=A\n[AliasIdentNo_5]\nparent=1\n", kParent,
         "getAliasMachinesInfo(): GetStringEntryAndTrim() [AliasIdentNo_5] parent_identno= "
         "failedgetAliasMachinesInfo"},
        // The parent's section is spelled in lower case.
        {"[General]\nfile=KMX_100.ini\nalias_machine_name=A\n",
         "[General]\nmachine=KMX 100\nvariantfolder=K\n",
         "getAliasMachinesInfo(): GetStringEntryAndTrim() [general] variantfolder= failed"},
        {"line before any section\n", kParent,
         "getAliasMachinesInfo(): mid_alias.Open(" + kMachines + "\\A.alias) failed"},
        {"[General]\nfile=KMX_100.ini\nalias_machine_name=Wrong\n[AliasIdentNo_77]\n"
         "parent_identno=300\n",
         kParent,
         "createAliasMachines(): No parent machine \"KMX 100\" with ident_nr #300 found for alias "
         "machine: \"Wrong\" with ident_nr: #77"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        alias("KMX_100.ini", c.parent);
        alias("KMX_100_Light.alias", kLight);
        alias("A.alias", c.alias);
        KErrTrace_ClearContext();
        MachineTreeMap map = root_with_parent();
        EXPECT_FALSE(getAliasMachines(map));
        EXPECT_EQ(map, root_with_parent());
        EXPECT_TRUE(traced_part(c.message));
    }
}
