#include "Configs.h"

#include "common.h"
#include "common_app_data.h"
#include "errtrace.h"
#include "fileops.h"
#include "kdirtools.h"
#include "machine_file_text.h"

#include <algorithm>

using korv::KIniData;

namespace {

constexpr const char* kAllProducts = "All products";

char upper(char c) {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c & ~0x20) : c;
}

// '*' and '?' against a file name, ignoring ASCII case as the platform's file
// search does. A '*' that fails is retried one character further on.
bool wildcard_match(const std::string& pattern, const std::string& name) {
    std::size_t p = 0, n = 0;
    std::size_t star = std::string::npos, resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == '?' || upper(pattern[p]) == upper(name[n]))) {
            ++p;
            ++n;
        } else if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = n;
        } else if (star != std::string::npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == '*')
        ++p;
    return p == pattern.size();
}

struct Listing {
    std::string pattern;
    std::vector<std::string> names;
};

bool collect_match(void* data, const std::string& path) {
    Listing& listing = *static_cast<Listing*>(data);
    const std::size_t slash = path.find_last_of("\\/");
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (wildcard_match(listing.pattern, name))
        listing.names.push_back(std::move(name));
    return true;
}

// The machine files in the order the Windows file system lists them (names
// compared upper-cased), so that absolute indices don't depend on the host's
// directory order.
std::vector<std::string> find_files(const std::string& folder, const std::string& pattern) {
    Listing listing{pattern, {}};
    // A missing folder is no match, and no message.
    KErrTrace_BeginContext();
    korv::iterateDirectory(folder, 0, nullptr, nullptr, collect_match, &listing);
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    std::sort(
        listing.names.begin(), listing.names.end(), [](const std::string& a, const std::string& b) {
            return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                                [](char x, char y) { return upper(x) < upper(y); });
        });
    return listing.names;
}

} // namespace

Configs::Configs() {
    _KTrace_SetLevel(KORV_MODULE, 3);

    KErrTrace_BeginContext();
    if (korv::GetCommonAppDataFolderForProduct(m_strDataFolder, "Korv", "KorSystemConfig", false))
        KErrTrace_ClearContext();
    else
        KERRTRACE_DUMP("Configs(): GetCommonAppDataFolderForProduct() failed");
    KErrTrace_EndContext();
    m_strMachinesFolder = m_strDataFolder + "machines\\";
    KTRACE(5, "Configs(): machine folder is %s", m_strMachinesFolder.c_str());

    const std::string settings = m_strDataFolder + "korsystemconfig.ini";
    KErrTrace_BeginContext();
    KIniData ini;
    if (!ini.Open(settings)) {
        KERRTRACE_DUMP("Configs(): open file %s failed", settings.c_str());
    } else {
        KErrTrace_ClearContext();
        if (ini.file_missing)
            KTRACE(0, "Configs(): file %s missing", settings.c_str());
        std::int32_t level = 0;
        if (ini.GetLongEntry("general", "ktrace_level", level))
            _KTrace_SetLevel(KORV_MODULE, level);
        std::int32_t show = 0;
        if (ini.GetLongEntry("general", "show_developer", show))
            m_showDeveloper = show;
        ini.Close();
    }
    KErrTrace_EndContext();

    m_vecLanguages = {"CS", "DE", "EN", "ES", "FR", "HU", "IT", "JA",
                      "KO", "NL", "PL", "PT", "RU", "SV", "TR", "ZH"};
}

void Configs::Read(bool licensed_only, bool simulation) {
    KTRACE(5, "Read(): m_strDataFolder = %s", m_strDataFolder.c_str());
    KTRACE(5, "Read(): m_strMachinesFolder = %s", m_strMachinesFolder.c_str());
    Cleanup();
    ReadProductsFile(licensed_only);
    ReadMachineFiles(simulation);
}

void Configs::Cleanup() {
    m_vecMachines.clear();
    m_vecProducts.clear();
}

void Configs::ReadProductsFile(bool licensed_only) {
    const std::string path = Expand("<product_infos>\\products.ini");
    KErrTrace_BeginContext();
    KIniData ini;
    if (!ini.Open(path)) {
        KERRLOG("ReadProductsFile(): could not open file %s", path.c_str());
        KErrTrace_ClearContext();
        KErrTrace_EndContext();
        return;
    }
    KErrTrace_ClearContext();
    KErrTrace_EndContext();

    std::string list;
    if (!ini.GetStringEntry("general", "products", list))
        KERRLOG("ReadProductsFile(): could not read products string from %s", path.c_str());
    m_vecProducts.clear();
    if (licensed_only)
        GetLicenses();
    for (const std::string& word : machine_file::read_list(list, false)) {
        if (licensed_only && !IsLicensedProduct(word))
            continue;
        ProductEntry product;
        product.name = word;
        std::string section = word;
        std::replace(section.begin(), section.end(), ' ', '_');
        if (!ini.GetStringEntry(section, "description", product.description))
            product.description = word;
        m_vecProducts.push_back(std::move(product));
    }
    if (!licensed_only)
        m_vecProducts.push_back({kAllProducts, "all_products.txt"});
    ini.Close();
}

void Configs::ReadMachineFiles(bool simulation) {
    AddMachineFiles("*.ini", simulation);
    AddMachineFiles("*.alias", simulation);
}

void Configs::AddMachineFiles(const std::string& pattern, bool simulation) {
    for (const std::string& name : find_files(m_strMachinesFolder, pattern)) {
        MachineEntry entry;
        if (!ReadMachineFile(name, entry)) {
            KTRACE(3, "AddMachineFiles(): %s skipped", name.c_str());
            continue;
        }
        if (entry.file_name.find("user") != std::string::npos && entry.configure.mode == "new") {
            korv::file_remove(m_strMachinesFolder + entry.file_name);
            KTRACE(3, "AddMachineFiles(): file %s REMOVED", entry.file_name.c_str());
            continue;
        }
        if ((entry.simulation == "true") != simulation)
            continue;
        if (entry.developer == 1 && m_showDeveloper != 1)
            continue;
        m_vecMachines.push_back(entry);
        KTRACE(5, "AddMachineFiles(): %s added", name.c_str());
    }
}
