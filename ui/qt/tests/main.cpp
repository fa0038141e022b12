// The tests' entry, with two probes that the tests run as a program of their
// own: one opens a dialog with no usable display, one times the way from the
// start of a process to a visible dialog.
#include "qt_test_support.h"
#include "sample_dialogs.h"
#include "ui_host_selection.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <ctime>

namespace {

long long monotonic_ns() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

// Shows the sample dialog through the host that selection finds beside the
// program and prints the monotonic time at which its window was exposed.
int startup_probe() {
    sample::register_templates();
    if (!korv::ui::active_host())
        return 3;
    QTimer watch;
    long long exposed = 0;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        QWidget* window = qt_test::dialog_window(sample::kSampleDialog);
        if (!exposed && window && window->windowHandle() && window->windowHandle()->isExposed()) {
            exposed = monotonic_ns();
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QApplication::sendEvent(window, &escape);
        }
    });
    watch.start(1);
    sample::SampleDlg dialog;
    const int result = dialog.DoModal();
    std::printf("exposed %lld result %d\n", exposed, result);
    return 0;
}

// Opens a dialog and a box as the program would, whatever the display.
int no_host_probe() {
    sample::register_templates();
    sample::SampleDlg dialog;
    const int result = dialog.DoModal();
    const int answer = korv::ui::AfxMessageBox("Lost?", korv::ui::MB_OK);
    std::printf("result %d answer %d\n", result, answer);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--startup-probe") == 0)
        return startup_probe();
    if (argc == 2 && std::strcmp(argv[1], "--no-host-probe") == 0)
        return no_host_probe();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
