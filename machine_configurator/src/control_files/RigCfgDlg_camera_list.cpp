// The camera the control's camera part talks to: camera\qidcamera.ini.
#include "main_dialog/RigCfgDlg.h"

#include "KIniData_template_core.h"
#include "errtrace.h"
#include "kdirtools.h"

namespace {

constexpr const char* kName = "CMidSpanCfgDlg::UpdateCameraList";

// The camera for a configuration; null when the entry is left alone.
const char* camera_for(const std::string& group, const std::string& proxy,
                       const std::string& machine) {
    if (group == "KORSIM")
        return "Virtual";
    if (proxy == "cameraproxy") {
        if (machine == "KorShaftScope")
            return "ABS_UK1155";
        if (machine == "KorShaftScope250")
            return "ABS_UK31256";
        return nullptr;
    }
    if (proxy == "interpolproxy" || proxy == "interpolcncproxy")
        return "ABS_UK31443";
    if (proxy == "fiberproxy")
        return "ABS_LC9010";
    if (proxy == "korcommission_cameraproxy")
        return "ABS_UK31256";
    if (proxy == "twiproxy")
        return "AVT";
    return nullptr;
}

} // namespace

bool CMidSpanCfgDlg::UpdateCameraList(const std::string& folder) {
    const std::string cameraFolder = folder + "camera";
    const std::string path = cameraFolder + "\\qidcamera.ini";
    KTRACE(4, "%s(): updating configuration file %s", kName, path.c_str());
    korv::KIniData cam_cfg;
    if (!cam_cfg.Open(path)) {
        KERRTRACE("%s(): failed to open %s", kName, path.c_str());
        return false;
    }
    const char* camera = camera_for(m_actGroup, m_record.proxy, m_record.machine);
    if (!camera)
        return true;
    update_different_entry(cam_cfg, "ConManPlugin", "camera_1", camera);
    if (cam_cfg.in_sync)
        return true;
    if (!korv::dir_exists(cameraFolder) && !korv::dir_mk(cameraFolder)) {
        KERRTRACE("%s(): dir_mk(%s) failed", kName, cameraFolder.c_str());
        return false;
    }
    if (!cam_cfg.Save()) {
        KERRTRACE("%s(): cam_cfg.Save() failed", kName);
        return false;
    }
    KTRACE(3, "%s(): %s updated", kName, path.c_str());
    return true;
}
