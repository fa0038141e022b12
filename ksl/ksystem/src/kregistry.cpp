#include "kregistry.h"

#include "errtrace.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>

namespace korv {
namespace {

using namespace platform;

// KEY_READ and KEY_WRITE, each with the 32-bit view flag.
constexpr REGSAM kReadAccess = 131609;
constexpr REGSAM kWriteAccess = 131590;

constexpr std::size_t kSmallSize = 260;
constexpr std::size_t kLargeSize = 65535;

std::recursive_mutex g_regLock;
char g_regSmallRing[16][kSmallSize];
unsigned g_regSmallNext = 0;
char g_regLargeRing[8][kLargeSize];
unsigned g_regLargeNext = 0;
std::unique_ptr<char[]> g_regHuge;
RegMessageBoxHook g_messageBox;

// A registry file that can't be used reads as empty; say so once.
void report_file_problem(const char* function) {
    static std::atomic<unsigned long> reported{0};
    const RegistryFileProblem problem = registry_file_problem();
    if (problem.serial == 0 || reported.exchange(problem.serial) == problem.serial)
        return;
    KERRLOG("%s(): registry file \"%s\" reads as empty: line %u: %s", function,
            problem.path.c_str(), problem.line, problem.reason.c_str());
}

LONG create_key(HKEY root, const char* key, HKEY* created) {
    return RegCreateKeyExA(root, key, 0, nullptr, 0, kWriteAccess, nullptr, created, nullptr);
}

// An open key, closed at the end of the scope.
class OpenKey {
public:
    OpenKey(HKEY root, const char* key, REGSAM access)
        : m_result(RegOpenKeyExA(root, key, 0, access, &m_key)) {}
    ~OpenKey() {
        if (m_key)
            RegCloseKey(m_key);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    bool ok() const { return m_result == ERROR_SUCCESS; }
    HKEY get() const { return m_key; }
    // Creates the key when opening it failed, in the view it is read from:
    // RegCreateKeyA would put it in the 64-bit view of a 64-bit program.
    bool create(HKEY root, const char* key) {
        if (!ok())
            m_result = create_key(root, key, &m_key);
        return ok();
    }

private:
    HKEY m_key = nullptr;
    LONG m_result;
};

bool set_value(HKEY key, const char* value, DWORD type, const void* data, DWORD size) {
    return RegSetValueExA(key, value, 0, type, static_cast<const BYTE*>(data), size) ==
           ERROR_SUCCESS;
}

} // namespace

void RegSetMessageBoxHook(RegMessageBoxHook hook) {
    std::lock_guard lock(g_regLock);
    g_messageBox = std::move(hook);
}

bool RegReadString(HKEY root, const char* key, const char* value, char* buffer, DWORD& size) {
    std::lock_guard lock(g_regLock);
    OpenKey open(root, key, kReadAccess);
    report_file_problem("RegReadString");
    if (!open.ok() || !buffer || size == 0) {
        size = 0;
        return false;
    }
    const DWORD capacity = size;
    DWORD type = 0;
    const LONG result =
        RegQueryValueExA(open.get(), value, nullptr, &type, reinterpret_cast<BYTE*>(buffer), &size);
    if (result == ERROR_MORE_DATA)
        return false;
    if (result != ERROR_SUCCESS || type != REG_SZ) {
        size = 0;
        return false;
    }
    buffer[capacity - 1] = '\0';
    if (size < capacity)
        buffer[size] = '\0'; // a value stored without terminator ends here too
    return true;
}

const char* RegReadStringLM(const char* key, const char* value) {
    return RegReadStringLM(key, value, "");
}

const char* RegReadStringLM(const char* key, const char* value, const char* fallback) {
    std::lock_guard lock(g_regLock);
    char* small = g_regSmallRing[g_regSmallNext++ % 16];
    small[0] = '\0';
    OpenKey open(HKEY_LOCAL_MACHINE, key, kReadAccess);
    report_file_problem("RegReadStringLM");
    if (!open.ok())
        return fallback;

    char* result = small;
    DWORD type = 0;
    DWORD size = kSmallSize - 1;
    LONG status =
        RegQueryValueExA(open.get(), value, nullptr, &type, reinterpret_cast<BYTE*>(small), &size);
    if (status == ERROR_MORE_DATA) {
        if (size < kLargeSize) {
            result = g_regLargeRing[g_regLargeNext++ % 8];
            size = kLargeSize - 1;
        } else {
            g_regHuge.reset(new char[std::size_t{size} + 1]);
            result = g_regHuge.get();
        }
        status = RegQueryValueExA(open.get(), value, nullptr, &type,
                                  reinterpret_cast<BYTE*>(result), &size);
    }
    if (status != ERROR_SUCCESS || type != REG_SZ)
        return fallback;
    result[size] = '\0'; // there is always room behind the capacity asked for
    return result;
}

bool RegWriteString(HKEY root, const char* key, const char* value, const char* text) {
    std::lock_guard lock(g_regLock);
    OpenKey open(root, key, kWriteAccess);
    const bool ok =
        text && open.create(root, key) &&
        set_value(open.get(), value, REG_SZ, text, static_cast<DWORD>(std::strlen(text) + 1));
    report_file_problem("RegWriteString");
    return ok;
}

double RegReadDouble(HKEY root, const char* key, const char* value, double fallback) {
    std::lock_guard lock(g_regLock);
    OpenKey open(root, key, kReadAccess);
    report_file_problem("RegReadDouble");
    double number = 0;
    DWORD type = 0;
    DWORD size = sizeof number;
    if (!open.ok() || RegQueryValueExA(open.get(), value, nullptr, &type,
                                       reinterpret_cast<BYTE*>(&number), &size) != ERROR_SUCCESS)
        return fallback;
    return type == REG_BINARY && size == sizeof number ? number : fallback;
}

bool RegWriteDouble(HKEY root, const char* key, const char* value, double number) {
    std::lock_guard lock(g_regLock);
    bool ok = false;
    {
        OpenKey open(root, key, kWriteAccess);
        ok = open.ok() && set_value(open.get(), value, REG_BINARY, &number, sizeof number);
    }
    if (!ok) {
        HKEY created = nullptr;
        if (create_key(root, key, &created) == ERROR_SUCCESS) {
            ok = set_value(created, value, REG_BINARY, &number, sizeof number);
            RegCloseKey(created);
        }
    }
    report_file_problem("RegWriteDouble");
    return ok;
}

bool RegWriteLongLong(HKEY root, const char* key, const char* value, long long number) {
    std::lock_guard lock(g_regLock);
    OpenKey open(root, key, kWriteAccess);
    const bool ok = open.create(root, key) && set_value(open.get(), value, REG_QWORD, &number, 8);
    report_file_problem("RegWriteLongLong");
    return ok;
}

long long RegReadLongLong(HKEY root, const char* key, const char* value, long long fallback) {
    std::lock_guard lock(g_regLock);
    OpenKey open(root, key, kReadAccess);
    report_file_problem("RegReadLongLong");
    long long number = 0;
    DWORD type = 0;
    DWORD size = 4; // kept: an 8-byte value answers "more data"
    if (!open.ok() || RegQueryValueExA(open.get(), value, nullptr, &type,
                                       reinterpret_cast<BYTE*>(&number), &size) != ERROR_SUCCESS)
        return fallback;
    return type == REG_QWORD ? number : fallback;
}

bool RegDeleteValue(const char* key, const char* value) {
    std::lock_guard lock(g_regLock);
    OpenKey open(HKEY_LOCAL_MACHINE, key, kWriteAccess);
    const bool ok = open.ok() && RegDeleteValueA(open.get(), value) == ERROR_SUCCESS;
    report_file_problem("RegDeleteValue");
    return ok;
}

bool RegValueExists(const char* key, const char* value) {
    OpenKey open(HKEY_LOCAL_MACHINE, key, kReadAccess);
    DWORD size = 0;
    return open.ok() &&
           RegQueryValueExA(open.get(), value, nullptr, nullptr, nullptr, &size) == ERROR_SUCCESS;
}

bool RegDeleteKey(const char* key) {
    std::lock_guard lock(g_regLock);
    if (!key)
        return false;
    const LONG result = RegDeleteKeyExA(HKEY_LOCAL_MACHINE, key, KEY_WOW64_32KEY, 0);
    report_file_problem("RegDeleteKey");
    if (result == ERROR_SUCCESS)
        return true;
    if (result == ERROR_FILE_NOT_FOUND)
        return false;
    return RegReportError(result);
}

bool RegEnumValues(HKEY root, const char* key, std::vector<std::string>& names,
                   std::vector<DWORD>& types, std::vector<std::vector<unsigned char>>& data,
                   std::vector<DWORD>& sizes, std::vector<std::string>* sub_keys) {
    std::lock_guard lock(g_regLock);
    names.clear();
    types.clear();
    data.clear();
    sizes.clear();
    if (sub_keys)
        sub_keys->clear();
    OpenKey open(root, key, kReadAccess);
    report_file_problem("RegEnumValues");
    DWORD key_count = 0, longest_key = 0, value_count = 0, longest_name = 0, longest_data = 0;
    if (!open.ok() || RegQueryInfoKeyA(open.get(), nullptr, nullptr, nullptr, &key_count,
                                       &longest_key, nullptr, &value_count, &longest_name,
                                       &longest_data, nullptr, nullptr) != ERROR_SUCCESS)
        return false;

    std::string name(std::size_t{longest_name} + 1, '\0');
    std::vector<unsigned char> bytes(longest_data);
    for (DWORD i = 0;; ++i) {
        DWORD name_size = static_cast<DWORD>(name.size());
        DWORD type = 0;
        DWORD size = static_cast<DWORD>(bytes.size());
        const LONG result = RegEnumValueA(open.get(), i, name.data(), &name_size, nullptr, &type,
                                          bytes.data(), &size);
        if (result == ERROR_NO_MORE_ITEMS)
            break;
        if (result != ERROR_SUCCESS)
            return false;
        names.emplace_back(name.data(), name_size);
        types.push_back(type);
        data.emplace_back(bytes.begin(), bytes.begin() + size);
        sizes.push_back(size);
    }
    if (!sub_keys)
        return true;
    std::string sub(std::size_t{longest_key} + 1, '\0');
    for (DWORD i = 0;; ++i) {
        DWORD size = static_cast<DWORD>(sub.size());
        const LONG result =
            RegEnumKeyExA(open.get(), i, sub.data(), &size, nullptr, nullptr, nullptr, nullptr);
        if (result == ERROR_NO_MORE_ITEMS)
            return true;
        if (result != ERROR_SUCCESS)
            return false;
        sub_keys->emplace_back(sub.data(), size);
    }
}

bool RegReportError(LONG code) {
    if (code == ERROR_SUCCESS || code == ERROR_NO_MORE_ITEMS)
        return true;
    std::lock_guard lock(g_regLock);
    const std::string text = win32_error_text(static_cast<DWORD>(code));
    if (g_messageBox) {
        g_messageBox(text, "Registry access error", kRegErrorBoxType);
    } else {
        std::string line = text;
        while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
            line.pop_back();
        KERRLOG("RegReportError(): Registry access error %ld: %s", static_cast<long>(code),
                line.c_str());
    }
    return false;
}

} // namespace korv
