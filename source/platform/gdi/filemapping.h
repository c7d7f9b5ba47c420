// File mappings: shared memory that can be seen through several views.
#pragma once

#include "platform/gdi/handles.h"

namespace zolgdi {

/// Bytes of the mapping seen at an address of its own; the view ends with the object.
class View {
public:
    /// Takes over `byteCount` mapped bytes at a page's start, of which the caller sees those from `shift` on.
    View(void* address, std::size_t byteCount, std::size_t shift)
        : address_(address), byteCount_(byteCount), shift_(shift) {}
    ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    [[nodiscard]] BYTE* data() const { return static_cast<BYTE*>(address_) + shift_; }

private:
    void* address_;
    std::size_t byteCount_;
    std::size_t shift_;
};

class Mapping : public Object {
public:
    /// Null when memory is exhausted.
    static std::shared_ptr<Mapping> create(std::uint64_t byteCount);

    Mapping(std::unique_ptr<View> whole, std::uint64_t byteCount) : whole_(std::move(whole)), byteCount_(byteCount) {}

    /// A new view of `byteCount` bytes from `offset` on; null when they do not lie inside or memory is exhausted.
    [[nodiscard]] std::unique_ptr<View> view(std::uint64_t offset, std::uint64_t byteCount) const;
    [[nodiscard]] std::uint64_t byteCount() const { return byteCount_; }

private:
    std::unique_ptr<View> whole_;
    std::uint64_t byteCount_;
};

}  // namespace zolgdi
