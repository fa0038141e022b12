#include "ktranslate.h"

#include "errtrace.h"
#include "kplatform_module.h"
#include "kplatform_paths.h"
#include "po_catalog.h"

#include <fstream>
#include <mutex>
#include <sstream>

#ifndef KORV_DATA_DIR
#define KORV_DATA_DIR "/usr/local/share/rigcfg"
#endif

namespace {

struct Translations {
    std::string language;
    std::string domain;
    korv::diag::detail::PoCatalog catalog;
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

bool read_file(const std::string& path, std::string& text) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream buffer;
    buffer << in.rdbuf();
    text = buffer.str();
    return true;
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

    Translations fresh;
    fresh.language = lower(language);
    fresh.domain = domain;
    std::string text;
    bool found = false;
    for (const std::string& path : candidates) {
        if (read_file(path, text)) {
            fresh.catalog = korv::diag::detail::parse_po(text);
            KTRACE(4, "Translate_init(): %zu texts for \"%s\" from %s", fresh.catalog.size(),
                   fresh.language.c_str(), path.c_str());
            found = true;
            break;
        }
    }
    if (!found)
        KTRACE(2, "Translate_init(): no translation file %s for \"%s\"", relative.c_str(),
               fresh.language.c_str());

    std::lock_guard lock(g_mutex);
    translations() = std::move(fresh);
}

std::string Translate(const std::string& key, int /*flags*/, int* found,
                      const std::string& domain) {
    std::lock_guard lock(g_mutex);
    const Translations& t = translations();
    if (domain == t.domain) {
        if (const auto it = t.catalog.find(key); it != t.catalog.end()) {
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
