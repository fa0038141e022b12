#include "qt_host.h"

#include "dialog_window.h"
#include "errtrace.h"
#include "kplatform_module.h"
#include "ui_dialog.h"
#include "ui_winapp.h"

#include <QApplication>
#include <QEventLoop>
#include <QStyleFactory>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>

namespace korv::ui::qt {

namespace {

// Made here and kept to the end of the process: deleted at exit it would
// outlive Qt's own statics made after it, and hosts come and go before.
QApplication* g_app = nullptr;
std::string g_refusal;

std::string program_name() {
    const std::string exe = korv::platform::executable_path();
    const std::size_t slash = exe.find_last_of('/');
    const std::string name = slash == std::string::npos ? exe : exe.substr(slash + 1);
    return name.empty() ? std::string("rigcfg") : name;
}

// Qt aborts the process when it cannot connect: ask the server first.
bool display_reachable(std::string& why) {
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    if (platform && *platform && std::strncmp(platform, "xcb", 3) != 0)
        return true; // another platform plugin was asked for: it is Qt's to judge
    const char* display = std::getenv("DISPLAY");
    if (!display || !*display) {
        why = "DISPLAY is not set";
        return false;
    }
    int screen = 0;
    xcb_connection_t* connection = xcb_connect(display, &screen);
    const int error = xcb_connection_has_error(connection);
    xcb_disconnect(connection);
    if (error) {
        why = std::string("the display ") + display + " cannot be opened";
        return false;
    }
    return true;
}

// Qt's own notes go to the trace, its errors to the error log, not to the
// terminal of a person who did not ask for them.
void route_qt_messages(QtMsgType type, const QMessageLogContext&, const QString& text) {
    const QByteArray bytes = text.toLocal8Bit();
    if (type == QtCriticalMsg || type == QtFatalMsg)
        KERRLOG("Qt: %s", bytes.constData());
    else
        KTRACE(3, "Qt: %s", bytes.constData());
}

} // namespace

bool ensure_application(std::string& why) {
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        return true;
    if (QCoreApplication::instance()) {
        why = "the process runs a Qt application without widgets";
        return false;
    }
    if (!display_reachable(why))
        return false;
    // The X platform unless the user named another; not through the
    // environment, which the programs this one starts would inherit.
    static std::string name = program_name();
    static char platform_option[] = "-platform";
    static char platform_name[] = "xcb";
    static char* argv[] = {name.data(), platform_option, platform_name, nullptr};
    static int argc = std::getenv("QT_QPA_PLATFORM") ? 1 : 3;
    qInstallMessageHandler(route_qt_messages);
    g_app = new QApplication(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false); // runs are nested loops, not exec()
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    return true;
}

QString to_qt(const std::string& text) {
    const QString utf8 = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    // Bytes that are no UTF-8 come from the platform's code page.
    if (utf8.contains(QChar::ReplacementCharacter) &&
        text.find("\xEF\xBF\xBD") == std::string::npos)
        return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
    return utf8;
}

std::string from_qt(const QString& text) {
    return text.toUtf8().toStdString();
}

namespace {

QFont make_dialog_font() {
    // The dialog font of the platform is an 8 point sans serif.
    QFont font = QApplication::font();
    font.setPointSize(8);
    return font;
}

} // namespace

QtHost::QtHost()
    : m_font(make_dialog_font()), m_units(m_font), m_images(Images::default_folders()) {
    KTRACE(4, "QtHost(): dialog units %d x %d pixels", m_units.base_x(), m_units.base_y());
}

QtHost::~QtHost() {
    // Windows left over belong to dialogs that never ended; they go with the host.
    std::vector<DialogWindow*> left;
    for (const auto& [dialog, window] : m_windows)
        if (window->isWindow())
            left.push_back(window);
    for (DialogWindow* window : left)
        delete window;
}

DialogWindow* QtHost::window_of(const CDialog* dialog) const {
    const auto found = m_windows.find(dialog);
    return found == m_windows.end() ? nullptr : found->second;
}

void QtHost::add_window(const CDialog* dialog, DialogWindow* window) {
    m_windows[dialog] = window;
}

void QtHost::remove_window(const CDialog* dialog, const DialogWindow* window) {
    const auto found = m_windows.find(dialog);
    if (found != m_windows.end() && found->second == window)
        m_windows.erase(found);
}

QWidget* QtHost::innermost_window() const {
    for (auto run = m_runs.rbegin(); run != m_runs.rend(); ++run)
        if (DialogWindow* window = window_of(run->dialog))
            return window;
    return nullptr;
}

void QtHost::DialogOpened(CDialog& dialog) {
    QWidget* owner = nullptr;
    if (const DialogWindow* parent = window_of(dynamic_cast<const CDialog*>(dialog.GetParent())))
        owner = parent->window();
    if (!owner)
        owner = innermost_window();
    DialogWindow* window = new DialogWindow(*this, dialog, owner, true);
    window->sync_all();
}

void QtHost::RunModal(CDialog& dialog) {
    DialogWindow* window = window_of(&dialog);
    if (!window) {
        KERRLOG("RunModal(): dialog %d has no window", dialog.template_id());
        dialog.EndDialog(-1);
        return;
    }
    window->sync_all(); // OnInitDialog may have changed what the window shows
    window->show_modal();
    QEventLoop loop;
    m_runs.push_back({&dialog, &loop});
    if (!dialog.modal_ended())
        loop.exec(QEventLoop::DialogExec);
    m_runs.pop_back();
}

void QtHost::DialogEnded(CDialog& dialog, int /*result*/) {
    // No handler of this window is running any more: its run has returned.
    delete window_of(&dialog);
}

void QtHost::after_input() {
    for (const Run& run : m_runs)
        if (run.dialog->modal_ended())
            run.loop->quit();
}

void QtHost::ControlChanged(const CDialog& dialog, int id) {
    if (DialogWindow* window = window_of(&dialog))
        window->sync_controls(id);
}

void QtHost::WindowChanged(const CDialog& dialog) {
    if (DialogWindow* window = window_of(&dialog))
        window->sync_window();
}

} // namespace korv::ui::qt

using korv::ui::Host;

extern "C" __attribute__((visibility("default"))) Host* korv_ui_create_host(int abi) {
    korv::ui::qt::g_refusal.clear();
    if (abi != korv::ui::kHostAbi)
        return nullptr;
    std::string why;
    if (!korv::ui::qt::ensure_application(why)) {
        korv::ui::qt::g_refusal = why;
        return nullptr;
    }
    korv::ui::qt::g_refusal.clear();
    return new korv::ui::qt::QtHost;
}

extern "C" __attribute__((visibility("default"))) const char* korv_ui_host_refusal() {
    return korv::ui::qt::g_refusal.c_str();
}
