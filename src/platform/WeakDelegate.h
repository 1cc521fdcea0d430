#pragma once

#include <QObject>
#include <QPointer>

// A delegate held weakly: when the listener is a QObject, the holder sees null once it is gone, as a
// weak reference on the phone would. A listener that is not a QObject is held as a plain pointer, which
// its owner keeps valid.
template <typename T> class WeakDelegate {
public:
    WeakDelegate() = default;
    WeakDelegate(T* delegate) { *this = delegate; } // NOLINT: assignable from a plain pointer

    WeakDelegate& operator=(T* delegate) {
        pointer_ = delegate;
        guard_ = dynamic_cast<QObject*>(delegate);
        tracked_ = guard_ != nullptr;
        return *this;
    }

    T* get() const { return tracked_ && !guard_ ? nullptr : pointer_; }
    T* operator->() const { return get(); }
    explicit operator bool() const { return get() != nullptr; }

private:
    T* pointer_ = nullptr;
    QPointer<QObject> guard_;
    bool tracked_ = false;
};
