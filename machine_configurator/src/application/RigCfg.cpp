#include "application/RigCfg.h"

#include "Configs.h"
#include "Configure.h"
#include "common_app_data.h"
#include "errtrace.h"
#include "kdirtools.h"
#include "kplatform_module.h"
#include "kplatform_shell_folders.h"
#include "kregistry.h"
#include "ktranslate.h"
#include "kversioninfo.h"
#include "ui_message_box.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>

namespace {

constexpr const char kProgramFilesMacro[] = "<CSIDL_PROGRAM_FILES>";
constexpr std::size_t kProgramFilesMacroSize = sizeof(kProgramFilesMacro) - 1; // 21

std::string ExeFolder() {
    char buffer[korv::platform::MAX_PATH] = {};
    if (korv::platform::GetModuleFileNameA(nullptr, buffer, sizeof(buffer)) == 0) {
        KERRLOG("InitInstance(): GetModuleFileName() failed");
        return {};
    }
    std::string path(buffer);
    const std::size_t cut = path.find_last_of("/\\");
    if (cut == std::string::npos)
        return "\\";
    return path.substr(0, cut) + "\\";
}

// The folder of the executable with its trailing separator, as the drive and
// directory of the framework's help file path give it.
std::string ExeFolderNative() {
    const std::string path = korv::platform::executable_path();
    const std::size_t cut = path.find_last_of("/\\");
    return cut == std::string::npos ? std::string() : path.substr(0, cut + 1);
}

} // namespace

CMidSpanCfgApp::CMidSpanCfgApp() : korv::ui::CWinApp("RigCfg") {}

bool CMidSpanCfgApp::InitInstance() {
    korv::FileVersionInfo version;
    KTRACE(3, "InitInstance(): RigCfg v%s started.", version.GetProductVersionText().c_str());

    // Registry errors are shown in the dialogs' own message boxes.
    korv::RegSetMessageBoxHook([](const std::string& text, const std::string&, unsigned type) {
        korv::ui::AfxMessageBox(text, type);
    });
    RegisterDialogResources();
    m_exitCode = -1;

    ParseCommandLine(m_cmdInfo);

    const std::string exeFolder = ExeFolder();

    const std::string language = m_cmdInfo.m_lang.empty() ? GetInstallLanguage() : m_cmdInfo.m_lang;
    KTRACE(5, "InitInstance() path for loc file to %s", exeFolder.c_str());
    Translate_init("", exeFolder, language, m_pszAppName);

    std::string& cwd = m_cmdInfo.m_cwd;
    if (cwd.empty()) {
        cwd = ExeFolderNative();
    } else {
        const std::size_t at = cwd.find(kProgramFilesMacro);
        if (cwd.size() >= kProgramFilesMacroSize && at != std::string::npos) {
            char programFiles[korv::platform::MAX_PATH] = {};
            korv::platform::SHGetSpecialFolderPathA(nullptr, programFiles,
                                                    korv::platform::CSIDL_PROGRAM_FILES, false);
            cwd.replace(at, kProgramFilesMacroSize, programFiles);
        }
        if (!korv::dir_exists(cwd)) {
            KERRLOG("InitInstance(): working doesn't exists: %s", cwd.c_str());
            m_exitCode = -5;
        } else if (korv::dir_setwd(cwd)) {
            KTRACE(4, "InitInstance(): change cwd to : %s", cwd.c_str());
        } else {
            KTRACE(4, "InitInstance(): dir_setwd() failed to: %s", cwd.c_str());
            m_exitCode = -5;
        }
    }

    ProductType productType = ProductTypeMidspan;
    if (!m_cmdInfo.m_control.empty()) {
        std::string& control = m_cmdInfo.m_control;
        std::transform(control.begin(), control.end(), control.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (control == "korecon") {
            m_productName = "KorECon";
            productType = ProductTypeKorECon;
        } else if (control == "midspan") {
            m_productName = "Midspan Plugin";
            productType = ProductTypeMidspan;
        } else if (control == "mtmillikor") {
            m_productName = "MTMillikor";
            productType = ProductTypeMTMillikor;
        }
        KTRACE(5, "InitInstance(): use product name \"%s\" from program arguments",
               m_productName.c_str());
    }
    if (m_productName.empty()) {
        if (version.GetProductName() == "KorECon") {
            m_productName = "KorECon";
            productType = ProductTypeKorECon;
        } else {
            m_productName = "Midspan Plugin";
            productType = ProductTypeMidspan;
        }
        KTRACE(5, "InitInstance(): use product name \"%s\" from version.rc", m_productName.c_str());
    }

    {
        char folder[korv::platform::MAX_PATH] = {};
        KErrTrace_BeginContext();
        if (!korv::GetCommonAppDataFolderProduct(folder, sizeof(folder), "Korv",
                                                 m_productName.c_str(), true))
            KERRTRACE_DUMP("GetCommonAppDataFolderProduct() failed");
        else
            KErrTrace_ClearContext();
        KErrTrace_EndContext();
        m_appFolder = folder;
        KTRACE(4, "InitInstance(): use application data folder %s", m_appFolder.c_str());
    }

    auto dlg = std::make_unique<CMidSpanCfgDlg>(productType, m_appFolder, cwd, this);
    auto configs = std::make_unique<Configs>();

    bool dialogCourse = true;
    if (!m_cmdInfo.m_file.empty()) {
        bool leave = false;
        dialogCourse = !RunSilent(*dlg, *configs, leave);
        if (leave)
            return false;
    }
    if (dialogCourse)
        RunDialogCourse(*dlg, *configs);

    KTRACE(5, "InitInstance(): done");
    return false;
}

void CMidSpanCfgApp::RunDialogCourse(CMidSpanCfgDlg& dlg, Configs& configs) {
    m_pMainWnd = &dlg;
    const int result = dlg.DoModal();
    m_pMainWnd = nullptr;
    if (result == korv::ui::IDOK) {
        if (m_machineEntry.configure.mode != "new")
            return;
        if (m_productName != "Midspan Plugin") {
            KERRLOG("ProcessConfigFile(): unsupported mode new for %s", m_productName.c_str());
            return;
        }
        if (!configs.SaveConfigurationToMachineConfigFile(0, m_machineEntry, m_cmdInfo.m_variant)) {
            KERRLOG("InitInstance(): failed to save new config to file %s",
                    m_machineEntry.file_name.c_str());
            return;
        }
        KTRACE(4, "InitInstance(): file %s successfully saved", m_machineEntry.file_name.c_str());
        m_exitCode = 1;
    } else if (result == korv::ui::IDCANCEL) {
        KTRACE(5, "InitInstance(): cancel selected.");
        m_exitCode = 2;
    }
}

int CMidSpanCfgApp::ExitInstance() {
    korv::ui::CWinApp::ExitInstance();
    KTRACE(5, "ExitInstance(): exit rigcfg.exe exitcode = %i", m_exitCode);
    return m_exitCode;
}
