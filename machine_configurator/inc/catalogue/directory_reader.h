// One level of a folder, read the way the machine tree reader has always read
// it: by entering the folder. While a reader is open the process's current
// directory is that folder, so nothing may rely on the current directory then;
// the destructor goes back to where the process was.
#pragma once

#include <string>

class DirectoryReader {
public:
    // Remembers the current directory.
    DirectoryReader();
    // Ends the listing and returns to the remembered directory.
    ~DirectoryReader();
    DirectoryReader(const DirectoryReader&) = delete;
    DirectoryReader& operator=(const DirectoryReader&) = delete;

    // Makes `folder` (Windows-style or host path) the current directory; a
    // reader may open one folder after another. False, back where the reader
    // started, if it can't be entered or the current directory couldn't be
    // remembered (there would be no way back).
    bool Open(const std::string& folder);
    // Starts the listing of the opened folder; its "." entry is dropped.
    bool First();
    // The next name and its kind: 'd' folder, ' ' hidden or system file, '-'
    // any other file. ".." is delivered like any folder. False at the end.
    bool Next(std::string& name, char& type);

private:
    void EndListing();
    void Close();

    std::string m_previous; // host path of the directory to go back to
    bool m_remembered = false;
    bool m_entered = false;
    void* m_listing = nullptr; // DIR* of the opened folder
};
