#include "platform/posix/base/debug_channel.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace zq::platform::internal {

namespace {

constexpr const char* kNames[kDebugChannelCount] = {
    "registry", "profile", "file",   "module", "resource",    "version",
    "locale",   "process", "window", "tapi",   "debugstring",
};

unsigned ParseChannels() {
    const char* env = std::getenv("ZQ_DEBUG");
    if (!env) {
        return 0;
    }
    unsigned mask = 0;
    std::string_view rest(env);
    while (!rest.empty()) {
        std::string_view item = rest.substr(0, rest.find(','));
        rest.remove_prefix(item.size() < rest.size() ? item.size() + 1 : item.size());
        if (item == "all") {
            return ~0u;
        }
        for (unsigned i = 0; i < kDebugChannelCount; ++i) {
            if (item == kNames[i]) {
                mask |= 1u << i;
            }
        }
    }
    return mask;
}

}  // namespace

bool DebugChannelEnabled(DebugChannel channel) {
    static const unsigned mask = ParseChannels();
    return (mask >> channel) & 1u;
}

void DebugPrint(DebugChannel channel, const char* format, ...) {
    std::fprintf(stderr, "zq:%s: ", kNames[channel]);
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputc('\n', stderr);
}

}  // namespace zq::platform::internal
