// Main of zq_bench: the benchmarks run against a fresh temporary prefix
// (removed afterwards) unless ZQ_PREFIX names one.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include "platform/win32.h"

int main(int argc, char** argv) {
    std::filesystem::path prefix;
    if (!std::getenv("ZQ_PREFIX")) {
        std::random_device random;
        prefix = std::filesystem::temp_directory_path() / ("zq-bench-" + std::to_string(random()));
        std::filesystem::create_directories(prefix);
        SetEnvironmentVariableA("ZQ_PREFIX", prefix.c_str());
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (!prefix.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(prefix, ignored);
    }
    return 0;
}
