#include "kplatform_regfile.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace korv::platform::regfile {
namespace {

constexpr DWORD kTypeExpandSz = 2;
constexpr DWORD kTypeMultiSz = 7;
constexpr DWORD kTypeSz = 1;
constexpr DWORD kTypeBinary = 3;
constexpr DWORD kTypeDword = 4;

constexpr std::string_view kHeader5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kHeader4 = "REGEDIT4";

constexpr std::array<std::string_view, 5> kRoots = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",
                                                    "HKEY_LOCAL_MACHINE", "HKEY_USERS",
                                                    "HKEY_CURRENT_CONFIG"};

char fold(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c | 0x20) : c;
}

bool equal_ignoring_case(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (fold(a[i]) != fold(b[i]))
            return false;
    return true;
}

bool starts_with_ignoring_case(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           equal_ignoring_case(text.substr(0, prefix.size()), prefix);
}

// True if `path` lies somewhere below `ancestor`.
bool below(std::string_view path, std::string_view ancestor) {
    return path.size() > ancestor.size() && path[ancestor.size()] == '\\' &&
           starts_with_ignoring_case(path, ancestor);
}

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    c = fold(c);
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

// 1 to 8 hex digits, the whole of `text`.
bool parse_hex_number(std::string_view text, DWORD& value) {
    if (text.empty() || text.size() > 8)
        return false;
    value = 0;
    for (char c : text) {
        const int digit = hex_digit(c);
        if (digit < 0)
            return false;
        value = value * 16 + static_cast<DWORD>(digit);
    }
    return true;
}

// Text in double quotes at the start of `text`, with \\ and \" unescaped; a
// backslash before any other character stays as it is. Leaves `text` behind
// the closing quote.
bool parse_quoted(std::string_view& text, std::string& out) {
    if (text.empty() || text.front() != '"')
        return false;
    out.clear();
    for (std::size_t i = 1; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            text.remove_prefix(i + 1);
            return true;
        }
        if (c == '\\' && i + 1 < text.size() && (text[i + 1] == '\\' || text[i + 1] == '"')) {
            out += text[++i];
            continue;
        }
        out += c;
    }
    return false;
}

void append_quoted(std::string& out, std::string_view text) {
    out += '"';
    for (char c : text) {
        if (c == '\\' || c == '"')
            out += '\\';
        out += c;
    }
    out += '"';
}

// UTF-16LE text as single bytes, as the ANSI calls see it: a character
// beyond one byte becomes '?'.
std::string narrow_utf16(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const unsigned unit =
            static_cast<unsigned char>(bytes[i]) |
            (static_cast<unsigned>(static_cast<unsigned char>(bytes[i + 1])) << 8);
        out += unit < 0x100 ? static_cast<char>(unit) : '?';
    }
    return out;
}

std::string widen_utf16(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() * 2);
    for (char c : bytes) {
        out += c;
        out += '\0';
    }
    return out;
}

// Reads the file line by line; CR LF, LF and a lone CR end a line.
class Lines {
public:
    explicit Lines(std::string_view text) : m_text(text) {}

    bool next(std::string_view& line) {
        if (m_pos >= m_text.size())
            return false;
        std::size_t end = m_pos;
        while (end < m_text.size() && m_text[end] != '\n' && m_text[end] != '\r')
            ++end;
        line = m_text.substr(m_pos, end - m_pos);
        if (end < m_text.size() && m_text[end++] == '\r' && end < m_text.size() &&
            m_text[end] == '\n')
            ++end;
        m_pos = end;
        ++m_number;
        return true;
    }
    unsigned number() const { return m_number; }

private:
    std::string_view m_text;
    std::size_t m_pos = 0;
    unsigned m_number = 0;
};

// The key path of a "[...]" line with its root spelled canonically, or a
// reason why it isn't one.
bool parse_key_path(std::string_view text, std::string& path, std::string& reason) {
    const std::size_t slash = text.find('\\');
    const std::string_view root = canonical_root(text.substr(0, slash));
    if (root.empty()) {
        reason = "unknown root key \"" + std::string(text.substr(0, slash)) + "\"";
        return false;
    }
    path.assign(root);
    if (slash == std::string_view::npos)
        return true;
    std::string_view rest = text.substr(slash + 1);
    while (!rest.empty() && rest.back() == '\\')
        rest.remove_suffix(1);
    std::size_t at = 0;
    while (at <= rest.size() && !rest.empty()) {
        std::size_t end = rest.find('\\', at);
        if (end == std::string_view::npos)
            end = rest.size();
        if (end == at) {
            reason = "empty key name in \"" + std::string(text) + "\"";
            return false;
        }
        path += '\\';
        path.append(rest.substr(at, end - at));
        at = end + 1;
        if (end == rest.size())
            break;
    }
    return true;
}

// "xx,xx,..." with optional blanks; a trailing comma is tolerated.
bool parse_hex_bytes(std::string_view text, std::string& out) {
    out.clear();
    text = trim(text);
    std::size_t at = 0;
    while (at < text.size()) {
        std::size_t end = text.find(',', at);
        if (end == std::string_view::npos)
            end = text.size();
        DWORD byte = 0;
        const std::string_view item = trim(text.substr(at, end - at));
        if (item.size() > 2 || !parse_hex_number(item, byte))
            return false;
        out += static_cast<char>(byte);
        at = end + 1;
    }
    return true;
}

class Parser {
public:
    Parser(std::string_view text, Registry& out) : m_lines(text), m_out(out) {}

    bool run(unsigned& line, std::string& reason) {
        const bool ok = parse_all();
        line = m_lines.number();
        reason = m_reason;
        return ok;
    }

private:
    bool fail(std::string reason) {
        m_reason = std::move(reason);
        return false;
    }

    bool parse_all() {
        std::string_view line;
        bool header = false;
        while (m_lines.next(line)) {
            const std::string_view text = trim(line);
            if (text.empty())
                continue;
            if (!header) {
                if (text == kHeader5)
                    m_out.regedit4 = false;
                else if (text == kHeader4)
                    m_out.regedit4 = true;
                else
                    return fail(
                        "no \"Windows Registry Editor Version 5.00\" or \"REGEDIT4\" header");
                header = true;
                continue;
            }
            if (text.front() == ';')
                continue;
            if (text.front() == '[') {
                if (!parse_key_line(text))
                    return false;
                continue;
            }
            if (text.front() == '"' || text.front() == '@') {
                if (!parse_value_line(text))
                    return false;
                continue;
            }
            return fail("unrecognised line");
        }
        // A file with nothing in it at all is an empty registry.
        return true;
    }

    bool parse_key_line(std::string_view text) {
        if (text.back() != ']')
            return fail("key line without closing ']'");
        text = text.substr(1, text.size() - 2);
        const bool remove = !text.empty() && text.front() == '-';
        if (remove)
            text.remove_prefix(1);
        std::string path;
        if (!parse_key_path(text, path, m_reason))
            return false;
        if (remove) {
            m_out.remove_tree(path);
            m_key = nullptr;
            return true;
        }
        // Keys above it that have no line of their own stay so; they exist all the same.
        m_key = m_out.find(path);
        if (!m_key)
            m_key = &m_out.append(std::move(path));
        return true;
    }

    bool parse_value_line(std::string_view text) {
        if (!m_key)
            return fail("value outside of a key");
        std::string name;
        if (text.front() == '@') {
            text.remove_prefix(1);
        } else if (!parse_quoted(text, name)) {
            return fail("value name without closing quote");
        }
        text = trim(text);
        if (text.empty() || text.front() != '=')
            return fail("no '=' behind the value name");
        text = trim(text.substr(1));

        Value value;
        value.name = std::move(name);
        if (!text.empty() && text.front() == '"') {
            std::string data;
            if (!parse_quoted(text, data))
                return fail("string value without closing quote");
            if (!trim(text).empty())
                return fail("text behind a string value");
            value.type = kTypeSz;
            value.data = std::move(data);
            value.data += '\0';
        } else if (text == "-") {
            remove_value(value.name);
            return true;
        } else if (starts_with_ignoring_case(text, "dword:")) {
            DWORD number = 0;
            if (!parse_hex_number(text.substr(6), number))
                return fail("dword value that isn't 1 to 8 hex digits");
            value.type = kTypeDword;
            for (int i = 0; i < 4; ++i)
                value.data += static_cast<char>((number >> (8 * i)) & 0xFF);
        } else if (starts_with_ignoring_case(text, "hex")) {
            if (!parse_hex_value(text.substr(3), value))
                return false;
        } else {
            return fail("unrecognised value data");
        }
        if (Value* old = m_key->find_value(value.name))
            *old = std::move(value);
        else
            m_key->values.push_back(std::move(value));
        return true;
    }

    bool parse_hex_value(std::string_view text, Value& value) {
        value.type = kTypeBinary;
        if (!text.empty() && text.front() == '(') {
            const std::size_t close = text.find(')');
            if (close == std::string_view::npos ||
                !parse_hex_number(text.substr(1, close - 1), value.type))
                return fail("hex value with a bad type");
            text.remove_prefix(close + 1);
        }
        if (text.empty() || text.front() != ':')
            return fail("hex value without ':'");
        text.remove_prefix(1);

        std::string list(text);
        std::string_view next;
        for (;;) {
            std::string_view tail = trim(list);
            if (tail.empty() || tail.back() != '\\')
                break;
            list.resize(static_cast<std::size_t>(tail.data() - list.data()) + tail.size() - 1);
            if (!m_lines.next(next))
                return fail("hex value continued past the end of the file");
            list.append(trim(next));
        }
        if (!parse_hex_bytes(list, value.data))
            return fail("hex value with bad bytes");
        if (!m_out.regedit4 && (value.type == kTypeExpandSz || value.type == kTypeMultiSz) &&
            value.data.size() % 2 == 0)
            value.data = narrow_utf16(value.data);
        return true;
    }

    void remove_value(const std::string& name) {
        auto& values = m_key->values;
        values.erase(
            std::remove_if(values.begin(), values.end(),
                           [&](const Value& v) { return equal_ignoring_case(v.name, name); }),
            values.end());
    }

    Lines m_lines;
    Registry& m_out;
    // Stays valid until the next key line, as only key lines add keys.
    Key* m_key = nullptr;
    std::string m_reason;
};

bool plain_string(const Value& value) {
    if (value.type != kTypeSz || value.data.empty() || value.data.back() != '\0')
        return false;
    const std::string_view text(value.data.data(), value.data.size() - 1);
    return text.find_first_of(std::string_view("\0\r\n", 3)) == std::string_view::npos;
}

void append_hex(std::string& out, std::size_t line_start, std::string_view bytes) {
    static constexpr char digits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i > 0) {
            out += ',';
            // The registry editor keeps its lines within 80 columns.
            if (out.size() - line_start > 76) {
                out += "\\\r\n  ";
                line_start = out.size() - 2;
            }
        }
        const auto byte = static_cast<unsigned char>(bytes[i]);
        out += digits[byte >> 4];
        out += digits[byte & 0x0F];
    }
}

} // namespace

std::string lower(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        c = fold(c);
    return out;
}

std::string_view canonical_root(std::string_view name) {
    for (std::string_view root : kRoots)
        if (equal_ignoring_case(root, name))
            return root;
    return {};
}

Value* Key::find_value(std::string_view name) {
    for (Value& value : values)
        if (equal_ignoring_case(value.name, name))
            return &value;
    return nullptr;
}

const Value* Key::find_value(std::string_view name) const {
    return const_cast<Key*>(this)->find_value(name);
}

const Key* Registry::find(std::string_view path) const {
    const auto it = m_index.find(lower(path));
    return it == m_index.end() ? nullptr : &m_keys[it->second];
}

Key* Registry::find(std::string_view path) {
    const auto it = m_index.find(lower(path));
    return it == m_index.end() ? nullptr : &m_keys[it->second];
}

bool Registry::exists(std::string_view path) const {
    if (path.find('\\') == std::string_view::npos)
        return !canonical_root(path).empty();
    return find(path) || has_sub_keys(path);
}

bool Registry::has_sub_keys(std::string_view path) const {
    for (const Key& key : m_keys)
        if (below(key.path, path))
            return true;
    return false;
}

std::vector<std::string> Registry::sub_keys(std::string_view path) const {
    std::vector<std::string> names;
    for (const Key& key : m_keys) {
        if (!below(key.path, path))
            continue;
        std::string_view name = std::string_view(key.path).substr(path.size() + 1);
        name = name.substr(0, name.find('\\'));
        const bool seen = std::any_of(names.begin(), names.end(), [&](const std::string& known) {
            return equal_ignoring_case(known, name);
        });
        if (!seen)
            names.emplace_back(name);
    }
    return names;
}

bool Registry::create(std::string_view path, Key*& key) {
    bool added = false;
    std::size_t end = 0;
    do {
        end = path.find('\\', end + 1);
        const std::string_view level = path.substr(0, end);
        if (level.size() < path.size() && level.find('\\') == std::string_view::npos)
            continue; // the root above the key needs no section
        if (!find(level)) {
            insert(std::string(level));
            added = true;
        }
    } while (end != std::string_view::npos);
    key = find(path);
    return added;
}

Key& Registry::append(std::string path) {
    m_index.emplace(lower(path), m_keys.size());
    m_keys.push_back(Key{std::move(path), {}});
    return m_keys.back();
}

Key& Registry::insert(std::string path) {
    // A new key goes behind the last key of its parent's subtree, so that a
    // subtree stays together in the file.
    const std::size_t slash = path.rfind('\\');
    if (slash == std::string::npos)
        return append(std::move(path));
    const std::string_view parent = std::string_view(path).substr(0, slash);
    std::size_t position = m_keys.size();
    for (std::size_t i = m_keys.size(); i-- > 0;) {
        if (equal_ignoring_case(m_keys[i].path, parent) || below(m_keys[i].path, parent)) {
            position = i + 1;
            break;
        }
    }
    if (position == m_keys.size())
        return append(std::move(path));
    m_keys.insert(m_keys.begin() + static_cast<std::ptrdiff_t>(position), Key{std::move(path), {}});
    reindex();
    return m_keys[position];
}

void Registry::remove(std::string_view path) {
    const auto it = m_index.find(lower(path));
    if (it == m_index.end())
        return;
    m_keys.erase(m_keys.begin() + static_cast<std::ptrdiff_t>(it->second));
    reindex();
}

void Registry::remove_tree(std::string_view path) {
    const std::string doomed(path);
    m_keys.erase(std::remove_if(m_keys.begin(), m_keys.end(),
                                [&](const Key& key) {
                                    return equal_ignoring_case(key.path, doomed) ||
                                           below(key.path, doomed);
                                }),
                 m_keys.end());
    reindex();
}

void Registry::reindex() {
    m_index.clear();
    for (std::size_t i = 0; i < m_keys.size(); ++i)
        m_index.emplace(lower(m_keys[i].path), i);
}

bool parse(std::string_view text, Registry& out, unsigned& line, std::string& reason) {
    std::string decoded;
    if (text.size() >= 2 && static_cast<unsigned char>(text[0]) == 0xFF &&
        static_cast<unsigned char>(text[1]) == 0xFE) {
        if (text.size() % 2 != 0) {
            line = 0;
            reason = "UTF-16 text of odd length";
            return false;
        }
        decoded = narrow_utf16(text.substr(2));
        text = decoded;
    } else if (text.size() >= 3 && text.substr(0, 3) == "\xEF\xBB\xBF") {
        text.remove_prefix(3);
    }
    return Parser(text, out).run(line, reason);
}

std::string serialise(const Registry& registry) {
    std::string out(registry.regedit4 ? kHeader4 : kHeader5);
    out += "\r\n\r\n";
    for (const Key& key : registry.keys()) {
        out += '[';
        out += key.path;
        out += "]\r\n";
        for (const Value& value : key.values) {
            const std::size_t line_start = out.size();
            if (value.name.empty())
                out += '@';
            else
                append_quoted(out, value.name);
            out += '=';
            if (plain_string(value)) {
                append_quoted(out, std::string_view(value.data.data(), value.data.size() - 1));
            } else if (value.type == kTypeDword && value.data.size() == 4) {
                DWORD number = 0;
                for (int i = 3; i >= 0; --i)
                    number = (number << 8) |
                             static_cast<unsigned char>(value.data[static_cast<std::size_t>(i)]);
                char text[16];
                std::snprintf(text, sizeof text, "dword:%08x", number);
                out += text;
            } else {
                if (value.type == kTypeBinary) {
                    out += "hex:";
                } else {
                    char text[24];
                    std::snprintf(text, sizeof text, "hex(%x):", value.type);
                    out += text;
                }
                const bool wide = !registry.regedit4 &&
                                  (value.type == kTypeExpandSz || value.type == kTypeMultiSz);
                append_hex(out, line_start, wide ? widen_utf16(value.data) : value.data);
            }
            out += "\r\n";
        }
        out += "\r\n";
    }
    return out;
}

} // namespace korv::platform::regfile
