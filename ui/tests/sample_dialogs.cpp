#include "sample_dialogs.h"

namespace sample {

namespace {

// Registers a dialog; `controls` in resource order.
void add(int id, const char* caption, int cx, int cy, std::vector<ControlTemplate> controls) {
    register_dialog_template({id, caption, cx, cy, std::move(controls)});
}

} // namespace

void register_templates() {
    using K = ControlKind;
    const unsigned all_scrolling =
        style::multi_line | style::read_only | style::vscroll | style::hscroll;
    add(kSampleDialog, "Sample.dlghead", 220, 160,
        {
            {IDOK, K::DefaultButton, "OK.but", {110, 140, 50, 14}},
            {IDCANCEL, K::Button, "Cancel.but", {165, 140, 50, 14}},
            {kUndo, K::BitmapButton, "Undo", {5, 5, 20, 20}},
            {kOption, K::CheckBox, "Option.txt", {30, 5, 60, 10}},
            {kFirst, K::RadioButton, "First.txt", {30, 20, 60, 10}, style::group},
            {kSecond, K::RadioButton, "Second.txt", {30, 30, 60, 10}},
            {kMiddleCheck, K::CheckBox, "Middle.txt", {30, 40, 60, 10}},
            {kThird, K::RadioButton, "Third.txt", {30, 50, 60, 10}},
            {kOtherGroup, K::RadioButton, "Other.txt", {30, 60, 60, 10}, style::group},
            {IDC_STATIC, K::StaticText, "Name:.txt", {100, 5, 40, 10}, style::group},
            {kStatus, K::StaticText, "", {100, 20, 100, 10}},
            {kPicture, K::Bitmap, "9999", {180, 5, 30, 30}},
            {kPlaceholder, K::Frame, "", {100, 40, 100, 50}, style::hidden},
            {kName, K::Edit, "", {100, 95, 100, 12}},
            {kFixedText, K::Edit, "fixed", {100, 110, 100, 12}, style::read_only},
            {kFruits, K::ListBox, "", {5, 75, 80, 40}, style::sorted | style::vscroll},
            {kNumbers, K::ComboBox, "", {5, 120, 80, 40}},
            {kSummary, K::RichEdit, "", {5, 165, 200, 40}, all_scrolling},
            {kOpenPages, K::Button, "Pages.but", {5, 140, 50, 14}},
            {kAsk, K::Button, "Ask.but", {60, 140, 45, 14}},
            {kNever, K::Button, "Never.but", {5, 210, 45, 14}, style::disabled},
        });
    add(kPagesDialog, "Pages.dlghead", 200, 120,
        {
            {IDOK, K::DefaultButton, "Next.but", {90, 100, 50, 14}},
            {IDCANCEL, K::Button, "Cancel.but", {145, 100, 50, 14}},
            {kBack, K::Button, "Back.but", {35, 100, 50, 14}, style::disabled},
            {kPagePlace, K::Frame, "", {5, 5, 190, 90}, style::hidden},
        });
    add(kPage1, "", 190, 90,
        {
            {kPageCheck, K::CheckBox, "Check.txt", {5, 5, 60, 10}},
            {kPageList, K::ListBox, "", {5, 20, 80, 60}},
        });
    add(kPage2, "", 190, 90,
        {
            {kPageEdit, K::Edit, "", {5, 5, 100, 12}},
            {kNested, K::Button, "Nested.but", {5, 25, 50, 14}},
        });
    add(kPlainDialog, "Plain.dlghead", 100, 50,
        {
            {IDOK, K::DefaultButton, "OK.but", {5, 30, 40, 14}},
            {IDCANCEL, K::Button, "Cancel.but", {50, 30, 40, 14}},
        });
}

Page::Page() {
    MapCommand(BN_CLICKED, kNested, [this] { PlainDlg(this).DoModal(); });
}

void Page::DoDataExchange(CDataExchange* pDX) {
    if (find_control(kPageCheck))
        DDX_Check(pDX, kPageCheck, m_check);
    if (find_control(kPageEdit))
        DDX_Text(pDX, kPageEdit, m_text);
}

PagesDlg::PagesDlg(CWnd* parent) : CDialog(kPagesDialog, parent) {
    MapCommand(BN_CLICKED, kBack, [this] { OnBack(); });
}

bool PagesDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    CRect place;
    GetDlgItem(kPagePlace)->GetWindowRect(&place);
    page1.Create(kPage1, this);
    page2.Create(kPage2, this);
    for (Page* page : {&page1, &page2})
        page->SetWindowPos(nullptr, place.left, place.top, place.Width(), place.Height(),
                           SWP_NOZORDER);
    SetCurSel(0);
    return true;
}

void PagesDlg::SetCurSel(int index) {
    Page* pages[] = {&page1, &page2};
    if (current >= 0) {
        if (!pages[current]->UpdateData(true))
            return;
        pages[current]->ShowWindow(SW_HIDE);
    }
    current = index;
    pages[current]->ShowWindow(SW_SHOW);
    GetDlgItem(kBack)->EnableWindow(current > 0);
}

void PagesDlg::OnOK() {
    if (current == 0) {
        SetCurSel(1);
        return;
    }
    page1.UpdateData(true);
    page2.UpdateData(true);
    page1.DestroyWindow();
    EndDialog(IDOK);
}

void PagesDlg::OnCancel() {
    page1.DestroyWindow();
    EndDialog(IDCANCEL);
}

void PagesDlg::OnBack() {
    if (current > 0)
        SetCurSel(current - 1);
}

SampleDlg::SampleDlg() : CDialog(kSampleDialog) {
    MapCommand(BN_CLICKED, kOpenPages, [this] { PagesDlg(this).DoModal(); });
    MapCommand(BN_CLICKED, kAsk, [this] {
        const int answer = AfxMessageBox("Proceed?", MB_YESNO | MB_ICONQUESTION);
        SetDlgItemText(kStatus, answer == IDYES ? "yes" : "no");
    });
    MapCommand(BN_CLICKED, kOption, [this] {
        UpdateData(true);
        note("option " + std::to_string(m_option));
    });
    MapCommand(LBN_SELCHANGE, kFruits,
               [this] { note("fruit " + std::to_string(m_fruits.GetCurSel())); });
    MapCommand(LBN_DBLCLK, kFruits, [this] {
        std::string text;
        m_fruits.GetText(m_fruits.GetCurSel(), text);
        note("double " + text);
    });
    MapCommand(CBN_SELCHANGE, kNumbers, [this] {
        std::string text;
        m_numbers.GetWindowText(text);
        note("number " + text);
    });
    MapCommand(EN_CHANGE, kName, [this] { note("name changed"); });
}

void SampleDlg::DoDataExchange(CDataExchange* pDX) {
    DDX_Control(pDX, kFruits, m_fruits);
    DDX_Control(pDX, kNumbers, m_numbers);
    DDX_Control(pDX, kSummary, m_summary);
    DDX_Text(pDX, kName, m_name);
    DDX_Check(pDX, kOption, m_option);
    DDX_Radio(pDX, kFirst, m_choice);
}

bool SampleDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    Translate(this, 0, "sample");
    m_undo.AutoLoad(kUndo, this);
    for (const char* fruit : {"Cherry", "apple", "Banana"})
        m_fruits.SetItemData(m_fruits.AddString(fruit), fruit[0]);
    m_numbers.AddString("one");
    m_numbers.AddString("two");
    m_numbers.SetCurSel(0);
    m_summary.SetBackgroundColor(false, 0xC0C0C0);
    m_tips.Create(this);
    m_tips.AddTool(kOpenPages, "Opens the pages");
    return true;
}

void SampleDlg::OnOK() {
    UpdateData(true);
    if (m_name.empty()) {
        AfxMessageBox("Name missing.msg", MB_ICONERROR);
        return;
    }
    CDialog::OnOK();
}

void CallbackHost::RunModal(CDialog& d) {
    if (body)
        body(d);
    if (!d.modal_ended())
        d.EndDialog(IDCANCEL);
}

} // namespace sample
