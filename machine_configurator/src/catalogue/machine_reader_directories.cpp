#include "catalogue/machine_reader.h"

#include "catalogue/directory_reader.h"
#include "catalogue_text.h"
#include "main_dialog/RigCfgDlg.h"

#include "KIniData.h"
#include "errtrace.h"

#include <algorithm>
#include <cctype>

namespace {

// The subfolders of `folder` without "..", in key order, read with `reader`.
// False if the folder can't be entered or listed.
bool read_subfolders(DirectoryReader& reader, const std::string& folder,
                     std::vector<std::string>& names) {
    names.clear();
    if (!reader.Open(folder) || !reader.First())
        return false;
    std::string name;
    char type = 0;
    while (reader.Next(name, type))
        if (type == 'd' && name != "..")
            names.push_back(name);
    std::stable_sort(names.begin(), names.end(), MachineKeyLess());
    return true;
}

// The machine folders of `root`, each with its order number folders as
// records without properties. One reader walks from folder to folder and is
// gone, the current directory restored, before this returns; meanwhile nothing
// else runs. See GetAllMachinesFromDirectories for the result.
enum class TreeRead { Done, NoRoot, BadMachine };
TreeRead read_tree(const char* root, MachineTreeMap& map) {
    DirectoryReader reader;
    std::vector<std::string> machines;
    if (!read_subfolders(reader, root, machines)) {
        KERRLOG("GetAllMachinesFromDirectories(): directory %s doesn't exist", root);
        return TreeRead::NoRoot;
    }
    std::vector<std::string> orders;
    for (const std::string& machine : machines) {
        const std::string folder = catalogue_join(root, machine);
        if (!read_subfolders(reader, folder, orders)) {
            KERRLOG("GetAllMachinesFromDirectories(): directory %s doesn't exist", folder.c_str());
            return TreeRead::BadMachine;
        }
        std::vector<MachineProperties> records(orders.size());
        for (std::size_t i = 0; i < orders.size(); ++i)
            records[i].order_no = std::move(orders[i]);
        // The names come sorted and are unique within one folder.
        map.emplace_hint(map.end(), machine, std::move(records));
    }
    return TreeRead::Done;
}

// Reads `key` of `section` into `target` with comment and white space removed.
// The error trace context is the caller's: a key that isn't there only leaves
// a trace line, a read that fails is dumped.
void read_optional(const korv::KIniData& mid, const std::string& section, const char* key,
                   const std::string& ini_path, std::string& target) {
    std::string value;
    if (!mid.GetStringEntry(section, key, value)) {
        KERRTRACE_DUMP("GetAllPropertiesFromFolder(): can't read value: %s from: %s", key,
                       ini_path.c_str());
        return;
    }
    target = StripCommentAndWhitespace(value);
}

// True when the record's order number folder and machine.ini agree. A
// machine.ini without an order number is taken on trust.
bool order_number_matches(const korv::KIniData& mid, const std::string& section,
                          MachineProperties& record) {
    const char* key = mid.HasEntry(section, "OrderNo")       ? "OrderNo"
                      : mid.HasEntry(section, "OrderNumber") ? "OrderNumber"
                                                             : nullptr;
    if (!key) {
        KERRTRACE_DUMP(
            "GetAllPropertiesFromFolder() optioanl entry [%s] %s doesn't exist in file %s",
            section.c_str(), "OrderNo", record.ini_path.c_str());
        return true;
    }
    std::string value;
    if (!mid.GetStringEntry(section, key, value)) {
        KERRTRACE_DUMP("GetAllPropertiesFromFolder(): can't read value: %s from: %s", key,
                       record.ini_path.c_str());
        return true;
    }
    record.order_no = StripCommentAndWhitespace(record.order_no);
    value = StripCommentAndWhitespace(value);
    if (value == record.order_no)
        return true;
    KERRTRACE_DUMP("GetAllPropertiesFromFolder(): order number in directory:%s  dont equals with "
                   "order number in 'machine.ini' :%s",
                   record.order_no.c_str(), value.c_str());
    return false;
}

void read_properties(const std::string& machine, MachineProperties& record) {
    korv::KIniData mid;
    if (!mid.Open(record.ini_path)) {
        KERRTRACE_DUMP("GetAllPropertiesFromFolder(): mid.Open(%s) failed",
                       record.ini_path.c_str());
        record.ini_path.clear();
        return;
    }
    KTRACE(4, "Reading propeties for machine '%s', OrderNumber='%s'", machine.c_str(),
           record.order_no.c_str());

    std::string section = "MACHINE";
    if (!mid.HasSection(section)) {
        KERRTRACE_DUMP("GetAllPropertiesFromFolder() [%s] doesn't exist in file %s",
                       section.c_str(), record.ini_path.c_str());
        section = "!MACHINE";
        if (!mid.HasSection(section)) {
            KERRTRACE_DUMP("GetAllPropertiesFromFolder() [%s] doesn't exist in file %s",
                           section.c_str(), record.ini_path.c_str());
            return;
        }
    }
    if (!order_number_matches(mid, section, record))
        return;

    // Missing optional keys are no error: whatever their lookup left in the
    // context goes.
    if (mid.HasEntry(section, "XY_Table")) {
        read_optional(mid, section, "XY_Table", record.ini_path, record.table);
    } else {
        KErrTrace_ClearContext();
        KTRACE(5, "GetAllPropertiesFromFolder() [%s] %s doesn't exist in file", section.c_str(),
               "XY_Table");
    }
    if (mid.HasEntry(section, "ProductGroup")) {
        read_optional(mid, section, "ProductGroup", record.ini_path, record.group);
        for (char& c : record.group)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    } else {
        KErrTrace_ClearContext();
        KTRACE(0, "GetAllPropertiesFromFolder() [%s] %s doesn't exist in file", section.c_str(),
               "ProductGroup");
    }
    if (mid.HasEntry(section, "DLL")) {
        read_optional(mid, section, "DLL", record.ini_path, record.dll);
    } else {
        KErrTrace_ClearContext();
        KTRACE(5, "GetAllPropertiesFromFolder() [%s] %s doesn't exist for %s:%s  in file %s",
               section.c_str(), "DLL", machine.c_str(), record.order_no.c_str(),
               record.ini_path.c_str());
    }
}

} // namespace

bool GetAllMachinesFromDirectories(const char* root, MachineTreeMap& map) {
    map.clear();
    if (!root) {
        KERRTRACE("GetAllMachineDirectories(): Null pointer for base folder");
        return false;
    }
    switch (read_tree(root, map)) {
    case TreeRead::NoRoot:
        return true; // the caller goes on with its next root
    case TreeRead::BadMachine:
        return false;
    case TreeRead::Done:
        break;
    }
    if (!GetAllPropertiesFromFolder(root, map)) {
        KERRTRACE("GetAllMachinesFromDirectories(): GetAllPropertiesFromFolder() failed");
        return false;
    }
    return true;
}

bool GetAllPropertiesFromFolder(const char* root, MachineTreeMap& map) {
    if (!root) {
        KERRTRACE("GetAllPropertiesFromFolder(): Null pointer for base folder");
        return false;
    }
    KErrTrace_BeginContext();
    for (auto& [machine, records] : map) {
        const std::string machine_folder = catalogue_join(root, machine);
        for (MachineProperties& record : records) {
            if (record.order_no == "No_order_number") {
                KERRLOG("GetAllPropertiesFromFolder(): no order number for machine: %s",
                        machine.c_str());
                continue;
            }
            record.folder = catalogue_join(machine_folder, record.order_no);
            record.ini_path = catalogue_join(record.folder, "machine.ini");
            read_properties(machine, record);
        }
    }
    KErrTrace_EndContext();
    return true;
}
