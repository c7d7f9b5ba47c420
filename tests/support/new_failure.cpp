// Stands in every program that makes allocations of the library fail; the library's calls go to this operator.
#include "support/new_failure.h"

#if defined(__MINGW32__)
#include "support/import_table.h"
#endif

#include <atomic>
#include <limits>
#include <new>

namespace {

std::atomic<std::size_t> nothrowLimit{std::numeric_limits<std::size_t>::max()};
std::atomic<int> nothrowRefusals{0};

}  // namespace

/// The standard behaviour (by way of the throwing form), except that large requests can be made to fail.
void* operator new[](std::size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
    if (bytes >= nothrowLimit) {
        ++nothrowRefusals;
        return nullptr;
    }
    try {
        return ::operator new[](bytes);
    } catch (...) {
        return nullptr;
    }
}

namespace zoltest {

bool canFailNothrowNew() {
#if defined(__MINGW32__) && !defined(ZOLWEBCS_STATIC)
    // The library takes it from the C++ run-time's DLL, not from this program.
    static const bool redirected = [] {
        HMODULE const runtime = GetModuleHandleW(L"libstdc++-6.dll");
        const char* const name = sizeof(void*) == 8 ? "_ZnayRKSt9nothrow_t" : "_ZnajRKSt9nothrow_t";
        void* (*const own)(std::size_t, const std::nothrow_t&) = &::operator new[];
        return runtime != nullptr && redirectLibraryImport(addressOf(GetProcAddress(runtime, name)), addressOf(own));
    }();
    return redirected;
#else
    return true;
#endif
}

NothrowNewLimit::NothrowNewLimit(std::size_t bytes) {
    nothrowRefusals = 0;
    nothrowLimit = bytes;
}
NothrowNewLimit::~NothrowNewLimit() { nothrowLimit = std::numeric_limits<std::size_t>::max(); }
int NothrowNewLimit::refusals() { return nothrowRefusals; }

}  // namespace zoltest
