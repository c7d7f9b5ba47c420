// The few value classes of MFC and ATL that the library's interface names, with their documented behaviour.
#pragma once

#include "platform/mfc/cgdiobjects.h"
#include "platform/mfc/cgeometry.h"
#include "platform/mfc/cstring.h"
#include "platform/mfc/csync.h"
