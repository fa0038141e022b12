// Undo and redo of the active configuration through the history ring.
#include "main_dialog/RigCfgDlg.h"

#include "errtrace.h"

void CMidSpanCfgDlg::RefreshHistoryButtons() {
    const CfgHistory& history = TheCfgHistory();
    if (korv::ui::CWnd* button = GetDlgItem(IDC_NEW))
        button->EnableWindow(m_machineSheets != nullptr);
    if (korv::ui::CWnd* button = GetDlgItem(IDC_REDO))
        button->EnableWindow(history.CanRedo());
    if (korv::ui::CWnd* button = GetDlgItem(IDC_UNDO))
        button->EnableWindow(history.CanUndo());
}

CfgHistoryEntry CMidSpanCfgDlg::Snapshot(const std::string& group,
                                         const std::string& folder) const {
    CfgHistoryEntry entry;
    entry.group = group;
    CfgHistoryEntry::set_text(entry.drive_unit, m_actDriveUnit);
    CfgHistoryEntry::set_text(entry.table, m_actTable);
    CfgHistoryEntry::set_text(entry.stand, m_actStand);
    entry.folder = folder;
    entry.proxy = m_actProxy;
    return entry;
}

void CMidSpanCfgDlg::OnButtonUndo() {
    StepHistory(true);
}

void CMidSpanCfgDlg::OnButtonRedo() {
    StepHistory(false);
}

void CMidSpanCfgDlg::StepHistory(bool back) {
    using namespace korv::ui;
    CfgHistory& history = TheCfgHistory();
    if (!(back ? history.CanUndo() : history.CanRedo()))
        return;
    if (AfxMessageBox(TranslateText("You are about to change the active configuration setting! "
                                    "Are you sure to proceed?.msg"),
                      MB_YESNO | MB_ICONINFORMATION) != IDYES)
        return;
    const CfgHistoryEntry* entry = back ? history.Undo() : history.Redo();
    if (!entry)
        return;

    // The control string is no part of a snapshot: the newest one stays.
    m_actGroup = entry->group;
    m_actDriveUnit = entry->drive_unit;
    m_actTable = entry->table;
    m_actStand = entry->stand;
    m_actProxy = entry->proxy;
    // Both directions report under the undo name.
    if (!ConvertDrvunitStringToNewFormat(m_actDriveUnit, m_actGroup, entry->folder, m_actProxy,
                                         m_record))
        KERRLOG("OnButtonUndo(): ConvertDrvunitStringToNewFormat() failed");
    else if (m_productType == ProductTypeKorECon)
        UpdateConfigFilesKorEcon();

    // Labels and line visibility stay as they are: they follow wizard results only.
    RefreshControls(false);
    RefreshHistoryButtons();
    INICfgFileIO(m_workDir, 1);
}
