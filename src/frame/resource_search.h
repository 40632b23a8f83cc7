// Where the library looks for a resource it does not own itself: the
// application's resource handle, then the framework's extension modules
// (this library among them, newest first), then the language module of the
// process block. The language module is searched last so that an
// application or a module of the suite can override any text or table.
//
// Both functions only read; they are safe on any thread, but the language
// module is known on the thread that loaded the library only (elsewhere the
// search ends with the extension modules).
#pragma once

#include "framework/core/cstring.h"
#include "platform/win32.h"

namespace zq::frame {

// The first module in search order that holds resource (lpszName,
// lpszType); NULL when none does.
HINSTANCE FindResourceModule(LPCSTR lpszName, LPCSTR lpszType);

// String resource nID from the first module in search order that has a
// non-empty text for it. TRUE with the text; FALSE with csText emptied.
BOOL LoadResourceString(UINT nID, CString& csText);

}  // namespace zq::frame
