// Kernel objects that WaitForSingleObject can wait for.
//
// A kind of object that can be signalled (a process, later events and
// mutexes) derives from WaitableObject and registers in the handle table as
// usual; WaitForSingleObject finds it there and calls Wait.
#pragma once

#include "platform/posix/base/handle_table.h"

namespace zq::platform::internal {

class WaitableObject : public KernelObject {
public:
    // WAIT_OBJECT_0 once signalled within `milliseconds` (INFINITE: no
    // limit), else WAIT_TIMEOUT. Called without any lock of the table held;
    // must be safe against concurrent calls.
    virtual DWORD Wait(DWORD milliseconds) = 0;
};

}  // namespace zq::platform::internal
