// One machine description file in memory: which machine a configuration
// belongs to, how its control is reached, the commands that start, configure
// and update it, its products and its variants.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// A command line to run.
struct MachineCommand {
    std::string cmdline;
    std::string cwd; // may hold path macros
    std::string args;
    std::string mode; // only the configure command has one: "copy", "new", "create"
    std::string name; // set only for update steps
    bool sync = true; // run and wait
    std::int32_t expected_result = 0;
};

// One variant of a machine. In an alias file `name` is the parent's variant and
// `alias_identno` the number the alias gives it.
struct MachineVariant {
    std::string name;
    std::string alias_identno;
    std::string target;
    std::string config;
    std::map<std::string, std::string> descriptions; // language code to text
};

// The [connection] section.
struct MachineConnection {
    std::string type; // "tcp", "serial" or "pipe"
    std::string tcp_host;
    std::int32_t tcp_port = 0;
    std::vector<std::string> tcp_speedup_ports;
    std::string serial_port;
    std::int32_t serial_baudrate = 0;
    std::int32_t serial_bytesize = 0;
    std::int32_t serial_parity = 0;
    std::int32_t serial_stopbits = 0;
    std::int32_t serial_protocol = 0;
    std::int32_t serial_breakdelay = 0;
    std::string pipe_machine;
};

struct MachineEntry {
    std::string machine;
    std::string loc_filename;
    std::string korctrl; // "powerpcctrl" presets the compatibility check
    // The file the entry was read from (.ini or .alias), or last written to.
    std::string file_name;
    // The machine file that carries the data: file_name, or an alias's parent.
    std::string data_file;
    std::int32_t timeout_until_0000_ready = 60; // seconds
    std::string bitmap;
    std::string simulation; // "true" marks a simulated machine
    MachineCommand configure;
    MachineCommand start_control;
    MachineCommand firmware_update;
    MachineCommand compatibility_check;
    std::vector<MachineCommand> update_steps;
    std::string checker;
    std::string variantfolder;
    std::string product_group;
    std::string target;
    std::string config; // a whole ini file in base64
    std::vector<std::string> products;
    std::vector<MachineVariant> variants;
    std::string description;
    std::map<std::string, std::string> descriptions; // language code to text
    MachineConnection connection;
    std::string alias_machine_name;
    std::string alias_loc_filename;
    std::int32_t developer = 0; // 1 hides the machine unless developers are shown
};
