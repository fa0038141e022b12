// Value trimming, path pieces and profile reads shared by the catalogue readers.
// Comments and white space go with StripComment and StripCommentAndWhitespace.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Comment cut off and blanks trimmed at both ends; inner blanks stay.
std::string catalogue_trim_value(const std::string& raw);
// `folder` and `name` joined by one '\\'; none is added when `folder` is
// empty or ends in a separator.
std::string catalogue_join(const std::string& folder, std::string_view name);
// The profile value of `key` in `section` of `file`, or `fallback`, read into
// a buffer of `size` bytes (at most 1024), so that a longer value is cut.
std::string catalogue_profile(const std::string& section, const std::string& key,
                              const char* fallback, const std::string& file,
                              std::size_t size = 1024);
