#include "catalogue/catalogue_test_files.h"

#include <gtest/gtest.h>

using namespace catalogue_test;

namespace {

const std::string kConfig = kWork + "midspan.cfg";

bool read(MachineTreeMap& map) {
    return GetAllMachinesFromConfigFile(kConfig.c_str(), kWork.c_str(), map);
}

using MachineConfigFile = korv::testing::TraceContextTest;

} // namespace

// The records of the drive units show in the catalogue build's Midspan test.
TEST_F(MachineConfigFile, ListEndsAtTheFirstMissingFileOrNumber) {
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

TEST_F(MachineConfigFile, ValueWithoutDotFolderFailsTheWholeRead) {
    Install install;
    install.write_c(kConfig, "[DRIVEUNIT]\nfile_1=.\\SP_Support\\DriveUnit.dat\nno_1=VD 120\n"
                             "file_2=SP_Support\\DriveUnit.dat\nno_2=VD 130\n");
    MachineTreeMap map;
    EXPECT_FALSE(read(map));
    EXPECT_TRUE(traced_part("file_2=SP_Support\\DriveUnit.dat"));
    EXPECT_FALSE(GetAllMachinesFromConfigFile(nullptr, kWork.c_str(), map));
}
