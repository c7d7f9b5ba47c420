#include "compare.h"

#include <benchmark/benchmark.h>

#include <opencv2/core.hpp>

#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace zolbench {

namespace {

struct Pair {
    std::string title;
    double bar;
    std::string ours;
    std::string other;
};

std::vector<Pair>& pairs() {
    static std::vector<Pair> list;
    return list;
}

void registerOnce(const Side& side) {
    static std::set<std::string> known;
    if (!known.insert(side.name).second) return;
    const auto measure = [run = side.run](benchmark::State& state) {
        run();  // makes its data and warms the caches
        for (auto _ : state) run();
    };
    // A fixed number of iterations: a slow moment at the start would else leave a side with a single, cold one.
    benchmark::RegisterBenchmark(side.name.c_str(), measure)->Unit(benchmark::kMillisecond)->Iterations(20);
}

/// Prints as usual and keeps the medians.
class MedianReporter : public benchmark::ConsoleReporter {
public:
    MedianReporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
        }
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, double> medians;
};

void printTable(const std::map<std::string, double>& medians) {
    std::printf("\n%-62s %8s %8s\n", "median time / median time", "ratio", "bar");
    for (const Pair& pair : pairs()) {
        const auto ours = medians.find(pair.ours);
        const auto other = medians.find(pair.other);
        if (ours == medians.end() || other == medians.end()) continue;
        const double ratio = ours->second / other->second;
        std::printf("%-62s %8.2f ", pair.title.c_str(), ratio);
        if (pair.bar > 0.0) {
            std::printf("%8.2f%s\n", pair.bar, ratio <= pair.bar ? "" : "  MISSED");
        } else {
            std::printf("%8s\n", "-");
        }
    }
}

}  // namespace

void compare(const std::string& title, double bar, const Side& ours, const Side& other) {
    registerOnce(ours);
    registerOnce(other);
    pairs().push_back({title, bar, ours.name, other.name});
}

}  // namespace zolbench

int main(int argc, char** argv) {
    // Defaults first, so that the command line can change them. Sides take turns: a slow moment hits both.
    std::vector<std::string> defaults{"--benchmark_repetitions=15", "--benchmark_report_aggregates_only=true",
                                      "--benchmark_enable_random_interleaving=true"};
    std::vector<char*> arguments{argv[0]};
    for (std::string& argument : defaults) arguments.push_back(argument.data());
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    cv::setNumThreads(1);
    zolbench::MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    zolbench::printTable(reporter.medians);
    return 0;
}
