#include "scratch_dir.h"

#include "errtrace.h"
#include "kplatform_system.h"

#include <cstdio>
#include <random>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace korv::testing {

ScratchDir::ScratchDir() {
    const std::filesystem::path base = std::filesystem::temp_directory_path();
    std::random_device seed;
    std::mt19937_64 random(seed() ^ static_cast<std::uint64_t>(platform::process_id()));
    for (int attempt = 0; attempt < 100; ++attempt) {
        char name[32];
        std::snprintf(name, sizeof name, "korv-test-%012llx",
                      static_cast<unsigned long long>(random() & 0xFFFFFFFFFFFFull));
        std::error_code error;
        if (std::filesystem::create_directory(base / name, error)) {
            m_path = (base / name).string();
            return;
        }
    }
    throw std::runtime_error("no scratch folder could be made");
}

ScratchDir::~ScratchDir() {
    if (!m_owned)
        return;
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
    platform::set_environment(name, value.c_str());
    diag::reset_log_settings();
}

ScopedEnv::~ScopedEnv() {
    platform::set_environment(m_name, m_had ? m_old.c_str() : nullptr);
    diag::reset_log_settings();
}

} // namespace korv::testing
