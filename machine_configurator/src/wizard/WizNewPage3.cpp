#include "wizard/WizNewPage3.h"

#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizDriveUnits.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizardDlg.h"

CWizNewPage3::CWizNewPage3(CWizardDlg* pWizard) : CWizardPage(IDD, pWizard) {}

bool CWizNewPage3::OnInitDialog() {
    CDialog::OnInitDialog();
    korv::ui::Translate(this, 0, "RigCfg");
    m_tableCombo.SubclassDlgItem(IDC_TABLES, this);
    return true;
}

void CWizNewPage3::OnShowWindow(bool bShow, unsigned /*nStatus*/) {
    if (!bShow) {
        // Kept for the next visit and for the stand page, which is shown next.
        const int sel = m_tableCombo.GetCurSel();
        if (sel >= 0 && sel < static_cast<int>(m_tables.size()))
            m_lastTable = m_tables[static_cast<std::size_t>(sel)]->name;
        return;
    }
    if (m_pWizard) {
        m_pWizard->EnableDlgItem(CWizardDlg::IDC_BACK, true);
        m_pWizard->EnableDlgItem(korv::ui::IDOK, true);
    }
    FillTables();
}

void CWizNewPage3::FillTables() {
    m_tableCombo.ResetContent();
    m_tables.clear();
    const TableSheetList* sheets =
        m_pWizard && m_pWizard->m_pParent ? m_pWizard->m_pParent->m_tableSheets.get() : nullptr;
    if (sheets)
        for (const auto& table : *sheets)
            if (TableFits(table.get())) {
                m_tables.push_back(table.get());
                m_tableCombo.AddString(TranslateText(table->name));
            }
    int selection = 0;
    for (std::size_t i = 0; i < m_tables.size(); ++i)
        if (m_lastTable == m_tables[i]->name)
            selection = static_cast<int>(i);
    if (!m_tables.empty())
        m_tableCombo.SetCurSel(selection);
}

bool CWizNewPage3::TableFits(const TableDataSheet* table) const {
    if (!table)
        return false;
    if (!table->cnc)
        return true;
    const CWizNewPage2* interfaces = GetInterfacePage(m_pWizard);
    if (!interfaces || interfaces->GetInterfaceMode() == 0)
        return false;
    const CWizDriveUnits* units = GetDriveUnitPage(m_pWizard);
    if (!units || units->CountSelected() != 1)
        return false;
    const MachineDataSheet* unit = units->FindDriveUnit(units->GetRowText(0));
    return unit && unit->cnc;
}

std::string CWizNewPage3::GetTableName() const {
    const int sel = m_tableCombo.GetCurSel();
    if (sel < 0 || sel >= static_cast<int>(m_tables.size())) {
        KERRLOG("GetTableName(): selection #%d is not one of the %zu tables", sel, m_tables.size());
        return {};
    }
    return m_tables[static_cast<std::size_t>(sel)]->name;
}

bool CWizNewPage3::IsCncTable() const {
    if (m_lastTable.empty())
        return false;
    for (const TableDataSheet* table : m_tables)
        if (m_lastTable == table->name)
            return table->cnc != 0;
    return false;
}

CWizNewPage3* GetTablePage(const CWizardDlg* pWizard) {
    auto* page =
        pWizard ? dynamic_cast<CWizNewPage3*>(pWizard->GetPage(CWizNewPage3::kPageIndex)) : nullptr;
    if (!page)
        KERRLOG("GetTablePage(): the wizard has no table page at #%d", CWizNewPage3::kPageIndex);
    return page;
}
