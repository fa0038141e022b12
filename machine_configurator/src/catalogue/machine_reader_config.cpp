#include "catalogue/machine_reader.h"

#include "catalogue_text.h"
#include "errtrace.h"
#include "fileops.h"

#include <cstring>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kFileNameSize = 64;

std::string numbered_key(const char* prefix, std::size_t number) {
    return prefix + std::to_string(number);
}

// The last part of a path, behind its last separator; null if nothing is there.
const char* file_trailpath(const char* path) {
    const char* trail = path;
    for (const char* at = path; *at; ++at)
        if (*at == '\\' || *at == '/')
            trail = at + 1;
    return *trail ? trail : nullptr;
}

// The drive unit file's folder and path for the [DRIVEUNIT] value `value`.
// False if the folder lacks the ".\" that the values are written with.
bool drive_unit_paths(const char* app_folder, const std::string& value, std::size_t index,
                      std::string& folder, std::string& ini_path) {
    folder = app_folder;
    std::vector<char> part(value.size() + 1);
    if (korv::file_dirname(value.c_str(), part.data()))
        folder += part.data();
    else
        KERRLOG("GetAllMachineDirectories(): Null pointer after file_path(%s, ...)", value.c_str());

    const std::size_t dot = folder.find("\\.\\");
    if (dot == std::string::npos) {
        KERRTRACE("GetAllMachinesFromConfigFile(): no \".\\\" part in folder \"%s\" of [DRIVEUNIT] "
                  "file_%zu=%s",
                  folder.c_str(), index, value.c_str());
        return false;
    }
    if (dot > 0)
        folder.replace(dot, 3, "\\");

    if (const char* trail = file_trailpath(value.c_str())) {
        ini_path = folder + trail;
    } else {
        ini_path = value;
        KERRLOG("GetAllMachineDirectories(): Null pointer after file_trailpath(%s)", value.c_str());
    }
    return true;
}

// Both readers are entered with the configuration file and the application
// folder, and report a missing one under the same (older) name.
bool both_given(const char* config_file, const char* app_folder) {
    if (!config_file) {
        KERRTRACE("GetAllMachineDirectories(): Null pointer for config file");
        return false;
    }
    if (!app_folder) {
        KERRTRACE("GetAllMachineDirectories(): Null pointer for application directory");
        return false;
    }
    return true;
}

} // namespace

bool GetAllMachinesFromConfigFile(const char* config_file, const char* app_folder,
                                  MachineTreeMap& map) {
    map.clear();
    if (!both_given(config_file, app_folder))
        return false;
    for (std::size_t i = 1;; ++i) {
        const std::string value = catalogue_profile("DRIVEUNIT", numbered_key("file_", i), "",
                                                    config_file, kFileNameSize);
        if (value.empty())
            break;
        std::string folder;
        std::string ini_path;
        if (!drive_unit_paths(app_folder, value, i, folder, ini_path))
            return false;
        const std::string number =
            catalogue_profile("DRIVEUNIT", numbered_key("no_", i), "", config_file);
        if (number.empty())
            break;

        const std::string section = "ORDERNO." + number;
        std::vector<MachineProperties> records;
        for (std::size_t j = 1;; ++j) {
            std::string order_no = catalogue_profile(section, numbered_key("no_", j), "", ini_path);
            if (order_no.empty() && j > 1)
                break;
            MachineProperties& record = records.emplace_back();
            record.order_no = std::move(order_no);
            record.ini_path = ini_path;
            record.folder = folder;
            if (record.order_no.empty())
                break; // a unit without order numbers stands as one record
        }
        map.emplace(number, std::move(records));
    }
    if (!GetAllMachinesInfosFromConfigFile(config_file, app_folder, map)) {
        KERRTRACE("GetAllMachinesFromConfigFile(): GetAllMachinesInfosFromConfigFile() failed");
        return false;
    }
    return true;
}

bool GetAllMachinesInfosFromConfigFile(const char* config_file, const char* app_folder,
                                       MachineTreeMap& map) {
    if (!both_given(config_file, app_folder))
        return false;
    for (auto& [number, records] : map) {
        const std::string order_section = "ORDERNO." + number;
        for (std::size_t k = 0; k < records.size(); ++k) {
            MachineProperties& record = records[k];
            const std::string& file = record.ini_path;
            const std::string item =
                catalogue_profile(order_section, numbered_key("no_", k + 1), "", file);
            const std::string section = item.empty() ? number : number + ":Order-No:" + item;
            record.interface = catalogue_profile(section, "interface", "", file);
            record.group = catalogue_profile(section, "group", "", file);
            record.table = catalogue_profile(section, "table", "", file);
            if (record.group.empty())
                KERRLOG("GetAllMachineDirectories(): not found [%s] group= in file '%s'",
                        section.c_str(), file.c_str());
        }
    }
    return true;
}
