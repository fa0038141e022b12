// A resizing dialog stretched and shrunk by its gripper, its size kept in
// the application profile from one run to the next.
#include "qt_test_support.h"

#include "scratch_dir.h"
#include "ui_resizing_dialog.h"
#include "ui_winapp.h"

#include <QImage>
#include <QTest>

using namespace korv::ui;
using qt_test::control;
using qt_test::Driver;
using qt_test::QtHostTest;

namespace {

constexpr int kStretchy = 920, kList = 921, kLabel = 923, kFixed = 924;

class StretchyDlg : public CResizingDialog {
public:
    StretchyDlg() : CResizingDialog(kStretchy) {
        AddControl(kList | RESIZE_SIZE_X | RESIZE_SIZE_Y);
        AddControl(IDOK | RESIZE_MOVE_X | RESIZE_MOVE_Y);
        AddControl(kLabel | RESIZE_MOVE_X | RESIZE_SIZE_X); // the size wins
        AddControl(kFixed);                                 // no flag: stays
        AddControl(999 | RESIZE_MOVE_X);                    // no such control
    }
};

void register_stretchy() {
    using K = ControlKind;
    register_dialog_template({kStretchy,
                              "Stretchy",
                              200,
                              100,
                              {
                                  {kList, K::ListBox, "", {5, 5, 140, 70}},
                                  {kLabel, K::StaticText, "Label", {150, 5, 45, 10}},
                                  {kFixed, K::Edit, "", {5, 80, 60, 12}},
                                  {IDOK, K::DefaultButton, "OK", {150, 80, 45, 14}},
                              }});
}

// Drags the gripper by `dx` pixels to the right and `dy` down.
void drag_gripper(QWidget* w, int dx, int dy) {
    const QPoint from(w->width() - 3, w->height() - 3);
    QTest::mousePress(w, Qt::LeftButton, {}, from);
    QTest::mouseMove(w, from + QPoint(dx, dy));
    QTest::mouseRelease(w, Qt::LeftButton, {}, from + QPoint(dx, dy));
}

} // namespace

TEST_F(QtHostTest, AResizingDialogMovesItsControlsByTheirFlagsAndRemembersItsSize) {
    register_stretchy();
    korv::testing::ScratchDir dir;
    CWinApp app("Stretchy");
    app.m_pszProfileName = dir / "profile.ini";
    int grown_cx = 0;

    StretchyDlg first;
    Driver driver;
    driver.on_dialog(kStretchy, [&](QWidget* w) {
        EXPECT_EQ(first.OnNcHitTest(199, 99), HTBOTTOMRIGHT);
        EXPECT_EQ(first.OnNcHitTest(100, 50), HTCLIENT);
        EXPECT_EQ(first.OnNcHitTest(250, 50), HTNOWHERE);
        const QSize start = w->size();
        const QRect list = control(w, kList)->geometry(), ok = control(w, IDOK)->geometry(),
                    label = control(w, kLabel)->geometry(), fixed = control(w, kFixed)->geometry();
        drag_gripper(w, 90, 40);
        // Wider only: the height is held at the template's.
        EXPECT_GT(w->width(), start.width() + 80);
        EXPECT_EQ(w->height(), start.height());
        grown_cx = first.window().rect.Width();
        EXPECT_GT(grown_cx, 200);
        const int dx = w->width() - start.width();
        EXPECT_NEAR(control(w, kList)->width(), list.width() + dx, 2);
        EXPECT_EQ(control(w, kList)->height(), list.height());
        EXPECT_NEAR(control(w, IDOK)->x(), ok.x() + dx, 2);
        EXPECT_EQ(control(w, IDOK)->y(), ok.y());
        EXPECT_EQ(control(w, kLabel)->x(), label.x());
        EXPECT_NEAR(control(w, kLabel)->width(), label.width() + dx, 2);
        EXPECT_EQ(control(w, kFixed)->geometry(), fixed);
        qt_test::save_shot(w, "stretched");
        // The gripper is drawn in the corner, beside the OK button.
        const QImage corner = w->grab(QRect(w->width() - 4, w->height() - 4, 4, 4)).toImage();
        int drawn = 0;
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                drawn += corner.pixelColor(x, y) != w->palette().color(QPalette::Window);
        EXPECT_GT(drawn, 0);
        // Shrunk below its template it stops at the template's size.
        drag_gripper(w, -400, 0);
        EXPECT_EQ(w->size(), start);
        EXPECT_EQ(control(w, IDOK)->geometry(), ok);
        EXPECT_EQ(control(w, kList)->geometry(), list);
        drag_gripper(w, 90, 0);
        grown_cx = first.window().rect.Width();
        QTest::keyClick(w, Qt::Key_Return);
    });
    driver.start();
    EXPECT_EQ(first.DoModal(), IDOK);
    EXPECT_TRUE(driver.done());
    EXPECT_EQ(app.GetProfileInt("398", "CX", 0), grown_cx);
    EXPECT_EQ(app.GetProfileInt("398", "CY", 0), 100);

    // The next run opens at the remembered width, its controls where they were left.
    StretchyDlg second;
    Driver again;
    again.on_dialog(kStretchy, [&](QWidget* w) {
        EXPECT_EQ(second.window().rect.Width(), grown_cx);
        CRect ok;
        second.GetDlgItem(IDOK)->GetWindowRect(&ok);
        EXPECT_EQ(ok.left, 150 + grown_cx - 200);
        const QRect expected = control(w, IDOK)->geometry();
        EXPECT_TRUE(w->rect().contains(expected));
        EXPECT_GT(expected.x(), w->width() / 2);
        QTest::keyClick(w, Qt::Key_Escape);
    });
    again.start();
    EXPECT_EQ(second.DoModal(), IDCANCEL);
}

TEST_F(QtHostTest, ADialogOpenedAndClosedWithoutSizingWritesNoSize) {
    register_stretchy();
    korv::testing::ScratchDir dir;
    CWinApp app("Stretchy");
    app.m_pszProfileName = dir / "profile.ini";
    for (const char* saved : {"", "0"}) { // nothing saved, or a zero width: the template's size
        SCOPED_TRACE(saved);
        if (*saved)
            app.WriteProfileInt("398", "CX", 0);
        StretchyDlg dialog;
        Driver driver;
        driver.on_dialog(kStretchy, [&](QWidget* w) {
            EXPECT_EQ(dialog.window().rect.Width(), 200);
            QTest::keyClick(w, Qt::Key_Escape);
        });
        driver.start();
        EXPECT_EQ(dialog.DoModal(), IDCANCEL);
        EXPECT_EQ(app.GetProfileString("398", "CY"), "");
    }
}
