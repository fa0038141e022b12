// Tables and measure stands: named in the loader configuration file, described
// in one data file each.
#include "catalogue/data_sheets.h"

#include "catalogue_text.h"

namespace {

// Calls `add` with each name of `section` of the configuration file that the
// data file doesn't hide; the first empty no_<n> ends the list.
template <class Add>
void for_each_shown(const std::string& config_file, const char* section,
                    const std::string& data_file, Add add) {
    for (std::size_t n = 1;; ++n) {
        const std::string name =
            catalogue_profile(section, "no_" + std::to_string(n), "", config_file);
        if (name.empty())
            return;
        // Only an absent key means "0"; an empty value hides.
        if (catalogue_profile(name, "HIDE", "0", data_file)[0] != '0')
            continue;
        add(name);
    }
}

std::uint8_t is_cnc(const std::string& name, const std::string& data_file) {
    return catalogue_profile(name, "ConfigGroup", "", data_file) == "CNC";
}

} // namespace

void AppendTableSheets(const std::string& config_file, const std::string& data_file,
                       TableSheetList& sheets) {
    for_each_shown(config_file, "TABLE", data_file, [&](const std::string& name) {
        auto sheet = std::make_unique<TableDataSheet>();
        SetSheetText(sheet->name, name, "table name");
        sheet->cnc = is_cnc(name, data_file);
        sheets.push_back(std::move(sheet));
    });
}

void AppendStandSheets(const std::string& config_file, const std::string& data_file,
                       StandSheetList& sheets) {
    for_each_shown(config_file, "MEASURESTAND", data_file, [&](const std::string& name) {
        auto sheet = std::make_unique<StandDataSheet>();
        SetSheetText(sheet->name, name, "stand name");
        const std::string position = catalogue_profile(name, "position", "", data_file);
        if (position.find("horizontal") != std::string::npos)
            sheet->position |= kStandHorizontal;
        if (position.find("vertical") != std::string::npos)
            sheet->position |= kStandVertical;
        sheet->cnc = is_cnc(name, data_file);
        sheets.push_back(std::move(sheet));
    });
}
