#include "ai/FaceSwapService.h"
#include "platform/Assets.h"
#include "resources/AssetNames.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
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

    const int port = 20000 + static_cast<int>(QCoreApplication::applicationPid() % 20000);
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
    ASSERT_TRUE(std::holds_alternative<QString>(*submitted));

    std::optional<FaceSwapService::FetchResult> fetched;
    client.fetchResult(std::get<QString>(*submitted),
                       [&](FaceSwapService::FetchResult r) { fetched = std::move(r); });
    ASSERT_TRUE(testsupport::waitUntil([&] { return fetched.has_value(); }, 30000));
    ASSERT_TRUE(std::holds_alternative<ImagePtr>(*fetched))
        << localizedDescription(std::get<FaceSwapError>(*fetched)).toStdString();
    const ImagePtr blended = std::get<ImagePtr>(*fetched);
    EXPECT_EQ(blended->pixelSize(), templatePicture->pixelSize());
    EXPECT_NE(blended->bitmap().convertToFormat(QImage::Format_RGB32),
              templatePicture->bitmap().convertToFormat(QImage::Format_RGB32));

    service.terminate();
    service.waitForFinished(5000);
}

} // namespace
