#include "program_run.h"

#include <windows.h>

namespace korv::testing {
namespace {

// One argument as the C runtime splits it back: quoted, with backslashes
// doubled before a quote.
std::string quoted(const std::string& arg) {
    std::string out = "\"";
    std::size_t backslashes = 0;
    for (const char c : arg) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        out.append(c == '"' ? 2 * backslashes + 1 : backslashes, '\\');
        backslashes = 0;
        out += c;
    }
    out.append(2 * backslashes, '\\');
    return out + "\"";
}

HANDLE inheritable_file(const std::string& path) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    // The last run's child may hold its handle a moment after it was seen to end.
    return ::CreateFileA(path.c_str(), GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherit,
                         CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Text as the program meant it: the C runtime ends each line with CR LF.
std::string as_text(std::string bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] != '\r' || i + 1 >= bytes.size() || bytes[i + 1] != '\n')
            out += bytes[i];
    return out;
}

} // namespace

ProgramRun run_program(const char* program, const std::vector<std::string>& args,
                       const ScratchDir& io) {
    std::string line = quoted(program);
    for (const std::string& arg : args)
        line += " " + quoted(arg);
    const HANDLE out = inheritable_file(io / "out");
    const HANDLE err = inheritable_file(io / "err");
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = ::GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = out;
    startup.hStdError = err;
    PROCESS_INFORMATION info{};
    int code = -1;
    if (out != INVALID_HANDLE_VALUE && err != INVALID_HANDLE_VALUE &&
        ::CreateProcessA(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                         &startup, &info)) {
        ::WaitForSingleObject(info.hProcess, INFINITE);
        DWORD status = 0;
        if (::GetExitCodeProcess(info.hProcess, &status))
            code = static_cast<int>(status);
        ::CloseHandle(info.hThread);
        ::CloseHandle(info.hProcess);
    }
    ::CloseHandle(out);
    ::CloseHandle(err);
    return {code, as_text(io.read("out")), as_text(io.read("err"))};
}

} // namespace korv::testing
