#pragma once

namespace vrel {

// Shows how the evaluation sees the position of the game. Workers must be idle.
void ShowEvalInfo();

}  // namespace vrel
