#ifndef VORN_FUZZ_QUIET_SERVICE_INITIALIZE_H
#define VORN_FUZZ_QUIET_SERVICE_INITIALIZE_H

#include "fuzz_environment.h"

// libFuzzer's start-up hook for the targets that need nothing but a quiet service. A definition,
// not a declaration: each fuzz target is one source file, and that file includes this header.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    (void)argc;
    (void)argv;
    VornFuzz::QuietService();
    return 0;
}

#endif // VORN_FUZZ_QUIET_SERVICE_INITIALIZE_H
