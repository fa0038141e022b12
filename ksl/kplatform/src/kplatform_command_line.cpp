#include "command_line.h"
#include "kplatform_process.h"

namespace korv::platform {

void split_arguments(std::string_view text, std::vector<std::string>& out) {
    std::size_t i = 0;
    const std::size_t n = text.size();
    for (;;) {
        while (i < n && is_blank(text[i]))
            ++i;
        if (i >= n)
            return;
        std::string arg;
        bool quoted = false;
        while (i < n && (quoted || !is_blank(text[i]))) {
            const char c = text[i];
            if (c == '\\') {
                std::size_t count = 0;
                while (i + count < n && text[i + count] == '\\')
                    ++count;
                i += count;
                if (i < n && text[i] == '"') {
                    arg.append(count / 2, '\\');
                    if (count % 2 == 1) {
                        arg += '"';
                        ++i;
                    }
                } else {
                    arg.append(count, '\\');
                }
                continue;
            }
            if (c == '"') {
                if (quoted && i + 1 < n && text[i + 1] == '"') {
                    arg += '"';
                    quoted = false;
                    i += 2;
                    continue;
                }
                quoted = !quoted;
                ++i;
                continue;
            }
            arg += c;
            ++i;
        }
        out.push_back(std::move(arg));
    }
}

std::vector<std::string> split_command_line(std::string_view command_line) {
    std::vector<std::string> args;
    std::string program;
    std::size_t i = 0;
    bool quoted = false;
    for (; i < command_line.size(); ++i) {
        const char c = command_line[i];
        if (c == '"') {
            quoted = !quoted;
            continue;
        }
        if (!quoted && is_blank(c))
            break;
        program += c;
    }
    args.push_back(std::move(program));
    split_arguments(command_line.substr(i), args);
    return args;
}

} // namespace korv::platform
