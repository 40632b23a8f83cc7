/* Win32 file functions (declarations arrive with their implementation). */
#ifndef ZQ_PLATFORM_API_FILE_H
#define ZQ_PLATFORM_API_FILE_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_FILE_H */
