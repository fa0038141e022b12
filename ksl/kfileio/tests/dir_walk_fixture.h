// A scratch root and a walk over it that collects what it met, sorted.
#pragma once

#include "kdirtools.h"
#include "scratch_dir.h"
#include "trace_context.h"

#include <algorithm>
#include <string>
#include <vector>

namespace korv::testing {

using Entries = std::vector<std::string>;

class DirWalkTest : public TraceContextTest {
protected:
    Entries list(const std::string& path, int flags, bool directories = true) {
        Entries entries;
        m_walked = iterateDirectory(path, flags, directories ? addEntry : nullptr, &entries,
                                    addEntry, &entries);
        std::sort(entries.begin(), entries.end());
        return entries;
    }

    ScratchRoot m_root;
    bool m_walked = false;
};

} // namespace korv::testing
