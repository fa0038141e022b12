// The machine description file with its .loc and .alias companions. The input
// holds the three files, cut at lines "--- loc" and "--- alias"; the first byte
// picks whether the machine is read through its alias file, and whether what
// was read is written to a new file and read again.
#include "Configs.h"
#include "common.h"
#include "fuzz_support.h"

#include <memory>

namespace {

Configs& configs() {
    static const std::unique_ptr<Configs> instance = [] {
        korv::fuzz::scratch();
        Expand("");
        return std::make_unique<Configs>();
    }();
    return *instance;
}

std::string machines_folder() {
    return korv::fuzz::scratch() + "/drive_c/ProgramData/Korv/KorSystemConfig/machines/";
}

// The writer's ", " separator comes back as a leading blank.
std::vector<std::string> trimmed(std::vector<std::string> names) {
    for (std::string& name : names) {
        name.erase(0, name.find_first_not_of(' '));
        name.erase(name.find_last_not_of(' ') + 1);
    }
    return names;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korv::fuzz::Choices choices(data, size);
    const std::uint8_t mode = choices.byte();
    const korv::fuzz::ErrTraceScope context;
    Configs& configs_ = configs();
    korv::fuzz::trim_logs();

    const std::vector<std::string_view> parts =
        korv::fuzz::split_parts(data, size, {"--- loc", "--- alias"});
    const std::string folder = machines_folder();
    korv::fuzz::write_file(folder + "fuzz.ini", parts[0]);
    korv::fuzz::write_file(folder + "fuzz.loc", parts[1]);
    korv::fuzz::write_file(folder + "fuzz.alias", parts[2]);

    MachineEntry entry;
    const bool read = configs_.ReadMachineFile((mode & 1) ? "fuzz.alias" : "fuzz.ini", entry);
    if (read && (mode & 2)) {
        // The .loc name comes from the file; keep the write inside the scratch folder.
        entry.loc_filename = "written.loc";
        FUZZ_CHECK(configs_.WriteMachineFile("written.ini", entry), "machine file not written");
        // A variant's name heads a section of its own, "[name.configuration]": a
        // name holding ']' or a line break cannot come back as it went, so
        // such a file is written but not read again.
        for (const MachineVariant& variant : entry.variants)
            if (variant.name.find_first_of("]\r\n") != std::string::npos) {
                korv::fuzz::remove_tree(folder);
                return 0;
            }
        MachineEntry again;
        FUZZ_CHECK(configs_.ReadMachineFile("written.ini", again),
                   "written machine file does not read");
        FUZZ_CHECK(trimmed(again.products) == trimmed(entry.products),
                   "products changed on the way");
        FUZZ_CHECK(again.variants.size() == entry.variants.size(), "%zu variants, then %zu",
                   entry.variants.size(), again.variants.size());
        FUZZ_CHECK(again.connection.type == entry.connection.type, "connection type changed");
    }
    (void)configs_.IsMachineDescription(entry.description);
    korv::fuzz::remove_tree(folder);
    return 0;
}
