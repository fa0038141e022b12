// A fresh temporary folder for one test, removed with everything in it at the end.
#pragma once

#include <string>

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

private:
    std::string m_path;
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

// Makes the folder the KORV_ROOT of the test, so drive letters land inside it.
class ScratchRoot : public ScratchDir {
public:
    ScratchRoot() : m_env("KORV_ROOT", path()) {}

private:
    ScopedEnv m_env;
};

} // namespace korv::testing
