// The ini container: changes to sections and entries.
#include "KIniData_template_core.h"

#include "KIniData_text.h"

#include "errtrace.h"

#include <cstdio>
#include <memory>
#include <new>
#include <utility>

namespace korv {

using kini_detail::first_non_blank;
using kini_detail::out_of_memory_text;
using kini_detail::to_text;

template <class Compare>
typename KIniDataT<Compare>::Section* KIniDataT<Compare>::add_new_section(std::string_view name) {
    try {
        std::string header;
        header.reserve(name.size() + 2);
        header.append("[").append(name).append("]");
        KIniDataArena* arena = arena_for_lines();
        std::unique_ptr<Section> section(new (arena) Section(header, arena));
        section->line.set_from_arena();
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

template KIniData::Section* KIniData::add_new_section(std::string_view);
template KIniData::Section* KIniData::section_for_set(const char*, const char*, std::string_view,
                                                      std::string_view, std::string_view);
template bool KIniData::SetStringEntry(std::string_view, std::string_view, std::string_view);
template bool KIniData::SetLongEntry(std::string_view, std::string_view, std::int32_t);
template bool KIniData::SetLongLongEntry(std::string_view, std::string_view, std::int64_t);
template bool KIniData::SetDoubleEntry(std::string_view, std::string_view, double);
template bool KIniData::AddSection(std::string_view);
template bool KIniData::DeleteSection(std::string_view);
template bool KIniData::DeleteEntry(std::string_view, std::string_view);
template bool KIniData::RenameSection(std::string_view, std::string_view);

} // namespace korv
