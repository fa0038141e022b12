// A list form of the stand page: stands are taken from the left list into the
// right one, at most two, or "No Stand" alone. No wizard path shows it.
#pragma once

#include "ui_framework.h"
#include "wizard/WizardPage.h"

#include <string>
#include <vector>

class CWizardDlg;

class CWizNewPage4 : public CWizardPage {
public:
    static constexpr int IDD = 151;
    static constexpr int IDC_OFFERED = 1023;
    static constexpr int IDC_CHOSEN = 1025;
    static constexpr int IDC_ADD = 1029;
    static constexpr int IDC_DELETE = 1031;
    static constexpr int IDC_UP = 1033;
    static constexpr int IDC_DOWN = 1035;
    static constexpr int kMaxChosen = 2;

    explicit CWizNewPage4(CWizardDlg* pWizard);

    // Offers a stand: its name is kept, its translation shown. The first one
    // added stands for "no stand".
    void AddStandName(const std::string& name);

    korv::ui::CListBox m_chosen;
    korv::ui::CListBox m_offered;
    korv::ui::CBitmapButton m_deleteButton;
    korv::ui::CBitmapButton m_upButton;
    korv::ui::CBitmapButton m_downButton;
    std::vector<std::string> m_standNames;
    bool m_noStandChosen = false;

protected:
    bool OnInitDialog() override;

private:
    void OnAdd();
    void OnDelete();
    // Moves the chosen entry one row by `step` (-1 up, +1 down).
    void OnMove(int step);
    void UpdateButtons();
};
