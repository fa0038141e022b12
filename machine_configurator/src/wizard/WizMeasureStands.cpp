#include "wizard/WizMeasureStands.h"

#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizDriveUnits.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage3.h"
#include "wizard/WizardDlg.h"

#include <algorithm>

namespace {

// The only units the "SZ 750 D" stand takes, compared whole.
constexpr const char* kStand750Units[] = {"QCV",    "VD 120", "XD 120", "WD 120",
                                          "XD 260", "XD 130", "WD 130"};

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

} // namespace

CWizMeasureStands::CWizMeasureStands(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {}

bool CWizMeasureStands::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        m_rows[i].Bind(this, kRowIds[i].label, kRowIds[i].combo);
    return true;
}

void CWizMeasureStands::OnShowWindow(bool bShow, unsigned /*nStatus*/) {
    if (bShow)
        BuildRows();
}

void CWizMeasureStands::FillStandTexts() {
    m_standTexts.clear();
    const StandSheetList* stands =
        m_pWizard && m_pWizard->m_pParent ? m_pWizard->m_pParent->m_standSheets.get() : nullptr;
    if (!stands || stands->empty())
        return;
    const CWizNewPage3* tablePage = GetTablePage(m_pWizard);
    const bool cncTable = tablePage && tablePage->IsCncTable();
    for (const auto& stand : *stands) {
        if (!stand || (cncTable && !stand->cnc))
            continue;
        const std::string name = stand->name;
        // A horizontal-only stand is offered both with its suffix and bare.
        if (stand->position & kStandHorizontal)
            m_standTexts.push_back(name + " (hor.)");
        if (stand->position & kStandVertical)
            m_standTexts.push_back(name + " (vert.)");
        else
            m_standTexts.push_back(name);
    }
}

void CWizMeasureStands::FilterStands(const std::string& driveUnit,
                                     std::vector<std::string>& result) const {
    const bool stand750Allowed = std::any_of(std::begin(kStand750Units), std::end(kStand750Units),
                                             [&](const char* unit) { return driveUnit == unit; });
    const CWizNewPage3* tablePage = GetTablePage(m_pWizard);
    const bool tableTB = tablePage && Contains(tablePage->GetTableName(), "TB");
    for (const std::string& text : m_standTexts) {
        if (Contains(text, "SZ 750 D") && !stand750Allowed)
            continue;
        if (tableTB && Contains(text, "HB"))
            continue;
        result.push_back(text);
    }
}

void CWizMeasureStands::BuildRows() {
    const CWizDriveUnits* units = GetDriveUnitPage(m_pWizard);
    for (int i = 0; i < kRows; ++i)
        m_driveSnapshot[static_cast<std::size_t>(i)] = units ? units->GetRowText(i) : std::string();
    FillStandTexts();
    m_rowCount = 0;
    for (InterfaceRow& row : m_rows)
        row.Reset();
    const CWizNewPage2* interfaces = GetInterfacePage(m_pWizard);
    if (!interfaces)
        return;
    const int mode = interfaces->GetInterfaceMode();
    // In mode 0 only the ports with a unit get a row; the other modes build
    // their rows even for an empty unit.
    const int unitRows = mode == 0 ? kRows : mode == 3 ? 2 : 1;
    for (int i = 0; i < unitRows; ++i) {
        const std::string& unit = m_driveSnapshot[static_cast<std::size_t>(i)];
        if (mode == 0 && unit.empty())
            continue;
        std::vector<std::string> stands;
        FilterStands(unit, stands);
        m_rows[static_cast<std::size_t>(m_rowCount++)].FillRow(unit, stands);
    }
}

std::string CWizMeasureStands::GetStandText(int row) const {
    if (row < 0 || row >= kRows) {
        KERRLOG("GetStandText(): no row #%d", row);
        return {};
    }
    return m_rows[static_cast<std::size_t>(row)].SelectedItem();
}
