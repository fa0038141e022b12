// One level of a folder, read the way the machine tree reader reads it: one
// folder after another, each listed from its path in one pass. The process's
// current directory is left alone.
#pragma once

#include "kplatform_listing.h"

#include <string>

class DirectoryReader {
public:
    // Opens `folder` (Windows-style or host path; a relative one is taken from
    // the current directory) for listing; a reader may open one folder after
    // another. False if it can't be listed.
    bool Open(const std::string& folder);
    // Starts the listing of the opened folder; its "." entry is dropped.
    bool First();
    // The next name and its kind: 'd' folder, ' ' hidden or system file, '-'
    // any other file. ".." is delivered like any folder. False at the end.
    bool Next(std::string& name, char& type);

private:
    std::string m_folder;
    bool m_opened = false;
    bool m_fresh = false; // the listing is at its start
    korv::platform::FolderListing m_listing;
};
