#include "scratch_dir.h"

#include "errtrace.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace korv::testing {

ScratchDir::ScratchDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "korv-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    m_path = pattern;
}

ScratchDir::~ScratchDir() {
    std::error_code ignored;
    // Tests may leave read-only folders behind; make them writable first.
    for (auto it = std::filesystem::recursive_directory_iterator(m_path, ignored);
         it != std::filesystem::recursive_directory_iterator(); it.increment(ignored))
        std::filesystem::permissions(it->path(), std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
    std::filesystem::remove_all(m_path, ignored);
}

void ScratchDir::write(const std::string& relative, const std::string& bytes) const {
    const std::filesystem::path file = *this / relative;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ScratchDir::read(const std::string& relative) const {
    std::ifstream in(*this / relative, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

ScopedEnv::ScopedEnv(const char* name, const std::string& value) : m_name(name) {
    const char* old = std::getenv(name);
    m_had = old != nullptr;
    if (old)
        m_old = old;
    ::setenv(name, value.c_str(), 1);
    diag::reset_log_settings();
}

ScopedEnv::~ScopedEnv() {
    if (m_had)
        ::setenv(m_name.c_str(), m_old.c_str(), 1);
    else
        ::unsetenv(m_name.c_str());
    diag::reset_log_settings();
}

} // namespace korv::testing
