// A small sample application for the tests: a dialog with every kind of
// control, a two-page dialog opened from it, and a plain dialog opened from a
// page, so that three modal runs nest.
#pragma once

#include "ui_framework.h"
#include "ui_host.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace sample {

using namespace korv::ui;

// The sample dialog; radio group: kFirst, kSecond, (check box kMiddleCheck), kThird.
constexpr int kSampleDialog = 500, kUndo = 510, kOption = 511, kFirst = 512, kSecond = 513,
              kMiddleCheck = 514, kThird = 515, kOtherGroup = 516, kStatus = 520, kPicture = 521,
              kPlaceholder = 522, kName = 523, kFixedText = 524, kFruits = 525, kNumbers = 526,
              kSummary = 527, kOpenPages = 528, kAsk = 529, kNever = 530;
// The two-page dialog and its pages; the plain dialog.
constexpr int kPagesDialog = 600, kBack = 601, kPagePlace = 602, kPage1 = 610, kPage2 = 611,
              kPageCheck = 612, kPageList = 613, kPageEdit = 614, kNested = 615, kPlainDialog = 700;

// Registers the templates once.
void register_templates();

// The second page opens this.
class PlainDlg : public CDialog {
public:
    explicit PlainDlg(CWnd* parent) : CDialog(kPlainDialog, parent) {}
};

class Page : public CDialog {
public:
    std::vector<std::string> shows; // "show" and "hide", as told
    int m_check = 0;
    std::string m_text;

    Page();

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    void OnShowWindow(bool show, unsigned) override { shows.push_back(show ? "show" : "hide"); }
    void OnOK() override {}
    void OnCancel() override {}
};

class PagesDlg : public CDialog {
public:
    Page page1;
    Page page2;
    int current = -1;

    explicit PagesDlg(CWnd* parent);
    void SetCurSel(int index);

protected:
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    void OnBack();
};

class SampleDlg : public CDialog {
public:
    std::string m_name;
    int m_option = 0;
    int m_choice = 1;
    CListBox m_fruits;
    CComboBox m_numbers;
    CBitmapButton m_undo;
    CRichEditCtrl m_summary;
    CDlgToolTipCtrl m_tips;
    std::vector<std::string> notes; // what the handlers saw

    SampleDlg();

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    bool OnInitDialog() override;
    void OnOK() override;

private:
    void note(const std::string& what) { notes.push_back(what); }
};

// A host for tests that want a dialog open without a script: RunModal calls
// `body` with the dialog and then ends it with IDCANCEL unless `body` did.
class CallbackHost : public Host {
public:
    std::function<void(CDialog&)> body;
    std::vector<std::string> calls; // "opened 500", "changed 500/520", ...
    bool record_changes = false;

    void DialogOpened(CDialog& d) override { calls.push_back("opened " + id(d)); }
    void RunModal(CDialog& d) override;
    void DialogEnded(CDialog& d, int result) override {
        calls.push_back("ended " + id(d) + " " + std::to_string(result));
    }
    int ShowMessageBox(const std::string&, unsigned) override { return IDOK; }
    void ControlChanged(const CDialog& d, int control) override {
        if (record_changes)
            calls.push_back("changed " + id(d) + "/" + std::to_string(control));
    }
    void WindowChanged(const CDialog& d) override {
        if (record_changes)
            calls.push_back("window " + id(d));
    }

private:
    static std::string id(const CDialog& d) { return std::to_string(d.template_id()); }
};

} // namespace sample
