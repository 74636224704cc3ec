#include "tools/epd_analysis.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "board/fen.h"
#include "board/search_thread.h"
#include "eval/eval_tables.h"
#include "interface/board_text.h"  // shows each position to the person who watches
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "interface/progress.h"
#include "search/search_control.h"
#include "search/search_report.h"
#include "search/time_control.h"
#include "search/transposition.h"
#include "tools/epd_file.h"
#include "tools/expected_result.h"
#include "tools/record_file.h"
#include "tools/training_set.h"

namespace vrel {

namespace {

constexpr Move NOT_LOOKED_FOR = END_OF_LIST;  // epd_best when nothing is searched
constexpr const char* UNSOLVED = "unsolved.epd";
constexpr int WORKER_DEPTH = 5;    // deeper searches run on the workers
constexpr int TABLE_DEPTH = 1;     // so do those that profit from the table
constexpr int POLL_INTERVAL = 16;  // positions between looks at the input

// What the search of a position came to; and sums over the positions analysed.
struct Figures {
    double time = 0.0;
    double nodes = 0.0;
    double depth = 0.0;
    double branching = 0.0;
    double error = 0.0;
};
struct Totals {
    int positions = 0;
    int correct = 0;
    Figures sums;
};

struct Outputs {
    RecordFile unsolved;
    RecordFile figures;  // if they were asked for
};

bool IsSilent() { return PBlock.noise == SILENT; }

// Where the positions come from: the kept set, or the file line by line.
class Source {
public:
    // A tuning reads the file again and again, which only a regular one allows.
    Source(const char* name, bool tuning) : file_(tuning ? OpenOwnFile(name, "r") : File(name, "r")) {
        if (file_ && PBlock.max_depth <= 0 && IsSilent())
            set_ = GetTrainingSet(name);
    }

    explicit operator bool() const { return static_cast<bool>(file_); }

    // The next line, empty if the kept set serves. False at the end.
    bool Next() { return set_ != nullptr ? next_ < set_->size() : file_.Next(line_.data()); }

    // Puts the position on the board of the game and returns its target.
    double SetUp() {
        if (set_ != nullptr) {
            const TrainingPosition& entry = (*set_)[next_++];
            PlaceOnBoard(*set_, entry);
            return entry.target;
        }
        SetPosition(GamePosition(), line_.data());
        return ReadTarget(line_.data());
    }

    bool ReadToItsEnd() const { return set_ != nullptr || !file_.Failed(); }

    // Bytes of the file, and how many of them have been taken.
    int64_t Size() { return file_.Size(); }
    int64_t Place() { return file_.Place(); }

    const char* line() const { return line_.data(); }

private:
    EpdFile file_;
    std::shared_ptr<const TrainingSet> set_;
    size_t next_ = 0;
    std::array<char, EPD_LINE> line_{};
};

// A search of a few plies isn't worth a worker's time to wake up.
void SearchOnThisThread(int position) {
    SearchHere();
    PublishScore(GetThread(1)->score);
    if (position % POLL_INTERVAL == 0)
        PollSearch();
}

// The whole line, so that what its operations say can be compared with what is found.
void ShowPosition(int number, const char* line) {
    ShowFormatted("pos= %d", number);
    ShowMessage(line);
    ShowBoard(*GamePosition());
}

void ShowResult() {
    DisplayPublishedLine();
    MoveText text;
    const double elapsed = PBlock.elapsed;
    const auto nodes = static_cast<double>(sstats[STAT_NODES]);
    ShowFormatted("move= %s, time= %0.3f, score= %d, nodes= %0.0f, %0.0fK nps\n", MoveToStr(PBlock.pv[1], text.data()),
                  elapsed, PBlock.score.Get(), nodes, nodes / (elapsed + 0.001) / 1000);
}

// One search of the position on the board. It has a limit of time as any other one.
void SearchPosition(int number) {
    GetElapsedTime(0);
    InitSearch(STATE_THINKING);
    if (PBlock.max_depth > WORKER_DEPTH)
        SearchOnWorkers();
    else
        SearchOnThisThread(number);
}

// The error is that of the score as a forecast of the result.
Figures FiguresOfSearch(double target) {
    Collect();
    return {PBlock.elapsed, static_cast<double>(sstats[STAT_NODES]), static_cast<double>(PBlock.depth),
            EffectiveBranchingFactor(), std::fabs(target - ExpectedResult(PBlock.score))};
}

void Add(const Figures& figures, Figures* sums) {
    sums->time += figures.time;
    sums->nodes += figures.nodes;
    sums->depth += figures.depth;
    sums->branching += figures.branching;
    sums->error += figures.error;
}

// With all digits, so that the sums over parts of a suite are those over the whole.
std::string FiguresText(int number, bool solved, const Figures& f) {
    std::array<char, 256> text;
    std::snprintf(text.data(), text.size(), "%d %d %.17g %.0f %.0f %.17g %.17g\n", number, static_cast<int>(solved),
                  f.time, f.nodes, f.depth, f.branching, f.error);
    return text.data();
}

// With a search, what isn't solved is kept for another look; without one, the score alone is of interest.
void AnalysePosition(Source* source, Outputs* outputs, bool timed, Totals* totals) {
    ++totals->positions;
    const double target = source->SetUp();
    PBlock.epd_best = PBlock.max_depth > 0 ? ReadBestMove(source->line()) : NOT_LOOKED_FOR;
    // Positions of a suite have nothing to do with each other, and their order mustn't matter.
    if (PBlock.max_depth > TABLE_DEPTH)
        ClearTTable();
    if (!IsSilent())
        ShowPosition(totals->positions, source->line());
    SearchPosition(totals->positions);
    // Reading the clock takes a good part of the time of a position without a search.
    if (timed || !IsSilent())
        GetElapsedTime(1);
    const Figures figures = FiguresOfSearch(target);
    Add(figures, &totals->sums);
    const bool solved = PBlock.pv[1] == PBlock.epd_best;
    if (solved)
        ++totals->correct;
    else if (outputs->unsolved)
        outputs->unsolved.Put(std::string(source->line()) + '\n');
    if (outputs->figures)
        outputs->figures.Put(FiguresText(totals->positions, solved, figures));
    if (!IsSilent())
        ShowResult();
    CloseSearch();
}

// Turns sums into means; without a position they are 0 already.
struct Means {
    explicit Means(const Totals& totals) {
        const double n = totals.positions > 0 ? totals.positions : 1;
        depth = totals.sums.depth / n;
        nodes = totals.sums.nodes / n;
        branching = totals.sums.branching / n;
        error = totals.sums.error / n;
    }
    double depth, nodes, branching, error;
};

void ShowSummary(const Totals& totals, const Means& means) {
    ShowFormatted("%d / %d correct best moves", totals.correct, totals.positions);
    ShowFormatted("total nodes= %0.0f", totals.sums.nodes);
    ShowFormatted("total time= %0.2f seconds", totals.sums.time);
    ShowFormatted("avg depth= %0.1f", means.depth);
    ShowFormatted("avg nodes= %0.1f", means.nodes);
    ShowFormatted("node_rate= %0.0f", totals.sums.nodes / (totals.sums.time + 0.01));
    ShowFormatted("avg bf= %0.2f", means.branching);
    ShowFormatted("avg error= %0.5f\n", means.error);
}

}  // namespace

double Analyze_EPD_File(bool show) {
    bool complete = false;
    return Analyze_EPD_File(show, &complete);
}

double Analyze_EPD_File(bool show, bool* complete) {
    const char* name = PBlock.epd_file.data();
    const char* figures = show ? PBlock.figures_file.data() : "";
    *complete = false;
    Source source(name, !show);
    if (!source) {
        Complain("%s: %s", name, FileTrouble());
        return 1.0;
    }
    const auto create = [name](const char* output, bool wanted) {
        File file = wanted ? CreateOutput(output, name) : File();
        if (wanted && !file)
            Complain("%s: %s", output, FileTrouble());
        return RecordFile(std::move(file), output);
    };
    // The file of the unsolved may be the suite itself, which is then read to its end all the same.
    const bool searched = PBlock.max_depth > 0;
    const bool recorded = *figures != '\0';
    Outputs outputs = {create(UNSOLVED, searched), create(figures, recorded)};
    if ((searched && !outputs.unsolved) || (recorded && !outputs.figures))
        return 1.0;
    outputs.figures.Put("pos solved time nodes depth bf error\n");
    InitEval();
    if (show)
        ShowFormatted("Analyzing %s...", name);
    // So little is searched that to clear the table would take longer.
    if (PBlock.max_depth <= TABLE_DEPTH)
        PBlock.use_hash = 0;
    Totals totals;
    Progress progress("bytes", show ? source.Size() : 0);
    const bool timed = show || searched;
    while (source.Next()) {
        if (progress.IsDue())
            progress.Show(source.Place());
        AnalysePosition(&source, &outputs, timed, &totals);
        if (PBlock.quit)
            break;
    }
    const bool read = source.ReadToItsEnd();
    if (!read)
        Complain("%s: %s", name, FileTrouble());
    const bool written = outputs.unsolved.Close();
    *complete = outputs.figures.Close() && written && read;
    const Means means(totals);
    if (show)
        ShowSummary(totals, means);
    return means.error;
}

}  // namespace vrel
