#include "kini_commands.h"

#include "KIniData_template_core.h"
#include "errtrace.h"

#include <ostream>
#include <string_view>

namespace korv::kini {

namespace {

constexpr const char* kUsage =
    "usage: kini COMMAND FILE [ARGUMENTS]\n"
    "\n"
    "Reads and changes an ini file as the configuration tool does: section and key\n"
    "names are case-sensitive, values are taken as they stand, saved files have\n"
    "their sections sorted and CR LF line endings.\n"
    "\n"
    "  kini cat FILE                        print the file as the container holds it\n"
    "  kini fmt FILE                        load and save the file\n"
    "  kini get FILE SECTION KEY            print the value of KEY\n"
    "  kini set FILE SECTION KEY VALUE      set KEY, adding section and key as needed\n"
    "  kini delete FILE SECTION [KEY]       delete KEY, or the whole SECTION\n"
    "  kini sections FILE                   print the section names, one a line\n"
    "  kini keys FILE SECTION               print the key names of SECTION, one a line\n"
    "  kini --help                          print this text\n"
    "\n"
    "FILE must exist, except for set, which creates it. A file that does not parse\n"
    "is never written.\n"
    "\n"
    "Exit codes: 0 success; 1 the section or key is not there; 2 a usage error, or a\n"
    "file that cannot be read, parsed or saved.\n";

using Handler = int (*)(const std::vector<std::string>&, std::ostream&, std::ostream&);

struct Command {
    const char* name;
    std::size_t min_args; // FILE included
    std::size_t max_args;
    Handler handler;
};

// What the container knows of a failure: its error text, or else the error trace.
void report(std::ostream& err, const std::string& file, const KIniData& ini) {
    if (!ini.error_text.empty()) {
        err << "kini: " << file << ": " << ini.error_text << '\n';
        return;
    }
    for (const std::string& line : diag::error_trace_lines())
        err << "kini: " << line << '\n';
}

// Opens FILE; only set may start from a file that is not there.
int load(KIniData& ini, const std::string& file, bool may_be_missing, std::ostream& err) {
    if (!ini.Open(file)) {
        report(err, file, ini);
        return KINI_EXIT_FAILURE;
    }
    if (ini.file_missing && !may_be_missing) {
        err << "kini: " << file << ": no such file\n";
        return KINI_EXIT_FAILURE;
    }
    return KINI_EXIT_OK;
}

int save(KIniData& ini, const std::string& file, std::ostream& err) {
    if (!ini.Save()) {
        report(err, file, ini);
        return KINI_EXIT_FAILURE;
    }
    return KINI_EXIT_OK;
}

int not_found(std::ostream& err, const std::string& file, const std::string& section,
              const std::string* key) {
    err << "kini: " << file << ": ";
    if (key)
        err << "no key \"" << *key << "\" in section [" << section << "]\n";
    else
        err << "no section [" << section << "]\n";
    return KINI_EXIT_NOT_FOUND;
}

bool has_line_break(std::string_view text) {
    return text.find_first_of("\r\n") != text.npos;
}

// Names and values that would come back differently, or not at all, when the
// saved file is read again. Empty if the triple can be written.
std::string unwritable(const std::string& section, const std::string& key,
                       const std::string& value) {
    if (has_line_break(section) || section.find(']') != std::string::npos)
        return "a section name cannot hold ']' or a line break";
    if (key.empty() || kini_is_blank(key.front()))
        return "a key must not be empty or start with a blank";
    if (is_comment_char(key.front()) || key.front() == '[')
        return std::string("a key cannot start with '") + key.front() + "'";
    if (has_line_break(key) || key.find('=') != std::string::npos)
        return "a key cannot hold '=' or a line break";
    if (has_line_break(value))
        return "a value cannot hold a line break";
    return {};
}

int cmd_cat(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    KIniData ini;
    if (const int code = load(ini, args[0], false, err))
        return code;
    out << ini;
    return KINI_EXIT_OK;
}

int cmd_fmt(const std::vector<std::string>& args, std::ostream&, std::ostream& err) {
    KIniData ini;
    if (const int code = load(ini, args[0], false, err))
        return code;
    return save(ini, args[0], err);
}

int cmd_get(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    KIniData ini;
    if (const int code = load(ini, args[0], false, err))
        return code;
    const KIniData::Section* section = ini.GetSection(args[1]);
    if (!section)
        return not_found(err, args[0], args[1], nullptr);
    std::string value;
    if (!section->GetStringEntry(args[2], value))
        return not_found(err, args[0], args[1], &args[2]);
    out << value << '\n';
    return KINI_EXIT_OK;
}

int cmd_set(const std::vector<std::string>& args, std::ostream&, std::ostream& err) {
    const std::string why = unwritable(args[1], args[2], args[3]);
    if (!why.empty()) {
        err << "kini: " << why << '\n';
        return KINI_EXIT_FAILURE;
    }
    KIniData ini;
    if (const int code = load(ini, args[0], true, err))
        return code;
    if (!ini.SetStringEntry(args[1], args[2], args[3])) {
        report(err, args[0], ini);
        return KINI_EXIT_FAILURE;
    }
    return save(ini, args[0], err);
}

int cmd_delete(const std::vector<std::string>& args, std::ostream&, std::ostream& err) {
    KIniData ini;
    if (const int code = load(ini, args[0], false, err))
        return code;
    if (!ini.HasSection(args[1]))
        return not_found(err, args[0], args[1], nullptr);
    if (args.size() == 3 && !ini.HasEntry(args[1], args[2]))
        return not_found(err, args[0], args[1], &args[2]);
    const bool deleted =
        args.size() == 3 ? ini.DeleteEntry(args[1], args[2]) : ini.DeleteSection(args[1]);
    if (!deleted) {
        report(err, args[0], ini);
        return KINI_EXIT_FAILURE;
    }
    return save(ini, args[0], err);
}

int cmd_sections(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    KIniData ini;
    if (const int code = load(ini, args[0], false, err))
        return code;
    for (const std::string& name : ini.GetSectionNames())
        out << name << '\n';
    return KINI_EXIT_OK;
}

int cmd_keys(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    KIniData ini;
    if (const int code = load(ini, args[0], false, err))
        return code;
    const KIniData::Section* section = ini.GetSection(args[1]);
    if (!section)
        return not_found(err, args[0], args[1], nullptr);
    for (const std::string& name : section->GetEntryNames())
        out << name << '\n';
    return KINI_EXIT_OK;
}

constexpr Command kCommands[] = {
    {"cat", 1, 1, cmd_cat},   {"fmt", 1, 1, cmd_fmt},       {"get", 3, 3, cmd_get},
    {"set", 4, 4, cmd_set},   {"delete", 2, 3, cmd_delete}, {"sections", 1, 1, cmd_sections},
    {"keys", 2, 2, cmd_keys},
};

int dispatch(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    if (args.size() == 1 && (args[0] == "--help" || args[0] == "-h")) {
        out << kUsage;
        return KINI_EXIT_OK;
    }
    for (const Command& command : kCommands) {
        if (args.empty() || args[0] != command.name)
            continue;
        const std::vector<std::string> rest(args.begin() + 1, args.end());
        if (rest.size() < command.min_args || rest.size() > command.max_args)
            break;
        return command.handler(rest, out, err);
    }
    err << kUsage;
    return KINI_EXIT_FAILURE;
}

} // namespace

int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    // Failures are told on standard error; nothing is left for the error log.
    KErrTrace_BeginContext();
    const int code = dispatch(args, out, err);
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    return code;
}

} // namespace korv::kini
