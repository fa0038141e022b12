// The steps of reading a machine description file that live in files of their
// own: the alias file and the .loc companion.
#pragma once

#include "KIniData_template_core.h"
#include "MachineEntry.h"

#include <string>
#include <vector>

namespace machine_file {

// Opens the alias file `entry.file_name` into `alias` and takes from it the
// name of the machine file that carries the data, and the alias's .loc name.
bool open_alias(const std::string& machines_folder, korv::KIniData& alias, MachineEntry& entry);

// Lays the alias file over the machine read from the data file: name,
// description, bitmap, products, and the variants that its AliasIdentNo_
// sections name, each only if `parent_variants` holds its parent.
bool apply_alias(const std::string& machines_folder, korv::KIniData& alias,
                 const std::vector<std::string>& parent_variants, MachineEntry& entry);

// The .loc file that holds the texts: the alias's own if it has one that
// exists, else the machine's. Tells which of the two it is.
std::string loc_file(const std::string& machines_folder, const MachineEntry& entry,
                     bool& from_alias);

} // namespace machine_file
