#include "platform/gdi/filemapping.h"

#include <sys/mman.h>
#include <unistd.h>

#include <limits>
#include <map>

namespace zolgdi {

namespace {

std::size_t pageSize() {
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

/// Views that MapViewOfFile handed out, by the address that was handed out.
struct ViewList {
    static ViewList& instance() {
        static ViewList& list = *new ViewList;
        return list;
    }
    std::mutex mutex;
    std::map<const void*, std::unique_ptr<View>> views;
};

}  // namespace

View::~View() { munmap(address_, byteCount_); }

std::shared_ptr<Mapping> Mapping::create(std::uint64_t byteCount) {
    if (byteCount > std::numeric_limits<std::size_t>::max() / 2) return nullptr;
    const int file = memfd_create("zolgdi", MFD_CLOEXEC);
    if (file < 0) return nullptr;
    void* address = MAP_FAILED;
    if (ftruncate(file, static_cast<off_t>(byteCount)) == 0) {
        address = mmap(nullptr, static_cast<std::size_t>(byteCount), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    }
    // The memory lives on in its mappings: a descriptor for each of thousands of images would exhaust them.
    close(file);
    if (address == MAP_FAILED) return nullptr;
    auto whole = std::make_unique<View>(address, static_cast<std::size_t>(byteCount), 0);
    return std::make_shared<Mapping>(std::move(whole), byteCount);
}

std::unique_ptr<View> Mapping::view(std::uint64_t offset, std::uint64_t byteCount) const {
    if (byteCount == 0 || offset > byteCount_ || byteCount > byteCount_ - offset) return nullptr;
    const auto shift = static_cast<std::size_t>(offset % pageSize());
    const auto size = static_cast<std::size_t>(byteCount) + shift;
    // Moving "nothing" of a shared mapping leaves it where it is and makes a second one of the same memory.
    void* address = mremap(whole_->data() + offset - shift, 0, size, MREMAP_MAYMOVE);
    return address != MAP_FAILED ? std::make_unique<View>(address, size, shift) : nullptr;
}

}  // namespace zolgdi

using zolgdi::guarded;

HANDLE CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protect, DWORD maximumSizeHigh,
                          DWORD maximumSizeLow, LPCWSTR name) {
    return guarded(nullptr, [&]() -> HANDLE {
        const std::uint64_t size = (std::uint64_t{maximumSizeHigh} << 32U) | maximumSizeLow;
        if (file != INVALID_HANDLE_VALUE || security != nullptr || name != nullptr || size == 0) return nullptr;
        if ((protect & ~SEC_COMMIT) != PAGE_READWRITE) return nullptr;
        auto mapping = zolgdi::Mapping::create(size);
        return mapping ? zolgdi::publish<HANDLE>(std::move(mapping)) : nullptr;
    });
}

LPVOID MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow, SIZE_T byteCount) {
    return guarded(nullptr, [&]() -> LPVOID {
        constexpr std::uint64_t granularity = 65536;
        const auto object = zolgdi::find<zolgdi::Mapping>(mapping);
        const std::uint64_t offset = (std::uint64_t{offsetHigh} << 32U) | offsetLow;
        if (!object || (access & (FILE_MAP_READ | FILE_MAP_WRITE)) == 0) return nullptr;
        if (offset % granularity != 0 || offset >= object->byteCount()) return nullptr;
        auto view = object->view(offset, byteCount != 0 ? byteCount : object->byteCount() - offset);
        if (!view) return nullptr;
        auto& list = zolgdi::ViewList::instance();
        const std::lock_guard lock(list.mutex);
        BYTE* data = view->data();
        list.views.emplace(data, std::move(view));
        return data;
    });
}

BOOL UnmapViewOfFile(LPCVOID address) {
    auto& list = zolgdi::ViewList::instance();
    const std::lock_guard lock(list.mutex);
    return list.views.erase(address) != 0 ? TRUE : FALSE;
}

BOOL CloseHandle(HANDLE handle) {
    if (!zolgdi::find<zolgdi::Mapping>(handle)) return FALSE;
    return zolgdi::HandleTable::instance().remove(handle) ? TRUE : FALSE;
}
