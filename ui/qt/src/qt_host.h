// The window host on Qt Widgets: every dialog of the model as a real window.
// The model stays the owner of all state: user input goes through the
// CDialog::User... operations and the widgets are refreshed from the model
// when it reports a change.
#pragma once

#include "dialog_units.h"
#include "images.h"
#include "ui_host.h"

#include <QFont>

#include <map>
#include <string>
#include <vector>

class QEventLoop;
class QWidget;

namespace korv::ui::qt {

class DialogWindow;

class QtHost : public Host {
public:
    // Needs a QApplication.
    QtHost();
    ~QtHost() override;

    void DialogOpened(CDialog& dialog) override;
    void RunModal(CDialog& dialog) override;
    void DialogEnded(CDialog& dialog, int result) override;
    int ShowMessageBox(const std::string& text, unsigned type) override;
    int ChooseDirectory(DirectoryChooser& chooser) override;
    void ControlChanged(const CDialog& dialog, int id) override;
    void WindowChanged(const CDialog& dialog) override;

    // --- For the windows.
    const DialogUnits& units() const { return m_units; }
    const QFont& dialog_font() const { return m_font; }
    Images& images() { return m_images; }
    DialogWindow* window_of(const CDialog* dialog) const;
    void add_window(const CDialog* dialog, DialogWindow* window);
    void remove_window(const CDialog* dialog, const DialogWindow* window);
    // After each user action: ends the runs of dialogs that ended.
    void after_input();
    // The window boxes and nested dialogs belong to: the innermost running one.
    QWidget* innermost_window() const;

private:
    struct Run {
        CDialog* dialog;
        QEventLoop* loop;
    };

    QFont m_font;
    DialogUnits m_units;
    Images m_images;
    std::map<const CDialog*, DialogWindow*> m_windows;
    std::vector<Run> m_runs;
};

// Makes sure a QApplication exists on a display that can be opened; false
// with `why` set otherwise. Never aborts for want of a display.
bool ensure_application(std::string& why);

// Text of the model (bytes, UTF-8 where valid, else Latin-1) and back.
QString to_qt(const std::string& text);
std::string from_qt(const QString& text);

} // namespace korv::ui::qt
