#pragma once

#include "export/SavingtypeMethod.h"
#include "platform/WeakDelegate.h"

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
