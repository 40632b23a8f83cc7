// The folder that holds all state of the emulated system.
//
// Resolved once per process, at first use: $ZQ_PREFIX, else
// $XDG_DATA_HOME/zq, else $HOME/.local/share/zq. The folder is created
// (mode 0700) when missing. Thread-safe.
#pragma once

#include <string>

namespace zq::platform::internal {

// Absolute Unix path of the prefix, without a trailing slash.
const std::string& Prefix();

// Creates `path` and its missing parents with `mode`; true when the folder
// exists afterwards.
bool MakeDirectories(const std::string& path, unsigned mode);

}  // namespace zq::platform::internal
