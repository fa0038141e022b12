// Translation of the program's texts, from gettext .po files:
// <folder>/locale/<lang>/<domain>.po, <lang> in lower case.
#pragma once

#include <string>

// Loads the translations of `domain` in `language`. With an empty `folder` the
// files are looked up beside the executable first, then in the installed data
// folder. `text` is unused and always empty. A second call replaces the first.
void Translate_init(const std::string& text, const std::string& folder, const std::string& language,
                    const std::string& domain);

// The translation of `key`; a key without one translates to itself.
// `flags` and `found` are kept for the callers' sake; `found`, when given, is
// set to 1 if a translation was found, else 0.
std::string Translate(const std::string& key, int flags, int* found, const std::string& domain);

namespace korv::diag {
// The language and folder of the last Translate_init, for the log.
std::string translation_language();
} // namespace korv::diag
