#include "catalogue/catalogue_test_files.h"

#include "kdirtools.h"

#include <gtest/gtest.h>

using namespace catalogue_test;
using korv::testing::LogCapture;

namespace {

const std::string kRoot = kWork + "form_support\\machines";

std::string cwd() {
    std::string here;
    korv::dir_getwd(here);
    return here;
}

std::vector<std::string> order_numbers(const MachineTreeMap& map, const std::string& key) {
    std::vector<std::string> out;
    for (const MachineProperties& record : map.find(key)->second)
        out.push_back(record.order_no);
    return out;
}

const MachineProperties& record(const MachineTreeMap& map, const std::string& key,
                                std::size_t index = 0) {
    return map.find(key)->second.at(index);
}

} // namespace

TEST(MachineDirectories, MachinesAndOrderNumbersSortBytewiseAndCarryTheirProperties) {
    Install install;
    install.machine(kRoot, "A", "1",
                    "[MACHINE]\nOrderNo = 1 ; first\nXY_Table= auto matic // comment\n"
                    "ProductGroup= Form \nDLL = ffm.dll\n");
    install.machine(kRoot, "AB", "7", machine_ini("7", "FORM"));
    for (const char* order : {"20", "100", "3"})
        install.machine(kRoot, "B", order, machine_ini(order, "korsim"));
    // Bytewise, not ignoring case; no two names differ in case only, as a
    // Windows folder cannot hold both.
    install.machine(kRoot, "a2", "1", machine_ini("1", "KORGEAR"));
    install.write_c(kRoot + "\\readme.txt", "not a machine");
    install.write_c(kRoot + "\\A\\notes.txt", "not an order number");

    const std::string before = cwd();
    MachineTreeMap map{{"stale", {}}};
    ASSERT_TRUE(GetAllMachinesFromDirectories(kRoot.c_str(), map));
    EXPECT_EQ(cwd(), before);

    EXPECT_EQ(keys(map), (std::vector<std::string>{"A", "AB", "B", "a2"}));
    EXPECT_EQ(order_numbers(map, "A"), std::vector<std::string>{"1"});
    EXPECT_EQ(order_numbers(map, "B"), (std::vector<std::string>{"100", "20", "3"}));
    const MachineProperties expected{
        "", "FORM", "1", kRoot + "\\A\\1\\machine.ini", kRoot + "\\A\\1", "automatic", "ffm.dll"};
    EXPECT_EQ(record(map, "A"), expected);
    EXPECT_EQ(record(map, "B", 2).group, "KORSIM");
    EXPECT_EQ(record(map, "B", 2).table, "");
}

TEST(MachineDirectories, MissingRootIsNoFailureAndEmptyMachineFolderKeepsItsKey) {
    Install install;
    LogCapture log;
    MachineTreeMap map{{"stale", {}}};
    EXPECT_TRUE(GetAllMachinesFromDirectories((kWork + "nothing").c_str(), map));
    EXPECT_TRUE(map.empty());
    EXPECT_EQ(log.errors(), std::vector<std::string>{
                                "GetAllMachinesFromDirectories(): directory C:\\work\\nothing "
                                "doesn't exist"});

    install.folder_c(kRoot + "\\Empty");
    EXPECT_TRUE(GetAllMachinesFromDirectories(kRoot.c_str(), map));
    ASSERT_EQ(map.size(), 1u);
    EXPECT_TRUE(map.find("Empty")->second.empty());
}

TEST(MachineDirectories, BadMachineFilesAreReportedAndSkippedOneByOne) {
    Install install;
    // Blanks and comments don't count in the order number check.
    install.machine(kRoot, "Blanks", "12 34", machine_ini(" 1234 // ok", "FORM"));
    install.machine(kRoot, "Differs", "555",
                    machine_ini("556", "FORM", "XY_Table=manual\nDLL=x.dll\n"));
    install.machine(kRoot, "Fallback", "8", "[MACHINE]\nOrderNumber=9\nProductGroup=FORM\n");
    install.machine(kRoot, "Bang", "1", machine_ini("1", "KORSHAFT", "", "!MACHINE"));
    install.machine(kRoot, "NoKey", "4", "[MACHINE]\nProductGroup=KOROPTO\n");
    install.machine(kRoot, "Broken", "2", "garbage before any section\n[MACHINE]\n");
    install.folder_c(kRoot + "\\NoIni\\3");
    install.folder_c(kRoot + "\\Unnumbered\\No_order_number");
    install.machine(kRoot, "Zlast", "1", machine_ini("1", "KORGEAR"));

    LogCapture log;
    MachineTreeMap map;
    ASSERT_TRUE(GetAllMachinesFromDirectories(kRoot.c_str(), map));

    EXPECT_EQ(record(map, "Blanks").order_no + record(map, "Blanks").group, "1234FORM");

    const MachineProperties& differs = record(map, "Differs");
    EXPECT_EQ(differs.ini_path, kRoot + "\\Differs\\555\\machine.ini");
    EXPECT_EQ(differs.group + differs.table + differs.dll, "");
    EXPECT_EQ(count_errors(log, "order number in directory:555  dont equals with order number "
                                "in 'machine.ini' :556"),
              1);
    EXPECT_EQ(record(map, "Fallback").group, ""); // "OrderNumber" is checked too

    EXPECT_EQ(record(map, "Bang").group, "KORSHAFT");
    EXPECT_EQ(record(map, "NoKey").group, "KOROPTO");
    EXPECT_EQ(record(map, "Broken").ini_path, "");
    // A missing machine.ini opens empty and has neither section.
    EXPECT_EQ(record(map, "NoIni").ini_path, kRoot + "\\NoIni\\3\\machine.ini");
    EXPECT_EQ(count_errors(log, "doesn't exist in file " + kRoot + "\\NoIni"), 2);
    MachineProperties unnumbered;
    unnumbered.order_no = "No_order_number";
    EXPECT_EQ(record(map, "Unnumbered"), unnumbered);

    EXPECT_EQ(record(map, "Zlast").group, "KORGEAR");
    EXPECT_EQ(count_errors(log, "XY_Table") + count_errors(log, "DLL"), 0); // optional keys
}
