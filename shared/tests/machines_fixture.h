// A temporary KORV_ROOT with the configuration data folder in it, and the
// helpers to put machine files there and read them back.
#pragma once

#include "Configs.h"
#include "common.h"
#include "errtrace.h"
#include "log_capture.h"
#include "scratch_dir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

// True if a record of that channel and level has exactly that text.
inline bool logged(const korv::testing::LogCapture& log, korv::diag::Channel channel, int level,
                   const std::string& text) {
    for (const korv::diag::LogRecord& record : log.records())
        if (record.channel == channel && record.level == level && record.text == text)
            return true;
    return false;
}
inline bool error_logged(const korv::testing::LogCapture& log, const std::string& text) {
    return logged(log, korv::diag::Channel::ErrorLog, 0, text);
}

class MachinesTest : public ::testing::Test {
protected:
    // Host paths below the root.
    static constexpr const char* kDataFolder = "drive_c/ProgramData/Korv/KorSystemConfig/";
    static constexpr const char* kMachines = "drive_c/ProgramData/Korv/KorSystemConfig/machines/";
    // The machines folder as the library names it in messages.
    static constexpr const char* kWinMachines =
        "C:\\ProgramData\\Korv\\KorSystemConfig\\machines\\";

    void SetUp() override {
        // The macro table logs the registry values it misses once, here.
        Expand_ClearTable();
        Expand("");
    }
    void TearDown() override { Expand_ClearTable(); }

    // A Configs over the data folder as it stands, tracing everything.
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
    std::string machine_text(const std::string& name) const {
        return m_root.read(kMachines + name);
    }
    // A file that the reader refuses, with the message it must leave.
    struct Refusal {
        std::string text;
        korv::diag::Channel channel;
        int level;
        std::string message;
    };
    void expect_refused(const std::string& name, const Refusal& r) {
        machine(name, r.text);
        korv::testing::LogCapture log;
        MachineEntry e;
        EXPECT_FALSE(configs().ReadMachineFile(name, e)) << r.text;
        EXPECT_TRUE(logged(log, r.channel, r.level, r.message)) << r.message;
        EXPECT_TRUE(
            logged(log, korv::diag::Channel::ErrorLog, 0, "Configs::ReadMachineFile(): failed"));
    }

    bool machine_exists(const std::string& name) const {
        return std::filesystem::exists(m_root / (kMachines + name));
    }

    korv::testing::ScratchRoot m_root;
    korv::testing::ScopedEnv m_configPath{"KORV_CONFIGPATH", "C:\\ProgramData"};
    std::unique_ptr<Configs> m_configs;
};

// A tcp machine with the product P1, unless `general_extra` names products.
inline std::string plain_machine(const std::string& general_extra = "",
                                 const std::string& more_sections = "") {
    const bool products = general_extra.find("products=") != std::string::npos;
    return "[general]\nmachine=M1\n" + std::string(products ? "" : "products=P1\n") +
           general_extra + "[connection]\ntype=tcp\ntcp.host=10.0.0.1\ntcp.port=4000\n" +
           more_sections;
}
