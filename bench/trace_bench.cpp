// Trace files: CZqTrace::Output of 80-byte lines at level 1 into the trace
// file beside the executable, beside the platform's own WriteFile of
// 8 KiB blocks into a file in the same folder (the bare cost of getting
// bytes into a file there). Each iteration writes about one megabyte; every
// 64 MB the file is emptied again, outside the timing. Rates are by the
// wall clock, since the writes themselves are part of the work.
#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "diagnostics/trace.h"
#include "platform/win32.h"

namespace {

constexpr int kLineLength = 80;
constexpr int kLinesPerIteration = 13107;  // 1,048,560 bytes
constexpr int kBlockSize = 8192;
constexpr int kBlocksPerIteration = 128;  // 1 MiB
constexpr int kIterationsPerFile = 64;

// 80 bytes with "\r\n": a counter, a fixed text and the line end, as a
// program's trace lines look.
constexpr char kFormat[] = "%08lu Line %s\r\n";
const std::string kText(kLineLength - 8 - 6 - 2, 't');
// The same line without conversions, to show what formatting costs.
const std::string kLiteral = std::string(kLineLength - 2, 'l') + "\r\n";

void TraceOutput(benchmark::State& state, bool literal) {
    CZqTrace trace;
    if (!trace.Open("Bench", FALSE)) {
        state.SkipWithError("the trace cannot be opened");
        return;
    }
    DWORD line = 0;
    int iterations = 0;
    for (auto _ : state) {
        if (literal) {
            for (int i = 0; i < kLinesPerIteration; ++i) {
                trace.Output(kLiteral.c_str());
            }
        } else {
            for (int i = 0; i < kLinesPerIteration; ++i) {
                trace.Output(kFormat, ++line, kText.c_str());
            }
        }
        if (++iterations % kIterationsPerFile == 0) {
            state.PauseTiming();
            trace.Open("Bench", FALSE);
            state.ResumeTiming();
        }
    }
    const CString path = trace.GetFileName();
    trace.Close();
    DeleteFileA(path);
    state.SetBytesProcessed(state.iterations() * kLinesPerIteration * kLineLength);
}

void BM_TraceOutput(benchmark::State& state) {
    TraceOutput(state, false);
}
void BM_TraceOutputLiteral(benchmark::State& state) {
    TraceOutput(state, true);
}

void BM_WriteFileBlocks(benchmark::State& state) {
    const CString folder = CZqTrace::GetTraceFolder();
    const CString path = folder + "\\ZqBenchBaseline.TRC";
    HANDLE file = CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        state.SkipWithError("the file cannot be created");
        return;
    }
    char block[kBlockSize];
    std::memset(block, 'b', sizeof block);
    int iterations = 0;
    for (auto _ : state) {
        for (int i = 0; i < kBlocksPerIteration; ++i) {
            DWORD written = 0;
            WriteFile(file, block, sizeof block, &written, nullptr);
        }
        if (++iterations % kIterationsPerFile == 0) {
            state.PauseTiming();
            SetFilePointer(file, 0, nullptr, FILE_BEGIN);
            SetEndOfFile(file);
            state.ResumeTiming();
        }
    }
    CloseHandle(file);
    DeleteFileA(path);
    state.SetBytesProcessed(state.iterations() * kBlocksPerIteration * kBlockSize);
}

}  // namespace

BENCHMARK(BM_TraceOutput)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_TraceOutputLiteral)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_WriteFileBlocks)->Unit(benchmark::kMillisecond)->UseRealTime();
