// Profile files: a cached read and a write in a file of 1,000 sections of
// 10 keys each (about 225 KB), the size of a large settings file.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

#include "platform/win32.h"

namespace {

constexpr int kSections = 1000;
constexpr int kKeys = 10;

// Writes the large file once per process and returns its path. The pause
// lets the file's time fall behind the clock, so that reads trust the
// cached copy on the file's times alone, as they do for any file that was
// not changed a moment ago.
const std::string& LargeFile() {
    static const std::string path = [] {
        char folder[MAX_PATH];
        const char* prefix = std::getenv("ZQ_PREFIX");
        std::snprintf(folder, sizeof folder, "%s/profile_bench.ini", prefix ? prefix : "/tmp");
        std::ofstream out(folder, std::ios::binary | std::ios::trunc);
        char line[64];
        for (int s = 0; s < kSections; ++s) {
            std::snprintf(line, sizeof line, "[Section%04d]\r\n", s);
            out << line;
            for (int k = 0; k < kKeys; ++k) {
                std::snprintf(line, sizeof line, "key%02d=value-%04d-%02d\r\n", k, s, k);
                out << line;
            }
        }
        out.close();
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        return std::string(folder);
    }();
    return path;
}

void BM_ProfileReadCachedValue(benchmark::State& state) {
    const std::string& file = LargeFile();
    char section[32];
    std::snprintf(section, sizeof section, "Section%04d", static_cast<int>(state.range(0)));
    char buffer[64];
    GetPrivateProfileStringA(section, "key05", "", buffer, sizeof buffer, file.c_str());
    for (auto _ : state) {
        DWORD n =
            GetPrivateProfileStringA(section, "key05", "", buffer, sizeof buffer, file.c_str());
        benchmark::DoNotOptimize(n);
    }
}
BENCHMARK(BM_ProfileReadCachedValue)
    ->Arg(0)
    ->Arg(500)
    ->Arg(999)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

void BM_ProfileReadCachedMissingKey(benchmark::State& state) {
    const std::string& file = LargeFile();
    char buffer[64];
    for (auto _ : state) {
        DWORD n = GetPrivateProfileStringA("Section0500", "nokey", "dflt", buffer, sizeof buffer,
                                           file.c_str());
        benchmark::DoNotOptimize(n);
    }
}
BENCHMARK(BM_ProfileReadCachedMissingKey)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_ProfileReadCachedInt(benchmark::State& state) {
    const std::string& file = LargeFile();
    WritePrivateProfileStringA("Numbers", "count", "12345", file.c_str());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    for (auto _ : state) {
        benchmark::DoNotOptimize(GetPrivateProfileIntA("Numbers", "count", 0, file.c_str()));
    }
}
BENCHMARK(BM_ProfileReadCachedInt)->Repetitions(5)->ReportAggregatesOnly(true);

// Changes an existing key (to one of two values of equal length, so that
// every call rewrites the file through a temporary file and a rename; no sync).
void BM_ProfileWriteExistingKey(benchmark::State& state) {
    const std::string& file = LargeFile();
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        BOOL ok = WritePrivateProfileStringA("Section0500", "key05",
                                             flip ? "written-a" : "written-b", file.c_str());
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_ProfileWriteExistingKey)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

// A write followed by the flush form, which syncs the file and its folder:
// what a caller pays for a change that must survive a power failure.
void BM_ProfileWriteAndFlush(benchmark::State& state) {
    const std::string& file = LargeFile();
    bool flip = false;
    for (auto _ : state) {
        flip = !flip;
        WritePrivateProfileStringA("Section0500", "key05", flip ? "flushed-a" : "flushed-b",
                                   file.c_str());
        BOOL ok = WritePrivateProfileStringA(nullptr, nullptr, nullptr, file.c_str());
        benchmark::DoNotOptimize(ok);
    }
}
BENCHMARK(BM_ProfileWriteAndFlush)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

// Adds a key and removes it again: two writes per iteration.
void BM_ProfileWriteAddAndDeleteKey(benchmark::State& state) {
    const std::string& file = LargeFile();
    for (auto _ : state) {
        WritePrivateProfileStringA("Section0500", "extra", "1", file.c_str());
        WritePrivateProfileStringA("Section0500", "extra", nullptr, file.c_str());
    }
}
BENCHMARK(BM_ProfileWriteAddAndDeleteKey)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace
