#pragma once

#include "zolcs/ccsexport.h"

/// Switches the packed paths of the whole process: the constructor switches them on where the processor has MMX, off
/// where it has not. The object holds nothing and can be destroyed at once. Construct one before rendering starts.
class ZOLWEBCS_API CCsMmx {
public:
    CCsMmx();
};
