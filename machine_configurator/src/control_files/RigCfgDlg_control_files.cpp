// The KorECon control's own configuration: korecon.ini and launcher.ini follow
// the active record, together with the machine tree and the camera list.
#include "main_dialog/RigCfgDlg.h"

#include "KIniData_template_core.h"
#include "errtrace.h"
#include "stl_utilities.h"

#include <initializer_list>

namespace {

constexpr const char* kName = "CMidSpanCfgDlg::UpdateConfigFilesKorEcon";
constexpr const char* kKorSimComment =
    "       // don't start KorSim [changed by machine configurator]";

bool contains_any(const std::string& text, std::initializer_list<const char*> words) {
    for (const char* word : words)
        if (text.find(word) != std::string::npos)
            return true;
    return false;
}

struct LauncherChoice {
    const char* root;
    long usb;
};

// The first row that holds decides. `board` is empty or one of the known types.
LauncherChoice launcher_choice(const std::string& group, const std::string& board,
                               const std::string& proxy) {
    if (group == "KORSIM")
        return {"korsim", 0};
    if (board == "KECPU")
        return {"korecon", 1};
    if (korv::stl_string_is_one_of(board, {"ARM-Platform", "PPC-A21", "Win_x64"}))
        return proxy.empty() || proxy == "korecon" ? LauncherChoice{"ppc", 0}
                                                   : LauncherChoice{"proxy", 0};
    if (korv::stl_string_is_one_of(group, {"KORGEAR", "KORSURF", "PLATFORM_COMPONENTS"}))
        return {"ppc", 0};
    return {"korecon", 1};
}

// Sets a string entry unless it already holds the value, so that a launcher
// file that is right as it stands is not rewritten.
bool set_if_different(korv::KIniData& ini, const char* section, const char* key,
                      const std::string& value) {
    std::string present;
    if (ini.GetStringEntry(section, key, present) && present == value)
        return true;
    return ini.SetStringEntry(section, key, value);
}

void delete_if_present(korv::KIniData& ini, const char* section, const char* key) {
    if (ini.HasEntry(section, key))
        ini.DeleteEntry(section, key);
}

} // namespace

void update_different_entry(korv::KIniData& ini, const std::string& section, const std::string& key,
                            const std::string& value) {
    std::string present;
    if (!ini.GetStringEntry(section, key, present))
        present.clear();
    if (present == value) {
        KTRACE(5, "update_different_entry(): [%s] %s in %s is already %s", section.c_str(),
               key.c_str(), ini.file_name.c_str(), value.c_str());
        return;
    }
    ini.SetStringEntry(section, key, value);
    // Level 2, so that every real change to a control file stands in the log.
    KTRACE(2, "update_different_entry(): [%s] %s in %s updated to '%s' (was '%s')", section.c_str(),
           key.c_str(), ini.file_name.c_str(), value.c_str(), present.c_str());
}

void CMidSpanCfgDlg::UpdateConfigFilesKorEcon() {
    KErrTrace_BeginContext();
    bool ok = true;
    const std::string& group = m_record.product_group;
    const std::string& folder = m_record.folder;

    std::string board;
    if (!ReadBoardTypeFromIniFile(folder, board)) {
        KERRTRACE_DUMP("%s():ReadBoardTypeFromIniFile() failed", kName);
        board.clear();
    }

    const std::string koreconPath = m_appFolder + "korecon.ini";
    korv::KIniData mini;
    if (!mini.Open(koreconPath)) {
        KERRTRACE_DUMP("%s(): mini.Open(%s) failed ", kName, m_appFolder.c_str());
        KErrTrace_EndContext();
        return;
    }
    if (mini.file_missing)
        KTRACE(4, "%s(): %s doesn't exist", kName, koreconPath.c_str());
    else
        KTRACE(4, "%s() open file %s done", kName, koreconPath.c_str());

    if (group == "KORSIM") {
        // A simulation reports its machine identity itself.
        delete_if_present(mini, "configuration", "dynamic_path");
        const bool scopeSim = m_record.machine == "KorShaftScopeSim";
        const std::string name =
            scopeSim ? m_record.machine + "_" + m_record.order_no : m_record.machine;
        const std::string serial = scopeSim ? "0000_08" : "0000_" + m_record.order_no;
        if (!mini.SetStringEntry("configuration", "machine_name", name)) {
            KERRLOG("%s(): SetStringEntry(%s, %s, %s) failed", kName, "configuration",
                    "machine_name", name.c_str());
            ok = false;
        } else {
            KTRACE(4, "%s(): set machine name to %s in %s", kName, name.c_str(),
                   koreconPath.c_str());
        }
        if (!mini.SetStringEntry("configuration", "machine_serial", serial)) {
            KERRLOG("%s(): SetStringEntry(%s, %s, \"%s\") failed", kName, "configuration",
                    "machine_serial", serial.c_str());
            ok = false;
        } else {
            KTRACE(4, "%s(): set machine serial to \"%s\" in %s", kName, serial.c_str(),
                   koreconPath.c_str());
        }
        if (!mini.SetStringEntry("configuration", "machine_orderno", m_record.order_no)) {
            KERRLOG("%s(): SetStringEntry(%s, %s, %s) failed", kName, "configuration",
                    "machine_orderno", m_record.order_no.c_str());
            ok = false;
        } else {
            KTRACE(4, "%s(): set machine order number to %s in %s", kName,
                   m_record.order_no.c_str(), koreconPath.c_str());
        }
    } else {
        for (const char* key : {"machine_name", "machine_serial", "machine_orderno"})
            delete_if_present(mini, "configuration", key);
        if (!mini.SetStringEntry("configuration", "dynamic_path", folder)) {
            KERRTRACE_DUMP("%s(): SetStringEntry(configuration, dynamic_path, %s) failed ", kName,
                           m_appFolder.c_str());
            ok = false;
        } else {
            KTRACE(4, "%s() set dynamic_path=%s", kName, folder.c_str());
        }
    }

    if (!board.empty() &&
        !korv::stl_string_is_one_of(board, {"KECPU", "ARM-Platform", "PPC-A21", "Win_x64"})) {
        KTRACE(0, "%s; unknown board type \"%s\" from folder \"%s\"", kName, board.c_str(),
               folder.c_str());
        board.clear();
    }
    const LauncherChoice choice = launcher_choice(group, board, m_record.proxy);

    if (!mini.SetLongEntry("korecon_ioman", "usb", choice.usb)) {
        KERRLOG("StoreConfigFolder_KorEcon() mini::SetLongEntry([korecon_ioman] usb=%ld failed",
                choice.usb);
        ok = false;
    } else {
        KTRACE(4, "%s() set usb = %ld", kName, choice.usb);
    }

    // Both write their own files while korecon.ini is still open and unsaved.
    if (!UpdateMachineTree(m_appFolder)) {
        KERRTRACE_DUMP("%s(): UpdateMachineTree(%s) failed", kName, m_appFolder.c_str());
        ok = false;
    }
    if (!UpdateCameraList(m_appFolder)) {
        KERRTRACE_DUMP("%s(): UpdateCameraList(%s) failed", kName, m_appFolder.c_str());
        ok = false;
    }

    if (!mini.Save()) {
        KERRLOG("StoreConfigFolder_KorEcon() mini::Save() failed");
        ok = false;
    }
    KTRACE(4, "%s() save done for %s", kName, koreconPath.c_str());
    mini.Close();

    // launcher.ini is only ever updated, never created.
    const std::string launcherPath = m_appFolder + "launcher.ini";
    KTRACE(4, "%s() open file %s", kName, launcherPath.c_str());
    bool saveFailed = false;
    korv::KIniData launcher;
    if (!launcher.Open(launcherPath)) {
        KERRLOG("%s() mini.Open(str_ini_file.c_str()) failed", kName);
    } else if (launcher.file_missing) {
        KTRACE(4, "%s() %s doesn't exist", kName, launcherPath.c_str());
    } else {
        KTRACE(4, "%s() set [general] root= %s", kName, choice.root);
        if (!set_if_different(launcher, "general", "root", choice.root)) {
            KERRLOG("%s() mini::SetLongEntry([general] root=%s failed in file %s", kName,
                    choice.root, launcherPath.c_str());
            ok = false;
        }
        if (group == "KORSIM" && launcher.HasEntry("korsim", "3")) {
            const std::string start = contains_any(m_record.machine, {"KFU", "KMQ", "KMX"})
                                          ? "visualisation"
                                          : kKorSimComment;
            KTRACE(4, "%s() set [korsim] 3=%s in file %s", kName, start.c_str(),
                   launcherPath.c_str());
            if (!set_if_different(launcher, "korsim", "3", start)) {
                KERRTRACE_DUMP("%s(): mini::SetLongEntry( ([korsim] 3=%s) failed in file %s", kName,
                               start.c_str(), launcherPath.c_str());
                ok = false;
            }
        }
        if (!launcher.in_sync && !launcher.Save()) {
            KERRTRACE("%s() mini::Save() failed for %s", kName, launcherPath.c_str());
            saveFailed = true;
        }
    }

    if (!ok || saveFailed) {
        // The box names launcher.ini whichever file failed.
        korv::ui::AfxMessageBox(TranslateText("Error: Can't update korecon.ini.msg") + "\n\n" +
                                    launcherPath,
                                korv::ui::MB_ICONSTOP);
        KERRTRACE_DUMP("%s()  failed", kName);
    } else {
        KErrTrace_ClearContext();
    }
    launcher.Close();
    KErrTrace_EndContext();
}
