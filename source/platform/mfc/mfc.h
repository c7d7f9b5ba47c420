// The few value classes of MFC and ATL that the library's interface names, with their documented behaviour.
//
// Hosts get these values from the library and hand them back, so the classes have more members than the library calls:
// the usual way to make a value, to read it, to compare it and to compute with it, under MFC's names, so that a host's
// source is the same with MFC itself. Members that say the same in another form are left out.
#pragma once

#include "platform/mfc/cgdiobjects.h"
#include "platform/mfc/cgeometry.h"
#include "platform/mfc/cstring.h"
#include "platform/mfc/csync.h"
