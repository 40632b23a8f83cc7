// REGEDIT4 import of arbitrary text, and the round trip of whatever it left
// below HKEY_CURRENT_USER\Software: export, remove, import, export again
// must give the same text.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

#include "platform/win32.h"
#include "settings/regedit4.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    std::random_device random;
    auto prefix =
        std::filesystem::temp_directory_path() / ("zq-fuzz-regedit4-" + std::to_string(random()));
    std::filesystem::create_directories(prefix);
    SetEnvironmentVariableA("ZQ_PREFIX", prefix.c_str());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software");
    std::string text(reinterpret_cast<const char*>(data), size);
    if (size > 0 && (data[0] & 1)) {
        text = "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\F]\r\n" + text.substr(1);
    }
    zq::settings::ImportRegedit4(text);

    std::string first;
    if (!zq::settings::ExportRegedit4("HKEY_CURRENT_USER\\Software", first).ok()) {
        return 0;
    }
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software");
    if (!zq::settings::ImportRegedit4(first).ok()) {
        __builtin_trap();
    }
    std::string second;
    if (!zq::settings::ExportRegedit4("HKEY_CURRENT_USER\\Software", second).ok() ||
        second != first) {
        __builtin_trap();
    }
    return 0;
}
