#include "ui_dir_sel_dialog.h"

#include "errtrace.h"
#include "ktranslate.h"
#include "ui_defs.h"
#include "ui_host_selection.h"

#include <algorithm>

namespace korv::ui {

namespace {
CDirSelDialog* g_active = nullptr;
}

CDirSelDialog::CDirSelDialog(const std::string& caption, const std::string& domain)
    : m_caption(caption), m_domain(domain) {
    g_active = this;
}

CDirSelDialog::~CDirSelDialog() {
    if (g_active == this)
        g_active = nullptr;
}

CDirSelDialog* CDirSelDialog::active() {
    return g_active;
}

std::vector<std::string>& CDirSelDialog::folder_history() {
    static std::vector<std::string> history;
    return history;
}

int CDirSelDialog::DoModal() {
    Host* host = active_host();
    if (!host) {
        KERRLOG("DoModal(): no directory chooser can be shown: %s",
                host_unavailable_reason().c_str());
        return -1;
    }
    g_active = this;
    const int result = host->ChooseDirectory(*this);
    if (result == -1)
        KERRLOG("DoModal(): the host has no directory chooser");
    return result;
}

std::string CDirSelDialog::text(Text which) const {
    const char* key = "";
    switch (which) {
    case Text::LookIn:
        key = "Suchen in.txt";
        break;
    case Text::FileName:
        key = "Dateiname.txt";
        break;
    case Text::FileType:
        key = "Auswahl.txt";
        break;
    case Text::Ok:
        key = "OK.but";
        break;
    case Text::Cancel:
        key = "Abbrechen.but";
        break;
    }
    return ::Translate(key, 0, nullptr, m_domain);
}

DirectoryChooser::NameAction CDirSelDialog::name_entered(const std::string& name,
                                                         bool is_directory) const {
    if (name.empty())
        return NameAction::Refuse;
    if (is_directory)
        return NameAction::Open;
    if (name.rfind("\\\\", 0) == 0)
        return NameAction::Refresh;
    // A file name is never accepted; ".*" only refreshes the folder.
    return name == ".*" ? NameAction::Refresh : NameAction::Refuse;
}

bool CDirSelDialog::accept(const std::string& folder, const std::vector<std::string>& folder_box) {
    if (folder.empty())
        return false;
    m_chosen = folder;
    std::vector<std::string> history = folder_box;
    if (std::find(history.begin(), history.end(), folder) == history.end())
        history.insert(history.begin(), folder);
    folder_history() = std::move(history);
    KTRACE(4, "accept(): folder %s chosen", folder.c_str());
    return true;
}

} // namespace korv::ui
