// The profile calls on a file made of the input: the section list, each
// section's key list and each value, read with a roomy and with a tight buffer;
// then a write into the first section, read back, and a removal.
#include "fuzz_support.h"
#include "kplatform_profile.h"

#include <cstring>
#include <vector>

using namespace korv::platform;

namespace {

// The names of a NUL-separated list as the profile calls give it.
std::vector<std::string> names_of(const std::vector<char>& buffer, DWORD length) {
    std::vector<std::string> names;
    for (std::size_t at = 0; at < length;) {
        const std::string name(buffer.data() + at);
        names.push_back(name);
        at += name.size() + 1;
    }
    return names;
}

std::string get(const char* section, const char* key, const std::string& file, DWORD size,
                DWORD& length) {
    std::vector<char> buffer(size + 1, '\x7f');
    length = GetPrivateProfileStringA(section, key, "dflt", buffer.data(), size, file.c_str());
    FUZZ_CHECK(length < size || size == 0, "%u bytes reported for a buffer of %u", length, size);
    FUZZ_CHECK(buffer[size] == '\x7f', "wrote behind a buffer of %u", size);
    if (size > 0)
        FUZZ_CHECK(buffer[length] == '\0', "no terminator behind %u bytes", length);
    return std::string(buffer.data(), length);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korv::fuzz::Choices choices(data, size);
    const DWORD tight = choices.byte() % 16;
    const std::string file = korv::fuzz::scratch() + "/profile.ini";
    korv::fuzz::trim_logs();
    // Forget the parsed files, so that a file of the same size and time is read anew.
    WritePrivateProfileStringA(nullptr, nullptr, nullptr, nullptr);
    korv::fuzz::write_file(file, std::string_view(reinterpret_cast<const char*>(data), size));

    const DWORD roomy = static_cast<DWORD>(size) * 2 + 64;
    std::vector<char> list(roomy);
    const DWORD list_length =
        GetPrivateProfileStringA(nullptr, nullptr, "", list.data(), roomy, file.c_str());
    const std::vector<std::string> sections = names_of(list, list_length);
    DWORD length = 0;
    (void)get(nullptr, nullptr, file, tight, length);
    for (const std::string& section : sections) {
        const DWORD keys_length = GetPrivateProfileStringA(section.c_str(), nullptr, "",
                                                           list.data(), roomy, file.c_str());
        (void)get(section.c_str(), nullptr, file, tight, length);
        for (const std::string& key : names_of(list, keys_length)) {
            const std::string whole = get(section.c_str(), key.c_str(), file, roomy, length);
            const std::string cut = get(section.c_str(), key.c_str(), file, tight, length);
            FUZZ_CHECK(whole.compare(0, cut.size(), cut) == 0,
                       "a cut value is no prefix of the whole one");
        }
    }

    // The file's names lose their blanks (space, tab, vertical tab) while a name
    // asked for loses only spaces; so the write takes a name without them.
    const std::string section = sections.empty() ? "fuzz" : sections.front();
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\v'; };
    if (section.empty() || section.find(']') != std::string::npos || blank(section.front()) ||
        blank(section.back()))
        return 0;
    if (WritePrivateProfileStringA(section.c_str(), "fuzz_key", "fuzz value", file.c_str())) {
        const std::string back = get(section.c_str(), "fuzz_key", file, roomy, length);
        FUZZ_CHECK(back == "fuzz value", "written value reads back as \"%s\"", back.c_str());
        FUZZ_CHECK(WritePrivateProfileStringA(section.c_str(), "fuzz_key", nullptr, file.c_str()),
                   "written key cannot be removed");
        const std::string gone = get(section.c_str(), "fuzz_key", file, roomy, length);
        FUZZ_CHECK(gone == "dflt", "removed key reads as \"%s\"", gone.c_str());
    }
    return 0;
}
