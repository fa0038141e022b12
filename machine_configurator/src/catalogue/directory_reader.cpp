#include "catalogue/directory_reader.h"

#include "errtrace.h"
#include "kdirtools.h"
#include "kplatform_paths.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

DirectoryReader::DirectoryReader() {
    m_remembered = korv::dir_getwd(m_previous);
}

DirectoryReader::~DirectoryReader() {
    Close();
}

void DirectoryReader::EndListing() {
    if (m_listing) {
        ::closedir(static_cast<DIR*>(m_listing));
        m_listing = nullptr;
    }
}

void DirectoryReader::Close() {
    EndListing();
    if (m_entered) {
        m_entered = false;
        if (::chdir(m_previous.c_str()) != 0)
            KERRLOG("DirectoryReader::Close(): can't return to directory %s: %s",
                    m_previous.c_str(), std::strerror(errno));
    }
}

bool DirectoryReader::Open(const std::string& folder) {
    const std::string native = korv::platform::native_path(folder);
    // An absolute folder is entered straight from the last one; a relative one
    // means what it says only from where the process was.
    if (native.empty() || native[0] != '/')
        Close();
    else
        EndListing();
    if (!m_remembered || folder.empty())
        return false;
    if (::chdir(native.c_str()) != 0) {
        Close();
        return false;
    }
    m_entered = true;
    return true;
}

bool DirectoryReader::First() {
    if (!m_entered)
        return false;
    EndListing();
    m_listing = ::opendir(".");
    return m_listing != nullptr;
}

bool DirectoryReader::Next(std::string& name, char& type) {
    if (!m_listing)
        return false;
    for (;;) {
        const dirent* entry = ::readdir(static_cast<DIR*>(m_listing));
        if (!entry)
            return false;
        // The listing's own "." is what the first find returns on Windows and
        // is dropped there; here it may come at any place.
        if (std::strcmp(entry->d_name, ".") == 0)
            continue;
        name = entry->d_name;
        bool folder = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN || entry->d_type == DT_LNK) {
            struct stat st;
            folder = ::stat(entry->d_name, &st) == 0 && S_ISDIR(st.st_mode);
        }
        if (folder)
            type = 'd';
        else if (name[0] == '.')
            type = ' ';
        else
            type = '-';
        return true;
    }
}
