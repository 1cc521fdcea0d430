#include "platform/Alert.h"
#include "platform/Animations.h"
#include "platform/AppWindow.h"
#include "platform/NavigationController.h"
#include "platform/ProgressHud.h"
#include "platform/Storyboard.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QWindow>
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

TEST(StoryboardRegistry, UnknownNameOrWrongClassStopsWithTheName) {
    Storyboard::registerController(QStringLiteral("Main"), QStringLiteral("Known"),
                                   [] { return new ViewController; });
    std::unique_ptr<ViewController> made(
        Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("Known")));
    EXPECT_NE(made, nullptr);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("Unknown")), "Unknown");
    EXPECT_DEATH(Storyboard::instantiate(QStringLiteral("Other"), QStringLiteral("Known")), "Other");
    EXPECT_DEATH(Storyboard::instantiate<Alert>(QStringLiteral("Main"), QStringLiteral("Known")), "Alert");
}

// Appearance calls, counted.
class Watched : public ViewController {
public:
    using ViewController::ViewController;
    QStringList calls;

protected:
    void viewWillAppear(bool) override { calls << "willAppear"; }
    void viewDidAppear(bool) override { calls << "didAppear"; }
    void viewWillDisappear(bool) override { calls << "willDisappear"; }
    void viewDidDisappear(bool) override { calls << "didDisappear"; }
};

TEST(Presentation, OnlyFullScreenTellsTheCoveredScreenItLeavesAndReturns) {
    AppWindow window;
    auto* root = new Watched;
    window.setRootViewController(root);
    window.makeKeyAndVisible();
    ASSERT_EQ(root->calls, QStringList({"willAppear", "didAppear"}));
    root->calls.clear();

    for (ModalPresentationStyle style :
         {ModalPresentationStyle::pageSheet, ModalPresentationStyle::overCurrentContext,
          ModalPresentationStyle::overFullScreen}) {
        auto* over = new ViewController;
        over->setModalPresentationStyle(style);
        root->present(over, true);
        root->dismiss(true);
        EXPECT_TRUE(root->calls.isEmpty()) << static_cast<int>(style);
        EXPECT_TRUE(root->isVisible());
    }

    // A screen inside a navigation controller presents: the whole navigation controller is covered.
    auto* nav = new NavigationController(new Watched);
    nav->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    root->present(nav, true);
    EXPECT_EQ(root->calls, QStringList({"willDisappear", "didDisappear"}));
    EXPECT_FALSE(root->isVisible());
    auto* inner = static_cast<Watched*>(nav->topViewController());
    inner->calls.clear();
    auto* cover = new ViewController;
    cover->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    inner->present(cover, true);
    EXPECT_EQ(inner->calls, QStringList({"willDisappear", "didDisappear"}));
    EXPECT_FALSE(nav->isVisible());

    inner->dismiss(true);
    EXPECT_TRUE(nav->isVisible());
    EXPECT_EQ(inner->calls, QStringList({"willDisappear", "didDisappear", "willAppear", "didAppear"}));
    root->calls.clear();
    root->dismiss(true);
    EXPECT_EQ(root->calls, QStringList({"willAppear", "didAppear"}));
    EXPECT_TRUE(root->isVisible());
}

TEST(Presentation, CoveredScreenLeavesOnlyOnceTheSlideIsOver) {
    const bool wasInstant = Animations::isInstant();
    Animations::setInstant(false);
    AppWindow window;
    auto* root = new Watched;
    window.setRootViewController(root);
    window.makeKeyAndVisible();
    root->calls.clear();
    auto* cover = new ViewController;
    cover->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    bool done = false;
    root->present(cover, true, [&] { done = true; });
    EXPECT_TRUE(root->isVisible()); // still to be seen under the rising screen
    EXPECT_TRUE(testsupport::waitUntil([&] { return done; }, 3000));
    EXPECT_FALSE(root->isVisible());
    EXPECT_EQ(root->calls, QStringList({"willDisappear", "didDisappear"}));
    root->dismiss(true);
    EXPECT_TRUE(root->isVisible()); // back at once, under the falling screen
    Animations::setInstant(wasInstant);
}

TEST(Presentation, PresentedScreenTakesTheInputOfWhatItCovers) {
    AppWindow window;
    auto* root = new ViewController;
    // A back button in the strip that a page sheet leaves visible.
    auto* back = new QPushButton(QStringLiteral("Back"), root);
    back->setGeometry(16, 8, 32, 32);
    int taps = 0;
    QObject::connect(back, &QPushButton::clicked, [&] { ++taps; });
    window.setRootViewController(root);
    window.makeKeyAndVisible();
    QWindow* handle = window.windowHandle();
    ASSERT_NE(handle, nullptr);
    const QPoint where = back->geometry().center();
    QTest::mouseClick(handle, Qt::LeftButton, {}, where);
    ASSERT_EQ(taps, 1);

    QPointer<ViewController> sheet = new ViewController;
    root->present(sheet, false);
    ASSERT_GT(sheet->geometry().top(), where.y());
    QTest::mouseClick(handle, Qt::LeftButton, {}, where);
    EXPECT_EQ(taps, 1);

    root->dismiss(false);
    flushDeletes();
    QTest::mouseClick(handle, Qt::LeftButton, {}, where);
    EXPECT_EQ(taps, 2); // the shield goes with the screen
}

TEST(Presentation, AScreenThatGoesTakesWhatItsInnerScreensPresented) {
    AppWindow window;
    auto* root = new ViewController;
    window.setRootViewController(root);
    window.makeKeyAndVisible();

    // A flow in a navigation controller whose inner screen shows a picker-like sheet.
    auto* inner = new ViewController;
    QPointer<NavigationController> flow = new NavigationController(inner);
    flow->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    root->present(flow, false);
    QPointer<ViewController> sheet = new ViewController;
    inner->present(sheet, false);
    flow->dismiss(false); // the flow leaves as a whole, as a back button does
    flushDeletes();
    EXPECT_TRUE(flow.isNull());
    EXPECT_TRUE(sheet.isNull());
    EXPECT_TRUE(window.findChildren<ViewController*>().contains(root));
    EXPECT_EQ(window.childAt(window.rect().center()), root); // no shield left behind over the root

    // A screen deleted by its owner (a popped page) takes its presentation along too.
    auto* page = new ViewController;
    auto* nav = new NavigationController(new ViewController);
    root->present(nav, false);
    nav->pushViewController(page, false);
    QPointer<ViewController> alert = new ViewController;
    page->present(alert, false);
    nav->popViewController(false);
    flushDeletes();
    EXPECT_TRUE(alert.isNull());
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
