#include "wizard/WizDriveUnits.h"

#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizardDlg.h"

CWizDriveUnits::CWizDriveUnits(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {
    for (const InterfaceRowIds& ids : kRowIds)
        MapCommand(korv::ui::CBN_SELCHANGE, ids.combo, [this] { UpdateButtons(); });
}

bool CWizDriveUnits::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    m_builtMode = -1;
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        m_rows[i].Bind(this, kRowIds[i].label, kRowIds[i].combo);
    return true;
}

void CWizDriveUnits::OnShowWindow(bool bShow, unsigned /*nStatus*/) {
    if (!bShow)
        return;
    const CWizNewPage2* interfaces = GetInterfacePage(m_pWizard);
    if (!interfaces)
        return;
    // The same mode keeps the rows and every choice made in them.
    const int mode = interfaces->GetInterfaceMode();
    if (mode == m_builtMode)
        return;
    m_builtMode = mode;
    RebuildRows();
}

const MachineSheetList* CWizDriveUnits::MachineSheets() const {
    if (!m_pWizard || !m_pWizard->m_pParent)
        return nullptr;
    return m_pWizard->m_pParent->m_machineSheets.get();
}

void CWizDriveUnits::FillCandidates() {
    const std::string none = TranslateText("No Driveunit.txt");
    m_listCom1.assign(1, none);
    m_listCom2.assign(1, none);
    const MachineSheetList* sheets = MachineSheets();
    if (!sheets)
        return;
    for (const auto& sheet : *sheets) {
        if (!sheet || !(sheet->flags & (kSheetContour | kSheetSurface)))
            continue;
        if (m_builtMode == 0 && !(sheet->flags & kSheetSwitch))
            continue;
        if (sheet->flags & kSheetCom1)
            m_listCom1.emplace_back(sheet->name);
        if (sheet->flags & kSheetCom2)
            m_listCom2.emplace_back(sheet->name);
    }
}

void CWizDriveUnits::RebuildRows() {
    m_rowCount = 0;
    FillCandidates();
    for (InterfaceRow& row : m_rows)
        row.Reset();
    UpdateButtons();
    switch (m_builtMode) {
    case 0: {
        const std::string port = TranslateText("Port number.txt");
        for (int i = 0; i < kRows; ++i)
            m_rows[static_cast<std::size_t>(i)].FillRow(port + " " + std::to_string(i + 1),
                                                        i < 4 ? m_listCom1 : m_listCom2);
        m_rowCount = kRows;
        break;
    }
    case 1:
        m_rows[0].FillRow("Driveunit 1", m_listCom1);
        m_rowCount = 1;
        break;
    case 2:
        m_rows[0].FillRow("Driveunit 2", m_listCom2);
        m_rowCount = 1;
        break;
    case 3:
        m_rows[0].FillRow("Driveunit 1", m_listCom1);
        m_rows[1].FillRow("Driveunit 2", m_listCom2);
        m_rowCount = 2;
        break;
    default:
        KERRLOG("RebuildRows(): unknown interface mode #%d", m_builtMode);
        break;
    }
}

void CWizDriveUnits::UpdateButtons() {
    if (!m_pWizard)
        return;
    const int count = CountSelected();
    bool next = false;
    switch (m_builtMode) {
    case 0:
        next = count >= 1;
        break;
    case 1:
    case 2:
        next = count == 1;
        break;
    case 3:
        next = count == 2;
        break;
    default:
        break;
    }
    m_pWizard->EnableDlgItem(korv::ui::IDOK, next);
    m_pWizard->EnableDlgItem(CWizardDlg::IDC_BACK, true);
}

std::string CWizDriveUnits::GetRowText(int row) const {
    if (row < 0 || row >= kRows) {
        KERRLOG("GetRowText(): no row #%d", row);
        return {};
    }
    const korv::ui::CComboBox& combo = m_rows[static_cast<std::size_t>(row)].m_combo;
    if (combo.GetCurSel() == 0)
        return {};
    std::string text;
    combo.GetWindowText(text);
    return text;
}

int CWizDriveUnits::CountSelected() const {
    int count = 0;
    for (const InterfaceRow& row : m_rows)
        if (row.m_combo.GetCurSel() >= 1)
            ++count;
    return count;
}

const MachineDataSheet* CWizDriveUnits::FindDriveUnit(const std::string& name) const {
    if (const MachineSheetList* sheets = MachineSheets())
        for (const auto& sheet : *sheets)
            if (sheet && name == sheet->name)
                return sheet.get();
    return nullptr;
}

CWizDriveUnits* GetDriveUnitPage(const CWizardDlg* pWizard) {
    auto* page = pWizard
                     ? dynamic_cast<CWizDriveUnits*>(pWizard->GetPage(CWizDriveUnits::kPageIndex))
                     : nullptr;
    if (!page)
        KERRLOG("GetDriveUnitPage(): the wizard has no drive unit page at #%d",
                CWizDriveUnits::kPageIndex);
    return page;
}
