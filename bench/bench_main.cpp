#include <benchmark/benchmark.h>

#include "bench_process.h"

int main(int argc, char **argv)
{
    VornBench::PrepareProcess();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
