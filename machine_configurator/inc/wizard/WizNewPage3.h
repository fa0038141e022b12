// Page 3 of the wizard: the measurement table, from the tables that fit the
// drive units chosen on page 2.
#pragma once

#include "catalogue/data_sheets.h"
#include "ui_framework.h"
#include "wizard/WizardPage.h"

#include <string>
#include <vector>

class CWizardDlg;

class CWizNewPage3 : public CWizardPage {
public:
    static constexpr int IDD = 132;
    static constexpr int kPageIndex = 3;
    static constexpr int IDC_TABLES = 1067;

    explicit CWizNewPage3(CWizardDlg* pWizard);

    // The name of the selected table, untranslated; empty, with an error log
    // line, when the selection is not one of m_tables.
    std::string GetTableName() const;
    // Whether the table chosen at the last visit is a CNC table.
    bool IsCncTable() const;

    std::string m_lastTable;
    std::vector<const TableDataSheet*> m_tables;
    korv::ui::CComboBox m_tableCombo;

protected:
    bool OnInitDialog() override;
    void OnShowWindow(bool bShow, unsigned nStatus) override;

private:
    // A CNC table needs exactly one drive unit chosen, and that one with the CNC mark.
    bool TableFits(const TableDataSheet* table) const;
    void FillTables();
};

// Page 3 of `pWizard`; null, with an error log line, when it is missing.
CWizNewPage3* GetTablePage(const CWizardDlg* pWizard);
