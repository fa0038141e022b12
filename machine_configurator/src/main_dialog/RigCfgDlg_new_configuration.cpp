// The new-configuration flow: the one place where a wizard result becomes the
// active configuration, a snapshot and written files.
#include "main_dialog/RigCfgDlg.h"

#include "main_dialog/CfgHistory.h"
#include "wizard/CustomWizardDlg.h"
#include "wizard/WizardPageList.h"

void CMidSpanCfgDlg::OnButtonNew() {
    CCustomWizardDlg wizard(this);
    // Declared after the wizard, so the pages go first.
    WizardPageList pages(wizard);
    m_wizardResult = wizard.DoModal();

    // An incomplete result is a cancel, without a word; control and proxy may be empty.
    if (m_wizardResult != 1 || wizard.m_resGroup.empty() || wizard.m_resDriveUnit.empty() ||
        wizard.m_resTable.empty() || wizard.m_resStand.empty())
        return;

    m_actGroup = wizard.m_resGroup;
    m_actDriveUnit = wizard.m_resDriveUnit;
    m_actTable = wizard.m_resTable;
    m_actStand = wizard.m_resStand;
    m_actControl = wizard.m_resControl;
    m_actProxy = wizard.m_resProxy;
    m_iniFolder = wizard.m_resIniFolder;
    m_iniFile = wizard.m_resIniFile;

    const std::string group = NormaliseGroupKey(m_actGroup);
    if (group == "FORM" && m_productType == ProductTypeMidspan)
        WriteFormLoadIni(m_workDir + "\\form_load.ini");
    TheCfgHistory().Push(Snapshot(group, wizard.m_resIniFolder));

    RefreshHistoryButtons();
    OnInitDlg();
    INICfgFileIO(m_workDir, 1);

    if (m_productType == ProductTypeKorECon) {
        m_record.folder = wizard.m_resIniFolder;
        UpdateConfigFilesKorEcon();
    }
}
