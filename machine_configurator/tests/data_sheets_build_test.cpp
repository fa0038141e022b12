#include "catalogue_test_files.h"
#include "data_sheets.h"

#include "RigCfgDlg.h"
#include "alias_maschines.h"
#include "ui_host.h"
#include "ui_host_selection.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>

using namespace catalogue_test;
using korv::testing::LogCapture;

namespace {

const std::string kConfig = kWork + "midspan.cfg";

// Answers every box with OK and keeps its text.
class BoxRecorder : public korv::ui::Host {
public:
    explicit BoxRecorder(std::vector<std::string>& boxes) : m_boxes(boxes) {}
    void DialogOpened(korv::ui::CDialog&) override {}
    void RunModal(korv::ui::CDialog& dialog) override { dialog.EndDialog(korv::ui::IDCANCEL); }
    void DialogEnded(korv::ui::CDialog&, int) override {}
    int ShowMessageBox(const std::string& text, unsigned type) override {
        m_boxes.push_back(text + (type & korv::ui::MB_ICONSTOP ? " [stop]" : ""));
        return korv::ui::IDOK;
    }

private:
    std::vector<std::string>& m_boxes;
};

std::string root(const char* product) {
    return kWork + product + "\\machines";
}

// One machine of every product group, spread over the roots the way an
// installation has them, with hidden records and an alias of "KMX 100".
void write_folder_trees(const Install& install) {
    const std::string form = root("form_support");
    install.machine(
        form, "MFU 100", "4711",
        machine_ini("4711", "FORM", "XY_Table=automatic\n[MFU 100]\nConfigGroup=CNC\n"));
    install.machine(form, "MFU 100", "4712", machine_ini("4712", "FORM", "[MFU 100]\nHIDE=1\n"));
    install.machine(form, "MFU 100", "4713", machine_ini("4713", "FORM", "[MFU 100]\nHIDE=\n"));
    install.machine(
        form, "MFU 100", "4714",
        machine_ini("4714", "FORM", "XY_Table=manual\n[MFU 100]\nHIDE=0\nConfigGroup=cnc\n"));
    install.machine(form, "Twin", "1", machine_ini("1", "FORM"));
    install.machine(root("KorSurf"), "KS 500", "1", machine_ini("1", "KORSURF"));
    install.machine(root("KorShaft"), "Shaft 1", "1", machine_ini("1", "KORSHAFT"));
    const std::string gear = root("KorGear");
    install.machine(gear, "KMX 100", "100", machine_ini("100", "KORGEAR"));
    // The alias is looked up under its own name in its parent's file.
    install.machine(gear, "KMX 100", "200",
                    machine_ini("200", "KORGEAR", "[KMX 100 Light]\nHIDE=1\n"));
    install.machine(gear, "Twin", "2", machine_ini("2", "KORGEAR"));
    install.machine(root("KorOpto"), "Opto 1", "1", machine_ini("1", "KOROPTO"));
    install.machine(root("KorOpto"), "Mystery", "1", machine_ini("1", "NOTHING"));
    install.machine(root("KorGeometry"), "Geo 1", "1", machine_ini("1", "KORGEOMETRY"));
    install.machine(root("platform_components"), "Plat 1", "1",
                    machine_ini("1", "PLATFORM_COMPONENTS"));
    install.machine(root("Length_Support"), "Preci 1", "1", machine_ini("1", "PRECIKOR"));
    install.machine(kWork + "KorSim\\SimA\\machines", "KFU 1", "1", machine_ini("1", "KORSIM"));

    const std::string machines = kAliasMachinesFolder;
    install.write_c(machines + "\\KMX_100.ini", "[general]\nmachine=KMX 100\nvariantfolder=K\n");
    install.write_c(machines + "\\KMX_100_Light.alias",
                    "[General]\nfile=KMX_100.ini\nalias_machine_name=KMX 100 Light\n"
                    "[AliasIdentNo_900]\nparent_identno=100\n"
                    "[AliasIdentNo_901]\nparent_identno=200\n");
}

void write_midspan_files(const Install& install, const std::string& table_file = "Tables.dat") {
    install.write_c(kConfig, "[DRIVEUNIT]\n"
                             "file_1=.\\SP_Support\\DriveUnit_VD.dat\nno_1=VD 120\n"
                             "file_2=.\\SP_Support\\DriveUnit_VD.dat\nno_2=Old 1\n"
                             "[TABLE]\nfile=" +
                                 (table_file.empty() ? "" : "SP_Support\\" + table_file) +
                                 "\nno_1=XY-Table CNC\nno_2=Manual Table\nno_3=Hidden Table\n"
                                 "no_5=Behind the gap\n"
                                 "[MEASURESTAND]\nfile=SP_Support\\Stands.dat\n"
                                 "no_1=ST 750\nno_2=ST 300\nno_3=ST 100\nno_4=Wall\n");
    install.write_c(kWork + "SP_Support\\DriveUnit_VD.dat",
                    "[ORDERNO.VD 120]\nno_1=6110\nno_2=6111\n"
                    "[VD 120:Order-No:6110]\ninterface=COM1:switch\ngroup=CONTOUR/SURFACE\n"
                    "[VD 120:Order-No:6111]\ninterface=COM2\ngroup=CONTOUR/SURFACE\n"
                    "[Old 1]\ninterface=COM1\ngroup=SURFACE\nHIDE=1\n");
    install.write_c(kWork + "SP_Support\\Tables.dat", "[XY-Table CNC]\nConfigGroup=CNC\n"
                                                      "[Manual Table]\nConfigGroup=cnc\n"
                                                      "[Hidden Table]\nHIDE=1\n");
    install.write_c(
        kWork + "SP_Support\\Stands.dat",
        "[ST 750]\nposition=horizontal,vertical\nConfigGroup=CNC\n"
        "[ST 300]\nposition=vertical\n[ST 100]\nposition= horizontal\n[Wall]\nHIDE=0\n");
}

class Catalogue : public ::testing::Test {
protected:
    void SetUp() override { korv::ui::install_host(std::make_unique<BoxRecorder>(m_boxes)); }
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
        for (const auto& sheet : *m_machines)
            if (sheet->name == name && sheet->order_no == order)
                return *sheet;
        throw std::runtime_error("no sheet " + name + ":" + order);
    }

    Install m_install;
    std::vector<std::string> m_boxes;
    std::unique_ptr<MachineSheetList> m_machines;
    std::unique_ptr<TableSheetList> m_tables;
    std::unique_ptr<StandSheetList> m_stands;
};

} // namespace

TEST_F(Catalogue, FolderTreesOfEveryRootWithAliasesMakeTheKorEConCatalogue) {
    write_folder_trees(m_install);
    LogCapture log;
    ASSERT_TRUE(build(false));
    ASSERT_TRUE(m_machines);
    EXPECT_FALSE(m_tables);
    EXPECT_FALSE(m_stands);
    // Key order across the roots; equal keys in root order; hidden records gone.
    EXPECT_EQ(machine_names(),
              (std::vector<std::string>{"Geo 1:1", "KFU 1:1", "KMX 100:100", "KMX 100:200",
                                        "KMX 100 Light:900", "KS 500:1", "MFU 100:4711",
                                        "MFU 100:4714", "Mystery:1", "Opto 1:1", "Plat 1:1",
                                        "Preci 1:1", "Shaft 1:1", "Twin:1", "Twin:2"}));

    const std::map<std::string, std::uint32_t> group_bits = {{"Geo 1", kSheetKorGeometry},
                                                             {"KFU 1", kSheetKorSim},
                                                             {"KMX 100", kSheetKorGear},
                                                             {"KMX 100 Light", kSheetKorGear},
                                                             {"KS 500", kSheetKorSurf},
                                                             {"MFU 100", kSheetForm},
                                                             {"Mystery", 0},
                                                             {"Opto 1", kSheetKorOpto},
                                                             {"Plat 1", kSheetPlatformComponents},
                                                             {"Preci 1", kSheetPrecikor},
                                                             {"Shaft 1", kSheetKorShaft}};
    for (const auto& [name, bit] : group_bits)
        EXPECT_EQ(machine(name, name == "KMX 100 Light" ? "900"
                                : name == "KMX 100"     ? "100"
                                : name == "MFU 100"     ? "4711"
                                                        : "1")
                      .flags,
                  kSheetAlways | bit)
            << name;
    EXPECT_EQ(machine("Twin", "1").flags, kSheetAlways | kSheetForm);
    EXPECT_EQ(machine("Twin", "2").flags, kSheetAlways | kSheetKorGear);
    EXPECT_EQ(count_errors(log, "InitCfgDataStructure(): no product group found for Mystery, "
                                "OrderNo: 1, '" +
                                    root("KorOpto") + "\\Mystery\\1\\machine.ini'"),
              1);

    // A hidden record keeps its place: the fourth order number has index 3.
    const MachineDataSheet& first = machine("MFU 100", "4711");
    const MachineDataSheet& fourth = machine("MFU 100", "4714");
    EXPECT_EQ(first.index, 0u);
    EXPECT_EQ(fourth.index, 3u);
    EXPECT_EQ(first.table_mode, kTableAutomatic);
    EXPECT_EQ(fourth.table_mode, kTableManual);
    EXPECT_EQ(first.cnc, 1);
    EXPECT_EQ(fourth.cnc, 0); // "cnc" is not "CNC"
    EXPECT_EQ(fourth.folder, root("form_support") + "\\MFU 100\\4714");
    EXPECT_EQ(fourth.ini_path, fourth.folder + "\\machine.ini");
    // The alias carries its parent's files.
    EXPECT_EQ(machine("KMX 100 Light", "900").ini_path, machine("KMX 100", "100").ini_path);
}

TEST_F(Catalogue, DamagedAliasOrUnreadableRootEndsTheBuildWithAnEmptyList) {
    write_folder_trees(m_install);
    m_install.write_c(std::string(kAliasMachinesFolder) + "\\Broken.alias",
                      "[General]\nfile=KMX_100.ini\n");
    LogCapture log;
    EXPECT_FALSE(build(false));
    ASSERT_TRUE(m_machines);
    EXPECT_TRUE(m_machines->empty());
    EXPECT_TRUE(log.has_error("alias_machine_name= failed"));
    EXPECT_TRUE(log.has_error("CMidSpanCfgDlg::InitCfgDataStructure(): getAliasMachines() failed"));

    // Without any alias folder at all the build fails the same way.
    std::filesystem::remove_all(m_install.host(kAliasMachinesFolder));
    EXPECT_FALSE(build(false));
    EXPECT_TRUE(m_machines->empty());
}

TEST_F(Catalogue, MidspanCatalogueComesFromTheConfigurationFileWithTablesAndStands) {
    write_folder_trees(m_install); // read, and dropped
    write_midspan_files(m_install);
    ASSERT_TRUE(build(true));
    EXPECT_EQ(machine_names(), (std::vector<std::string>{"VD 120:6110", "VD 120:6111"}));
    EXPECT_EQ(machine("VD 120", "6110").flags,
              kSheetAlways | kSheetContour | kSheetCom1 | kSheetSwitch);
    EXPECT_EQ(machine("VD 120", "6111").flags, kSheetAlways | kSheetContour | kSheetCom2);
    EXPECT_EQ(machine("VD 120", "6111").index, 1u);
    EXPECT_EQ(machine("VD 120", "6111").folder, kWork + "SP_Support\\");

    ASSERT_TRUE(m_tables);
    std::vector<std::string> tables;
    for (const auto& sheet : *m_tables)
        tables.push_back(sheet->name + std::string(sheet->cnc ? " cnc" : ""));
    EXPECT_EQ(tables, (std::vector<std::string>{"XY-Table CNC cnc", "Manual Table"}));

    ASSERT_TRUE(m_stands);
    std::vector<std::string> stands;
    for (const auto& sheet : *m_stands)
        stands.push_back(sheet->name + (" " + std::to_string(sheet->position)) +
                         (sheet->cnc ? " cnc" : ""));
    EXPECT_EQ(stands, (std::vector<std::string>{"ST 750 3 cnc", "ST 300 2", "ST 100 1", "Wall 0"}));
    EXPECT_TRUE(m_boxes.empty());
}

TEST_F(Catalogue, MissingTableFileIsToldAndTheTablesAreStillListed) {
    write_midspan_files(m_install, "");
    LogCapture log;
    ASSERT_TRUE(build(true));
    EXPECT_EQ(m_boxes, std::vector<std::string>{"Error: Missing entry [TABLE] 'file='.msg [stop]"});
    EXPECT_TRUE(log.has_error("INICfgFileIo(): missing entry [TABLE] 'file=' in " + kConfig));
    ASSERT_TRUE(m_tables);
    EXPECT_EQ(m_tables->size(), 3u); // nothing is hidden without a data file
    EXPECT_EQ(m_stands->size(), 4u);
}

TEST_F(Catalogue, DriveUnitValueWithoutDotFolderLeavesTheMidspanSheetsEmpty) {
    write_midspan_files(m_install);
    ASSERT_TRUE(build(true));
    m_install.write_c(kConfig, "[DRIVEUNIT]\nfile_1=SP_Support\\DriveUnit_VD.dat\nno_1=VD 120\n"
                               "[TABLE]\nfile=SP_Support\\Tables.dat\nno_1=XY-Table CNC\n");
    LogCapture log;
    EXPECT_FALSE(build(true));
    ASSERT_TRUE(m_machines);
    EXPECT_TRUE(m_machines->empty());
    EXPECT_FALSE(m_tables); // the old lists are gone, no new ones made
    EXPECT_FALSE(m_stands);
    EXPECT_TRUE(log.has_error("InitCfgDataStructure():  GetAllMachinesFromConfigFile() failed"));
}

TEST_F(Catalogue, DialogBuildsAndFreesItsSheetsForEveryProductType) {
    write_folder_trees(m_install);
    write_midspan_files(m_install);
    for (const ProductType type : {ProductTypeMidspan, ProductTypeKorECon, ProductTypeMTMillikor}) {
        SCOPED_TRACE(type);
        CMidSpanCfgDlg dialog(type, kWork, kWork, nullptr);
        EXPECT_FALSE(dialog.m_machineSheets);
        const bool midspan = type == ProductTypeMidspan;
        EXPECT_TRUE(dialog.InitCfgDataStructure(midspan ? kConfig : ""));
        ASSERT_TRUE(dialog.m_machineSheets);
        EXPECT_EQ(dialog.m_machineSheets->size(), midspan ? 2u : 15u);
        EXPECT_EQ(bool(dialog.m_tableSheets), midspan);
        EXPECT_EQ(bool(dialog.m_standSheets), midspan);

        // A second build starts from scratch.
        EXPECT_TRUE(dialog.InitCfgDataStructure(midspan ? kConfig : ""));
        EXPECT_EQ(dialog.m_machineSheets->size(), midspan ? 2u : 15u);

        dialog.FreeCfgDataStructure();
        EXPECT_FALSE(dialog.m_machineSheets);
        EXPECT_FALSE(dialog.m_tableSheets);
        EXPECT_FALSE(dialog.m_standSheets);
    }
}
