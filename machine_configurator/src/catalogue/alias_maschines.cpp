#include "catalogue/alias_maschines.h"

#include "catalogue_text.h"

#include "KIniData.h"
#include "errtrace.h"
#include "kdirtools.h"

namespace {

constexpr const char* kInfo = "getAliasMachinesInfo";
constexpr const char* kIdentMarker = "AliasIdentNo_";
constexpr std::size_t kIdentMarkerLength = 13;

bool GetStringEntryAndTrim(const korv::KIniData& ini, const std::string& section, const char* key,
                           std::string& value) {
    std::string raw;
    if (!ini.GetStringEntry(section, key, raw))
        return false;
    value = catalogue_trim_value(raw);
    return true;
}

// Opens `path`; a missing file counts as a failure here.
bool open_existing(korv::KIniData& ini, const std::string& path) {
    if (!ini.Open(path)) {
        KERRTRACE("%s(): mid_alias.Open(%s) failed", kInfo, path.c_str());
        return false;
    }
    if (ini.file_missing) {
        KERRTRACE("%s(): file \"%s\" doens't exist", kInfo, path.c_str());
        return false;
    }
    return true;
}

bool read_alias_file(const std::string& path, AliasMachineInfo& info) {
    korv::KIniData mid_alias;
    if (!open_existing(mid_alias, path))
        return false;
    std::string parent_file;
    if (!GetStringEntryAndTrim(mid_alias, "General", "file", parent_file)) {
        KERRTRACE("%s(): GetStringEntryAndTrim() [General] files= failed", kInfo);
        return false;
    }
    if (!GetStringEntryAndTrim(mid_alias, "General", "alias_machine_name",
                               info.alias_machine_name)) {
        KERRTRACE("%s(): GetStringEntryAndTrim() [General] alias_machine_name= failed", kInfo);
        return false;
    }
    KTRACE(5, "%s(): found alias machine \"%s\"", kInfo, info.alias_machine_name.c_str());

    for (const std::string& section : mid_alias.GetSectionNames()) {
        if (section.size() < kIdentMarkerLength || section.find(kIdentMarker) == std::string::npos)
            continue;
        // Cut at the marker's length wherever the marker stands, as the files
        // have always been read.
        AliasIdentPair pair{section.substr(kIdentMarkerLength), {}};
        if (!GetStringEntryAndTrim(mid_alias, section, "parent_identno", pair.parent_identno)) {
            KERRTRACE("%s(): GetStringEntryAndTrim() [%s] %s= failedgetAliasMachinesInfo", kInfo,
                      section.c_str(), "parent_identno");
            return false;
        }
        KTRACE(5, "%s(): add alias machine #%s with parent #%s", kInfo, pair.alias_identno.c_str(),
               pair.parent_identno.c_str());
        info.ident_numbers.push_back(std::move(pair));
    }

    info.file = std::string(kAliasMachinesFolder) + "\\" + parent_file;
    korv::KIniData parent;
    if (!open_existing(parent, info.file))
        return false;
    if (!GetStringEntryAndTrim(parent, "general", "variantfolder", info.variantfolder)) {
        KERRTRACE("%s(): GetStringEntryAndTrim() [general] variantfolder= failed", kInfo);
        return false;
    }
    if (!GetStringEntryAndTrim(parent, "general", "machine", info.machine)) {
        KERRTRACE("%s(): GetStringEntryAndTrim() [general] machine= failed", kInfo);
        return false;
    }
    return true;
}

bool has_alias_extension(const std::string& path) {
    const std::size_t name = path.find_last_of("\\/") + 1; // npos + 1 == 0
    const std::size_t dot = path.rfind('.');
    return dot != std::string::npos && dot >= name &&
           path.compare(dot, std::string::npos, ".alias") == 0;
}

} // namespace

bool getAliasMachineFiles(const std::string& folder, std::vector<std::string>& files) {
    files.clear();
    std::vector<std::string> entries;
    if (!korv::iterateDirectory(folder, 0, nullptr, nullptr, korv::addEntry, &entries)) {
        KERRTRACE("%s(): listDirectory() failed for \"%s\"", "getAliasMachineFiles",
                  folder.c_str());
        return false;
    }
    for (std::string& entry : entries)
        if (has_alias_extension(entry))
            files.push_back(std::move(entry));
    return true;
}

bool getAliasMachinesInfo(std::vector<AliasMachineInfo>& infos) {
    infos.clear();
    std::vector<std::string> files;
    if (!getAliasMachineFiles(kAliasMachinesFolder, files)) {
        KERRTRACE("%s(); getAliasMachineFiles() failed", kInfo);
        return false;
    }
    for (const std::string& file : files) {
        AliasMachineInfo info;
        if (!read_alias_file(file, info))
            return false;
        infos.push_back(std::move(info));
    }
    return true;
}

bool createAliasMachines(MachineTreeMap& map, const std::vector<AliasMachineInfo>& infos) {
    MachineTreeMap aliases;
    for (const AliasMachineInfo& info : infos) {
        // The first entry with exactly this key; find() may answer any of them.
        const auto parent = map.lower_bound(info.machine);
        if (parent == map.end() || parent->first != info.machine)
            continue; // the parent may be in another root
        std::vector<MachineProperties> records;
        for (const AliasIdentPair& pair : info.ident_numbers) {
            const MachineProperties* found = nullptr;
            for (const MachineProperties& record : parent->second)
                if (record.order_no == pair.parent_identno) {
                    found = &record;
                    break;
                }
            if (!found) {
                KERRTRACE("%s(): No parent machine \"%s\" with ident_nr #%s found for alias "
                          "machine: \"%s\" with ident_nr: #%s",
                          "createAliasMachines", info.machine.c_str(), pair.parent_identno.c_str(),
                          info.alias_machine_name.c_str(), pair.alias_identno.c_str());
                return false;
            }
            MachineProperties& copy = records.emplace_back(*found);
            copy.order_no = pair.alias_identno;
        }
        aliases.emplace(info.alias_machine_name, std::move(records));
    }
    for (auto& entry : aliases)
        map.insert(std::move(entry));
    return true;
}

bool getAliasMachines(MachineTreeMap& map) {
    std::vector<AliasMachineInfo> infos;
    if (!getAliasMachinesInfo(infos) || !createAliasMachines(map, infos)) {
        KERRTRACE("%s(): getAliasMachinesInfo() failed", "getAliasMachines");
        return false;
    }
    return true;
}
