// The port class of a drive unit on a switch box: class 0 units sit on ports
// 1 to 4, class 1 units on ports 5 to 8.
#pragma once

#include <cstdint>
#include <string>

// The class of the unit last tested by ClassifyPortUnit; 0 at start, kept for
// the life of the process.
extern std::int32_t g_unitPortClass;

// Sets g_unitPortClass from the known unit texts found in `name`; a name with
// none of them leaves it as it was. Returns g_unitPortClass.
std::int32_t ClassifyPortUnit(const std::string& name);
