#include "catalogue_test_files.h"
#include "machine_reader.h"

#include <gtest/gtest.h>

using namespace catalogue_test;
using korv::testing::LogCapture;

namespace {

const std::string kConfig = kWork + "midspan.cfg";

std::vector<std::string> keys(const MachineTreeMap& map) {
    std::vector<std::string> out;
    for (const auto& entry : map)
        out.push_back(entry.first);
    return out;
}

bool read(MachineTreeMap& map) {
    return GetAllMachinesFromConfigFile(kConfig.c_str(), kWork.c_str(), map);
}

} // namespace

TEST(MachineConfigFile, DriveUnitsComeFromTheirFilesWithOneRecordPerOrderNumber) {
    Install install;
    install.write_c(kConfig, "[DRIVEUNIT]\n"
                             "file_1=.\\SP_Support\\DriveUnit_VD.dat\nno_1=VD 120\n"
                             "file_2=.\\SP_Support\\DriveUnit_VD.dat\nno_2=XD 130\n"
                             "file_3=.\\Form\\DriveUnit_MFU.dat\nno_3=MFU 100\n");
    install.write_c(kWork + "SP_Support\\DriveUnit_VD.dat",
                    "[ORDERNO.VD 120]\nno_1=6110\nno_2=6111\n"
                    "[VD 120:Order-No:6110]\ninterface=COM1,switch\ngroup=CONTOUR/SURFACE\n"
                    "table=manual\n"
                    "[VD 120:Order-No:6111]\ninterface=COM2\ngroup=CONTOUR/SURFACE\n"
                    "[XD 130]\ninterface=COM1\ngroup=SURFACE\n");
    install.write_c(kWork + "Form\\DriveUnit_MFU.dat",
                    "[ORDERNO.MFU 100]\nno_1=A-77\n[MFU 100:Order-No:A-77]\ntable=automatic\n");

    LogCapture log;
    MachineTreeMap map;
    ASSERT_TRUE(read(map));
    EXPECT_EQ(keys(map), (std::vector<std::string>{"MFU 100", "VD 120", "XD 130"}));

    const std::string folder = kWork + "SP_Support\\";
    const std::string file = folder + "DriveUnit_VD.dat";
    EXPECT_EQ(map.find("VD 120")->second,
              (std::vector<MachineProperties>{
                  {"COM1,switch", "CONTOUR/SURFACE", "6110", file, folder, "manual", ""},
                  {"COM2", "CONTOUR/SURFACE", "6111", file, folder, "", ""}}));
    // No ORDERNO section: one record without order number, read from the bare key.
    EXPECT_EQ(map.find("XD 130")->second,
              (std::vector<MachineProperties>{{"COM1", "SURFACE", "", file, folder, "", ""}}));

    const MachineProperties& form = map.find("MFU 100")->second.at(0);
    EXPECT_EQ(form.folder, kWork + "Form\\");
    EXPECT_EQ(form.table, "automatic");
    EXPECT_EQ(form.group, "");
    EXPECT_EQ(log.errors(), std::vector<std::string>{
                                "GetAllMachineDirectories(): not found [MFU 100:Order-No:A-77] "
                                "group= in file '" +
                                kWork + "Form\\DriveUnit_MFU.dat'"});
}

TEST(MachineConfigFile, ListEndsAtTheFirstMissingFileOrNumber) {
    Install install;
    install.write_c(kWork + "SP_Support\\DriveUnit.dat", "[ORDERNO.VD 120]\nno_1=1\n");
    MachineTreeMap map{{"stale", {}}};

    // A file without its number ends the list before anything is added.
    install.write_c(kConfig, "[DRIVEUNIT]\nfile_1=.\\SP_Support\\DriveUnit.dat\n"
                             "file_2=.\\SP_Support\\DriveUnit.dat\nno_2=VD 120\n");
    EXPECT_TRUE(read(map));
    EXPECT_TRUE(map.empty());

    install.write_c(kConfig, "[DRIVEUNIT]\nfile_1=.\\SP_Support\\DriveUnit.dat\nno_1=VD 120\n"
                             "file_3=.\\SP_Support\\DriveUnit.dat\nno_3=VD 130\n");
    EXPECT_TRUE(read(map));
    EXPECT_EQ(keys(map), std::vector<std::string>{"VD 120"});
}

TEST(MachineConfigFile, ValueWithoutDotFolderFailsTheWholeRead) {
    Install install;
    install.write_c(kConfig, "[DRIVEUNIT]\nfile_1=.\\SP_Support\\DriveUnit.dat\nno_1=VD 120\n"
                             "file_2=SP_Support\\DriveUnit.dat\nno_2=VD 130\n");
    TraceContext trace;
    MachineTreeMap map;
    EXPECT_FALSE(read(map));
    EXPECT_TRUE(trace.has("file_2=SP_Support\\DriveUnit.dat"));
    EXPECT_FALSE(GetAllMachinesFromConfigFile(nullptr, kWork.c_str(), map));
}
