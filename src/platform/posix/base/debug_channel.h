// Per-area debug output, switched on by ZQ_DEBUG (a comma-separated list of
// channel names, or "all"), written to standard error. A channel that is
// off costs one branch on a cached flag.
//
//   ZQ_TRACE(kRegistry, "open %s -> %u", name, rc);
#pragma once

#include <cstdarg>

namespace zq::platform::internal {

enum DebugChannel : unsigned {
    kRegistry,
    kProfile,
    kFile,
    kModule,
    kResource,
    kVersion,
    kLocale,
    kProcess,
    kWindow,
    kTapi,
    kDebugString,  // OutputDebugStringA
    kDebugChannelCount
};

bool DebugChannelEnabled(DebugChannel channel);
void DebugPrint(DebugChannel channel, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

}  // namespace zq::platform::internal

#define ZQ_TRACE(channel, ...)                                                                    \
    do {                                                                                          \
        if (::zq::platform::internal::DebugChannelEnabled(::zq::platform::internal::channel)) {   \
            ::zq::platform::internal::DebugPrint(::zq::platform::internal::channel, __VA_ARGS__); \
        }                                                                                         \
    } while (0)
