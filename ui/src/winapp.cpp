#include "ui_winapp.h"

namespace korv::ui {

namespace {
CWinApp* g_app = nullptr;
}

void CCommandLineInfo::ParseParam(const char* /*param*/, bool /*flag*/, bool /*last*/) {}

CWinApp::CWinApp(const char* app_name) : m_pszAppName(app_name ? app_name : "") {
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

CWinApp* AfxGetApp() {
    return g_app;
}

int AfxWinMain(CWinApp& app, int argc, char** argv) {
    app.m_arguments.assign(argv, argv + argc);
    app.InitInstance();
    return app.ExitInstance();
}

} // namespace korv::ui
