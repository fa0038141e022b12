#include "catalogue/data_sheets.h"

#include "catalogue_text.h"

#include "errtrace.h"
#include "kdirtools.h"

#include <cstring>

namespace {

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

} // namespace

std::uint32_t MachineSheetFlags(const std::string& interface, const std::string& group,
                                bool& group_found) {
    std::uint32_t flags = kSheetAlways;
    if (contains(interface, "COM1"))
        flags |= kSheetCom1;
    if (contains(interface, "COM2"))
        flags |= kSheetCom2;
    if (contains(interface, "switch"))
        flags |= kSheetSwitch;

    // The first test that holds decides, so "CONTOUR/SURFACE" is a contour
    // group and "PLATFORM_COMPONENTS" is kept out of the "FORM" test by hand.
    const bool platform = group == "PLATFORM_COMPONENTS";
    const struct {
        bool holds;
        std::uint32_t bit;
    } tests[] = {
        {contains(group, "KORSIM"), kSheetKorSim},
        {contains(group, "KORSHAFT"), kSheetKorShaft},
        {contains(group, "CONTOUR"), kSheetContour},
        {contains(group, "FORM") && !platform, kSheetForm},
        {contains(group, "PRECIKOR"), kSheetPrecikor},
        {contains(group, "KORGEAR"), kSheetKorGear},
        {contains(group, "KOROPTO"), kSheetKorOpto},
        {platform, kSheetPlatformComponents},
        {contains(group, "SURFACE"), kSheetSurface},
        {contains(group, "KORSURF"), kSheetKorSurf},
        {contains(group, "KORGEOMETRY"), kSheetKorGeometry},
    };
    group_found = false;
    for (const auto& test : tests)
        if (test.holds) {
            flags |= test.bit;
            group_found = true;
            break;
        }
    return flags;
}

void SetSheetText(char* field, std::size_t size, const std::string& value, const char* what) {
    if (size == 0)
        return;
    std::size_t length = value.size();
    if (length >= size) {
        length = size - 1;
        KERRLOG("SetSheetText(): %s \"%s\" is longer than %zu characters, cut to \"%.*s\"", what,
                value.c_str(), length, static_cast<int>(length), value.c_str());
    }
    std::memcpy(field, value.data(), length);
    field[length] = '\0';
}

std::vector<std::string> CatalogueRoots(const std::string& work_dir) {
    std::vector<std::string> roots;
    for (const char* product : {"form_support", "KorSurf", "KorShaft", "KorGear", "KorOpto",
                                "KorGeometry", "platform_components", "Length_Support"})
        roots.push_back(catalogue_join(catalogue_join(work_dir, product), "machines"));

    // Each KorSim variant has a machine tree of its own. An installation
    // without KorSim is normal, so a failed listing is no error here.
    std::vector<std::string> variants;
    KErrTrace_BeginContext();
    korv::iterateDirectory(catalogue_join(work_dir, "KorSim"), 0, korv::addEntry, &variants,
                           nullptr, nullptr);
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    for (const std::string& variant : variants)
        roots.push_back(catalogue_join(variant, "machines"));
    return roots;
}

void AppendMachineSheets(const MachineTreeMap& map, MachineSheetList& sheets) {
    for (const auto& [name, records] : map) {
        for (std::size_t index = 0; index < records.size(); ++index) {
            const MachineProperties& record = records[index];
            if (catalogue_profile(name, "HIDE", "0", record.ini_path)[0] != '0')
                continue;
            KTRACE(5, "IniCfgDataStructure(): Init data sheet for '%s: %s'  product group:'%s'",
                   name.c_str(), record.order_no.c_str(), record.group.c_str());

            auto sheet = std::make_unique<MachineDataSheet>();
            SetSheetText(sheet->name, name, "name");
            SetSheetText(sheet->order_no, record.order_no, "order_no");
            sheet->index = index;
            bool group_found = false;
            sheet->flags = MachineSheetFlags(record.interface, record.group, group_found);
            if (!group_found)
                KERRLOG("InitCfgDataStructure(): no product group found for %s, OrderNo: %s, '%s'",
                        name.c_str(), record.order_no.c_str(), record.ini_path.c_str());
            if (record.table == "manual")
                sheet->table_mode = kTableManual;
            else if (record.table == "automatic")
                sheet->table_mode = kTableAutomatic;
            sheet->ini_path = record.ini_path;
            sheet->folder = record.folder;
            sheet->cnc = catalogue_profile(name, "ConfigGroup", "", record.ini_path) == "CNC";
            sheets.push_back(std::move(sheet));
        }
    }
}
