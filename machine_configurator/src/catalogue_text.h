// Value cleaning and path pieces shared by the catalogue readers.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The value without a trailing comment: the text from "//", then from "/*",
// then from ";" is cut off.
std::string_view catalogue_strip_comment(std::string_view value);
// Comment cut off and every white space character removed.
std::string catalogue_clean_value(std::string_view value);
// Comment cut off and blanks trimmed at both ends; inner blanks stay.
std::string catalogue_trim_value(std::string_view value);
// `folder` and `name` joined by one '\\'; none is added when `folder` is
// empty or ends in a separator.
std::string catalogue_join(const std::string& folder, std::string_view name);
// The profile value of `key` in `section` of `file`, or `fallback`, read into
// a buffer of `size` bytes (at most 1024), so that a longer value is cut.
std::string catalogue_profile(const std::string& section, const std::string& key,
                              const char* fallback, const std::string& file,
                              std::size_t size = 1024);
