#include "export/SavingTypeController.h"

#include "export/SavingTypeCell.h"

#include <QPointer>
#include <QVBoxLayout>

namespace {
constexpr double kChooserCornerRadius = 40;
constexpr int kGrabBarWidth = 40;
constexpr int kGrabBarHeight = 6;
} // namespace

SavingTypeController::SavingTypeController(QWidget* parent) : BottomSheetController(parent) {
    setObjectName(QStringLiteral("SavingTypeController"));
    setContainerCornerRadius(kChooserCornerRadius);
}

bool SavingTypeController::isSuggested(int row, bool isimage) {
    return isimage ? row == static_cast<int>(SavingtypeMethod::PNG)
                   : row == static_cast<int>(SavingtypeMethod::MP4Video);
}

int SavingTypeController::numberOfItems() const {
    return static_cast<int>(savingTypeTitles().size());
}

SavingTypeCell* SavingTypeController::cellForRow(int row) const {
    return row >= 0 && row < cells_.size() ? cells_[row] : nullptr;
}

void SavingTypeController::viewDidLoad() {
    BottomSheetController::viewDidLoad();
    QVBoxLayout* layout = containerLayout();
    layout->setContentsMargins(0, 10, 0, 20);
    layout->setSpacing(0);

    bottomDownView_ = new QWidget(containerView());
    bottomDownView_->setObjectName(QStringLiteral("bottomDownView"));
    bottomDownView_->setFixedSize(kGrabBarWidth, kGrabBarHeight);
    bottomDownView_->setAttribute(Qt::WA_StyledBackground, true);
    bottomDownView_->setStyleSheet(QStringLiteral("background: #d1d1d6; border-radius: 3px;"));
    layout->addWidget(bottomDownView_, 0, Qt::AlignHCenter);
    layout->addSpacing(10);

    for (int row = 0; row < numberOfItems(); ++row) {
        auto* cell = new SavingTypeCell(containerView());
        QPointer<SavingTypeController> self(this);
        cell->onTap = [self, row] {
            if (self)
                self->didSelectRow(row);
        };
        cells_ << cell;
        layout->addWidget(cell);
    }
    setContainerHeight(10 + kGrabBarHeight + 10 + numberOfItems() * SavingTypeCell::kHeight + 20);
    reloadData();
}

void SavingTypeController::reloadData() {
    for (int row = 0; row < cells_.size(); ++row) {
        cells_[row]->configure(savingTypeIconNames().value(row), savingTypeTitles().value(row),
                               savingTypeDescriptions().value(row), isSuggested(row, isimage),
                               row == selectedIndex);
    }
}

void SavingTypeController::didSelectRow(int row) {
    if (row < 0)
        return;
    selectedIndex = row;
    reloadData();
    const SavingtypeMethod type = savingTypeForRow(row);
    auto chosen = delegate;
    dismissSheet([chosen, type] {
        if (chosen)
            chosen->savingMethodChosen(type);
    });
}
