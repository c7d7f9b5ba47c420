#pragma once

#include "zolcs/ccsexport.h"

/// Constructing one asks the processor once and switches the packed paths of the whole process on where it has MMX, off
/// where it does not. It carries nothing itself and may be destroyed at once. Construct it before rendering starts.
class ZOLWEBCS_API CCsMmx {
public:
    CCsMmx();
};
