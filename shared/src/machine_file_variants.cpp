#include "Configs.h"
#include "errtrace.h"
#include "fileops.h"
#include "machine_file_parts.h"
#include "machine_file_text.h"

using korv::KIniData;

void WriteMap(KIniData& ini, const std::string& section,
              const std::map<std::string, std::string>& texts) {
    for (const auto& [key, text] : texts)
        ini.SetStringEntry(section, key, text);
}

bool Configs::ReadMachineFileVariants(KIniData& ini, MachineEntry& entry) {
    // An alias's own .loc file keys its variants by the alias number.
    bool from_alias = false;
    const std::string loc_path = machine_file::loc_file(m_strMachinesFolder, entry, from_alias);
    KIniData loc;
    const bool have_loc = korv::file_exists(loc_path) && loc.Open(loc_path);

    for (MachineVariant& variant : entry.variants) {
        if (have_loc)
            ReadLocSection(loc,
                           (from_alias ? variant.alias_identno : variant.name) + ".description",
                           variant.descriptions);
        if (entry.configure.mode != "copy")
            continue;
        const std::string section = variant.name + ".configuration";
        if (!ini.GetStringEntry(section, "target", variant.target)) {
            KTRACE(2, "ReadMachineFileVariants(): [%s] target not found", section.c_str());
            return false;
        }
        if (!ini.GetStringEntry(section, "config", variant.config)) {
            KTRACE(2, "ReadMachineFileVariants(): [%s] config not found", section.c_str());
            return false;
        }
    }
    return true;
}

void Configs::WriteMachineFileVariants(KIniData& ini, MachineEntry& entry) {
    // The texts go to the machine's .loc file, also for an alias.
    KIniData loc;
    bool loc_open = false;
    std::vector<std::string> names;
    for (const MachineVariant& variant : entry.variants) {
        if (!variant.descriptions.empty()) {
            if (!loc_open)
                loc_open = loc.Open(m_strMachinesFolder + entry.loc_filename);
            if (loc_open)
                WriteMap(loc, variant.name + ".description", variant.descriptions);
        }
        const std::string section = variant.name + ".configuration";
        ini.SetStringEntry(section, "target", variant.target);
        KTRACE(5, "WriteMachineFileVariants(): [%s] target = %s", section.c_str(),
               variant.target.c_str());
        ini.SetStringEntry(section, "config", variant.config);
        KTRACE(5, "WriteMachineFileVariants(): [%s] config = (%zu characters)", section.c_str(),
               variant.config.size());
        names.push_back(variant.name);
    }
    if (loc_open) {
        loc.Save();
        loc.Close();
    }
    const std::string list = machine_file::join(names, ", ");
    ini.SetStringEntry("general", "variants", list);
    KTRACE(5, "WriteMachineFileVariants(): [general] variants = %s", list.c_str());
}
