// The flat interface of the ini container.
#include "KIniData.h"

#include "errtrace.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

namespace korv {

namespace {

KIniData* data_of(KIniDataHandle handle) {
    return reinterpret_cast<KIniData*>(handle);
}

} // namespace

KIniDataHandle KIniData_Create() {
    return KIniData_Create(0);
}

KIniDataHandle KIniData_Create(std::uint32_t flags) {
    return reinterpret_cast<KIniDataHandle>(new (std::nothrow) KIniData(flags & KINI_ALL_FLAGS));
}

void KIniData_Destroy(KIniDataHandle handle) {
    delete data_of(handle);
}

bool KIniData_Open(KIniDataHandle handle, const char* file_name) {
    return handle && file_name && data_of(handle)->Open(file_name);
}

bool KIniData_Close(KIniDataHandle handle) {
    return handle && data_of(handle)->Close();
}

bool KIniData_Reopen(KIniDataHandle handle) {
    return handle && data_of(handle)->Reopen();
}

bool KIniData_Save(KIniDataHandle handle) {
    return handle && data_of(handle)->Save();
}

bool KIniData_IsOpen(KIniDataHandle handle) {
    return handle && data_of(handle)->is_open;
}

bool KIniData_IsFileMissing(KIniDataHandle handle) {
    return handle && data_of(handle)->file_missing;
}

bool KIniData_IsInSync(KIniDataHandle handle) {
    return handle && data_of(handle)->in_sync;
}

const char* KIniData_GetErrorText(KIniDataHandle handle) {
    return handle ? data_of(handle)->error_text.c_str() : "";
}

char* KIniData_GetContentString(KIniDataHandle handle) {
    if (!handle)
        return nullptr;
    const std::string content = data_of(handle)->GetContentString();
    char* copy = static_cast<char*>(std::malloc(content.size() + 1));
    if (!copy) {
        KERRTRACE("KIniData_GetContentString(): malloc() failed: %.50s", std::strerror(errno));
        return nullptr;
    }
    std::memcpy(copy, content.c_str(), content.size() + 1);
    return copy;
}

bool KIniData_SetContentString(KIniDataHandle handle, const char* text) {
    return handle && text && data_of(handle)->SetContentString(text);
}

bool KIniData_GetStringEntry(KIniDataHandle handle, const char* section, const char* name,
                             char* target, std::size_t size) {
    if (!handle || !section || !name || !target || size == 0)
        return false;
    const KIniDataEntry* entry = nullptr;
    if (const KIniDataSection* found = data_of(handle)->GetSection(section))
        entry = found->GetEntry(name);
    if (!entry)
        return false;
    const std::string_view value = entry->GetValue();
    if (value.size() >= size) {
        std::memcpy(target, value.data(), size - 1);
        target[size - 1] = '\0';
        KERRTRACE("KIniData_GetStringEntry(): returned string too long for target (%zu)",
                  value.size());
        return false;
    }
    std::memcpy(target, value.data(), value.size());
    target[value.size()] = '\0';
    return true;
}

bool KIniData_GetLongEntry(KIniDataHandle handle, const char* section, const char* name,
                           std::int32_t* value) {
    return handle && section && name && value &&
           data_of(handle)->GetLongEntry(section, name, *value);
}

bool KIniData_GetLongLongEntry(KIniDataHandle handle, const char* section, const char* name,
                               std::int64_t* value) {
    return handle && section && name && value &&
           data_of(handle)->GetLongLongEntry(section, name, *value);
}

bool KIniData_GetDoubleEntry(KIniDataHandle handle, const char* section, const char* name,
                             double* value) {
    return handle && section && name && value &&
           data_of(handle)->GetDoubleEntry(section, name, *value);
}

bool KIniData_HasSection(KIniDataHandle handle, const char* section) {
    return handle && section && data_of(handle)->HasSection(section);
}

bool KIniData_HasEntry(KIniDataHandle handle, const char* section, const char* name) {
    return handle && section && name && data_of(handle)->HasEntry(section, name);
}

std::size_t KIniData_GetEntryCount(KIniDataHandle handle, const char* section) {
    return handle && section ? data_of(handle)->GetEntryCount(section) : 0;
}

bool KIniData_GetSectionNames(KIniDataHandle handle, std::vector<std::string>& names) {
    if (!handle)
        return false;
    data_of(handle)->GetSectionNames(names);
    return true;
}

bool KIniData_GetEntryNames(KIniDataHandle handle, const char* section,
                            std::vector<std::string>& names) {
    if (!handle || !section)
        return false;
    data_of(handle)->GetEntryNames(section, names);
    return true;
}

bool KIniData_SetStringEntry(KIniDataHandle handle, const char* section, const char* name,
                             const char* value) {
    return handle && section && name && value &&
           data_of(handle)->SetStringEntry(section, name, value);
}

bool KIniData_SetLongEntry(KIniDataHandle handle, const char* section, const char* name,
                           std::int32_t value) {
    return handle && section && name && data_of(handle)->SetLongEntry(section, name, value);
}

bool KIniData_SetLongLongEntry(KIniDataHandle handle, const char* section, const char* name,
                               std::int64_t value) {
    return handle && section && name && data_of(handle)->SetLongLongEntry(section, name, value);
}

bool KIniData_SetDoubleEntry(KIniDataHandle handle, const char* section, const char* name,
                             double value) {
    return handle && section && name && data_of(handle)->SetDoubleEntry(section, name, value);
}

bool KIniData_AddSection(KIniDataHandle handle, const char* section) {
    return handle && section && data_of(handle)->AddSection(section);
}

bool KIniData_DeleteSection(KIniDataHandle handle, const char* section) {
    return handle && section && data_of(handle)->DeleteSection(section);
}

bool KIniData_DeleteEntry(KIniDataHandle handle, const char* section, const char* name) {
    return handle && section && name && data_of(handle)->DeleteEntry(section, name);
}

bool KIniData_RenameSection(KIniDataHandle handle, const char* old_name, const char* new_name) {
    return handle && old_name && new_name && data_of(handle)->RenameSection(old_name, new_name);
}

} // namespace korv
