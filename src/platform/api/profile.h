/* Win32 profile functions (declarations arrive with their implementation). */
#ifndef ZQ_PLATFORM_API_PROFILE_H
#define ZQ_PLATFORM_API_PROFILE_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_PROFILE_H */
