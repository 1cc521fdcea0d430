#include "platform/Assets.h"
#include "resources/AssetNames.h"

#include <QFile>
#include <QImage>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr int n = AssetNames::lookupDimension;

QImage lookupPicture(const QString& name) {
    const ImagePtr image = Assets::image(name);
    return image ? image->bitmap().convertToFormat(QImage::Format_RGB32) : QImage();
}

// Reads the cube as the filter does (x red, y green, tile number blue) and applies it with trilinear
// interpolation: an independent reader of the generator's layout.
struct Cube {
    std::vector<std::array<float, 3>> entries;

    explicit Cube(const QImage& picture) : entries(size_t(n * n * n)) {
        const int columns = picture.width() / n;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x) {
                const QRgb p = picture.pixel(x, y);
                const int b = (y / n) * columns + x / n;
                entries[size_t(b * n * n + (y % n) * n + x % n)] = {qRed(p) / 255.f, qGreen(p) / 255.f,
                                                                    qBlue(p) / 255.f};
            }
    }

    QRgb apply(QRgb in) const {
        const float pos[3] = {qRed(in) / 255.f * (n - 1), qGreen(in) / 255.f * (n - 1),
                              qBlue(in) / 255.f * (n - 1)};
        int lo[3];
        float t[3];
        for (int i = 0; i < 3; ++i) {
            lo[i] = std::min(int(pos[i]), n - 2);
            t[i] = pos[i] - lo[i];
        }
        float out[3] = {0, 0, 0};
        for (int corner = 0; corner < 8; ++corner) {
            const int dr = corner & 1, dg = (corner >> 1) & 1, db = (corner >> 2) & 1;
            const float w = (dr ? t[0] : 1 - t[0]) * (dg ? t[1] : 1 - t[1]) * (db ? t[2] : 1 - t[2]);
            const auto& e = entries[size_t((lo[2] + db) * n * n + (lo[1] + dg) * n + lo[0] + dr)];
            for (int i = 0; i < 3; ++i)
                out[i] += w * e[i];
        }
        return qRgb(int(std::lround(out[0] * 255)), int(std::lround(out[1] * 255)),
                    int(std::lround(out[2] * 255)));
    }
};

QImage applied(const Cube& cube, const QImage& photo) {
    QImage out = photo;
    for (int y = 0; y < out.height(); ++y)
        for (int x = 0; x < out.width(); ++x)
            out.setPixel(x, y, cube.apply(photo.pixel(x, y)));
    return out;
}

// Mean absolute difference per channel, in 0..255.
double difference(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum +=
                std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * a.width() * a.height());
}

// A real photo with skin, sky and saturated colours; a generated picture when the sample is not installed.
QImage samplePhoto() {
    QImage photo(QStringLiteral(LUMIVEX_SAMPLE_PHOTOS_DIR "/fruits.jpg"));
    if (photo.isNull())
        photo = lookupPicture("slider1");
    return photo.scaled(128, 120, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

TEST(LookupCubes, EveryLookupIsAWholeGridOf64Tiles) {
    const QStringList names = AssetNames::filterLookups() << AssetNames::identityLookup();
    for (const QString& name : names) {
        const QImage picture = lookupPicture(name);
        ASSERT_FALSE(picture.isNull()) << name.toStdString();
        const int columns = picture.width() / n, rows = picture.height() / n;
        EXPECT_EQ(picture.width(), columns * n) << name.toStdString();
        EXPECT_EQ(picture.height(), rows * n) << name.toStdString();
        EXPECT_EQ(columns * rows, n) << name.toStdString();
    }
}

TEST(LookupCubes, IdentityMapsEveryColourToItself) {
    const QImage identity = lookupPicture(AssetNames::identityLookup());
    ASSERT_EQ(identity.size(), QSize(512, 512));
    int worst = 0;
    for (int y = 0; y < identity.height(); ++y)
        for (int x = 0; x < identity.width(); ++x) {
            const QRgb p = identity.pixel(x, y);
            const int r = x % n, g = y % n, b = (y / n) * 8 + x / n;
            const auto expected = [](int i) { return int(std::lround(i * 255.0 / (n - 1))); };
            worst = std::max({worst, std::abs(qRed(p) - expected(r)), std::abs(qGreen(p) - expected(g)),
                              std::abs(qBlue(p) - expected(b))});
        }
    EXPECT_LE(worst, 1);

    const QImage photo = samplePhoto();
    EXPECT_LT(difference(applied(Cube(identity), photo), photo), 0.6);
}

TEST(LookupCubes, EachLookChangesAPhotoAndNoTwoLookAlike) {
    const QImage photo = samplePhoto();
    const QStringList names = AssetNames::filterLookups();
    std::vector<QImage> results;
    for (const QString& name : names) {
        const QImage picture = lookupPicture(name);
        ASSERT_FALSE(picture.isNull()) << name.toStdString();
        results.push_back(applied(Cube(picture), photo));
        EXPECT_GT(difference(results.back(), photo), 4.0)
            << name.toStdString() << " barely changes the photo";
    }
    for (size_t i = 0; i < results.size(); ++i)
        for (size_t j = i + 1; j < results.size(); ++j)
            EXPECT_GT(difference(results[i], results[j]), 2.0)
                << names[int(i)].toStdString() << " and " << names[int(j)].toStdString() << " look alike";
}
