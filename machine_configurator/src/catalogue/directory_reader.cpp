#include "catalogue/directory_reader.h"

bool DirectoryReader::Open(const std::string& folder) {
    m_listing.close();
    m_folder = folder;
    m_opened = !folder.empty() && m_listing.open(folder);
    m_fresh = m_opened;
    return m_opened;
}

bool DirectoryReader::First() {
    if (!m_opened)
        return false;
    if (!m_fresh && !m_listing.open(m_folder))
        return false;
    m_fresh = false;
    return true;
}

bool DirectoryReader::Next(std::string& name, char& type) {
    korv::platform::FolderEntry entry;
    for (;;) {
        if (!m_listing.next(entry))
            return false;
        // The listing's own "." is what the first find returns on Windows and
        // is dropped there; here it may come at any place.
        if (entry.name != ".")
            break;
    }
    name = std::move(entry.name);
    if (entry.is_folder())
        type = 'd';
    else if (entry.attributes &
             (korv::platform::FILE_ATTR_HIDDEN | korv::platform::FILE_ATTR_SYSTEM))
        type = ' ';
    else
        type = '-';
    return true;
}
