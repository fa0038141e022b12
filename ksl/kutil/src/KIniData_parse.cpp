// The ini container: parsing, from a file being opened or from a string.
#include "KIniData_template_core.h"

#include "KIniData_text.h"

#include "errtrace.h"
#include "fastfile.h"
#include "stl_utilities.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

namespace korv {

using kini_detail::first_non_blank;
using kini_detail::out_of_memory_text;
using kini_detail::to_text;

namespace {

// A file is read in blocks that grow to this size; the lines view them.
constexpr std::size_t kFirstTextBlock = 16 * 1024;
constexpr std::size_t kLargestTextBlock = 1024 * 1024;

// The first eight bytes of a name as a number, zero-padded: numbers that differ
// order as the names do, so most comparisons of a sort end here.
std::uint64_t name_head(std::string_view name) {
    unsigned char bytes[8] = {};
    if (!name.empty())
        std::memcpy(bytes, name.data(), name.size() < 8 ? name.size() : 8);
    std::uint64_t head = 0;
    for (unsigned char byte : bytes)
        head = head << 8 | byte;
    return head;
}

} // namespace

template <class Compare> bool KIniDataT<Compare>::read_lines(KFastFileReader& reader) {
    first_line = true;
    std::size_t block_size = kFirstTextBlock;
    const char* held = nullptr; // an unfinished line at the end of the last block
    std::size_t held_size = 0;
    char* unused = nullptr; // the last block, if it held no whole line
    for (;;) {
        std::size_t room = block_size;
        while (room < 2 * held_size)
            room *= 2;
        char* block = nullptr;
        try {
            block = arena_for_lines()->allocate_text(room + 1); // + the NUL of a last line
        } catch (const std::bad_alloc&) {
            set_error_text("out of memory (%s)", out_of_memory_text());
            KERRTRACE("KIniData::parse_line(): new KIniDataLine() failed: %.50s",
                      out_of_memory_text());
            KERRTRACE("KIniData::Open(): KFastFileReader::ReadLine() failed");
            return false;
        }
        if (held_size > 0)
            std::memcpy(block, held, held_size);
        if (unused)
            line_arena->free_text(unused);
        const std::size_t want = room - held_size;
        const std::int64_t got = reader.Read(block + held_size, want);
        if (got < 0) {
            // A repeated name before this point would have ended the load there.
            if (!close_section()) {
                KERRTRACE("KIniData::Open(): parse_line(%.60s) failed", failed_line.data());
                return false;
            }
            KERRTRACE("KIniData::Open(): KFastFileReader::ReadLine() failed");
            return false;
        }
        const bool at_end = static_cast<std::size_t>(got) < want;
        char* const end = block + held_size + got;
        char* start = block;
        for (;;) {
            char* const stop = const_cast<char*>(KFastFile_FindLineEnd(start, end));
            if (stop == end)
                break;
            char* next = stop + 1;
            if (*stop == '\r') {
                // The LF of a CR LF pair may come with the next block.
                if (next == end && !at_end)
                    break;
                if (next != end && *next == '\n')
                    ++next;
            }
            *stop = '\0';
            if (!take_line({start, static_cast<std::size_t>(stop - start)}))
                return false;
            start = next;
        }
        if (at_end) {
            *end = '\0';
            if (start != end && !take_line({start, static_cast<std::size_t>(end - start)}))
                return false;
            break;
        }
        held = start;
        held_size = static_cast<std::size_t>(end - start);
        unused = start == block ? block : nullptr;
        if (block_size < kLargestTextBlock)
            block_size *= 2;
    }
    if (!close_section()) {
        KERRTRACE("KIniData::Open(): parse_line(%.60s) failed", failed_line.data());
        return false;
    }
    return true;
}

// One line of a file, NUL-terminated where it lies.
template <class Compare> bool KIniDataT<Compare>::take_line(std::string_view line) {
    if (first_line) {
        first_line = false;
        const int mark = detect_byte_order_mark(line.data(), line.size());
        if (mark == 1) {
            line.remove_prefix(3);
        } else if (mark != 0) {
            set_error_text("UTF16/32 Unicode format not supported.");
            KERRTRACE("KIniData::Open(\"%.80s\"): UTF16/32 Unicode format not supported",
                      file_name.c_str());
            return false;
        }
    }
    if (line.empty() || line[0] == '\0')
        return true;
    failed_line = {};
    if (!parse_line(line)) {
        if (!failed_line.data())
            failed_line = line;
        KERRTRACE("KIniData::Open(): parse_line(%.60s) failed", failed_line.data());
        return false;
    }
    return true;
}

template <class Compare> bool KIniDataT<Compare>::close_section() {
    bool closed = true;
    if (!pending_entries.empty()) {
        Section* section = current_section;
        std::sort(pending_entries.begin(), pending_entries.end(),
                  [](const PendingEntry& a, const PendingEntry& b) {
                      if (a.head != b.head)
                          return a.head < b.head;
                      if (Compare()(a.name, b.name))
                          return true;
                      if (Compare()(b.name, a.name))
                          return false;
                      return a.place < b.place;
                  });
        // The first line, in file order, whose name an earlier line has.
        std::size_t repeat = pending_lines.size();
        std::string_view repeat_name;
        for (std::size_t i = 1; i < pending_entries.size(); ++i) {
            const PendingEntry& a = pending_entries[i - 1];
            const PendingEntry& b = pending_entries[i];
            if (a.head == b.head && !Compare()(a.name, b.name) && b.place < repeat) {
                repeat = b.place;
                repeat_name = b.name;
            }
        }
        typename Section::EntryMap::items_type items;
        try {
            items.reserve(pending_entries.size());
            for (const PendingEntry& pending : pending_entries)
                if (pending.place < repeat)
                    items.emplace_back(pending.name, pending.entry);
            if (section->entry_map.empty()) {
                section->entry_map.assign_sorted(std::move(items));
            } else {
                for (const auto& [name, entry] : items)
                    section->index_loaded_entry(section->entry_map.lower_bound(name), name, entry);
            }
        } catch (const std::bad_alloc&) {
            // Entries without an index can't stay.
            for (const PendingEntry& pending : pending_entries) {
                pending_lines[pending.place] = nullptr;
                delete pending.entry;
            }
            std::erase(pending_lines, nullptr);
            pending_entries.clear();
            set_error_text("out of memory (%s)", out_of_memory_text());
            KERRTRACE("KIniData::parse_line(): new KIniDataEntry() failed: %.50s",
                      out_of_memory_text());
            place_pending_lines();
            return false;
        }
        pending_entries.clear();
        if (repeat < pending_lines.size()) {
            failed_line = pending_lines[repeat]->line;
            set_error_text("Entry \"%s\" seen twice in section %s", to_text(repeat_name).c_str(),
                           section->line.c_str());
            KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
            // The load would have stopped at that line.
            for (std::size_t i = repeat; i < pending_lines.size(); ++i)
                delete pending_lines[i];
            pending_lines.resize(repeat);
            closed = false;
        }
    }
    return place_pending_lines() && closed;
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
    text = text.substr(0, text.find('\0'));
    if (text.empty())
        return true;
    // The lines view one copy of the text, as they view a loaded file.
    char* copy = nullptr;
    try {
        copy = arena_for_lines()->allocate_text(text.size() + 1);
    } catch (const std::bad_alloc&) {
        set_error_text("out of memory (%s)", out_of_memory_text());
        KERRTRACE("KIniData::parse_line(): new KIniDataLine() failed: %.50s", out_of_memory_text());
        KERRTRACE("KIniData::SetContentString(): parse_line() failed");
        return false;
    }
    std::memcpy(copy, text.data(), text.size());
    char* const end = copy + text.size();
    *end = '\0';
    // Unlike Open, empty lines are kept here.
    for (char* start = copy; start != end;) {
        char* const stop = const_cast<char*>(KFastFile_FindLineEnd(start, end));
        char* next = stop;
        if (stop != end) {
            next = stop + 1;
            if (*stop == '\r' && next != end && *next == '\n')
                ++next;
            *stop = '\0';
        }
        if (!parse_line({start, static_cast<std::size_t>(stop - start)})) {
            close_section();
            KERRTRACE("KIniData::SetContentString(): parse_line() failed");
            return false;
        }
        start = next;
    }
    if (!close_section()) {
        KERRTRACE("KIniData::SetContentString(): parse_line() failed");
        return false;
    }
    return true;
}

// `line` lies in text that the arena holds, with a NUL behind it: the lines
// made from it view it. Every failure first closes the section, so that a
// repeated name earlier in it fails first, as it comes first.
template <class Compare> bool KIniDataT<Compare>::parse_line(std::string_view line) {
    const std::size_t first = first_non_blank(line);
    if (first == 0 && !line.empty() && line[0] == '[')
        return parse_section_header(line);
    if (first == line.size() || is_comment_char(line[first])) {
        try {
            std::unique_ptr<KIniDataLine> plain(
                new (arena_for_lines()) KIniDataLine(KIniDataText::view(line.data(), line.size())));
            plain->line.set_from_arena();
            (current_section ? pending_lines : line_vec).push_back(plain.get());
            plain.release();
        } catch (const std::bad_alloc&) {
            if (!close_section())
                return false;
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
    if (!close_section())
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
        std::unique_ptr<Section> section(
            new (arena) Section(KIniDataText::view(line.data(), line.size()), arena));
        section->line.set_from_arena();
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
            if (!close_section())
                return false;
            set_error_text("No '=' found in \"%.50s\" in section %s", to_text(line).c_str(),
                           section->line.c_str());
            KERRTRACE("KIniData::parse_line(): %.70s", error_text.c_str());
            return false;
        }
        // The whole line is the name, and its value.
        name = kini_trim_right(line.substr(first));
    } else if (eq == first) {
        if (!relaxed) {
            if (!close_section())
                return false;
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
    if (!(flags & KINI_REPLACE_ENTRIES)) {
        // Indexed when the section ends, all at once; a repeated name shows then.
        try {
            std::unique_ptr<KIniDataEntry> entry(new (arena_for_lines()) KIniDataEntry(
                KIniDataText::view(line.data(), line.size()), value_pos));
            entry->line.set_from_arena();
            pending_lines.push_back(entry.get());
            try {
                pending_entries.push_back(
                    {name_head(name), name, entry.get(), pending_lines.size() - 1});
            } catch (const std::bad_alloc&) {
                pending_lines.pop_back();
                throw;
            }
            entry.release();
        } catch (const std::bad_alloc&) {
            if (!close_section())
                return false;
            set_error_text("out of memory (%s)", out_of_memory_text());
            KERRTRACE("KIniData::parse_line(): new KIniDataEntry() failed: %.50s",
                      out_of_memory_text());
            return false;
        }
        return true;
    }
    auto it = section->entry_map.lower_bound(name);
    if (it != section->entry_map.end() && !Compare()(name, it->first)) {
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
        std::unique_ptr<KIniDataEntry> entry(new (arena_for_lines()) KIniDataEntry(
            KIniDataText::view(line.data(), line.size()), value_pos));
        entry->line.set_from_arena();
        pending_lines.push_back(entry.get());
        try {
            section->index_loaded_entry(it, name, entry.get());
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
template bool KIniData::take_line(std::string_view);
template bool KIniData::close_section();
template bool KIniData::place_pending_lines();
template bool KIniData::SetContentString(std::string_view);
template bool KIniData::parse_line(std::string_view);
template bool KIniData::parse_section_header(std::string_view);
template bool KIniData::parse_entry(std::string_view, std::size_t);

} // namespace korv
