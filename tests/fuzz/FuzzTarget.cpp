// The libFuzzer entry of one fuzz program; the reader it drives is chosen at build time.
#include "FuzzReaders.h"

#include <cstdio>
#include <cstdlib>

#ifndef VELMORA_FUZZ_TARGET
#error "VELMORA_FUZZ_TARGET names the reader this program fuzzes"
#endif

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    FuzzReaders::prepare();
    if (!FuzzReaders::find(VELMORA_FUZZ_TARGET)) {
        std::fprintf(stderr, "no reader named %s\n", VELMORA_FUZZ_TARGET);
        std::abort();
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const FuzzReaders::Reader* reader = FuzzReaders::find(VELMORA_FUZZ_TARGET);
    // An accepted input whose result breaks a check is a finding like a crash.
    if (reader->entry(data, size) == FuzzReaders::INCONSISTENT) {
        std::fprintf(stderr, "%s: input accepted but inconsistent after loading\n", reader->name);
        std::abort();
    }
    return 0;
}
