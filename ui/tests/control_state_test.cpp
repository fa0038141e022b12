#include "ui_control_state.h"

#include <gtest/gtest.h>

using namespace korv::ui;

namespace {

ControlState make(ControlKind kind, unsigned styles = 0) {
    return ControlState(ControlTemplate{100, kind, "caption", {1, 2, 30, 40}, styles});
}

std::vector<std::string> texts(const ControlState& c) {
    std::vector<std::string> out;
    for (const ListItem& item : c.items)
        out.push_back(item.text);
    return out;
}

} // namespace

TEST(ControlState, SortedAddIgnoresCaseAndPutsEqualTextsAfterTheOld) {
    ControlState list = make(ControlKind::ListBox, style::sorted);
    EXPECT_EQ(list.add_string("cherry"), 0);
    EXPECT_EQ(list.add_string("Apple"), 0);
    EXPECT_EQ(list.add_string("banana"), 1);
    EXPECT_EQ(list.add_string("BANANA"), 2);
    EXPECT_EQ(list.add_string("apple2"), 1);
    EXPECT_EQ(texts(list),
              (std::vector<std::string>{"Apple", "apple2", "banana", "BANANA", "cherry"}));
}

TEST(ControlState, SelectionFollowsItsItemThroughInsertAndDelete) {
    ControlState list = make(ControlKind::ListBox);
    for (const char* t : {"a", "b", "c"})
        list.add_string(t);
    ASSERT_EQ(list.set_cur_sel(1), 1);
    EXPECT_EQ(list.insert_string(0, "z"), 0);
    EXPECT_EQ(list.selection, 2);
    EXPECT_EQ(list.insert_string(-1, "end"), 4);
    EXPECT_EQ(list.insert_string(9, "far"), LB_ERR);
    EXPECT_EQ(list.delete_string(0), 4);
    EXPECT_EQ(list.selection, 1);
    EXPECT_EQ(list.delete_string(1), 3);
    EXPECT_EQ(list.selection, -1) << "deleting the selected item leaves none selected";
    EXPECT_EQ(list.delete_string(3), LB_ERR);
    EXPECT_EQ(texts(list), (std::vector<std::string>{"a", "c", "end"}));
}

TEST(ControlState, IndexesOutsideTheListAnswerErrAndChangeNothing) {
    ControlState combo = make(ControlKind::ComboBox);
    combo.add_string("x");
    combo.set_cur_sel(0);
    EXPECT_EQ(combo.set_cur_sel(1), CB_ERR);
    EXPECT_EQ(combo.selection, 0) << "an index outside the list keeps the selection";
    EXPECT_EQ(combo.set_cur_sel(-1), CB_ERR);
    EXPECT_EQ(combo.selection, -1);
    combo.set_cur_sel(0);
    combo.reset_content();
    EXPECT_EQ(combo.item_count(), 0);
    EXPECT_EQ(combo.selection, -1);

    ControlState list = make(ControlKind::ListBox);
    list.add_string("a");
    EXPECT_EQ(list.set_item_data(0, 77), 0);
    EXPECT_EQ(list.get_item_data(0), 77u);
    EXPECT_EQ(list.set_item_data(1, 5), LB_ERR);
    EXPECT_EQ(list.get_item_data(-1), static_cast<DWORD_PTR>(LB_ERR));
    std::string text = "old";
    EXPECT_EQ(list.get_text(3, text), LB_ERR);
    EXPECT_EQ(text, "old");
    EXPECT_EQ(list.get_text(0, text), 1);
    EXPECT_EQ(text, "a");
}

TEST(ControlState, FindSearchesAfterTheStartAndGoesRound) {
    ControlState list = make(ControlKind::ListBox);
    for (const char* t : {"Port1", "port2", "Portal", "other"})
        list.add_string(t);
    EXPECT_EQ(list.find_string(-1, "PORT"), 0);
    EXPECT_EQ(list.find_string(0, "port"), 1);
    EXPECT_EQ(list.find_string(2, "port"), 0) << "goes round to the top";
    EXPECT_EQ(list.find_string(-1, "x"), LB_ERR);
    EXPECT_EQ(list.find_string(17, "other"), 3) << "a start outside the list searches all";
    EXPECT_EQ(list.find_string_exact(-1, "PORT2"), 1);
    EXPECT_EQ(list.find_string_exact(-1, "Port"), LB_ERR) << "a prefix is no exact match";
    EXPECT_EQ(list.find_string_exact(1, "port2"), 1) << "the start item is searched last";
}

TEST(ControlState, ComboTextIsTheSelectedItemAndOthersHaveNoItems) {
    ControlState combo = make(ControlKind::ComboBox);
    combo.add_string("first");
    EXPECT_EQ(combo.window_text(), "");
    combo.set_cur_sel(0);
    EXPECT_EQ(combo.window_text(), "first");
    combo.set_window_text("typed");
    EXPECT_EQ(combo.window_text(), "first") << "a drop-down list takes no typed text";

    ControlState edit = make(ControlKind::Edit);
    EXPECT_EQ(edit.add_string("x"), LB_ERR);
    EXPECT_EQ(edit.item_count(), LB_ERR);
    EXPECT_EQ(edit.find_string(-1, ""), LB_ERR);
    edit.set_window_text("typed");
    EXPECT_EQ(edit.window_text(), "typed");
}
