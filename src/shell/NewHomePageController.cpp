#include "shell/NewHomePageController.h"

#include <QLabel>
#include <QVBoxLayout>

NewHomePageController::NewHomePageController(QWidget* parent) : ViewController(parent) {
    setObjectName(QStringLiteral("newHomePage"));
}

void NewHomePageController::viewDidLoad() {
    setAttribute(Qt::WA_StyledBackground, true);
    setStyleSheet(QStringLiteral("background: #0b0b10;"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 16, 20, 16);
    headerLabel_ = new QLabel(QStringLiteral("Lumivex"), this);
    headerLabel_->setObjectName(QStringLiteral("headerLabel"));
    headerLabel_->setStyleSheet(QStringLiteral("color: white; font-size: 28px; font-weight: 700;"));
    layout->addWidget(headerLabel_);
    layout->addStretch(1);
}
