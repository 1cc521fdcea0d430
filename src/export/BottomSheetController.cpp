#include "export/BottomSheetController.h"

#include "platform/Animations.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QVBoxLayout>

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
    containerView_->installEventFilter(this);
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

bool BottomSheetController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == topView_ && event->type() == QEvent::MouseButtonRelease) {
        dismissSheet();
        return true;
    }
    if (watched == containerView_) {
        // Only mouse events are read as such; other event types are not QMouseEvents.
        const auto mouseY = [event] { return static_cast<QMouseEvent*>(event)->globalPosition().y(); };
        switch (event->type()) {
        case QEvent::MouseButtonPress:
            panning_ = true;
            pressY_ = mouseY();
            return true;
        case QEvent::MouseMove:
            if (panning_)
                panChanged(mouseY() - pressY_);
            return panning_;
        case QEvent::MouseButtonRelease:
            if (!panning_)
                break;
            panning_ = false;
            panEnded(mouseY() - pressY_);
            return true;
        default:
            break;
        }
    }
    return ViewController::eventFilter(watched, event);
}
