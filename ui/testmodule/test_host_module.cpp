// A toolkit module for the tests of the host selection: its host ends every
// dialog at once with 42 and answers every message box with Yes.
#include "ui_defs.h"
#include "ui_dialog.h"
#include "ui_host.h"

namespace {

class ModuleHost : public korv::ui::Host {
public:
    void DialogOpened(korv::ui::CDialog&) override {}
    void RunModal(korv::ui::CDialog& dialog) override { dialog.EndDialog(42); }
    void DialogEnded(korv::ui::CDialog&, int) override {}
    int ShowMessageBox(const std::string&, unsigned) override { return korv::ui::IDYES; }
};

} // namespace

extern "C" korv::ui::Host* korv_ui_create_host(int abi) {
    return abi == korv::ui::kHostAbi ? new ModuleHost : nullptr;
}
