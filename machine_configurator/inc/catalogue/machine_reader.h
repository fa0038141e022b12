// The machines the tool knows, read from their two sources into a
// MachineTreeMap:
// - a tree of folders, root\<machine>\<order number>\machine.ini;
// - the [DRIVEUNIT] list of a loader configuration file, which names one drive
//   unit file per order number text.
// Problems with a single folder or file are logged and skipped.
#pragma once

#include "catalogue/machine_properties.h"

// Empties `map`, then adds one entry per machine folder of `root` (in key
// order) with one record per order number folder, and fills the records from
// their machine.ini files. A root that doesn't exist is logged and gives an
// empty map and true, so that a caller goes on with its next root. False for a
// null root and for a machine folder that can't be entered; then the map holds
// what was collected up to there, without properties.
bool GetAllMachinesFromDirectories(const char* root, MachineTreeMap& map);

// Fills `ini_path`, `folder`, `table`, `group` and `dll` of every record of
// `map` from root\<key>\<order_no>\machine.ini. False only for a null root.
bool GetAllPropertiesFromFolder(const char* root, MachineTreeMap& map);

// Empties `map`, then adds one entry per [DRIVEUNIT] file_<i>/no_<i> pair of
// `config_file`, with one record per item of the drive unit file's section
// "ORDERNO.<no_i>", and reads their properties. The file_<i> values are
// relative to `app_folder` and must hold a ".\" part; a value without it makes
// the whole read fail.
bool GetAllMachinesFromConfigFile(const char* config_file, const char* app_folder,
                                  MachineTreeMap& map);

// Reads "interface", "group" and "table" of every record of `map` from its
// drive unit file.
bool GetAllMachinesInfosFromConfigFile(const char* config_file, const char* app_folder,
                                       MachineTreeMap& map);
