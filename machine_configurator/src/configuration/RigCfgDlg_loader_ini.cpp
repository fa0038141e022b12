// The loader's ini files: sp_load.ini (the active configuration of the Midspan
// family), form_load.ini (the form loader's view of it) and SP_SUPPORT\load.ini
// (probe data reset on every change).
#include "main_dialog/RigCfgDlg.h"

#include "KIniData_template_core.h"
#include "errtrace.h"
#include "fileops.h"
#include "kplatform_paths.h"
#include "kplatform_permissions.h"
#include "kplatform_profile.h"
#include "stl_utilities.h"

#include <cstdio>

using korv::platform::GetPrivateProfileStringA;
using korv::platform::WritePrivateProfileStringA;

namespace {

constexpr korv::platform::DWORD kReadBufferSize = 1024;

// Opens for update and closes again: a file that cannot be written fails here.
bool write_probe(const std::string& path) {
    std::FILE* file = std::fopen(korv::platform::native_path(path).c_str(), "r+");
    if (!file)
        return false;
    std::fclose(file);
    return true;
}

std::string read_general(const std::string& path, const char* key, const char* fallback) {
    char buffer[kReadBufferSize] = {};
    GetPrivateProfileStringA("General", key, fallback, buffer, kReadBufferSize, path.c_str());
    return buffer;
}

bool write_general(const std::string& path, const char* key, const std::string& value) {
    return WritePrivateProfileStringA("General", key, value.c_str(), path.c_str()) != 0;
}

void sp_load_missing_box() {
    korv::ui::AfxMessageBox(
        korv::stl_string_format(
            "%s\n\n%s",
            TranslateText("Error: INI-file 'sp_load.ini' could not be found.msg").c_str(),
            TranslateText("Select the directory where the specific Loader DLL is.msg").c_str()),
        korv::ui::MB_ICONERROR);
}

} // namespace

void CMidSpanCfgDlg::INICfgFileIO(const std::string& folder, int type) {
    std::string path;
    std::string configFile;
    if (m_productType == ProductTypeMidspan) {
        path = folder;
        if (path.empty() || path.back() != '\\')
            path += '\\';
        path += "sp_load.ini";
        if (!korv::file_exists(path)) {
            KERRLOG("INICfgFileIO(): can't find file %s", path.c_str());
            sp_load_missing_box();
            return;
        }
        if (!korv::platform::file_writable(path)) {
            korv::platform::make_file_writable(path);
            KTRACE(4, "INICfgFileIO(): change acces of file %s", path.c_str());
        }
        if (!write_probe(path)) {
            KERRLOG("INICfgFileIO(): can't open file %s", path.c_str());
            sp_load_missing_box();
            return;
        }
        const std::string cfgPath = read_general(path, "cfg_path", "?");
        if (cfgPath == "?") {
            ErrorMessageBox("Error: Entry 'cfg_path' in section [General] of INI file could not "
                            "be found.msg");
            KERRLOG("INICfFileIO(): could not found [GENERAL] cfg_path= in %s", path.c_str());
            return;
        }
        configFile = folder + "\\" + cfgPath;
    }

    KErrTrace_BeginContext();
    bool ok = true;
    if (type == 0) {
        if (m_productType == ProductTypeMidspan) {
            if (!ReadSpLoadIni(path)) {
                KERRTRACE("INICfgFileIO(): ReadSpLoadIni(%s) failed", path.c_str());
                ok = false;
            }
        } else if (!CfgIniFileMachinIni(0, nullptr)) {
            KERRTRACE("INICfgFileIO(): CfgIniFileMachinIni() failed");
            ok = false;
        }
        FreeCfgDataStructure();
        InitCfgDataStructure(configFile);
        RefreshControls(false);
    } else if (type == 1) {
        RefreshControls(true);
        if (m_productType == ProductTypeMidspan) {
            if (!WriteSpLoadIni(path)) {
                KERRTRACE("INICfgFileIO(): WriteSpLoadIni(%s) failed", path.c_str());
                ok = false;
            }
            ResetLoadIni();
        } else if (!CfgIniFileMachinIni(1, nullptr)) {
            KERRTRACE("INICfgFileIO(): CfgIniFileMachinIni() failed");
            ok = false;
        }
    } else {
        KERRLOG("INICfgFileIO(): invalid type #%d", type);
    }
    if (!ok)
        KERRTRACE_DUMP("INICfgFileIO() failed");
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

bool CMidSpanCfgDlg::ReadSpLoadIni(const std::string& path) {
    const std::string activeSection = read_general(path, "active_section", "?");
    if (activeSection == "?") {
        ErrorMessageBox("No active configuration could be found in INI file.msg");
        KERRTRACE("ReadSpLoadIni(): could not found [GENERAL] active_section= in %s", path.c_str());
        return false;
    }
    std::string group = read_general(path, "active", "");
    if (group.empty()) {
        ErrorMessageBox("File: 'cfg_path' [Device] 'active=' no product group defined.msg");
        KERRTRACE("ReadSpLoadIni(): could not found [DEVICE] active= in %s", path.c_str());
        return false;
    }
    if (group == "CONTOUR" || group == "SURFACE")
        group = "CONTOUR/SURFACE";

    ActiveSection parts;
    switch (ScanActiveSection(activeSection, parts)) {
    case ActiveSectionError::None:
        break;
    case ActiveSectionError::DriveUnit:
        ErrorMessageBox(
            "Found invalid configuration string format or no valid drive unit defined!.msg");
        KERRTRACE("ReadSpLoadIni(): Found invalid configuration string format or no valid drive "
                  "unit defined %s",
                  path.c_str());
        return false;
    case ActiveSectionError::Table:
        ErrorMessageBox(
            "Found invalid configuration string format or no valid table unit defined.msg");
        KERRTRACE("ReadSpLoadIni(): Found invalid configuration string format or no valid table "
                  "unit defined %s",
                  path.c_str());
        return false;
    case ActiveSectionError::Stand:
        ErrorMessageBox(
            "Found invalid configuration string format or no valid measurestand unit defined.msg");
        KERRTRACE("ReadSpLoadIni(): Found invalid configuration string format or no valid "
                  "measurestand unit defined %s",
                  path.c_str());
        return false;
    }

    // Only a file accepted as a whole changes the configuration.
    m_actGroup = group;
    m_actDriveUnit = parts.drive_unit;
    m_actStand = parts.stand;
    m_actTable = parts.table;
    m_actControl = parts.control;
    return true;
}

bool CMidSpanCfgDlg::WriteSpLoadIni(const std::string& path) {
    if (m_actDriveUnit.empty())
        return false;
    const std::string activeSection =
        BuildActiveSectionString({m_actDriveUnit, m_actTable, m_actStand, m_actControl});
    if (!write_general(path, "active_section", activeSection)) {
        ErrorMessageBox("Error: Writing of new configuration to INI file failed.msg");
        KERRTRACE("INICfgFileIo(): writing active configuration to file '%s' failed", path.c_str());
        return false;
    }
    if (!write_general(path, "active", m_actGroup)) {
        ErrorMessageBox("Error: Writing of new configuration to CFG file failed.msg");
        KERRTRACE("INICfgFileIo(): writing active configuration to file '%s' failed", path.c_str());
        return false;
    }
    return true;
}

void CMidSpanCfgDlg::WriteFormLoadIni(const std::string& path) {
    if (!korv::file_exists(path)) {
        KERRLOG("OnButtonNew(): can't find file %s", path.c_str());
    } else if (!korv::platform::file_writable(path)) {
        korv::platform::make_file_writable(path);
        KTRACE(4, "OnButtonNew(): change acces of file %s", path.c_str());
    }
    if (!write_general(path, "active_section", BuildFormLoadString(m_actDriveUnit, m_actTable))) {
        ErrorMessageBox("Error: Writing of new measurement configuration to 'form_load.ini' file "
                        "failed.msg");
        KERRLOG("OnButtonNew(): Writing of new measurement configuration to '%s' failed",
                path.c_str());
    }
    // Both lines name the folder, also for the file: that is what the log has always said.
    if (!write_general(path, "ini_folder", m_iniFolder)) {
        ErrorMessageBox("Error: Writing of new configuration to CFG file failed.msg");
        KERRLOG("INICfgFileIo(): writing ini file folder '%s' to filer '%s' failed",
                m_iniFolder.c_str(), path.c_str());
    }
    if (!write_general(path, "ini_file", m_iniFile)) {
        ErrorMessageBox("Error: Writing of new configuration to CFG file failed.msg");
        KERRLOG("INICfgFileIo(): writing ini file folder '%s' to filer '%s' failed",
                m_iniFolder.c_str(), path.c_str());
    }
}

void CMidSpanCfgDlg::ResetLoadIni() {
    const std::string path = m_appFolder + "SP_SUPPORT\\load.ini";
    KErrTrace_BeginContext();
    bool saved = false;
    korv::KIniData mini;
    if (mini.Open(path)) {
        // Everything else the file held goes, so that no stale probe survives.
        mini.SetContentString("");
        mini.SetStringEntry("1", "ProbeSystemName", "");
        mini.SetStringEntry("1", "ProbeSystemSerialNo", "");
        mini.SetLongEntry("DriveUnit", "Index", 1);
        saved = mini.Save();
        if (!saved)
            KERRTRACE("ResetLoadIni(): mini::Save() failed");
        mini.Close();
    }
    if (!saved)
        KERRTRACE_DUMP("ResetLoadIni() for %s failed", path.c_str());
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}
