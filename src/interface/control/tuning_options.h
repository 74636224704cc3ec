#pragma once

#include <span>

#include "interface/control/options.h"

// The tuning build, VREL_TUNE: every weight of the evaluation and every selectivity field is a UCI option as well, so
// that a system which plays games can tune them.
namespace vrel {

// One option for each field, in the order of the lists in eval/personality.h; none in the ordinary build.
std::span<const UciOption> TuningOptions();

// Prints the options as a tuner by games takes them, one a line: name, type, value, least and greatest value, step and
// rate of learning. False, and nothing, in the ordinary build.
bool ShowTuneSpec();

}  // namespace vrel
