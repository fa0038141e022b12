// The licence check of the product list. This build has no licence library:
// no licences are fetched, every product passes, and licence names are the
// product names.
#include "Configs.h"

#include <map>

namespace {

// Licence names that differ from the product names they stand for.
const std::map<std::string, std::string>& licence_names() {
    static const std::map<std::string, std::string> table;
    return table;
}

} // namespace

void Configs::GetLicenses() {
    m_vecLicenses.clear();
}

bool Configs::IsLicensedProduct(const std::string& /*product*/) const {
    return true;
}

std::string Configs::LicenseNameToProductName(const std::string& name) const {
    const auto found = licence_names().find(name);
    return found == licence_names().end() ? name : found->second;
}
