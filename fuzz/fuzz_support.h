// Shared by the fuzz targets: a private prefix and scratch files in it.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "platform/win32.h"

namespace zq::fuzz {

// Makes a fresh prefix (ZQ_PREFIX) for the process and returns a folder in
// it for the target's files. Call once, from LLVMFuzzerInitialize.
inline std::filesystem::path MakeFuzzFolder(const char* name) {
    std::random_device random;
    std::filesystem::path root = std::filesystem::temp_directory_path() /
                                 ("zq-fuzz-" + std::string(name) + "-" + std::to_string(random()));
    std::filesystem::create_directories(root / "work");
    SetEnvironmentVariableA("ZQ_PREFIX", root.c_str());
    return root / "work";
}

inline void WriteBytes(const std::filesystem::path& path, const uint8_t* data, size_t size) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A broken property: stop with a crash the fuzzer reports.
inline void Require(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

}  // namespace zq::fuzz
