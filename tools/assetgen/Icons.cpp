// Icons: symbol names, tool strips (plain and selected), format chooser, check boxes, sticker handles.
#include "Common.h"

#include "resources/AssetNames.h"
#include "resources/IconTable.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

namespace assetgen {

namespace {

// Icons carry three pixels a point (name@3x), so they stay sharp on dense screens at their natural size.
constexpr int symbolSide = 72;  // 24 points
constexpr int toolSide = 90;    // 30 points
constexpr int formatSide = 120; // 40 points
constexpr int handleSide = 90;  // 30 points

const QColor toolGrey(140, 140, 140);
const QColor toolSelected(250, 202, 22); // the strips' selection colour "faca16"

QFont iconFont(int pixelSize) {
    QFont font(QStringLiteral("Material Icons"));
    font.setPixelSize(pixelSize);
    font.setStyleStrategy(QFont::NoFontMerging);
    return font;
}

QFont labelFont(int pixelSize, int weight = 700) {
    QFont font(QStringLiteral("Manrope"));
    font.setPixelSize(pixelSize);
    font.setWeight(QFont::Weight(weight));
    return font;
}

QImage blank(int side) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

void drawIcon(QPainter& p, const IconTable::Icon& icon, const QRectF& box, const QColor& colour) {
    p.save();
    p.translate(box.center());
    p.rotate(90.0 * icon.quarterTurns);
    const QRectF local(-box.width() / 2, -box.height() / 2, box.width(), box.height());
    if (icon.glyph) {
        const QFont font = iconFont(int(box.height()));
        const QChar glyph(icon.glyph);
        if (QFontMetrics(font).inFont(glyph)) {
            p.setFont(font);
            p.setPen(colour);
            p.drawText(local, Qt::AlignCenter, QString(glyph));
        } else { // no icon font: an outlined circle with the name's initial keeps the button readable
            p.setPen(QPen(colour, box.width() / 14));
            p.setBrush(Qt::NoBrush);
            p.drawEllipse(local.adjusted(box.width() * 0.12, box.width() * 0.12, -box.width() * 0.12,
                                         -box.width() * 0.12));
            p.setFont(labelFont(int(box.height() * 0.4)));
            p.drawText(local, Qt::AlignCenter, icon.name.left(1).toUpper());
        }
    } else {
        // Letter badge: a filled rounded square with the letter cut out, like the filled symbol style.
        QPainterPath square;
        const QRectF r =
            local.adjusted(box.width() * 0.1, box.width() * 0.1, -box.width() * 0.1, -box.width() * 0.1);
        square.addRoundedRect(r, r.width() * 0.22, r.width() * 0.22);
        p.fillPath(square, colour);
        p.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        p.setFont(labelFont(int(r.height() * 0.78), 800));
        p.setPen(Qt::black);
        p.drawText(r, Qt::AlignCenter, QString(icon.badge));
    }
    p.restore();
}

QImage symbolIcon(const IconTable::Icon& icon) {
    QImage image = blank(symbolSide);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::TextAntialiasing);
    // A small margin keeps square glyphs (crop, photos) from touching the edge when tinted and fitted.
    drawIcon(p, icon, QRectF(4, 4, symbolSide - 8, symbolSide - 8), Qt::white);
    return image;
}

QImage toolIcon(const IconTable::Icon& icon, bool selected) {
    QImage image = blank(toolSide);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    if (selected) { // a soft halo behind the selected tool
        QColor halo = toolSelected;
        halo.setAlpha(40);
        p.setPen(Qt::NoPen);
        p.setBrush(halo);
        p.drawEllipse(QRectF(4, 4, toolSide - 8, toolSide - 8));
    }
    drawIcon(p, icon, QRectF(toolSide * 0.18, toolSide * 0.18, toolSide * 0.64, toolSide * 0.64),
             selected ? toolSelected : toolGrey);
    return image;
}

// The chooser's file-type pictures: a page with a folded corner and the format's name.
QImage formatIcon(const QString& label, const QColor& colour, const QString& subLabel = {}) {
    QImage image = blank(formatSide);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const double w = formatSide * 0.7, h = formatSide * 0.88, x = (formatSide - w) / 2,
                 y = (formatSide - h) / 2;
    const double fold = w * 0.3;
    QPainterPath page;
    page.moveTo(x + 8, y);
    page.lineTo(x + w - fold, y);
    page.lineTo(x + w, y + fold);
    page.lineTo(x + w, y + h - 8);
    page.quadTo(x + w, y + h, x + w - 8, y + h);
    page.lineTo(x + 8, y + h);
    page.quadTo(x, y + h, x, y + h - 8);
    page.lineTo(x, y + 8);
    page.quadTo(x, y, x + 8, y);
    p.fillPath(page, QColor(246, 246, 248));
    p.strokePath(page, QPen(colour.darker(110), 3));
    QPainterPath corner;
    corner.moveTo(x + w - fold, y);
    corner.lineTo(x + w - fold, y + fold - 6);
    corner.quadTo(x + w - fold, y + fold, x + w - fold + 6, y + fold);
    corner.lineTo(x + w, y + fold);
    corner.closeSubpath();
    p.fillPath(corner, colour.lighter(150));
    const QRectF band(x - 10, y + h * 0.48, w + 20, h * 0.28);
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawRoundedRect(band, 8, 8);
    p.setPen(Qt::white);
    p.setFont(labelFont(label.size() > 3 ? 22 : 26, 800));
    p.drawText(band, Qt::AlignCenter, label);
    if (!subLabel.isEmpty()) {
        p.setPen(colour.darker(120));
        p.setFont(labelFont(13, 700));
        p.drawText(QRectF(x, y + h * 0.8, w, h * 0.18), Qt::AlignCenter, subLabel);
    }
    return image;
}

QImage checkbox(bool ticked) {
    QImage image = blank(toolSide);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box(toolSide * 0.16, toolSide * 0.16, toolSide * 0.68, toolSide * 0.68);
    if (ticked) {
        p.setPen(Qt::NoPen);
        p.setBrush(toolSelected);
        p.drawRoundedRect(box, 12, 12);
        QPainterPath tick;
        tick.moveTo(box.left() + box.width() * 0.24, box.top() + box.height() * 0.52);
        tick.lineTo(box.left() + box.width() * 0.43, box.top() + box.height() * 0.7);
        tick.lineTo(box.left() + box.width() * 0.78, box.top() + box.height() * 0.32);
        p.strokePath(tick, QPen(Qt::white, 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    } else {
        p.setPen(QPen(toolGrey, 5));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(box.adjusted(2.5, 2.5, -2.5, -2.5), 11, 11);
    }
    return image;
}

QImage handle(bool close) {
    QImage image = blank(handleSide);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF disc(6, 6, handleSide - 12, handleSide - 12);
    p.setPen(QPen(Qt::white, 5));
    p.setBrush(close ? QColor(230, 57, 70) : QColor(40, 120, 230));
    p.drawEllipse(disc);
    const QPointF c = disc.center();
    const double r = disc.width() * 0.22;
    if (close) {
        p.setPen(QPen(Qt::white, 8, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(c + QPointF(-r, -r), c + QPointF(r, r));
        p.drawLine(c + QPointF(-r, r), c + QPointF(r, -r));
    } else {
        const QRectF arc(c.x() - r * 1.3, c.y() - r * 1.3, r * 2.6, r * 2.6);
        p.setPen(QPen(Qt::white, 7, Qt::SolidLine, Qt::RoundCap));
        p.setBrush(Qt::NoBrush);
        p.drawArc(arc, 60 * 16, 270 * 16);
        // arrow head at the arc's open end
        const QPointF tip(c.x() + r * 1.3 * std::cos(M_PI / 3), c.y() - r * 1.3 * std::sin(M_PI / 3));
        QPainterPath head;
        head.moveTo(tip + QPointF(10, -2));
        head.lineTo(tip + QPointF(-8, -12));
        head.lineTo(tip + QPointF(-4, 10));
        head.closeSubpath();
        p.setPen(Qt::NoPen);
        p.fillPath(head, Qt::white);
    }
    return image;
}

QString at3x(const QString& name) {
    return name + QStringLiteral("@3x.png");
}

} // namespace

JobList iconJobs() {
    JobList jobs;
    for (const IconTable::Icon& icon : IconTable::symbols())
        jobs.push_back({"icons", at3x(icon.name), [icon](const Context&, const QString& path) {
                            return savePng(symbolIcon(icon), path);
                        }});
    for (const IconTable::Icon& icon : IconTable::tools()) {
        jobs.push_back({"icons", at3x(icon.name), [icon](const Context&, const QString& path) {
                            return savePng(toolIcon(icon, false), path);
                        }});
        jobs.push_back(
            {"icons", at3x(IconTable::selectedName(icon.name)),
             [icon](const Context&, const QString& path) { return savePng(toolIcon(icon, true), path); }});
    }
    // Chooser order: JPG, PNG, PDF, PDF print, SVG, MP4, and the TIFF row, whose icon is named ic_gif.
    struct Format {
        QString label, sub;
        QColor colour;
    };
    const QList<Format> formats{{"JPG", {}, QColor("#f4a261")}, {"PNG", {}, QColor("#2a9d8f")},
                                {"PDF", {}, QColor("#e63946")}, {"PDF", "PRINT", QColor("#9d0208")},
                                {"SVG", {}, QColor("#7b2cbf")}, {"MP4", {}, QColor("#0077b6")},
                                {"TIFF", {}, QColor("#38b000")}};
    const QStringList formatNames = AssetNames::formatIcons();
    for (int i = 0; i < formatNames.size(); ++i) {
        const Format f = formats[i];
        jobs.push_back({"icons", at3x(formatNames[i]), [f](const Context&, const QString& path) {
                            return savePng(formatIcon(f.label, f.colour, f.sub), path);
                        }});
    }
    const QStringList boxes = AssetNames::checkboxIcons();
    for (int i = 0; i < boxes.size(); ++i)
        jobs.push_back({"icons", at3x(boxes[i]), [i](const Context&, const QString& path) {
                            return savePng(checkbox(i == 1), path);
                        }});
    const QStringList handles = AssetNames::stickerHandles();
    for (int i = 0; i < handles.size(); ++i)
        jobs.push_back({"icons", at3x(handles[i]),
                        [i](const Context&, const QString& path) { return savePng(handle(i == 0), path); }});
    return jobs;
}

} // namespace assetgen
