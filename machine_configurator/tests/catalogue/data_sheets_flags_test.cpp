#include "catalogue/data_sheets.h"

#include "log_capture.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(DataSheetFlags, FirstMatchingGroupTestSetsOneGroupBitAndInterfacesAddUp) {
    const struct {
        const char* group;
        std::uint32_t bit;
    } cases[] = {
        {"CONTOUR/SURFACE", kSheetContour},
        {"CONTOUR", kSheetContour},
        {"SURFACE", kSheetSurface},
        {"FORM", kSheetForm},
        {"KORSIM", kSheetKorSim},
        {"KORSHAFT", kSheetKorShaft},
        {"PRECIKOR", kSheetPrecikor},
        {"KORGEAR", kSheetKorGear},
        {"KOROPTO", kSheetKorOpto},
        {"PLATFORM_COMPONENTS", kSheetPlatformComponents},
        {"KORSURF", kSheetKorSurf},
        {"KORGEOMETRY", kSheetKorGeometry},
        // Containment, in test order: only the exact key is kept from "FORM".
        {"PLATFORM_COMPONENTS_2", kSheetForm},
        {"KORSIM/FORM", kSheetKorSim},
        {"FORM+SURFACE", kSheetForm},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.group);
        bool found = false;
        EXPECT_EQ(MachineSheetFlags("", c.group, found), kSheetAlways | c.bit);
        EXPECT_TRUE(found);
    }
    bool found = true;
    EXPECT_EQ(MachineSheetFlags("COM1", "form", found), kSheetAlways | kSheetCom1);
    EXPECT_FALSE(found); // group keys compare case-sensitively
    EXPECT_EQ(MachineSheetFlags("COM1:switch,COM2", "CONTOUR/SURFACE", found),
              kSheetAlways | kSheetContour | kSheetCom1 | kSheetCom2 | kSheetSwitch);
    EXPECT_EQ(MachineSheetFlags("com1 Switch", "", found), kSheetAlways);
    EXPECT_FALSE(found);
}

TEST(DataSheetText, LongValueIsCutToFitAndLogged) {
    korv::testing::LogCapture log;
    char field[kSheetOrderNoSize];
    std::memset(field, 'x', sizeof field);
    SetSheetText(field, "1234567890123456789", "order_no"); // 19: fits with its terminator
    EXPECT_STREQ(field, "1234567890123456789");

    MachineDataSheet sheet;
    sheet.index = 42; // the field behind order_no
    SetSheetText(sheet.order_no, "12345678901234567890ABCDEFGH", "order_no");
    EXPECT_STREQ(sheet.order_no, "1234567890123456789");
    EXPECT_EQ(sheet.index, 42u);
    ASSERT_EQ(log.errors().size(), 1u);
    EXPECT_NE(log.errors()[0].find("12345678901234567890ABCDEFGH"), std::string::npos);
}
