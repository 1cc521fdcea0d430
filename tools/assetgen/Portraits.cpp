// AI blend templates: drawn studio portraits under soft light, each checked to hold one frontal face that
// both the app's detector and the face swap service's landmark model find where it is drawn.
#include "Common.h"

#include "FaceDetector.h"

#include "resources/AssetNames.h"

#include <QBuffer>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/objdetect.hpp>

namespace assetgen {

namespace {

constexpr int width = 480, height = 600;
constexpr int jpegQuality = 90;

struct Person {
    bool male;
    QColor skin, hair, eyes, shirt, backdrop;
    int hairStyle;
    bool beard;
};

Person personFor(bool male, int item, int attempt) {
    Rng rng(std::uint64_t(male ? 5000 : 6000) + std::uint64_t(item) * 37 + std::uint64_t(attempt) * 7919);
    // Skin tones spread evenly over the set rather than at random, so every shade is there.
    const double tone = std::fmod(item * 0.382 + (male ? 0.1 : 0.3), 1.0);
    Person person;
    person.male = male;
    person.skin =
        QColor::fromRgbF(float(0.96 - 0.52 * tone), float(0.80 - 0.46 * tone), float(0.68 - 0.42 * tone));
    const double hairTone = rng.uniform();
    person.hair =
        hairTone < 0.55   ? hsv(rng.uniform(0.04, 0.09), rng.uniform(0.5, 0.8), rng.uniform(0.08, 0.3))
        : hairTone < 0.8  ? hsv(rng.uniform(0.05, 0.1), rng.uniform(0.5, 0.75), rng.uniform(0.35, 0.55))
        : hairTone < 0.92 ? hsv(rng.uniform(0.1, 0.13), rng.uniform(0.45, 0.6), rng.uniform(0.7, 0.85))
                          : hsv(0.03, 0.65, 0.55);
    person.eyes = hsv(rng.uniform(0.05, 0.6), 0.55, rng.uniform(0.25, 0.45));
    person.shirt = hsv(rng.uniform(), rng.uniform(0.35, 0.75), rng.uniform(0.35, 0.8));
    person.backdrop = hsv(rng.uniform(), rng.uniform(0.15, 0.4), rng.uniform(0.75, 0.92));
    person.hairStyle = rng.below(3);
    person.beard = male && rng.below(3) == 0;
    return person;
}

// 0 for the lightest skin of the set, about 0.6 for the darkest.
double darkness(const Person& who) {
    return std::clamp(1.0 - who.skin.lightnessF() * 1.25, 0.0, 1.0);
}

QImage drawPortrait(const Person& who) {
    QImage image(width, height, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QRadialGradient studio(QPointF(width * 0.5, height * 0.35), height * 0.8);
    studio.setColorAt(0, who.backdrop.lighter(115));
    studio.setColorAt(1, who.backdrop.darker(150));
    p.fillRect(image.rect(), studio);
    p.setPen(Qt::NoPen);

    const double cx = width / 2.0, cy = 270, fw = 172, fh = 218;
    if (!who.male) { // long hair falls behind the shoulders
        QPainterPath back;
        const double reach = who.hairStyle == 1 ? 330 : 440;
        back.moveTo(cx - 128, cy - 60);
        back.cubicTo(cx - 150, cy - 210, cx + 150, cy - 210, cx + 128, cy - 60);
        back.lineTo(cx + 140, reach);
        back.quadTo(cx, reach + 30, cx - 140, reach);
        back.closeSubpath();
        p.fillPath(back, who.hair.darker(115));
    }
    // shoulders and neck
    QPainterPath body;
    body.moveTo(20, height);
    body.cubicTo(40, 470, 150, 445, cx, 445);
    body.cubicTo(width - 150, 445, width - 40, 470, width - 20, height);
    body.closeSubpath();
    QLinearGradient cloth(0, 440, 0, height);
    cloth.setColorAt(0, who.shirt.lighter(110));
    cloth.setColorAt(1, who.shirt.darker(130));
    p.fillPath(body, cloth);
    QLinearGradient neck(cx - 45, 0, cx + 45, 0);
    neck.setColorAt(0, who.skin.darker(135));
    neck.setColorAt(0.5, who.skin.darker(112));
    neck.setColorAt(1, who.skin.darker(135));
    QPainterPath neckPath;
    neckPath.moveTo(cx - 46, cy + 90);
    neckPath.lineTo(cx - 50, 450);
    neckPath.quadTo(cx, 475, cx + 50, 450);
    neckPath.lineTo(cx + 46, cy + 90);
    p.fillPath(neckPath, neck);

    // ears, then the face over them
    p.setBrush(who.skin.darker(112));
    p.drawEllipse(QPointF(cx - fw / 2 - 4, cy + 12), 17, 30);
    p.drawEllipse(QPointF(cx + fw / 2 + 4, cy + 12), 17, 30);
    QPainterPath face;
    face.moveTo(cx, cy - fh / 2);
    face.cubicTo(cx + fw / 2 + 10, cy - fh / 2, cx + fw / 2 + 6, cy + fh * 0.12, cx + fw / 2 - 10,
                 cy + fh * 0.3);
    face.cubicTo(cx + fw * 0.3, cy + fh / 2, cx + 22, cy + fh / 2 + 6, cx, cy + fh / 2 + 6);
    face.cubicTo(cx - 22, cy + fh / 2 + 6, cx - fw * 0.3, cy + fh / 2, cx - fw / 2 + 10, cy + fh * 0.3);
    face.cubicTo(cx - fw / 2 - 6, cy + fh * 0.12, cx - fw / 2 - 10, cy - fh / 2, cx, cy - fh / 2);
    QRadialGradient shading(QPointF(cx - 10, cy - 25), fh * 0.78);
    shading.setColorAt(0, who.skin.lighter(110));
    shading.setColorAt(0.65, who.skin);
    shading.setColorAt(1, who.skin.darker(130));
    p.fillPath(face, shading);
    // cheeks
    for (int s : {-1, 1}) {
        QRadialGradient blush(QPointF(cx + s * 52, cy + 45), 34);
        QColor tint = QColor(220, 90, 90, who.male ? 25 : 55);
        blush.setColorAt(0, tint);
        tint.setAlpha(0);
        blush.setColorAt(1, tint);
        p.setBrush(blush);
        p.drawEllipse(QPointF(cx + s * 52, cy + 45), 34, 34);
    }
    // Key light from the upper left: the far side of the face turns away into shadow.
    {
        QLinearGradient side(cx - fw / 2, 0, cx + fw / 2 + 10, 0);
        side.setColorAt(0, QColor(255, 255, 255, 28));
        side.setColorAt(0.45, QColor(0, 0, 0, 0));
        side.setColorAt(1, QColor(0, 0, 0, 45));
        p.fillPath(face, side);
        QLinearGradient chin(0, cy + fh * 0.25, 0, cy + fh / 2 + 6);
        chin.setColorAt(0, QColor(0, 0, 0, 0));
        chin.setColorAt(1, QColor(0, 0, 0, 40));
        p.fillPath(face, chin);
    }
    if (who.beard) {
        QColor beard = who.hair;
        beard.setAlphaF(0.75f);
        QPainterPath shape;
        shape.moveTo(cx - fw / 2 + 8, cy + 20);
        shape.cubicTo(cx - fw / 2 + 10, cy + fh / 2 + 20, cx + fw / 2 - 10, cy + fh / 2 + 20, cx + fw / 2 - 8,
                      cy + 20);
        shape.cubicTo(cx + 40, cy + 120, cx - 40, cy + 120, cx - fw / 2 + 8, cy + 20);
        p.fillPath(shape, beard);
    }

    // hair over the forehead
    QPainterPath cap;
    const double part = who.hairStyle == 2 ? 30 : -20;
    cap.moveTo(cx - fw / 2 - 10, cy - 5);
    cap.cubicTo(cx - fw / 2 - 22, cy - fh / 2 - 55, cx + fw / 2 + 22, cy - fh / 2 - 55, cx + fw / 2 + 10,
                cy - 5);
    cap.cubicTo(cx + fw / 2 - 6, cy - fh / 2 + 30, cx + part + 30, cy - fh / 2 + 40, cx + part,
                cy - fh / 2 + 22);
    cap.cubicTo(cx + part - 40, cy - fh / 2 + 40, cx - fw / 2 + 6, cy - fh / 2 + 30, cx - fw / 2 - 10,
                cy - 5);
    QLinearGradient hairShade(0, cy - fh / 2 - 50, 0, cy);
    hairShade.setColorAt(0, who.hair.lighter(125));
    hairShade.setColorAt(1, who.hair);
    p.fillPath(cap, hairShade);
    if (!who.male && who.hairStyle == 0) { // a bun on top
        p.setBrush(who.hair);
        p.drawEllipse(QPointF(cx, cy - fh / 2 - 40), 45, 38);
    }

    // eyes: socket shadow, white, iris, pupil, lid, brow
    const double eyeY = cy - 6, eyeX = 40;
    for (int s : {-1, 1}) {
        const QPointF e(cx + s * eyeX, eyeY);
        QRadialGradient socket(e, 36);
        QColor dark = who.skin.darker(150);
        // On dark skin a deep socket swallows the eye and brow; keep it shallow there.
        dark.setAlphaF(float(std::clamp(1.1 - 1.3 * darkness(who), 0.3, 1.0)));
        socket.setColorAt(0, dark);
        dark.setAlpha(0);
        socket.setColorAt(1, dark);
        p.setBrush(socket);
        p.drawEllipse(e, 38, 26);
        p.setBrush(QColor(246, 244, 240));
        p.drawEllipse(e, 19, 9.5);
        p.setBrush(who.eyes);
        p.drawEllipse(e, 8.5, 8.5);
        p.setBrush(QColor(15, 12, 10));
        p.drawEllipse(e, 4, 4);
        p.setBrush(Qt::white);
        p.drawEllipse(e + QPointF(2.5, -2.5), 1.8, 1.8);
        p.setPen(QPen(QColor(35, 22, 18), who.male ? 3 : 4, Qt::SolidLine, Qt::RoundCap));
        p.setBrush(Qt::NoBrush);
        p.drawArc(QRectF(e.x() - 21, e.y() - 10, 42, 22), 15 * 16, 150 * 16);
        // Brows stay dark whatever the hair: they carry much of what makes a face a face to a detector.
        p.setPen(QPen(mix(who.hair.darker(170), QColor(38, 26, 20), 0.55), who.male ? 10 : 7, Qt::SolidLine,
                      Qt::RoundCap));
        QPainterPath brow;
        brow.moveTo(e.x() - s * 22, e.y() - 24);
        brow.quadTo(e.x() + s * 2, e.y() - 36, e.x() + s * 26, e.y() - 28);
        p.drawPath(brow);
        p.setPen(Qt::NoPen);
    }
    // Sheen where the key light meets forehead, cheekbones and the bridge of the nose; strongest on dark
    // skin, as a photographer lights it, and what keeps its features readable.
    {
        const int alpha = int(30 + 150 * darkness(who));
        const struct {
            QPointF at;
            double rx, ry;
            double strength;
        } spots[] = {{{cx - 10, cy - 72}, 46, 24, 1.0},
                     {{cx - 50, cy + 22}, 24, 14, 0.9},
                     {{cx + 50, cy + 22}, 22, 13, 0.5},
                     {{cx - 2, cy + 22}, 8, 26, 1.0}};
        for (const auto& spot : spots) {
            QRadialGradient sheen(spot.at, std::max(spot.rx, spot.ry));
            sheen.setColorAt(0, QColor(255, 244, 230, int(alpha * spot.strength)));
            sheen.setColorAt(1, QColor(255, 244, 230, 0));
            p.setBrush(sheen);
            p.drawEllipse(spot.at, spot.rx, spot.ry);
        }
    }
    // nose: a lit ridge, its shadow side, a soft shadow under the tip, and the nostrils
    {
        QRadialGradient under(QPointF(cx + 4, cy + 56), 26);
        QColor shade = who.skin.darker(160);
        shade.setAlpha(110);
        under.setColorAt(0, shade);
        shade.setAlpha(0);
        under.setColorAt(1, shade);
        p.setBrush(under);
        p.drawEllipse(QPointF(cx + 4, cy + 56), 26, 14);
        QLinearGradient ridge(cx - 12, 0, cx + 14, 0);
        ridge.setColorAt(0, QColor(255, 255, 255, 45));
        ridge.setColorAt(0.5, QColor(0, 0, 0, 0));
        ridge.setColorAt(1, QColor(0, 0, 0, 50));
        p.setBrush(ridge);
        p.drawRoundedRect(QRectF(cx - 12, cy + 4, 26, 48), 12, 12);
    }
    p.setPen(QPen(who.skin.darker(145), 3, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(cx - 9, cy + 8), QPointF(cx - 13, cy + 46));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(cx - 20, cy + 38, 40, 18), 200 * 16, 140 * 16);
    p.setPen(Qt::NoPen);
    p.setBrush(who.skin.darker(170));
    p.drawEllipse(QPointF(cx - 9, cy + 50), 4, 2.5);
    p.drawEllipse(QPointF(cx + 9, cy + 50), 4, 2.5);
    // mouth
    const QColor lips = who.male ? mix(who.skin.darker(150), QColor(150, 70, 70), 0.35) : QColor(180, 60, 75);
    QPainterPath upper, lower;
    upper.moveTo(cx - 34, cy + 86);
    upper.cubicTo(cx - 16, cy + 74, cx - 6, cy + 78, cx, cy + 80);
    upper.cubicTo(cx + 6, cy + 78, cx + 16, cy + 74, cx + 34, cy + 86);
    upper.quadTo(cx, cy + 88, cx - 34, cy + 86);
    lower.moveTo(cx - 34, cy + 86);
    lower.quadTo(cx, cy + 88, cx + 34, cy + 86);
    lower.cubicTo(cx + 18, cy + 104, cx - 18, cy + 104, cx - 34, cy + 86);
    p.fillPath(upper, lips.darker(110));
    p.fillPath(lower, lips);
    // the parting line and the soft shadow under the lower lip
    p.setPen(QPen(lips.darker(170), 2, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    p.drawPath([&] {
        QPainterPath line;
        line.moveTo(cx - 33, cy + 86);
        line.quadTo(cx, cy + 89, cx + 33, cy + 86);
        return line;
    }());
    p.setPen(Qt::NoPen);
    QRadialGradient lipShadow(QPointF(cx, cy + 108), 24);
    QColor lipShade = who.skin.darker(150);
    lipShade.setAlpha(90);
    lipShadow.setColorAt(0, lipShade);
    lipShade.setAlpha(0);
    lipShadow.setColorAt(1, lipShade);
    p.setBrush(lipShadow);
    p.drawEllipse(QPointF(cx, cy + 108), 24, 9);
    p.end();
    return image;
}

// Turns the drawing into something nearer a photograph: a soft lens, light falling from the upper left with a
// vignette, fine grain and a faint mottling of skin, so a real face blended in does not look pasted on.
QImage photographic(const QImage& drawing, std::uint32_t seed) {
    QImage image = drawing.convertToFormat(QImage::Format_RGB32);
    cv::Mat view(image.height(), image.width(), CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
    cv::GaussianBlur(view, view, cv::Size(0, 0), 0.8);
    Rng grain(seed);
    const double diagonal = std::hypot(double(width), double(height));
    for (int y = 0; y < image.height(); ++y) {
        auto* row = view.ptr<cv::Vec4b>(y);
        for (int x = 0; x < image.width(); ++x) {
            const double light = 1.06 - 0.16 * (x + 0.6 * y) / (width + 0.6 * height);
            const double r = std::hypot(x - width * 0.45, y - height * 0.4) / diagonal;
            const double vignette = 1.0 - 0.25 * r * r;
            const double mottle = 3.0 * (fbm(x / 9.0, y / 9.0, seed, 2) - 0.5);
            const double noise = 2.2 * (grain.uniform() + grain.uniform() + grain.uniform() - 1.5);
            for (int c = 0; c < 3; ++c)
                row[x][c] = cv::saturate_cast<uchar>(row[x][c] * light * vignette + mottle + noise);
        }
    }
    return image;
}

// The face swap service's own detector and landmarks. Only the detector is per thread; the shape model
// is shared.
const lumivex::faceswap::FaceDetector& landmarkDetector() {
    thread_local const lumivex::faceswap::FaceDetector detector(lumivex::faceswap::kDefaultLandmarkModel);
    return detector;
}

// The service finds exactly one face and places its eyes and mouth on the drawn ones, so any real face
// swapped in lands where the template's features are.
bool landmarksFitDrawing(const cv::Mat& bgr) {
    const lumivex::faceswap::FaceDetector& detector = landmarkDetector();
    if (!detector.isReady())
        return true; // no landmark model installed: nothing to check against
    const std::vector<lumivex::faceswap::Face> faces = detector.detect(bgr);
    if (faces.size() != 1 || faces[0].score < 0.15)
        return false;
    const double cx = width / 2.0, eyeY = 264, mouthY = 356;
    const lumivex::faceswap::Face& f = faces[0];
    return cv::norm(f.leftEye() - cv::Point2f(float(cx - 40), float(eyeY))) < 10 &&
           cv::norm(f.rightEye() - cv::Point2f(float(cx + 40), float(eyeY))) < 10 &&
           cv::norm(f.mouth() - cv::Point2f(float(cx), float(mouthY))) < 14;
}

// One clearly detectable face, of a size that fits a studio portrait.
// Checked on the picture as it will be stored, after JPEG compression.
bool hasClearFace(const QImage& portrait) {
    thread_local cv::CascadeClassifier cascade(LUMIVEX_FACE_CASCADE);
    if (cascade.empty())
        return true; // no detector installed: nothing to check against
    QByteArray stored;
    QBuffer buffer(&stored);
    buffer.open(QIODevice::WriteOnly);
    portrait.save(&buffer, "jpg", jpegQuality);
    const cv::Mat decoded =
        cv::imdecode(cv::Mat(1, int(stored.size()), CV_8U, stored.data()), cv::IMREAD_COLOR);
    cv::Mat view, equalised;
    cv::cvtColor(decoded, view, cv::COLOR_BGR2GRAY);
    cv::equalizeHist(view, equalised);
    std::vector<cv::Rect> faces;
    cascade.detectMultiScale(equalised, faces, 1.1, 3, 0, cv::Size(60, 60));
    return faces.size() == 1 && faces[0].width > width / 4 && landmarksFitDrawing(decoded);
}

QImage portrait(bool male, int item) {
    // A drawing the detector misses is redrawn with other colours; the sequence of tries is fixed, so
    // the chosen one is the same on every run.
    QImage image;
    for (int attempt = 0; attempt < 24; ++attempt) {
        image = photographic(drawPortrait(personFor(male, item, attempt)),
                             std::uint32_t((male ? 9000 : 9500) + item * 131 + attempt));
        if (hasClearFace(image))
            return image;
    }
    qWarning("assetgen: no detectable face for template %d", item + 1);
    return image;
}

} // namespace

QImage templatePortrait(bool male, int item) {
    return portrait(male, item);
}

JobList portraitJobs() {
    JobList jobs;
    for (AssetNames::Gender gender : {AssetNames::Gender::male, AssetNames::Gender::female}) {
        for (int i = 0; i < AssetNames::templateCount; ++i) {
            const bool male = gender == AssetNames::Gender::male;
            jobs.push_back({"portraits", AssetNames::templateName(gender, i) + ".jpg",
                            [male, i](const Context&, const QString& path) {
                                return saveJpeg(portrait(male, i), path, jpegQuality);
                            }});
        }
    }
    return jobs;
}

} // namespace assetgen
