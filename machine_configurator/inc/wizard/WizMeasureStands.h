// Page 4 of the wizard: a measurement stand for each drive unit, from the
// stands the table and the unit allow. Rebuilt on every arrival.
#pragma once

#include "ui_framework.h"
#include "wizard/InterfaceRow.h"
#include "wizard/WizardPage.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

class CWizardDlg;

class CWizMeasureStands : public CWizardPage {
public:
    static constexpr int IDD = 168;
    static constexpr int kPageIndex = 4;
    static constexpr int kRows = 8;
    static constexpr std::array<InterfaceRowIds, kRows> kRowIds{{{1009, 1067},
                                                                 {1075, 1068},
                                                                 {1076, 1069},
                                                                 {1077, 1070},
                                                                 {1078, 1071},
                                                                 {1079, 1072},
                                                                 {1080, 1073},
                                                                 {1081, 1074}}};

    explicit CWizMeasureStands(CWizardDlg* pWizard);

    // The stored stand string of the row's selection, untranslated and with
    // its " (hor.)" or " (vert.)" suffix; empty without a valid selection.
    std::string GetStandText(int row) const;

    std::int32_t m_rowCount = 0;
    std::array<InterfaceRow, kRows> m_rows;
    std::vector<std::string> m_standTexts;
    std::array<std::string, kRows> m_driveSnapshot;

protected:
    bool OnInitDialog() override;
    void OnShowWindow(bool bShow, unsigned nStatus) override;

private:
    void FillStandTexts();
    // The stand texts that go with `driveUnit` on the chosen table.
    void FilterStands(const std::string& driveUnit, std::vector<std::string>& result) const;
    void BuildRows();
};
