// Visibility of the library's public classes.
#pragma once

#include "platform/platform.h"

#if defined(ZOLWEBCS_BUILDING)
#define ZOLWEBCS_API ZOL_EXPORT
#elif defined(ZOLWEBCS_STATIC)
#define ZOLWEBCS_API
#else
#define ZOLWEBCS_API ZOL_IMPORT
#endif
