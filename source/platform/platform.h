// The Win32 and MFC names that the library's interface consists of.
//
// On Windows they come from the system (and from MFC itself when its headers are installed);
// elsewhere from the subset in gdi/ and mfc/, which keeps Win32's names, widths and documented meaning.
#pragma once

#include "platform/compiler.h"

#if defined(_WIN32)
#if defined(_MSC_VER) && __has_include(<afxwin.h>)
// MFC wants this one before its others.
#include <afxwin.h>

#include <afxmt.h>
#include <atlstr.h>
#define ZOL_HAVE_REAL_MFC 1
#else
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif
#else
#include "platform/gdi/gdi.h"
#endif

#if !defined(ZOL_HAVE_REAL_MFC)
#include "platform/mfc/mfc.h"
#endif
