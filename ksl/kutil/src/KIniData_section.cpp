// Entries and sections of the ini container.
#include "KIniData_template_core.h"

#include "KIniData_text.h"

#include "errtrace.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <ostream>

namespace korv {

using kini_detail::first_non_blank;
using kini_detail::out_of_memory_text;
using kini_detail::to_text;

namespace {

// The numeric getters read from value_pos to the end; line is NUL-terminated there.
const char* value_start(const KIniDataEntry& entry) {
    return entry.line.c_str() +
           (entry.value_pos < entry.line.size() ? entry.value_pos : entry.line.size());
}

} // namespace

void KIniDataText::assign(std::string_view text) {
    char* copy = new char[text.size() + 1];
    if (!text.empty())
        std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    release();
    m_data = copy;
    m_bits = text.size() | kOwned | (m_bits & (kMark | kArena));
}

void KIniDataText::release() noexcept {
    if (m_bits & kOwned)
        delete[] m_data;
    m_data = "";
    m_bits &= kMark | kArena;
}

void KIniDataLine::operator delete(KIniDataLine* line, std::destroying_delete_t) noexcept {
    const bool from_arena = line->line.from_arena();
    line->~KIniDataLine();
    KIniDataArena::free_line(line, from_arena);
}

std::ostream& operator<<(std::ostream& stream, const KIniDataText& text) {
    return stream << std::string_view(text);
}

bool KIniDataEntry::GetStringValue(std::string& value) const {
    value.assign(GetValue());
    return true;
}

bool KIniDataEntry::GetLongValue(std::int32_t& value) const {
    const char* start = value_start(*this);
    char* end = nullptr;
    const long result = std::strtol(start, &end, 10);
    // Held to 32 bits: saturate as strtol on a 32-bit long would.
    if (result > INT32_MAX)
        value = INT32_MAX;
    else if (result < INT32_MIN)
        value = INT32_MIN;
    else
        value = static_cast<std::int32_t>(result);
    return end != start;
}

bool KIniDataEntry::GetLongLongValue(std::int64_t& value) const {
    const char* start = value_start(*this);
    char* end = nullptr;
    value = static_cast<std::int64_t>(std::strtoll(start, &end, 10));
    return end != start;
}

bool KIniDataEntry::GetDoubleValue(double& value) const {
    const char* start = value_start(*this);
    char* end = nullptr;
    value = std::strtod(start, &end);
    return end != start;
}

void KIniDataEntry::SetValue(std::string_view value) {
    if (value_pos > line.size())
        value_pos = line.size();
    std::string text;
    text.reserve(value_pos + value.size());
    text.append(line.substr(0, value_pos)).append(value);
    line = text;
}

template <class Compare>
KIniDataSectionT<Compare>::KIniDataSectionT(std::string_view header, KIniDataArena* arena)
    : KIniDataLine(header), line_arena(arena) {
    line_vec.reserve(10);
    line_vec.push_back(this);
}

template <class Compare>
KIniDataSectionT<Compare>::KIniDataSectionT(KIniDataText&& header, KIniDataArena* arena)
    : KIniDataLine(std::move(header)), line_arena(arena) {
    line_vec.reserve(10);
    line_vec.push_back(this);
}

template <class Compare> KIniDataSectionT<Compare>::~KIniDataSectionT() {
    for (const auto& [name, entry] : entry_map)
        free_index_name(name, entry);
    for (std::size_t i = 1; i < line_vec.size(); ++i)
        delete line_vec[i];
}

// An entry whose index name is a copy carries the mark; a loaded entry's
// name views the file's text, which goes with the arena.
template <class Compare>
void KIniDataSectionT<Compare>::free_index_name(std::string_view name,
                                                const KIniDataEntry* entry) noexcept {
    if (entry->line.mark())
        KIniDataArena::free_name(line_arena, name);
}

template <class Compare>
void KIniDataSectionT<Compare>::index_entry(typename EntryMap::const_iterator hint,
                                            std::string_view name, KIniDataEntry* entry) {
    const std::string_view stored = KIniDataArena::store_name(line_arena, name);
    try {
        entry_map.emplace_hint(hint, stored, entry);
    } catch (const std::bad_alloc&) {
        KIniDataArena::free_name(line_arena, stored);
        throw;
    }
    entry->line.set_mark(true);
}

template <class Compare>
void KIniDataSectionT<Compare>::index_loaded_entry(typename EntryMap::const_iterator hint,
                                                   std::string_view name, KIniDataEntry* entry) {
    entry_map.emplace_hint(hint, name, entry);
    entry->line.set_mark(false);
}

template <class Compare>
void KIniDataSectionT<Compare>::unindex_entry(typename EntryMap::iterator it) noexcept {
    free_index_name(it->first, it->second);
    entry_map.erase(it);
}

template <class Compare>
KIniDataEntry* KIniDataSectionT<Compare>::GetEntry(std::string_view name) const {
    const auto it = entry_map.find(kini_trim_right(name));
    return it == entry_map.end() ? nullptr : it->second;
}

template <class Compare>
void KIniDataSectionT<Compare>::GetEntryNames(std::vector<std::string>& names) const {
    names.clear();
    names.reserve(entry_map.size());
    for (const auto& [name, entry] : entry_map)
        names.emplace_back(name);
}

template <class Compare> std::vector<std::string> KIniDataSectionT<Compare>::GetEntryNames() const {
    std::vector<std::string> names;
    GetEntryNames(names);
    return names;
}

template <class Compare>
bool KIniDataSectionT<Compare>::GetStringEntry(std::string_view name, std::string& value) const {
    const KIniDataEntry* entry = GetEntry(name);
    return entry && entry->GetStringValue(value);
}

template <class Compare>
bool KIniDataSectionT<Compare>::GetLongEntry(std::string_view name, std::int32_t& value) const {
    const KIniDataEntry* entry = GetEntry(name);
    return entry && entry->GetLongValue(value);
}

template <class Compare>
bool KIniDataSectionT<Compare>::GetLongLongEntry(std::string_view name, std::int64_t& value) const {
    const KIniDataEntry* entry = GetEntry(name);
    return entry && entry->GetLongLongValue(value);
}

template <class Compare>
bool KIniDataSectionT<Compare>::GetDoubleEntry(std::string_view name, double& value) const {
    const KIniDataEntry* entry = GetEntry(name);
    return entry && entry->GetDoubleValue(value);
}

template <class Compare>
KIniDataEntry* KIniDataSectionT<Compare>::add_new_entry(std::string_view name,
                                                        std::string_view value_text) {
    try {
        std::string text;
        text.reserve(name.size() + 1 + value_text.size());
        text.append(name).push_back('=');
        text.append(value_text);
        std::unique_ptr<KIniDataEntry> entry(new KIniDataEntry(text, name.size() + 1));
        const auto hint = entry_map.lower_bound(name);
        line_vec.push_back(entry.get());
        try {
            index_entry(hint, name, entry.get());
        } catch (const std::bad_alloc&) {
            line_vec.pop_back();
            throw;
        }
        return entry.release();
    } catch (const std::bad_alloc&) {
        KERRTRACE("KIniDataSectionT::add_new_entry(): new KIniDataEntry() failed: %.50s",
                  out_of_memory_text());
        return nullptr;
    }
}

template <class Compare>
bool KIniDataSectionT<Compare>::set_entry_text(const char* caller, std::string_view name,
                                               std::string_view text) {
    const std::size_t first = first_non_blank(name);
    // Written out, a comment name would come back as a comment line.
    if (first < name.size() && is_comment_char(name[first])) {
        KERRTRACE("%s(): cannot add comment as an entry: \"%s=%s\"", caller, to_text(name).c_str(),
                  to_text(text).c_str());
        return false;
    }
    const std::string_view trimmed = kini_trim_right(name);
    KIniDataEntry* entry = GetEntry(trimmed);
    // A name of only blanks is kept as it is, so look that one up as well.
    if (!entry && trimmed.empty() && !name.empty()) {
        const auto it = entry_map.find(name);
        entry = it == entry_map.end() ? nullptr : it->second;
    }
    if (entry) {
        try {
            entry->SetValue(text);
        } catch (const std::bad_alloc&) {
            KERRTRACE("%s(): SetValue() failed: %.50s", caller, out_of_memory_text());
            return false;
        }
        return true;
    }
    if (!add_new_entry(trimmed.empty() ? name : trimmed, text)) {
        KERRTRACE("%s(): add_new_entry() failed", caller);
        return false;
    }
    return true;
}

template <class Compare>
bool KIniDataSectionT<Compare>::SetStringEntry(std::string_view name, std::string_view value) {
    return set_entry_text("KIniDataSectionT::SetStringEntry", name, value);
}

template <class Compare>
bool KIniDataSectionT<Compare>::SetLongEntry(std::string_view name, std::int32_t value) {
    char text[32];
    std::snprintf(text, sizeof text, "%ld", static_cast<long>(value));
    return set_entry_text("KIniDataSectionT::SetLongEntry", name, text);
}

template <class Compare>
bool KIniDataSectionT<Compare>::SetLongLongEntry(std::string_view name, std::int64_t value) {
    char text[32];
    std::snprintf(text, sizeof text, "%lld", static_cast<long long>(value));
    return set_entry_text("KIniDataSectionT::SetLongLongEntry", name, text);
}

template <class Compare>
bool KIniDataSectionT<Compare>::SetDoubleEntry(std::string_view name, double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", value);
    return set_entry_text("KIniDataSectionT::SetDoubleEntry", name, text);
}

template <class Compare> bool KIniDataSectionT<Compare>::DeleteEntry(std::string_view name) {
    const auto it = entry_map.find(name);
    if (it == entry_map.end()) {
        KERRTRACE("KIniDataSectionT::DeleteEntry(): entry \"%.40s\" not found in entry_map",
                  to_text(name).c_str());
        return false;
    }
    // The entry's line is found by its text, as a reader of the file would find it.
    for (std::size_t i = 1; i < line_vec.size(); ++i) {
        const std::string_view text = line_vec[i]->line;
        std::size_t first = 0;
        while (first < text.size() && kini_is_blank(text[first]))
            ++first;
        if (first == text.size() || is_comment_char(text[first]))
            continue;
        const std::size_t eq = text.find('=');
        if (eq == std::string_view::npos) {
            KERRTRACE("KIniDataSectionT::DeleteEntry(): no '=' found in \"%.50s\"",
                      line_vec[i]->line.c_str());
            return false;
        }
        if (eq == first) {
            KERRTRACE("KIniDataSectionT::DeleteEntry(): no entry name in \"%.50s\"",
                      line_vec[i]->line.c_str());
            return false;
        }
        if (kini_trim_right(text.substr(first, eq - first)) != name)
            continue;
        // The index entry goes first: whether its name is a copy is told by the line.
        unindex_entry(it);
        delete line_vec[i];
        line_vec.erase(line_vec.begin() + static_cast<std::ptrdiff_t>(i));
        return true;
    }
    KERRTRACE("KIniDataSectionT::DeleteEntry(): entry \"%.40s\" not found in line_vec",
              to_text(name).c_str());
    return false;
}

template class KIniDataSectionT<KIniDataCaseSensitiveCompare>;

} // namespace korv
