#include "support/rules_text.h"

#include <fstream>
#include <sstream>

namespace vrel {
namespace {

using RulesTextTest = EngineTest;

// The blocks of the file: what an independent program says of the same positions, the order of the moves included.
TEST_F(RulesTextTest, SaysWhatAnotherProgramSays) {
    std::ifstream file(TEST_DATA "/rules.txt");
    ASSERT_TRUE(file);
    std::string line, block;
    int blocks = 0;
    const auto check = [&] {
        if (block.empty())
            return;
        const std::string fen = block.substr(4, block.find('\n') - 4);
        EXPECT_EQ(RulesText(fen), block);
        block.clear();
        ++blocks;
    };
    while (std::getline(file, line)) {
        if (line.empty())
            check();
        else
            block += line + '\n';
    }
    check();
    EXPECT_EQ(blocks, 10);
}

}  // namespace
}  // namespace vrel
