/* Threads, processes' identity and thread-local storage slots. */
#ifndef ZQ_PLATFORM_API_THREAD_H
#define ZQ_PLATFORM_API_THREAD_H

#include "platform/api/types.h"

#define TLS_OUT_OF_INDEXES ((DWORD)0xFFFFFFFF)
#define TLS_MINIMUM_AVAILABLE 64
#define INFINITE 0xFFFFFFFF

ZQ_EXTERN_C_BEGIN

/* Thread-local storage: TLS_MINIMUM_AVAILABLE slots per process (more
 * than Windows guarantees is not promised). A slot reads as NULL on every
 * thread until that thread stores a value. TlsGetValue sets the last error
 * to 0 on success so that a stored NULL can be told from a failure. */
ZQ_API DWORD WINAPI TlsAlloc(void);
ZQ_API BOOL WINAPI TlsFree(DWORD dwTlsIndex);
ZQ_API LPVOID WINAPI TlsGetValue(DWORD dwTlsIndex);
ZQ_API BOOL WINAPI TlsSetValue(DWORD dwTlsIndex, LPVOID lpTlsValue);

/* Closes any kernel-object handle (file, process, thread ...). */
ZQ_API BOOL WINAPI CloseHandle(HANDLE hObject);

ZQ_API DWORD WINAPI GetCurrentThreadId(void);
ZQ_API DWORD WINAPI GetCurrentProcessId(void);
ZQ_API void WINAPI Sleep(DWORD dwMilliseconds);

ZQ_EXTERN_C_END

#endif /* ZQ_PLATFORM_API_THREAD_H */
