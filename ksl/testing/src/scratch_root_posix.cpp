#include "scratch_dir.h"

#include <filesystem>

namespace korv::testing {

ScratchRoot::ScratchRoot() : m_env(std::make_unique<ScopedEnv>("KORV_ROOT", path())) {}

ScratchRoot::~ScratchRoot() = default;

void ScratchRoot::set_registry(const std::string& export_text) const {
    write("registry.reg", export_text);
}

void ScratchRoot::install(const std::string& tree) const {
    std::filesystem::copy(tree, path(), std::filesystem::copy_options::recursive);
}

std::string build_tree_path(const std::string& host) {
    return host;
}

} // namespace korv::testing
