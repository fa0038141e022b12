// The ini container: construction, copying, and the file it is opened from and
// saved to.
#include "KIniData_template_core.h"

#include "errtrace.h"
#include "fastfile.h"
#include "kplatform_file.h"

#include <cstdarg>
#include <cstdio>

namespace korv {

template <class Compare> KIniDataT<Compare>::KIniDataT(std::uint32_t flags_) : flags(flags_) {}

template <class Compare>
KIniDataT<Compare>::KIniDataT(const std::string& file_name_, std::uint32_t flags_) : flags(flags_) {
    if (flags & KINI_NO_OPEN) {
        file_name = file_name_;
        return;
    }
    KErrTrace_BeginContext();
    if (!Open(file_name_))
        KERRTRACE_DUMP("KIniData::KIniData(): Open(\"%.60s\") failed", file_name_.c_str());
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

template <class Compare>
KIniDataT<Compare>::KIniDataT(const KIniDataT& other) : flags(other.flags) {
    copy_from(other, "KIniData::KIniData");
}

template <class Compare> KIniDataT<Compare>& KIniDataT<Compare>::operator=(const KIniDataT& other) {
    if (this != &other)
        copy_from(other, "KIniData::operator=");
    return *this;
}

template <class Compare> KIniDataT<Compare>::~KIniDataT() {
    KErrTrace_BeginContext();
    if (!Close())
        KERRTRACE_DUMP("KIniData::~KIniData(): Close() failed");
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
}

// The copy goes through the text, so it is a fresh parse of what the source holds.
template <class Compare>
void KIniDataT<Compare>::copy_from(const KIniDataT& other, const char* caller) {
    delete_all();
    file_name = other.file_name;
    flags = other.flags;
    error_text = other.error_text;
    KErrTrace_BeginContext();
    if (!SetContentString(other.GetContentString()))
        KERRTRACE_DUMP("%s(): SetContentString() failed", caller);
    else
        KErrTrace_ClearContext();
    KErrTrace_EndContext();
    is_open = other.is_open;
    file_missing = other.file_missing;
    in_sync = other.in_sync;
}

template <class Compare> void KIniDataT<Compare>::delete_all() {
    for (KIniDataLine* line : line_vec)
        delete line;
    line_vec.clear();
    for (KIniDataLine* line : pending_lines)
        delete line;
    pending_lines.clear();
    pending_entries.clear();
    for (auto& [name, section] : section_map)
        delete section;
    section_map.clear();
    current_section = nullptr;
    // Every line is gone, so the arena goes with this; the next line starts a new one.
    if (line_arena) {
        line_arena->release();
        line_arena = nullptr;
    }
}

template <class Compare> KIniDataArena* KIniDataT<Compare>::arena_for_lines() {
    if (!line_arena)
        line_arena = KIniDataArena::create();
    return line_arena;
}

template <class Compare> void KIniDataT<Compare>::set_error_text(const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    error_text.assign(length < 0 ? "" : text);
}

template <class Compare> bool KIniDataT<Compare>::Open(const std::string& name) {
    const std::string path = name; // `name` may be file_name itself, which Close empties
    if (!Close()) {
        KERRTRACE("KIniData::Open(): Close() failed");
        return false;
    }
    file_name = path;
    // The open tells an existing file from a missing one. Only when it fails is
    // the path asked whether anything is there, and for an existing file the
    // open is made again, so that its failure is told in its own words.
    KFastFileReader reader;
    KErrTrace_BeginContext();
    const bool opened = reader.Open(file_name);
    const std::uint32_t why = opened ? 0 : platform::last_error();
    KErrTrace_ClearContext();
    KErrTrace_EndContext();
    if (!opened) {
        // A file that isn't there opens empty: the first Save creates it.
        if (platform::is_missing_error(why) || !platform::path_exists(file_name)) {
            is_open = true;
            file_missing = true;
            in_sync = false;
            return true;
        }
        file_missing = false;
        if (!reader.Open(file_name)) {
            KERRTRACE("KIniData::Open(): KFastFileReader::Open() failed");
            return false;
        }
    }
    file_missing = false;
    current_section = nullptr;
    if (!read_lines(reader)) {
        // What was parsed stays, in its sections.
        close_section();
        return false;
    }
    in_sync = true;
    is_open = true;
    return true;
}

template <class Compare> bool KIniDataT<Compare>::Close() {
    delete_all();
    file_name.clear();
    is_open = false;
    file_missing = true;
    return true;
}

template <class Compare> bool KIniDataT<Compare>::Reopen() {
    if (!is_open) {
        KERRTRACE("KIniData::Reopen(): not open");
        return false;
    }
    const std::string path = file_name;
    if (!Open(path)) {
        KERRTRACE("KIniData::Reopen(): Open(\"%.60s\") failed", path.c_str());
        return false;
    }
    return true;
}

template <class Compare> bool KIniDataT<Compare>::Save() {
    int mode = KFF_REPLACE;
    if (flags & KINI_SAVE_FLUSH)
        mode += KFF_FLUSH;
    if (flags & KINI_SAVE_ATOMIC)
        mode += KFF_ATOMIC;
    // The writer turns every LF into CR LF.
    const std::string content = GetContentString();
    if (KFastFile_WriteLinesAtOnce(file_name, content.data(), content.size(), mode) < 0) {
        KERRTRACE("KIniData::Save(): KFastFile_WriteLinesAtOnce(\"%.40s\") failed",
                  file_name.c_str());
        return false;
    }
    file_missing = false;
    in_sync = true;
    return true;
}

// The members defined in the other source files of the container are
// instantiated there.
template class KIniDataT<KIniDataCaseSensitiveCompare>;

} // namespace korv
