// Message boxes and the directory chooser of the Qt host.
#include "qt_host.h"

#include "errtrace.h"
#include "ui_message_box.h"
#include "ui_winapp.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

namespace korv::ui::qt {

namespace {

QMessageBox::StandardButton standard_button(int answer) {
    switch (answer) {
    case IDOK:
        return QMessageBox::Ok;
    case IDCANCEL:
        return QMessageBox::Cancel;
    case IDABORT:
        return QMessageBox::Abort;
    case IDRETRY:
        return QMessageBox::Retry;
    case IDIGNORE:
        return QMessageBox::Ignore;
    case IDYES:
        return QMessageBox::Yes;
    case IDNO:
        return QMessageBox::No;
    default:
        return QMessageBox::NoButton;
    }
}

QMessageBox::Icon box_icon(unsigned type) {
    switch (type & MB_ICONMASK) {
    case MB_ICONERROR:
        return QMessageBox::Critical;
    case MB_ICONQUESTION:
        return QMessageBox::Question;
    case MB_ICONWARNING:
        return QMessageBox::Warning;
    case MB_ICONINFORMATION:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

// A box's title is the application's name, as on the platform.
QString box_title() {
    const CWinApp* app = AfxGetApp();
    if (app && !app->m_pszAppName.empty())
        return to_qt(app->m_pszAppName);
    return QApplication::applicationName();
}

} // namespace

int QtHost::ShowMessageBox(const std::string& text, unsigned type) {
    const MessageBoxButtons& buttons = message_box_buttons(type);
    QMessageBox box(box_icon(type), box_title(), to_qt(text), QMessageBox::NoButton,
                    innermost_window());
    QAbstractButton* close_button = nullptr;
    for (int i = 0; i < buttons.count; ++i) {
        QPushButton* button = box.addButton(standard_button(buttons.answers[i]));
        button->setProperty("korv_answer", buttons.answers[i]);
        if (i == message_box_default_index(type))
            box.setDefaultButton(button);
        if (buttons.answers[i] == buttons.close_answer)
            close_button = button;
    }
    // Escape and the close box give what the model says a box closed without a choice gives.
    box.setEscapeButton(close_button);
    box.setWindowModality(Qt::ApplicationModal);
    box.exec();
    QAbstractButton* clicked = box.clickedButton();
    const int answer = clicked ? clicked->property("korv_answer").toInt() : buttons.close_answer;
    return answer ? answer : buttons.close_answer;
}

namespace {

// A folder dialog that keeps the model's rules: only a folder is ever chosen,
// a typed name opens a folder or is refused with a beep.
class FolderDialog : public QFileDialog {
public:
    FolderDialog(DirectoryChooser& chooser, QWidget* parent)
        : QFileDialog(parent), m_chooser(chooser) {
        setOption(QFileDialog::DontUseNativeDialog);
        setOption(QFileDialog::ShowDirsOnly);
        setFileMode(QFileDialog::Directory);
        setAcceptMode(QFileDialog::AcceptOpen);
        setWindowTitle(to_qt(chooser.caption()));
        using T = DirectoryChooser::Text;
        setLabelText(QFileDialog::LookIn, to_qt(chooser.text(T::LookIn)));
        setLabelText(QFileDialog::FileName, to_qt(chooser.text(T::FileName)));
        setLabelText(QFileDialog::FileType, to_qt(chooser.text(T::FileType)));
        setLabelText(QFileDialog::Accept, to_qt(chooser.text(T::Ok)));
        setLabelText(QFileDialog::Reject, to_qt(chooser.text(T::Cancel)));
        // The model keeps the newest folder first, the folder box of Qt last.
        QStringList history;
        for (const std::string& folder : chooser.history())
            history.prepend(to_qt(folder));
        setHistory(history);
        if (!history.isEmpty())
            setDirectory(history.back());
    }

    void accept() override {
        QLineEdit* name_field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        const QString name = name_field ? name_field->text().trimmed() : QString();
        if (!name.isEmpty()) {
            const QString path = QDir(directory()).absoluteFilePath(name);
            using A = DirectoryChooser::NameAction;
            switch (m_chooser.name_entered(from_qt(name), QFileInfo(path).isDir())) {
            case A::Open:
                setDirectory(path);
                name_field->clear();
                return;
            case A::Refresh:
                setDirectory(directory());
                name_field->clear();
                return;
            case A::Refuse:
                QApplication::beep();
                return;
            }
        }
        std::vector<std::string> folders;
        for (const QString& folder : history())
            if (std::find(folders.begin(), folders.end(), from_qt(folder)) == folders.end())
                folders.insert(folders.begin(), from_qt(folder));
        if (!m_chooser.accept(from_qt(directory().absolutePath()), folders)) {
            QApplication::beep();
            return;
        }
        done(QDialog::Accepted);
    }

private:
    DirectoryChooser& m_chooser;
};

} // namespace

int QtHost::ChooseDirectory(DirectoryChooser& chooser) {
    FolderDialog dialog(chooser, innermost_window());
    dialog.setObjectName(QStringLiteral("korv_directory_chooser"));
    return dialog.exec() == QDialog::Accepted ? IDOK : IDCANCEL;
}

} // namespace korv::ui::qt
