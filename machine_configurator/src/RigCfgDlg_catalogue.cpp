// The catalogue of machines, tables and stands that the wizard chooses from.
#include "RigCfgDlg.h"

bool CMidSpanCfgDlg::InitCfgDataStructure(const std::string& /*cfgPath*/) {
    return true;
}

void CMidSpanCfgDlg::FreeCfgDataStructure() {}
