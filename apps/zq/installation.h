// What an installation of the suite leaves in the registry, made on the
// first run in an empty prefix.
//
// The key layout of every program (CZqVersionResource) needs at least one
// user below R\Users, R = "Software\<company>\<product>\<version>" of the
// program's version block; the installer makes the first one. zq does the
// same for the user running it when no user exists yet, and says so once
// on standard error. Later runs, and users that come after the first, get
// their tree from the library itself (a copy of the first user's).
#pragma once

#include <string>

namespace zq::app {

// Makes R\Users\<user> in HKEY_LOCAL_MACHINE for the running executable
// when the layout cannot be derived because no user exists. Failures are
// reported on standard error and otherwise ignored: commands that need the
// layout report it themselves.
void PrepareInstallation();

// The prefix the platform uses (absolute host path), or "" when unknown.
std::string PrefixFolder();

}  // namespace zq::app
