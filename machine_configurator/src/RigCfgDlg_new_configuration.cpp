// The new-configuration flow. The wizard is not built yet: New answers as a
// cancelled wizard, so nothing changes and nothing is written.
#include "RigCfgDlg.h"

#include "errtrace.h"

void CMidSpanCfgDlg::OnButtonNew() {
    KERRLOG("OnButtonNew(): the configuration wizard is not available in this build");
    m_wizardResult = 2;
}
