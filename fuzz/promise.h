// The checks of a harness. A broken promise ends the process, so that the fuzzer keeps the input.
#ifndef FUZZ_PROMISE_H
#define FUZZ_PROMISE_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

inline void Must(bool kept, const char *promise)
{
    if (kept)
        return;
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
}

#endif
