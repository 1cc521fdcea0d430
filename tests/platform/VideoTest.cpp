#include "platform/Video.h"
#include "TestMediaFiles.h"
#include "platform/VideoPlayerView.h"
#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QFile>
#include <QPalette>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class VideoFrames : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(temp.isValid());
        path = temp.filePath(QStringLiteral("numbered.mp4"));
        ASSERT_TRUE(testvideo::writeMp4(path, testvideo::Options{},
                                        [](int i) { return testvideo::numberedFrame(i); }));
    }
    QTemporaryDir temp;
    QString path;
};

TEST_F(VideoFrames, GivesTheFrameOnScreenAtEachTimeEvenBetweenKeyframes) {
    // Keyframes every 10 frames: 1/30 s, 0.5 s and 0.95 s all need decoding from an earlier keyframe.
    const std::pair<double, int> cases[] = {{0.0, 0}, {1.0 / 30.0, 1}, {0.5, 15}, {0.52, 15}, {0.95, 28}};
    for (const auto& [seconds, expected] : cases) {
        const auto frame = Video::frameAt(path, seconds);
        ASSERT_TRUE(frame.has_value()) << seconds;
        EXPECT_EQ(frame->size(), QSize(64, 48));
        EXPECT_EQ(testvideo::frameNumberOf(*frame), expected) << "at " << seconds << " s";
    }
    // Past the end the last frame stays on screen.
    const auto late = Video::frameAt(path, 30.0);
    ASSERT_TRUE(late.has_value());
    EXPECT_EQ(testvideo::frameNumberOf(*late), 29);
}

TEST_F(VideoFrames, RefusesBadTimesAndFilesThatAreNotVideo) {
    EXPECT_FALSE(Video::frameAt(path, -0.1).has_value());
    EXPECT_FALSE(Video::frameAt(path, std::nan("")).has_value());
    EXPECT_FALSE(Video::frameAt(temp.filePath(QStringLiteral("missing.mp4")), 0).has_value());
    const QString text = temp.filePath(QStringLiteral("text.mp4"));
    QFile file(text);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();
    EXPECT_FALSE(Video::frameAt(text, 0).has_value());
}

TEST_F(VideoFrames, TurnsFramesAsTheDisplayMatrixAsks) {
    // A phone's portrait video: landscape pixels with a quarter turn clockwise in the matrix.
    testvideo::Options options;
    options.width = 64;
    options.height = 32;
    options.frames = 3;
    options.displayRotationClockwise = 90;
    const QString rotated = temp.filePath(QStringLiteral("portrait.mp4"));
    ASSERT_TRUE(testvideo::writeMp4(rotated, options, [](int) {
        QImage image(64, 32, QImage::Format_RGB32);
        image.fill(Qt::white);
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                image.setPixelColor(x, y, QColor(220, 20, 20)); // red top-left corner
        return image;
    }));
    const auto frame = Video::frameAt(rotated, 0);
    ASSERT_TRUE(frame.has_value());
    ASSERT_EQ(frame->size(), QSize(32, 64));
    // Turned clockwise, the top-left corner ends at the top right.
    EXPECT_GT(frame->pixelColor(24, 8).red(), 180);
    EXPECT_LT(frame->pixelColor(24, 8).green(), 90);
    EXPECT_GT(frame->pixelColor(8, 8).green(), 180);
}

// The frames are painted in the window like any widget, so a sheet raised over the player covers them.
TEST_F(VideoFrames, PlayingFramesAreDrawnUnderWhatLiesAbove) {
    QWidget window;
    window.resize(200, 200);
    auto* view = new VideoPlayerView(&window);
    view->setGeometry(0, 0, 200, 200);
    auto* sheet = new QWidget(&window);
    sheet->setAutoFillBackground(true);
    sheet->setPalette(QPalette(QColor(0, 200, 0)));
    sheet->setGeometry(0, 100, 200, 100);
    window.show();
    view->setSource(path);
    view->play();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !view->currentFrame().isNull(); }, 5000))
        << qPrintable(view->errorString());
    view->pause();
    EXPECT_EQ(view->currentFrame().size(), QSize(64, 48));
    const QImage shown = window.grab().toImage();
    EXPECT_EQ(shown.pixelColor(100, 150), QColor(0, 200, 0)); // the sheet, on top
    EXPECT_NE(shown.pixelColor(100, 60), QColor(Qt::black));  // a frame, fitted into the upper part
}

TEST_F(VideoFrames, PlayerNeverHangsAndPauseStopsPlaying) {
    VideoPlayerView view;
    view.resize(200, 200);
    view.show();
    EXPECT_FALSE(view.isPlaying());
    view.play(); // no source yet: nothing to play
    EXPECT_FALSE(view.isPlaying());

    view.setSource(path);
    QElapsedTimer timer;
    timer.start();
    view.play();
    // Whether a back end plays it or reports an error, the answer comes quickly.
    testsupport::waitUntil([&] { return view.isPlaying() || !view.errorString().isEmpty(); }, 2000);
    view.pause();
    EXPECT_FALSE(view.isPlaying());
    EXPECT_LT(timer.elapsed(), 5000);
}

} // namespace
