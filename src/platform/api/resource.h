/* Win32 resource functions (declarations arrive with their implementation). */
#ifndef ZQ_PLATFORM_API_RESOURCE_H
#define ZQ_PLATFORM_API_RESOURCE_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_RESOURCE_H */
