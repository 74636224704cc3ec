#include "tools/tuner.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "eval/eval_tables.h"
#include "eval/personality.h"
#include "interface/messages.h"
#include "interface/pblock.h"
#include "interface/progress.h"
#include "platform/file.h"
#include "search/search_control.h"
#include "tools/epd_analysis.h"

namespace vrel {

namespace {

// A step is so many times the slope, in proportion to the weight, but no longer than what the slope was taken over.
constexpr double GAIN = 4000.0;
constexpr double OFFSET = 0.51;  // keeps small weights moving
constexpr double RELATIVE_STEP = 0.02;
constexpr int PASSES = 30;
constexpr const char* LOG = "tune.log";

using Vector = std::array<double, TUNED_WEIGHTS>;

// "tune.log" while a tuning runs.
File fdtune;

// A descent goes on with fractions; the evaluation knows whole centipawns.
int16_t NearestWeight(double value) {
    constexpr double low = std::numeric_limits<int16_t>::min();
    constexpr double high = std::numeric_limits<int16_t>::max();
    return static_cast<int16_t>(static_cast<int>(std::clamp(std::round(value), low, high)));
}

// What the log holds is seen on the way, too.
void WriteBoth(const std::string& text) {
    Print("%s", text.c_str());
    fdtune.WriteText(text.c_str());
}

template <typename... Arguments>
std::string Formatted(const char* format, Arguments... arguments) {
    std::array<char, 128> text;
    std::snprintf(text.data(), text.size(), format, arguments...);
    return text.data();
}

void WriteWeight(int index) {
    WriteBoth(Formatted("** param_%d, value= %d\n", index, static_cast<int>(*TunedWeight(&Personality, index))));
}

void WriteError(double error) {
    WriteBoth(Formatted("\nerr= %0.5f\n\n", error));
    fdtune.Flush();
}

std::string PassLine(int pass) { return Formatted("pass= %d, k0= %0.3e\n", pass, GAIN); }

// Moves *x against the slope of the error, a one-sided difference quotient. The weight itself stays.
void ImproveWeight(int index, double e0, double* x) {
    int16_t* weight = TunedWeight(&Personality, index);
    const int16_t p = *weight;
    const double d = std::abs(p) * RELATIVE_STEP + OFFSET;
    *weight = NearestWeight(p + std::round(d));
    const int p1 = *weight;
    const double e1 = Analyze_EPD_File(false);
    // Slopes of a pass are all taken at the same place.
    *weight = p;
    if (PBlock.quit)
        return;
    const double g = (e1 - e0) / std::round(d);
    *x += std::clamp(-GAIN * (std::fabs(*x) + OFFSET) * g, -d, d);
    Print("p0=%d, p1=%d, e0=%0.3e, e1=%0.3e, g=%0.5e, p0 = %0.3f\n", p, p1, e0, e1, g, *x);
}

// The new values take effect together, once all slopes are known.
void ApplyWeights(const Vector& x) {
    for (int i = 0; i < TUNED_WEIGHTS; ++i)
        *TunedWeight(&Personality, i) = NearestWeight(x[i]);
}

void WriteWeights() {
    for (int i = 0; i < TUNED_WEIGHTS; ++i)
        WriteWeight(i);
}

// A pass that is broken off changes no weight, and the log says no more than that: errors of a part of the positions
// say nothing about the weights.
void BreakOff(int pass, const PersonalityRecord& before) {
    Personality = before;
    fdtune.Print("pass %d broken off\n", pass);
}

// The error with the weights of the pass; not a number if it was broken off.
double RunPass(int pass, double e0, Vector* x, Progress* progress) {
    const PersonalityRecord before = Personality;
    Print("%s", PassLine(pass).c_str());
    for (int i = 0; i < TUNED_WEIGHTS && !PBlock.quit; ++i) {
        progress->Show(pass * TUNED_WEIGHTS + i);
        ImproveWeight(i, e0, &(*x)[i]);
    }
    ApplyWeights(*x);
    const double error = PBlock.quit ? e0 : Analyze_EPD_File(false);
    if (PBlock.quit) {
        BreakOff(pass, before);
        return e0;
    }
    Print("\n");
    fdtune.WriteText("*********************************\n");
    fdtune.WriteText(PassLine(pass).c_str());
    WriteWeights();
    WriteError(error);
    return error;
}

// The interval that still holds the best value, and the error there.
struct Bracket {
    int best, min, max;
    double error;
};

// A value on the wider side of the best one.
int Probe(const Bracket& b) { return b.max - b.best >= b.best - b.min ? (b.best + b.max) / 2 : (b.best + b.min) / 2; }

// A better value becomes the middle, and the old one a bound; a worse one is a bound itself.
void Shrink(Bracket* b, int probe, double error) {
    if (error < b->error) {
        (probe < b->best ? b->max : b->min) = b->best;
        b->best = probe;
        b->error = error;
    } else {
        (probe > b->best ? b->max : b->min) = probe;
    }
}

// Values that a weight can't have are no part of the interval.
int WithinWeight(long long value) {
    return static_cast<int>(
        std::clamp<long long>(value, std::numeric_limits<int16_t>::min(), std::numeric_limits<int16_t>::max()));
}

}  // namespace

bool Tune() {
    PBlock.noise = SILENT;
    LimitDepth(0);
    // A first look at the positions, before an older log is given up.
    bool complete = false;
    double e0 = Analyze_EPD_File(false, &complete);
    if (!complete)
        return false;
    fdtune = OpenOwnFile(LOG, "w");
    if (!fdtune) {
        Complain("%s: %s", LOG, FileTrouble());
        return false;
    }
    if (PBlock.quit) {
        BreakOff(0, Personality);
        return true;
    }
    WriteBoth("\n");
    Vector x;
    for (int i = 0; i < TUNED_WEIGHTS; ++i)
        x[i] = *TunedWeight(&Personality, i);
    WriteWeights();
    WriteError(e0);
    Progress progress("slopes", PASSES * TUNED_WEIGHTS);
    for (int pass = 0; pass < PASSES && !PBlock.quit; ++pass)
        e0 = RunPass(pass, e0, &x, &progress);
    if (fdtune.Close())
        return true;
    Complain("%s: %s", LOG, FileTrouble());
    return false;
}

int PTune(const char* name, int16_t* param, int range) {
    const int16_t orig = *param;
    const long long width = range;
    bool complete = false;
    Bracket b = {orig, WithinWeight(orig - width), WithinWeight(orig + width), Analyze_EPD_File(false, &complete)};
    if (!complete)
        return orig;
    const int limit = range / 12 + 2;
    while (b.max - b.min > limit && !PBlock.quit) {
        Print("best= %d, err= %0.5e, min= %d, max= %d\n\n", b.best, b.error, b.min, b.max);
        const int probe = Probe(b);
        *param = static_cast<int16_t>(probe);
        if (probe == b.best)
            break;
        const double error = Analyze_EPD_File(false);
        if (PBlock.quit)
            break;
        Print("%s= %d, err= %0.5e\n", name, probe, error);
        Shrink(&b, probe, error);
    }
    *param = orig;
    InitEval();  // what comes next plays with the old value
    // An analysis that was broken off says nothing about the weight.
    if (PBlock.quit) {
        Complain("tune %s: broken off, no best value", name);
        return orig;
    }
    Print("best= %d, err= %0.5e\n", b.best, b.error);
    if (fdtune) {
        fdtune.Print("%-24s  %4d  %0.5f\n", name, b.best, b.error);
        fdtune.Flush();
    }
    return b.best;
}

}  // namespace vrel
