#include "wizard/unit_page_resources.h"

#include "ui_dialog_template.h"
#include "wizard/WizDriveUnits.h"
#include "wizard/WizMeasureStands.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage3.h"
#include "wizard/WizNewPage4.h"

#include <array>

using korv::ui::ControlKind;
using korv::ui::ControlTemplate;
namespace style = korv::ui::style;

namespace {

// Pages fill the frame's placeholder.
constexpr int kPageWidth = 306;
constexpr int kPageHeight = 140;

// Eight label and combo box rows, both hidden until the page fills them.
std::vector<ControlTemplate> RowControls(const std::array<InterfaceRowIds, 8>& ids) {
    std::vector<ControlTemplate> controls;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const int y = 4 + static_cast<int>(i) * 17;
        controls.push_back(
            {ids[i].label, ControlKind::StaticText, "", {10, y + 2, 110, 10}, style::hidden});
        controls.push_back({ids[i].combo,
                            ControlKind::ComboBox,
                            "",
                            {125, y, 170, 80},
                            style::hidden | style::vscroll});
    }
    return controls;
}

} // namespace

void RegisterUnitPageResources() {
    using K = ControlKind;
    using korv::ui::register_dialog_template;
    register_dialog_template(
        {CWizNewPage2::IDD,
         "",
         kPageWidth,
         kPageHeight,
         {
             {korv::ui::IDC_STATIC,
              K::StaticText,
              "Define interfaces to use for drive unit(s):.txt",
              {10, 5, 280, 10}},
             {CWizNewPage2::IDC_COM1, K::CheckBox, "DRIVEUNIT1.txt", {20, 25, 150, 10}},
             {CWizNewPage2::IDC_SINGLE,
              K::RadioButton,
              "single device.txt",
              {40, 40, 150, 10},
              style::group},
             {CWizNewPage2::IDC_SWITCH, K::RadioButton, "korswitch.txt", {40, 53, 150, 10}},
             {CWizNewPage2::IDC_COM2,
              K::CheckBox,
              "DRIVEUNIT2.txt",
              {20, 73, 150, 10},
              style::group},
         }});
    register_dialog_template(
        {CWizDriveUnits::IDD, "", kPageWidth, kPageHeight, RowControls(CWizDriveUnits::kRowIds)});
    register_dialog_template(
        {CWizNewPage3::IDD,
         "",
         kPageWidth,
         kPageHeight,
         {
             {korv::ui::IDC_STATIC, K::StaticText, "measurement table.txt", {10, 5, 280, 10}},
             {CWizNewPage3::IDC_TABLES, K::ComboBox, "", {10, 20, 200, 80}, style::vscroll},
         }});
    register_dialog_template({CWizMeasureStands::IDD, "", kPageWidth, kPageHeight,
                              RowControls(CWizMeasureStands::kRowIds)});
    register_dialog_template(
        {CWizNewPage4::IDD,
         "",
         kPageWidth,
         kPageHeight,
         {
             {1062, K::StaticText, "Define measurement stand from list:.txt", {10, 5, 280, 10}},
             {CWizNewPage4::IDC_OFFERED, K::ListBox, "", {10, 20, 120, 110}, style::vscroll},
             {CWizNewPage4::IDC_ADD, K::Button, ">>", {137, 60, 25, 14}},
             {CWizNewPage4::IDC_CHOSEN, K::ListBox, "", {170, 20, 100, 110}, style::vscroll},
             {CWizNewPage4::IDC_DELETE, K::BitmapButton, "DELETE", {276, 20, 20, 20}},
             {CWizNewPage4::IDC_UP, K::BitmapButton, "UP", {276, 45, 20, 20}},
             {CWizNewPage4::IDC_DOWN, K::BitmapButton, "DOWN", {276, 70, 20, 20}},
         }});
}
