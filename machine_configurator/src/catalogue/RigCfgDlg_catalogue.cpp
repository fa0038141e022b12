// The catalogue of machines, tables and stands that the wizard chooses from.
#include "main_dialog/RigCfgDlg.h"

bool CMidSpanCfgDlg::InitCfgDataStructure(const std::string& cfgPath) {
    return BuildDataSheets(m_productType == ProductTypeMidspan, m_workDir, cfgPath, m_machineSheets,
                           m_tableSheets, m_standSheets);
}

void CMidSpanCfgDlg::FreeCfgDataStructure() {
    FreeDataSheets(m_machineSheets, m_tableSheets, m_standSheets);
}
