// The ini container: load, parse, save and change.
#include "KIniData_template_core.h"

#include "errtrace.h"
#include "fastfile.h"
#include "kplatform_paths.h"
#include "stl_utilities.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <ostream>
#include <unistd.h>

namespace korv {

namespace {

std::string to_text(std::string_view view) {
    return std::string(view);
}

std::size_t first_non_blank(std::string_view text) {
    std::size_t first = 0;
    while (first < text.size() && kini_is_blank(text[first]))
        ++first;
    return first;
}

const char* out_of_memory_text() {
    return std::strerror(ENOMEM);
}

} // namespace

template <class Compare> KIniDataT<Compare>::KIniDataT(std::uint32_t flags_) : flags(flags_) {}

template <class Compare>
KIniDataT<Compare>::KIniDataT(const std::string& file_name_, std::uint32_t flags_) : flags(flags_) {
    if (flags & KINI_NO_OPEN) {
        file_name = file_name_;
        return;
    }
    KErrTrace_BeginContext();
    if (!Open(file_name_))
        KERRTRACE_DUMP("KIniData::KIniData(): Open(\"%.60s\") failed", file_name_.c_str());
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

template <class Compare>
KIniDataT<Compare>::KIniDataT(const KIniDataT& other) : flags(other.flags) {
    copy_from(other, "KIniData::KIniData");
}

template <class Compare> KIniDataT<Compare>& KIniDataT<Compare>::operator=(const KIniDataT& other) {
    if (this != &other)
        copy_from(other, "KIniData::operator=");
    return *this;
}

template <class Compare> KIniDataT<Compare>::~KIniDataT() {
    KErrTrace_BeginContext();
    if (!Close())
        KERRTRACE_DUMP("KIniData::~KIniData(): Close() failed");
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

// The copy goes through the text, so it is a fresh parse of what the source holds.
template <class Compare>
void KIniDataT<Compare>::copy_from(const KIniDataT& other, const char* caller) {
    delete_all();
    file_name = other.file_name;
    flags = other.flags;
    error_text = other.error_text;
    KErrTrace_BeginContext();
    if (!SetContentString(other.GetContentString()))
        KERRTRACE_DUMP("%s(): SetContentString() failed", caller);
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
    is_open = other.is_open;
    file_missing = other.file_missing;
    in_sync = other.in_sync;
}

template <class Compare> void KIniDataT<Compare>::delete_all() {
    for (KIniDataLine* line : line_vec)
        delete line;
    line_vec.clear();
    for (KIniDataLine* line : pending_lines)
        delete line;
    pending_lines.clear();
    for (auto& [name, section] : section_map)
        delete section;
    section_map.clear();
    current_section = nullptr;
    // Every line is gone, so the arena goes with this; the next line starts a new one.
    if (line_arena) {
        line_arena->release();
        line_arena = nullptr;
    }
}

template <class Compare> KIniDataArena* KIniDataT<Compare>::arena_for_lines() {
    if (!line_arena)
        line_arena = KIniDataArena::create();
    return line_arena;
}

template <class Compare> void KIniDataT<Compare>::set_error_text(const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    error_text.assign(length < 0 ? "" : text);
}

template <class Compare> bool KIniDataT<Compare>::Open(const std::string& name) {
    const std::string path = name; // `name` may be file_name itself, which Close empties
    if (!Close()) {
        KERRTRACE("KIniData::Open(): Close() failed");
        return false;
    }
    file_name = path;
    // A file that isn't there opens empty: the first Save creates it.
    if (::access(platform::native_path(file_name).c_str(), F_OK) != 0) {
        is_open = true;
        file_missing = true;
        in_sync = false;
        return true;
    }
    file_missing = false;
    KFastFileReader reader;
    if (!reader.Open(file_name)) {
        KERRTRACE("KIniData::Open(): KFastFileReader::Open() failed");
        return false;
    }
    current_section = nullptr;
    if (reader.IsEOF()) {
        in_sync = true;
        is_open = true;
        return true;
    }
    if (!read_lines(reader)) {
        // What was parsed stays, in its sections.
        place_pending_lines();
        return false;
    }
    in_sync = true;
    is_open = true;
    return true;
}

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

template <class Compare> bool KIniDataT<Compare>::Close() {
    delete_all();
    file_name.clear();
    is_open = false;
    file_missing = true;
    return true;
}

template <class Compare> bool KIniDataT<Compare>::Reopen() {
    if (!is_open) {
        KERRTRACE("KIniData::Reopen(): not open");
        return false;
    }
    const std::string path = file_name;
    if (!Open(path)) {
        KERRTRACE("KIniData::Reopen(): Open(\"%.60s\") failed", path.c_str());
        return false;
    }
    return true;
}

template <class Compare> bool KIniDataT<Compare>::Save() {
    int mode = KFF_REPLACE;
    if (flags & KINI_SAVE_FLUSH)
        mode += KFF_FLUSH;
    if (flags & KINI_SAVE_ATOMIC)
        mode += KFF_ATOMIC;
    // The writer turns every LF into CR LF.
    const std::string content = GetContentString();
    if (KFastFile_WriteLinesAtOnce(file_name, content.data(), content.size(), mode) < 0) {
        KERRTRACE("KIniData::Save(): KFastFile_WriteLinesAtOnce(\"%.40s\") failed",
                  file_name.c_str());
        return false;
    }
    file_missing = false;
    in_sync = true;
    return true;
}

template <class Compare> std::string KIniDataT<Compare>::GetContentString() const {
    std::size_t size = 0;
    for (const KIniDataLine* line : line_vec)
        size += line->line.size() + 1;
    for (const auto& [name, section] : section_map)
        for (const KIniDataLine* line : section->line_vec)
            size += line->line.size() + 1;
    // Sized once, then filled by plain copies: Save and copying pass through here.
    std::string content(size, '\n');
    char* out = content.data();
    const auto put = [&out](const KIniDataLine* line) {
        std::memcpy(out, line->line.data(), line->line.size());
        out += line->line.size() + 1;
    };
    for (const KIniDataLine* line : line_vec)
        put(line);
    for (const auto& [name, section] : section_map)
        for (const KIniDataLine* line : section->line_vec)
            put(line);
    return content;
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

template <class Compare> bool KIniDataT<Compare>::operator==(const KIniDataT& other) const {
    return GetContentString() == other.GetContentString();
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

template <class Compare>
typename KIniDataT<Compare>::Section* KIniDataT<Compare>::add_new_section(std::string_view name) {
    try {
        std::string header;
        header.reserve(name.size() + 2);
        header.append("[").append(name).append("]");
        KIniDataArena* arena = arena_for_lines();
        std::unique_ptr<Section> section(new (arena) Section(header, arena));
        section_map.emplace(std::string(name), section.get());
        return section.release();
    } catch (const std::bad_alloc&) {
        set_error_text("out of memory (%s)", out_of_memory_text());
        // This wording whichever operation called it.
        KERRTRACE("KIniData::SetDoubleEntry(): new KIniDataSectionT() failed: %.50s",
                  out_of_memory_text());
        return nullptr;
    }
}

template <class Compare>
bool KIniDataT<Compare>::GetStringEntry(std::string_view section, std::string_view name,
                                        std::string& value) const {
    const Section* found = GetSection(section);
    return found && found->GetStringEntry(name, value);
}

template <class Compare>
bool KIniDataT<Compare>::GetLongEntry(std::string_view section, std::string_view name,
                                      std::int32_t& value) const {
    const Section* found = GetSection(section);
    return found && found->GetLongEntry(name, value);
}

template <class Compare>
bool KIniDataT<Compare>::GetLongLongEntry(std::string_view section, std::string_view name,
                                          std::int64_t& value) const {
    const Section* found = GetSection(section);
    return found && found->GetLongLongEntry(name, value);
}

template <class Compare>
bool KIniDataT<Compare>::GetDoubleEntry(std::string_view section, std::string_view name,
                                        double& value) const {
    const Section* found = GetSection(section);
    return found && found->GetDoubleEntry(name, value);
}

template <class Compare> bool KIniDataT<Compare>::HasSection(std::string_view section) const {
    return section_map.find(section) != section_map.end();
}

template <class Compare>
bool KIniDataT<Compare>::HasEntry(std::string_view section, std::string_view name) const {
    const Section* found = GetSection(section);
    return found && found->HasEntry(name);
}

template <class Compare>
typename KIniDataT<Compare>::Section*
KIniDataT<Compare>::GetSection(std::string_view section) const {
    const auto it = section_map.find(section);
    return it == section_map.end() ? nullptr : it->second;
}

template <class Compare>
std::size_t KIniDataT<Compare>::GetEntryCount(std::string_view section) const {
    const Section* found = GetSection(section);
    return found ? found->GetEntryCount() : 0;
}

template <class Compare>
void KIniDataT<Compare>::GetSectionNames(std::vector<std::string>& names) const {
    names.clear();
    names.reserve(section_map.size());
    for (const auto& [name, section] : section_map)
        names.push_back(name);
}

template <class Compare> std::vector<std::string> KIniDataT<Compare>::GetSectionNames() const {
    std::vector<std::string> names;
    GetSectionNames(names);
    return names;
}

template <class Compare>
void KIniDataT<Compare>::GetEntryNames(std::string_view section,
                                       std::vector<std::string>& names) const {
    const Section* found = GetSection(section);
    if (found)
        found->GetEntryNames(names);
    else
        names.clear();
}

template <class Compare>
std::vector<std::string> KIniDataT<Compare>::GetEntryNames(std::string_view section) const {
    std::vector<std::string> names;
    GetEntryNames(section, names);
    return names;
}

template <class Compare>
typename KIniDataT<Compare>::Section*
KIniDataT<Compare>::section_for_set(const char* operation, const char* comment_operation,
                                    std::string_view section, std::string_view name,
                                    std::string_view message_value) {
    const std::size_t first = first_non_blank(name);
    if (first < name.size() && is_comment_char(name[first])) {
        set_error_text("cannot add comment as an entry: \"%s=%s\"", to_text(name).c_str(),
                       to_text(message_value).c_str());
        KERRTRACE("%s::%s(): cannot add comment as an entry: \"%s=%s\"", Compare::container_name,
                  comment_operation, to_text(name).c_str(), to_text(message_value).c_str());
        return nullptr;
    }
    if (Section* found = GetSection(section))
        return found;
    Section* added = add_new_section(section);
    if (!added)
        KERRTRACE("KIniData::%s(): add_new_section() failed", operation);
    return added;
}

template <class Compare>
bool KIniDataT<Compare>::SetStringEntry(std::string_view section, std::string_view name,
                                        std::string_view value) {
    Section* target = section_for_set("SetStringEntry", "SetStringEntry", section, name, value);
    if (!target || !target->SetStringEntry(name, value))
        return false;
    in_sync = false;
    return true;
}

template <class Compare>
bool KIniDataT<Compare>::SetLongEntry(std::string_view section, std::string_view name,
                                      std::int32_t value) {
    char text[32];
    std::snprintf(text, sizeof text, "%ld", static_cast<long>(value));
    Section* target = section_for_set("SetLongEntry", "SetLongEntry", section, name, text);
    if (!target || !target->SetLongEntry(name, value))
        return false;
    in_sync = false;
    return true;
}

template <class Compare>
bool KIniDataT<Compare>::SetLongLongEntry(std::string_view section, std::string_view name,
                                          std::int64_t value) {
    char text[32];
    std::snprintf(text, sizeof text, "%lld", static_cast<long long>(value));
    // The comment message names SetLongEntry for both widths.
    Section* target = section_for_set("SetLongLongEntry", "SetLongEntry", section, name, text);
    if (!target || !target->SetLongLongEntry(name, value))
        return false;
    in_sync = false;
    return true;
}

template <class Compare>
bool KIniDataT<Compare>::SetDoubleEntry(std::string_view section, std::string_view name,
                                        double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    Section* target = section_for_set("SetDoubleEntry", "SetDoubleEntry", section, name, text);
    if (!target || !target->SetDoubleEntry(name, value))
        return false;
    in_sync = false;
    return true;
}

template <class Compare> bool KIniDataT<Compare>::AddSection(std::string_view section) {
    if (HasSection(section))
        return true;
    if (!add_new_section(section)) {
        KERRTRACE("KIniData::AddSection(): add_new_section() failed");
        return false;
    }
    in_sync = false;
    return true;
}

template <class Compare> bool KIniDataT<Compare>::DeleteSection(std::string_view section) {
    const auto it = section_map.find(section);
    if (it == section_map.end()) {
        KERRTRACE("KIniData::DeleteSection(): section \"%.40s\" not found",
                  to_text(section).c_str());
        return false;
    }
    Section* doomed = it->second;
    section_map.erase(it);
    if (current_section == doomed)
        current_section = nullptr;
    delete doomed;
    in_sync = false;
    return true;
}

template <class Compare>
bool KIniDataT<Compare>::DeleteEntry(std::string_view section, std::string_view name) {
    Section* found = GetSection(section);
    if (!found) {
        KERRTRACE("KIniData::DeleteEntry(): section \"%.40s\" not found", to_text(section).c_str());
        return false;
    }
    if (!found->DeleteEntry(name)) {
        KERRTRACE("KIniData::DeleteEntry(): KIniDataSectionT::DeleteEntry() failed "
                  "(\"%.30s\",\"%.30s\")",
                  to_text(section).c_str(), to_text(name).c_str());
        return false;
    }
    in_sync = false;
    return true;
}

template <class Compare>
bool KIniDataT<Compare>::RenameSection(std::string_view old_name, std::string_view new_name) {
    const std::string function = std::string(Compare::container_name) + "::RenameSection";
    if (HasSection(new_name)) {
        KERRTRACE("%s(): section \"%s\" already exists", function.c_str(),
                  to_text(new_name).c_str());
        return false;
    }
    Section* old_section = GetSection(old_name);
    if (!old_section) {
        KERRTRACE("%s(): the source section \"%s\" doesn't exists", function.c_str(),
                  to_text(old_name).c_str());
        return false;
    }
    Section* new_section = add_new_section(new_name);
    if (!new_section) {
        KERRTRACE("%s(): add_new_section() failed", function.c_str());
        return false;
    }
    // The new section takes over the lines; its own header line replaces the old
    // one, so text behind the old ']' is gone.
    new_section->line_vec.clear();
    std::swap(new_section->entry_map, old_section->entry_map);
    std::swap(new_section->line_vec, old_section->line_vec);
    new_section->line_vec[0] = new_section;
    return DeleteSection(old_name);
}

template <class Compare>
std::ostream& operator<<(std::ostream& stream, const KIniDataT<Compare>& data) {
    return stream << data.GetContentString();
}

template class KIniDataT<KIniDataCaseSensitiveCompare>;
template std::ostream& operator<<(std::ostream&, const KIniData&);

} // namespace korv
