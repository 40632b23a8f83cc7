// What the library says about itself: its version and the platform it was
// built for.
#pragma once

namespace zq {

// The library's version, "major.minor.patch".
const char* LibraryVersion();

// The operating system and processor the library was built for, e.g.
// "Linux x86_64".
const char* BuildPlatform();

}  // namespace zq
