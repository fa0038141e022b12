#include "Configs.h"
#include "errtrace.h"
#include "machine_file_text.h"

using korv::KIniData;

namespace {

constexpr const char* kConnection = "connection";

// Integer keys that are there but hold no number count as missing.
bool get_required(const KIniData& ini, const char* key, std::string& value,
                  const std::string& path) {
    if (ini.GetStringEntry(kConnection, key, value))
        return true;
    KERRLOG("ReadMachineFileConnection(): missing key (%s) in file %s", key, path.c_str());
    return false;
}

bool get_required(const KIniData& ini, const char* key, std::int32_t& value,
                  const std::string& path) {
    if (ini.GetLongEntry(kConnection, key, value))
        return true;
    KERRLOG("ReadMachineFileConnection(): missing key (%s) in file %s", key, path.c_str());
    return false;
}

bool read_tcp(const KIniData& ini, MachineConnection& c, const std::string& path) {
    if (!get_required(ini, "tcp.host", c.tcp_host, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): tcp.host = %s", c.tcp_host.c_str());
    if (!get_required(ini, "tcp.port", c.tcp_port, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): tcp.port = %i", c.tcp_port);
    if (ini.HasEntry(kConnection, "tcp.speedup_ports")) {
        std::string ports;
        if (!ini.GetStringEntry(kConnection, "tcp.speedup_ports", ports)) {
            KERRTRACE("%s(): Reading \"[connection] tcp.speedup_ports=\" in file \"%s\" failed",
                      "Configs::ReadMachineFileConnection", path.c_str());
            return false;
        }
        c.tcp_speedup_ports = machine_file::split_nonempty(ports, ',');
        KTRACE(5, "ReadMachineFileConnection(): tcp.speedup_ports = %s", ports.c_str());
    }
    return true;
}

bool read_serial(const KIniData& ini, MachineConnection& c, const std::string& path) {
    if (!get_required(ini, "serial.port", c.serial_port, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): serial.port = %s", c.serial_port.c_str());
    if (!get_required(ini, "serial.baudrate", c.serial_baudrate, path))
        return false;
    // Names bytesize and shows it before it is read; the suite's logs read so.
    KTRACE(5, "ReadMachineFileConnection(): serial.bytesize = %i", c.serial_bytesize);
    if (!get_required(ini, "serial.bytesize", c.serial_bytesize, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): serial.bytesize = %i", c.serial_bytesize);
    if (!get_required(ini, "serial.parity", c.serial_parity, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): serial.parity = %i", c.serial_parity);
    if (!get_required(ini, "serial.stopbits", c.serial_stopbits, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): serial.stopbits = %i", c.serial_stopbits);
    if (!get_required(ini, "serial.protocol", c.serial_protocol, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): serial.protocol = %i", c.serial_protocol);
    if (!get_required(ini, "serial.breakdelay", c.serial_breakdelay, path))
        return false;
    KTRACE(5, "ReadMachineFileConnection(): serial.breakdelay = %i", c.serial_breakdelay);
    return true;
}

} // namespace

bool Configs::ReadMachineFileConnection(KIniData& ini, MachineEntry& entry) {
    const std::string path = m_strMachinesFolder + entry.data_file;
    MachineConnection& c = entry.connection;
    if (!ini.GetStringEntry(kConnection, "type", c.type)) {
        KERRLOG("ReadMachineFileConnection(): missing key (type) in file %s", path.c_str());
        return false;
    }
    KTRACE(5, "ReadMachineFileConnection(): type = %s", c.type.c_str());
    if (c.type == "tcp")
        return read_tcp(ini, c, path);
    if (c.type == "serial")
        return read_serial(ini, c, path);
    if (c.type == "pipe") {
        if (!get_required(ini, "pipe.machine", c.pipe_machine, path))
            return false;
        KTRACE(5, "ReadMachineFileConnection(): pipe.machine = %s", c.pipe_machine.c_str());
        return true;
    }
    KERRLOG("ReadMachineFileConnection(): file %s has unknown connection type: type = \"%s\"",
            path.c_str(), c.type.c_str());
    return false;
}

void Configs::WriteMachineFileConnection(KIniData& ini, MachineEntry& entry) {
    const MachineConnection& c = entry.connection;
    ini.SetStringEntry(kConnection, "type", c.type);
    KTRACE(5, "WriteMachineFileConnection(): type = %s", c.type.c_str());
    if (c.type == "tcp") {
        ini.SetStringEntry(kConnection, "tcp.host", c.tcp_host);
        KTRACE(5, "WriteMachineFileConnection(): tcp.host = %s", c.tcp_host.c_str());
        ini.SetLongEntry(kConnection, "tcp.port", c.tcp_port);
        KTRACE(5, "WriteMachineFileConnection(): tcp.port = %i", c.tcp_port);
    } else if (c.type == "serial") {
        ini.SetStringEntry(kConnection, "serial.port", c.serial_port);
        KTRACE(5, "WriteMachineFileConnection(): serial.port = %s", c.serial_port.c_str());
        ini.SetLongEntry(kConnection, "serial.baudrate", c.serial_baudrate);
        KTRACE(5, "WriteMachineFileConnection(): serial.bytesize = %i", c.serial_bytesize);
        ini.SetLongEntry(kConnection, "serial.bytesize", c.serial_bytesize);
        KTRACE(5, "WriteMachineFileConnection(): serial.bytesize = %i", c.serial_bytesize);
        ini.SetLongEntry(kConnection, "serial.parity", c.serial_parity);
        KTRACE(5, "WriteMachineFileConnection(): serial.parity = %i", c.serial_parity);
        ini.SetLongEntry(kConnection, "serial.stopbits", c.serial_stopbits);
        KTRACE(5, "WriteMachineFileConnection(): serial.stopbits = %i", c.serial_stopbits);
        ini.SetLongEntry(kConnection, "serial.protocol", c.serial_protocol);
        KTRACE(5, "WriteMachineFileConnection(): serial.protocol = %i", c.serial_protocol);
        ini.SetLongEntry(kConnection, "serial.breakdelay", c.serial_breakdelay);
        KTRACE(5, "WriteMachineFileConnection(): serial.breakdelay = %i", c.serial_breakdelay);
    } else if (c.type == "pipe") {
        ini.SetStringEntry(kConnection, "pipe.machine", c.pipe_machine);
        KTRACE(5, "WriteMachineFileConnection(): pipe.machine = %s", c.pipe_machine.c_str());
    }
}
