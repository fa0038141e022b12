// The catalogue the wizard and the main dialog choose from: machines, tables
// and measure stands, as lists of sheets owned by the main dialog. A list
// exists only after a build; pointers into it don't survive the next one.
#pragma once

#include "catalogue/machine_properties.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// Interface and group bits of MachineDataSheet::flags.
inline constexpr std::uint32_t kSheetCom1 = 0x1;
inline constexpr std::uint32_t kSheetCom2 = 0x2;
inline constexpr std::uint32_t kSheetSwitch = 0x4;
inline constexpr std::uint32_t kSheetContour = 0x10;
inline constexpr std::uint32_t kSheetForm = 0x20;
inline constexpr std::uint32_t kSheetSurface = 0x40;
inline constexpr std::uint32_t kSheetKorSim = 0x80;
inline constexpr std::uint32_t kSheetKorShaft = 0x100;
inline constexpr std::uint32_t kSheetAlways = 0x200 | 0x400;
inline constexpr std::uint32_t kSheetPrecikor = 0x800;
inline constexpr std::uint32_t kSheetKorGear = 0x1000;
inline constexpr std::uint32_t kSheetKorSurf = 0x2000;
inline constexpr std::uint32_t kSheetPlatformComponents = 0x4000;
inline constexpr std::uint32_t kSheetKorOpto = 0x8000;
inline constexpr std::uint32_t kSheetKorGeometry = 0x10000;

// Table kinds of MachineDataSheet::table_mode.
inline constexpr std::int32_t kTableNone = 0;
inline constexpr std::int32_t kTableManual = 1;
inline constexpr std::int32_t kTableAutomatic = 2;

// Stand position bits.
inline constexpr std::int32_t kStandHorizontal = 1;
inline constexpr std::int32_t kStandVertical = 2;

inline constexpr std::size_t kSheetNameSize = 128;
inline constexpr std::size_t kSheetOrderNoSize = 20;

struct MachineDataSheet {
    char name[kSheetNameSize] = {}; // map key: machine folder, or order number text
    std::uint32_t flags = 0;
    char order_no[kSheetOrderNoSize] = {};
    std::uint64_t index = 0; // position of the record in its map entry, hidden ones counted
    std::int32_t table_mode = kTableNone;
    std::uint8_t cnc = 0;
    std::string ini_path;
    std::string folder;
};

struct TableDataSheet {
    char name[kSheetNameSize] = {};
    std::uint8_t cnc = 0;
};

struct StandDataSheet {
    char name[kSheetNameSize] = {};
    std::int32_t position = 0;
    std::uint8_t cnc = 0;
};

using MachineSheetList = std::vector<std::unique_ptr<MachineDataSheet>>;
using TableSheetList = std::vector<std::unique_ptr<TableDataSheet>>;
using StandSheetList = std::vector<std::unique_ptr<StandDataSheet>>;

// The flag bits of an interface and a group text. Exactly one group bit is
// set, by the first group test that holds; `group_found` tells whether one did.
std::uint32_t MachineSheetFlags(const std::string& interface, const std::string& group,
                                bool& group_found);

// Copies `value` into a fixed sheet field of `size` bytes. A value that
// doesn't fit is cut to fit, with its terminator, and logged with `what`
// naming the field.
void SetSheetText(char* field, std::size_t size, const std::string& value, const char* what);
template <std::size_t N>
void SetSheetText(char (&field)[N], const std::string& value, const char* what) {
    SetSheetText(field, N, value, what);
}

// The folders searched for machine trees below `work_dir`, in search order:
// the product folders, then every subfolder of KorSim in listing order.
std::vector<std::string> CatalogueRoots(const std::string& work_dir);

// Appends a sheet for every record of `map` that its machine file doesn't
// hide, in key order and record order.
void AppendMachineSheets(const MachineTreeMap& map, MachineSheetList& sheets);

// Appends the tables, or stands, that section "TABLE", or "MEASURESTAND", of
// `config_file` names as no_1, no_2, ..., unless `data_file` hides them.
void AppendTableSheets(const std::string& config_file, const std::string& data_file,
                       TableSheetList& sheets);
void AppendStandSheets(const std::string& config_file, const std::string& data_file,
                       StandSheetList& sheets);

// Builds the three lists anew from the folder trees below `work_dir` and, for
// the Midspan family (`midspan`), from the loader configuration file
// `config_file`; tables and stands exist only for that family and stay null
// otherwise. False, with the reason in the error log, when a source fails as a
// whole; the machine list then exists and is empty.
bool BuildDataSheets(bool midspan, const std::string& work_dir, const std::string& config_file,
                     std::unique_ptr<MachineSheetList>& machines,
                     std::unique_ptr<TableSheetList>& tables,
                     std::unique_ptr<StandSheetList>& stands);

// Deletes the entries of each list from the last to the first, then the
// lists: machines, tables, stands.
void FreeDataSheets(std::unique_ptr<MachineSheetList>& machines,
                    std::unique_ptr<TableSheetList>& tables,
                    std::unique_ptr<StandSheetList>& stands);
