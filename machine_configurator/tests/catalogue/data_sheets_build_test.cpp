#include "catalogue/catalogue_test_files.h"
#include "catalogue/data_sheets.h"
#include "rigcfg_files_fixture.h"

#include "catalogue/alias_maschines.h"

#include <gtest/gtest.h>

using namespace catalogue_test;
using korv::testing::LogCapture;

namespace {

const std::string kConfig = kWork + "midspan.cfg";

std::string root(const char* product) {
    return kWork + product + "\\machines";
}

// One machine of every product group over the roots of an installation, with
// hidden records, a machine name in two roots and an alias of "KMX 100".
void write_folder_trees(const Install& install) {
    const struct {
        const char *root, *name, *order, *group, *extra;
    } records[] = {
        // clang-format off
        {"form_support", "MFU 100", "1", "FORM", "XY_Table=automatic\n[MFU 100]\nConfigGroup=CNC\n"},
        {"form_support", "MFU 100", "2", "FORM", "[MFU 100]\nHIDE=1\n"},
        {"form_support", "MFU 100", "3", "FORM", "[MFU 100]\nHIDE=\n"},
        {"form_support", "MFU 100", "4", "FORM", "XY_Table=manual\n[MFU 100]\nHIDE=0\nConfigGroup=cnc\n"},
        {"form_support", "Twin", "1", "FORM", ""},
        {"KorGear", "KMX 100", "1", "KORGEAR", ""},
        // The alias is looked up under its own name in its parent's file.
        {"KorGear", "KMX 100", "2", "KORGEAR", "[KMX 100 Light]\nHIDE=1\n"},
        {"KorGear", "Twin", "2", "KORGEAR", ""},
        {"KorSurf", "KS 500", "1", "KORSURF", ""},
        {"KorShaft", "Shaft", "1", "KORSHAFT", ""},
        {"KorOpto", "Opto", "1", "KOROPTO", ""},
        {"KorOpto", "Mystery", "1", "NOTHING", ""},
        {"KorGeometry", "Geo", "1", "KORGEOMETRY", ""},
        {"platform_components", "Plat", "1", "PLATFORM_COMPONENTS", ""},
        {"Length_Support", "Preci", "1", "PRECIKOR", ""},
        {"KorSim\\SimA", "KFU", "1", "KORSIM", ""},
        // clang-format on
    };
    for (const auto& m : records)
        install.machine(root(m.root), m.name, m.order, machine_ini(m.order, m.group, m.extra));

    const std::string machines = kAliasMachinesFolder;
    install.write_c(machines + "\\KMX_100.ini", "[general]\nmachine=KMX 100\nvariantfolder=K\n");
    install.write_c(machines + "\\KMX_100_Light.alias",
                    "[General]\nfile=KMX_100.ini\nalias_machine_name=KMX 100 Light\n"
                    "[AliasIdentNo_9]\nparent_identno=1\n[AliasIdentNo_8]\nparent_identno=2\n");
}

void write_midspan_files(const Install& install, const std::string& table_file = "Tables.dat") {
    install.write_c(kConfig, "[DRIVEUNIT]\nfile_1=.\\SP_Support\\DriveUnit.dat\nno_1=VD 120\n"
                             "file_2=.\\SP_Support\\DriveUnit.dat\nno_2=Old 1\n"
                             "file_3=.\\SP_Support\\DriveUnit.dat\nno_3=XD 130\n"
                             "[TABLE]\nfile=" +
                                 table_file +
                                 "\nno_1=XY CNC\nno_2=Manual\nno_3=Hidden\nno_5=Behind the gap\n"
                                 "[MEASURESTAND]\nfile=Stands.dat\n"
                                 "no_1=ST 750\nno_2=ST 300\nno_3=ST 100\nno_4=Wall\n");
    install.write_c(kWork + "SP_Support\\DriveUnit.dat",
                    "[ORDERNO.VD 120]\nno_1=6110\nno_2=6111\n"
                    "[VD 120:Order-No:6110]\ninterface=COM1:switch\ngroup=CONTOUR/SURFACE\n"
                    "table=manual\n"
                    "[VD 120:Order-No:6111]\ninterface=COM2\ngroup=CONTOUR/SURFACE\n"
                    "[Old 1]\ninterface=COM1\ngroup=SURFACE\nHIDE=1\n"
                    "[XD 130]\ninterface=COM2\ngroup=SURFACE\n");
    install.write_c(kWork + "Tables.dat",
                    "[XY CNC]\nConfigGroup=CNC\n[Manual]\nConfigGroup=cnc\n[Hidden]\nHIDE=1\n");
    install.write_c(
        kWork + "Stands.dat",
        "[ST 750]\nposition=horizontal,vertical\nConfigGroup=CNC\n"
        "[ST 300]\nposition=vertical\n[ST 100]\nposition= horizontal\n[Wall]\nHIDE=0\n");
}

class Catalogue : public ::testing::Test {
protected:
    void SetUp() override {
        korv::ui::install_host(std::make_unique<rigcfg_test::RecordingHost>(m_boxes));
    }
    void TearDown() override { korv::ui::reset_host_selection(); }

    bool build(bool midspan) {
        return BuildDataSheets(midspan, kWork, midspan ? kConfig : "", m_machines, m_tables,
                               m_stands);
    }
    // "name:order_no" of each machine sheet, in list order.
    std::vector<std::string> machine_names() const {
        std::vector<std::string> names;
        for (const auto& sheet : *m_machines)
            names.push_back(std::string(sheet->name) + ":" + sheet->order_no);
        return names;
    }
    const MachineDataSheet& machine(const std::string& name, const std::string& order) const {
        const auto found = std::find_if(m_machines->begin(), m_machines->end(), [&](auto& sheet) {
            return sheet->name == name && sheet->order_no == order;
        });
        EXPECT_NE(found, m_machines->end()) << name << ":" << order;
        return found == m_machines->end() ? m_none : **found;
    }

    Install m_install;
    std::vector<rigcfg_test::Box> m_boxes;
    std::unique_ptr<MachineSheetList> m_machines;
    std::unique_ptr<TableSheetList> m_tables;
    std::unique_ptr<StandSheetList> m_stands;
    MachineDataSheet m_none;
};

} // namespace

TEST_F(Catalogue, FolderTreesOfEveryRootWithAliasesMakeTheKorEConCatalogue) {
    write_folder_trees(m_install);
    ASSERT_TRUE(build(false));
    EXPECT_FALSE(m_tables);
    EXPECT_FALSE(m_stands);
    // Key order across the roots; equal keys in root order; hidden records gone.
    EXPECT_EQ(machine_names(), (std::vector<std::string>{
                                   "Geo:1", "KFU:1", "KMX 100:1", "KMX 100:2", "KMX 100 Light:9",
                                   "KS 500:1", "MFU 100:1", "MFU 100:4", "Mystery:1", "Opto:1",
                                   "Plat:1", "Preci:1", "Shaft:1", "Twin:1", "Twin:2"}));
    // Each sheet takes its record's group; the key's mapping has its own test.
    EXPECT_EQ(machine("KFU", "1").flags, kSheetAlways | kSheetKorSim);
    EXPECT_EQ(machine("Mystery", "1").flags, kSheetAlways);
    EXPECT_EQ(machine("Twin", "1").flags, kSheetAlways | kSheetForm);
    EXPECT_EQ(machine("Twin", "2").flags, kSheetAlways | kSheetKorGear);

    // A hidden record keeps its place: the fourth order number has index 3.
    const MachineDataSheet& first = machine("MFU 100", "1");
    const MachineDataSheet& fourth = machine("MFU 100", "4");
    EXPECT_EQ(fourth.index, 3u);
    EXPECT_EQ(first.table_mode, kTableAutomatic);
    EXPECT_EQ(fourth.table_mode, kTableManual);
    EXPECT_EQ(first.cnc, 1);
    EXPECT_EQ(fourth.cnc, 0); // "cnc" is not "CNC"
    EXPECT_EQ(fourth.folder, root("form_support") + "\\MFU 100\\4");
    EXPECT_EQ(fourth.ini_path, fourth.folder + "\\machine.ini");
}

TEST_F(Catalogue, DamagedAliasEndsTheBuildWithAnEmptyList) {
    write_folder_trees(m_install);
    m_install.write_c(std::string(kAliasMachinesFolder) + "\\Broken.alias",
                      "[General]\nfile=KMX_100.ini\n");
    LogCapture log;
    EXPECT_FALSE(build(false));
    ASSERT_TRUE(m_machines);
    EXPECT_TRUE(m_machines->empty());
    EXPECT_TRUE(log.has_error("CMidSpanCfgDlg::InitCfgDataStructure(): getAliasMachines() failed"));
}

TEST_F(Catalogue, MidspanCatalogueComesFromTheConfigurationFileWithTablesAndStands) {
    write_folder_trees(m_install); // read, and dropped
    write_midspan_files(m_install);
    ASSERT_TRUE(build(true));
    EXPECT_EQ(machine_names(), (std::vector<std::string>{"VD 120:6110", "VD 120:6111", "XD 130:"}));
    const MachineDataSheet& vd = machine("VD 120", "6110");
    EXPECT_EQ(vd.flags, kSheetAlways | kSheetContour | kSheetCom1 | kSheetSwitch);
    EXPECT_EQ(vd.table_mode, kTableManual);
    EXPECT_EQ(vd.folder, kWork + "SP_Support\\");
    EXPECT_EQ(machine("VD 120", "6111").flags, kSheetAlways | kSheetContour | kSheetCom2);
    EXPECT_EQ(machine("VD 120", "6111").index, 1u);
    // No order number section: one record from the bare key.
    EXPECT_EQ(machine("XD 130", "").flags, kSheetAlways | kSheetSurface | kSheetCom2);

    std::vector<std::string> units;
    for (const auto& sheet : *m_tables)
        units.push_back(sheet->name + std::string(sheet->cnc ? " cnc" : ""));
    for (const auto& sheet : *m_stands)
        units.push_back(sheet->name + (" " + std::to_string(sheet->position)) +
                        (sheet->cnc ? " cnc" : ""));
    EXPECT_EQ(units, (std::vector<std::string>{"XY CNC cnc", "Manual", "ST 750 3 cnc", "ST 300 2",
                                               "ST 100 1", "Wall 0"}));
    EXPECT_TRUE(m_boxes.empty());
}

TEST_F(Catalogue, MissingTableFileIsToldAndTheTablesAreStillListed) {
    write_midspan_files(m_install, "");
    LogCapture log;
    ASSERT_TRUE(build(true));
    ASSERT_EQ(m_boxes.size(), 1u);
    EXPECT_EQ(m_boxes[0].text, "Error: Missing entry [TABLE] 'file='.msg");
    EXPECT_EQ(m_boxes[0].type, korv::ui::MB_ICONSTOP);
    EXPECT_TRUE(log.has_error("INICfgFileIo(): missing entry [TABLE] 'file=' in " + kConfig));
    EXPECT_EQ(m_tables->size(), 3u); // nothing is hidden without a data file
    EXPECT_EQ(m_stands->size(), 4u);
}
