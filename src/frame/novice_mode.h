// The novice-mode flag of the running product: a REG_DWORD "NoviceMode"
// below the local machine's root, in the current user's key that the
// running program's version block yields (CZqVersionResource).
#pragma once

#include "platform/win32.h"

// Stores the flag; gives up silently when the version information cannot
// be read.
void ZqGblSetRegNoviceMode(BOOL bNoviceMode);

// The stored value, or FALSE when the version information or the value
// cannot be read (the read's own default never reaches the caller).
BOOL ZqGblGetRegNoviceMode();
