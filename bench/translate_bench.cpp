// CGblTranslate::DoGet over a 64 MiB buffer with input translation on
// (a non-identity table, so the work cannot be skipped).
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "translate/gbl_translate.h"

namespace {

constexpr size_t kBufferSize = 64u << 20;

void BM_TranslateDoGet64MiB(benchmark::State& state) {
    std::vector<BYTE> input(kBufferSize);
    std::mt19937 rng(1963);
    for (BYTE& b : input) {
        b = static_cast<BYTE>(rng());
    }
    std::vector<BYTE> output(kBufferSize);
    CGblTranslate translator;
    for (int i = 0; i < 256; ++i) {
        translator.SetInputValue(static_cast<BYTE>(i), static_cast<BYTE>(255 - i));
    }
    translator.EnableGet(TRUE);
    for (auto _ : state) {
        for (size_t i = 0; i < kBufferSize; ++i) {
            output[i] = translator.DoGet(input[i]);
        }
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(kBufferSize));
}
BENCHMARK(BM_TranslateDoGet64MiB)->Unit(benchmark::kMillisecond);

}  // namespace
