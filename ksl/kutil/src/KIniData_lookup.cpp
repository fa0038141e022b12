// The ini container: lookups of sections and entries.
#include "KIniData_template_core.h"

namespace korv {

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

template bool KIniData::GetStringEntry(std::string_view, std::string_view, std::string&) const;
template bool KIniData::GetLongEntry(std::string_view, std::string_view, std::int32_t&) const;
template bool KIniData::GetLongLongEntry(std::string_view, std::string_view, std::int64_t&) const;
template bool KIniData::GetDoubleEntry(std::string_view, std::string_view, double&) const;
template bool KIniData::HasSection(std::string_view) const;
template bool KIniData::HasEntry(std::string_view, std::string_view) const;
template KIniData::Section* KIniData::GetSection(std::string_view) const;
template std::size_t KIniData::GetEntryCount(std::string_view) const;
template void KIniData::GetSectionNames(std::vector<std::string>&) const;
template std::vector<std::string> KIniData::GetSectionNames() const;
template void KIniData::GetEntryNames(std::string_view, std::vector<std::string>&) const;
template std::vector<std::string> KIniData::GetEntryNames(std::string_view) const;

} // namespace korv
