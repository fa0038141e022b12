// The tool's own ini file, RigCfg.ini: the trace level for every family and,
// for KorECon, the store of the active configuration. Beside it the small
// readers the control side needs and the update of an old sp_load.ini.
#include "main_dialog/RigCfgDlg.h"

#include "KIniData_template_core.h"
#include "errtrace.h"

namespace {

constexpr const char* kGeneral = "General";
constexpr const char* kConfiguration = "Configuration";
constexpr int kDefaultTraceLevel = 4;

// Reads a [Configuration] key of RigCfg.ini into `value`; a failure is logged.
bool get_configuration(const korv::KIniData& ini, const char* key, std::string& value) {
    if (ini.GetStringEntry(kConfiguration, key, value))
        return true;
    KERRLOG("CfgIniFileMachinIni(): GetStringEntry(%s, %s) failed", kConfiguration, key);
    return false;
}

} // namespace

void CMidSpanCfgDlg::ReadAppIniFile() {
    const std::string path = m_appFolder + "RigCfg.ini";
    KErrTrace_BeginContext();
    bool errors = false;
    korv::KIniData mid;
    if (!mid.Open(path)) {
        KERRLOG("GetKtraceLevel(): mid.Open(%s) failed", path.c_str());
        errors = true;
    }

    // The "set" line names the trace level for both keys; that is its wording.
    if (!mid.HasEntry(kGeneral, "del_log_file")) {
        if (!mid.SetLongEntry(kGeneral, "del_log_file", 1)) {
            KERRLOG("ReadAppIniFile(): set ktrace level to file '%s' failed", path.c_str());
            errors = true;
        }
    } else {
        std::int32_t unused = 0;
        if (!mid.GetLongEntry(kGeneral, "del_log_file", unused)) {
            KERRLOG("ReadAppIniFile(): get [%s] %s= from  '%s' failed", kGeneral, "del_log_file",
                    path.c_str());
            errors = true;
        }
    }

    std::int32_t level = kDefaultTraceLevel;
    if (!mid.HasEntry(kGeneral, "ktrace_level")) {
        if (!mid.SetLongEntry(kGeneral, "ktrace_level", kDefaultTraceLevel)) {
            KERRLOG("ReadAppIniFile(): set ktrace level to file '%s' failed", path.c_str());
            errors = true;
        }
    } else if (!mid.GetLongEntry(kGeneral, "ktrace_level", level)) {
        KERRLOG("ReadAppIniFile(): get ktrace level to file '%s' failed", path.c_str());
        errors = true;
        level = kDefaultTraceLevel;
    } else if (level < 0) {
        level = 0;
    } else if (level > 5) {
        level = 5;
    }
    KTRACE(4, "ReadAppIniFile(): ktrace level is %d", static_cast<int>(level));
    _KTrace_SetLevel("RigCfg", level);

    if (!CfgIniFileMachinIni(2, &mid)) {
        KERRTRACE("ReadAppIniFile(): CfgIniFileMachinIni() failed");
        errors = true;
    }
    bool saveFailed = false;
    if (!mid.in_sync && !mid.Save()) {
        KERRLOG("ReadAppIniFile(): mid.save() for faile '%s' failed", path.c_str());
        saveFailed = true;
    }
    if (saveFailed || errors)
        KERRTRACE_DUMP("ReadAppIniFile() with errors or warnings");
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

bool CMidSpanCfgDlg::CfgIniFileMachinIni(int mode, korv::KIniData* ini) {
    korv::KIniData own;
    if (!ini) {
        const std::string path = m_appFolder + "RigCfg.ini";
        if (!own.Open(path)) {
            KERRTRACE("CfgIniFileMachinIni(): mid.Open(%s) failed", path.c_str());
            return false;
        }
        ini = &own;
    }

    if (mode == 0 || mode == 2) {
        if (!ini->HasSection(kConfiguration)) {
            if (mode == 2)
                return true;
            KERRTRACE("CfgIniFileMachinIni(): expected section [%s] ", "doesn't exist");
            return false;
        }
        if (ini->HasEntry(kConfiguration, "korctrl")) {
            std::string korctrl;
            if (!ini->GetStringEntry(kConfiguration, "korctrl", korctrl)) {
                KTRACE(4, "CfgIniFileMachinIni(): GetStringEntry(%s, %s) failed", kConfiguration,
                       "korctrl");
            } else if (StripCommentAndWhitespace(korctrl) == "korecon") {
                // Only ever raised: no value turns a KorECon run back.
                m_productType = ProductTypeKorECon;
                KTRACE(2, "CfgIniFileMachinIni(): set korctrl type to: KORECON");
            }
        }
        if (m_productType != ProductTypeKorECon) {
            KERRTRACE("CfgIniFileMachinIni(): invalid korctrl type #%d", m_productType);
            return false;
        }

        std::string value;
        if (get_configuration(*ini, "machine", value))
            m_record.machine = StripCommentAndWhitespace(value);
        if (get_configuration(*ini, "order_no", value))
            m_record.order_no = StripCommentAndWhitespace(value);
        if (get_configuration(*ini, "product_group", value)) {
            m_record.product_group = StripCommentAndWhitespace(value);
        } else {
            m_record.product_group = "FORM";
            KTRACE(2, "CfgIniFileMachinIni(): set to default product  %s",
                   m_record.product_group.c_str());
        }
        m_record.folder = get_configuration(*ini, "folder", value) ? StripComment(value) : "";
        m_record.proxy = get_configuration(*ini, "proxy", value) ? StripComment(value) : "";

        m_actGroup = m_record.product_group;
        m_actDriveUnit = m_record.machine;
        m_actProxy = m_record.proxy;
        if (!m_record.order_no.empty()) {
            m_actDriveUnit += ":Order-No:" + m_record.order_no;
            m_actStand = "No Stand";
            m_actTable = "No Table";
            m_actControl.clear();
        }

        // Reading the configuration also brings the control's files in line.
        if (!UpdateMachineTree(m_appFolder)) {
            KERRTRACE("CfgIniFileMachineIni(): UpdateMachineTree(%s) failed", m_appFolder.c_str());
            return false;
        }
        if (!UpdateCameraList(m_appFolder)) {
            KERRTRACE("%s(): UpdateCameraList(%s) failed", "CMidSpanCfgDlg::CfgIniFileMachinIni",
                      m_appFolder.c_str());
            return false;
        }
        return true;
    }

    bool ok = true;
    if (!ConvertDrvunitStringToNewFormat(m_actDriveUnit, m_actGroup, m_iniFolder, m_actProxy,
                                         m_record)) {
        KERRTRACE("CfgIniFileMachinIni(): ConvertDrvunitStringToNewFormat()failed");
        ok = false;
    }
    const std::string korctrl = "korecon";
    if (m_productType != ProductTypeKorECon) {
        KERRTRACE("CfgIniFileMachinIni(): invalid korctrl type #%s ",
                  "to save application ini file");
        ok = false;
        KTRACE(2, "CfgIniFileMachinIni(): set to default korctrl type %s", korctrl.c_str());
    }
    // A failed korctrl names "machine" and a failed product_group "order_no":
    // the lines read so in every log there is.
    const struct {
        const char* key;
        const std::string& value;
        const char* named;
    } entries[] = {
        {"korctrl", korctrl, "machine"},
        {"machine", m_record.machine, "machine"},
        {"order_no", m_record.order_no, "order_no"},
        {"product_group", m_record.product_group, "order_no"},
        {"folder", m_record.folder, "folder"},
        {"proxy", m_record.proxy, "proxy"},
    };
    for (const auto& entry : entries) {
        if (!ini->SetStringEntry(kConfiguration, entry.key, entry.value)) {
            KERRTRACE("CfgIniFileMachinIni(): SetStringEntry(%s, %s) failed", kConfiguration,
                      entry.named);
            ok = false;
        }
    }
    if (!ini->Save()) {
        KERRTRACE("CfgIniFileMachinIni(): can't save ini appliction ini file");
        ok = false;
    }
    return ok;
}

void CMidSpanCfgDlg::ConvertIni(const std::string& folder) {
    const std::string path = folder + "sp_load.ini";
    korv::KIniData mLoadIni;
    if (!mLoadIni.Open(path))
        KERRLOG("ConvertIni(): mLoadIni.Open(%s) failed", path.c_str());
    if (!mLoadIni.HasEntry(kGeneral, "active")) {
        std::string group = "CONTOUR/SURFACE";
        std::string activeSection;
        if (mLoadIni.GetStringEntry(kGeneral, "active_section", activeSection) &&
            (activeSection.find("KMQ") != std::string::npos ||
             activeSection.find("ShapeScan") != std::string::npos))
            group = "FORM";
        mLoadIni.SetStringEntry(kGeneral, "active", group);
        if (!mLoadIni.Save())
            KERRLOG("ConvertIni(): mLoadIni.Save() failed");
    }
    mLoadIni.Close();
}

bool CMidSpanCfgDlg::ReadBoardTypeFromIniFile(const std::string& folder, std::string& board_type) {
    static const char* const kName = "CMidSpanCfgDlg::ReadBoardTypeFromIniFile";
    board_type.clear();
    const std::string path = folder + "machine.ini";
    korv::KIniData mid;
    if (!mid.Open(path)) {
        KERRTRACE("%s(): mid.Open(%s) failed ", kName, path.c_str());
        return false;
    }
    if (!mid.HasEntry("MACHINE", "BoardType"))
        return true;
    std::string value;
    if (!mid.GetStringEntry("MACHINE", "BoardType", value)) {
        KERRTRACE("%s(): get \"[MACHINE] BoardType=\" from file \"%s\" failed", kName,
                  path.c_str());
        return false;
    }
    board_type = StripCommentAndWhitespace(value);
    KTRACE(3, "%s(): BoardType=%s from \"%s\"", kName, board_type.c_str(), path.c_str());
    return true;
}

bool CMidSpanCfgDlg::GetKorEConDynamicIniPath(std::string& path) {
    path.clear();
    const std::string file = m_appFolder + "korecon.ini";
    KErrTrace_BeginContext();
    bool ok = false;
    korv::KIniData mini;
    if (!mini.Open(file))
        KERRTRACE("GetKorEConDynamicIniPath() mini.Open(%s) failed", file.c_str());
    else if (mini.file_missing)
        KERRTRACE("GetKorEConDynamicIniPath() mid no file (%s)", file.c_str());
    else if (!mini.GetStringEntry("configuration", "dynamic_path", path))
        KERRTRACE("GetKorEConDynamicIniPath() mini::GetStringEntry() [%s], %s failed",
                  "configuration", "dynamic_path");
    else
        ok = true;
    // A failure's lines go on to the caller's context.
    if (ok)
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
    return ok;
}
