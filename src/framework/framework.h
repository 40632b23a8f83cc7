// The application-framework subset the library is written against, in one
// include: the root object class, strings, collections, files and the
// extension-module registration.
#pragma once

#include "framework/core/arrays.h"
#include "framework/core/cstring.h"
#include "framework/core/ctime.h"
#include "framework/core/exceptions.h"
#include "framework/core/lists.h"
#include "framework/core/maps.h"
#include "framework/core/object.h"
#include "framework/files/cfile.h"
#include "framework/gdi/dc.h"
#include "framework/modules/extension_module.h"
#include "framework/windows/cmd_target.h"
#include "framework/windows/menu.h"
#include "framework/windows/wnd.h"
