// The wizard frame: a modal dialog that owns a flat list of pages and moves
// between them with Next and Back.
//
// The frame knows pages only by their index in the list; every page exists
// from OnInitDialog on, hidden, and pages read each other through GetPage.
#pragma once

#include "ui_framework.h"

#include <cstdint>
#include <string>
#include <vector>

class CMidSpanCfgDlg;

// The index of the wizard's current page, for pages that must know it; -1
// until a wizard shows its first page. Reset by each wizard's construction.
extern std::int32_t g_wizCurrentPage;

class CWizardDlg : public korv::ui::CDialog {
public:
    static constexpr int IDD = 103;
    static constexpr int IDC_TITLE = 1011;
    static constexpr int IDC_PLACEHOLDER = 1015;
    static constexpr int IDC_HEADER = 1103;
    static constexpr int IDC_BACK = 1013;

    explicit CWizardDlg(CMidSpanCfgDlg* pParent);
    ~CWizardDlg() override;

    // Appends a page; called before the wizard runs. The page is not owned.
    void AddPage(const std::string& title, korv::ui::CDialog* page, int dialogId);
    // The page at `index`; null, with an error log line, outside the list.
    korv::ui::CDialog* GetPage(int index) const;
    // The page at `index` if it is a `Page`; null otherwise.
    template <class Page> Page* GetPageAs(int index) const {
        return dynamic_cast<Page*>(GetPage(index));
    }
    int GetPageCount() const { return static_cast<int>(m_pages.size()); }
    // Moves to page `index`; everything that changes the page calls this.
    virtual void SetCurSel(int index);
    // Enables or disables a control of the frame (pages use IDOK and IDC_BACK).
    void EnableDlgItem(int id, bool enable);
    // The stored title of the current page; empty before the first page.
    std::string GetCurrentTitle() const;

    CMidSpanCfgDlg* m_pParent;
    std::vector<korv::ui::CDialog*> m_pages;
    std::vector<std::string> m_titles;
    std::vector<std::int32_t> m_dialogIds;
    std::int32_t m_curPage = -1;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    void OnBack();
    void DestroyPages();

    // The product group index of page 0; -1 when page 0 is no group page.
    int GroupIndex() const;
    // The "control=" value of the command line; empty without an application.
    std::string ControlValue() const;
    std::int32_t GetProductType() const;

    korv::ui::CStatic m_title;
    korv::ui::CStatic m_placeholder;
    korv::ui::CStatic m_header;

private:
    // What Next does to the page it arrived at.
    void OnArrival(int page);
};
