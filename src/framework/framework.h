// The application-framework subset the library is written against, in one
// include: the root object class, strings, collections, files and the
// extension-module registration.
#pragma once

#include "framework/arrays.h"
#include "framework/cfile.h"
#include "framework/cmd_target.h"
#include "framework/cstring.h"
#include "framework/ctime.h"
#include "framework/dc.h"
#include "framework/exceptions.h"
#include "framework/extension_module.h"
#include "framework/lists.h"
#include "framework/maps.h"
#include "framework/menu.h"
#include "framework/object.h"
#include "framework/wnd.h"
