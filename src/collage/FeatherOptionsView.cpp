#include "collage/FeatherOptionsView.h"

#include "collage/FeatherSliderRow.h"

#include <QLabel>
#include <QPointer>
#include <QVBoxLayout>

FeatherOptionsView::FeatherOptionsView(QWidget* parent) : QWidget(parent) {
    titleLabel_ = new QLabel(tr("Feather Intensity"), this);
    QFont titleFont = font();
    titleFont.setPixelSize(15);
    titleLabel_->setFont(titleFont);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; background: transparent;"));

    horizontalRow_ = new FeatherSliderRow(QStringLiteral("arrow.left.and.right"), tr("Horizontal"), this);
    verticalRow_ = new FeatherSliderRow(QStringLiteral("arrow.up.and.down"), tr("Vertical"), this);

    // The rows outlive no view, but a closure copied elsewhere might: hold the view weakly.
    QPointer<FeatherOptionsView> weak(this);
    horizontalRow_->onValueChanged = [weak](double value) {
        if (weak && weak->onHorizontalFeatherChanged)
            weak->onHorizontalFeatherChanged(value);
    };
    verticalRow_->onValueChanged = [weak](double value) {
        if (weak && weak->onVerticalFeatherChanged)
            weak->onVerticalFeatherChanged(value);
    };

    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(16, 10, 16, 0);
    stack->setSpacing(0);
    stack->addWidget(titleLabel_);
    stack->addSpacing(8);
    stack->addWidget(horizontalRow_);
    stack->addSpacing(6);
    stack->addWidget(verticalRow_);
    stack->addStretch(1);
}
