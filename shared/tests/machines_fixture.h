// A temporary KORV_ROOT holding the configuration data folder, with helpers to
// put machine files there and read them back.
#pragma once

#include "Configs.h"
#include "common.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>

using Strings = std::vector<std::string>;

// True if a record of that channel and level has exactly that text.
inline bool logged(const korv::testing::LogCapture& log, korv::diag::Channel channel, int level,
                   const std::string& text) {
    return std::any_of(log.records().begin(), log.records().end(), [&](const auto& r) {
        return r.channel == channel && r.level == level && r.text == text;
    });
}

class MachinesTest : public ::testing::Test {
protected:
    static constexpr const char* kMachines = "drive_c/ProgramData/Korv/KorSystemConfig/machines/";
    // The machines folder as the library names it in messages.
    static constexpr const char* kWin = "C:\\ProgramData\\Korv\\KorSystemConfig\\machines\\";

    // The macro table logs the registry values it misses once, here.
    void SetUp() override {
        Expand_ClearTable();
        Expand("");
    }
    void TearDown() override { Expand_ClearTable(); }

    // Built on first use, over the data folder as it stands, tracing everything.
    Configs& configs() {
        if (!m_configs) {
            m_configs = std::make_unique<Configs>();
            _KTrace_SetLevel("korv_shared", 5);
        }
        return *m_configs;
    }
    void machine(const std::string& name, const std::string& text) const {
        m_root.write(kMachines + name, text);
    }
    std::string text(const std::string& name) const { return m_root.read(kMachines + name); }
    bool exists(const std::string& relative) const {
        return std::filesystem::exists(m_root / relative);
    }

    korv::testing::ScratchRoot m_root;
    korv::testing::ScopedEnv m_configPath{"KORV_CONFIGPATH", "C:\\ProgramData"};
    std::unique_ptr<Configs> m_configs;
};

// A tcp machine with the product P1, unless `general` names products.
inline std::string plain_machine(const std::string& general = "", const std::string& more = "") {
    const bool products = general.find("products=") != std::string::npos;
    return "[general]\nmachine=M1\n" + std::string(products ? "" : "products=P1\n") + general +
           "[connection]\ntype=tcp\ntcp.host=10.0.0.1\ntcp.port=4000\n" + more;
}
