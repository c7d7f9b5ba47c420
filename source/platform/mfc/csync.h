// CCriticalSection and CSingleLock.
#pragma once

#include "platform/mfc/win32.h"

#include <mutex>

/// A lock that its holder may take again.
class CCriticalSection {
public:
    BOOL Lock() {
        mutex_.lock();
        return TRUE;
    }
    /// Only the holder may call this, once per Lock.
    BOOL Unlock() {
        mutex_.unlock();
        return TRUE;
    }

private:
    std::recursive_mutex mutex_;
};

/// Holds a critical section until Unlock or its own end.
class CSingleLock {
public:
    explicit CSingleLock(CCriticalSection* object, BOOL initialLock = FALSE) : object_(object) {
        if (initialLock != FALSE) Lock();
    }
    ~CSingleLock() { Unlock(); }
    CSingleLock(const CSingleLock&) = delete;
    CSingleLock& operator=(const CSingleLock&) = delete;

    /// TRUE when this object now holds the lock; asking again changes nothing. FALSE without an object.
    BOOL Lock() {
        if (!locked_ && object_ != nullptr) locked_ = object_->Lock() != FALSE;
        return IsLocked();
    }
    /// FALSE when the lock was not held.
    BOOL Unlock() {
        if (!locked_) return FALSE;
        locked_ = false;
        return object_->Unlock();
    }
    [[nodiscard]] BOOL IsLocked() const { return locked_ ? TRUE : FALSE; }

private:
    CCriticalSection* object_;
    bool locked_ = false;
};
