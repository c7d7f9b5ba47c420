#pragma once

#include "zolcs/ccsexport.h"

/// Constructing one switches the packed processor paths on where the processor offers them (see resample/capability.h).
class ZOLWEBCS_API CCsMmx {
public:
    CCsMmx();
};
