// The order number page of a group: the order numbers of the machine chosen on
// the group's machine page, and for two KorForm machines the control.
#pragma once

#include "ui_framework.h"

#include <cstdint>
#include <string>

class CWizardDlg;
class CWizNewPageForm1;
class CWizNewPage2a;

class CWizNewPageForm2 : public korv::ui::CDialog {
public:
    static constexpr int IDD = 156;
    static constexpr int IDC_ORDER_LABEL = 1057;
    static constexpr int IDC_ORDER_NUMBERS = 1058;
    static constexpr int IDC_CONTROL_LABEL = 1066;
    static constexpr int IDC_CONTROLS = 1065;

    // `pageIndex` is the page's own index, which is not always its list index.
    CWizNewPageForm2(std::int32_t pageIndex, CWizardDlg* pWizard, CWizNewPageForm1* pSourcePage,
                     CWizNewPage2a* pMachinePage);

    // Refills combo 1058 with the order numbers of the chosen machine.
    void FillOrderNumbers();
    // The selected control; empty if none is.
    std::string GetControlText() const;
    // The text of combo 1058.
    std::string GetOrderNumberText() const;

    std::int32_t m_pageIndex;
    CWizardDlg* m_pWizard;
    korv::ui::CComboBox m_orderNumbers;
    CWizNewPageForm1* m_pSourcePage;
    CWizNewPage2a* m_pMachinePage;
    korv::ui::CComboBox m_controls;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
    void OnShowWindow(bool bShow, unsigned nStatus) override;

private:
    void ShowControlChoice();
};
