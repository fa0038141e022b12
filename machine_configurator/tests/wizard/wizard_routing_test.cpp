#include "log_capture.h"
#include "wizard/wizard_routing.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <vector>

namespace {

struct Route {
    int group;
    const char* control;
    int productType;
    std::vector<int> forward;
    std::vector<int> back;
};

const std::vector<Route> kRoutes = {
    {0, "", 0, {0, 1, 2, 3, 4, 31}, {31, 4, 3, 2, 1, 0}},
    {0, "korecon", 1, {0, 5, 7, 31}, {31, 7, 5, 0}},
    {0, "Korecon", 0, {0, 1, 2, 3, 4, 31}, {31, 4, 3, 2, 1, 0}},
    {1, "", 0, {0, 8, 10, 31}, {31, 9, 8, 0}},
    {1, "korecon", 1, {0, 8, 10, 11, 31}, {31, 9, 8, 0}},
    {1, "", 2, {0, 8, 10, 11, 31}, {31, 9, 8, 0}},
    {2, "", 0, {0, 12, 13, 14, 31}, {31, 14, 13, 12, 0}},
    {3, "", 0, {0, 15, 16, 17, 31}, {31, 17, 16, 15, 0}},
    {4, "", 0, {0, 18, 19, 31}, {31, 19, 18, 0}},
    {5, "", 0, {0, 20, 21, 31}, {31, 21, 20, 0}},
    {6, "", 0, {0, 22, 23, 24, 31}, {31, 24, 23, 22, 0}},
    {7, "", 0, {0, 25, 26, 27, 31}, {31, 27, 26, 25, 0}},
    {8, "", 0, {0, 28, 29, 30, 31}, {31, 30, 29, 28, 0}},
};

// Follows `step` from `start` until `stop`, giving up after the page count.
std::vector<int> Walk(int start, int stop, const std::function<int(int)>& step) {
    std::vector<int> pages{start};
    while (pages.back() != stop && pages.size() <= kWizPageCount)
        pages.push_back(step(pages.back()));
    return pages;
}

// Pages reachable from page 0 of one route's run, by Next (below the summary)
// and, if `withBack`, by Back (above page 0).
std::set<int> Reachable(const Route& r, bool withBack) {
    std::set<int> seen{0};
    std::vector<int> todo{0};
    while (!todo.empty()) {
        const int cur = todo.back();
        todo.pop_back();
        std::vector<int> targets;
        if (cur < kWizSummaryPage)
            targets.push_back(NextPageIndex(cur, r.group, r.control, r.productType));
        if (withBack && cur >= 1)
            targets.push_back(BackPageIndex(cur, r.group, r.control));
        for (int t : targets)
            if (seen.insert(t).second)
                todo.push_back(t);
    }
    return seen;
}

TEST(WizardRouting, EveryGroupWalksItsRouteForwardAndBack) {
    for (const Route& r : kRoutes) {
        SCOPED_TRACE(testing::Message() << "group " << r.group << " control '" << r.control
                                        << "' type " << r.productType);
        EXPECT_EQ(
            Walk(0, kWizSummaryPage,
                 [&](int cur) { return NextPageIndex(cur, r.group, r.control, r.productType); }),
            r.forward);
        EXPECT_EQ(Walk(kWizSummaryPage, 0,
                       [&](int cur) { return BackPageIndex(cur, r.group, r.control); }),
                  r.back);
    }
}

TEST(WizardRouting, TheParameterSourcePagesAreReachedOnlyByBackOrNever) {
    std::set<int> byNext;
    std::set<int> byBoth;
    for (const Route& r : kRoutes) {
        byNext.merge(Reachable(r, false));
        byBoth.merge(Reachable(r, true));
    }
    EXPECT_FALSE(byNext.count(9));
    EXPECT_TRUE(byBoth.count(9));
    EXPECT_FALSE(byBoth.count(6));
    // Every other page of the list is visited by some run.
    EXPECT_EQ(byBoth.size(), static_cast<std::size_t>(kWizPageCount - 1));
    EXPECT_EQ(NextPageIndex(9, 1, "", 0), 10);
    EXPECT_EQ(BackPageIndex(9, 1, ""), 8);
}

TEST(WizardRouting, UnknownGroupsAreLoggedAndFallBack) {
    korv::testing::LogCapture log;
    EXPECT_EQ(NextPageIndex(0, 9, "", 0), 1);
    EXPECT_EQ(BackPageIndex(kWizSummaryPage, -1, "korecon"), 4);
    EXPECT_TRUE(log.has_error("OnOK()(): unknown product group #9"));
    EXPECT_TRUE(log.has_error("OnBack(): unknown product group #-1"));
    // A group only matters on page 0 and the summary.
    log.clear();
    EXPECT_EQ(NextPageIndex(2, 9, "", 0), 3);
    EXPECT_EQ(BackPageIndex(2, 9, ""), 1);
    EXPECT_TRUE(log.errors().empty());
}

TEST(WizardRouting, ArrivalActions) {
    using A = WizArrivalAction;
    // clang-format off
    const std::vector<std::pair<int, A>> cases = {
        {31, A::SetFinishText}, {1, A::UpdateNextButton}, {4, A::EnableNext},
        {5, A::ResetMachineLimit}, {8, A::ResetMachineLimit}, {7, A::FillOrderNumbers},
        {10, A::FillOrderNumbers}, {13, A::FillOrderNumbers}, {16, A::FillOrderNumbers},
        {19, A::FillOrderNumbers}, {21, A::FillOrderNumbers}, {23, A::FillOrderNumbers},
        {26, A::FillOrderNumbers}, {29, A::FillOrderNumbers}, {11, A::None}, {12, A::None},
        {2, A::None}, {30, A::None},
    };
    // clang-format on
    for (const auto& [page, action] : cases)
        EXPECT_EQ(ArrivalActionFor(page, kWizSummaryPage), action) << page;
    // The finish text goes with the last page of the list, whatever its index.
    EXPECT_EQ(ArrivalActionFor(4, 4), A::SetFinishText);
}

} // namespace
