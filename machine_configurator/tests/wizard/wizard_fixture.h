// The wizard with its real page list over hand-made data sheets, run inside a
// host that plays a test body in its modal run. Translations are the keys.
#pragma once

#include "rigcfg_files_fixture.h"
#include "wizard/CustomWizardDlg.h"
#include "wizard/WizDriveUnits.h"
#include "wizard/WizMeasureStands.h"
#include "wizard/WizNewPage1.h"
#include "wizard/WizNewPage2.h"
#include "wizard/WizNewPage2a.h"
#include "wizard/WizNewPage2b.h"
#include "wizard/WizNewPage3.h"
#include "wizard/WizNewPageForm1.h"
#include "wizard/WizNewPageForm2.h"
#include "wizard/WizNewPageLast.h"
#include "wizard/WizProxies.h"
#include "wizard/WizardPageList.h"
#include "wizard/port_units.h"
#include "wizard/wizard_resources.h"
#include "wizard/wizard_routing.h"

#include <functional>

namespace wiztest {

using Strings = std::vector<std::string>;
using korv::ui::CDialog;
using korv::ui::IDCANCEL;
using korv::ui::IDOK;
using korv::ui::InputResult;
using rigcfg_test::text_of;

// Plays `body` in the wizard, answers the port dialog with `portAnswer` (-1:
// its close box), closes what is left open and records message boxes.
class WizardHost : public korv::ui::Host {
public:
    std::function<void()> body;
    int portAnswer = -1;
    std::size_t pagesAtEnd = 99;
    std::vector<std::pair<std::string, unsigned>> boxes;

    void DialogOpened(CDialog&) override {}
    void RunModal(CDialog& dialog) override {
        if (dialog.template_id() == CWizardDlg::IDD) {
            if (body)
                body();
        } else if (portAnswer >= 0 &&
                   dialog.UserSelect(CWizNewPage2b::IDC_PORTS, portAnswer) == InputResult::Done) {
            dialog.UserClick(CWizNewPage2b::IDC_PORT_OK);
        }
        if (!dialog.modal_ended())
            dialog.UserClose();
    }
    // The pages are to be gone before the wizard's own window goes.
    void DialogEnded(CDialog& dialog, int) override {
        if (dialog.template_id() == CWizardDlg::IDD)
            pagesAtEnd = dialog.child_dialogs().size();
    }
    int ShowMessageBox(const std::string& text, unsigned type) override {
        boxes.emplace_back(text, type);
        return IDOK;
    }
};

// The texts of a list or combo box.
inline Strings Items(const korv::ui::CListControl& list) {
    Strings items;
    for (int i = 0; i < list.GetCount(); ++i) {
        std::string text;
        if (auto* box = dynamic_cast<const korv::ui::CListBox*>(&list))
            box->GetText(i, text);
        else
            static_cast<const korv::ui::CComboBox&>(list).GetLBText(i, text);
        items.push_back(text);
    }
    return items;
}

// What a run left on the wizard.
struct Result {
    int code = 0;
    std::string group, driveUnit, table, stand, control, proxy, machine, orderNo, folder, file;
    std::string summary;
};

class WizardFixture : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterWizardResources();
        auto owned = std::make_unique<WizardHost>();
        host = owned.get();
        korv::ui::install_host(std::move(owned));
        Translate_init("", root / "none", "en", "RigCfg");
        ResetGlobals();
        dlg.m_machineSheets = std::make_unique<MachineSheetList>();
        dlg.m_tableSheets = std::make_unique<TableSheetList>();
        dlg.m_standSheets = std::make_unique<StandSheetList>();
    }
    void TearDown() override {
        Translate_init("", root / "none", "en", "RigCfg");
        korv::ui::reset_host_selection();
        KErrTrace_ClearContext();
        ResetGlobals();
    }
    // What the pages share across wizard runs, as a fresh program has it.
    static void ResetGlobals() {
        g_machineListSnapshot = {};
        g_interfaceMode = 0;
        g_unitPortClass = 0;
    }

    void AddMachine(const char* name, std::uint32_t flags, const char* orderNo = "",
                    std::int32_t tableMode = kTableNone, const std::string& folder = "",
                    std::uint8_t cnc = 0) {
        auto sheet = std::make_unique<MachineDataSheet>();
        SetSheetText(sheet->name, name, "name");
        SetSheetText(sheet->order_no, orderNo, "order_no");
        sheet->flags = flags;
        sheet->table_mode = tableMode;
        sheet->folder = folder;
        sheet->ini_path = folder.empty() ? "" : folder + "\\machine.ini";
        sheet->cnc = cnc;
        dlg.m_machineSheets->push_back(std::move(sheet));
    }
    void AddTable(const char* name, std::uint8_t cnc = 0) {
        auto sheet = std::make_unique<TableDataSheet>();
        SetSheetText(sheet->name, name, "name");
        sheet->cnc = cnc;
        dlg.m_tableSheets->push_back(std::move(sheet));
    }
    void AddStand(const char* name, std::int32_t position, std::uint8_t cnc = 0) {
        auto sheet = std::make_unique<StandDataSheet>();
        SetSheetText(sheet->name, name, "name");
        sheet->position = position;
        sheet->cnc = cnc;
        dlg.m_standSheets->push_back(std::move(sheet));
    }

    // Runs the wizard with `body` inside it and keeps what it left.
    Result Run(const std::function<void()>& body) {
        CCustomWizardDlg wizard(&dlg);
        WizardPageList pages(wizard);
        wiz = &wizard;
        bool ran = false;
        host->body = [&] {
            body();
            ran = true;
        };
        const int code = wizard.DoModal();
        host->body = nullptr;
        wiz = nullptr;
        EXPECT_TRUE(ran);
        const CCustomWizardDlg& w = wizard;
        // clang-format off
        return {code, w.m_resGroup, w.m_resDriveUnit, w.m_resTable, w.m_resStand, w.m_resControl,
                w.m_resProxy, w.m_resMachine, w.m_resOrderNo, w.m_resIniFolder, w.m_resIniFile,
                w.GetPageAs<CWizNewPageLast>(kWizSummaryPage)->m_summary};
        // clang-format on
    }

    template <class T> T* Page(int index) const { return wiz->GetPageAs<T>(index); }
    // Where a user's action on control `id` goes: the page shown, else the frame.
    CDialog& Input(int id) const {
        CDialog* target = wiz->find_input_target(id);
        return target ? *target : *wiz;
    }
    void Click(int id) { ASSERT_EQ(Input(id).UserClick(id), InputResult::Done) << id; }
    void Select(int id, int index) {
        ASSERT_EQ(Input(id).UserSelect(id, index), InputResult::Done) << id << " " << index;
    }
    // Page 1 as a user sets it: the check boxes, and the radio group while it is enabled.
    void ChooseInterfaces(bool com1, bool onSwitch, bool com2) {
        if (wiz->m_curPage != CWizNewPage2::kPageIndex)
            wiz->SetCurSel(CWizNewPage2::kPageIndex);
        Input(CWizNewPage2::IDC_COM1).UserCheck(CWizNewPage2::IDC_COM1, com1);
        if (com1)
            Click(onSwitch ? CWizNewPage2::IDC_SWITCH : CWizNewPage2::IDC_SINGLE);
        Input(CWizNewPage2::IDC_COM2).UserCheck(CWizNewPage2::IDC_COM2, com2);
    }
    static int UnitCombo(std::size_t row) { return CWizDriveUnits::kRowIds[row].combo; }
    bool NextEnabled() const { return wiz->GetDlgItem(IDOK)->IsWindowEnabled(); }
    bool BackEnabled() const { return wiz->GetDlgItem(CWizardDlg::IDC_BACK)->IsWindowEnabled(); }

    korv::testing::ScratchRoot root;
    korv::testing::LogCapture log;
    CMidSpanCfgDlg dlg{ProductTypeMidspan, "", "", nullptr};
    WizardHost* host = nullptr;
    CCustomWizardDlg* wiz = nullptr;
};

} // namespace wiztest
