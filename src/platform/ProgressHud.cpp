#include "platform/ProgressHud.h"

#include "platform/AppWindow.h"
#include "platform/Dispatch.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// Covers the whole host, swallows input and draws a turning arc with the status under it.
class HudView : public QWidget {
public:
    explicit HudView(QWidget* host) : QWidget(host) {
        setObjectName(QStringLiteral("progressHud"));
        setAttribute(Qt::WA_NoMousePropagation);
        setFocusPolicy(Qt::StrongFocus);
        label_ = new QLabel(this);
        label_->setObjectName(QStringLiteral("progressHudStatus"));
        label_->setAlignment(Qt::AlignCenter);
        label_->setWordWrap(true);
        label_->setStyleSheet(QStringLiteral("color: white; font-size: 14px;"));
        timer_.setInterval(16);
        QObject::connect(&timer_, &QTimer::timeout, this, [this]() {
            angle_ = (angle_ + 8) % 360;
            update();
        });
        host->installEventFilter(this);
        fit();
    }

    void setStatus(const QString& status) {
        label_->setText(status);
        label_->setVisible(!status.isEmpty());
        fit();
    }

    void start() {
        fit();
        show();
        raise();
        setFocus();
        timer_.start();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == parentWidget() && event->type() == QEvent::Resize)
            fit();
        return QWidget::eventFilter(watched, event);
    }

    void mousePressEvent(QMouseEvent*) override {}
    void mouseReleaseEvent(QMouseEvent*) override {}
    void wheelEvent(QWheelEvent*) override {}
    void keyPressEvent(QKeyEvent*) override {}

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), QColor(0, 0, 0, 60));
        const QRect box = boxRect();
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(30, 30, 30, 230));
        painter.drawRoundedRect(box, 14, 14);
        QPen pen(Qt::white, 3.0);
        pen.setCapStyle(Qt::RoundCap);
        painter.setPen(pen);
        const QRect arc(box.center().x() - 18, box.top() + 22, 36, 36);
        painter.drawArc(arc, -angle_ * 16, 270 * 16);
    }

private:
    QRect boxRect() const {
        const int w = label_->isVisible() ? 160 : 100;
        const int h = label_->isVisible() ? 130 : 100;
        return QRect((width() - w) / 2, (height() - h) / 2, w, h);
    }

    void fit() {
        if (parentWidget())
            setGeometry(parentWidget()->rect());
        const QRect box = boxRect();
        label_->setGeometry(box.left() + 8, box.top() + 68, box.width() - 16, box.height() - 76);
    }

    QLabel* label_ = nullptr;
    QTimer timer_;
    int angle_ = 0;
};

QPointer<QWidget> explicitHost;
QPointer<HudView> hud;
QString currentStatus;

QWidget* resolveHost() {
    if (explicitHost)
        return explicitHost;
    if (AppWindow* key = AppWindow::keyWindow())
        return key;
    return QApplication::activeWindow();
}

} // namespace

void ProgressHud::show(const QString& status) {
    // Callers may come from worker threads; the indicator is a view and lives on the main thread.
    if (!Dispatch::isMainThread()) {
        Dispatch::main().async([status]() { ProgressHud::show(status); });
        return;
    }
    currentStatus = status;
    QWidget* host = resolveHost();
    if (!host)
        return;
    if (hud && hud->parentWidget() != host) {
        hud->deleteLater();
        hud = nullptr;
    }
    if (!hud)
        hud = new HudView(host);
    hud->setStatus(status);
    hud->start();
}

void ProgressHud::dismiss() {
    if (!Dispatch::isMainThread()) {
        Dispatch::main().async([]() { ProgressHud::dismiss(); });
        return;
    }
    currentStatus.clear();
    if (hud) {
        hud->hide();
        hud->deleteLater();
        hud = nullptr;
    }
}

bool ProgressHud::isVisible() {
    return hud && hud->isVisible();
}

QString ProgressHud::status() {
    return currentStatus;
}

void ProgressHud::setHost(QWidget* host) {
    explicitHost = host;
}
