// Linguistic comparison of ANSI strings in the user's locale, the way
// lstrcmpA / lstrcmpiA compare (Windows' "word sort"): ICU's collation for
// the locale, with hyphens and apostrophes weighed last. Thread-safe (each
// thread keeps its own collator).
#pragma once

#include <string_view>

#include "platform/win32.h"

namespace zq::platform::internal {

// Negative, zero or positive as `a` sorts before, with or after `b`.
int CollateAnsi(std::string_view a, std::string_view b, bool ignore_case);

// The same comparison, always through ICU and for the given locale. Plain
// ASCII text takes a table-driven shortcut in CollateAnsi that must agree
// with this.
int CollateAnsiWithIcu(LCID lcid, std::string_view a, std::string_view b, bool ignore_case);

}  // namespace zq::platform::internal
