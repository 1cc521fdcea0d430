#include "mirror/MirrorCanvasView.h"
#include "mirror/MirrorVController.h"
#include "platform/AppWindow.h"
#include "platform/PhotoPicker.h"
#include "platform/UserDefaults.h"
#include "shell/AppStartup.h"
#include "shell/NewHomePageController.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// The home screen's Mirror card: one photo from the library, fitted into a square as wide as the home
// screen; a video or a file that is no picture opens nothing.
class MirrorCardTest : public ::testing::Test {
protected:
    void SetUp() override {
        AppStartup::registerScreens();
        defaults = std::make_unique<UserDefaults>(dir.filePath(QStringLiteral("defaults.ini")));
        home = new NewHomePageController(*defaults);
        window.setRootViewController(home);
        window.makeKeyAndVisible();
    }
    void TearDown() override { PhotoPicker::setTestSource({}); }
    void pickerAnswers(const QString& file) {
        PhotoPicker::setTestSource([file](const PickerConfiguration&) { return QStringList{file}; });
    }

    QTemporaryDir dir;
    std::unique_ptr<UserDefaults> defaults;
    AppWindow window;
    NewHomePageController* home = nullptr;
};

TEST_F(MirrorCardTest, OnePhotoOpensTheMirrorEditorAndAVideoOpensNothing) {
    const QString movie = dir.filePath(QStringLiteral("clip.mp4"));
    QFile file(movie);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("\0\0\0\x18"
                          "ftypmp42",
                          12) +
               QByteArray(64, '\0'));
    file.close();
    pickerAnswers(movie);
    home->didSelectFeature(3);
    testsupport::spin(300);
    EXPECT_EQ(home->presentedViewController(), nullptr);

    pickerAnswers(QStringLiteral(LUMIVEX_SAMPLES_DIR "/building.jpg"));
    home->didSelectFeature(3);
    EXPECT_EQ(PhotoPicker::lastConfiguration()->selectionLimit, 1);
    MirrorVController* mirror = nullptr;
    ASSERT_TRUE(testsupport::waitUntil([&] {
        mirror = qobject_cast<MirrorVController*>(home->presentedViewController());
        return mirror != nullptr;
    }));
    EXPECT_EQ(mirror->modalPresentationStyle(), ModalPresentationStyle::overCurrentContext);
    const QSizeF size = mirror->selectedImage->size();
    EXPECT_NEAR(std::max(size.width(), size.height()), home->width(), 0.5);
    EXPECT_EQ(mirror->containerView()->showingPattern(), 0);
}

} // namespace
