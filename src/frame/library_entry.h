// Attaching the library to a process and detaching it again.
//
// The platform calls the library's DllMain when the library is loaded and
// unloaded; DllMain hands over to AttachLibrary / DetachLibrary, which are
// also reachable here so that tests can run a detach and a fresh attach.
//
// Attach: makes the process block (see process_data.h), registers the
// library as an extension module of the framework and creates its
// CDynLinkLibrary record, remembers the instance handle (process-wide and
// in the block) and loads the screen-sample control library. Detach undoes
// this in reverse. Both run on the thread that loads / unloads the library.
#pragma once

#include "platform/win32.h"

namespace zq::frame {

// FALSE when the process block or the framework registration failed;
// everything done so far is then undone.
BOOL AttachLibrary(HINSTANCE hInstance);
void DetachLibrary();

// How many framework extension-module initialisations are outstanding
// (1 while attached).
int FrameworkInitCount();

}  // namespace zq::frame
