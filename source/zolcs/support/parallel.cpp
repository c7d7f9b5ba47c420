#include "zolcs/support/parallel.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <mutex>

#if defined(ZOL_USE_OPENMP)
#include <omp.h>
#else
#include <system_error>
#include <thread>
#include <vector>
#endif

namespace zolcs::detail {
namespace {

/// Keeps the first exception of several threads.
class FirstException {
public:
    template <typename F>
    void guard(F f) {
        try {
            f();
        } catch (...) {
            const std::lock_guard lock(mutex_);
            if (first_ == nullptr) first_ = std::current_exception();
        }
    }
    void rethrow() const {
        if (first_ != nullptr) std::rethrow_exception(first_);
    }

private:
    std::mutex mutex_;
    std::exception_ptr first_;
};

#if defined(ZOL_USE_OPENMP)

int maximumThreads() { return omp_get_max_threads(); }

/// Threads of a team of which `workers` work. Threads that wait for each other keep their processors busy, unless there
/// are more of them than processors: then they sleep at once. Where every processor would wait, one more thread that
/// does nothing is thus worth its start: on a machine that does other things too, a processor that is busy waiting
/// keeps the very thread from running that it waits for, for several milliseconds.
int teamOf(int workers) { return workers < omp_get_num_procs() ? workers : workers + 1; }

/// Calls work() on up to `threads` threads at the same time, at least once.
template <typename Work>
void onThreads(int threads, Work work) {
    const int dynamic = omp_get_dynamic();
    omp_set_dynamic(0);
    std::atomic<int> arrived{0};
#pragma omp parallel num_threads(teamOf(threads))
    if (arrived++ < threads) work();
    omp_set_dynamic(dynamic);
}

#else

int maximumThreads() { return static_cast<int>(std::max(std::thread::hardware_concurrency(), 1U)); }

template <typename Work>
void onThreads(int threads, Work work) {
    std::vector<std::thread> others;
    others.reserve(static_cast<std::size_t>(threads) - 1);
    try {
        while (others.size() + 1 < static_cast<std::size_t>(threads)) others.emplace_back(work);
    } catch (const std::system_error&) {
        // No more threads to be had: those that run do everything.
    }
    work();
    for (std::thread& other : others) other.join();
}

#endif

/// Several bands for each thread, so that one that the system holds up does not hold up all.
constexpr int bandsPerThread = 4;

}  // namespace

void runBands(int first, int last, int rowsPerBand, void (*band)(void* context, int begin, int end), void* context) {
    if (last <= first) return;
    const std::int64_t rows = std::int64_t{last} - first;
    const std::int64_t bands =
        std::min<std::int64_t>(std::int64_t{maximumThreads()} * bandsPerThread, rows / std::max(rowsPerBand, 1));
    const auto threads = static_cast<int>(std::min<std::int64_t>(maximumThreads(), bands));
    if (threads < 2) {
        band(context, first, last);
        return;
    }
    FirstException failure;
    std::atomic<std::int64_t> next{0};
    onThreads(threads, [&] {
        const auto start = [&](std::int64_t n) { return static_cast<int>(first + rows * n / bands); };
        for (std::int64_t n = next++; n < bands; n = next++) {
            failure.guard([&] { band(context, start(n), start(n + 1)); });
        }
    });
    failure.rethrow();
}

}  // namespace zolcs::detail
