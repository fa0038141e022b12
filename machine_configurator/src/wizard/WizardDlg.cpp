#include "wizard/WizardDlg.h"

#include "application/RigCfg.h"
#include "errtrace.h"
#include "main_dialog/RigCfgDlg.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizNewPageForm2.h"
#include "wizard/wizard_routing.h"

using namespace korv::ui;

std::int32_t g_wizCurrentPage = -1;

namespace {

// The translation domain is the application's name.
constexpr const char* kDomain = "RigCfg";

} // namespace

CWizardDlg::CWizardDlg(CMidSpanCfgDlg* pParent) : CDialog(IDD, pParent), m_pParent(pParent) {
    g_wizCurrentPage = -1;
    // The page title lies over the header bitmap, as the main dialog's does.
    korv::ui::DialogLook look;
    look.transparent = {IDC_TITLE};
    set_look(std::move(look));
    MapCommand(BN_CLICKED, IDC_BACK, [this] { OnBack(); });
}

CWizardDlg::~CWizardDlg() = default;

void CWizardDlg::AddPage(const std::string& title, CDialog* page, int dialogId) {
    m_titles.push_back(title);
    m_pages.push_back(page);
    m_dialogIds.push_back(dialogId);
}

CDialog* CWizardDlg::GetPage(int index) const {
    if (index < 0 || index >= GetPageCount()) {
        KERRLOG("GetPage(): invalid page index %d of %d pages", index, GetPageCount());
        return nullptr;
    }
    return m_pages[static_cast<std::size_t>(index)];
}

void CWizardDlg::EnableDlgItem(int id, bool enable) {
    if (CWnd* item = GetDlgItem(id))
        item->EnableWindow(enable);
}

std::string CWizardDlg::GetCurrentTitle() const {
    if (m_curPage < 0 || m_curPage >= static_cast<int>(m_titles.size()))
        return {};
    return m_titles[static_cast<std::size_t>(m_curPage)];
}

void CWizardDlg::DoDataExchange(CDataExchange* pDX) {
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_TITLE, m_title);
    DDX_Control(pDX, IDC_PLACEHOLDER, m_placeholder);
    DDX_Control(pDX, IDC_HEADER, m_header);
}

bool CWizardDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    Translate(this, 0, kDomain);

    // The title sits inside the banner at a fraction of its size. It is drawn
    // without a background of its own on the platform; the model has no
    // colours, so there is nothing to paint here.
    CRect header;
    m_header.GetWindowRect(&header);
    m_title.SetWindowPos(nullptr, header.Width() / 10, header.Height() / 3, 0, 0,
                         SWP_NOSIZE | SWP_NOZORDER);
    // The model has no icons, so the window icon (resource 128) has no stand-in.

    if (m_pages.empty())
        return true;

    CRect place;
    m_placeholder.GetWindowRect(&place);
    for (std::size_t i = 0; i < m_pages.size(); ++i) {
        CDialog* page = m_pages[i];
        if (!page)
            continue;
        page->Create(m_dialogIds[i], this);
        page->SetWindowPos(nullptr, place.left, place.top, place.Width(), place.Height(),
                           SWP_NOZORDER);
        Translate(page, 0, kDomain);
    }
    SetCurSel(0);
    return true;
}

void CWizardDlg::SetCurSel(int index) {
    if (m_curPage >= 0) {
        if (CDialog* page = GetPage(m_curPage)) {
            if (!page->UpdateData(true))
                return;
            page->ShowWindow(SW_HIDE);
        }
    }
    m_curPage = index;
    g_wizCurrentPage = index;
    if (CDialog* page = GetPage(index)) {
        page->ShowWindow(SW_SHOW);
        m_title.SetWindowText(TranslateText(m_titles[static_cast<std::size_t>(index)]));
    }
}

int CWizardDlg::GroupIndex() const {
    const auto* page = dynamic_cast<const CWizNewPage1*>(GetPage(0));
    return page ? page->m_group : -1;
}

std::string CWizardDlg::ControlValue() const {
    return m_pParent && m_pParent->m_pApp ? m_pParent->m_pApp->m_cmdInfo.m_control : std::string();
}

std::int32_t CWizardDlg::GetProductType() const {
    return m_pParent ? m_pParent->m_productType : ProductTypeMidspan;
}

void CWizardDlg::OnOK() {
    const int cur = m_curPage;
    const int last = GetPageCount() - 1;
    if (cur < last) {
        SetCurSel(NextPageIndex(cur, GroupIndex(), ControlValue(), GetProductType()));
        OnArrival(m_curPage);
        EnableDlgItem(IDC_BACK, true);
        return;
    }
    // Finish: every page was validated when its Next was enabled.
    for (CDialog* page : m_pages)
        if (page)
            page->UpdateData(true);
    DestroyPages();
    EndDialog(IDOK);
}

void CWizardDlg::OnArrival(int page) {
    switch (ArrivalActionFor(page, GetPageCount() - 1)) {
    case WizArrivalAction::SetFinishText:
        SetDlgItemText(IDOK, TranslateText("Finish.but"));
        break;
    case WizArrivalAction::UpdateNextButton:
        if (auto* interfaces = dynamic_cast<CWizNewPage2*>(GetPage(page)))
            interfaces->UpdateNextButton();
        break;
    case WizArrivalAction::EnableNext:
        EnableDlgItem(IDOK, true);
        break;
    case WizArrivalAction::ResetMachineLimit:
        if (auto* machines = dynamic_cast<CWizNewPage2a*>(GetPage(page))) {
            machines->m_capacity = 1;
            machines->CheckCapacity();
            machines->UpdateMachineButtons();
        }
        break;
    case WizArrivalAction::FillOrderNumbers:
        if (auto* orders = dynamic_cast<CWizNewPageForm2*>(GetPage(page)))
            orders->FillOrderNumbers();
        break;
    case WizArrivalAction::None:
        break;
    }
}

void CWizardDlg::OnBack() {
    if (m_curPage < 1)
        return;
    if (m_curPage == GetPageCount() - 1)
        SetDlgItemText(IDOK, TranslateText("Next.but"));
    SetCurSel(BackPageIndex(m_curPage, GroupIndex(), ControlValue()));
}

void CWizardDlg::OnCancel() {
    DestroyPages();
    EndDialog(IDCANCEL);
}

void CWizardDlg::DestroyPages() {
    // As on the platform, the loop addresses the current page; the others
    // would go with the wizard's own window. They are taken down here as well,
    // so that no page outlives this call.
    for (std::size_t i = 0; i < m_pages.size(); ++i)
        if (CDialog* page = GetPage(m_curPage))
            page->DestroyWindow();
    for (CDialog* page : m_pages)
        if (page)
            page->DestroyWindow();
}
