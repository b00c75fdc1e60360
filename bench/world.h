/* Real and virtual time: each benchmark is for one of them, and only there to be started. */
#ifndef BENCH_WORLD_H
#define BENCH_WORLD_H

#include <benchmark/benchmark.h>
#include <dlfcn.h>

enum World { REAL_TIME, VIRTUAL_TIME };

using Benchmark = benchmark::internal::Benchmark;

/** Registers a benchmark, set up by `apply`, when this process runs in that time. Returns true, for
 *  a constant that registers when the program starts. */
inline bool measureIn(World world, const char* name, void (*function)(benchmark::State&),
                      void (*apply)(Benchmark*)) {
    bool isVirtual = dlsym(RTLD_DEFAULT, "vclock_suspend") != nullptr;
    if (isVirtual == (world == VIRTUAL_TIME))
        benchmark::RegisterBenchmark(name, function)->Apply(apply);
    return true;
}

inline void inMilliseconds(Benchmark* benchmark) {
    benchmark->Unit(benchmark::kMillisecond);
}

/** Of virtual time, which costs processor time alone. */
inline void onceByProcessor(Benchmark* benchmark) {
    benchmark->Iterations(1)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);
}

#endif
