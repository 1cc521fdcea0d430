#pragma once

#include "export/SavingtypeMethod.h"

#include <QObject>
#include <QPointer>

// Told by the format chooser which format the user picked.
class SavingMethodPass {
public:
    virtual ~SavingMethodPass() = default;
    virtual void savingMethodChosen(SavingtypeMethod type) = 0;
};

// Told by a format sheet that the user switched to another format from inside it.
class NewSavingMethod {
public:
    virtual ~NewSavingMethod() = default;
    virtual void newSavingMethodChosen(SavingtypeMethod type) = 0;
};

// Receives the finished save from a format sheet. May be called from any thread.
class DataPassingToShareController {
public:
    virtual ~DataPassingToShareController() = default;
    virtual void saveDetailsPassed(const SaveModelDetails& details) = 0;
};

// A delegate held weakly: when the delegate is a QObject (every screen is) and has been deleted, the
// holder sees nothing instead of a dangling pointer.
template <typename Protocol> class WeakDelegate {
public:
    WeakDelegate() = default;
    WeakDelegate(Protocol* delegate) { *this = delegate; }
    WeakDelegate& operator=(Protocol* delegate) {
        delegate_ = delegate;
        guard_ = dynamic_cast<QObject*>(delegate);
        tracked_ = guard_ != nullptr;
        return *this;
    }
    Protocol* get() const { return tracked_ && !guard_ ? nullptr : delegate_; }
    Protocol* operator->() const { return get(); }
    explicit operator bool() const { return get() != nullptr; }

private:
    Protocol* delegate_ = nullptr;
    QPointer<QObject> guard_;
    bool tracked_ = false;
};
