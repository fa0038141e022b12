// The application object: the whole run happens in InitInstance, which
// returns false, so there is no message loop; ExitInstance gives the exit code.
#pragma once

#include "MachineEntry.h"
#include "application/CustomCommandLineInfo.h"
#include "main_dialog/RigCfgDlg.h"
#include "ui_winapp.h"

#include <cstdint>
#include <string>

class Configs;

class CMidSpanCfgApp : public korv::ui::CWinApp {
public:
    CMidSpanCfgApp();

    bool InitInstance() override;
    int ExitInstance() override;

    CCustomCommandLineInfo m_cmdInfo;
    MachineEntry m_machineEntry;
    std::string m_appFolder; // ends in a backslash
    std::int32_t m_exitCode = -1;
    std::string m_productName;

private:
    // The silent branch; false when the dialog course must follow. `leave`
    // is set when the run ends at once, without the closing trace line.
    bool RunSilent(CMidSpanCfgDlg& dlg, Configs& configs, bool& leave);
    void RunCopyMode(CMidSpanCfgDlg& dlg, Configs& configs);
    // False when the run must end at once.
    bool RunCreateMode(CMidSpanCfgDlg& dlg);
    void RunDialogCourse(CMidSpanCfgDlg& dlg, Configs& configs);
};

// The templates of the program's dialogs.
void RegisterDialogResources();
