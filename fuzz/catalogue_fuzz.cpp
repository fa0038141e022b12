// The catalogue: machine.ini of a folder tree, the loader configuration file
// with its [DRIVEUNIT], [TABLE] and [MEASURESTAND] lists, the drive unit file,
// the table and stand file, and an alias file with its parent. The input holds
// them cut at lines "--- config", "--- driveunit", "--- units" and "--- alias";
// the first byte picks the Midspan build (configuration file) or the folder
// trees with their aliases.
#include "catalogue/data_sheets.h"

#include "fuzz_support.h"
#include "kplatform_profile.h"
#include "ui_headless_host.h"
#include "ui_host_selection.h"

#include <cstring>

namespace {

const std::string kWork = "C:\\work\\";

std::string host(const std::string& below_c) {
    return korv::fuzz::scratch() + "/drive_c/" + below_c;
}

// A field of a sheet holds its terminator within its size.
template <std::size_t N> bool terminated(const char (&field)[N]) {
    return ::memchr(field, '\0', N) != nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korv::fuzz::Choices choices(data, size);
    const bool midspan = choices.byte() & 1;
    korv::fuzz::scratch();
    korv::fuzz::trim_logs();
    const korv::fuzz::ErrTraceScope context;
    const std::vector<std::string_view> parts = korv::fuzz::split_parts(
        data, size, {"--- config", "--- driveunit", "--- units", "--- alias"});
    korv::platform::WritePrivateProfileStringA(nullptr, nullptr, nullptr, nullptr);
    korv::fuzz::write_file(host("work/KorGear/machines/KMX 100/9100100/machine.ini"), parts[0]);
    korv::fuzz::write_file(host("work/midspan.cfg"), parts[1]);
    korv::fuzz::write_file(host("work/SP_Support/DriveUnit.dat"), parts[2]);
    korv::fuzz::write_file(host("work/Units.dat"), parts[3]);
    const std::string machines = "ProgramData/Korv/KorSystemConfig/machines/";
    korv::fuzz::write_file(host(machines + "fuzz.alias"), parts[4]);
    korv::fuzz::write_file(host(machines + "fuzz.ini"), parts[0]);

    // Message boxes of the build are answered as their close box would.
    korv::ui::install_host(std::make_unique<korv::ui::HeadlessHost>(
        std::vector<korv::ui::ScriptEvent>{}, [](const std::string&) {}));
    std::unique_ptr<MachineSheetList> sheets;
    std::unique_ptr<TableSheetList> tables;
    std::unique_ptr<StandSheetList> stands;
    const bool built = BuildDataSheets(midspan, kWork, midspan ? kWork + "midspan.cfg" : "", sheets,
                                       tables, stands);
    FUZZ_CHECK(sheets != nullptr, "no machine list after a build");
    if (built) {
        for (const auto& sheet : *sheets)
            FUZZ_CHECK(terminated(sheet->name) && terminated(sheet->order_no),
                       "a machine sheet field lacks its terminator");
        if (tables)
            for (const auto& table : *tables)
                FUZZ_CHECK(terminated(table->name), "a table sheet lacks its terminator");
        if (stands)
            for (const auto& stand : *stands)
                FUZZ_CHECK(terminated(stand->name), "a stand sheet lacks its terminator");
    }
    FreeDataSheets(sheets, tables, stands);
    korv::ui::reset_host_selection();
    korv::fuzz::remove_tree(host("work"));
    korv::fuzz::remove_tree(host("ProgramData"));
    return 0;
}
