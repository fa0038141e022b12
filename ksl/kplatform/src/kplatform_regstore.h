// The registry file on disk: the registry it held at the last look, read
// again only when the file has changed, and whole-file rewrites under the
// advisory lock. The registry calls hold mutex() for their whole length.
#pragma once

#include "kplatform_regfile.h"
#include "kplatform_winerror.h"

#include <functional>
#include <memory>
#include <mutex>

namespace korv::platform::regstore {

// Guards the store and the open handles.
std::mutex& mutex();

// The registry as the file holds it now; empty for a file that is missing,
// malformed or can't be read. Caller holds mutex().
std::shared_ptr<const regfile::Registry> current();

// Runs `change` on a copy of the registry as the file holds it under the
// lock, and writes the copy back if `change` says it changed anything.
// ERROR_BADDB for a file that is malformed or can't be read. Caller holds
// mutex().
LONG modify(const std::function<LONG(regfile::Registry&, bool&)>& change);

} // namespace korv::platform::regstore
