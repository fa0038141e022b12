#include "ktranslate.h"

#include "errtrace.h"
#include "kplatform_module.h"
#include "kplatform_paths.h"
#include "po_catalog.h"

#include <cstdio>
#include <mutex>

#ifndef KORV_DATA_DIR
#define KORV_DATA_DIR "/usr/local/share/rigcfg"
#endif

namespace {

// The catalogue is parsed at its first use: a silent run mostly translates
// nothing, and a second init that reads the same text parses nothing again.
struct Translations {
    std::string language;
    std::string domain;
    std::string source; // the file the text came from; empty if none
    std::string text;
    bool parsed = false;
    korv::diag::detail::PoCatalog catalog;

    const korv::diag::detail::PoCatalog& parse() {
        if (!parsed) {
            catalog = korv::diag::detail::parse_po(text);
            parsed = true;
        }
        return catalog;
    }
};

std::mutex g_mutex;

Translations& translations() {
    static Translations* t = new Translations;
    return *t;
}

std::string lower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c | 0x20);
    return text;
}

// Read with C stdio: the streams would set up the C++ locale machinery for
// one small file, which a silent run otherwise never needs.
bool read_file(const std::string& path, std::string& text) {
    std::FILE* in = std::fopen(path.c_str(), "rb");
    if (!in)
        return false;
    char chunk[8192];
    text.clear();
    for (std::size_t got; (got = std::fread(chunk, 1, sizeof chunk, in)) > 0;)
        text.append(chunk, got);
    const bool read = !std::ferror(in);
    std::fclose(in);
    return read;
}

std::string folder_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

} // namespace

void Translate_init(const std::string& /*text*/, const std::string& folder,
                    const std::string& language, const std::string& domain) {
    const std::string relative = "/locale/" + lower(language) + "/" + domain + ".po";
    std::vector<std::string> candidates;
    if (!folder.empty())
        candidates.push_back(korv::platform::native_path(folder) + relative);
    else {
        candidates.push_back(folder_of(korv::platform::executable_path()) + relative);
        candidates.push_back(std::string(KORV_DATA_DIR) + relative);
    }

    const std::string wanted_language = lower(language);
    std::lock_guard lock(g_mutex);
    Translations& current = translations();
    for (const std::string& path : candidates) {
        std::string text;
        if (!read_file(path, text))
            continue;
        if (current.source != path || current.text != text) {
            current = Translations{};
            current.source = path;
            current.text = std::move(text);
        }
        current.language = wanted_language;
        current.domain = domain;
        if (_KTrace_TestLevel(KORV_MODULE, 4))
            KTRACE(4, "Translate_init(): %zu texts for \"%s\" from %s", current.parse().size(),
                   current.language.c_str(), path.c_str());
        return;
    }
    current = Translations{};
    current.language = wanted_language;
    current.domain = domain;
    current.parsed = true;
    KTRACE(2, "Translate_init(): no translation file %s for \"%s\"", relative.c_str(),
           current.language.c_str());
}

std::string Translate(const std::string& key, int /*flags*/, int* found,
                      const std::string& domain) {
    std::lock_guard lock(g_mutex);
    Translations& t = translations();
    if (domain == t.domain) {
        const auto& catalog = t.parse();
        if (const auto it = catalog.find(key); it != catalog.end()) {
            if (found)
                *found = 1;
            return it->second;
        }
    }
    if (found)
        *found = 0;
    return key;
}

std::string korv::diag::translation_language() {
    std::lock_guard lock(g_mutex);
    return translations().language;
}
