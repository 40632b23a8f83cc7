#include "frame/library_info.h"

namespace zq {

const char* LibraryVersion() {
    return ZQ_LIBRARY_VERSION;
}

const char* BuildPlatform() {
#if defined(_WIN32)
    constexpr const char* kSystem = "Windows";
#elif defined(__linux__)
    constexpr const char* kSystem = "Linux";
#elif defined(__APPLE__)
    constexpr const char* kSystem = "macOS";
#else
    constexpr const char* kSystem = "POSIX";
#endif
#if defined(__x86_64__) || defined(_M_X64)
    constexpr const char* kMachine = "x86_64";
#elif defined(__aarch64__) || defined(_M_ARM64)
    constexpr const char* kMachine = "aarch64";
#elif defined(__i386__) || defined(_M_IX86)
    constexpr const char* kMachine = "x86";
#else
    constexpr const char* kMachine = "unknown";
#endif
    static const char* const kPlatform = [] {
        static char text[64];
        int i = 0;
        for (const char* p = kSystem; *p && i < 40; ++p)
            text[i++] = *p;
        text[i++] = ' ';
        for (const char* p = kMachine; *p && i < 62; ++p)
            text[i++] = *p;
        text[i] = '\0';
        return text;
    }();
    return kPlatform;
}

}  // namespace zq
