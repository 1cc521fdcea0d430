#include "ai/FaceSwapService.h"
#include "platform/Assets.h"
#include "platform/Vision.h"
#include "resources/AssetNames.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>

namespace {

// The app's own client against the bundled service, both real, over loopback: a face from a
// photograph goes into an AI Blend template.
TEST(FaceSwapJourney, ClientAndBundledServiceSwapAFaceIntoATemplate) {
    const ImagePtr face =
        Image::fromFile(QDir(QStringLiteral(LUMIVEX_SAMPLES_DIR)).filePath(QStringLiteral("messi5.jpg")));
    const ImagePtr templatePicture = Assets::image(AssetNames::templateName(AssetNames::Gender::male, 0));
    ASSERT_NE(face, nullptr);
    ASSERT_NE(templatePicture, nullptr) << "the generated templates are missing";

    // A port the system has just handed out as free, rather than one worked out from the process id, which
    // may fall on a port in use or in the range the system gives out for outgoing connections.
    int port = 0;
    {
        QTcpServer free;
        ASSERT_TRUE(free.listen(QHostAddress::LocalHost, 0));
        port = free.serverPort();
    }
    QProcess service;
    service.start(
        QStringLiteral(LUMIVEX_FACESWAP_BINARY),
        {QStringLiteral("--port"), QString::number(port), QStringLiteral("--workers"), QStringLiteral("1")});
    ASSERT_TRUE(service.waitForStarted(5000));
    ASSERT_TRUE(testsupport::waitUntil(
        [&] {
            QTcpSocket probe;
            probe.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(port));
            return probe.waitForConnected(100);
        },
        10000));

    const FaceSwapService client(QStringLiteral("http://127.0.0.1:%1").arg(port));
    std::optional<FaceSwapService::SwapResult> submitted;
    client.swapFaces(face, templatePicture, [&](FaceSwapService::SwapResult r) { submitted = std::move(r); });
    ASSERT_TRUE(testsupport::waitUntil([&] { return submitted.has_value(); }, 20000));
    ASSERT_TRUE(std::holds_alternative<QString>(*submitted))
        << localizedDescription(std::get<FaceSwapError>(*submitted)).toStdString();

    std::optional<FaceSwapService::FetchResult> fetched;
    client.fetchResult(std::get<QString>(*submitted),
                       [&](FaceSwapService::FetchResult r) { fetched = std::move(r); });
    ASSERT_TRUE(testsupport::waitUntil([&] { return fetched.has_value(); }, 30000));
    ASSERT_TRUE(std::holds_alternative<ImagePtr>(*fetched))
        << localizedDescription(std::get<FaceSwapError>(*fetched)).toStdString();
    const ImagePtr blended = std::get<ImagePtr>(*fetched);
    ASSERT_EQ(blended->pixelSize(), templatePicture->pixelSize());

    // The template's face changed; what lies well away from it did not.
    const auto faces = VisionRequestHandler(*templatePicture).detectFaceRectangles();
    ASSERT_TRUE(faces && !faces->empty());
    const QRectF box = *Vision::largestBox(*faces);
    const QSize size = templatePicture->pixelSize();
    const QRect faceRegion(
        static_cast<int>(box.x() * size.width()), static_cast<int>((1.0 - box.bottom()) * size.height()),
        static_cast<int>(box.width() * size.width()), static_cast<int>(box.height() * size.height()));
    const QRect away = faceRegion.adjusted(-faceRegion.width() / 2, -faceRegion.height() / 2,
                                           faceRegion.width() / 2, faceRegion.height() / 2);
    const QImage before = templatePicture->uprightBitmap().convertToFormat(QImage::Format_RGB32);
    const QImage after = blended->uprightBitmap().convertToFormat(QImage::Format_RGB32);
    double inside = 0, outside = 0;
    int insideCount = 0, outsideCount = 0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const QRgb a = before.pixel(x, y);
            const QRgb b = after.pixel(x, y);
            const double d = (std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
                              std::abs(qBlue(a) - qBlue(b))) /
                             3.0;
            if (faceRegion.contains(x, y)) {
                inside += d;
                ++insideCount;
            } else if (!away.contains(x, y)) {
                outside += d;
                ++outsideCount;
            }
        }
    }
    EXPECT_GT(inside / insideCount, 6.0);
    EXPECT_LT(outside / std::max(1, outsideCount), 2.0);

    service.terminate();
    service.waitForFinished(5000);
}

} // namespace
