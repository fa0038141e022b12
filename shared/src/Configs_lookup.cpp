#include "Configs.h"
#include "errtrace.h"

#include <algorithm>
#include <cinttypes>

namespace {

constexpr const char* kAllProducts = "All products";

bool has_value(const std::map<std::string, std::string>& texts, const std::string& text) {
    return std::any_of(texts.begin(), texts.end(),
                       [&](const auto& entry) { return entry.second == text; });
}

} // namespace

void Configs::BuildMachineProductIndexVec(const std::string& product,
                                          std::vector<int>& indices) const {
    indices.clear();
    const bool all = product == kAllProducts;
    for (std::size_t i = 0; i < m_vecMachines.size(); ++i) {
        const MachineEntry& machine = m_vecMachines[i];
        bool belongs = all;
        for (const std::string& word : machine.products) {
            if (word == product) {
                KTRACE(5, "BuildMachineProductIndexVec(): add %s", machine.file_name.c_str());
                belongs = true;
                break;
            }
        }
        if (belongs)
            indices.push_back(static_cast<int>(i));
    }
}

std::int64_t Configs::GetAbsoluteMachineIndexFromProductIndex(int iProductIndex,
                                                              int iProductMachineIndex) const {
    if (iProductIndex < 0 || static_cast<std::size_t>(iProductIndex) >= m_vecProducts.size()) {
        KERRLOG("GetAbsoluteMachineIndexFromProductIndex(): invalid iProductIndex = %i "
                "m_vecProducts.size() = %zu",
                iProductIndex, m_vecProducts.size());
        return -1;
    }
    std::vector<int> vec;
    BuildMachineProductIndexVec(m_vecProducts[iProductIndex].name, vec);
    if (iProductMachineIndex < 0 || static_cast<std::size_t>(iProductMachineIndex) >= vec.size()) {
        KERRLOG("GetAbsoluteMachineIndexFromProductIndex(): invalid iProductMachineIndex = %i "
                "vec.size() = %zu",
                iProductMachineIndex, vec.size());
        return -1;
    }
    return vec[iProductMachineIndex];
}

std::string Configs::GetMachineConfigFileFullPath(std::int64_t idx) const {
    if (idx < 0 || static_cast<std::uint64_t>(idx) >= m_vecMachines.size()) {
        KERRLOG("GetMachineConfigFileFullPath(): invalid idx = %" PRId64
                " m_vecMachines.size() = %zu",
                idx, m_vecMachines.size());
        return {};
    }
    std::string path = m_strMachinesFolder + m_vecMachines[idx].file_name;
    KTRACE(5, "GetMachineConfigFileFullPath(): done with %s", path.c_str());
    return path;
}

MachineEntry* Configs::GetMachineByProductIndex(int iProductIndex, int iProductMachineIndex) {
    return GetMachineByIndex(
        GetAbsoluteMachineIndexFromProductIndex(iProductIndex, iProductMachineIndex));
}

MachineEntry* Configs::GetMachineByIndex(std::int64_t idx) {
    if (idx < 0 || static_cast<std::uint64_t>(idx) >= m_vecMachines.size())
        return nullptr;
    return &m_vecMachines[idx];
}

int Configs::GetProductIndex(const std::string& product) const {
    for (std::size_t i = 0; i < m_vecProducts.size(); ++i)
        if (m_vecProducts[i].name == product)
            return static_cast<int>(i);
    return -1;
}

int Configs::GetProductMachineIndex(const std::string& product,
                                    const std::string& file_name) const {
    std::vector<int> vec;
    BuildMachineProductIndexVec(product, vec);
    for (std::size_t i = 0; i < vec.size(); ++i)
        if (m_vecMachines[vec[i]].file_name == file_name)
            return static_cast<int>(i);
    return -1;
}

int Configs::GetProductVariantIndex(const std::string& product, const std::string& file_name,
                                    const std::string& variant) const {
    std::vector<int> vec;
    BuildMachineProductIndexVec(product, vec);
    for (const int idx : vec) {
        const MachineEntry& machine = m_vecMachines[idx];
        if (machine.file_name != file_name)
            continue;
        for (std::size_t i = 0; i < machine.variants.size(); ++i)
            if (machine.variants[i].name == variant)
                return static_cast<int>(i);
        return -1;
    }
    return -1;
}

int Configs::GetLanguageIndex(const std::string& language) const {
    for (std::size_t i = 0; i < m_vecLanguages.size(); ++i)
        if (m_vecLanguages[i] == language)
            return static_cast<int>(i);
    return -1;
}

// Behind a machine with variants the scan only looks at the first variant of
// each following machine, and passes over the first one without variants
// before it compares machines' own texts again. The suite has always seen this
// walk; it stays.
bool Configs::IsMachineDescription(const std::string& text) const {
    const std::size_t n = m_vecMachines.size();
    for (std::size_t i = 0; i < n; ++i) {
        const MachineEntry& machine = m_vecMachines[i];
        if (machine.description == text || has_value(machine.descriptions, text))
            return true;
        for (; i < n && !m_vecMachines[i].variants.empty(); ++i)
            if (has_value(m_vecMachines[i].variants.front().descriptions, text))
                return true;
    }
    return false;
}
