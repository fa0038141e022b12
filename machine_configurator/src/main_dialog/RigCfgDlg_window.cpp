// The main dialog's window: exchange with the controls, start-up, the refresh
// that depends on the group, End and the system menu.
#include "application/RigCfg.h"
#include "main_dialog/RigCfgDlg.h"

#include "errtrace.h"
#include "stl_utilities.h"

#include <ctime>
#include <initializer_list>

namespace {

// Groups whose drive unit line names a machine.
bool is_machine_group(const std::string& group) {
    return korv::stl_string_is_one_of(group, {"FORM", "KORSIM", "KORSHAFT", "KORGEAR", "KOROPTO",
                                              "PLATFORM_COMPONENTS", "KORGEOMETRY", "PRECIKOR"});
}

// Groups whose KorECon control talks through a proxy.
bool is_proxy_group(const std::string& group) {
    return korv::stl_string_is_one_of(
        group, {"FORM", "KOROPTO", "KORSHAFT", "KORSIM", "KORGEOMETRY", "PLATFORM_COMPONENTS"});
}

} // namespace

void CMidSpanCfgDlg::DoDataExchange(korv::ui::CDataExchange* pDX) {
    using namespace korv::ui;
    DDX_Control(pDX, IDC_NEW, m_newButton);
    DDX_Control(pDX, IDC_WORKDIR, m_workDirText);
    DDX_Text(pDX, IDC_GROUP, m_actGroup);
    // The table shows translated; reading it back must not change the member.
    std::string table = TranslateText(m_actTable);
    DDX_Text(pDX, IDC_TABLE, table);
    DDX_Text(pDX, IDC_STAND, m_standDisplay);
    DDX_Text(pDX, IDC_UNIT, m_actDriveUnit);
    DDX_Text(pDX, IDC_CONTROL, m_actControl);
    DDX_Text(pDX, IDC_PROXY_VALUE, m_actProxy);
    DDX_Text(pDX, IDC_VERSION, m_versionLabel);
    DDX_Control(pDX, IDC_HEADER, m_headerBitmap);
    DDX_Control(pDX, IDC_HEADER_CAPTION, m_headerCaption);
}

bool CMidSpanCfgDlg::OnInitDialog() {
    using namespace korv::ui;
    CDialog::OnInitDialog();
    Translate(this, 0, "RigCfg");

    // The caption lies over the header bitmap, placed relative to its size.
    CRect header;
    m_headerBitmap.GetWindowRect(&header);
    m_headerCaption.SetWindowPos(nullptr, header.Width() / 10, header.Height() / 3, 0, 0,
                                 SWP_NOSIZE | SWP_NOZORDER);

    SetWindowText(TranslateText("Machine Configuration.txt"));

    m_toolTip.Create(this);
    m_toolTip.AddTool(IDC_NEW, TranslateText("configuration wizard.txt"));
    m_toolTip.AddTool(IDC_UNDO, TranslateText("undo configuration.txt"));
    m_toolTip.AddTool(IDC_REDO, TranslateText("redo configuration.txt"));
    m_toolTip.AddTool(IDC_END, TranslateText("End.but"));
    m_toolTip.Activate(true);

    m_undoButton.AutoLoad(IDC_UNDO, this);
    m_redoButton.AutoLoad(IDC_REDO, this);

    // The Midspan loader files live in the data folder, whatever "cwd=" said.
    if (m_productType == ProductTypeMidspan)
        m_workDir = m_appFolder;

    const std::time_t now = std::time(nullptr);
    const std::tm local = *std::localtime(&now);
    // Sets the trace level that the lines below obey.
    ReadAppIniFile();
    KTRACE(3, "OnInitDialog() ---------------------------------------------");
    KTRACE(3, "OnInitDialog() Started at: %02d/%02d/%02d %02d:%02d:%02d ", local.tm_year + 1900,
           local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    KTRACE(3, "OnInitDialog(): use working directory %s", m_workDir.c_str());
    KTRACE(3, "OnInitDialog(): use common app data folder %s", m_appFolder.c_str());

    m_workDirText.SetWindowText(m_workDir);
    RefreshControls(true);

    CfgHistory& history = TheCfgHistory();
    history.Reset();
    if (m_productType == ProductTypeMidspan)
        ConvertIni(m_workDir);
    INICfgFileIO(m_workDir, 0);

    history.Push(Snapshot(NormaliseGroupKeyAtStart(m_actGroup), m_record.folder));

    RefreshHistoryButtons();
    OnInitDlg();

    const bool wizardAtOnce = m_pApp && (!m_pApp->m_cmdInfo.m_productgroup.empty() ||
                                         m_pApp->m_machineEntry.configure.mode == "new");
    if (wizardAtOnce) {
        OnButtonNew();
        // The base handlers: End's check does not apply to a wizard run.
        if (m_wizardResult == 1)
            CDialog::OnOK();
        else
            CDialog::OnCancel();
    }
    return true;
}

void CMidSpanCfgDlg::ShowControl(int id, bool show) {
    if (korv::ui::CWnd* control = GetDlgItem(id))
        control->ShowWindow(show ? korv::ui::SW_SHOW : korv::ui::SW_HIDE);
}

void CMidSpanCfgDlg::OnInitDlg() {
    RefreshControls(false);

    // Never set back within a run.
    if (is_machine_group(m_actGroup))
        if (korv::ui::CWnd* label = GetDlgItem(IDC_UNIT_LABEL))
            label->SetWindowText(TranslateText("machine:.txt"));

    const bool korecon = m_productType == ProductTypeKorECon;
    for (int id : {IDC_STAND_LABEL, IDC_TABLE_LABEL, IDC_STAND, IDC_TABLE})
        ShowControl(id, !korecon);
    ShowControl(IDC_PROXY_VALUE, false);

    const bool proxyLine = korecon && is_proxy_group(m_actGroup);
    if (proxyLine) {
        const bool none = m_actProxy.empty() || m_actProxy == "korecon";
        SetDlgItemText(IDC_PROXY, TranslateText(none ? "no_proxy.txt" : m_actProxy));
    }
    ShowControl(IDC_PROXY_LABEL, proxyLine);
    ShowControl(IDC_PROXY, proxyLine);

    if (m_actGroup == "KORSHAFT") {
        std::string display;
        if (BuildMachineDisplay(m_actDriveUnit, TranslateText("Typ.txt"), display))
            SetDlgItemText(IDC_UNIT, display);
        else
            KERRLOG("OnInitDlg(): aprsing error m_actDriveUnit = '%s'", m_actDriveUnit.c_str());
    }
}

void CMidSpanCfgDlg::OnOK() {
    if (m_actGroup.empty() || m_actDriveUnit.empty()) {
        ErrorMessageBox("Bitte waehlen Sie eine Konfiguration aus.msg");
        return;
    }
    CDialog::OnOK();
}

void CMidSpanCfgDlg::OnSysCommand(unsigned nID, long /*lParam*/) {
    // No menu entry sends this: the system menu is never extended.
    if ((nID & 0xFFF0) == IDM_ABOUTBOX) {
        CAboutDlg about;
        about.DoModal();
    }
    // Everything else is the window system's own, which the model does not have.
}
