// Entry points of the coverage-guided fuzzer. The environment variable FUZZ_TARGET names the target.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/targets.h"

namespace {

std::string target;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* name = std::getenv("FUZZ_TARGET");
    target = name != nullptr ? name : "";
    if (!vrel::RunFuzzTarget(target, "")) {
        std::fprintf(stderr, "FUZZ_TARGET names no target\n");
        return 1;
    }
    // The engine talks; what it says is of no interest here.
    return std::freopen("/dev/null", "w", stdout) == nullptr;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    vrel::RunFuzzTarget(target, std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
