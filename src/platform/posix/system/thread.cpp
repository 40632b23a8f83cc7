// Thread-local storage slots, thread and process identity.
#include <pthread.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <mutex>

#include "platform/win32.h"

namespace {

// One pthread key per slot: a slot then reads NULL on every thread that has
// not stored into it, and a freed slot can be handed out again.
struct TlsSlots {
    std::mutex mutex;
    std::array<bool, TLS_MINIMUM_AVAILABLE> used{};
    std::array<pthread_key_t, TLS_MINIMUM_AVAILABLE> keys{};
};

TlsSlots& Slots() {
    static TlsSlots* slots = new TlsSlots;  // never destroyed: used during exit
    return *slots;
}

bool ValidSlot(DWORD index) {
    TlsSlots& s = Slots();
    std::lock_guard<std::mutex> lock(s.mutex);
    return index < TLS_MINIMUM_AVAILABLE && s.used[index];
}

}  // namespace

extern "C" {

DWORD WINAPI TlsAlloc(void) {
    TlsSlots& s = Slots();
    std::lock_guard<std::mutex> lock(s.mutex);
    for (DWORD i = 0; i < TLS_MINIMUM_AVAILABLE; ++i) {
        if (!s.used[i]) {
            if (pthread_key_create(&s.keys[i], nullptr) != 0) {
                break;
            }
            s.used[i] = true;
            return i;
        }
    }
    SetLastError(ERROR_NO_MORE_ITEMS);
    return TLS_OUT_OF_INDEXES;
}

BOOL WINAPI TlsFree(DWORD dwTlsIndex) {
    TlsSlots& s = Slots();
    std::lock_guard<std::mutex> lock(s.mutex);
    if (dwTlsIndex >= TLS_MINIMUM_AVAILABLE || !s.used[dwTlsIndex]) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    pthread_key_delete(s.keys[dwTlsIndex]);
    s.used[dwTlsIndex] = false;
    return TRUE;
}

LPVOID WINAPI TlsGetValue(DWORD dwTlsIndex) {
    if (!ValidSlot(dwTlsIndex)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    SetLastError(ERROR_SUCCESS);
    return pthread_getspecific(Slots().keys[dwTlsIndex]);
}

BOOL WINAPI TlsSetValue(DWORD dwTlsIndex, LPVOID lpTlsValue) {
    if (!ValidSlot(dwTlsIndex)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (pthread_setspecific(Slots().keys[dwTlsIndex], lpTlsValue) != 0) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    return TRUE;
}

DWORD WINAPI GetCurrentThreadId(void) {
    return static_cast<DWORD>(syscall(SYS_gettid));
}

DWORD WINAPI GetCurrentProcessId(void) {
    return static_cast<DWORD>(getpid());
}

void WINAPI Sleep(DWORD dwMilliseconds) {
    if (dwMilliseconds == 0) {
        sched_yield();
        return;
    }
    timespec ts{static_cast<time_t>(dwMilliseconds / 1000),
                static_cast<long>(dwMilliseconds % 1000) * 1000000L};
    while (nanosleep(&ts, &ts) != 0 && errno == EINTR) {
    }
}

}  // extern "C"
