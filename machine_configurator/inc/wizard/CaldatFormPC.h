// The calibration data of an older form measuring station, read through the
// one calibration pair of the process (wizard/caldat_files.h): its probes,
// their two lengths and the references of their sub-entries.
//
// Every getter answers true if and only if `out` is not empty; a missing
// record or an exhausted enumeration empties it. The probe and sub-entry
// enumerations share the process-wide one of NextKey: run one to its end
// before starting the other.
#pragma once

#include <string>

class CCaldatFormPC {
public:
    // Stores the path and opens its pair.
    explicit CCaldatFormPC(const std::string& path);
    // Closes the pair.
    virtual ~CCaldatFormPC();
    CCaldatFormPC(const CCaldatFormPC&) = delete;
    CCaldatFormPC& operator=(const CCaldatFormPC&) = delete;

    // Closes the pair and opens the one of `path`.
    void SetFile(const std::string& path);

    // The next top node.
    bool GetFirstProbe(std::string& out);
    // The next second key below `probe`.
    bool GetNextSub(const std::string& probe, std::string& out);
    // The lengths of `probe`, as "%8.3f mm".
    bool GetLength1(const std::string& probe, std::string& out);
    bool GetLength2(const std::string& probe, std::string& out);
    // The reference angle of (`probe`, `sub`), or the text that it has none.
    bool GetReference(const std::string& probe, const std::string& sub, std::string& out);

    std::string m_fileName;
};
