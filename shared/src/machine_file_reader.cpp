#include "Configs.h"
#include "errtrace.h"
#include "fileops.h"
#include "machine_file_parts.h"
#include "machine_file_text.h"

using korv::KIniData;

void ReadStringEntry(std::string& value, KIniData& ini, const std::string& file_name,
                     const char* section, const char* key) {
    if (!ini.HasEntry(section, key))
        return;
    if (!ini.GetStringEntry(section, key, value))
        KERRTRACE_DUMP("ReadStringEntry(): GetString entry [%s] %s= failed from file %s", section,
                       key, file_name.c_str());
}

void ReadLongEntry(std::int32_t& value, KIniData& ini, const std::string& file_name,
                   const char* section, const char* key) {
    if (!ini.HasEntry(section, key))
        return;
    if (!ini.GetLongEntry(section, key, value))
        KERRTRACE_DUMP("ReadLongEntry(): ReadLongEntry entry [%s] %s= failed from file %s", section,
                       key, file_name.c_str());
}

namespace {

void read_command(MachineCommand& command, KIniData& ini, const std::string& path,
                  const char* section) {
    ReadStringEntry(command.cmdline, ini, path, section, "cmdline");
    ReadStringEntry(command.cwd, ini, path, section, "cwd");
}

// The powerpc control is checked over ssh unless the file says otherwise.
void preset_compatibility_check(MachineCommand& check) {
    check.cmdline = "python";
    check.cwd = "<KorCtrlTools>\\scripts";
    check.args = "test_ssh.py \"192.168.111.1\"";
    check.expected_result = 0;
}

// [update] "steps" names the sections of the steps. A step's "checker" goes to
// the entry, so the last step that has one wins over [firmware_update].
void read_update_steps(KIniData& ini, const std::string& path, MachineEntry& entry) {
    std::string steps;
    ReadStringEntry(steps, ini, path, "update", "steps");
    for (const std::string& word : machine_file::read_list(steps, true)) {
        MachineCommand step;
        step.name = word;
        read_command(step, ini, path, word.c_str());
        if (ini.HasEntry(word, "checker"))
            ReadStringEntry(entry.checker, ini, path, word.c_str(), "checker");
        std::string sync;
        if (ini.GetStringEntry(word, "sync", sync) && sync == "false")
            step.sync = false;
        entry.update_steps.push_back(std::move(step));
    }
}

} // namespace

void Configs::ReadLocSection(KIniData& loc, const std::string& section,
                             std::map<std::string, std::string>& texts) const {
    for (const std::string& language : m_vecLanguages) {
        std::string text;
        if (loc.GetStringEntry(section, language, text))
            texts[language] = text;
    }
}

bool Configs::ReadMachineFile(const std::string& file_name, MachineEntry& entry) {
    KErrTrace_BeginContext();
    KIniData alias;
    KIniData ini;
    bool ok = [&] {
        entry.file_name = file_name;
        entry.data_file = file_name;
        const bool is_alias = file_name.size() > 5 && file_name.find(".alias") != std::string::npos;
        if (is_alias && !machine_file::open_alias(m_strMachinesFolder, alias, entry))
            return false;

        const std::string path = m_strMachinesFolder + entry.data_file;
        if (entry.data_file.empty() || !korv::file_exists(path)) {
            KTRACE(2, "ReadMachineFile(): file not found %s", path.c_str());
            return false;
        }
        if (!ini.Open(path)) {
            KTRACE(2, "ReadMachineFile(): failed to open file %s", path.c_str());
            return false;
        }

        ReadStringEntry(entry.machine, ini, path, "general", "machine");
        ReadStringEntry(entry.description, ini, path, "general", "description");
        ReadStringEntry(entry.korctrl, ini, path, "general", "korctrl");
        read_command(entry.start_control, ini, path, "start_control");
        ReadStringEntry(entry.product_group, ini, path, "general", "product_group");
        ReadLongEntry(entry.developer, ini, path, "general", "developer");

        if (entry.korctrl == "powerpcctrl")
            preset_compatibility_check(entry.compatibility_check);
        read_command(entry.compatibility_check, ini, path, "compatibility_check");
        ReadStringEntry(entry.compatibility_check.args, ini, path, "compatibility_check", "args");
        ReadLongEntry(entry.compatibility_check.expected_result, ini, path, "compatibility_check",
                      "expected_result");

        read_command(entry.configure, ini, path, "configure");
        ReadStringEntry(entry.configure.mode, ini, path, "configure", "mode");
        read_command(entry.firmware_update, ini, path, "firmware_update");
        ReadStringEntry(entry.checker, ini, path, "firmware_update", "checker");
        ReadStringEntry(entry.variantfolder, ini, path, "general", "variantfolder");
        ReadStringEntry(entry.bitmap, ini, path, "general", "bitmap");
        ReadStringEntry(entry.simulation, ini, path, "general", "simulation");
        ReadStringEntry(entry.loc_filename, ini, path, "general", "loc_filename");
        if (entry.loc_filename.empty())
            entry.loc_filename =
                machine_file::replace_ignoring_case(entry.data_file, ".ini", ".loc");

        if (!ini.GetLongEntry("general", "timeout_until_0000_ready",
                              entry.timeout_until_0000_ready))
            entry.timeout_until_0000_ready = 60;

        std::string list;
        ReadStringEntry(list, ini, path, "general", "products");
        entry.products = machine_file::read_list(list, true);
        list.clear();
        ReadStringEntry(list, ini, path, "general", "variants");
        const std::vector<std::string> variants = machine_file::read_list(list, true);

        if (!is_alias) {
            for (const std::string& name : variants) {
                MachineVariant variant;
                variant.name = name;
                entry.variants.push_back(std::move(variant));
            }
        } else if (!machine_file::apply_alias(m_strMachinesFolder, alias, variants, entry)) {
            return false;
        }

        if (entry.products.empty()) {
            KERRLOG("ReadMachineFile(): failed to read [general] products in file %s",
                    path.c_str());
            return false;
        }
        for (std::string& product : entry.products)
            product = LicenseNameToProductName(product);

        if (ini.HasSection("configuration")) {
            if (!ini.GetStringEntry("configuration", "config", entry.config)) {
                KERRLOG("ReadMachineFile(): failed to read [configuration] config in file %s",
                        path.c_str());
                return false;
            }
            if (!ini.GetStringEntry("configuration", "target", entry.target)) {
                KERRLOG("ReadMachineFile(): failed to read [configuration] target in file %s",
                        path.c_str());
                return false;
            }
        }

        if (!ReadMachineFileConnection(ini, entry)) {
            KTRACE(2, "ReadMachineFile(): invalid section [connection] in file %s", path.c_str());
            KTRACE(3, "ReadMachineFile(): %s NOT added", file_name.c_str());
            return false;
        }
        if (!ReadMachineFileVariants(ini, entry)) {
            KTRACE(2, "ReadMachineFile(): invalid variant(s) in file %s", path.c_str());
            KTRACE(3, "ReadMachineFile(): %s NOT added", file_name.c_str());
            return false;
        }
        read_update_steps(ini, path, entry);

        bool from_alias = false;
        const std::string loc_path = machine_file::loc_file(m_strMachinesFolder, entry, from_alias);
        if (korv::file_exists(loc_path)) {
            KIniData loc;
            if (loc.Open(loc_path))
                ReadLocSection(loc, "description", entry.descriptions);
        }
        return true;
    }();
    alias.Close();
    ini.Close();
    if (!ok)
        KERRTRACE_DUMP("%s(): failed", "Configs::ReadMachineFile");
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
    return ok;
}
