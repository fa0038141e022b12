#include "kplatform_profile.h"

#include "file_state.h"
#include "read_to_end.h"

#include "kplatform_file.h"
#include "kplatform_paths.h"
#include "kplatform_replace.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace korv::platform {
namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\v';
}

std::string_view trim_blanks(std::string_view text) {
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Names asked for lose their spaces only, as on Windows.
std::string_view trim_spaces(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i];
        char y = b[i];
        if (x >= 'A' && x <= 'Z')
            x = static_cast<char>(x | 0x20);
        if (y >= 'A' && y <= 'Z')
            y = static_cast<char>(y | 0x20);
        if (x != y)
            return false;
    }
    return true;
}

enum class Kind { Blank, Comment, Section, Entry };

// One line of the file; offsets into the text.
struct Line {
    std::size_t begin = 0;
    std::size_t end = 0;  // end of the content, before the line break
    std::size_t next = 0; // start of the next line
    Kind kind = Kind::Blank;
    std::string_view name;  // section or key name, trimmed
    std::string_view value; // entry value, trimmed, quotes still on
};

struct Profile {
    std::string text;
    std::vector<Line> lines;
};

void parse(Profile& profile) {
    const std::string_view text(profile.text);
    profile.lines.clear();
    std::size_t pos = 0;
    while (pos < text.size()) {
        Line line;
        line.begin = pos;
        std::size_t end = pos;
        while (end < text.size() && text[end] != '\r' && text[end] != '\n')
            ++end;
        line.end = end;
        if (end < text.size() && text[end++] == '\r' && end < text.size() && text[end] == '\n')
            ++end;
        line.next = end;
        pos = end;

        const std::string_view content =
            trim_blanks(text.substr(line.begin, line.end - line.begin));
        if (content.empty()) {
            line.kind = Kind::Blank;
        } else if (content.front() == '[') {
            line.kind = Kind::Section;
            std::string_view name = content.substr(1);
            name = name.substr(0, name.find(']'));
            line.name = trim_blanks(name);
        } else if (content.front() == ';') {
            line.kind = Kind::Comment;
        } else {
            line.kind = Kind::Entry;
            const std::size_t equals = content.find('=');
            line.name = trim_blanks(content.substr(0, equals));
            if (equals != std::string_view::npos)
                line.value = trim_blanks(content.substr(equals + 1));
        }
        profile.lines.push_back(line);
    }
}

// Index of the first line of the first section named `name`, or npos.
std::size_t find_section(const Profile& profile, std::string_view name) {
    for (std::size_t i = 0; i < profile.lines.size(); ++i)
        if (profile.lines[i].kind == Kind::Section &&
            equal_ignoring_case(profile.lines[i].name, name))
            return i;
    return std::string::npos;
}

// The lines of a section: from behind its header to the next header.
std::size_t section_end(const Profile& profile, std::size_t header) {
    std::size_t i = header + 1;
    while (i < profile.lines.size() && profile.lines[i].kind != Kind::Section)
        ++i;
    return i;
}

std::size_t find_entry(const Profile& profile, std::size_t header, std::string_view key) {
    const std::size_t end = section_end(profile, header);
    for (std::size_t i = header + 1; i < end; ++i)
        if (profile.lines[i].kind == Kind::Entry && equal_ignoring_case(profile.lines[i].name, key))
            return i;
    return std::string::npos;
}

std::string_view unquote(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

struct CacheEntry {
    std::string path;
    FileState state;
    std::shared_ptr<const Profile> profile;
};

// The few files read last; the catalogue reads each drive unit file a few
// times in a row.
constexpr std::size_t kCacheSize = 16;
std::mutex g_mutex;
std::list<CacheEntry> g_cache;

bool read_file(const std::string& native, std::string& text, FileState& state) {
    const int fd = ::open(native.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat st;
    if (::fstat(fd, &st) != 0 || S_ISDIR(st.st_mode)) {
        const int error = S_ISDIR(st.st_mode) ? EACCES : errno;
        ::close(fd);
        errno = error;
        return false;
    }
    state = FileState::of(st);
    text.clear();
    text.reserve(static_cast<std::size_t>(st.st_size));
    const bool read = read_to_end(fd, text);
    const int error = errno;
    ::close(fd);
    errno = error;
    return read;
}

// The file as it is now, parsed; null (errno set) if it can't be read.
std::shared_ptr<const Profile> load(const std::string& native) {
    std::lock_guard lock(g_mutex);
    struct stat st;
    if (::stat(native.c_str(), &st) != 0)
        return nullptr;
    const FileState now = FileState::of(st);
    for (auto it = g_cache.begin(); it != g_cache.end(); ++it) {
        if (it->path != native)
            continue;
        if (it->state == now) {
            g_cache.splice(g_cache.begin(), g_cache, it);
            return it->profile;
        }
        g_cache.erase(it);
        break;
    }
    auto profile = std::make_shared<Profile>();
    FileState state;
    if (!read_file(native, profile->text, state))
        return nullptr;
    parse(*profile);
    g_cache.push_front(CacheEntry{native, state, profile});
    if (g_cache.size() > kCacheSize)
        g_cache.pop_back();
    return profile;
}

void forget(const std::string& native) {
    std::lock_guard lock(g_mutex);
    for (auto it = g_cache.begin(); it != g_cache.end(); ++it) {
        if (it->path == native) {
            g_cache.erase(it);
            return;
        }
    }
}

DWORD copy_value(std::string_view value, char* buffer, DWORD size) {
    if (value.size() < size) {
        if (!value.empty())
            std::memcpy(buffer, value.data(), value.size());
        buffer[value.size()] = '\0';
        return static_cast<DWORD>(value.size());
    }
    if (size > 1)
        std::memcpy(buffer, value.data(), size - 1);
    buffer[size - 1] = '\0';
    set_last_error(ERANGE);
    return size - 1;
}

// Strings each with a NUL, and one more NUL behind the list. A list cut to
// fit keeps the first `size` - 2 bytes and ends in two NULs.
DWORD copy_list(const std::vector<std::string_view>& items, char* buffer, DWORD size) {
    if (size < 2) {
        buffer[0] = '\0';
        return 0;
    }
    std::string all;
    for (std::string_view item : items) {
        all.append(item);
        all += '\0';
    }
    if (all.size() + 1 <= size) {
        std::memcpy(buffer, all.data(), all.size());
        buffer[all.size()] = '\0';
        if (all.empty())
            buffer[1] = '\0';
        return static_cast<DWORD>(all.size());
    }
    std::memcpy(buffer, all.data(), size - 2);
    buffer[size - 2] = '\0';
    buffer[size - 1] = '\0';
    set_last_error(ERANGE);
    return size - 2;
}

bool ends_with_line_break(const std::string& text) {
    return text.empty() || text.back() == '\n' || text.back() == '\r';
}

// The new text of the file, or false if nothing changes.
bool change(const Profile& profile, std::string_view section, const char* key, const char* value,
            std::string& out) {
    const std::string& text = profile.text;
    const std::size_t header = find_section(profile, section);
    if (!key) {
        if (header == std::string::npos)
            return false;
        // The section goes, its comment lines stay.
        const std::size_t end = section_end(profile, header);
        out = text.substr(0, profile.lines[header].begin);
        for (std::size_t i = header + 1; i < end; ++i)
            if (profile.lines[i].kind == Kind::Comment)
                out.append(text, profile.lines[i].begin,
                           profile.lines[i].next - profile.lines[i].begin);
        if (end < profile.lines.size())
            out.append(text, profile.lines[end].begin, std::string::npos);
        return true;
    }
    const std::string_view name = trim_spaces(key);
    const std::size_t entry =
        header == std::string::npos ? std::string::npos : find_entry(profile, header, name);
    if (!value) {
        if (entry == std::string::npos)
            return false;
        out = text.substr(0, profile.lines[entry].begin);
        out.append(text, profile.lines[entry].next, std::string::npos);
        return true;
    }
    if (entry != std::string::npos) {
        // The key keeps its spelling and its line.
        const Line& line = profile.lines[entry];
        std::string replaced(line.name);
        replaced += '=';
        replaced += value;
        if (text.compare(line.begin, line.end - line.begin, replaced) == 0)
            return false;
        out = text.substr(0, line.begin);
        out += replaced;
        out.append(text, line.end, std::string::npos);
        return true;
    }
    std::string added(name);
    added += '=';
    added += value;
    added += "\r\n";
    if (header == std::string::npos) {
        out = text;
        if (!ends_with_line_break(out))
            out += "\r\n";
        out += '[';
        out += section;
        out += "]\r\n";
        out += added;
        return true;
    }
    // Behind the last key of the section, or behind its header.
    std::size_t after = header;
    for (std::size_t i = header + 1; i < section_end(profile, header); ++i)
        if (profile.lines[i].kind == Kind::Entry)
            after = i;
    const Line& line = profile.lines[after];
    out = text.substr(0, line.next);
    if (line.next == line.end)
        out += "\r\n"; // the last line of the file had no line break
    out += added;
    out.append(text, line.next, std::string::npos);
    return true;
}

} // namespace

DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* fallback,
                               char* buffer, DWORD size, const char* file) {
    if (!buffer || size == 0)
        return 0;
    set_last_error(0);
    std::shared_ptr<const Profile> profile;
    if (file && *file)
        profile = load(native_path(file));
    if (!profile)
        set_last_error(ENOENT);

    if (!section) {
        std::vector<std::string_view> names;
        if (profile)
            for (const Line& line : profile->lines)
                if (line.kind == Kind::Section)
                    names.push_back(line.name);
        return copy_list(names, buffer, size);
    }
    const std::size_t header =
        profile ? find_section(*profile, trim_spaces(section)) : std::string::npos;
    if (!key) {
        std::vector<std::string_view> names;
        if (header != std::string::npos) {
            const std::size_t end = section_end(*profile, header);
            for (std::size_t i = header + 1; i < end; ++i)
                if (profile->lines[i].kind == Kind::Entry)
                    names.push_back(profile->lines[i].name);
        }
        return copy_list(names, buffer, size);
    }
    if (header != std::string::npos) {
        const std::size_t entry = find_entry(*profile, header, trim_spaces(key));
        if (entry != std::string::npos)
            return copy_value(unquote(profile->lines[entry].value), buffer, size);
    }
    std::string_view text = fallback ? fallback : "";
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return copy_value(text, buffer, size);
}

BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                const char* file) {
    if (!section && !key && !value && !file) {
        std::lock_guard lock(g_mutex);
        g_cache.clear();
        return 0;
    }
    if (!section || !file || !*file) {
        set_last_error(EINVAL);
        return 0;
    }
    const std::string native = native_path(file);
    std::shared_ptr<const Profile> profile = load(native);
    if (!profile) {
        if (errno != ENOENT) {
            set_last_error(static_cast<std::uint32_t>(errno));
            return 0;
        }
        profile = std::make_shared<Profile>(); // a missing file is created
    }
    std::string text;
    if (!change(*profile, trim_spaces(section), key, value, text))
        return 1;
    forget(native);
    // Whole or not at all: a run killed here leaves the old file or the new one.
    if (!replace_file(native, text))
        return 0;
    set_last_error(0);
    return 1;
}

} // namespace korv::platform
