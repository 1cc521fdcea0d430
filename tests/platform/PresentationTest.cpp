#include "platform/Alert.h"
#include "platform/AppWindow.h"
#include "platform/NavigationController.h"
#include "platform/ProgressHud.h"
#include "platform/Storyboard.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class Recording : public ViewController {
public:
    using ViewController::ViewController;
    int loads = 0;
    int appearances = 0;

protected:
    void viewDidLoad() override { ++loads; }
    void viewDidAppear(bool) override { ++appearances; }
};

void flushDeletes() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

TEST(Navigation, PushPopKeepRootAndDeletePoppedScreens) {
    AppWindow window;
    auto* root = new Recording;
    auto* nav = new NavigationController(root);
    window.setRootViewController(nav);
    window.makeKeyAndVisible();
    EXPECT_EQ(root->loads, 1);
    EXPECT_EQ(root->navigationController(), nav);

    auto* second = new Recording;
    nav->pushViewController(second, true);
    nav->pushViewController(second, true); // the same screen twice is ignored
    EXPECT_EQ(nav->viewControllers(), QList<ViewController*>({root, second}));
    EXPECT_TRUE(second->isVisible());
    EXPECT_FALSE(root->isVisible());

    QPointer<ViewController> popped = nav->popViewController(true);
    EXPECT_EQ(popped, second);
    EXPECT_EQ(nav->topViewController(), root);
    EXPECT_TRUE(root->isVisible());
    EXPECT_EQ(root->loads, 1);
    flushDeletes();
    EXPECT_TRUE(popped.isNull());

    EXPECT_EQ(nav->popViewController(true), nullptr); // the root stays
    EXPECT_EQ(nav->viewControllers().size(), 1);
}

TEST(Navigation, HiddenBarGivesTheWholeHeightToScreens) {
    NavigationController nav(new ViewController);
    nav.resize(390, 844);
    nav.show();
    EXPECT_EQ(nav.topViewController()->geometry().top(), NavigationController::kNavigationBarHeight);
    nav.setNavigationBarHidden(true);
    EXPECT_EQ(nav.topViewController()->geometry(), QRect(0, 0, 390, 844));
}

TEST(Presentation, PresentStacksAndDismissTakesChildrenAlong) {
    AppWindow window;
    auto* root = new ViewController;
    window.setRootViewController(root);
    window.makeKeyAndVisible();

    QPointer<ViewController> sheet = new ViewController;
    QPointer<ViewController> cover = new ViewController;
    cover->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    bool presented = false;
    root->present(sheet, true, [&] { presented = true; });
    EXPECT_TRUE(presented);
    EXPECT_EQ(sheet->presentingViewController(), root);
    EXPECT_GT(sheet->geometry().top(), 0); // a sheet leaves a strip of the screen behind visible
    root->present(cover, false);           // goes on top of the sheet
    EXPECT_EQ(sheet->presentedViewController(), cover);
    EXPECT_EQ(cover->geometry(), window.rect());

    window.resize(400, 900);
    EXPECT_EQ(cover->geometry(), QRect(0, 0, 400, 900));

    bool dismissed = false;
    root->dismiss(true, [&] { dismissed = true; });
    EXPECT_TRUE(dismissed);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    flushDeletes();
    EXPECT_TRUE(sheet.isNull());
    EXPECT_TRUE(cover.isNull());
}

TEST(Presentation, NewRootReplacesOldOneAndWhatItPresented) {
    AppWindow window;
    QPointer<ViewController> first = new ViewController;
    window.setRootViewController(first);
    QPointer<ViewController> shown = new ViewController;
    first->present(shown, false);
    auto* second = new ViewController;
    window.setRootViewController(second);
    EXPECT_EQ(window.rootViewController(), second);
    flushDeletes();
    EXPECT_TRUE(first.isNull());
    EXPECT_TRUE(shown.isNull());
}

TEST(AlertCard, ButtonDismissesThenRunsHandlerAndKeysPickActions) {
    AppWindow window;
    auto* root = new ViewController;
    window.setRootViewController(root);
    window.makeKeyAndVisible();

    QStringList ran;
    auto* alert = new Alert(QStringLiteral("Select More Photos"), QStringLiteral("Pick at least 2."));
    alert->addAction({QStringLiteral("Cancel"), AlertActionStyle::cancel, [&] { ran << "cancel"; }});
    alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, [&] {
                          // The alert is already gone when the handler runs.
                          ran << (root->presentedViewController() ? "ok-while-shown" : "ok");
                      }});
    root->present(alert, true);
    EXPECT_EQ(Alert::visibleAlert(&window), alert);
    ASSERT_NE(alert->buttonForAction(QStringLiteral("OK")), nullptr);
    QTest::mouseClick(alert->buttonForAction(QStringLiteral("OK")), Qt::LeftButton);
    QTest::mouseClick(alert->buttonForAction(QStringLiteral("OK")),
                      Qt::LeftButton); // a second tap does nothing
    EXPECT_EQ(ran, QStringList({"ok"}));
    EXPECT_EQ(Alert::visibleAlert(&window), nullptr);

    auto* second = new Alert(QStringLiteral("Title"), QString());
    second->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, [&] { ran << "ok2"; }});
    second->addAction({QStringLiteral("Cancel"), AlertActionStyle::cancel, [&] { ran << "cancel"; }});
    root->present(second, false);
    QTest::keyClick(second, Qt::Key_Escape);
    EXPECT_EQ(ran, QStringList({"ok", "cancel"}));
    EXPECT_FALSE(second->triggerAction(QStringLiteral("missing")));
}

TEST(StoryboardRegistry, UnknownNamesGiveNull) {
    Storyboard::registerController(QStringLiteral("Main"), QStringLiteral("Known"),
                                   [] { return new ViewController; });
    std::unique_ptr<ViewController> made(
        Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("Known")));
    EXPECT_NE(made, nullptr);
    EXPECT_EQ(Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("Unknown")), nullptr);
    EXPECT_EQ(Storyboard::instantiate(QStringLiteral("Other"), QStringLiteral("Known")), nullptr);
}

TEST(BusyIndicator, BlocksInputUntilDismissed) {
    AppWindow window;
    auto* root = new ViewController;
    auto* button = new QPushButton(QStringLiteral("Tap"), root);
    button->setGeometry(100, 300, 190, 60);
    int taps = 0;
    QObject::connect(button, &QPushButton::clicked, [&] { ++taps; });
    window.setRootViewController(root);
    window.makeKeyAndVisible();
    ProgressHud::setHost(&window);

    ProgressHud::show(QStringLiteral("Saving"));
    EXPECT_TRUE(ProgressHud::isVisible());
    EXPECT_EQ(ProgressHud::status(), QStringLiteral("Saving"));
    QWidget* target = window.childAt(button->geometry().center());
    EXPECT_NE(target, button); // the mask lies over the button
    QTest::mouseClick(target, Qt::LeftButton);
    EXPECT_EQ(taps, 0);

    ProgressHud::dismiss();
    EXPECT_FALSE(ProgressHud::isVisible());
    flushDeletes();
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(taps, 1);
    ProgressHud::setHost(nullptr);
}

} // namespace
