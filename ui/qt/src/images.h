// The images the dialogs name (button bitmaps, header, icon), found in res/
// beside the program or in the installed data folder. Names ignore case and
// extension, as the resource names of the platform do: "UndoU" is UNDOU.bmp.
#pragma once

#include <QPixmap>
#include <QString>

#include <map>
#include <string>
#include <vector>

namespace korv::ui::qt {

class Images {
public:
    // Looks in each folder in turn.
    explicit Images(std::vector<std::string> folders);
    // The folders for the running program: res/ beside it, then
    // ../share/rigcfg/res from it.
    static std::vector<std::string> default_folders();

    // The image, or a null pixmap if there is none; logged once per name if
    // `required`.
    QPixmap find(const std::string& name, bool required = true);

private:
    void index();

    std::vector<std::string> m_folders;
    bool m_indexed = false;
    std::map<std::string, QString> m_files;  // lower-case name -> path
    std::map<std::string, QPixmap> m_loaded; // lower-case name -> image, null if missing
};

} // namespace korv::ui::qt
