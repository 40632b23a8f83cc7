// Registry costs that the library pays on every settings access.
#include <benchmark/benchmark.h>

#include "platform/win32.h"

namespace {

constexpr const char* kKeyPath = "Software\\Zq,Inc.\\Bench\\1.0\\Users\\bench\\Settings";

HKEY CreateBenchKey() {
    HKEY key = nullptr;
    RegCreateKeyExA(HKEY_CURRENT_USER, kKeyPath, 0, nullptr, REG_OPTION_NON_VOLATILE,
                    KEY_ALL_ACCESS, nullptr, &key, nullptr);
    return key;
}

// What CZqGlobalConfig does to read a number: open, query, close.
void BM_RegistryOpenQueryDwordClose(benchmark::State& state) {
    HKEY setup = CreateBenchKey();
    DWORD value = 42;
    RegSetValueExA(setup, "Number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                   sizeof value);
    RegCloseKey(setup);
    for (auto _ : state) {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, kKeyPath, 0, KEY_READ, &key) != ERROR_SUCCESS) {
            state.SkipWithError("open failed");
            break;
        }
        DWORD result = 0, type = 0, size = sizeof result;
        LONG rc = RegQueryValueExA(key, "Number", nullptr, &type, reinterpret_cast<BYTE*>(&result),
                                   &size);
        RegCloseKey(key);
        if (rc != ERROR_SUCCESS || result != 42) {
            state.SkipWithError("query failed");
            break;
        }
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_RegistryOpenQueryDwordClose)->Repetitions(5)->ReportAggregatesOnly(true);

// The same right after a write (by this process or any other): the read
// cache is gone and the key and value come from the database.
void BM_RegistryOpenQueryDwordCloseAfterWrite(benchmark::State& state) {
    HKEY setup = CreateBenchKey();
    DWORD value = 42;
    RegSetValueExA(setup, "Number", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                   sizeof value);
    DWORD other = 0;
    for (auto _ : state) {
        state.PauseTiming();
        ++other;
        RegSetValueExA(setup, "Other", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&other),
                       sizeof other);
        state.ResumeTiming();
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, kKeyPath, 0, KEY_READ, &key) != ERROR_SUCCESS) {
            state.SkipWithError("open failed");
            break;
        }
        DWORD result = 0, type = 0, size = sizeof result;
        LONG rc = RegQueryValueExA(key, "Number", nullptr, &type, reinterpret_cast<BYTE*>(&result),
                                   &size);
        RegCloseKey(key);
        if (rc != ERROR_SUCCESS || result != 42) {
            state.SkipWithError("query failed");
            break;
        }
    }
    RegCloseKey(setup);
}
BENCHMARK(BM_RegistryOpenQueryDwordCloseAfterWrite)->Repetitions(5)->ReportAggregatesOnly(true);

// One committed write on an open key (durable against a crash of the process).
void BM_RegistrySetDword(benchmark::State& state) {
    HKEY key = CreateBenchKey();
    DWORD value = 0;
    for (auto _ : state) {
        ++value;
        if (RegSetValueExA(key, "Counter", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value),
                           sizeof value) != ERROR_SUCCESS) {
            state.SkipWithError("set failed");
            break;
        }
    }
    RegCloseKey(key);
}
BENCHMARK(BM_RegistrySetDword)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
