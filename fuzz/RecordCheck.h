// The invariants of every record and table, whatever bytes it is read from.
#pragma once

#include <afx.h>

#include <cstdint>

#include "tests/support/Bytes.h"

// Reads the bytes as an object of that class and as its fields alone, under the current schema and
// an older one. Ends the program if it reads beyond the bytes, allocates more than a small multiple
// of them, or if the result, written and read again, differs.
void checkRecord(const CRuntimeClass& recordClass, const Bytes& bytes);

// A whole fuzzer.
#define FUZZ_RECORD(CLASS)                                                     \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) { \
        checkRecord(*RUNTIME_CLASS(CLASS), Bytes(bytes, bytes + size));        \
        return 0;                                                              \
    }
