#pragma once

#include <string>
#include <vector>

// What the fuzzer feeds with bytes, and what the normal tests replay the corpus through. A target returns or ends the
// process; it has no other verdict. All run in the working directory, where some leave files.
namespace vrel {

struct FuzzTarget {
    const char* name;
    void (*run)(const std::string& bytes);
};

const std::vector<FuzzTarget>& FuzzTargets();

// Runs the target of that name on fresh settings. False if there is none.
bool RunFuzzTarget(const std::string& name, const std::string& bytes);

}  // namespace vrel
