// A data folder below a scratch KORV_ROOT, a dialog object on it, and a host
// that records message boxes instead of showing them.
#pragma once

#include "errtrace.h"
#include "log_capture.h"
#include "main_dialog/RigCfgDlg.h"
#include "scratch_dir.h"
#include "ui_host.h"
#include "ui_host_selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace rigcfg_test {

struct Box {
    std::string text;
    unsigned type;
};

inline bool any_has(const std::vector<std::string>& lines, const std::string& part) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& t) { return t.find(part) != std::string::npos; });
}

// Answers every box with the first button and remembers it.
class RecordingHost : public korv::ui::Host {
public:
    explicit RecordingHost(std::vector<Box>& boxes) : m_boxes(boxes) {}
    void DialogOpened(korv::ui::CDialog&) override {}
    void RunModal(korv::ui::CDialog& dialog) override { dialog.EndDialog(korv::ui::IDCANCEL); }
    void DialogEnded(korv::ui::CDialog&, int) override {}
    int ShowMessageBox(const std::string& text, unsigned type) override {
        m_boxes.push_back({text, type});
        return korv::ui::IDOK;
    }

private:
    std::vector<Box>& m_boxes;
};

class FilesTest : public ::testing::Test {
protected:
    // The data folder in the program's form, and where it lies below the root.
    static constexpr const char* kApp = "C:\\ProgramData\\Korv\\App\\";
    static constexpr const char* kAppHost = "drive_c/ProgramData/Korv/App/";

    void SetUp() override {
        _KTrace_SetLevel("RigCfg", 5);
        korv::ui::install_host(std::make_unique<RecordingHost>(boxes));
        std::filesystem::create_directories(root / kAppHost);
    }
    void TearDown() override {
        korv::ui::reset_host_selection();
        KErrTrace_ClearContext();
    }

    std::unique_ptr<CMidSpanCfgDlg> make_dialog(ProductType type) {
        return std::make_unique<CMidSpanCfgDlg>(type, kApp, kApp, nullptr);
    }

    std::string host(const std::string& relative) const { return root / (kAppHost + relative); }
    void write(const std::string& relative, const std::string& bytes) const {
        root.write(kAppHost + relative, bytes);
    }
    std::string read(const std::string& relative) const { return root.read(kAppHost + relative); }
    bool exists(const std::string& relative) const {
        return std::filesystem::exists(host(relative));
    }
    std::filesystem::file_time_type mtime(const std::string& relative) const {
        return std::filesystem::last_write_time(host(relative));
    }
    // Sets an old modification time, so that any later write shows.
    void age(const std::string& relative) const {
        std::filesystem::last_write_time(
            host(relative), std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    }

    bool has_trace(const std::string& part) const { return any_has(log.traces(), part); }
    bool in_error_trace(const std::string& part) const {
        return any_has(korv::diag::error_trace_lines(), part);
    }
    // Error log texts written by the active configuration's own sources, leaving
    // out what the catalogue build reports about a data folder without machines.
    std::vector<std::string> own_errors() const {
        std::vector<std::string> texts;
        for (const korv::diag::LogRecord& r : log.records())
            if (r.channel == korv::diag::Channel::ErrorLog &&
                r.source_path.find("/RigCfgDlg") != std::string::npos &&
                r.source_path.find("_catalogue") == std::string::npos)
                texts.push_back(r.text);
        return texts;
    }

    korv::testing::ScratchRoot root;
    korv::testing::LogCapture log;
    std::vector<Box> boxes;
};

} // namespace rigcfg_test
