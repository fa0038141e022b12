// CDirSelDialog: a directory chooser. Only a folder can be chosen, never a
// file; the folders chosen before are offered again for the rest of the run.
//
//   CDirSelDialog chooser(Translate("choose folder.txt", 0, nullptr, domain));
//   if (chooser.DoModal() == IDOK)
//       folder = chooser.GetPath();
//
// The host shows it; the rules of what is accepted are here.
#pragma once

#include "ui_host.h"

#include <string>
#include <vector>

namespace korv::ui {

class CDirSelDialog : public DirectoryChooser {
public:
    // `domain` translates the texts of the chooser.
    explicit CDirSelDialog(const std::string& caption, const std::string& domain = {});
    ~CDirSelDialog() override;
    CDirSelDialog(const CDirSelDialog&) = delete;
    CDirSelDialog& operator=(const CDirSelDialog&) = delete;

    // IDOK with a folder chosen, IDCANCEL; -1 with an error log line if no
    // host can show a chooser.
    int DoModal();
    // The folder chosen by the last run that answered IDOK.
    const std::string& GetPath() const { return m_chosen; }

    // The chooser open now, if any.
    static CDirSelDialog* active();
    // The folders chosen in this run, the newest first.
    static std::vector<std::string>& folder_history();

    std::string caption() const override { return m_caption; }
    std::vector<std::string> history() const override { return folder_history(); }
    std::string text(Text which) const override;
    NameAction name_entered(const std::string& name, bool is_directory) const override;
    bool accept(const std::string& folder, const std::vector<std::string>& folder_box) override;

private:
    std::string m_caption;
    std::string m_domain;
    std::string m_chosen;
};

} // namespace korv::ui
