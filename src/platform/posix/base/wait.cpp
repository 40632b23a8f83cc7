// WaitForSingleObject over the waitable kernel objects.
#include "platform/posix/base/waitable.h"

extern "C" DWORD WINAPI WaitForSingleObject(HANDLE hHandle, DWORD dwMilliseconds) {
    using namespace zq::platform::internal;
    std::shared_ptr<WaitableObject> object = LookupHandleAs<WaitableObject>(hHandle);
    if (object == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    return object->Wait(dwMilliseconds);
}
