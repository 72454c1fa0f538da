#pragma once

#include <cstddef>
#include <cstdint>

/// One run of the target that is linked in, on one input. The name is libFuzzer's.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size);
