// The fixture of the host tests over the sample templates.
#include "qt_test_support.h"

#include "sample_dialogs.h"
#include "ui_host_selection.h"

namespace qt_test {

void QtHostTest::SetUp() {
    std::string why;
    ASSERT_TRUE(start_x_server(why)) << why;
    ASSERT_TRUE(install_qt_host(why)) << why;
    sample::register_templates();
}

void QtHostTest::TearDown() {
    korv::ui::reset_host_selection();
}

} // namespace qt_test
