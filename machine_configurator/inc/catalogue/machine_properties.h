// What the catalogue knows of one machine order number, and the map that
// collects them by machine.
#pragma once

#include "KIniData_template_core.h"

#include <map>
#include <string>
#include <vector>

// One order number of one machine. Fields that the source of the record
// doesn't carry stay empty: `interface` for folder trees, `dll` for
// configuration files.
struct MachineProperties {
    std::string interface;
    std::string group;
    std::string order_no;
    std::string ini_path;
    std::string folder;
    std::string table;
    std::string dll;

    bool operator==(const MachineProperties&) const = default;
};

// Keys sort bytewise, shorter first on a common prefix: "A" < "AB" < "B" < "a".
using MachineKeyLess = korv::KIniDataCaseSensitiveCompare;

// Machine name (or order number text of a configuration file) to its order
// numbers. Equal keys are allowed: roots may hold the same machine folder, and
// a further equal key goes behind those that are there.
using MachineTreeMap = std::multimap<std::string, std::vector<MachineProperties>, MachineKeyLess>;
