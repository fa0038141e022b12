#include "errtrace.h"
#include "fileops.h"
#include "machine_file_parts.h"
#include "machine_file_text.h"

#include <algorithm>

namespace machine_file {
namespace {

constexpr const char* kGeneral = "General"; // spelled with a capital in alias files
constexpr const char* kMarker = "AliasIdentNo_";
// The number is cut at this fixed position, whatever stands before the marker.
constexpr std::size_t kIdentNoStart = 13;

// A value of [General] with comment and outer blanks gone; false if absent.
bool general_value(const korv::KIniData& alias, const char* key, std::string& value) {
    if (!alias.GetStringEntry(kGeneral, key, value))
        return false;
    strip_comment(value);
    trim_blanks(value);
    return true;
}

} // namespace

bool open_alias(const std::string& machines_folder, korv::KIniData& alias, MachineEntry& entry) {
    const std::string path = machines_folder + entry.file_name;
    if (!alias.Open(path)) {
        KTRACE(2, "ReadMachineFile(): failed to open file %s", path.c_str());
        return false;
    }
    if (!alias.HasEntry(kGeneral, "file")) {
        KERRLOG("ReadMachineFile(): [General] file missing in file %s", path.c_str());
        return false;
    }
    general_value(alias, "file", entry.data_file);
    entry.alias_loc_filename = entry.file_name;
    const std::size_t pos = entry.alias_loc_filename.find(".alias");
    entry.alias_loc_filename.replace(pos, 6, ".loc");
    return true;
}

bool apply_alias(const std::string& machines_folder, korv::KIniData& alias,
                 const std::vector<std::string>& parent_variants, MachineEntry& entry) {
    const std::string path = machines_folder + entry.file_name;
    if (!general_value(alias, "alias_machine_name", entry.alias_machine_name)) {
        KERRLOG("ReadMachineFile(): [General] alias_machine_name missing in file %s", path.c_str());
        return false;
    }
    general_value(alias, "alias_description", entry.description);
    general_value(alias, "bitmap", entry.bitmap);
    std::string products;
    if (alias.GetStringEntry(kGeneral, "products", products))
        entry.products = read_list(products, true);

    for (const std::string& section : alias.GetSectionNames()) {
        if (section.size() < kIdentNoStart || section.find(kMarker) == std::string::npos)
            continue;
        std::string parent;
        alias.GetStringEntry(section, "parent_identno", parent);
        strip_comment(parent);
        remove_white_space(parent);
        MachineVariant variant;
        variant.alias_identno = section.substr(kIdentNoStart);
        if (std::find(parent_variants.begin(), parent_variants.end(), parent) ==
            parent_variants.end()) {
            KERRLOG("ReadMachineFile(): %s AliasIdentNo_%s has undefined parent_identno=%s (see "
                    "file=%s)",
                    entry.file_name.c_str(), variant.alias_identno.c_str(), parent.c_str(),
                    entry.data_file.c_str());
            continue;
        }
        variant.name = parent;
        entry.variants.push_back(std::move(variant));
    }
    if (entry.variants.empty()) {
        KERRLOG("ReadMachineFile(): no alias variants found in file %s", path.c_str());
        return false;
    }
    return true;
}

std::string loc_file(const std::string& machines_folder, const MachineEntry& entry,
                     bool& from_alias) {
    if (!entry.alias_loc_filename.empty()) {
        std::string path = machines_folder + entry.alias_loc_filename;
        if (korv::file_exists(path)) {
            from_alias = true;
            return path;
        }
    }
    from_alias = false;
    return machines_folder + entry.loc_filename;
}

} // namespace machine_file
