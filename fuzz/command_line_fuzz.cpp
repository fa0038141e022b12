// The program's command line: the input is one command line as the suite's
// tools start the program with, split by the Windows rules, then handed to the
// information request check and to the key parser. The input's lines are also
// quoted into a command line of their own, which must split back into them.
#include "application/CustomCommandLineInfo.h"
#include "application/information_request.h"
#include "fuzz_support.h"
#include "kplatform_process.h"

#include <cstdio>

namespace {

// An argument in the quoting the Windows rules undo: always in quotes, with
// backslashes doubled before a quote and at the end.
std::string quote(const std::string& argument) {
    std::string out = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '\\') {
            ++backslashes;
            continue;
        }
        if (c == '"')
            out.append(backslashes * 2 + 1, '\\');
        else
            out.append(backslashes, '\\');
        backslashes = 0;
        out += c;
    }
    out.append(backslashes * 2, '\\');
    return out + "\"";
}

std::FILE* sink() {
    static std::FILE* file = std::fopen("/dev/null", "w");
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const korv::fuzz::ErrTraceScope context;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> arguments = korv::platform::split_command_line(text);

    std::vector<char*> argv;
    std::vector<std::string> copies(arguments);
    for (std::string& argument : copies)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    (void)AnswerInformationRequest(static_cast<int>(argv.size() - 1), argv.data(), sink());

    static korv::ui::CWinApp app("RigCfg");
    app.m_arguments = arguments;
    CCustomCommandLineInfo info;
    app.ParseCommandLine(info);
    FUZZ_CHECK(info.m_file.find('"') == std::string::npos, "quotes left in file=");

    // Quoting by the rules and splitting again gives the arguments back.
    std::vector<std::string> lines;
    for (std::size_t at = 0; at <= text.size();) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos)
            end = text.size();
        lines.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    std::string command_line = "rigcfg";
    for (const std::string& line : lines) {
        if (line.find('\0') != std::string::npos)
            return 0;
        command_line += ' ' + quote(line);
    }
    const std::vector<std::string> split = korv::platform::split_command_line(command_line);
    FUZZ_CHECK(split.size() == lines.size() + 1, "%zu lines split into %zu arguments", lines.size(),
               split.size() - 1);
    for (std::size_t i = 0; i < lines.size(); ++i)
        FUZZ_CHECK(split[i + 1] == lines[i], "argument %zu split as \"%s\"", i,
                   split[i + 1].c_str());
    return 0;
}
