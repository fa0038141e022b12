// The control's machine tree (mtmachineloader.ini) and the addresses of its
// communication files, for the proxy of the active configuration.
#include "main_dialog/RigCfgDlg.h"

#include "KIniData_template_core.h"
#include "errtrace.h"

namespace {

constexpr const char* kName = "CMidSpanCfgDlg::UpdateMachineTree";
// Fixed addresses of the control network.
constexpr const char* kProxyHost = "192.168.111.1";
constexpr const char* kCncHost = "192.168.70.73";

constexpr const char* kTree = "MachineTree";
constexpr const char* kTypes = "MachineTypes";
constexpr const char* kConnection = "connection";

bool open_required(korv::KIniData& ini, const std::string& path) {
    if (ini.Open(path))
        return true;
    KERRTRACE("UpdateMachineTree(): failed to open %s", path.c_str());
    return false;
}

// Saves only a container that differs from its file; a missing file is thereby created.
bool save_if_changed(korv::KIniData& ini) {
    return ini.in_sync || ini.Save();
}

} // namespace

bool CMidSpanCfgDlg::UpdateMachineTree(const std::string& folder) {
    const std::string loaderPath = folder + "mtmachineloader.ini";
    KTRACE(4, "UpdateMachineTree(): using configuration file %s", loaderPath.c_str());
    korv::KIniData loader;
    if (!open_required(loader, loaderPath))
        return false;

    const std::string talkPath = folder + "m2kortalk.ini";
    KTRACE(4, "%s(): updating also  configuration file \"%s\" for m2kortalk proxy", kName,
           talkPath.c_str());
    korv::KIniData talk;
    if (!open_required(talk, talkPath))
        return false;

    const std::string cncPath = folder + "m2kortalk_cnctable.ini";
    KTRACE(4, "%s(): updating %s", kName, cncPath.c_str());
    korv::KIniData cnc;
    if (!open_required(cnc, cncPath))
        return false;

    const std::string legacyPath = folder + "m2kortalk_cnctable\\m2kortalk.ini";
    korv::KIniData legacy;
    const bool legacyOpened = legacy.Open(legacyPath);
    if (legacyOpened) {
        KTRACE(4, "%s(): updating %s", kName, legacyPath.c_str());
    } else {
        // The legacy file is optional: its failure is none of ours.
        KErrTrace_ClearContext();
        KTRACE(3, "%s(): *NOT* updating legacy file %s", kName, legacyPath.c_str());
    }

    const std::string& proxy = m_actProxy;
    const std::string& group = m_actGroup;
    if (proxy == "cameraproxy") {
        update_different_entry(loader, kTree, "root", "cameraproxy");
        update_different_entry(loader, kTree, "cameraproxy",
                               group == "KORGEOMETRY" ? "m2kortalk,qidcamera"
                                                      : "korecon,qidcamera");
        if (group == "KORGEOMETRY")
            update_different_entry(talk, kConnection, "host", kProxyHost);
    } else if (proxy == "interpolproxy") {
        update_different_entry(loader, kTree, "root", "interpolproxy");
        update_different_entry(loader, kTree, "interpolproxy",
                               group == "KORSIM" ? "korecon,qidcamera" : "m2kortalk,qidcamera");
        update_different_entry(talk, kConnection, "host", kProxyHost);
    } else if (proxy == "interpolcncproxy") {
        update_different_entry(loader, kTree, "root", "interpolcncproxy");
        update_different_entry(loader, kTree, "interpolcncproxy",
                               "m2kortalk,qidcamera,m2kortalk_cnctable");
        update_different_entry(talk, kConnection, "host", kProxyHost);
        update_different_entry(loader, kTypes, "interpolcncproxy", "proxy");
        update_different_entry(loader, kTypes, "m2kortalk_cnctable", "m2kortalk");
        update_different_entry(cnc, kConnection, "host", kProxyHost);
    } else if (proxy == "cncproxy") {
        update_different_entry(loader, kTree, "root", "cncproxy");
        update_different_entry(loader, kTree, "cncproxy", "korecon,m2kortalk,m2kortalk_cnctable");
        update_different_entry(talk, kConnection, "host", kCncHost);
        update_different_entry(loader, kTypes, "cncproxy", "proxy");
        update_different_entry(loader, kTypes, "m2kortalk_cnctable", "m2kortalk");
        update_different_entry(cnc, kConnection, "host", kCncHost);
        if (legacyOpened && !legacy.file_missing)
            update_different_entry(legacy, kConnection, "host", kCncHost);
    } else if (proxy == "fiberproxy") {
        update_different_entry(loader, kTree, "root", "fiberproxy");
        update_different_entry(loader, kTree, "fiberproxy", "m2kortalk,qidcamera");
    } else if (proxy == "m2kortalk") {
        update_different_entry(loader, kTree, "root", "m2kortalk");
        update_different_entry(talk, kConnection, "host", kProxyHost);
    } else if (proxy == "korcommission_cameraproxy") {
        update_different_entry(loader, kTree, "root", "korcommission_cameraproxy");
        update_different_entry(loader, kTree, "korcommission_cameraproxy", "qidcamera");
        update_different_entry(loader, kTypes, "korcommission_cameraproxy", "proxy");
    } else if (proxy == "twiproxy") {
        update_different_entry(loader, kTree, "root", "twiproxy");
        update_different_entry(loader, kTree, "twiproxy",
                               "m2kortalk,qidcamera,np_conex-cc,pie625,pigcs2");
        update_different_entry(loader, kTypes, "twiproxy", "proxy");
    } else {
        update_different_entry(loader, kTree, "root", "korecon");
        if (!m_actProxy.empty() && m_actProxy != "korecon") {
            m_actProxy = "korecon";
            // Written after the change, so it names "korecon": the line as it has always read.
            KERRLOG("%s:(): unknown proxy : %s, set to default [MachineTree] root=korecon", kName,
                    m_actProxy.c_str());
        }
    }
    m_record.proxy = m_actProxy;

    // In this order; a failure leaves the files behind it as they were.
    if (!save_if_changed(loader) || !save_if_changed(talk)) {
        KERRTRACE("UpdateMachineTree(): machine_tree.Save() failed");
        return false;
    }
    if (!save_if_changed(cnc)) {
        KERRTRACE("UpdateMachineTree(): mid_m2kortalk_cnctable.Save() failed");
        return false;
    }
    if (legacyOpened && !legacy.file_missing && !save_if_changed(legacy)) {
        KERRTRACE("%s(): mid_m2kortalk_cnctable_legacy.Save() failed", kName);
        return false;
    }
    return true;
}
