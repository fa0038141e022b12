// Sample dialogs shown by the Qt host and used as a person would.
#include "qt_test_support.h"
#include "sample_dialogs.h"

#include "log_capture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTextEdit>

using namespace sample;
using qt_test::control;
using qt_test::dialog_window;
using qt_test::Driver;
using qt_test::QtHostTest;

namespace {

void click(QWidget* widget) {
    ASSERT_NE(widget, nullptr);
    QTest::mouseClick(widget, Qt::LeftButton);
}

void click_item(QListWidget* list, int row, bool twice = false) {
    const QPoint at = list->visualItemRect(list->item(row)).center();
    if (twice)
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    else
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
}

} // namespace

TEST_F(QtHostTest, TheSampleDialogTakesTypingChecksAndSelectionsThroughItsWidgets) {
    SampleDlg dialog;
    Driver driver;
    std::string box_text;
    driver
        .on_dialog(kSampleDialog,
                   [&](QWidget* w) {
                       EXPECT_EQ(w->windowTitle(), "Sample.dlghead");
                       EXPECT_EQ(control<QPushButton>(w, kOpenPages)->toolTip(), "Opens the pages");
                       // Enter with no name: the dialog refuses with an error box and stays.
                       QTest::keyClick(w, Qt::Key_Return);
                   })
        .on_box([&](QMessageBox* box) {
            box_text = box->text().toStdString();
            EXPECT_EQ(box->icon(), QMessageBox::Critical);
            QTest::keyClick(box, Qt::Key_Return);
        })
        .on_dialog(kSampleDialog, [&](QWidget* w) {
            QTest::keyClicks(control(w, kName), "Zoe");
            QTest::keyClicks(control(w, kFixedText), "x"); // read-only
            click(control(w, kOption));
            click(control(w, kThird));
            click(control(w, kThird)); // a checked radio button stays checked
            // Arrows go round the group, past the check box in it, and check.
            QTest::keyClick(control(w, kThird), Qt::Key_Down);
            EXPECT_TRUE(control<QRadioButton>(w, kFirst)->isChecked());
            QTest::keyClick(control(w, kFirst), Qt::Key_Up);
            EXPECT_TRUE(control<QRadioButton>(w, kThird)->isChecked());
            click(control(w, kNever)); // disabled
            auto* fruits = control<QListWidget>(w, kFruits);
            ASSERT_EQ(fruits->count(), 3);
            EXPECT_EQ(fruits->item(0)->text(), "apple"); // sorted by the model
            click_item(fruits, 1);
            click_item(fruits, 2);
            click_item(fruits, 2, true);
            auto* numbers = control<QComboBox>(w, kNumbers);
            numbers->setFocus();
            QTest::keyClick(numbers, Qt::Key_Down);
            EXPECT_EQ(control<QLineEdit>(w, kFixedText)->text(), "fixed");
            auto* summary = control<QTextEdit>(w, kSummary);
            EXPECT_TRUE(summary->isReadOnly());
            EXPECT_EQ(summary->palette().color(QPalette::Base), QColor(0xC0, 0xC0, 0xC0));
            EXPECT_TRUE(control<QRadioButton>(w, kThird)->isChecked());
            EXPECT_FALSE(control<QRadioButton>(w, kFirst)->isChecked());
            EXPECT_TRUE(control<QCheckBox>(w, kMiddleCheck)->isVisible());
            QTest::keyClick(numbers, Qt::Key_Return); // not taken by the combo: the default button
        });
    driver.start();
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_TRUE(driver.done());
    EXPECT_EQ(box_text, "Name missing.msg");
    EXPECT_EQ(dialog.m_name, "Zoe");
    EXPECT_EQ(dialog.m_option, 1);
    EXPECT_EQ(dialog.m_choice, 2);
    const std::vector<std::string> notes = {"name changed",  "name changed", "name changed",
                                            "option 1",      "fruit 1",      "fruit 2",
                                            "double Cherry", "number two"};
    EXPECT_EQ(dialog.notes, notes);
}

TEST_F(QtHostTest, ModalRunsNestAndPagesAreShownInTheirFrame) {
    SampleDlg dialog;
    Driver driver;
    QWidget* sample_window = nullptr;
    driver
        .on_dialog(kSampleDialog,
                   [&](QWidget* w) {
                       sample_window = w;
                       click(control(w, kOpenPages));
                   })
        .on_dialog(kPagesDialog,
                   [&](QWidget* w) {
                       EXPECT_EQ(w->parentWidget(), sample_window);
                       QWidget* page1 = w->findChild<QWidget*>("dialog610");
                       QWidget* page2 = w->findChild<QWidget*>("dialog611");
                       ASSERT_TRUE(page1 && page2);
                       EXPECT_TRUE(page1->isVisible());
                       EXPECT_FALSE(page2->isVisible());
                       EXPECT_EQ(page1->geometry(), control(w, kPagePlace)->geometry());
                       EXPECT_FALSE(control(w, kBack)->isEnabled());
                       click(control(w, kPageCheck, kPage1));
                       QTest::keyClick(control(w, kPageCheck, kPage1), Qt::Key_Return); // Next
                       EXPECT_FALSE(page1->isVisible());
                       EXPECT_TRUE(page2->isVisible());
                       EXPECT_TRUE(control(w, kBack)->isEnabled());
                       QTest::keyClicks(control(w, kPageEdit, kPage2), "abc");
                       click(control(w, kNested, kPage2));
                   })
        .on_dialog(kPlainDialog,
                   [&](QWidget* w) {
                       EXPECT_EQ(w->parentWidget(), dialog_window(kPagesDialog));
                       QTest::keyClick(w, Qt::Key_Escape);
                   })
        .on_dialog(kPagesDialog,
                   [&](QWidget* w) {
                       click(control(w, kBack));
                       EXPECT_TRUE(control<QCheckBox>(w, kPageCheck, kPage1)->isChecked());
                       w->close(); // the close box
                   })
        .on_dialog(kSampleDialog, [&](QWidget* w) { click(control(w, kAsk)); })
        .on_box([&](QMessageBox* box) {
            EXPECT_EQ(box->parentWidget(), sample_window);
            EXPECT_EQ(box->icon(), QMessageBox::Question);
            click(box->button(QMessageBox::No));
        })
        .on_dialog(kSampleDialog, [&](QWidget* w) {
            EXPECT_EQ(control<QLabel>(w, kStatus)->text(), "no");
            QTest::keyClick(w, Qt::Key_Escape);
        });
    driver.start();
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(driver.done());
    EXPECT_EQ(dialog_window(kSampleDialog), nullptr) << "the window goes with its run";
}

namespace {

constexpr int kLookDialog = 900, kOverHeader = 901, kOpaque = 902, kHeader = 903, kOddDialog = 910,
              kOdd = 911, kOddStyle = 912, kNoImage = 913, kLines = 914;

class LookDlg : public CDialog {
public:
    LookDlg() : CDialog(kLookDialog) {
        DialogLook look;
        look.icon = 128;
        look.transparent = {kOverHeader};
        set_look(look);
    }
};

class OddDlg : public CDialog {
public:
    CBitmapButton m_button;
    OddDlg() : CDialog(kOddDialog) {}
    bool OnInitDialog() override {
        CDialog::OnInitDialog();
        m_button.AutoLoad(kNoImage, this);
        return true;
    }
};

void register_own_templates() {
    using K = ControlKind;
    register_dialog_template({kLookDialog,
                              "Look",
                              200,
                              80,
                              {
                                  {kHeader, K::Bitmap, "9999", {0, 0, 200, 40}},
                                  {kOverHeader, K::StaticText, "Over", {10, 10, 90, 10}},
                                  {kOpaque, K::StaticText, "Opaque", {105, 10, 90, 10}},
                                  {IDOK, K::DefaultButton, "OK", {145, 60, 50, 14}},
                              }});
    register_dialog_template({kOddDialog,
                              "Odd",
                              150,
                              60,
                              {
                                  {kOdd, static_cast<K>(99), "Odd kind", {5, 5, 60, 10}},
                                  {kOddStyle, K::Edit, "odd style", {5, 20, 60, 12}, 1u << 20},
                                  {kNoImage, K::BitmapButton, "Nothing", {70, 5, 40, 14}},
                                  {kLines, K::Edit, "", {5, 35, 60, 20}, style::multi_line},
                                  {IDCANCEL, K::Button, "Cancel", {95, 40, 50, 14}},
                              }});
}

} // namespace

TEST_F(QtHostTest, EachControlLiesWhereItsDialogUnitsSayAndInsideItsWindow) {
    register_own_templates();
    struct Row {
        int dialog;
        int opened_by; // a button of the sample dialog, or 0
        bool inside;   // the template keeps every control inside its window
    };
    // The sample dialog holds controls below its bottom edge on purpose.
    const Row rows[] = {{kSampleDialog, 0, false}, {kPagesDialog, kOpenPages, true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.dialog);
        SampleDlg dialog;
        Driver driver;
        auto check = [&](QWidget* w) {
            qt_test::expect_template_layout(w, *find_dialog_template(row.dialog), row.inside);
            qt_test::save_shot(w, "dialog" + std::to_string(row.dialog));
            QTest::keyClick(w, Qt::Key_Escape);
        };
        if (row.opened_by)
            driver.on_dialog(kSampleDialog, [&](QWidget* w) { click(control(w, row.opened_by)); });
        driver.on_dialog(row.dialog, check);
        if (row.opened_by)
            driver.on_dialog(kSampleDialog, [](QWidget* w) { QTest::keyClick(w, Qt::Key_Escape); });
        driver.start();
        dialog.DoModal();
        EXPECT_TRUE(driver.done());
    }
}

TEST_F(QtHostTest, TheLookGivesTheIconAndLetsTheHeaderShowThroughATransparentCaption) {
    register_own_templates();
    LookDlg dialog;
    Driver driver;
    driver.on_dialog(kLookDialog, [&](QWidget* w) {
        EXPECT_FALSE(w->windowIcon().isNull());
        const QImage shot = w->grab().toImage();
        const QImage header = control(w, kHeader)->grab().toImage();
        qt_test::save_shot(w, "look");
        // A point of each caption's background, right of its text.
        for (int id : {kOverHeader, kOpaque}) {
            const QRect g = control(w, id)->geometry();
            const QPoint at(g.right() - 2, g.center().y());
            const QColor seen = shot.pixelColor(at);
            if (id == kOverHeader) {
                EXPECT_EQ(seen, header.pixelColor(at - control(w, kHeader)->pos()));
            } else {
                EXPECT_EQ(seen, w->palette().color(QPalette::Window));
            }
        }
        QTest::keyClick(w, Qt::Key_Return);
    });
    driver.start();
    EXPECT_EQ(dialog.DoModal(), IDOK);
}

TEST_F(QtHostTest, AnUnknownKindOrStyleAndAMissingImageStillOpen) {
    register_own_templates();
    korv::testing::LogCapture log;
    OddDlg dialog;
    Driver driver;
    driver.on_dialog(kOddDialog, [&](QWidget* w) {
        EXPECT_EQ(control<QLabel>(w, kOdd)->text(), "Odd kind");
        EXPECT_EQ(control<QLineEdit>(w, kOddStyle)->text(), "odd style");
        EXPECT_EQ(control<QPushButton>(w, kNoImage)->text(), "Nothing");
        // Enter in a multi-line edit starts a line; the model holds CR LF.
        QTest::keyClicks(control(w, kLines), "a");
        QTest::keyClick(control(w, kLines), Qt::Key_Return);
        QTest::keyClicks(control(w, kLines), "b");
        EXPECT_EQ(dialog.find_control(kLines)->text, "a\r\nb");
        qt_test::save_shot(w, "odd");
        w->close();
    });
    driver.start();
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(log.has_error("control 911 has the unknown kind 99"));
    EXPECT_TRUE(log.has_error("control 912 has unknown style bits 0x100000"));
    EXPECT_TRUE(log.has_error("no image NothingU"));
}
