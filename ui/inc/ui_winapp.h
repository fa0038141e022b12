// The application object and the command line, as the framework has them.
//
//   int main(int argc, char** argv) {
//       CMidSpanCfgApp app;
//       return AfxWinMain(app, argc, argv);
//   }
//
// There is no message loop: InitInstance does the work, and whether it
// answers true or false, ExitInstance gives the exit code.
#pragma once

#include <string>
#include <vector>

namespace korv::ui {

class CWnd;

class CCommandLineInfo {
public:
    virtual ~CCommandLineInfo() = default;
    // One argument, with a leading '-' or '/' removed and `flag` then set.
    // The framework's own switches are not known here: the default does nothing.
    virtual void ParseParam(const char* param, bool flag, bool last);
};

class CWinApp {
public:
    // `app_name` is the application's name, for the program's own use.
    explicit CWinApp(const char* app_name = nullptr);
    virtual ~CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    virtual bool InitInstance() { return true; }
    virtual int ExitInstance() { return 0; }

    // Hands each argument after the program name to `info`.
    void ParseCommandLine(CCommandLineInfo& info) const;

    // The application profile, the ini file m_pszProfileName. Reads give the
    // default when the file, section or entry is missing or the value is no
    // number; writes answer false, with an error log line, on failure.
    int GetProfileInt(const std::string& section, const std::string& entry, int nDefault) const;
    bool WriteProfileInt(const std::string& section, const std::string& entry, int nValue);
    std::string GetProfileString(const std::string& section, const std::string& entry,
                                 const std::string& fallback = {}) const;
    bool WriteProfileString(const std::string& section, const std::string& entry,
                            const std::string& value);

    CWnd* m_pMainWnd = nullptr;
    std::string m_pszAppName;
    // "<app name>.INI" in the Windows folder, as the platform has it, unless set.
    std::string m_pszProfileName;
    std::vector<std::string> m_arguments; // argv, the program name first
};

// The one application object; null before it is constructed.
CWinApp* AfxGetApp();

// Runs `app` with the command line: InitInstance, then ExitInstance, whose
// result is the exit code.
int AfxWinMain(CWinApp& app, int argc, char** argv);

} // namespace korv::ui
