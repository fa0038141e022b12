#include "Configs.h"
#include "common.h"
#include "errtrace.h"
#include "stl_utilities.h"

using korv::KIniData;

namespace {

// The loader file that a "new" run has just written.
constexpr const char* kLoaderFile = "<AppData>\\Korv\\Midspan Plugin\\sp_load.ini";

// Where a stored configuration lives: the variant's section when the entry has
// a variant of that name (its index here), else the entry's own [configuration].
int variant_index(const MachineEntry& entry, const std::string& name) {
    for (std::size_t i = 0; i < entry.variants.size(); ++i)
        if (entry.variants[i].name == name)
            return static_cast<int>(i);
    return -1;
}

bool copy(const std::string& stored_target, const std::string& stored_config) {
    const std::string target = Expand(stored_target);
    KTRACE(5, "CopyConfig(): target = %s", target.c_str());
    if (target.empty()) {
        KERRLOG("CopyConfig(): error, no target specified");
        return false;
    }
    if (stored_config.empty()) {
        KERRLOG("CopyConfig(): error, configuration is empty");
        return false;
    }
    std::string text = stored_config;
    if (!korv::stl_decode_base64(text)) {
        KERRLOG("CopyConfig(): base64 decode failed");
        return false;
    }
    KIniData ini(0);
    if (!ini.Open(target)) {
        KERRLOG("CopyConfig(): error open %s", target.c_str());
        return false;
    }
    // The text goes through the parser: anything that is no ini file is
    // refused here, before the target is touched.
    if (!ini.SetContentString(text)) {
        KERRLOG("CopyConfig(): error set content for %s", target.c_str());
        return false;
    }
    if (!ini.Save()) {
        KERRLOG("CopyConfig(): error save target=%s", target.c_str());
        return false;
    }
    KTRACE(4, "CopyConfig(): config copied to %s", target.c_str());
    ini.Close();
    return true;
}

} // namespace

bool Configs::CopyConfig(const MachineEntry& entry, const std::string& variant) const {
    KTRACE(5, "CopyConfig(): start");
    // The callees' error trace lines are summed up by the messages above.
    KErrTrace_BeginContext();
    const int index = variant_index(entry, variant);
    const bool ok = index < 0 ? copy(entry.target, entry.config)
                              : copy(entry.variants[index].target, entry.variants[index].config);
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    if (ok)
        KTRACE(5, "CopyConfig(): done");
    return ok;
}

bool Configs::SaveConfigurationToMachineConfigFile(std::int64_t /*machine_index*/,
                                                   MachineEntry& entry,
                                                   const std::string& variant) {
    KTRACE(5, "SaveConfigurationToMachineConfigFile(): start");
    const int index = variant_index(entry, variant);
    // The writer keeps the entry's own configuration only in a file without
    // variants: say so rather than lose the configuration in silence.
    if (index < 0 && !entry.variants.empty())
        KERRLOG("SaveConfigurationToMachineConfigFile(): %s has no variant \"%s\", the "
                "configuration is stored nowhere",
                entry.file_name.c_str(), variant.c_str());
    std::string& target = index < 0 ? entry.target : entry.variants[index].target;
    std::string& config = index < 0 ? entry.config : entry.variants[index].config;
    entry.configure.mode = "copy";
    target = kLoaderFile;

    KErrTrace_BeginContext();
    const bool ok = [&] {
        const std::string path = Expand(target);
        KIniData ini;
        if (!ini.Open(path)) {
            KERRLOG("SaveConfigurationToMachineConfigFile(): error open %s", path.c_str());
            return false;
        }
        config = ini.GetContentString();
        ini.Close();
        if (!korv::stl_encode_base64(config)) {
            KERRLOG("SaveConfigurationToMachineConfigFile(): base64 encode failed");
            return false;
        }
        if (!WriteMachineFile(entry.file_name, entry)) {
            KERRLOG("SaveConfigurationToMachineConfigFile(): save %s failed",
                    entry.file_name.c_str());
            return false;
        }
        return true;
    }();
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    if (ok)
        KTRACE(5, "SaveConfigurationToMachineConfigFile(): done");
    return ok;
}
