#include "export/BottomSheetController.h"

#include "platform/Animations.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QVBoxLayout>
#include <cmath>

namespace {
constexpr double kSnapBackDuration = 0.3;

// Only the top two corners are round; the bottom edge sits on the window's edge.
QPainterPath topRoundedPath(const QRectF& r, double radius) {
    QPainterPath path;
    const double d = std::min(radius, std::min(r.width(), r.height()) / 2) * 2;
    path.moveTo(r.left(), r.bottom());
    path.lineTo(r.left(), r.top() + d / 2);
    path.arcTo(QRectF(r.left(), r.top(), d, d), 180, -90);
    path.lineTo(r.right() - d / 2, r.top());
    path.arcTo(QRectF(r.right() - d, r.top(), d, d), 90, -90);
    path.lineTo(r.right(), r.bottom());
    path.closeSubpath();
    return path;
}

class SheetContainerView : public QWidget {
public:
    SheetContainerView(double* radius, QWidget* parent) : QWidget(parent), radius_(radius) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(topRoundedPath(rect(), *radius_), Qt::white);
    }
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        // Children are clipped to the rounded shape as well.
        setMask(QRegion(topRoundedPath(rect(), *radius_).toFillPolygon().toPolygon()));
    }

private:
    const double* radius_;
};
} // namespace

BottomSheetController::BottomSheetController(QWidget* parent)
    : ViewController(parent), backgroundColor_(dimmingColor()) {
    setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
}

QColor BottomSheetController::dimmingColor() {
    return QColor::fromRgbF(0.01f, 0.01f, 0.01f, 0.6f);
}

void BottomSheetController::setBackgroundColor(const QColor& color) {
    backgroundColor_ = color;
    update();
}

void BottomSheetController::setContainerHeight(double height) {
    containerHeight_ = height;
    layoutSheet();
}

void BottomSheetController::setContainerCornerRadius(double radius) {
    cornerRadius_ = radius;
    if (containerView_) {
        containerView_->setMask(
            QRegion(topRoundedPath(containerView_->rect(), radius).toFillPolygon().toPolygon()));
        containerView_->update();
    }
}

void BottomSheetController::viewDidLoad() {
    topView_ = new QWidget(this);
    topView_->setObjectName(QStringLiteral("topview"));
    topView_->installEventFilter(this);

    containerView_ = new SheetContainerView(&cornerRadius_, this);
    containerView_->setObjectName(QStringLiteral("containerView"));
    containerLayout_ = new QVBoxLayout(containerView_);
    containerLayout_->setContentsMargins(20, 16, 20, 24);
    containerLayout_->setSpacing(12);
    layoutSheet();
}

void BottomSheetController::layoutSheet() {
    if (!containerView_)
        return;
    const int h = static_cast<int>(std::lround(std::min<double>(containerHeight_, height())));
    const int top = height() - h;
    topView_->setGeometry(0, 0, width(), std::max(0, top));
    containerView_->setGeometry(0, top + static_cast<int>(std::lround(translation_)), width(), h);
}

void BottomSheetController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    layoutSheet();
}

void BottomSheetController::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), backgroundColor_);
}

void BottomSheetController::panChanged(double translationY) {
    // An upward drag moves nothing.
    if (translationY <= 0)
        return;
    translation_ = translationY;
    layoutSheet();
}

void BottomSheetController::panEnded(double translationY) {
    if (translationY > dismissThreshold()) {
        dismissSheet();
        return;
    }
    const double from = translation_;
    QPointer<BottomSheetController> self(this);
    Animations::animate(this, kSnapBackDuration, [self, from](double p) {
        if (!self)
            return;
        self->translation_ = Animations::interpolate(from, 0, p);
        self->layoutSheet();
    });
}

void BottomSheetController::dismissSheet(std::function<void()> completion) {
    setBackgroundColor(Qt::transparent);
    dismiss(true, std::move(completion));
}

void BottomSheetController::showEvent(QShowEvent* event) {
    ViewController::showEvent(event);
    // Rows inside the container take their own presses; watching the application lets a drag that
    // starts on a row move the sheet as well.
    qApp->installEventFilter(this);
}

void BottomSheetController::hideEvent(QHideEvent* event) {
    qApp->removeEventFilter(this);
    panning_ = false;
    pressTarget_ = nullptr;
    ViewController::hideEvent(event);
}

bool BottomSheetController::handleContainerMouse(QWidget* target, QEvent* event) {
    // Only mouse events are read as such; other event types are not QMouseEvents.
    const auto mouseY = [event] { return static_cast<QMouseEvent*>(event)->globalPosition().y(); };
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (pressTarget_ || static_cast<QMouseEvent*>(event)->button() != Qt::LeftButton)
            return false;
        pressTarget_ = target;
        pressY_ = mouseY();
        panning_ = false;
        // A press on the bare container is the sheet's own; a row keeps its press until it is dragged.
        return target == containerView_;
    case QEvent::MouseMove: {
        if (target != pressTarget_)
            return false;
        const double dy = mouseY() - pressY_;
        if (!panning_ && std::abs(dy) >= QApplication::startDragDistance()) {
            panning_ = true;
            // The row under the finger no longer counts as pressed: a drag is not a tap.
            if (auto* button = qobject_cast<QAbstractButton*>(target))
                button->setDown(false);
        }
        if (panning_)
            panChanged(dy);
        return panning_ || target == containerView_;
    }
    case QEvent::MouseButtonRelease: {
        if (target != pressTarget_)
            return false;
        pressTarget_ = nullptr;
        if (!panning_)
            return target == containerView_;
        panning_ = false;
        panEnded(mouseY() - pressY_);
        // Swallowed, so the row the drag began on is not picked.
        return true;
    }
    default:
        return false;
    }
}

bool BottomSheetController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == topView_ && event->type() == QEvent::MouseButtonRelease) {
        dismissSheet();
        return true;
    }
    if (draggable_ && containerView_ && watched->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(watched);
        if ((widget == containerView_ || containerView_->isAncestorOf(widget)) &&
            handleContainerMouse(widget, event))
            return true;
    }
    return ViewController::eventFilter(watched, event);
}
