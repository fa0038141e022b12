// What the window host's tests share: an X server of their own, the real
// module loaded as the program loads it, and a driver that acts on windows
// from the event loop while modal runs nest.
#pragma once

#include "ui_dialog.h"
#include "ui_dialog_template.h"

#include <QObject>
#include <QString>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

class QMessageBox;

namespace qt_test {

// Starts Xvfb on a free display once per process and points DISPLAY at it;
// stops it at exit. False, with `why`, if it cannot start.
bool start_x_server(std::string& why);

// Loads the module at UI_QT_MODULE and makes its host the active one.
bool install_qt_host(std::string& why);

// The visible top-level window of dialog `id`, or null.
QWidget* dialog_window(int id);
// The widget of control `id` in `window`, looking into child dialogs too
// (`page` narrows the search to the child dialog with that id).
template <typename W = QWidget> W* control(QWidget* window, int id, int page = 0) {
    QWidget* scope = window;
    if (page)
        scope = window->findChild<QWidget*>(QStringLiteral("dialog%1").arg(page));
    return scope ? scope->findChild<W*>(QStringLiteral("control%1").arg(id)) : nullptr;
}

// Steps run one after another from the event loop, each once what it waits
// for is the innermost modal window. A step that opens a modal run returns
// when that run ends; the next step runs inside it meanwhile.
class Driver {
public:
    // Acts on the window of dialog `id` once it is the active modal window.
    Driver& on_dialog(int id, std::function<void(QWidget*)> act);
    // Acts on the message box that is the active modal window.
    Driver& on_box(std::function<void(QMessageBox*)> act);
    // Acts on any active modal widget with this object name.
    Driver& on_modal(const QString& name, std::function<void(QWidget*)> act);
    // Begins polling; the steps run while the caller's modal run goes on.
    void start();
    bool done() const { return m_next == m_steps.size(); }

private:
    struct Step {
        std::function<QWidget*()> ready;
        std::function<void(QWidget*)> act;
        std::string what;
    };
    void poll();

    std::vector<Step> m_steps;
    std::size_t m_next = 0;
    int m_waited_ms = 0;
    QObject m_context; // pending polls go with the driver
};

// The widgets of the template's controls in template order, null where one is
// missing; controls that share an id (statics) are told apart by their order.
std::vector<QWidget*> template_widgets(QWidget* window, const korv::ui::DialogTemplate& dialog);

// Checks that `window` shows `dialog` as designed: the window's and every
// control's geometry within a pixel of the dialog-unit conversion and, with
// `inside`, every control within its parent.
void expect_template_layout(QWidget* window, const korv::ui::DialogTemplate& dialog, bool inside);

// A file of its own under the shots folder ($KORV_UI_SHOTS or /tmp/ui_qt_shots).
std::string save_shot(QWidget* window, const std::string& name);

} // namespace qt_test

#include <gtest/gtest.h>

namespace qt_test {

// A real X server, the real module's host, the sample templates.
class QtHostTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
};

} // namespace qt_test
