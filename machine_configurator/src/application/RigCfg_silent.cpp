// The silent courses: a stored configuration copied, or the active one created,
// from a machine description file.
#include "Configs.h"
#include "Configure.h"
#include "application/RigCfg.h"
#include "common.h"
#include "errtrace.h"
#include "ktranslate.h"

bool CMidSpanCfgApp::RunSilent(CMidSpanCfgDlg& dlg, Configs& configs, bool& leave) {
    leave = false;
    KTRACE(4, "InitInstance(): processing commandline parameter(s): file = %s variant = %s",
           m_cmdInfo.m_file.c_str(), m_cmdInfo.m_variant.c_str());
    // "lang=" doesn't count here: the suite's tools run in the installed language.
    Translate_init("", "", GetInstallLanguage(), m_pszAppName);

    KTRACE(5, "InitInstance(): reading machine config file %s", m_cmdInfo.m_file.c_str());
    if (!configs.ReadMachineFile(m_cmdInfo.m_file, m_machineEntry)) {
        KERRLOG("InitInstance(): failed to read file %s", m_cmdInfo.m_file.c_str());
        return false;
    }
    const std::string& mode = m_machineEntry.configure.mode;
    KTRACE(5, "InitInstance(): read succeeded. mode = %s", mode.c_str());
    if (mode == "copy") {
        RunCopyMode(dlg, configs);
        return true;
    }
    if (mode == "create") {
        leave = !RunCreateMode(dlg);
        return true;
    }
    if (mode == "new")
        KTRACE(4, "InitInstance(): start new mode");
    else
        KERRLOG("InitInstance(): unknown mode %s", mode.c_str());
    return false;
}

void CMidSpanCfgApp::RunCopyMode(CMidSpanCfgDlg& dlg, Configs& configs) {
    KTRACE(4, "InitInstance(): start copy mode");
    if (!configs.CopyConfig(m_machineEntry, m_cmdInfo.m_variant)) {
        m_exitCode = -1;
        KERRLOG("InitInstance(): copy mode failed");
        return;
    }
    m_exitCode = 0;
    // The stored loader file replaced the live one; its load list is stale.
    if (m_productName == "Midspan Plugin")
        dlg.ResetLoadIni();
    KTRACE(4, "InitInstance(): copy mode succeeded");
}

bool CMidSpanCfgApp::RunCreateMode(CMidSpanCfgDlg& dlg) {
    KTRACE(4, "InitInstance(): start create mode");
    const std::string& name = m_cmdInfo.m_alias_machine_name.empty()
                                  ? m_machineEntry.machine
                                  : m_cmdInfo.m_alias_machine_name;
    const std::string& variant =
        m_cmdInfo.m_alias_variant.empty() ? m_cmdInfo.m_variant : m_cmdInfo.m_alias_variant;
    const std::string strOldConfigString = name + ":OrderNo:" + variant;
    KTRACE(5, "InitInstance(): strOldConfigString = %s", strOldConfigString.c_str());

    // The folder always names the true variant, never the alias.
    std::string strCfgFolder = m_machineEntry.variantfolder + "\\" + m_cmdInfo.m_variant;
    KTRACE(5, "InitInstance(): strCfgFolder = %s", strCfgFolder.c_str());
    strCfgFolder = Expand(strCfgFolder);
    KTRACE(5, "InitInstance(): replaced strCfgFolder = %s", strCfgFolder.c_str());

    dlg.m_actDriveUnit = strOldConfigString;
    dlg.m_actGroup = m_machineEntry.product_group;
    dlg.m_iniFolder = strCfgFolder;
    dlg.m_actProxy = m_cmdInfo.m_proxy;
    if (!dlg.ConvertDrvunitStringToNewFormat(dlg.m_actDriveUnit, dlg.m_actGroup, dlg.m_iniFolder,
                                             dlg.m_actProxy, dlg.m_record)) {
        KERRLOG("%s(): ConvertDrvunitStringToNewFormat() failed", "CMidSpanCfgApp::InitInstance");
        return false;
    }

    if (m_machineEntry.korctrl != "korecon" && m_machineEntry.product_group == "FORM") {
        KTRACE(5, "InitInstance(): write form_load.ini to %s", m_appFolder.c_str());
        dlg.WriteFormLoadIni(m_appFolder + "\\form_load.ini");
    }

    if (!dlg.CfgIniFileMachinIni(1, nullptr)) {
        KERRLOG("InitInstance(): create mode failed. CfgIniFileMachinIni() failed.");
        return true;
    }
    // The control files are best effort: the configuration itself is written.
    dlg.UpdateConfigFilesKorEcon();
    KTRACE(4, "InitInstance(): create mode succeeded");
    m_exitCode = 0;
    return true;
}
