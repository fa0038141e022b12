// The registry file on disk, through the registry calls: every key and value of
// the file is walked and read as the program reads them, then one value is
// written, which rewrites the whole file, and read back.
#include "fuzz_support.h"
#include "kplatform_registry.h"
#include "kregistry.h"

#include <cstring>
#include <unistd.h>
#include <vector>

using namespace korv::platform;

namespace {

void walk(HKEY key, int depth) {
    DWORD sub_keys = 0, values = 0, max_name = 0, max_value_name = 0, max_value = 0;
    if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &sub_keys, &max_name, nullptr, &values,
                         &max_value_name, &max_value, nullptr, nullptr) != ERROR_SUCCESS)
        return;
    for (DWORD i = 0; i < values; ++i) {
        std::vector<char> name(max_value_name + 1);
        std::vector<BYTE> bytes(max_value + 1);
        DWORD name_size = static_cast<DWORD>(name.size());
        DWORD data_size = static_cast<DWORD>(bytes.size());
        DWORD type = 0;
        const LONG got = RegEnumValueA(key, i, name.data(), &name_size, nullptr, &type,
                                       bytes.data(), &data_size);
        FUZZ_CHECK(got == ERROR_SUCCESS,
                   "value %u of %u not enumerated (%ld) with the sizes "
                   "the key reported",
                   i, values, static_cast<long>(got));
        // A buffer one byte short of what the value needs is refused with the
        // size needed. A name with a NUL in it can't be asked for by name.
        if (std::strlen(name.data()) != name_size)
            continue;
        DWORD need = 0;
        if (RegQueryValueExA(key, name.data(), nullptr, &type, nullptr, &need) != ERROR_SUCCESS ||
            need == 0)
            continue;
        std::vector<BYTE> tight(need);
        DWORD small = need - 1;
        const LONG short_read =
            RegQueryValueExA(key, name.data(), nullptr, &type, tight.data(), &small);
        FUZZ_CHECK(short_read == ERROR_MORE_DATA && small == need,
                   "short buffer gave %ld and size %u, not %u", static_cast<long>(short_read),
                   small, need);
    }
    if (depth > 8)
        return;
    for (DWORD i = 0; i < sub_keys; ++i) {
        std::vector<char> name(max_name + 1);
        DWORD name_size = static_cast<DWORD>(name.size());
        if (RegEnumKeyExA(key, i, name.data(), &name_size, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            break;
        // A name cut short by a NUL the file held (or an empty one) opens this
        // same key again: walking it would only repeat the walk, ever wider.
        if (name_size == 0 || std::strlen(name.data()) != name_size)
            continue;
        HKEY sub = nullptr;
        if (RegOpenKeyExA(key, name.data(), 0, KEY_READ, &sub) == ERROR_SUCCESS) {
            walk(sub, depth + 1);
            RegCloseKey(sub);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    korv::fuzz::scratch();
    korv::fuzz::trim_logs();
    const std::string path = registry_file_path();
    // A new file each time, so that the store never takes it for the one before.
    ::unlink(path.c_str());
    korv::fuzz::write_file(path, std::string_view(reinterpret_cast<const char*>(data), size));

    for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER, HKEY_CLASSES_ROOT, HKEY_USERS})
        walk(root, 0);
    (void)korv::RegReadStringLM("SOFTWARE\\Korv\\Hub32\\volatile", "UserData");

    const std::string before = korv::fuzz::read_file(path);
    const bool wrote = korv::RegWriteString(HKEY_LOCAL_MACHINE, "SOFTWARE\\Fuzz", "name", "text");
    if (wrote) {
        char buffer[16] = {};
        DWORD length = sizeof buffer;
        FUZZ_CHECK(
            korv::RegReadString(HKEY_LOCAL_MACHINE, "SOFTWARE\\Fuzz", "name", buffer, length) &&
                std::string(buffer) == "text",
            "written value reads back as \"%s\"", buffer);
    } else {
        FUZZ_CHECK(korv::fuzz::read_file(path) == before, "a refused write changed the file");
    }
    return 0;
}
