// What must hold of every record and table, whatever bytes it is read from.
#pragma once

#include <afx.h>

#include <cstdint>

#include "tests/support/Bytes.h"

// Reads the bytes as an object of that class and as its fields alone, under the current schema and
// an older one. Ends the program when more is read than the bytes, when more memory is asked for
// than a small multiple of them, or when what was read, written and read again, is different.
void checkRecord(const CRuntimeClass& recordClass, const Bytes& bytes);

// A whole fuzzer.
#define FUZZ_RECORD(CLASS)                                                     \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) { \
        checkRecord(*RUNTIME_CLASS(CLASS), Bytes(bytes, bytes + size));        \
        return 0;                                                              \
    }
