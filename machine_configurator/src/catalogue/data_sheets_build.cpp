// The build of the whole catalogue, behind CMidSpanCfgDlg::InitCfgDataStructure.
#include "catalogue/data_sheets.h"

#include "catalogue/alias_maschines.h"
#include "catalogue/machine_reader.h"
#include "catalogue_text.h"
#include "main_dialog/RigCfgDlg.h"

#include "errtrace.h"

#include <new>

namespace {

// Collects the machines of all sources in `collected`. False once a source
// fails as a whole; the failure is dumped to the error log.
bool collect_machines(bool midspan, const std::string& work_dir, const std::string& config_file,
                      MachineTreeMap& collected) {
    if (midspan &&
        !GetAllMachinesFromConfigFile(config_file.c_str(), work_dir.c_str(), collected)) {
        KERRTRACE_DUMP("InitCfgDataStructure():  GetAllMachinesFromConfigFile() failed");
        return false;
    }
    MachineTreeMap single;
    for (const std::string& root : CatalogueRoots(work_dir)) {
        single.clear();
        if (!GetAllMachinesFromDirectories(root.c_str(), single)) {
            KERRTRACE_DUMP("InitCfgDataStructure(): GetAllMachinesFromDirectories() failed");
            return false;
        }
        // The Midspan catalogue comes from the configuration file alone; its
        // folders are read all the same, and a broken one stops the build.
        if (midspan)
            continue;
        if (!getAliasMachines(single)) {
            KERRTRACE_DUMP("%s(): getAliasMachines() failed",
                           "CMidSpanCfgDlg::InitCfgDataStructure");
            return false;
        }
        for (auto& entry : single)
            collected.insert(std::move(entry));
    }
    return true;
}

// The data file that section [TABLE] or [MEASURESTAND] names under "file".
// Without one the user is told, and the read goes on with the bare folder.
std::string unit_data_file(const std::string& work_dir, const std::string& config_file,
                           bool table) {
    const char* section = table ? "TABLE" : "MEASURESTAND";
    const std::string value = catalogue_profile(section, "file", "", config_file);
    if (value.empty()) {
        const char* key = table ? "Error: Missing entry [TABLE] 'file='.msg"
                                : "Error: Missing entry [MEASURESTAND] 'file='.msg";
        ErrorMessageBox(key); // the stop icon
        if (table)
            KERRLOG("INICfgFileIo(): missing entry [TABLE] 'file=' in %s", config_file.c_str());
        else
            KERRLOG("InitcfgDataStructure(): missing entry [MEASURESTAND] 'file=' in %s",
                    config_file.c_str());
    }
    return work_dir + value;
}

template <class List> bool create_list(std::unique_ptr<List>& list) {
    list.reset(new (std::nothrow) List);
    return list != nullptr;
}

} // namespace

bool BuildDataSheets(bool midspan, const std::string& work_dir, const std::string& config_file,
                     std::unique_ptr<MachineSheetList>& machines,
                     std::unique_ptr<TableSheetList>& tables,
                     std::unique_ptr<StandSheetList>& stands) {
    if (machines || tables || stands)
        FreeDataSheets(machines, tables, stands);
    if (!create_list(machines))
        return false;

    KErrTrace_BeginContext();
    MachineTreeMap collected;
    const bool ok = collect_machines(midspan, work_dir, config_file, collected);
    if (ok) {
        AppendMachineSheets(collected, *machines);
        // Tables and stands belong to the Midspan family only.
        if (midspan && create_list(tables))
            AppendTableSheets(config_file, unit_data_file(work_dir, config_file, true), *tables);
        if (midspan && create_list(stands))
            AppendStandSheets(config_file, unit_data_file(work_dir, config_file, false), *stands);
    }
    // Whatever a successful read left behind is no error of the caller's.
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    return ok;
}

void FreeDataSheets(std::unique_ptr<MachineSheetList>& machines,
                    std::unique_ptr<TableSheetList>& tables,
                    std::unique_ptr<StandSheetList>& stands) {
    const auto clear = [](auto& list) {
        if (!list)
            return;
        while (!list->empty())
            list->pop_back();
        list.reset();
    };
    clear(machines);
    clear(tables);
    clear(stands);
}
