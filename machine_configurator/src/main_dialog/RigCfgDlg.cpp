// The main dialog object: construction.
#include "main_dialog/RigCfgDlg.h"

#include "errtrace.h"
#include "ktranslate.h"
#include "kversioninfo.h"

CMidSpanCfgDlg::CMidSpanCfgDlg(ProductType productType, const std::string& appFolder,
                               const std::string& workDir, CMidSpanCfgApp* pApp)
    : korv::ui::CDialog(IDD), m_productType(productType), m_appFolder(appFolder),
      m_workDir(workDir), m_pApp(pApp) {
    m_versionLabel = "v" + korv::FileVersionInfo().GetFileVersion();
    // What the window procedure drew itself: the icon (also of the minimised
    // window) and the header caption transparent over its bitmap. Hosts that
    // draw take it from here. WM_SYSCOMMAND arrives through OnSysCommand.
    korv::ui::DialogLook look;
    look.icon = IDR_MAINFRAME;
    look.transparent = {IDC_HEADER_CAPTION};
    set_look(std::move(look));
    MapCommand(korv::ui::BN_CLICKED, IDC_UNDO, [this] { OnButtonUndo(); });
    MapCommand(korv::ui::BN_CLICKED, IDC_REDO, [this] { OnButtonRedo(); });
    MapCommand(korv::ui::BN_CLICKED, IDC_NEW, [this] { OnButtonNew(); });
    if (m_productType == ProductTypeMidspan)
        KTRACE(4, "CMidSpanCfgDlg(): use product type MIDSPAN");
    else if (m_productType == ProductTypeKorECon)
        KTRACE(4, "CMidSpanCfgDlg(): use product type KORECON");
    KTRACE(5, "CMidSpanCfgDlg(): use application folder %s", m_appFolder.c_str());
}

CMidSpanCfgDlg::~CMidSpanCfgDlg() {
    FreeCfgDataStructure();
}

std::string TranslateText(const std::string& key) {
    return Translate(key, 0, nullptr, "RigCfg");
}

int ErrorMessageBox(const std::string& key) {
    return korv::ui::AfxMessageBox(TranslateText(key), korv::ui::MB_ICONERROR);
}
