#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/targets.h"

namespace vrel {

// Every input of the corpus and every finding of the past, through its target. What a target does wrong ends the
// process.
TEST(FuzzCorpus, RunsThrough) {
    for (const FuzzTarget& target : FuzzTargets()) {
        int inputs = 0;
        for (const auto& file : std::filesystem::directory_iterator(std::string(FUZZ_CORPUS) + "/" + target.name)) {
            SCOPED_TRACE(file.path().string());
            std::ifstream in(file.path(), std::ios::binary);
            const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            EXPECT_TRUE(RunFuzzTarget(target.name, bytes));
            ++inputs;
        }
        EXPECT_GT(inputs, 0) << target.name;
    }
}

}  // namespace vrel
