#include "qt_test_support.h"

#include "ui_host_selection.h"

#include <QApplication>
#include <QDir>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPixmap>
#include <QTimer>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#ifdef UI_QT_LSAN_SUPPRESSIONS
// Only the window tests' leak checks skip what the toolkit's libraries keep.
extern "C" const char* __lsan_default_options() {
    return "suppressions=" UI_QT_LSAN_SUPPRESSIONS ":print_suppressions=0";
}
#endif

namespace qt_test {

namespace {

struct XServer {
    pid_t pid = -1;
    std::string error;

    XServer() {
        int fds[2];
        if (::pipe(fds) != 0) {
            error = "no pipe";
            return;
        }
        const std::string fd = std::to_string(fds[1]);
        pid = ::fork();
        if (pid == 0) {
            // The server goes with the tests, even when they are killed.
            ::prctl(PR_SET_PDEATHSIG, SIGTERM);
            ::close(fds[0]);
            const int null = ::open("/dev/null", O_WRONLY);
            ::dup2(null, 1);
            ::dup2(null, 2);
            ::execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1280x1024x24",
                     "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
            ::_exit(127);
        }
        ::close(fds[1]);
        if (pid < 0) {
            error = "Xvfb cannot be started";
            ::close(fds[0]);
            return;
        }
        // Xvfb writes the display number it took once it accepts connections.
        std::string number;
        pollfd p{fds[0], POLLIN, 0};
        char c = 0;
        while (::poll(&p, 1, 20000) > 0 && ::read(fds[0], &c, 1) == 1 && c != '\n')
            number += c;
        ::close(fds[0]);
        if (number.empty()) {
            error = "Xvfb named no display (is xvfb installed?)";
            return;
        }
        ::setenv("DISPLAY", (":" + number).c_str(), 1);
    }
    ~XServer() {
        if (pid > 0) {
            ::kill(pid, SIGTERM);
            ::waitpid(pid, nullptr, 0);
        }
    }
};

} // namespace

bool start_x_server(std::string& why) {
    static XServer server;
    why = server.error;
    return why.empty();
}

bool install_qt_host(std::string& why) {
    std::unique_ptr<korv::ui::Host> host = korv::ui::load_toolkit_host(UI_QT_MODULE, why);
    if (!host)
        return false;
    korv::ui::install_host(std::move(host));
    return true;
}

QWidget* dialog_window(int id) {
    const QString name = QStringLiteral("dialog%1").arg(id);
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == name && w->isVisible())
            return w;
    return nullptr;
}

Driver& Driver::on_dialog(int id, std::function<void(QWidget*)> act) {
    m_steps.push_back({[id]() -> QWidget* {
                           QWidget* modal = QApplication::activeModalWidget();
                           return modal && modal == dialog_window(id) ? modal : nullptr;
                       },
                       std::move(act), "dialog " + std::to_string(id)});
    return *this;
}

Driver& Driver::on_box(std::function<void(QMessageBox*)> act) {
    m_steps.push_back(
        {[]() -> QWidget* {
             auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
             return box && box->isVisible() ? box : nullptr;
         },
         [act = std::move(act)](QWidget* w) { act(static_cast<QMessageBox*>(w)); }, "message box"});
    return *this;
}

Driver& Driver::on_modal(const QString& name, std::function<void(QWidget*)> act) {
    m_steps.push_back({[name]() -> QWidget* {
                           QWidget* modal = QApplication::activeModalWidget();
                           return modal && modal->objectName() == name && modal->isVisible()
                                      ? modal
                                      : nullptr;
                       },
                       std::move(act), name.toStdString()});
    return *this;
}

void Driver::start() {
    QTimer::singleShot(10, &m_context, [this] { poll(); });
}

void Driver::poll() {
    if (done())
        return;
    Step& step = m_steps[m_next];
    QWidget* window = step.ready();
    if (!window) {
        m_waited_ms += 10;
        if (m_waited_ms > 20000) {
            QWidget* modal = QApplication::activeModalWidget();
            ADD_FAILURE() << "step " << m_next << " waited in vain for " << step.what
                          << "; the active modal window is "
                          << (modal ? modal->objectName().toStdString() + " \"" +
                                          modal->windowTitle().toStdString() + "\""
                                    : std::string("none"));
            m_next = m_steps.size();
            // Unwind every modal run, innermost first, as a person pressing Escape.
            QTimer* unwind = new QTimer;
            QObject::connect(unwind, &QTimer::timeout, unwind, [unwind] {
                QWidget* modal = QApplication::activeModalWidget();
                if (!modal) {
                    unwind->deleteLater();
                    return;
                }
                QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
                QApplication::sendEvent(modal, &escape);
            });
            unwind->start(50);
            return;
        }
        QTimer::singleShot(10, &m_context, [this] { poll(); });
        return;
    }
    m_waited_ms = 0;
    ++m_next;
    // The next poll is due before this step may enter a nested run.
    QTimer::singleShot(10, &m_context, [this] { poll(); });
    step.act(window);
}

std::vector<QWidget*> template_widgets(QWidget* window, const korv::ui::DialogTemplate& dialog) {
    std::map<int, int> seen;
    std::vector<QWidget*> widgets;
    for (const korv::ui::ControlTemplate& c : dialog.controls) {
        const auto all = window->findChildren<QWidget*>(QStringLiteral("control%1").arg(c.id),
                                                        Qt::FindDirectChildrenOnly);
        const int n = seen[c.id]++;
        widgets.push_back(n < all.size() ? all[n] : nullptr);
    }
    return widgets;
}

void expect_template_layout(QWidget* window, const korv::ui::DialogTemplate& dialog, bool inside) {
    using korv::ui::ControlKind;
    const QFontMetrics metrics(window->font());
    const int bx =
        (metrics.horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") / 26 +
         1) /
        2;
    const int by = metrics.height();
    const auto px = [](int du, int base, int per) { return (du * base + per / 2) / per; };
    EXPECT_NEAR(window->width(), px(dialog.cx, bx, 4), 1);
    EXPECT_NEAR(window->height(), px(dialog.cy, by, 8), 1);
    const std::vector<QWidget*> widgets = template_widgets(window, dialog);
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        const korv::ui::ControlTemplate& c = dialog.controls[i];
        SCOPED_TRACE(c.id);
        QWidget* widget = widgets[i];
        ASSERT_NE(widget, nullptr);
        const QRect g = widget->geometry();
        EXPECT_NEAR(g.x(), px(c.rect.x, bx, 4), 1);
        EXPECT_NEAR(g.y(), px(c.rect.y, by, 8), 1);
        EXPECT_NEAR(g.right() + 1, px(c.rect.x + c.rect.cx, bx, 4), 1);
        if (c.kind != ControlKind::ComboBox) { // its height is the closed box's
            EXPECT_NEAR(g.bottom() + 1, px(c.rect.y + c.rect.cy, by, 8), 1);
        }
        if (inside) {
            EXPECT_TRUE(widget->parentWidget()->rect().contains(g));
        }
    }
}

std::string save_shot(QWidget* window, const std::string& name) {
    const char* folder = std::getenv("KORV_UI_SHOTS");
    const QString dir = folder && *folder ? QString(folder) : QStringLiteral("/tmp/ui_qt_shots");
    QDir().mkpath(dir);
    const QString path = dir + "/" + QString::fromStdString(name) + ".png";
    window->grab().save(path);
    return path.toStdString();
}

} // namespace qt_test
