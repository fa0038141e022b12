// Installations for the catalogue tests: files written below a scratch
// KORV_ROOT under their Windows paths, with CR LF line ends as on disk.
#pragma once

#include "catalogue/machine_reader.h"
#include "errtrace.h"
#include "log_capture.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace catalogue_test {

// The working folder of the test installations.
inline const std::string kWork = "C:\\work\\";

inline std::string crlf(const std::string& text) {
    std::string out;
    for (const char c : text)
        out += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return out;
}

// machine.ini of a folder tree, section [MACHINE] unless `section` says
// otherwise; `extra` is appended as it stands.
inline std::string machine_ini(const std::string& order, const std::string& group,
                               const std::string& extra = "",
                               const std::string& section = "MACHINE") {
    return "[" + section + "]\nOrderNo=" + order + "\nProductGroup=" + group + "\n" + extra;
}

class Install : public korv::testing::ScratchRoot {
public:
    // Writes `text` to the Windows path `path` ("C:\\..."), LF becoming CR LF.
    void write_c(const std::string& path, const std::string& text) const {
        write(host_relative(path), crlf(text));
    }
    // Makes the folder `path` ("C:\\...") and those above it.
    void folder_c(const std::string& path) const {
        std::filesystem::create_directories(*this / host_relative(path));
    }
    // root\machine\order\machine.ini
    void machine(const std::string& root, const std::string& name, const std::string& order,
                 const std::string& ini) const {
        write_c(root + "\\" + name + "\\" + order + "\\machine.ini", ini);
    }
    std::string host(const std::string& path) const { return *this / host_relative(path); }

private:
    static std::string host_relative(const std::string& path) {
        std::string relative = "drive_c/" + path.substr(3);
        std::replace(relative.begin(), relative.end(), '\\', '/');
        return relative;
    }
};

// Whether a line of the error trace so far holds `part`; a test that asks runs
// in a context of its own (korv::testing::TraceContextTest).
inline bool traced_part(const std::string& part) {
    for (const std::string& line : korv::diag::error_trace_lines())
        if (line.find(part) != std::string::npos)
            return true;
    return false;
}

// The keys of a machine map, in its order.
inline std::vector<std::string> keys(const MachineTreeMap& map) {
    std::vector<std::string> out;
    for (const auto& entry : map)
        out.push_back(entry.first);
    return out;
}

inline int count_errors(const korv::testing::LogCapture& log, const std::string& part) {
    int count = 0;
    for (const std::string& e : log.errors())
        count += e.find(part) != std::string::npos;
    return count;
}

} // namespace catalogue_test
