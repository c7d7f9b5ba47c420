// Benchmarks in pairs: our work and what it is measured against, on the same data in the same process.
#pragma once

#include <functional>
#include <string>

namespace zolbench {

/// Registers a pair. The table shows the median time of `ours` divided by that of `other`, and `bar`, the ratio that
/// must not be exceeded (0: none is set).
///
/// The two sides run under the names "CASE/zolwebcs" and "CASE/OTHERNAME"; a side that has been registered under the
/// same name before runs once and serves several pairs.
struct Side {
    std::string name;
    std::function<void()> run;
};
void compare(const std::string& title, double bar, const Side& ours, const Side& other);

/// Called by every *_bench.cpp through an object of static storage.
struct Registration {
    explicit Registration(void (*registerAll)()) { registerAll(); }
};

}  // namespace zolbench
