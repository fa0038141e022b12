// Alias machines: entries of the catalogue under another name and
// identification number, copied from a parent machine. Each ".alias" file of
// the machines folder names the parent machine file and maps alias numbers to
// parent numbers.
#pragma once

#include "catalogue/machine_properties.h"

#include <string>
#include <vector>

// The machines folder the alias files are read from. A Windows path that the
// file layer places below the platform root.
inline constexpr const char* kAliasMachinesFolder =
    "C:\\ProgramData\\Korv\\KorSystemConfig\\machines";

struct AliasIdentPair {
    std::string alias_identno;
    std::string parent_identno;
};

struct AliasMachineInfo {
    std::string file; // the parent machine file: machines folder, '\\', [General] file
    std::string alias_machine_name;
    std::string machine;       // [general] machine of the parent file
    std::string variantfolder; // [general] variantfolder of the parent file
    std::vector<AliasIdentPair> ident_numbers;
};

// Adds the alias machines whose parents are in `map`, which holds one root.
// False if the alias files can't be read or an alias number has no parent
// record; `map` then stays as it was.
bool getAliasMachines(MachineTreeMap& map);
// Reads every alias file of the machines folder. One damaged file fails all.
bool getAliasMachinesInfo(std::vector<AliasMachineInfo>& infos);
// The ".alias" files of `folder`, in listing order; the extension is compared
// case-sensitively.
bool getAliasMachineFiles(const std::string& folder, std::vector<std::string>& files);
// Adds a copy of each parent record under its alias name and number. Parents
// that are not in `map` (another root) are passed over.
bool createAliasMachines(MachineTreeMap& map, const std::vector<AliasMachineInfo>& infos);
