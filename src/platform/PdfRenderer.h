#pragma once

#include <QByteArray>
#include <QColor>
#include <QRectF>
#include <QSize>
#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>

// Pixels as they go into a PDF image: packed rows, 8 bits a sample, no alpha.
struct PdfRaster {
    enum class Space { deviceRGB, deviceCMYK };
    QSize size;
    Space space = Space::deviceRGB;
    QByteArray samples; // width × height × (3 for RGB, 4 for CMYK)

    bool isValid() const;
};

// One-page-at-a-time PDF writing, in the page's own coordinates: the origin at the top left, y down,
// in points. Backed by libharu; images are Flate-compressed and keep their colour space (DeviceRGB or
// DeviceCMYK), so a CMYK picture stays CMYK in the file.
class PdfRenderer {
public:
    class Context;
    struct Result {
        bool ok = false;
        QString error; // why the file was not written
    };

    // Pages of `bounds` size; an empty or non-finite size fails at write.
    explicit PdfRenderer(QSizeF bounds);

    // Names the printing condition the file is made for: the ICC profile's bytes, its number of colour
    // components (3 or 4) and the condition's name. Print files carry it as their output intent.
    void setOutputIntent(QByteArray iccProfile, int components, QString identifier);

    // Calls `actions` once with a drawing context, then writes the document to `path`: beside it first,
    // then renamed over it, so a failure leaves an older file whole and never a half-written one.
    Result writePDF(const QString& path, const std::function<void(Context&)>& actions);

    // The largest page side a PDF viewer must accept.
    static constexpr double kMaxPageSide = 14400;

private:
    QSizeF bounds_;
    QByteArray intentProfile_;
    int intentComponents_ = 0;
    QString intentIdentifier_;
};

class PdfRenderer::Context {
public:
    void beginPage();
    // The picture stretched over `rect`.
    void drawImage(const PdfRaster& raster, const QRectF& rect);
    void setStrokeColor(const QColor& color);
    // The outline of `rect`, centred on its edges.
    void strokeRect(const QRectF& rect, double lineWidth = 1.0);
    // One line of bold sans-serif text whose top is at the rect's top, starting at its left.
    void drawText(const QString& text, const QRectF& rect, double fontSize, const QColor& color);

    struct State; // the document being written; the renderer's own

private:
    friend class PdfRenderer;
    explicit Context(State* state) : state_(state) {}
    State* state_;
};
