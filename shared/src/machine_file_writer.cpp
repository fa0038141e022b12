#include "Configs.h"
#include "errtrace.h"
#include "machine_file_text.h"

#include <algorithm>

using korv::KIniData;

namespace {

void set(KIniData& ini, const char* section, const char* key, const std::string& value) {
    ini.SetStringEntry(section, key, value);
    KTRACE(5, "WriteMachineFile(): [%s] %s = %s", section, key, value.c_str());
}

void set_if_given(KIniData& ini, const char* section, const char* key, const std::string& value) {
    if (!value.empty())
        set(ini, section, key, value);
}

// The machine's description texts into its .loc file; failures there don't
// count against the machine file.
void write_descriptions(const std::string& path, const std::map<std::string, std::string>& texts) {
    KIniData loc;
    if (!loc.Open(path))
        return;
    WriteMap(loc, "description", texts);
    loc.Save();
    loc.Close();
}

} // namespace

bool Configs::WriteMachineFile(const std::string& file_name, MachineEntry& entry) {
    // Lines the container leaves in the error trace are not this operation's
    // report: it writes its own failures to the error log.
    KErrTrace_BeginContext();
    const std::string path = m_strMachinesFolder + file_name;
    KIniData ini;
    bool ok = ini.Open(path);
    if (!ok) {
        KERRLOG("WriteMachineFile(): failed to open file %s", path.c_str());
    } else {
        entry.file_name = file_name;
        set(ini, "general", "machine", entry.machine);
        set(ini, "general", "description", entry.description);
        set(ini, "general", "korctrl", entry.korctrl);
        set(ini, "start_control", "cmdline", entry.start_control.cmdline);
        set(ini, "start_control", "cwd", entry.start_control.cwd);
        set(ini, "general", "bitmap", entry.bitmap);
        set(ini, "general", "simulation", entry.simulation);
        set(ini, "configure", "cmdline", entry.configure.cmdline);
        if (!entry.configure.cwd.empty()) {
            ini.SetStringEntry("configure", "cwd", entry.configure.cwd);
            // Names the wrong key; the suite's logs read so.
            KTRACE(5, "WriteMachineFile(): [%s] %s = %s", "configure", "cmdline",
                   entry.configure.cwd.c_str());
        }
        set_if_given(ini, "configure", "mode", entry.configure.mode);
        set_if_given(ini, "firmware_update", "cmdline", entry.firmware_update.cmdline);
        set_if_given(ini, "firmware_update", "cwd", entry.firmware_update.cwd);
        set_if_given(ini, "firmware_update", "checker", entry.checker);
        set(ini, "general", "variantfolder", entry.variantfolder);
        set(ini, "general", "product_group", entry.product_group);
        ini.SetLongEntry("general", "timeout_until_0000_ready", entry.timeout_until_0000_ready);
        KTRACE(5, "WriteMachineFile(): [general] timeout_until_0000_ready = %i",
               entry.timeout_until_0000_ready);
        set_if_given(ini, "general", "loc_filename", entry.loc_filename);

        // Every blank becomes '_', the one behind each comma too: "A,_B".
        std::string products = machine_file::join(entry.products, ", ");
        std::replace(products.begin(), products.end(), ' ', '_');
        set(ini, "general", "products", products);

        if (entry.variants.empty()) {
            set(ini, "configuration", "target", entry.target);
            ini.SetStringEntry("configuration", "config", entry.config);
            KTRACE(5, "WriteMachineFile(): [configuration] config = (%zu characters)",
                   entry.config.size());
        }
        WriteMachineFileConnection(ini, entry);
        if (!entry.descriptions.empty())
            write_descriptions(m_strMachinesFolder + entry.loc_filename, entry.descriptions);
        WriteMachineFileVariants(ini, entry);

        ok = ini.Save();
        if (!ok)
            KERRLOG("WriteMachineFile(): error save file %s", path.c_str());
        ini.Close();
    }
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    return ok;
}
