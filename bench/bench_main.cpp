#include "compare.h"

#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace zolbench {

namespace {

/// Turns of a pair. Enough for a median that a busy moment does not move.
constexpr int turns = 31;
/// What one side's turn lasts at least: short work is repeated, so that no clock and no cold cache decides.
constexpr double shortestTurn = 0.004;

struct Pair {
    std::string title;
    double bar;
    Side ours;
    Side other;
    Clock clock;
    std::vector<double> ourSeconds;
    std::vector<double> otherSeconds;
};

/// Addresses stay: the benchmarks hold them.
std::deque<Pair>& pairs() {
    static std::deque<Pair> list;
    return list;
}

double now(Clock clock) {
    timespec time{};
    clock_gettime(clock == Clock::Processor ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Seconds for one run, of `count` in a row that follow one which is not timed: that one pays for what the other side
/// has left behind, a cache full of pixels still to be written above all.
double measure(const Side& side, int count, Clock clock) {
    side.run();
    const double begin = now(clock);
    for (int i = 0; i < count; ++i) side.run();
    return (now(clock) - begin) / count;
}

/// Runs until caches, pages and clock are warm, and tells how many runs make a turn.
int warmUp(const Side& side, Clock clock) {
    double fastest = measure(side, 1, clock);  // makes its data, too
    for (double spent = 0.0; spent < 5 * shortestTurn;) {
        const double seconds = measure(side, 1, clock);
        fastest = std::min(fastest, seconds);
        spent += std::max(seconds, 1e-6);
    }
    return std::clamp(static_cast<int>(std::ceil(shortestTurn / std::max(fastest, 1e-6))), 1, 1000);
}

void run(benchmark::State& state, Pair& pair) {
    const int ourCount = warmUp(pair.ours, pair.clock);
    const int otherCount = warmUp(pair.other, pair.clock);
    bool oursFirst = true;
    for (auto _ : state) {
        double seconds = oursFirst ? measure(pair.ours, ourCount, pair.clock) : 0.0;
        pair.otherSeconds.push_back(measure(pair.other, otherCount, pair.clock));
        if (!oursFirst) seconds = measure(pair.ours, ourCount, pair.clock);
        pair.ourSeconds.push_back(seconds);
        state.SetIterationTime(seconds);
        oursFirst = !oursFirst;
    }
}

/// The value below which `part` of the values lie.
double quantile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(std::lround(part * static_cast<double>(values.size() - 1)))];
}

void printTable() {
    std::printf("\n%-62s %9s %9s %7s %13s %6s\n", "medians (processor time unless told)", "ours/ms", "other/ms",
                "ratio", "quartiles", "bar");
    int met = 0;
    int missed = 0;
    for (const Pair& pair : pairs()) {
        if (pair.ourSeconds.empty()) continue;
        std::vector<double> ratios;
        for (std::size_t i = 0; i < pair.ourSeconds.size(); ++i) {
            ratios.push_back(pair.ourSeconds[i] / pair.otherSeconds[i]);
        }
        const double ours = quantile(pair.ourSeconds, 0.5);
        const double other = quantile(pair.otherSeconds, 0.5);
        std::printf("%-62s %9.3f %9.3f %7.2f %5.2f to %5.2f", pair.title.c_str(), ours * 1e3, other * 1e3, ours / other,
                    quantile(ratios, 0.25), quantile(ratios, 0.75));
        if (pair.bar > 0.0) {
            const bool isMet = ours / other <= pair.bar;
            ++(isMet ? met : missed);
            std::printf(" %6.2f  %s", pair.bar, isMet ? "met" : "MISSED");
        }
        std::printf("\n");
    }
    std::printf("%d bars met, %d missed\n", met, missed);
}

}  // namespace

void compare(const std::string& title, double bar, const Side& ours, const Side& other, Clock clock) {
    const std::string shown = clock == Clock::Wall ? title + " (wall)" : title;
    Pair& pair = pairs().emplace_back(Pair{shown, bar, ours, other, clock, {}, {}});
    benchmark::RegisterBenchmark(shown.c_str(), [&pair](benchmark::State& state) { run(state, pair); })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(turns);
}

}  // namespace zolbench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    cv::setNumThreads(1);
    benchmark::RunSpecifiedBenchmarks();
    zolbench::printTable();
    return 0;
}
