// Page 2 of the wizard: which drive unit hangs on each interface or switch
// box port chosen on page 1.
#pragma once

#include "catalogue/data_sheets.h"
#include "ui_framework.h"
#include "wizard/InterfaceRow.h"
#include "wizard/WizardPage.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

class CWizardDlg;

class CWizDriveUnits : public CWizardPage {
public:
    static constexpr int IDD = 169;
    static constexpr int kPageIndex = 2;
    static constexpr int kRows = 8;
    static constexpr std::array<InterfaceRowIds, kRows> kRowIds{{{1082, 1090},
                                                                 {1083, 1091},
                                                                 {1084, 1092},
                                                                 {1085, 1093},
                                                                 {1086, 1094},
                                                                 {1087, 1095},
                                                                 {1088, 1096},
                                                                 {1089, 1097}}};

    explicit CWizDriveUnits(CWizardDlg* pWizard);

    // The text of the row's combo box; empty when the row stands on "no drive
    // unit" (index 0) or `row` is out of range.
    std::string GetRowText(int row) const;
    // Rows, in use or not, whose selection is a drive unit.
    int CountSelected() const;
    // The first machine sheet named exactly `name`; null if there is none.
    const MachineDataSheet* FindDriveUnit(const std::string& name) const;

    std::int32_t m_rowCount = 0;
    std::int32_t m_builtMode = -1;
    std::array<InterfaceRow, kRows> m_rows;
    std::vector<std::string> m_listCom1;
    std::vector<std::string> m_listCom2;

protected:
    bool OnInitDialog() override;
    void OnShowWindow(bool bShow, unsigned nStatus) override;

private:
    const MachineSheetList* MachineSheets() const;
    void FillCandidates();
    void RebuildRows();
    void UpdateButtons();
};

// Page 2 of `pWizard`; null, with an error log line, when it is missing.
CWizDriveUnits* GetDriveUnitPage(const CWizardDlg* pWizard);
