// The ini container: a line store with an index.
//
// Every line of a file is kept as text, so comments, blank lines, spacing around
// '=' and text behind a section's ']' survive a load and save. Entries are lines
// that also know where their value starts. Sections live in a sorted map, so a
// saved file has its sections in sorted order; the lines inside a section keep
// theirs. The parser is strict: a line it cannot classify makes the load fail.
//
// Text is bytes throughout. "long" means 32 bits, whatever the C type is here.
#pragma once

#include "KIniData_arena.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <map>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace korv {

// Behaviour bits, fixed at construction.
inline constexpr std::uint32_t KINI_RELAXED_LINES = 1;    // lines without a name or '=' are entries
inline constexpr std::uint32_t KINI_REPLACE_SECTIONS = 2; // a repeated header replaces; implies 1
inline constexpr std::uint32_t KINI_NO_OPEN = 4; // the path constructor only stores the path
// Every Save writes a temporary file, flushes it and renames it over the file,
// so these two ask for nothing more; they stay for the interface.
inline constexpr std::uint32_t KINI_SAVE_FLUSH = 8;   // Save flushes to disk before closing
inline constexpr std::uint32_t KINI_SAVE_ATOMIC = 16; // Save writes a temporary file and renames
inline constexpr std::uint32_t KINI_REPLACE_ENTRIES =
    32; // a repeated entry replaces the earlier one
inline constexpr std::uint32_t KINI_ALL_FLAGS = 63;

// Blank means blank and tab only.
inline bool kini_is_blank(char c) {
    return c == ' ' || c == '\t';
}
// First non-blank character of a comment line.
inline bool is_comment_char(char c) {
    return c == '#' || c == '*' || c == '/' || c == ';';
}
// `text` without its trailing blanks and tabs.
inline std::string_view kini_trim_right(std::string_view text) {
    std::size_t end = text.size();
    while (end > 0 && kini_is_blank(text[end - 1]))
        --end;
    return text.substr(0, end);
}

// Byte-wise unsigned order; at equal common length the shorter name is less. So
// names are case-sensitive and upper case sorts before lower case.
struct KIniDataCaseSensitiveCompare {
    using is_transparent = void;
    // The container's name as it appears in messages.
    static constexpr const char* container_name = "KIniDataT<struct KIniDataCaseSensitiveCompare>";

    bool operator()(std::string_view a, std::string_view b) const {
        const std::size_t common = a.size() < b.size() ? a.size() : b.size();
        const int order = common ? std::memcmp(a.data(), b.data(), common) : 0;
        return order != 0 ? order < 0 : a.size() < b.size();
    }
};

// The text of a line. A loaded line views bytes of its file, which its
// container's arena holds; a line made or changed later owns a heap copy.
// Either way a NUL follows the text, so the C conversions stop at its end.
class KIniDataText {
public:
    KIniDataText() = default;
    explicit KIniDataText(std::string_view text) { assign(text); }
    ~KIniDataText() { release(); }
    KIniDataText(const KIniDataText&) = delete;
    KIniDataText& operator=(const KIniDataText&) = delete;
    // Copies; throws std::bad_alloc and then keeps the old text.
    KIniDataText& operator=(std::string_view text) {
        assign(text);
        return *this;
    }

    // Views `size` bytes that outlive this object and are followed by a NUL.
    static KIniDataText view(const char* data, std::size_t size) noexcept {
        KIniDataText text;
        text.m_data = data;
        text.m_bits = size;
        return text;
    }
    KIniDataText(KIniDataText&& other) noexcept : m_data(other.m_data), m_bits(other.m_bits) {
        other.m_data = "";
        other.m_bits = 0;
    }

    const char* data() const noexcept { return m_data; }
    const char* c_str() const noexcept { return m_data; }
    std::size_t size() const noexcept { return m_bits & kSizeMask; }
    std::size_t length() const noexcept { return size(); }
    bool empty() const noexcept { return size() == 0; }
    char operator[](std::size_t i) const noexcept { return m_data[i]; }
    const char* begin() const noexcept { return m_data; }
    const char* end() const noexcept { return m_data + size(); }
    operator std::string_view() const noexcept { return {m_data, size()}; }
    std::string str() const { return std::string(m_data, size()); }
    std::size_t find(char c, std::size_t pos = 0) const noexcept {
        return std::string_view(*this).find(c, pos);
    }
    std::string_view substr(std::size_t pos, std::size_t n = std::string_view::npos) const {
        return std::string_view(*this).substr(pos, n);
    }
    friend bool operator==(const KIniDataText& a, std::string_view b) noexcept {
        return std::string_view(a) == b;
    }

    // Two bits for the line that holds the text; assignments keep them.
    bool mark() const noexcept { return (m_bits & kMark) != 0; }
    void set_mark(bool on) noexcept { m_bits = on ? m_bits | kMark : m_bits & ~kMark; }
    bool from_arena() const noexcept { return (m_bits & kArena) != 0; }
    void set_from_arena() noexcept { m_bits |= kArena; }

private:
    void assign(std::string_view text);
    void release() noexcept;

    static constexpr std::size_t kOwned = ~(~std::size_t(0) >> 1);
    static constexpr std::size_t kMark = kOwned >> 1;
    static constexpr std::size_t kArena = kMark >> 1;
    static constexpr std::size_t kSizeMask = kArena - 1;

    const char* m_data = ""; // NUL-terminated at size()
    std::size_t m_bits = 0;  // the size, kOwned if m_data is ours, kMark, kArena
};

std::ostream& operator<<(std::ostream& stream, const KIniDataText& text);

// One line of a file, without its line ending. Always deleted through the base.
class KIniDataLine {
public:
    KIniDataLine() = default;
    explicit KIniDataLine(std::string_view text) : line(text) {}
    explicit KIniDataLine(KIniDataText&& text) noexcept : line(std::move(text)) {}
    virtual ~KIniDataLine() = default;
    KIniDataLine(const KIniDataLine&) = delete;
    KIniDataLine& operator=(const KIniDataLine&) = delete;

    // A plain new uses the heap. The loaded lines of a container come from its
    // arena, and the loader marks them (line.set_from_arena()), so that a
    // delete through this class finds its way back.
    static void* operator new(std::size_t size) {
        return KIniDataArena::allocate_line(nullptr, size);
    }
    static void* operator new(std::size_t size, KIniDataArena* arena) {
        return KIniDataArena::allocate_line(arena, size);
    }
    // Reads the mark before the destructor runs, then gives the memory back.
    static void operator delete(KIniDataLine* line, std::destroying_delete_t) noexcept;
    // Only for a constructor that throws.
    static void operator delete(void* line) noexcept { KIniDataArena::free_line(line, false); }
    static void operator delete(void* line, KIniDataArena* arena) noexcept {
        KIniDataArena::abandon_line(arena, line);
    }

    KIniDataText line;
};

// A line that carries a value: everything from value_pos to the end of the line,
// untrimmed, comments included.
class KIniDataEntry : public KIniDataLine {
public:
    KIniDataEntry(std::string_view text, std::size_t pos) : KIniDataLine(text), value_pos(pos) {}
    KIniDataEntry(KIniDataText&& text, std::size_t pos) noexcept
        : KIniDataLine(std::move(text)), value_pos(pos) {}

    std::string_view GetValue() const {
        return value_pos < line.size() ? line.substr(value_pos) : std::string_view();
    }
    bool GetStringValue(std::string& value) const;
    // strtol base 10 held to 32 bits, strtoll, strtod. The output is written even
    // without digits; true if at least one character was converted.
    bool GetLongValue(std::int32_t& value) const;
    bool GetLongLongValue(std::int64_t& value) const;
    bool GetDoubleValue(double& value) const;
    // Replaces the line from value_pos to its end; what stands before stays.
    void SetValue(std::string_view value);

    std::size_t value_pos;
};

// The index of a section: (name, entry) pairs sorted by name, in one array.
// Names of loaded entries view the file's text; others are copies that the
// section keeps.
template <class Compare> class KIniDataEntryIndex {
public:
    using value_type = std::pair<std::string_view, KIniDataEntry*>;
    using items_type = std::vector<value_type>;
    using iterator = typename items_type::iterator;
    using const_iterator = typename items_type::const_iterator;

    iterator begin() noexcept { return m_items.begin(); }
    iterator end() noexcept { return m_items.end(); }
    const_iterator begin() const noexcept { return m_items.begin(); }
    const_iterator end() const noexcept { return m_items.end(); }
    std::size_t size() const noexcept { return m_items.size(); }
    bool empty() const noexcept { return m_items.empty(); }
    void clear() noexcept { m_items.clear(); }

    iterator lower_bound(std::string_view name) { return begin() + (lower(name) - m_items.data()); }
    const_iterator lower_bound(std::string_view name) const {
        return begin() + (lower(name) - m_items.data());
    }
    iterator find(std::string_view name) {
        const iterator it = lower_bound(name);
        return it != end() && !Compare()(name, it->first) ? it : end();
    }
    const_iterator find(std::string_view name) const {
        const const_iterator it = lower_bound(name);
        return it != end() && !Compare()(name, it->first) ? it : end();
    }
    // `hint` must be where `name` belongs; throws std::bad_alloc.
    iterator emplace_hint(const_iterator hint, std::string_view name, KIniDataEntry* entry) {
        return m_items.emplace(hint, name, entry);
    }
    iterator erase(const_iterator it) { return m_items.erase(it); }
    // Takes over items already sorted and free of duplicates.
    void assign_sorted(items_type&& items) noexcept { m_items = std::move(items); }

private:
    const value_type* lower(std::string_view name) const {
        const value_type* first = m_items.data();
        std::size_t count = m_items.size();
        while (count > 0) {
            const std::size_t half = count / 2;
            if (Compare()(first[half].first, name)) {
                first += half + 1;
                count -= half + 1;
            } else {
                count = half;
            }
        }
        return first;
    }

    items_type m_items;
};

template <class Compare> class KIniDataT;
class KFastFileReader;

// A section. Its own `line` is the header as read; element 0 of line_vec is the
// section itself, and the section owns every element from 1 on.
template <class Compare> class KIniDataSectionT : public KIniDataLine {
public:
    using EntryMap = KIniDataEntryIndex<Compare>;

    // With an arena, the section's new entries and index nodes come from it.
    explicit KIniDataSectionT(std::string_view header, KIniDataArena* arena = nullptr);
    KIniDataSectionT(KIniDataText&& header, KIniDataArena* arena);
    ~KIniDataSectionT() override;

    // Lookups remove trailing blanks and tabs from `name`; HasEntry does not.
    KIniDataEntry* GetEntry(std::string_view name) const;
    bool HasEntry(std::string_view name) const { return entry_map.find(name) != entry_map.end(); }
    std::size_t GetEntryCount() const { return entry_map.size(); }
    void GetEntryNames(std::vector<std::string>& names) const;
    std::vector<std::string> GetEntryNames() const;

    bool GetStringEntry(std::string_view name, std::string& value) const;
    bool GetLongEntry(std::string_view name, std::int32_t& value) const;
    bool GetLongLongEntry(std::string_view name, std::int64_t& value) const;
    bool GetDoubleEntry(std::string_view name, double& value) const;

    // Replaces the value of an existing entry, or appends "name=value" at the very
    // end of the section. A name that is a comment is refused.
    bool SetStringEntry(std::string_view name, std::string_view value);
    bool SetLongEntry(std::string_view name, std::int32_t value);
    bool SetLongLongEntry(std::string_view name, std::int64_t value);
    bool SetDoubleEntry(std::string_view name, double value);

    // Deletes the entry's own line, found by walking the lines; exact name.
    bool DeleteEntry(std::string_view name);

    EntryMap entry_map;                  // the index; owns nothing
    std::vector<KIniDataLine*> line_vec; // all lines in file order

private:
    friend class KIniDataT<Compare>;
    // Appends "name=value_text"; null if out of memory.
    KIniDataEntry* add_new_entry(std::string_view name, std::string_view value_text);
    // Enters `entry` under a copy of `name`; throws std::bad_alloc, leaving
    // nothing behind.
    void index_entry(typename EntryMap::const_iterator hint, std::string_view name,
                     KIniDataEntry* entry);
    // Enters a loaded entry under `name`, a view of the file's text.
    void index_loaded_entry(typename EntryMap::const_iterator hint, std::string_view name,
                            KIniDataEntry* entry);
    void unindex_entry(typename EntryMap::iterator it) noexcept;
    // Frees the index's copy of an entry's name, if it has one.
    void free_index_name(std::string_view name, const KIniDataEntry* entry) noexcept;
    bool set_entry_text(const char* caller, std::string_view name, std::string_view text);

    KIniDataArena* line_arena; // null for a section made on its own
};

// The container. Not thread-safe; one thread at a time.
template <class Compare> class KIniDataT {
public:
    using Section = KIniDataSectionT<Compare>;
    using SectionMap = std::map<std::string, Section*, Compare>;

    explicit KIniDataT(std::uint32_t flags = 0);
    // Opens the file at once unless KINI_NO_OPEN; a failed Open is logged and the
    // object stays usable.
    explicit KIniDataT(const std::string& file_name, std::uint32_t flags = 0);
    KIniDataT(const KIniDataT& other);
    KIniDataT& operator=(const KIniDataT& other);
    // Closes, never saves.
    ~KIniDataT();

    // A missing file opens as empty; the first Save creates it.
    bool Open(const std::string& file_name);
    bool Close();
    bool Reopen();
    // Replaces the file whole, or leaves it as it was (platform::replace_file).
    bool Save();

    // Every line, LF-terminated: the lines before the first section, then the
    // sections in map order.
    std::string GetContentString() const;
    bool SetContentString(std::string_view text);

    bool operator==(const KIniDataT& other) const;
    bool operator!=(const KIniDataT& other) const { return !(*this == other); }

    bool GetStringEntry(std::string_view section, std::string_view name, std::string& value) const;
    bool GetLongEntry(std::string_view section, std::string_view name, std::int32_t& value) const;
    bool GetLongLongEntry(std::string_view section, std::string_view name,
                          std::int64_t& value) const;
    bool GetDoubleEntry(std::string_view section, std::string_view name, double& value) const;

    bool HasSection(std::string_view section) const;
    bool HasEntry(std::string_view section, std::string_view name) const;
    Section* GetSection(std::string_view section) const;
    std::size_t GetEntryCount(std::string_view section) const;
    void GetSectionNames(std::vector<std::string>& names) const;
    std::vector<std::string> GetSectionNames() const;
    void GetEntryNames(std::string_view section, std::vector<std::string>& names) const;
    std::vector<std::string> GetEntryNames(std::string_view section) const;

    bool SetStringEntry(std::string_view section, std::string_view name, std::string_view value);
    bool SetLongEntry(std::string_view section, std::string_view name, std::int32_t value);
    bool SetLongLongEntry(std::string_view section, std::string_view name, std::int64_t value);
    bool SetDoubleEntry(std::string_view section, std::string_view name, double value);

    bool AddSection(std::string_view section);
    bool DeleteSection(std::string_view section);
    bool DeleteEntry(std::string_view section, std::string_view name);
    bool RenameSection(std::string_view old_name, std::string_view new_name);

    bool is_open = false;
    bool file_missing = true;
    bool in_sync = false;
    std::string file_name;
    std::uint32_t flags;
    std::vector<KIniDataLine*> line_vec; // lines before the first section; owned
    SectionMap section_map;              // owned
    Section* current_section = nullptr;  // the section parse_line is filling
    std::string error_text;              // the last problem, at most 1023 characters

private:
    // An entry of the section being loaded, not yet in its index.
    struct PendingEntry {
        std::uint64_t head; // the first bytes of the name, for a quick order
        std::string_view name;
        KIniDataEntry* entry;
        std::size_t place; // in pending_lines
    };

    bool read_lines(KFastFileReader& reader);
    // Parses `text`, which must stay where it is while lines view it.
    bool parse_text(char* text, std::size_t size, bool from_file);
    bool take_line(std::string_view line);
    // Indexes the entries of the loaded section and gives it its lines. A
    // repeated name fails as its line would have, and the lines from it on go.
    bool close_section();
    bool place_pending_lines();
    bool parse_line(std::string_view line);
    bool parse_section_header(std::string_view line);
    bool parse_entry(std::string_view line, std::size_t first);
    Section* add_new_section(std::string_view name);
    void delete_all();
    // The arena of the lines, made on first use; throws std::bad_alloc.
    KIniDataArena* arena_for_lines();
    void copy_from(const KIniDataT& other, const char* caller);
    void set_error_text(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // The common first step of the Set* operations: refuse comments, find or add
    // the section. Null on failure.
    Section* section_for_set(const char* operation, const char* comment_operation,
                             std::string_view section, std::string_view name,
                             std::string_view message_value);

    KIniDataArena* line_arena = nullptr;
    std::vector<KIniDataLine*> pending_lines;  // lines of current_section not yet in its line_vec
    std::vector<PendingEntry> pending_entries; // entries of current_section not yet indexed
    std::string_view failed_line;              // the line a failed parse stopped at
    bool first_line = false;                   // the next line read is the file's first
};

template <class Compare>
std::ostream& operator<<(std::ostream& stream, const KIniDataT<Compare>& data);

using KIniDataSection = KIniDataSectionT<KIniDataCaseSensitiveCompare>;
using KIniData = KIniDataT<KIniDataCaseSensitiveCompare>;

extern template class KIniDataSectionT<KIniDataCaseSensitiveCompare>;
extern template class KIniDataT<KIniDataCaseSensitiveCompare>;
extern template std::ostream& operator<<(std::ostream&, const KIniData&);

} // namespace korv
