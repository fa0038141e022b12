// The ini container: parsing, from a file being opened or from a string.
#include "KIniData_template_core.h"

#include "KIniData_text.h"

#include "errtrace.h"
#include "fastfile.h"
#include "stl_utilities.h"

#include <memory>
#include <new>

namespace korv {

using kini_detail::first_non_blank;
using kini_detail::out_of_memory_text;
using kini_detail::to_text;

template <class Compare> bool KIniDataT<Compare>::read_lines(KFastFileReader& reader) {
    std::string line;
    bool first_line = true;
    do {
        if (!reader.ReadLine(line)) {
            KERRTRACE("KIniData::Open(): KFastFileReader::ReadLine() failed");
            return false;
        }
        if (first_line) {
            first_line = false;
            const int mark = detect_byte_order_mark(line.data(), line.size());
            if (mark == 1) {
                line.erase(0, 3);
            } else if (mark != 0) {
                set_error_text("UTF16/32 Unicode format not supported.");
                KERRTRACE("KIniData::Open(\"%.80s\"): UTF16/32 Unicode format not supported",
                          file_name.c_str());
                return false;
            }
        }
        if (line.empty() || line[0] == '\0')
            continue;
        if (!parse_line(line)) {
            KERRTRACE("KIniData::Open(): parse_line(%.60s) failed", line.c_str());
            return false;
        }
    } while (!reader.IsEOF());
    if (!place_pending_lines()) {
        KERRTRACE("KIniData::Open(): parse_line(%.60s) failed", line.c_str());
        return false;
    }
    return true;
}

// While a load fills a section, its lines wait here and go into its line_vec
// when the section ends, with one allocation of the right size instead of a
// vector that grows and leaves its earlier buffers behind.
template <class Compare> bool KIniDataT<Compare>::place_pending_lines() {
    if (pending_lines.empty())
        return true;
    std::vector<KIniDataLine*>& lines = current_section->line_vec;
    try {
        lines.reserve(lines.size() + pending_lines.size());
    } catch (const std::bad_alloc&) {
        // Lines without a place can't stay: out of the index, and deleted.
        auto& index = current_section->entry_map;
        for (KIniDataLine* line : pending_lines) {
            for (auto it = index.begin(); it != index.end(); ++it) {
                if (it->second == line) {
                    current_section->unindex_entry(it);
                    break;
                }
            }
            delete line;
        }
        pending_lines.clear();
        set_error_text("out of memory (%s)", out_of_memory_text());
        KERRTRACE("KIniData::parse_line(): new KIniDataLine() failed: %.50s", out_of_memory_text());
        return false;
    }
    lines.insert(lines.end(), pending_lines.begin(), pending_lines.end());
    pending_lines.clear();
    return true;
}

template <class Compare> bool KIniDataT<Compare>::SetContentString(std::string_view text) {
    delete_all();
    in_sync = false;
    // Unlike Open, empty lines are kept here.
    for (const std::string& line : split_lines(text)) {
        if (!parse_line(line)) {
            place_pending_lines();
            KERRTRACE("KIniData::SetContentString(): parse_line() failed");
            return false;
        }
    }
    if (!place_pending_lines()) {
        KERRTRACE("KIniData::SetContentString(): parse_line() failed");
        return false;
    }
    return true;
}

template <class Compare> bool KIniDataT<Compare>::parse_line(std::string_view line) {
    const std::size_t first = first_non_blank(line);
    if (first == 0 && !line.empty() && line[0] == '[')
        return parse_section_header(line);
    if (first == line.size() || is_comment_char(line[first])) {
        try {
            std::unique_ptr<KIniDataLine> plain(new (arena_for_lines()) KIniDataLine(line));
            (current_section ? pending_lines : line_vec).push_back(plain.get());
            plain.release();
        } catch (const std::bad_alloc&) {
            set_error_text("out of memory (%s)", out_of_memory_text());
            KERRTRACE("KIniData::parse_line(): new KIniDataLine() failed: %.50s",
                      out_of_memory_text());
            return false;
        }
        return true;
    }
    if (!current_section) {
        set_error_text("Possible entry \"%s\" found before first section", to_text(line).c_str());
        KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
        return false;
    }
    return parse_entry(line, first);
}

template <class Compare> bool KIniDataT<Compare>::parse_section_header(std::string_view line) {
    if (!place_pending_lines())
        return false;
    const std::size_t close = line.find(']', 1);
    if (close == std::string_view::npos) {
        set_error_text("no matching ']' found in \"%.50s\"", to_text(line).c_str());
        KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
        return false;
    }
    const std::string_view name = line.substr(1, close - 1);
    auto it = section_map.lower_bound(name);
    if (it != section_map.end() && !Compare()(name, it->first)) {
        if (!(flags & KINI_REPLACE_SECTIONS)) {
            set_error_text("Section [%s] seen twice", to_text(name).c_str());
            KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
            return false;
        }
        if (!DeleteSection(name)) {
            set_error_text("Section [%s] deleting previous version failed", to_text(name).c_str());
            KERRTRACE("KIniData::parse_line(): DeleteSection() failed");
            return false;
        }
        it = section_map.lower_bound(name);
    }
    try {
        KIniDataArena* arena = arena_for_lines();
        std::unique_ptr<Section> section(new (arena) Section(line, arena));
        section_map.emplace_hint(it, std::string(name), section.get());
        current_section = section.release();
    } catch (const std::bad_alloc&) {
        set_error_text("out of memory (%s)", out_of_memory_text());
        KERRTRACE("KIniData::parse_line(): new KIniDataSectionT() failed: %.50s",
                  out_of_memory_text());
        return false;
    }
    return true;
}

template <class Compare>
bool KIniDataT<Compare>::parse_entry(std::string_view line, std::size_t first) {
    Section* section = current_section;
    const bool relaxed = flags & (KINI_RELAXED_LINES | KINI_REPLACE_SECTIONS);
    const std::size_t eq = line.find('=');
    std::string_view name;
    std::size_t value_pos = 0;
    if (eq == std::string_view::npos) {
        if (!relaxed) {
            set_error_text("No '=' found in \"%.50s\" in section %s", to_text(line).c_str(),
                           section->line.c_str());
            KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
            return false;
        }
        // The whole line is the name, and its value.
        name = kini_trim_right(line.substr(first));
    } else if (eq == first) {
        if (!relaxed) {
            set_error_text("No entry name found before '=' in \"%s\" in section %s",
                           to_text(line).c_str(), section->line.c_str());
            KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
            return false;
        }
        value_pos = eq + 1;
    } else {
        name = kini_trim_right(line.substr(first, eq - first));
        value_pos = eq + 1;
    }
    auto it = section->entry_map.lower_bound(name);
    if (it != section->entry_map.end() && !Compare()(name, it->first)) {
        if (!(flags & KINI_REPLACE_ENTRIES)) {
            set_error_text("Entry \"%s\" seen twice in section %s", to_text(name).c_str(),
                           section->line.c_str());
            KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
            return false;
        }
        // The walk of DeleteEntry needs every line in place.
        if (!place_pending_lines())
            return false;
        if (!section->DeleteEntry(name)) {
            set_error_text("Entry \"%s\" deleting previous version failed", to_text(name).c_str());
            KERRTRACE("KIniData::parse_line(): DeleteEntry() failed");
            return false;
        }
        it = section->entry_map.lower_bound(name);
    }
    try {
        std::unique_ptr<KIniDataEntry> entry(new (arena_for_lines())
                                                 KIniDataEntry(line, value_pos));
        pending_lines.push_back(entry.get());
        try {
            section->index_entry(it, name, entry.get());
        } catch (const std::bad_alloc&) {
            pending_lines.pop_back();
            throw;
        }
        entry.release();
    } catch (const std::bad_alloc&) {
        set_error_text("out of memory (%s)", out_of_memory_text());
        KERRTRACE("KIniData::parse_line(): new KIniDataEntry() failed: %.50s",
                  out_of_memory_text());
        return false;
    }
    return true;
}

template bool KIniData::read_lines(KFastFileReader&);
template bool KIniData::place_pending_lines();
template bool KIniData::SetContentString(std::string_view);
template bool KIniData::parse_line(std::string_view);
template bool KIniData::parse_section_header(std::string_view);
template bool KIniData::parse_entry(std::string_view, std::size_t);

} // namespace korv
