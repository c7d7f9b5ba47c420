// Centre resize for every pixel format. Private to the library.
#pragma once

#include "zolipp/sample.h"

namespace zolipp {

/// One axis of a centre resize.
struct ResizeAxis {
    double factor;
    double center;
    int targetLength;
    int regionStart;  ///< of the source's region, which lies within the source
    int regionLength;
};

struct ResizeJob {
    SourceImage source;
    TargetRows target;
    ResizeAxis x;
    ResizeAxis y;
    int interpolation;
};

/// Runs a checked job. Throws std::bad_alloc with nothing written.
template <typename Format>
void resize(const ResizeJob& job);

}  // namespace zolipp
