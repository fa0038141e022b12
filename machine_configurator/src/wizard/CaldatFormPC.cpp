#include "wizard/CaldatFormPC.h"

#include "errtrace.h"
#include "stl_utilities.h"
#include "wizard/caldat_files.h"

namespace {

// Runs one read of the pair. Its failures are answered by the result alone:
// the lines they leave go to the trace, never to the error log.
template <class Read> bool Answer(const char* caller, std::string& out, Read read) {
    KErrTrace_BeginContext();
    read();
    if (out.empty()) {
        for (const std::string& line : korv::diag::error_trace_lines())
            KTRACE(4, "%s(): %s", caller, line.c_str());
        KErrTrace_ClearContext();
    }
    KErrTrace_EndContext();
    return !out.empty();
}

// The lengths lie at offsets 52 and 60 of the probe's data record.
bool GetLength(const char* caller, const std::string& probe, std::string& out, bool second) {
    return Answer(caller, out, [&] {
        out.clear();
        DataRecord record;
        if (ReadData(probe, {}, {}, &record))
            out = korv::stl_string_format("%8.3f mm", second ? record.Length2() : record.Length1());
    });
}

} // namespace

CCaldatFormPC::CCaldatFormPC(const std::string& path) : m_fileName(path) {
    OpenKeyFiles(m_fileName);
}

CCaldatFormPC::~CCaldatFormPC() {
    CloseKeyFiles();
}

void CCaldatFormPC::SetFile(const std::string& path) {
    CloseKeyFiles();
    m_fileName = path;
    OpenKeyFiles(m_fileName);
}

bool CCaldatFormPC::GetFirstProbe(std::string& out) {
    return Answer("GetFirstProbe", out, [&] {
        std::string k2, k3;
        out = "*";
        NextKey(out, k2, k3);
    });
}

bool CCaldatFormPC::GetNextSub(const std::string& probe, std::string& out) {
    return Answer("GetNextSub", out, [&] {
        std::string k1 = probe, k3;
        out = "*";
        NextKey(k1, out, k3);
    });
}

bool CCaldatFormPC::GetLength1(const std::string& probe, std::string& out) {
    return GetLength("GetLength1", probe, out, false);
}

bool CCaldatFormPC::GetLength2(const std::string& probe, std::string& out) {
    return GetLength("GetLength2", probe, out, true);
}

bool CCaldatFormPC::GetReference(const std::string& probe, const std::string& sub,
                                 std::string& out) {
    return Answer("GetReference", out, [&] {
        out.clear();
        DataRecord record;
        if (!ReadData(probe, sub, {}, &record))
            return;
        out = record.HasReference() ? korv::stl_string_format("%8.3f \xC2\xB0", record.Reference())
                                    : "This probe has no reference !";
    });
}
