#include "Configure.h"

#include "common.h"
#include "errtrace.h"
#include "kplatform_file.h"
#include "kplatform_process.h"
#include "kplatform_winerror.h"
#include "kregistry.h"

#include <cstdint>

namespace {

// The system's text for a failed start, as one line.
std::string start_error_text(int error, int code) {
    std::string text = korv::platform::win32_error_text(static_cast<korv::DWORD>(code));
    if (text.empty())
        text = korv::platform::error_text(static_cast<std::uint32_t>(error));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text;
}

} // namespace

int Execute(const ExecuteRequest& request) {
    std::string command_line = Expand(request.exec_line);
    const std::string working_dir = Expand(request.working_dir);
    int result = kExecuteNoExitCode;
    KTRACE(5, "Execute(): strExecline = %s ", command_line.c_str());
    KTRACE(5, "Execute(): strWorkingDir = %s ", working_dir.c_str());
    if (!request.arguments.empty()) {
        const std::string arguments = Expand(request.arguments);
        KTRACE(5, "Execute(): strArguments = %s ", arguments.c_str());
        command_line += ' ';
        command_line += arguments;
    }
    KTRACE(5, "Execute(): strCommandLine = %s ", command_line.c_str());

    korv::platform::Process process;
    if (!process.start(command_line, working_dir)) {
        const int code =
            korv::platform::win32_error_of(static_cast<std::uint32_t>(process.error()));
        KERRLOG("Execute(): CreateProcess() failed %s (working_dir=%s)", command_line.c_str(),
                working_dir.c_str());
        KERRLOG("Execute(): CreateProcess() failed with error [%d] %s", code,
                start_error_text(process.error(), code).c_str());
        return result;
    }
    if (request.wait) {
        KTRACE(5, "Execute(): exec process (cmd_line=%s)", command_line.c_str());
        process.wait();
        std::uint32_t code = 0;
        if (process.exit_code(code)) {
            result = static_cast<int>(code);
            KTRACE(5, "Execute(): GetExitCodeProcess() returned %i", result);
        } else {
            KTRACE(5, "Execute(): GetExitCodeProcess() returned no exit code");
        }
    } else {
        KTRACE(5, "Execute(): start process (cmd_line=%s)", command_line.c_str());
    }
    KTRACE(5, "Execute(): done");
    return result;
}

std::string GetInstallLanguage() {
    char buffer[256] = "";
    korv::DWORD size = sizeof buffer;
    if (!korv::RegReadString(korv::platform::HKEY_LOCAL_MACHINE, "Software\\Korv\\hub32\\settings",
                             "install_language", buffer, size))
        return "EN";
    return buffer;
}
