// Benchmarks in pairs: our work and what it is measured against, on the same data in the same process.
#pragma once

#include <functional>
#include <string>

namespace zolbench {

/// One of the two things that are compared. Its name has the form "CASE/zolwebcs" or "CASE/OTHERNAME".
struct Side {
    std::string name;
    std::function<void()> run;
};

/// What time counts: that of the calling thread on its processor, which other programs do not change much; or that on
/// the wall, where several threads work.
enum class Clock { Processor, Wall };

/// Registers a pair. The two sides take turns; the table shows the median time of `ours` divided by that of `other`,
/// how far the ratios of the single turns spread, and `bar`, the ratio that must not be exceeded (0: none is set).
void compare(const std::string& title, double bar, const Side& ours, const Side& other, Clock clock = Clock::Processor);

/// Called by every *_bench.cpp through an object of static storage.
struct Registration {
    explicit Registration(void (*registerAll)()) { registerAll(); }
};

}  // namespace zolbench
