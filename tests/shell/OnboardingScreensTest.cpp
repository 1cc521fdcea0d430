#include "platform/ImageView.h"
#include "shell/OptionCardView.h"
#include "shell/TutorialPageIndicatorView.h"
#include "shell/TutorialPageViewController.h"
#include "shell/TutorialStartPageViewController.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace {

std::unique_ptr<TutorialStartPageViewController> makeStartPage(int* continued = nullptr) {
    auto page = std::make_unique<TutorialStartPageViewController>(
        QStringLiteral("Make every moment"), QStringLiteral("more meaningful."),
        QStringLiteral("Where would you like to begin?"), TutorialStartPageViewController::startOptions(),
        QStringLiteral("Start Creating"), 3, 4,
        [continued] {
            if (continued)
                ++*continued;
        },
        [] {});
    page->resize(390, 844);
    page->show();
    QCoreApplication::processEvents();
    return page;
}

TEST(StartPage, SecondTapOnSelectedCardKeepsIt) {
    auto page = makeStartPage();
    const auto& cards = page->cardViews();
    ASSERT_EQ(cards.size(), 4);
    QTest::mouseClick(cards[1], Qt::LeftButton);
    QTest::mouseClick(cards[1], Qt::LeftButton);
    ASSERT_TRUE(page->selectedIndex().has_value());
    EXPECT_EQ(*page->selectedIndex(), 1);
    EXPECT_TRUE(cards[1]->isCardSelected());
    EXPECT_DOUBLE_EQ(cards[1]->borderWidth(), 2.0);
    EXPECT_DOUBLE_EQ(cards[1]->overlayAlpha(), 1.0);
    EXPECT_EQ(cards[1]->borderColor(), QColor(119, 140, 229));

    QTest::mouseClick(cards[3], Qt::LeftButton);
    EXPECT_EQ(*page->selectedIndex(), 3);
    EXPECT_FALSE(cards[1]->isCardSelected());
    EXPECT_DOUBLE_EQ(cards[1]->borderWidth(), 1.0);
    EXPECT_DOUBLE_EQ(cards[1]->overlayAlpha(), 0.0);
}

TEST(StartPage, PressOutsideTheCardIsNoTap) {
    auto page = makeStartPage();
    OptionCardView* card = page->cardViews()[0];
    QTest::mousePress(card, Qt::LeftButton);
    EXPECT_TRUE(card->isPressed());
    QTest::mouseRelease(card, Qt::LeftButton, {}, QPoint(-20, -20));
    EXPECT_FALSE(card->isPressed());
    EXPECT_FALSE(page->selectedIndex().has_value());
}

TEST(StartPage, CardsCarryTheirTextsInTwoRows) {
    auto page = makeStartPage();
    const auto& cards = page->cardViews();
    const QStringList titles = {QStringLiteral("Frame a photo"), QStringLiteral("Start a New"),
                                QStringLiteral("Build a layout"), QStringLiteral("Start blank")};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(cards[i]->title(), titles[i]);
    EXPECT_EQ(cards[0]->y(), cards[1]->y());
    EXPECT_EQ(cards[2]->y(), cards[3]->y());
    EXPECT_LT(cards[0]->y(), cards[2]->y());
    EXPECT_LT(cards[0]->x(), cards[1]->x());
    // Missing artwork leaves the card without a picture rather than failing.
    EXPECT_EQ(page->continueButton()->text(), QStringLiteral("Start Creating"));
}

TEST(PicturePage, FilterRowShowsSelectionAndCollapsesWhenEmpty) {
    TutorialPageContent content{
        QStringLiteral("slider3"),
        QStringLiteral("Choose your"),
        QStringLiteral("Reflection."),
        QStringLiteral("One photo, Multiple style."),
        QStringLiteral("Continue"),
        2,
        4,
        false,
        {QStringLiteral("Original"), QStringLiteral("Mirror"), QStringLiteral("Reflection")},
        0};
    TutorialPageViewController page(
        content, [] {}, [] {}, [] {});
    page.resize(390, 844);
    page.show();
    QCoreApplication::processEvents();
    const QList<QLabel*> labels = page.filterOptionLabels();
    ASSERT_EQ(labels.size(), 3);
    EXPECT_TRUE(labels[0]->property("selectedOption").toBool());
    EXPECT_FALSE(labels[1]->property("selectedOption").toBool());
    EXPECT_GT(page.filterOptionsStack()->height(), 0);
    // The text comes first on this page, the picture after it.
    EXPECT_LT(page.titleFirstLineLabel()->y(), page.heroImageView()->y());

    content.filterOptions.clear();
    content.imageFirst = true;
    TutorialPageViewController plain(
        content, [] {}, [] {}, [] {});
    plain.resize(390, 844);
    plain.show();
    QCoreApplication::processEvents();
    EXPECT_EQ(plain.filterOptionsStack()->height(), 0);
    EXPECT_LT(plain.heroImageView()->y(), plain.titleFirstLineLabel()->y());
}

TEST(PageIndicator, ActiveDotIsWideAndReconfigures) {
    TutorialPageIndicatorView indicator;
    indicator.configure(4, 1);
    ASSERT_EQ(indicator.dotViews().size(), 4);
    EXPECT_EQ(indicator.dotViews()[1]->width(), 22);
    EXPECT_EQ(indicator.dotViews()[0]->width(), 8);
    indicator.setCurrentPage(3);
    EXPECT_EQ(indicator.dotViews()[3]->width(), 22);
    EXPECT_EQ(indicator.dotViews()[1]->width(), 8);
    indicator.configure(2, 0);
    EXPECT_EQ(indicator.dotViews().size(), 2);
    // A current page beyond the dots simply leaves every dot inactive.
    indicator.setCurrentPage(5);
    EXPECT_EQ(indicator.targetDotWidths(), QList<int>({8, 8}));
}

} // namespace
