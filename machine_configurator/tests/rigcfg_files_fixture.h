// A data folder below a scratch KORV_ROOT, a dialog object on it, and a host
// that records message boxes instead of showing them; or a scratch copy of the
// example installation.
#pragma once

#include "application/RigCfg.h"
#include "errtrace.h"
#include "ktranslate.h"
#include "log_capture.h"
#include "main_dialog/RigCfgDlg.h"
#include "scratch_dir.h"
#include "source_tree.h"
#include "ui_host.h"
#include "ui_host_selection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
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

// Whether `text` holds `part`; a failure shows the text.
inline ::testing::AssertionResult contains(const std::string& text, const std::string& part) {
    if (text.find(part) != std::string::npos)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "no \"" << part << "\" in:\n" << text;
}

inline std::string text_of(const korv::ui::CDialog& dialog, int id) {
    std::string text;
    dialog.GetDlgItemText(id, text);
    return text;
}

// Sets an old modification time, so that any later write shows.
inline void age(const std::string& path) {
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() -
                                               std::chrono::hours(1));
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
    // One value of the ini file `relative`, read afresh.
    std::string value(const std::string& relative, const char* section, const char* key) const {
        korv::KIniData ini;
        std::string value = "<absent>";
        if (ini.Open(host(relative)))
            ini.GetStringEntry(section, key, value);
        return value;
    }
    bool exists(const std::string& relative) const {
        return std::filesystem::exists(host(relative));
    }
    std::filesystem::file_time_type mtime(const std::string& relative) const {
        return std::filesystem::last_write_time(host(relative));
    }
    void age(const std::string& relative) const { rigcfg_test::age(host(relative)); }

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

// The example installation copied to a scratch KORV_ROOT; translations are the keys.
class ExamplesTest : public ::testing::Test {
protected:
    static constexpr const char* kMidspan = "C:\\ProgramData\\Korv\\Midspan Plugin\\";
    static constexpr const char* kKorECon = "C:\\ProgramData\\Korv\\KorECon\\";
    static inline const std::string kMidspanHost = "drive_c/ProgramData/Korv/Midspan Plugin/";
    static inline const std::string kKorEConHost = "drive_c/ProgramData/Korv/KorECon/";

    void SetUp() override {
        ASSERT_TRUE(std::filesystem::is_directory(source_tree() / "examples"));
        root.install((source_tree() / "examples").string());
        Translate_init("", root / "none", "en", "RigCfg");
        RegisterDialogResources();
    }
    void TearDown() override {
        Translate_init("", root / "none", "en", "RigCfg");
        korv::ui::reset_host_selection();
        KErrTrace_ClearContext();
    }

    std::string file(const std::string& relative) const { return root.read(relative); }
    static std::string example(const std::string& relative) {
        return slurp(source_tree() / "examples" / relative);
    }

    korv::testing::ScratchRoot root;
    korv::testing::LogCapture log;
    std::unique_ptr<CMidSpanCfgDlg> dlg;
};

} // namespace rigcfg_test
