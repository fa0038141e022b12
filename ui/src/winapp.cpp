#include "ui_winapp.h"

#include "errtrace.h"
#include "kplatform_profile.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace korv::ui {

namespace {
CWinApp* g_app = nullptr;
}

void CCommandLineInfo::ParseParam(const char* /*param*/, bool /*flag*/, bool /*last*/) {}

CWinApp::CWinApp(const char* app_name)
    : m_pszAppName(app_name ? app_name : ""),
      m_pszProfileName("C:\\Windows\\" +
                       (m_pszAppName.empty() ? std::string("app") : m_pszAppName) + ".INI") {
    g_app = this;
}

CWinApp::~CWinApp() {
    if (g_app == this)
        g_app = nullptr;
}

void CWinApp::ParseCommandLine(CCommandLineInfo& info) const {
    for (std::size_t i = 1; i < m_arguments.size(); ++i) {
        const char* param = m_arguments[i].c_str();
        const bool flag = param[0] == '-' || param[0] == '/';
        if (flag)
            ++param;
        info.ParseParam(param, flag, i + 1 == m_arguments.size());
    }
}

std::string CWinApp::GetProfileString(const std::string& section, const std::string& entry,
                                      const std::string& fallback) const {
    char buffer[1024];
    korv::platform::GetPrivateProfileStringA(section.c_str(), entry.c_str(), fallback.c_str(),
                                             buffer, sizeof buffer, m_pszProfileName.c_str());
    return buffer;
}

bool CWinApp::WriteProfileString(const std::string& section, const std::string& entry,
                                 const std::string& value) {
    if (korv::platform::WritePrivateProfileStringA(section.c_str(), entry.c_str(), value.c_str(),
                                                   m_pszProfileName.c_str()))
        return true;
    KERRLOG("WriteProfileString(): [%s] %s cannot be written to %s", section.c_str(), entry.c_str(),
            m_pszProfileName.c_str());
    return false;
}

int CWinApp::GetProfileInt(const std::string& section, const std::string& entry,
                           int nDefault) const {
    const std::string text = GetProfileString(section, entry);
    if (text.empty())
        return nDefault;
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || errno == ERANGE || value < INT_MIN || value > INT_MAX)
        return nDefault;
    return static_cast<int>(value);
}

bool CWinApp::WriteProfileInt(const std::string& section, const std::string& entry, int nValue) {
    return WriteProfileString(section, entry, std::to_string(nValue));
}

CWinApp* AfxGetApp() {
    return g_app;
}

int AfxWinMain(CWinApp& app, int argc, char** argv) {
    app.m_arguments.assign(argv, argv + argc);
    app.InitInstance();
    return app.ExitInstance();
}

} // namespace korv::ui
