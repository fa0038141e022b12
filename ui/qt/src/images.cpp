#include "images.h"

#include "errtrace.h"
#include "kplatform_module.h"

#include <QDir>
#include <QFileInfo>

namespace korv::ui::qt {

namespace {

std::string lower(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c | 0x20);
    return text;
}

} // namespace

Images::Images(std::vector<std::string> folders) : m_folders(std::move(folders)) {}

std::vector<std::string> Images::default_folders() {
    const std::string exe = korv::platform::executable_path();
    const std::size_t slash = exe.find_last_of('/');
    const std::string dir = slash == std::string::npos ? std::string(".") : exe.substr(0, slash);
    return {dir + "/res", dir + "/../share/rigcfg/res"};
}

void Images::index() {
    m_indexed = true;
    // The first folder that has a name wins.
    for (const std::string& folder : m_folders) {
        const QDir dir(QString::fromStdString(folder));
        const QFileInfoList files = dir.entryInfoList(QDir::Files | QDir::Readable);
        for (const QFileInfo& file : files)
            m_files.emplace(lower(file.completeBaseName().toStdString()), file.filePath());
    }
}

QPixmap Images::find(const std::string& name, bool required) {
    const std::string key = lower(name);
    if (const auto loaded = m_loaded.find(key); loaded != m_loaded.end())
        return loaded->second;
    if (!m_indexed)
        index();
    QPixmap image;
    const auto file = m_files.find(key);
    if (file == m_files.end()) {
        if (required)
            KERRLOG("find(): no image %s in the res folder beside the program", name.c_str());
    } else if (!image.load(file->second))
        KERRLOG("find(): the image %s cannot be read", file->second.toLocal8Bit().constData());
    m_loaded.emplace(key, image);
    return image;
}

} // namespace korv::ui::qt
