#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "eval/personality.h"
#include "interface/pblock.h"
#include "support/engine.h"

namespace vrel {

// The engine in a folder of its own, as the tools have fixed names for their files.
class ToolTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { StartForTests(); }

    void SetUp() override {
        old_folder_ = std::filesystem::current_path();
        std::string name = (std::filesystem::temp_directory_path() / "vrel_tool_XXXXXX").string();
        folder_ = mkdtemp(name.data());
        std::filesystem::current_path(folder_);
        InitPersonality();
        SetDefaults();
        PBlock.log = 0;
        PBlock.noise = SILENT;
    }

    void TearDown() override {
        std::filesystem::current_path(old_folder_);
        std::filesystem::remove_all(folder_);
    }

    static void WriteFile(const std::string& name, const std::string& text) {
        std::ofstream(name, std::ios::binary) << text;
    }

    static std::string ReadFile(const std::string& name) {
        std::ifstream in(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path old_folder_, folder_;
};

}  // namespace vrel
