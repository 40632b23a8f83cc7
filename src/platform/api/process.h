/* Processes and the process's address space. */
#ifndef ZQ_PLATFORM_API_PROCESS_H
#define ZQ_PLATFORM_API_PROCESS_H

#include "platform/api/types.h"

ZQ_EXTERN_C_BEGIN

/* FALSE when lpfn points into executable memory of the process, else TRUE. */
ZQ_API BOOL WINAPI IsBadCodePtr(FARPROC lpfn);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_PROCESS_H */
