// The machine page: one instance per product group, offering the machines of
// the group (left list) for the chosen ones (right list).
//
// m_capacity is how many machines may be chosen; 1 on every path of the
// wizard. With 8 the page works in slot mode: the right list is the eight
// ports of a switch box and each unit goes to the port the port dialog names.
#pragma once

#include "ui_framework.h"
#include "wizard/WizardPage.h"

#include <cstddef>
#include <cstdint>
#include <string>

class CWizardDlg;
class CMidSpanCfgDlg;

// The left list as first filtered, kept for the life of the process so that
// each filter starts from the full list.
struct MachineListSnapshot {
    static constexpr std::size_t kMaxTexts = 30;
    std::string texts[kMaxTexts];
    std::int32_t count = 0;
    bool taken = false;
};
extern MachineListSnapshot g_machineListSnapshot;

class CWizNewPage2a : public CWizardPage {
public:
    static constexpr int IDD = 154;
    static constexpr int IDC_CAPTION = 1062;
    static constexpr int IDC_OFFERED = 1023;
    static constexpr int IDC_CHOSEN = 1025;
    static constexpr int IDC_ADD = 1029;
    static constexpr int IDC_DELETE = 1031;
    static constexpr int IDC_UP = 1033;
    static constexpr int IDC_DOWN = 1035;
    static constexpr std::int32_t kSlotCapacity = 8;

    CWizNewPage2a(CWizardDlg* pWizard, const std::string& groupKey);

    // The group bits an order number must share with the machine page's group;
    // all ones for a key without its own mask.
    std::uint32_t GetGroupMask() const;
    // Adds the group's machines to the left list, each name once, in sheet order.
    void FillMachineList();
    // Takes the left list's selection into the right list (">>", double click).
    void AddMachine();
    // Empties the right list, with a message, when it holds more than m_capacity.
    void CheckCapacity();
    // Next is enabled as soon as a machine is chosen.
    void UpdateMachineButtons();
    // Makes `name` the only chosen machine (a preset).
    void SetChosenMachine(const std::string& name);
    // Drops the offered units whose DriveUnit.dat entry lacks the interface
    // word that g_interfaceMode and m_capacity ask for.
    void FilterByInterface();
    // Item 0 of the right list; empty if none is chosen.
    std::string GetChosenMachine() const;

    std::int32_t m_capacity = 1;
    korv::ui::CListBox m_chosen;
    korv::ui::CListBox m_offered;
    korv::ui::CBitmapButton m_deleteButton;
    korv::ui::CBitmapButton m_upButton;
    korv::ui::CBitmapButton m_downButton;
    std::int32_t m_filled = 0;
    std::string m_groupKey;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
    void OnShowWindow(bool bShow, unsigned nStatus) override;

private:
    CMidSpanCfgDlg* MainDialog() const;
    void AddToSlot(const std::string& text);
    void OnDelete();
    // Moves the chosen entry one row by `step` (-1 up, +1 down) within its
    // unit's port class.
    void OnMove(int step);
};
