#include "wizard/port_units.h"

#include <array>

std::int32_t g_unitPortClass = 0;

namespace {

// Texts looked for as a part of the unit's name, class 0 before class 1.
constexpr std::array<const char*, 7> kClass0Units{
    "YD 120 CNC", "YD 120 CNC CONTOUR", "YD 120", "YD 120 CONTOUR", "QCV", "VD120", "YD 30 Compact",
};
constexpr std::array<const char*, 4> kClass1Units{"YD 25", "PQK", "PZK 120", "PZK 20"};

template <std::size_t N>
bool ContainsAny(const std::string& name, const std::array<const char*, N>& texts) {
    for (const char* text : texts)
        if (name.find(text) != std::string::npos)
            return true;
    return false;
}

} // namespace

std::int32_t ClassifyPortUnit(const std::string& name) {
    if (ContainsAny(name, kClass0Units))
        g_unitPortClass = 0;
    else if (ContainsAny(name, kClass1Units))
        g_unitPortClass = 1;
    return g_unitPortClass;
}
