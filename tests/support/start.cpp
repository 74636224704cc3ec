#include <gtest/gtest.h>

#include "support/engine.h"

namespace vrel {
namespace {

// Starts the engine before the first test of the process.
class Engine : public ::testing::Environment {
    void SetUp() override { StartForTests(); }
};

const ::testing::Environment* const kEngine = ::testing::AddGlobalTestEnvironment(new Engine);

}  // namespace
}  // namespace vrel
