// The version resource of the running executable.
#pragma once

#include <string>

namespace korv {

class FileVersionInfo {
public:
    // The running executable, named as the framework names it: its base name
    // followed by ".EXE".
    FileVersionInfo();
    // Another file; one without a version resource gives empty strings.
    explicit FileVersionInfo(const std::string& file);
    ~FileVersionInfo();
    FileVersionInfo(const FileVersionInfo&) = delete;
    FileVersionInfo& operator=(const FileVersionInfo&) = delete;

    // The string of that name in the resource, or the empty string.
    std::string GetValue(const std::string& name) const;

    std::string GetProductName() const { return GetValue("ProductName"); }
    std::string GetCompanyName() const { return GetValue("CompanyName"); }
    std::string GetLegalCopyright() const { return GetValue("LegalCopyright"); }
    std::string GetComments() const { return GetValue("Comments"); }
    std::string GetFileDescription() const { return GetValue("FileDescription"); }
    std::string GetFileVersion() const { return GetValue("FileVersion"); }
    std::string GetInternalName() const { return GetValue("InternalName"); }
    std::string GetLegalTrademarks() const { return GetValue("LegalTrademarks"); }
    std::string GetPrivateBuild() const { return GetValue("PrivateBuild"); }
    std::string GetSpecialBuild() const { return GetValue("SpecialBuild"); }

    // "ProductVersion", followed by a blank and the service pack text if there is one.
    std::string GetProductVersionText() const;
    // "SP " and the key "ServicePack" of section [Version] in version_sr.txt
    // of the folder that the registry value "root" of
    // HKEY_LOCAL_MACHINE\Software\Korv\Hub32\volatile names; empty without one.
    std::string GetServicePackText() const;
    // The product version text as one number: "6.05-0 SP 2" gives 6050002.
    long GetVersionNumber() const;

    unsigned char* m_block = nullptr; // the whole resource; null without one
    std::string m_language;           // "%04x%04x" of the first language and code page

private:
    void Load(const std::string& file);
};

// ((a * 100 + b) * 100 + c) * 100 + d of a text "a.b-c sp d", blanks ignored
// and case folded; a part that is missing counts 0.
long VersionNumberFromText(const std::string& text);

} // namespace korv
