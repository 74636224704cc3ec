#pragma once

namespace vrel {

// Analyses the positions of PBlock.epd_file. Returns the mean error against the targets of the lines, 1.0 if a file
// can't be opened. `show` prints heading and summary.
double Analyze_EPD_File(bool show);

// The same; `complete` tells whether all could be read and written. If not, a word on standard error says why.
double Analyze_EPD_File(bool show, bool* complete);

}  // namespace vrel
