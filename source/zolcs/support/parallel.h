// Rows of an image on all processors.
#pragma once

#include <type_traits>

namespace zolcs {

namespace detail {

/// Calls band(context, begin, end) for bands that together are the rows [first, last), on several threads when there
/// are at least two bands of `rowsPerBand` rows.
void runBands(int first, int last, int rowsPerBand, void (*band)(void* context, int begin, int end), void* context);

}  // namespace detail

/// Calls f(begin, end) for bands of neighbouring rows that together are [first, last), each row in exactly one band,
/// and returns when all are done. Bands run at the same time, on as many threads as the host allows (OpenMP's setting),
/// but none is shorter than `rowsPerBand` rows unless all rows are fewer; without rows f is not called. An exception
/// that f throws reaches the caller after every band has ended; of several, one does.
template <typename F>
void parallelRows(int first, int last, F&& f, int rowsPerBand = 1) {
    using Function = std::remove_reference_t<F>;
    detail::runBands(
        first, last, rowsPerBand,
        [](void* context, int begin, int end) { (*static_cast<Function*>(context))(begin, end); },
        const_cast<void*>(static_cast<const void*>(&f)));
}

}  // namespace zolcs
