// The library's entry to the machine description files: the reader and writer
// of one file, a listing of all usable machines with the products of
// products.ini, look-ups between the two, and the copy and save of the
// configurations stored in the files.
#pragma once

#include "KIniData_template_core.h"
#include "MachineEntry.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

struct ProductEntry {
    std::string name;
    std::string description; // display text, or a translation key
};

class Configs {
public:
    // Finds the data folder, reads korsystemconfig.ini there and fills the
    // language list. Resets the trace level of this library to 3 first.
    Configs();

    // The listing: products, then the machines whose "simulation" fits.
    void Read(bool licensed_only, bool simulation);
    void Cleanup();
    void ReadProductsFile(bool licensed_only);
    void ReadMachineFiles(bool simulation);
    // Adds the machine files of the machines folder that match `pattern`.
    void AddMachineFiles(const std::string& pattern, bool simulation);

    // Look-ups. Indices within a product count its machines in listing order.
    void BuildMachineProductIndexVec(const std::string& product, std::vector<int>& indices) const;
    std::int64_t GetAbsoluteMachineIndexFromProductIndex(int iProductIndex,
                                                         int iProductMachineIndex) const;
    std::string GetMachineConfigFileFullPath(std::int64_t idx) const;
    MachineEntry* GetMachineByProductIndex(int iProductIndex, int iProductMachineIndex);
    MachineEntry* GetMachineByIndex(std::int64_t idx);
    int GetProductIndex(const std::string& product) const;
    int GetProductMachineIndex(const std::string& product, const std::string& file_name) const;
    int GetProductVariantIndex(const std::string& product, const std::string& file_name,
                               const std::string& variant) const;
    int GetLanguageIndex(const std::string& language) const;
    bool IsMachineDescription(const std::string& text) const;

    // One machine file, named relative to the machines folder.
    bool ReadMachineFile(const std::string& file_name, MachineEntry& entry);
    bool ReadMachineFileConnection(korv::KIniData& ini, MachineEntry& entry);
    bool ReadMachineFileVariants(korv::KIniData& ini, MachineEntry& entry);
    bool WriteMachineFile(const std::string& file_name, MachineEntry& entry);
    void WriteMachineFileConnection(korv::KIniData& ini, MachineEntry& entry);
    void WriteMachineFileVariants(korv::KIniData& ini, MachineEntry& entry);

    // Writes the stored configuration to its target: that of the variant named
    // `variant` if the entry has one, else the entry's own.
    bool CopyConfig(const MachineEntry& entry, const std::string& variant) const;
    // Takes the live loader file into the entry, at the place CopyConfig reads
    // for `variant`, and rewrites the entry's file with configure mode "copy".
    // `machine_index` is the caller's index of the entry; the entry given is
    // what is written.
    bool SaveConfigurationToMachineConfigFile(std::int64_t machine_index, MachineEntry& entry,
                                              const std::string& variant);

    // The licence check: a table from licence names to product names, and the
    // test of a product word.
    void GetLicenses();
    bool IsLicensedProduct(const std::string& product) const;
    std::string LicenseNameToProductName(const std::string& name) const;

    std::vector<MachineEntry> m_vecMachines;
    std::vector<ProductEntry> m_vecProducts;
    std::vector<std::string> m_vecLanguages;
    std::string m_strDataFolder;     // ends in '\\'
    std::string m_strMachinesFolder; // m_strDataFolder + "machines\\"
    std::int32_t m_showDeveloper = 0;
    std::vector<std::string> m_vecLicenses;

private:
    // The machine description or a variant's texts from a .loc file, for the
    // known language codes.
    void ReadLocSection(korv::KIniData& loc, const std::string& section,
                        std::map<std::string, std::string>& texts) const;
};

// Reads one value of a machine file into `value`, which keeps what it held when
// the key is absent. A key that is there but can't be read goes to the error log.
void ReadStringEntry(std::string& value, korv::KIniData& ini, const std::string& file_name,
                     const char* section, const char* key);
void ReadLongEntry(std::int32_t& value, korv::KIniData& ini, const std::string& file_name,
                   const char* section, const char* key);

// One key per entry of `texts`, in map order.
void WriteMap(korv::KIniData& ini, const std::string& section,
              const std::map<std::string, std::string>& texts);
