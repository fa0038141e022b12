// A fresh temporary folder for one test, removed with everything in it at the end.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace korv::testing {

class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;

    // Host path of the folder, without a trailing '/'.
    const std::string& path() const { return m_path; }
    // Host path of `relative` inside the folder.
    std::string operator/(const std::string& relative) const { return m_path + "/" + relative; }

    // Writes `bytes` to `relative`, creating the folders on the way.
    void write(const std::string& relative, const std::string& bytes) const;
    // The bytes of `relative`; empty if it cannot be read.
    std::string read(const std::string& relative) const;

protected:
    // An existing folder, left in place at the end.
    explicit ScratchDir(std::string existing) : m_path(std::move(existing)), m_owned(false) {}

private:
    std::string m_path;
    bool m_owned = true;
};

// Sets an environment variable for the lifetime of the object, then restores it.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const std::string& value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string m_name;
    bool m_had;
    std::string m_old;
};

// A path that the build names (a host path), as this process opens it: the
// path itself on POSIX, on the host's drive Z: under wine.
std::string build_tree_path(const std::string& host);

// The folder whose drive_c is the test's drive C:. On POSIX a fresh scratch
// folder becomes KORV_ROOT. Under wine it is the prefix, whose drive_c is C:
// itself: what the test adds to C: and the registry's Korv keys are removed
// at both ends, so each test starts from the same empty installation.
class ScratchRoot : public ScratchDir {
public:
    ScratchRoot();
    ~ScratchRoot();

    // Copies an installation (drive_c/..., registry.reg) into the folder and
    // makes its registry.reg the registry: on POSIX it is by being there,
    // under wine it is imported into the 32-bit view.
    void install(const std::string& tree) const;
    // Makes a registry export (registry.reg text) the registry's Korv keys.
    void set_registry(const std::string& export_text) const;

private:
    std::vector<std::string> m_before; // what drive C: held at the start
    std::unique_ptr<ScopedEnv> m_env;
};

} // namespace korv::testing
