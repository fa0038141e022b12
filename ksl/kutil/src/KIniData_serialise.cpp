// The ini container as text: what Save writes, and what copies and
// comparisons go through.
#include "KIniData_template_core.h"

#include <cstring>
#include <ostream>

namespace korv {

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

template <class Compare> bool KIniDataT<Compare>::operator==(const KIniDataT& other) const {
    return GetContentString() == other.GetContentString();
}

template <class Compare>
std::ostream& operator<<(std::ostream& stream, const KIniDataT<Compare>& data) {
    return stream << data.GetContentString();
}

template std::string KIniData::GetContentString() const;
template bool KIniData::operator==(const KIniData&) const;
template std::ostream& operator<<(std::ostream&, const KIniData&);

} // namespace korv
