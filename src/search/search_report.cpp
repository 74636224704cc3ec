#include "search/search_report.h"

#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstdio>

#include "board/fen.h"
#include "interface/messages.h"
#include "interface/move_text.h"
#include "interface/pblock.h"
#include "search/search.h"
#include "search/search_control.h"
#include "search/thread_pool.h"
#include "search/transposition.h"

namespace vrel {

std::array<uint64_t, STATS> sstats;

namespace {

constexpr int SHOWN_MOVES = 66;  // a whole line
constexpr int MOVES_A_LINE = 8;
constexpr int SHORT_LINE = 8;  // moves of a console line while the search runs
constexpr int LONG_LINE = 32;  // and at the end of an iteration

struct Rates {
    double milliseconds;  // since the search began
    double nodes;
    double nps;  // nodes a second
};

// Of all threads, as Collect has summed them. In the first millisecond a rate would be noise.
Rates CurrentRates() {
    const double elapsed = PBlock.elapsed;
    const auto nodes = static_cast<double>(sstats[STAT_NODES]);
    return {elapsed * 1000, nodes, elapsed > 0.001 ? nodes / elapsed : 0.0};
}

// Text of a line of moves, cut where it doesn't fit. Nothing is allocated while a search runs.
class LineText {
public:
    void Add(const char* text) {
        while (*text != '\0' && length_ + 1 < text_.size())
            text_[length_++] = *text++;
        text_[length_] = '\0';
    }
    void Add(Move move) {
        MoveText text;
        Add(MoveToStr(move, text.data()));
    }
    const char* c_str() const { return text_.data(); }

private:
    std::array<char, 1024> text_{};
    size_t length_ = 0;
};

LineText UciLine(const Move* pv) {
    LineText text;
    for (int i = 1; i <= SHOWN_MOVES && pv[i]; ++i) {
        if (i > 1)
            text.Add(" ");
        text.Add(pv[i]);
    }
    return text;
}

// The line cut to what a person reads; long ones continue under the first move. What is only passing stays on one line.
LineText ConsoleLine(const Move* pv, int most) {
    // As far in as the columns of a console line go.
    constexpr const char* new_line = "\n                              ";
    LineText text;
    for (int i = 1; i <= most && pv[i]; ++i) {
        if (i > 1)
            text.Add((i - 1) % MOVES_A_LINE == 0 ? new_line : " ");
        text.Add(pv[i]);
    }
    return text;
}

// The longer form tells the worker, and lines that an iteration has ended with from those it has come across. Mates are
// told in centipawns like any score.
void ShowUciLine(int id, char mark, int mpv, Depth depth, int score, const Move* pv) {
    const Rates rates = CurrentRates();
    const LineText line = UciLine(pv);
    if (uci_extra) {
        ShowFormatted("info [%02d%c] depth %d time %.0f score cp %d nodes %.0f nps %.0f pv %s", id, mark, depth,
                      rates.milliseconds, score, rates.nodes, rates.nps, line.c_str());
        return;
    }
    // Of several lines the first has number 1.
    std::array<char, 32> head{"info"};
    if (PBlock.multipv > 1)
        std::snprintf(head.data(), head.size(), "info multipv %d", mpv + 1);
    ShowFormatted("%s depth %d time %.0f score cp %d nodes %.0f nps %.0f pv %s", head.data(), depth, rates.milliseconds,
                  score, rates.nodes, rates.nps, line.c_str());
}

void ShowConsoleLine(int id, char mark, int mpv, Depth depth, int score, const Move* pv) {
    const LineText line = ConsoleLine(pv, mpv == ITERATION_RUNS ? SHORT_LINE : LONG_LINE);
    ShowFormatted("%02d] %02d%c %5.1f %7.0fK %5d  %s", id, depth, mark, PBlock.elapsed.Get(),
                  CurrentRates().nodes / 1000, score, line.c_str());
}

}  // namespace

void Collect() {
    // Slot 0, the game's own, counts what is evaluated outside of a search.
    sstats = {};
    for (int i = 0; i <= PBlock.nthreads; ++i) {
        const SearchThread& thread = *GetThread(i);
        sstats[STAT_NODES] += thread.nodes;
        sstats[STAT_EVALS] += thread.evals;
        sstats[STAT_EVAL_HITS] += thread.eval_hits;
        sstats[STAT_TT_PROBES] += thread.tt_probes;
        sstats[STAT_TT_HITS] += thread.tt_hits;
        sstats[STAT_PAWN_PROBES] += thread.pawn_probes;
        sstats[STAT_PAWN_HITS] += thread.pawn_hits;
    }
}

void UpdatePV(Move* pv, const Move* child_pv, Move move, Ply ply) {
    assert(ply >= 1 && ply < FRAMES);
    pv[ply] = move;
    for (int i = ply + 1; i < FRAMES; ++i) {
        pv[i] = child_pv[i];
        if (child_pv[i] == NO_MOVE)
            return;
    }
}

PvLine CopyPV(const SharedLine& line) {
    PvLine copy;
    for (size_t i = 0; i < copy.size(); ++i)
        copy[i] = line[i];
    return copy;
}

void NewBestMove(SearchThread* thread) {
    // A side worker is heard through the table, and when worker 1 repeats an iteration for its sake.
    if (thread->id > 1)
        return;
    if (!PublishLine(*thread))
        return;
    // Depth 1 is shown when it is through, and several lines are shown together with theirs.
    const Depth depth = thread->best_depth;
    if (depth > 1 && PBlock.multipv == 1)
        DisplaySearchInfo(thread->id, ITERATION_RUNS, depth, thread->score, CopyPV(thread->pv).data());
}

bool SearchIsSilent() { return PBlock.noise == SILENT || PBlock.noise > PBlock.elapsed; }

void DisplaySearchInfo(int id, int mpv, Depth depth, int score, const Move* pv) {
    // A search that has been stopped shows its result within the first seconds as well.
    const bool silent = PBlock.stop ? PBlock.noise == SILENT : SearchIsSilent();
    // Depth 0 is a move that nobody has searched.
    if (silent || depth == 0 || pv[1] == NO_MOVE)
        return;
    const char mark = mpv >= 0 ? '.' : ' ';
    // The sums are one thread's from here to the end of the report: workers and the main thread both show lines.
    const SpinGuard guard(&spinlock2);
    Collect();
    if (PBlock.mode == MODE_UCI)
        ShowUciLine(id, mark, mpv, depth, score, pv);
    else
        ShowConsoleLine(id, mark, mpv, depth, score, pv);
}

void ShowSearchStart(const Position& game) {
    if (PBlock.noise >= SILENT)
        return;
    std::array<char, EPD_TEXT> fen;
    MakeEPD(game, fen.data());
    // The log of a game shows what was searched and how long it should take; in UCI mode nobody else asks.
    const auto text = [](const char* format, auto... values) {
        std::array<char, 256> line;
        std::snprintf(line.data(), line.size(), format, values...);
        return line;
    };
    if (PBlock.mode == MODE_UCI) {
        LogMessage(text("info string fen %s", fen.data()).data());
        LogMessage(text("info string ply= %d, trg_time= %0.3f sec", game.game_ply, PBlock.trg_time.Get()).data());
    } else {
        ShowFormatted("fen %s", fen.data());
        ShowFormatted("Ply= %d, Clock= %0.2fs  Target time= %0.2fs", game.game_ply, PBlock.clock[game.stm].Get(),
                      PBlock.trg_time.Get());
    }
}

// It has worker 0: once published a line is nobody's.
void DisplayPublishedLine() { DisplaySearchInfo(0, 0, PBlock.depth, PBlock.score, CopyPV(PBlock.pv).data()); }

void ShowInfo() {
    const SpinGuard guard(&spinlock2);
    Collect();
    CheckTTable();
    const Rates rates = CurrentRates();
    // The fill is told in thousandths.
    ShowFormatted("info depth %d time %.0f nodes %.0f nps %.0f hashfull %.0f", GetThread(1)->depth.Get(),
                  rates.milliseconds, rates.nodes, rates.nps, PBlock.hash_fill * 1000);
}

// The squares alone: what a pawn becomes is not told here.
void UCI_ShowCurrentMove(Move move, int number) {
    const SpinGuard guard(&spinlock2);
    ShowFormatted("info currmove %s%s currmovenumber %d", algbr(FromSquare(move)), algbr(ToSquare(move)), number);
}

double EffectiveBranchingFactor() {
    // Four plies even out that odd and even iterations grow differently. Early ones are over too soon to tell anything.
    const Depth depth = PBlock.done_depth;
    if (depth <= 5)
        return 2.0;
    const auto& iter_nodes = GetThread(1)->iter_nodes;
    const auto last = static_cast<double>(iter_nodes[depth]);
    const auto earlier = static_cast<double>(iter_nodes[depth - 4]);
    if (last == 0.0 || earlier == 0.0)
        return 2.0;
    return std::sqrt(std::sqrt(last / earlier));  // the fourth root
}

}  // namespace vrel
