#include "tests/fuzz/checks.h"

// The fuzzer's way in; VORN_FUZZ_CHECK names the check.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    VORN_FUZZ_CHECK(bytes, size);
    return 0;
}
