#pragma once

namespace vrel {

// The number at the start of a text as atoi reads it, brought into a range; 0 (brought into the range) for no number.
int ReadInteger(const char* text, int lowest, int highest);
long long ReadLongInteger(const char* text, long long lowest, long long highest);

// The same as atof reads it; what is no finite number counts as 0.
double ReadReal(const char* text, double lowest, double highest);

// The same without a range, and quick for a few plain digits: what atof gives, to the last bit.
double ReadDecimal(const char* text);

}  // namespace vrel
