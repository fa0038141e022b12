#include "main_dialog/CfgHistory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

CfgHistoryEntry entry(const std::string& unit) {
    CfgHistoryEntry e;
    e.group = "FORM";
    CfgHistoryEntry::set_text(e.drive_unit, unit);
    return e;
}

// Pushes "s1".."sN" onto a fresh ring.
CfgHistory pushed(int count) {
    CfgHistory h;
    h.Reset();
    for (int i = 1; i <= count; ++i)
        h.Push(entry("s" + std::to_string(i)));
    return h;
}

// The drive units met stepping back until Undo refuses.
std::vector<std::string> undo_all(CfgHistory& h) {
    std::vector<std::string> seen;
    while (const CfgHistoryEntry* e = h.Undo())
        seen.push_back(e->drive_unit);
    return seen;
}

TEST(CfgHistory, UndoAndRedoWalkTheRingAndOneSnapshotOffersNeither) {
    CfgHistory one = pushed(1);
    EXPECT_FALSE(one.CanUndo() || one.CanRedo());
    EXPECT_EQ(one.Undo(), nullptr);
    EXPECT_EQ(one.Redo(), nullptr);

    CfgHistory h = pushed(3);
    EXPECT_EQ(undo_all(h), (std::vector<std::string>{"s2", "s1"}));
    std::vector<std::string> forward;
    while (const CfgHistoryEntry* e = h.Redo())
        forward.push_back(e->drive_unit);
    // Redo stops at the newest snapshot.
    EXPECT_EQ(forward, (std::vector<std::string>{"s2", "s3"}));

    // A push after an undo keeps the undone snapshot as a step back.
    ASSERT_NE(h.Undo(), nullptr);
    h.Push(entry("s4"));
    EXPECT_FALSE(h.CanRedo());
    EXPECT_EQ(undo_all(h), (std::vector<std::string>{"s3", "s2", "s1"}));

    h.entries[7].proxy = "cncproxy";
    h.Reset();
    EXPECT_EQ(h.current + h.next + h.oldest, 0);
    for (const CfgHistoryEntry& e : h.entries)
        EXPECT_EQ(e.group + e.drive_unit + e.proxy, "CONTOUR/SURFACE");
}

TEST(CfgHistory, TenPushesLeaveNineSnapshotsAndEightStepsBack) {
    CfgHistory h = pushed(10);
    const std::vector<std::string> back = undo_all(h);
    ASSERT_EQ(back.size(), 8u);
    EXPECT_EQ(back.front(), "s9");
    EXPECT_EQ(back.back(), "s2");
    // Further pushes go round, each dropping the oldest.
    CfgHistory more = pushed(13);
    EXPECT_EQ(undo_all(more).back(), "s5");
}

} // namespace
