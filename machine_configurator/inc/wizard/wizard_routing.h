// Where Next and Back lead in the wizard's flat page list.
//
// The routing is arithmetic on list indices and depends only on the current
// page, the product group index of page 0, the "control=" value of the command
// line and the product type, so that it can be checked without any window.
// The page list builder and these tables must agree on the indices.
#pragma once

#include <string>

inline constexpr int kWizPageCount = 32;
inline constexpr int kWizSummaryPage = 31;

// The "control=" value that turns group 0 into its KorECon form.
inline constexpr const char* kWizKorEConControl = "korecon";

// The target of Next from page `cur` (below the summary). An unknown group on
// page 0 is logged and answered with page 1.
int NextPageIndex(int cur, int group, const std::string& control, int productType);

// The target of Back from page `cur` (1 or higher). An unknown group on the
// summary is logged and answered with page 4.
int BackPageIndex(int cur, int group, const std::string& control);

// What the frame does to the page it arrived at by Next.
enum class WizArrivalAction {
    None,
    SetFinishText,     // the summary: Next becomes Finish
    UpdateNextButton,  // the interface page
    EnableNext,        // the stand page
    ResetMachineLimit, // a machine page: capacity 1, checked, buttons updated
    FillOrderNumbers,  // an order number page
};

WizArrivalAction ArrivalActionFor(int page, int last);
