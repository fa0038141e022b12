// The summary of a wizard run and the result strings, built side by side so
// that one can be read off the other.
#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/CustomWizardDlg.h"
#include "wizard/WizDriveUnits.h"
#include "wizard/WizMeasureStands.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizNewPage3.h"
#include "wizard/WizNewPageForm2.h"
#include "wizard/WizNewPageLast.h"
#include "wizard/WizProxies.h"
#include "wizard/wizard_routing.h"

#include <array>

using namespace korv::ui;

namespace {

// Where a machine-based group keeps its pages, and its data sheet mask.
struct MachineGroup {
    const char* key;
    int machinePage;
    int formPage;
    int proxyPage; // -1: the group has none
    std::uint32_t mask;
};

// By group index 1 to 8.
constexpr std::array<MachineGroup, 8> kMachineGroups{{
    {"FORM", 8, 10, 11, kSheetForm},
    {"KORSIM", 12, 13, 14, kSheetKorSim},
    {"KORSHAFT", 15, 16, 17, kSheetKorShaft},
    {"PRECIKOR", 18, 19, -1, kSheetPrecikor},
    {"KORGEAR", 20, 21, -1, kSheetKorGear},
    {"KOROPTO", 22, 23, 24, kSheetKorOpto},
    {"PLATFORM_COMPONENTS", 25, 26, 27, kSheetPlatformComponents},
    {"KORGEOMETRY", 28, 29, 30, kSheetKorGeometry},
}};

// Group 0 in its KorECon form.
constexpr MachineGroup kKorSurfGroup{"KORSURF", 5, 7, -1, kSheetKorSurf};

constexpr const char* kContourGroupKey = "CONTOUR/SURFACE";
constexpr int kInterfacePage = 1;
constexpr int kDriveUnitPage = 2;
constexpr int kTablePage = 3;
constexpr int kStandPage = 4;
constexpr int kSwitchPorts = 8;

} // namespace

std::string* CCustomWizardDlg::SummaryText() const {
    auto* last = GetPageAs<CWizNewPageLast>(kWizSummaryPage);
    return last ? &last->m_summary : nullptr;
}

void CCustomWizardDlg::BuildSummary() {
    auto* groups = GetPageAs<CWizNewPage1>(0);
    auto* last = GetPageAs<CWizNewPageLast>(kWizSummaryPage);
    if (!groups || !last)
        return;
    m_resGroup.clear();
    m_resDriveUnit.clear();
    m_resTable.clear();
    m_resStand.clear();
    m_resControl.clear();
    m_resProxy.clear();
    last->m_summary = TranslateText("product group:.txt") + "\n    ";

    const int group = groups->m_group;
    const MachineGroup* machineGroup = nullptr;
    if (group >= 1 && group <= static_cast<int>(kMachineGroups.size())) {
        machineGroup = &kMachineGroups[static_cast<std::size_t>(group - 1)];
    } else {
        if (group != 0)
            KERRLOG("SetCurSel(): unknown product group #%d", group);
        if (ControlValue() == kWizKorEConControl)
            machineGroup = &kKorSurfGroup;
    }
    const std::string key = machineGroup ? machineGroup->key : kContourGroupKey;
    last->m_summary += key;
    m_resGroup = key;
    last->m_summary += "\n\n";
    if (machineGroup) {
        BuildMachineSummary(GetPageAs<CWizNewPage2a>(machineGroup->machinePage),
                            GetPageAs<CWizNewPageForm2>(machineGroup->formPage),
                            machineGroup->proxyPage >= 0
                                ? GetPageAs<CWizProxies>(machineGroup->proxyPage)
                                : nullptr,
                            machineGroup->mask);
    } else {
        BuildContourSummary();
    }
    last->UpdateData(false);
}

void CCustomWizardDlg::BuildContourSummary() {
    std::string* summary = SummaryText();
    if (!summary)
        return;
    std::string& s = *summary;
    auto* interfaces = GetPageAs<CWizNewPage2>(kInterfacePage);
    auto* units = GetPageAs<CWizDriveUnits>(kDriveUnitPage);
    auto* tables = GetPageAs<CWizNewPage3>(kTablePage);
    auto* stands = GetPageAs<CWizMeasureStands>(kStandPage);
    const auto rowText = [units](int row) {
        return units ? units->GetRowText(row) : std::string();
    };

    s += TranslateText("drive unit(s).txt:") + "\n";
    const bool com1 = interfaces && interfaces->m_com1;
    const bool com2 = interfaces && interfaces->m_com2;
    if (com1) {
        if (interfaces->IsSwitchChosen()) {
            // Empty ports stay empty, so that the commas still mark the ports.
            s += "    COM1(switch): ";
            for (int row = 0; row < kSwitchPorts; ++row) {
                if (row > 0) {
                    s += ",";
                    m_resDriveUnit += ",";
                }
                const std::string text = rowText(row);
                s += text;
                m_resDriveUnit += text;
            }
            m_resDriveUnit += std::string(":") + "COM1:switch";
        } else {
            s += "    COM1: " + rowText(0);
            m_resDriveUnit = rowText(0) + ":" + "COM1";
        }
    }
    if (com2) {
        int row = 0;
        if (com1) {
            s += "\n";
            m_resDriveUnit += ",";
            row = 1;
        }
        const std::string text = rowText(row);
        s += "    COM2: " + text;
        m_resDriveUnit += text + ":" + "COM2";
    }
    s += "\n\n";

    s += TranslateText("measurement table:.txt") + "\n    ";
    const std::string table = tables ? tables->GetTableName() : std::string();
    s += TranslateText(table);
    m_resTable = table;

    // The first sheet of the whole catalogue, not the unit that was chosen.
    const MachineSheetList* sheets = m_pMainDlg ? m_pMainDlg->m_machineSheets.get() : nullptr;
    if (!sheets || sheets->empty()) {
        KERRLOG("BuildContourSummary(): no machine data sheet");
    } else if (const MachineDataSheet* first = sheets->front().get()) {
        m_resIniFolder = first->folder;
        m_resIniFile = first->ini_path;
    }

    s += "\n\n" + TranslateText("measurement stand(s):.txt") + "\n";
    const int rowCount = stands ? stands->m_rowCount : 0;
    for (int i = 0; i < rowCount; ++i) {
        const std::string text = stands->GetStandText(i);
        s += "    ";
        if (i > 0) {
            s += ",";
            m_resStand += ",";
        }
        s += TranslateText(text);
        std::string stand;
        if (StandStringFromListText(text, stand))
            m_resStand += stand;
    }
}

void CCustomWizardDlg::BuildMachineSummary(CWizNewPage2a* machinePage, CWizNewPageForm2* formPage,
                                           CWizProxies* proxyPage, std::uint32_t mask) {
    std::string* summary = SummaryText();
    if (!summary)
        return;
    std::string& s = *summary;

    s += TranslateText("machine.txt:");
    const std::string machine = machinePage ? machinePage->GetChosenMachine() : std::string();
    s += "\n    " + machine;
    m_resMachine = machine;
    s += std::string("\n") + "    ";
    s += TranslateText(mask == kSheetKorShaft ? "Typ.txt" : "Order No.:.txt") + " ";
    const std::string order = formPage ? formPage->GetOrderNumberText() : std::string();
    s += order + "\n";
    m_resOrderNo = order;
    const std::string control = formPage ? formPage->GetControlText() : std::string();
    if (!control.empty()) {
        m_resControl = control;
        s += "    " + TranslateText("Control.txt") + " " + control + "\n";
    }
    m_resDriveUnit = machine + ":Order-No:" + order;
    s += "\n";

    // The KorECon family sees machine, order number, control and proxy only.
    std::string shortText = s;
    if (proxyPage) {
        m_resProxy = proxyPage->GetProxyName();
        shortText += TranslateText("Proxy:.txt") + "\n    ";
        shortText += m_resProxy != kWizKorEConControl ? TranslateText(m_resProxy)
                                                      : TranslateText("no_proxy.txt");
        shortText += "\n";
    }

    s += TranslateText("centering and tilting table:.txt") + "\n    ";
    // Where several sheets match, each adds its word and the last one counts.
    if (const MachineSheetList* sheets = m_pMainDlg ? m_pMainDlg->m_machineSheets.get() : nullptr) {
        for (const auto& sheet : *sheets) {
            if (!sheet || (sheet->flags & mask) == 0 || machine != sheet->name ||
                order != sheet->order_no)
                continue;
            const std::string word = TableStringFromKind(sheet->table_mode);
            s += sheet->table_mode == kTableManual || sheet->table_mode == kTableAutomatic
                     ? word
                     : TranslateText(word);
            m_resTable = word;
            m_resIniFolder = sheet->folder;
            m_resIniFile = sheet->ini_path;
        }
    }

    s += "\n\n" + TranslateText("measurement stand(s):.txt") + "\n    " + "\n" + "    " +
         TranslateText("No Stand");
    m_resStand = "No Stand";
    if (!m_resTabDirectory.empty())
        s += "\n\n" + std::string("directory of probesystem TAB file(s) to copy:\n") + "    " +
             m_resTabDirectory + "\n";
    if (m_pMainDlg && m_pMainDlg->m_productType == ProductTypeKorECon)
        s = shortText;
}
