// What a harness checks. A broken promise ends the process, so that the fuzzer keeps the input.
#pragma once

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
