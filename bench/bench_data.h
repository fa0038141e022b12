// A generated ini file that looks like real machine configuration: many
// sections in no particular order, entries with and without spacing, trailing
// comments, comment and blank lines. Every line stays below 200 bytes so that
// parsers with a fixed line buffer read it whole.
#pragma once

#include <cstddef>
#include <string>

namespace korv::bench {

// About `target_bytes` of ini text, the same for the same target.
std::string make_ini_text(std::size_t target_bytes);

} // namespace korv::bench
