// The main dialog and owner of the active configuration.
//
// The object exists in every course of a run, also in the silent ones where it
// never gets a window: it holds the active configuration in two forms (the
// strings the dialog and wizard work in, the record the KorECon side works in),
// reads and writes the stores of that configuration, and writes the files the
// control software reads at its start. Members change first; controls are only
// refreshed from them, and without a window a refresh does nothing.
//
// Member functions are spread over source files by concern: strings and
// record, loader ini files, application ini, control files, machine tree,
// camera list, catalogue.
#pragma once

#include "KIniData_template_core.h"
#include "catalogue/data_sheets.h"
#include "main_dialog/CfgHistory.h"
#include "ui_framework.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CMidSpanCfgApp;

// The control family of the run.
enum ProductType : std::int32_t {
    ProductTypeMidspan = 0,
    ProductTypeKorECon = 1,
    ProductTypeMTMillikor = 2,
};

// The active configuration in the form the KorECon side and the control file
// writers read.
struct ActiveConfigRecord {
    std::string order_no;
    std::string machine;
    std::string product_group;
    std::string folder;
    std::string proxy;
};

// The parts of an active section string.
struct ActiveSection {
    std::string drive_unit;
    std::string table;
    std::string stand;
    std::string control;
};

// What the loose scanner of an active section string found wrong.
enum class ActiveSectionError { None, DriveUnit, Table, Stand };

// The translation of a key of the program's catalogue.
std::string TranslateText(const std::string& key);
// A message box with the error icon, its text the translation of `key`.
int ErrorMessageBox(const std::string& key);

// --- Configuration strings. Group keys compare case-sensitively throughout.

// The group key as it enters the history: legacy and unknown keys fold to
// "CONTOUR/SURFACE".
std::string NormaliseGroupKey(const std::string& group);
// The fold used at start, which has no arm for "KORSURF".
std::string NormaliseGroupKeyAtStart(const std::string& group);

// Splits at any of `delimiters`, dropping empty tokens.
std::vector<std::string> TokenizeString(const std::string& text, const std::string& delimiters);
// Cuts a trailing comment introduced by "//", then "/*", then ";".
std::string StripComment(const std::string& text);
// Removes every blank, tab, CR and LF (and the other C white space).
std::string StripWhitespace(const std::string& text);
// Both of the above.
std::string StripCommentAndWhitespace(const std::string& text);

// DRIVEUNIT[..],TABLE[..],MEASURESTAND[..],CONTROL[..]
std::string BuildActiveSectionString(const ActiveSection& parts);
// The loose reader of that string; see the source for its rules.
ActiveSectionError ScanActiveSection(const std::string& text, ActiveSection& parts);

// The value of [General] active_section in form_load.ini.
std::string BuildFormLoadString(const std::string& driveUnit, const std::string& table);
// "manual", "automatic" or "No Table" for a table kind of a data sheet.
std::string TableStringFromKind(int tableKind);
// A stand as stored, from its list text: " (hor.)" becomes ":horizontal",
// " (vert.)" ":vertical". False, with an error log line, when the kept part
// is 256 bytes or longer.
bool StandStringFromListText(const std::string& listText, std::string& stand);
// The stand string for display: pieces translated whole, joined by ", ".
std::string BuildStandDisplay(const std::string& stand);
// The display form of a machine form string for group "KORSHAFT": token one,
// or token one ":" typeWord ":" token three. False unless there are exactly
// three tokens; `display` is then untouched.
bool BuildMachineDisplay(const std::string& driveUnit, const std::string& typeWord,
                         std::string& display);

// --- Control files.

// Sets the entry only when its value differs, so that an unchanged container
// stays in sync with its file; an absent key reads as empty.
void update_different_entry(korv::KIniData& ini, const std::string& section, const std::string& key,
                            const std::string& value);

// The about box: the program's version.
class CAboutDlg : public korv::ui::CDialog {
public:
    static constexpr int IDD = 100;
    static constexpr int IDC_VERSION = 1019;

    CAboutDlg() : korv::ui::CDialog(IDD) {}

protected:
    bool OnInitDialog() override;
};

class CMidSpanCfgDlg : public korv::ui::CDialog {
public:
    static constexpr int IDD = 102;

    // Controls of the dialog resource.
    enum : int {
        IDC_END = 1,
        IDC_TABLE_LABEL = 1002,
        IDC_WORKDIR = 1003,
        IDC_STAND_LABEL = 1006,
        IDC_PROXY_LABEL = 1007,
        IDC_NEW = 1014,
        IDC_FRAME_TOP = 1015,
        IDC_UNDO = 1016,
        IDC_FRAME_BOTTOM = 1017,
        IDC_REDO = 1018,
        IDC_GROUP = 1036,
        IDC_UNIT = 1037,
        IDC_TABLE = 1038,
        IDC_STAND = 1040,
        IDC_PROXY_VALUE = 1041,
        IDC_PROXY = 1042,
        IDC_CONTROL = 1044,
        IDC_UNIT_LABEL = 1063,
        IDC_VERSION = 1064,
        IDC_HEADER_CAPTION = 1102,
        IDC_HEADER = 1104,
    };
    // The system command that opens the about box.
    static constexpr unsigned IDM_ABOUTBOX = 0x10;
    // The program's icon, image 128 of the resources.
    static constexpr int IDR_MAINFRAME = 128;

    CMidSpanCfgDlg(ProductType productType, const std::string& appFolder,
                   const std::string& workDir, CMidSpanCfgApp* pApp);
    ~CMidSpanCfgDlg() override;

    // --- Strings and record.
    // Fills `record` from a machine form drive unit string "machine:x:order".
    bool ConvertDrvunitStringToNewFormat(const std::string& driveUnit, const std::string& group,
                                         const std::string& folder, const std::string& proxy,
                                         ActiveConfigRecord& record);
    void RebuildStandDisplay();
    // Members to controls (false; rebuilds the stand display first) or back
    // (true). Without a window the members are all there is, and it does nothing.
    void RefreshControls(bool save);

    // --- Loader ini files (sp_load.ini, form_load.ini, load.ini).
    // type 0 reads, 1 writes the store of the product type.
    void INICfgFileIO(const std::string& folder, int type);
    bool ReadSpLoadIni(const std::string& path);
    bool WriteSpLoadIni(const std::string& path);
    void WriteFormLoadIni(const std::string& path);
    void ResetLoadIni();

    // --- Application ini (RigCfg.ini) and legacy conversion.
    void ReadAppIniFile();
    // mode 0 reads with [Configuration] required, 2 reads tolerating its
    // absence, anything else writes. A null `ini` opens RigCfg.ini.
    bool CfgIniFileMachinIni(int mode, korv::KIniData* ini);
    void ConvertIni(const std::string& folder);
    bool ReadBoardTypeFromIniFile(const std::string& folder, std::string& board_type);
    bool GetKorEConDynamicIniPath(std::string& path);

    // --- Control files.
    void UpdateConfigFilesKorEcon();
    bool UpdateMachineTree(const std::string& folder);
    bool UpdateCameraList(const std::string& folder);

    // --- Catalogue.
    bool InitCfgDataStructure(const std::string& cfgPath);
    void FreeCfgDataStructure();

    // --- The window.
    // The refresh of everything that depends on the group: labels, which
    // lines show, the machine display form. At start and after a wizard result.
    void OnInitDlg();
    // New, Undo and Redo enabled as the catalogue and the history allow.
    void RefreshHistoryButtons();
    // A snapshot of the members under `group`, with the record folder `folder`.
    CfgHistoryEntry Snapshot(const std::string& group, const std::string& folder) const;
    void OnButtonUndo();
    void OnButtonRedo();
    // Runs the wizard and takes its result over; leaves m_wizardResult.
    void OnButtonNew();
    // The system menu; only the about box is handled here.
    void OnSysCommand(unsigned nID, long lParam);

    // Configuration, in this order.
    std::int32_t m_productType;
    ActiveConfigRecord m_record;
    std::string m_appFolder;
    std::string m_workDir;
    std::int64_t m_wizardResult = 0;
    std::string m_actGroup;
    std::string m_actTable;
    std::string m_actStand;
    std::string m_actDriveUnit;
    std::string m_actControl;
    std::string m_actProxy;
    CMidSpanCfgApp* m_pApp;
    std::string m_iniFolder;
    std::string m_iniFile;
    std::string m_standDisplay;
    std::string m_versionLabel;

    // --- Catalogue: the data sheets, owned here. Built by InitCfgDataStructure,
    // null before a build and after FreeCfgDataStructure; tables and stands
    // stay null for the families other than Midspan.
    std::unique_ptr<MachineSheetList> m_machineSheets;
    std::unique_ptr<TableSheetList> m_tableSheets;
    std::unique_ptr<StandSheetList> m_standSheets;

    // --- Widgets, bound by DoDataExchange and OnInitDialog.
    korv::ui::CButton m_newButton;
    korv::ui::CStatic m_workDirText;
    korv::ui::CBitmapButton m_undoButton;
    korv::ui::CBitmapButton m_redoButton;
    korv::ui::CStatic m_headerBitmap;
    korv::ui::CStatic m_headerCaption;
    korv::ui::CDlgToolTipCtrl m_toolTip;

protected:
    void DoDataExchange(korv::ui::CDataExchange* pDX) override;
    bool OnInitDialog() override;
    // Refuses to end while no configuration is active.
    void OnOK() override;

private:
    // Undo (back) or redo, after the user's confirmation.
    void StepHistory(bool back);
    // Shows or hides a control, if the window has it.
    void ShowControl(int id, bool show);
};
