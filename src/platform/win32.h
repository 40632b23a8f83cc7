/* The one header through which the library reaches the operating system.
 *
 * On Windows it is the system's own API. Elsewhere it is our implementation
 * of the Win32 subset the library uses, with the real names and signatures,
 * one header per area under platform/api/. Code outside src/platform
 * includes this header and nothing else of the system. */
#ifndef ZQ_PLATFORM_WIN32_H
#define ZQ_PLATFORM_WIN32_H

#ifdef _WIN32
#include <direct.h>
#include <windows.h>
#else
#include "platform/api/crt.h"
#include "platform/api/error.h"
#include "platform/api/eventlog.h"
#include "platform/api/file.h"
#include "platform/api/gdi.h"
#include "platform/api/locale.h"
#include "platform/api/memory.h"
#include "platform/api/menu.h"
#include "platform/api/module.h"
#include "platform/api/process.h"
#include "platform/api/profile.h"
#include "platform/api/registry.h"
#include "platform/api/resource.h"
#include "platform/api/security.h"
#include "platform/api/strings.h"
#include "platform/api/system.h"
#include "platform/api/tapi.h"
#include "platform/api/thread.h"
#include "platform/api/time.h"
#include "platform/api/types.h"
#include "platform/api/version.h"
#include "platform/api/window.h"
#endif

#endif /* ZQ_PLATFORM_WIN32_H */
