#include "wizard/wizard_routing.h"

#include "errtrace.h"

namespace {

bool IsKorEConControl(const std::string& control) {
    return control == kWizKorEConControl;
}

// Page 0's Next, by group index; -1 for an unknown group.
int FirstPageOfGroup(int group, const std::string& control) {
    switch (group) {
    case 0:
        return IsKorEConControl(control) ? 5 : 1;
    case 1:
        return 8;
    case 2:
        return 12;
    case 3:
        return 15;
    case 4:
        return 18;
    case 5:
        return 20;
    case 6:
        return 22;
    case 7:
        return 25;
    case 8:
        return 28;
    default:
        return -1;
    }
}

// The summary's Back, by group index; -1 for an unknown group. Group 1 lands
// on its parameter source page, the only way that page is ever reached.
int LastPageOfGroup(int group, const std::string& control) {
    switch (group) {
    case 0:
        return IsKorEConControl(control) ? 7 : 4;
    case 1:
        return 9;
    case 2:
        return 14;
    case 3:
        return 17;
    case 4:
        return 19;
    case 5:
        return 21;
    case 6:
        return 24;
    case 7:
        return 27;
    case 8:
        return 30;
    default:
        return -1;
    }
}

} // namespace

int NextPageIndex(int cur, int group, const std::string& control, int productType) {
    switch (cur) {
    case 0: {
        const int target = FirstPageOfGroup(group, control);
        if (target >= 0)
            return target;
        KERRLOG("OnOK()(): unknown product group #%d", group);
        return 1;
    }
    case 4:
        return group == 0 ? kWizSummaryPage : cur + 1;
    case 5: // the KorSurf parameter source page is never shown
        return 7;
    case 8: // nor the KorForm one on the way forward
        return 10;
    case 12:
        return 13;
    case 10: // the proxy page only for the control families other than Midspan
        return productType == 0 ? kWizSummaryPage : 11;
    case 7:
    case 11:
    case 14:
    case 17:
    case 19:
    case 21:
    case 24:
    case 27:
    case 30:
        return kWizSummaryPage;
    default:
        return cur + 1;
    }
}

int BackPageIndex(int cur, int group, const std::string& control) {
    switch (cur) {
    case kWizSummaryPage: {
        const int target = LastPageOfGroup(group, control);
        if (target >= 0)
            return target;
        KERRLOG("OnBack(): unknown product group #%d", group);
        return 4;
    }
    case 5:
    case 8:
    case 12:
    case 15:
    case 18:
    case 20:
    case 22:
    case 25:
    case 28:
        return 0;
    case 10:
        return 8;
    case 7:
        return 5;
    default:
        return cur - 1;
    }
}

WizArrivalAction ArrivalActionFor(int page, int last) {
    if (page == last)
        return WizArrivalAction::SetFinishText;
    switch (page) {
    case 1:
        return WizArrivalAction::UpdateNextButton;
    case 4:
        return WizArrivalAction::EnableNext;
    case 5:
    case 8:
        return WizArrivalAction::ResetMachineLimit;
    case 7:
    case 10:
    case 13:
    case 16:
    case 19:
    case 21:
    case 23:
    case 26:
    case 29:
        return WizArrivalAction::FillOrderNumbers;
    default:
        return WizArrivalAction::None;
    }
}
