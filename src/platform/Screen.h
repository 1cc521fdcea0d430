#pragma once

#include <QObject>
#include <QRectF>
#include <QSizeF>

#include <mutex>

// The phone-shaped screen the program lays itself out on. Geometry is in points; bitmaps are made at
// points × scale. Readable from any thread; set from the main thread.
class Screen : public QObject {
    Q_OBJECT
public:
    static constexpr double kDefaultWidth = 390;
    static constexpr double kDefaultHeight = 844;
    static constexpr double kDefaultScale = 3.0;

    // Starts at the default size, with the scale from $LUMIVEX_SCREEN_SCALE when it holds a positive
    // number, else the default scale.
    Screen();

    static Screen& main();

    QSizeF size() const;
    QRectF bounds() const { return QRectF(QPointF(0, 0), size()); }
    double scale() const;

    // Sizes and scales that are not positive are ignored.
    void setSize(const QSizeF& size);
    void setScale(double scale);

signals:
    void changed();

private:
    mutable std::mutex mutex_;
    QSizeF size_;
    double scale_;
};
