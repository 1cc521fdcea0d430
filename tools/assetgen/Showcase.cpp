// First-run pages, home carousel and feature cards: compositions of the sample photos, portraits and
// mirror patterns, so they show what each editor makes.
#include "Common.h"

#include "resources/AssetNames.h"
#include "resources/IconTable.h"

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

namespace assetgen {

namespace {

QFont titleFont(int pixelSize, int weight = 800) {
    QFont font(QStringLiteral("Manrope"));
    font.setPixelSize(pixelSize);
    font.setWeight(QFont::Weight(weight));
    return font;
}

void fillGradient(QPainter& p, const QRectF& r, const QColor& a, const QColor& b) {
    QLinearGradient g(r.topLeft(), r.bottomRight());
    g.setColorAt(0, a);
    g.setColorAt(1, b);
    p.fillRect(r, g);
}

// A photo print: white border, slight turn, soft shadow.
void drawPrint(QPainter& p, const QImage& photo, QPointF centre, double side, double degrees) {
    p.save();
    p.translate(centre);
    p.rotate(degrees);
    const QRectF card(-side / 2, -side / 2, side, side * 1.12);
    for (int i = 0; i < 6; ++i) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0, 0, 0, 12));
        p.drawRoundedRect(card.translated(4, 8).adjusted(-i * 2, -i * 2, i * 2, i * 2), 10, 10);
    }
    p.setBrush(Qt::white);
    p.drawRoundedRect(card, 6, 6);
    const double inset = side * 0.06;
    const QRectF window(card.left() + inset, card.top() + inset, side - 2 * inset, side - 2 * inset);
    p.drawImage(window, fillCrop(photo, window.size().toSize()));
    p.restore();
}

void drawCollage(QPainter& p, const Context& context, const QRectF& area, double gap, double radius) {
    const QStringList photos{"fruits.jpg", "squirrel_cls.jpg", "home.jpg", "butterfly.jpg"};
    const QList<QRectF> cells{
        {0, 0, 0.6, 0.55}, {0.6, 0, 0.4, 0.55}, {0, 0.55, 0.4, 0.45}, {0.4, 0.55, 0.6, 0.45}};
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < cells.size(); ++i) {
        const QRectF c = cells[i];
        const QRectF r(area.x() + c.x() * area.width() + gap / 2, area.y() + c.y() * area.height() + gap / 2,
                       c.width() * area.width() - gap, c.height() * area.height() - gap);
        QPainterPath clip;
        clip.addRoundedRect(r, radius, radius);
        p.setClipPath(clip);
        p.drawImage(r.topLeft(), fillCrop(samplePhoto(context, photos[i]), r.size().toSize() + QSize(1, 1)));
    }
    p.restore();
}

void drawSparkles(QPainter& p, const QList<QPointF>& points, double size) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < points.size(); ++i) {
        const double s = size * (1.0 - 0.25 * (i % 3));
        QPainterPath star;
        const QPointF c = points[i];
        star.moveTo(c + QPointF(0, -s));
        star.quadTo(c, c + QPointF(s, 0));
        star.quadTo(c, c + QPointF(0, s));
        star.quadTo(c, c + QPointF(-s, 0));
        star.quadTo(c, c + QPointF(0, -s));
        p.fillPath(star, QColor(255, 255, 255, 230));
    }
    p.restore();
}

QImage mirrored(const Context& context, int side, int pattern, const QString& photo = "squirrel_cls.jpg") {
    return mirrorPreview(fillCrop(samplePhoto(context, photo), {side, side}, {0.6, 0.45}), pattern);
}

// ---- onboarding --------------------------------------------------------------------------------

QImage slider(const Context& context, int page) {
    constexpr int side = 900;
    QImage image(side, side, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    if (page == 0) { // many photos become one story
        fillGradient(p, image.rect(), QColor("#1b1f3b"), QColor("#5b2a86"));
        drawPrint(p, samplePhoto(context, "home.jpg"), {260, 300}, 330, -9);
        drawPrint(p, samplePhoto(context, "fruits.jpg"), {640, 290}, 310, 8);
        drawPrint(p, samplePhoto(context, "butterfly.jpg"), {300, 640}, 300, 6);
        drawPrint(p, samplePhoto(context, "squirrel_cls.jpg"), {630, 630}, 340, -5);
    } else if (page == 1) { // photos, type and layout together
        fillGradient(p, image.rect(), QColor("#0f3443"), QColor("#34e89e"));
        drawCollage(p, context, QRectF(90, 90, 720, 720), 16, 22);
        p.setFont(titleFont(96));
        p.setPen(QColor(0, 0, 0, 90));
        p.drawText(QRectF(94, 654, 720, 130), Qt::AlignCenter, QStringLiteral("Summer"));
        p.setPen(Qt::white);
        p.drawText(QRectF(90, 650, 720, 130), Qt::AlignCenter, QStringLiteral("Summer"));
    } else { // one photo, its reflection
        p.drawImage(0, 0, mirrored(context, side, 0));
        drawSparkles(p, {{180, 160}, {720, 220}, {640, 760}}, 36);
    }
    return image;
}

QImage startCard(const Context& context, const QString& name) {
    constexpr int side = 600;
    QImage image(side, side, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    if (name == QLatin1String("aiblending")) {
        p.drawImage(image.rect(), fillCrop(templatePortrait(false, 3), {side, side}, {0.5, 0.42}));
        drawSparkles(p, {{120, 120}, {480, 160}, {500, 420}}, 30);
    } else if (name == QLatin1String("lumivex")) {
        fillGradient(p, image.rect(), QColor("#ff758c"), QColor("#ff7eb3"));
        drawPrint(p, samplePhoto(context, "fruits.jpg"), {300, 290}, 380, -6);
    } else if (name == QLatin1String("collagestory")) {
        fillGradient(p, image.rect(), QColor("#1e3c72"), QColor("#2a5298"));
        drawCollage(p, context, QRectF(40, 40, 520, 520), 12, 16);
    } else {
        p.drawImage(0, 0, mirrored(context, side, 5, "butterfly.jpg"));
    }
    return image;
}

// ---- home --------------------------------------------------------------------------------------

QImage homeSlide(const Context& context, int index) {
    constexpr int w = 1050, h = 1062; // the carousel's shape at three pixels a point
    QImage image(w, h, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    QString title, subtitle;
    if (index == 0) {
        fillGradient(p, image.rect(), QColor("#12c2e9"), QColor("#c471ed"));
        drawCollage(p, context, QRectF(70, 70, w - 140, h - 330), 18, 26);
        title = QStringLiteral("Collage");
        subtitle = QStringLiteral("Your photos, one layout");
    } else if (index == 1) {
        p.drawImage(0, 0, fillCrop(mirrored(context, w, 13), {w, h}));
        title = QStringLiteral("Mirror");
        subtitle = QStringLiteral("Reflections in a tap");
    } else {
        p.drawImage(0, 0, fillCrop(templatePortrait(true, 7), {w, h}, {0.5, 0.4}));
        drawSparkles(p, {{160, 180}, {880, 240}, {820, 640}, {220, 600}}, 40);
        title = QStringLiteral("AI Blend");
        subtitle = QStringLiteral("Step into a new look");
    }
    QLinearGradient shade(0, h * 0.55, 0, h);
    shade.setColorAt(0, QColor(0, 0, 0, 0));
    shade.setColorAt(1, QColor(0, 0, 0, 170));
    p.fillRect(QRectF(0, h * 0.55, w, h * 0.45), shade);
    p.setPen(Qt::white);
    p.setFont(titleFont(110));
    p.drawText(QRectF(70, h - 290, w - 140, 140), Qt::AlignLeft | Qt::AlignVCenter, title);
    p.setFont(titleFont(48, 500));
    p.setPen(QColor(255, 255, 255, 220));
    p.drawText(QRectF(74, h - 160, w - 140, 80), Qt::AlignLeft | Qt::AlignVCenter, subtitle);
    return image;
}

// Feature cards: a rounded tile with a glyph and the feature's name, transparent around the corners.
QImage homeCard(int index) {
    constexpr int w = 540, h = 330;
    struct Card {
        QString title;
        char16_t glyph;
        QColor a, b;
    };
    const Card cards[] = {
        {"Collage", 0xe660, QColor("#ff9a8b"), QColor("#ff6a88")},
        {"AI Blend", 0xe65f, QColor("#7f7fd5"), QColor("#86a8e7")},
        {"Layout", 0xe9b0, QColor("#43cea2"), QColor("#185a9d")},
        {"Mirror", 0xe3e8, QColor("#f7971e"), QColor("#ffd200")},
        {"Pic Mixer", 0xe3b6, QColor("#ee0979"), QColor("#ff6a00")},
        {"More Apps", 0xe5c3, QColor("#536976"), QColor("#292e49")},
    };
    const Card& card = cards[index];
    QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF tile(12, 12, w - 24, h - 24);
    QPainterPath rounded;
    rounded.addRoundedRect(tile, 36, 36);
    QLinearGradient g(tile.topLeft(), tile.bottomRight());
    g.setColorAt(0, card.a);
    g.setColorAt(1, card.b);
    p.fillPath(rounded, g);
    p.setClipPath(rounded);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 36));
    p.drawEllipse(QPointF(tile.right() - 40, tile.top() + 20), 150, 150);
    p.setClipping(false);
    QFont icons(QStringLiteral("Material Icons"));
    icons.setPixelSize(120);
    p.setFont(icons);
    p.setPen(Qt::white);
    p.drawText(QRectF(tile.right() - 190, tile.top() + 30, 160, 160), Qt::AlignCenter,
               QString(QChar(card.glyph)));
    p.setFont(titleFont(58));
    p.drawText(QRectF(tile.left() + 36, tile.bottom() - 110, tile.width() - 60, 80),
               Qt::AlignLeft | Qt::AlignVCenter, card.title);
    return image;
}

} // namespace

JobList showcaseJobs() {
    JobList jobs;
    const QStringList onboarding = AssetNames::onboardingPictures();
    for (int i = 0; i < 3; ++i)
        jobs.push_back({"showcase", onboarding[i] + ".jpg", [i](const Context& context, const QString& path) {
                            return saveJpeg(slider(context, i), path);
                        }});
    for (int i = 3; i < onboarding.size(); ++i) {
        const QString name = onboarding[i];
        jobs.push_back({"showcase", name + ".jpg", [name](const Context& context, const QString& path) {
                            return saveJpeg(startCard(context, name), path);
                        }});
    }
    const QStringList slides = AssetNames::homeSlides();
    for (int i = 0; i < slides.size(); ++i)
        jobs.push_back({"showcase", slides[i] + ".jpg", [i](const Context& context, const QString& path) {
                            return saveJpeg(homeSlide(context, i), path);
                        }});
    const QStringList cards = AssetNames::homeCards();
    for (int i = 0; i < cards.size(); ++i)
        jobs.push_back({"showcase", cards[i] + ".png",
                        [i](const Context&, const QString& path) { return savePng(homeCard(i), path); }});
    return jobs;
}

} // namespace assetgen
