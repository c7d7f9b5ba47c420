// The table behind every handle: a handle names a slot and the slot's generation, so that a stale one finds nothing.
#pragma once

#include "platform/gdi/gdi.h"

#include <memory>
#include <mutex>
#include <new>
#include <type_traits>

namespace zolgdi {

/// Base of the objects that handles name.
class Object {
public:
    Object() = default;
    virtual ~Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

private:
    friend class HandleTable;
    bool stock_ = false;
    bool deletePending_ = false;
    int selections_ = 0;
};

/// What DeleteObject deletes.
class DrawingObject : public Object {};

/// Objects are shared: a call that found one keeps it alive although another thread deletes it meanwhile.
class HandleTable {
public:
    /// The process's table. It is never destroyed, so that static objects of the host may still release handles.
    static HandleTable& instance();

    /// Null when memory or slots are exhausted.
    HANDLE add(std::shared_ptr<Object> object, bool stock = false);

    /// Null when the handle is null, stale or names another kind of object.
    template <typename T, typename Handle>
    std::shared_ptr<T> find(Handle handle) {
        return std::dynamic_pointer_cast<T>(findAny(static_cast<HANDLE>(handle)));
    }

    /// Takes the object out of the table; false for a stale handle or a stock object.
    bool remove(HANDLE handle);

    /// A device context begins to use the object. False for a stale handle.
    bool select(HANDLE handle);
    /// It stops; an object whose deletion waited for this goes.
    void deselect(HANDLE handle);

    enum class Deletion { invalid, ignored, deferred, done };
    /// What DeleteObject does with pens, brushes, fonts and regions.
    Deletion removeUnlessSelected(HANDLE handle);

    [[nodiscard]] bool isSelected(HANDLE handle);
    /// Living objects, stock objects not counted.
    [[nodiscard]] unsigned int count();

    HandleTable(const HandleTable&) = delete;
    HandleTable& operator=(const HandleTable&) = delete;

private:
    HandleTable();
    ~HandleTable();
    struct Slot;
    struct Slots;

    std::shared_ptr<Object> findAny(HANDLE handle);
    Slot* slotOf(HANDLE handle);
    std::shared_ptr<Object> release(Slot& slot);

    std::mutex mutex_;
    std::unique_ptr<Slots> slots_;
};

template <typename T, typename Handle>
std::shared_ptr<T> find(Handle handle) {
    return HandleTable::instance().find<T>(handle);
}

/// A new object's handle; null when memory is exhausted.
template <typename Handle, typename T>
Handle publish(std::shared_ptr<T> object) {
    return static_cast<Handle>(HandleTable::instance().add(std::move(object)));
}

/// Runs a call's body; exhausted memory becomes the call's failure value.
template <typename Body, typename Result = std::invoke_result_t<Body>>
Result guarded(std::type_identity_t<Result> failure, const Body& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return failure;
    }
}

}  // namespace zolgdi
