// The ini container behind a handle: one function per operation of KIniData.
//
// Each function forwards to the operation of the same name; a null handle
// answers false, 0 or null. Two do more: KIniData_GetContentString returns a
// malloc'ed copy that the caller frees, and KIniData_GetStringEntry copies into
// a buffer of the caller's.
#pragma once

#include "KIniData_template_core.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace korv {

struct KIniDataHandleTag;
using KIniDataHandle = KIniDataHandleTag*;

KIniDataHandle KIniData_Create();
// Bits outside the known flags are dropped.
KIniDataHandle KIniData_Create(std::uint32_t flags);
void KIniData_Destroy(KIniDataHandle handle);

bool KIniData_Open(KIniDataHandle handle, const char* file_name);
bool KIniData_Close(KIniDataHandle handle);
bool KIniData_Reopen(KIniDataHandle handle);
bool KIniData_Save(KIniDataHandle handle);

bool KIniData_IsOpen(KIniDataHandle handle);
bool KIniData_IsFileMissing(KIniDataHandle handle);
bool KIniData_IsInSync(KIniDataHandle handle);
// The container's last problem in words; empty for a null handle.
const char* KIniData_GetErrorText(KIniDataHandle handle);

// A malloc'ed, NUL-terminated copy for the caller to free; null on failure.
char* KIniData_GetContentString(KIniDataHandle handle);
bool KIniData_SetContentString(KIniDataHandle handle, const char* text);

// Copies the value with its NUL into `target` of `size` bytes. A value that does
// not fit fails and leaves the truncated text there.
bool KIniData_GetStringEntry(KIniDataHandle handle, const char* section, const char* name,
                             char* target, std::size_t size);
bool KIniData_GetLongEntry(KIniDataHandle handle, const char* section, const char* name,
                           std::int32_t* value);
bool KIniData_GetLongLongEntry(KIniDataHandle handle, const char* section, const char* name,
                               std::int64_t* value);
bool KIniData_GetDoubleEntry(KIniDataHandle handle, const char* section, const char* name,
                             double* value);

bool KIniData_HasSection(KIniDataHandle handle, const char* section);
bool KIniData_HasEntry(KIniDataHandle handle, const char* section, const char* name);
std::size_t KIniData_GetEntryCount(KIniDataHandle handle, const char* section);
bool KIniData_GetSectionNames(KIniDataHandle handle, std::vector<std::string>& names);
bool KIniData_GetEntryNames(KIniDataHandle handle, const char* section,
                            std::vector<std::string>& names);

bool KIniData_SetStringEntry(KIniDataHandle handle, const char* section, const char* name,
                             const char* value);
bool KIniData_SetLongEntry(KIniDataHandle handle, const char* section, const char* name,
                           std::int32_t value);
bool KIniData_SetLongLongEntry(KIniDataHandle handle, const char* section, const char* name,
                               std::int64_t value);
bool KIniData_SetDoubleEntry(KIniDataHandle handle, const char* section, const char* name,
                             double value);

bool KIniData_AddSection(KIniDataHandle handle, const char* section);
bool KIniData_DeleteSection(KIniDataHandle handle, const char* section);
bool KIniData_DeleteEntry(KIniDataHandle handle, const char* section, const char* name);
bool KIniData_RenameSection(KIniDataHandle handle, const char* old_name, const char* new_name);

} // namespace korv
