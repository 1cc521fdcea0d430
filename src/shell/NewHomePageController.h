#pragma once

#include "platform/ViewController.h"

class QLabel;

// The home screen: the root of the program once the tutorial has been seen.
class NewHomePageController : public ViewController {
    Q_OBJECT
public:
    explicit NewHomePageController(QWidget* parent = nullptr);

    QLabel* headerLabel() const { return headerLabel_; }

protected:
    void viewDidLoad() override;

private:
    QLabel* headerLabel_ = nullptr;
};
