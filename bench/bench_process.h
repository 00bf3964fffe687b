#ifndef VORN_BENCH_BENCH_PROCESS_H
#define VORN_BENCH_BENCH_PROCESS_H

namespace VornBench {
// Call first thing in main. Clears every proxy variable, so nothing may leave 127.0.0.1, and
// keeps the service's log lines off the terminal, where writing them would dominate what is
// measured: unless VORN_HILOG_FILE already names a sink, it becomes /dev/null. Only the line the
// service library logs while it loads, before main, still reaches standard error; child
// processes inherit the setting and log nothing there.
void PrepareProcess();
} // namespace VornBench

#endif // VORN_BENCH_BENCH_PROCESS_H
