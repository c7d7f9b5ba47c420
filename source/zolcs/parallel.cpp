#include "zolcs/parallel.h"

#include <algorithm>
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

/// Calls share(n, count) for n in [0, count), where count is at most `threads`, each on its own thread.
template <typename Share>
void runShares(int threads, Share share) {
    const int dynamic = omp_get_dynamic();
    omp_set_dynamic(0);
#pragma omp parallel num_threads(threads)
    share(omp_get_thread_num(), omp_get_num_threads());
    omp_set_dynamic(dynamic);
}

#else

int maximumThreads() { return static_cast<int>(std::max(std::thread::hardware_concurrency(), 1U)); }

template <typename Share>
void runShares(int threads, Share share) {
    std::vector<std::thread> others;
    others.reserve(static_cast<std::size_t>(threads) - 1);
    int started = 1;
    try {
        for (; started < threads; ++started) others.emplace_back(share, started, threads);
    } catch (const std::system_error&) {
        // No more threads to be had: the caller does the shares that are left.
    }
    share(0, threads);
    for (; started < threads; ++started) share(started, threads);
    for (std::thread& other : others) other.join();
}

#endif

}  // namespace

void runBands(int first, int last, int rowsPerBand, void (*band)(void* context, int begin, int end), void* context) {
    if (last <= first) return;
    const std::int64_t rows = std::int64_t{last} - first;
    const auto threads = static_cast<int>(std::min<std::int64_t>(maximumThreads(), rows / std::max(rowsPerBand, 1)));
    if (threads < 2) {
        band(context, first, last);
        return;
    }
    FirstException failure;
    runShares(threads, [&](int n, int count) {
        const auto start = [&](int share) { return static_cast<int>(first + rows * share / count); };
        failure.guard([&] { band(context, start(n), start(n + 1)); });
    });
    failure.rethrow();
}

}  // namespace zolcs::detail
