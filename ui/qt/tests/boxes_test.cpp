// Message boxes and the directory chooser shown by the Qt host.
#include "qt_test_support.h"

#include "scratch_dir.h"
#include "ui_dir_sel_dialog.h"
#include "ui_message_box.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <set>

using namespace korv::ui;
using qt_test::Driver;
using qt_test::QtHostTest;

namespace {

// What a person does to a box: a key, the close box, or a click on the button
// of an answer.
enum class Act { Enter, Escape, CloseBox, Click };

struct BoxRow {
    unsigned type;
    Act act;
    int clicked; // for Click
    int expected;
};

} // namespace

TEST_F(QtHostTest, MessageBoxesOfferTheirButtonsAndReturnTheAnswerChosen) {
    const BoxRow rows[] = {
        {MB_OK, Act::Enter, 0, IDOK},
        {MB_OK | MB_ICONINFORMATION, Act::Escape, 0, IDOK},
        {MB_OKCANCEL, Act::Enter, 0, IDOK},
        {MB_OKCANCEL | MB_DEFBUTTON2, Act::Enter, 0, IDCANCEL},
        {MB_OKCANCEL | MB_ICONWARNING, Act::CloseBox, 0, IDCANCEL},
        {MB_ABORTRETRYIGNORE, Act::Click, IDRETRY, IDRETRY},
        {MB_ABORTRETRYIGNORE | MB_DEFBUTTON3, Act::Enter, 0, IDIGNORE},
        {MB_ABORTRETRYIGNORE, Act::Escape, 0, IDABORT},
        {MB_YESNOCANCEL | MB_ICONQUESTION, Act::Click, IDNO, IDNO},
        {MB_YESNOCANCEL | MB_DEFBUTTON2, Act::Enter, 0, IDNO},
        {MB_YESNOCANCEL, Act::Escape, 0, IDCANCEL},
        {MB_YESNO | MB_ICONERROR, Act::Click, IDYES, IDYES},
        {MB_YESNO, Act::CloseBox, 0, IDNO},
        {MB_RETRYCANCEL, Act::Enter, 0, IDRETRY},
        {MB_RETRYCANCEL | MB_DEFBUTTON2, Act::Escape, 0, IDCANCEL},
    };
    const std::map<unsigned, QMessageBox::Icon> icons = {
        {0, QMessageBox::NoIcon},
        {MB_ICONERROR, QMessageBox::Critical},
        {MB_ICONQUESTION, QMessageBox::Question},
        {MB_ICONWARNING, QMessageBox::Warning},
        {MB_ICONINFORMATION, QMessageBox::Information},
    };
    for (const BoxRow& row : rows) {
        SCOPED_TRACE("type 0x" + std::to_string(row.type) + " act " +
                     std::to_string(static_cast<int>(row.act)));
        Driver driver;
        driver.on_box([&](QMessageBox* box) {
            EXPECT_EQ(box->text(), "Go on?");
            EXPECT_EQ(box->icon(), icons.at(row.type & MB_ICONMASK));
            const MessageBoxButtons& wanted = message_box_buttons(row.type);
            std::set<int> offered;
            QAbstractButton* to_click = nullptr;
            for (QAbstractButton* button : box->buttons()) {
                const int answer = button->property("korv_answer").toInt();
                offered.insert(answer);
                if (answer == row.clicked)
                    to_click = button;
            }
            EXPECT_EQ(offered, std::set<int>(wanted.answers, wanted.answers + wanted.count));
            switch (row.act) {
            case Act::Enter:
                QTest::keyClick(box, Qt::Key_Return);
                break;
            case Act::Escape:
                QTest::keyClick(box, Qt::Key_Escape);
                break;
            case Act::CloseBox:
                box->close();
                break;
            case Act::Click:
                ASSERT_NE(to_click, nullptr);
                QTest::mouseClick(to_click, Qt::LeftButton);
                break;
            }
        });
        driver.start();
        EXPECT_EQ(AfxMessageBox("Go on?", row.type), row.expected);
        EXPECT_TRUE(driver.done());
    }
}

TEST_F(QtHostTest, TheDirectoryChooserOpensFoldersRefusesFilesAndKeepsWhatWasChosen) {
    korv::testing::ScratchDir dir;
    dir.write("alpha/keep.txt", "x");
    dir.write("note.txt", "x");
    CDirSelDialog::folder_history() = {dir.path()};
    CDirSelDialog chooser("Pick a folder");
    Driver driver;
    // Qt keeps the button disabled for a file; a click on it then does nothing.
    const auto enter_name = [](QWidget* w, const QString& name, bool folder) {
        auto* field = w->findChild<QLineEdit*>("fileNameEdit");
        auto* buttons = w->findChild<QDialogButtonBox*>("buttonBox");
        ASSERT_TRUE(field && buttons);
        field->clear();
        QTest::keyClicks(field, name);
        // The folder's entries are read in the background; a person waits for them too.
        QPushButton* open = buttons->button(QDialogButtonBox::Open);
        const bool enabled =
            QTest::qWaitFor([&] { return open->isEnabled(); }, folder ? 3000 : 300);
        EXPECT_TRUE(enabled || !folder) << name.toStdString();
        QTest::mouseClick(open, Qt::LeftButton);
    };
    driver.on_modal("korv_directory_chooser", [&](QWidget* w) {
        auto* files = static_cast<QFileDialog*>(w);
        EXPECT_EQ(files->windowTitle(), "Pick a folder");
        // No catalogue is loaded: the keys show.
        EXPECT_EQ(files->labelText(QFileDialog::LookIn), "Suchen in.txt");
        EXPECT_EQ(files->labelText(QFileDialog::Reject), "Abbrechen.but");
        EXPECT_EQ(files->directory().absolutePath().toStdString(), dir.path());
        enter_name(w, "note.txt", false); // a file: refused, nothing changes
        EXPECT_TRUE(files->isVisible());
        EXPECT_EQ(files->directory().absolutePath().toStdString(), dir.path());
        enter_name(w, "alpha", true); // a folder: opened
        EXPECT_TRUE(files->isVisible());
        EXPECT_EQ(files->directory().absolutePath().toStdString(), dir / "alpha");
        w->findChild<QLineEdit*>("fileNameEdit")->clear();
        auto* buttons = w->findChild<QDialogButtonBox*>("buttonBox");
        ASSERT_NE(buttons, nullptr);
        QTest::mouseClick(buttons->button(QDialogButtonBox::Open), Qt::LeftButton);
    });
    driver.start();
    EXPECT_EQ(chooser.DoModal(), IDOK);
    EXPECT_TRUE(driver.done());
    EXPECT_EQ(chooser.GetPath(), dir / "alpha");
    ASSERT_FALSE(CDirSelDialog::folder_history().empty());
    EXPECT_EQ(CDirSelDialog::folder_history().front(), dir / "alpha");

    // Cancel chooses nothing.
    CDirSelDialog again("Again");
    Driver cancel;
    cancel.on_modal("korv_directory_chooser",
                    [](QWidget* w) { QTest::keyClick(w, Qt::Key_Escape); });
    cancel.start();
    EXPECT_EQ(again.DoModal(), IDCANCEL);
    EXPECT_EQ(again.GetPath(), "");
}
