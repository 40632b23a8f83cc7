// Result codes of the telephony classes (0 is success).
#pragma once

#include "platform/win32.h"

namespace zq::telephony {

// An object (list entry, resource reader, registry object) could not be made.
constexpr DWORD kObjectNotMade = 0x24004000;
// An argument was refused (a country record out of range, data not at hand).
constexpr DWORD kInvalidArgument = 0x24004407;
// A resource could not be found or loaded.
constexpr DWORD kResourceNotLoaded = 0x24004451;

}  // namespace zq::telephony
