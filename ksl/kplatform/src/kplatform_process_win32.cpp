#include "kplatform_process.h"

#include <windows.h>

namespace korv::platform {
namespace {

HANDLE handle_of(std::intptr_t process) {
    return reinterpret_cast<HANDLE>(process);
}

} // namespace

Process::~Process() {
    if (m_process != -1)
        ::CloseHandle(handle_of(m_process));
}

bool Process::start(std::string_view command_line, std::string_view working_dir) {
    m_error = 0;
    m_program.clear();
    if (m_process != -1 && !m_ended) {
        m_error = ERROR_BUSY;
        return false;
    }
    if (m_process != -1)
        ::CloseHandle(handle_of(m_process));
    m_process = -1;
    m_ended = false;

    // CreateProcess may write into the command line.
    std::string line(command_line);
    const std::string folder(working_dir);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    if (!::CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE,
                          CREATE_NO_WINDOW | NORMAL_PRIORITY_CLASS, nullptr,
                          folder.empty() ? nullptr : folder.c_str(), &startup, &info)) {
        m_error = static_cast<int>(::GetLastError());
        return false;
    }
    ::CloseHandle(info.hThread);
    m_process = reinterpret_cast<std::intptr_t>(info.hProcess);
    char name[MAX_PATH * 4];
    DWORD size = sizeof name;
    if (::QueryFullProcessImageNameA(info.hProcess, 0, name, &size))
        m_program.assign(name, size);
    return true;
}

bool Process::wait() {
    if (m_process == -1)
        return false;
    if (!m_ended) {
        if (::WaitForSingleObject(handle_of(m_process), INFINITE) != WAIT_OBJECT_0)
            return false;
        m_ended = true;
    }
    return true;
}

bool Process::exit_code(std::uint32_t& code) const {
    DWORD status = 0;
    if (!m_ended || !::GetExitCodeProcess(handle_of(m_process), &status))
        return false;
    code = status;
    return true;
}

} // namespace korv::platform
