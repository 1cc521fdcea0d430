#include "CubeTestSupport.h"

#include "filters/FilterStripView.h"
#include "filters/FilteredPicture.h"
#include "filters/LookCubeCache.h"
#include "platform/Assets.h"
#include "support/TestSupport.h"

#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace cubetest;

namespace {

// The generated artwork behind a folder of the test's own pictures, which win by name.
class LooksWithOwnAssets : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        Assets::setSearchPaths(QStringList{folder.path()} + Assets::defaultSearchPaths());
    }
    void TearDown() override { Assets::resetSearchPaths(); }

    void addPicture(const QString& name, const QImage& picture) {
        ASSERT_TRUE(picture.save(folder.filePath(name + ".png")));
        Assets::clearCache();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(LooksWithOwnAssets, CubesAreBuiltOnceAndTheLeastRecentGoes) {
    LookCubeCache cache(2);
    const auto ava = cache.cube("Ava");
    ASSERT_TRUE(ava);
    EXPECT_EQ(cache.cube("Ava"), ava);
    // The cube stays as it was read, even if the picture in the assets changes behind it.
    addPicture("Ava", identityPicture());
    EXPECT_EQ(cache.cube("Ava"), ava);

    const auto basin = cache.cube("Basin");
    cache.cube("Ava"); // Ava is now the most recent, so Basin leaves first
    cache.cube("Blonde");
    EXPECT_EQ(cache.count(), 2);
    EXPECT_EQ(cache.cube("Ava"), ava);
    EXPECT_NE(cache.cube("Basin"), basin); // read again: a new cube
    cache.clear();
    EXPECT_NE(cache.cube("Ava"), ava);
}

TEST_F(LooksWithOwnAssets, AnInvalidLookupPictureGivesNoLookAndIsNotKept) {
    QImage half(512, 256, QImage::Format_RGB32);
    half.fill(Qt::red);
    addPicture("Classic", half);
    LookCubeCache cache;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(cache.cube("Classic"));
    EXPECT_FALSE(cache.cube("Classic"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Invalid colorLUT\nInvalid colorLUT\n");
    EXPECT_EQ(cache.count(), 0);

    const ImagePtr photo = Image::make(samplePhoto("apple.jpg", {20, 20}));
    FilteredPicture picture(cache, photo);
    testing::internal::CaptureStdout();
    picture.selectLook(8); // "Classic"
    testing::internal::GetCapturedStdout();
    EXPECT_FALSE(picture.lookIndex());
    EXPECT_EQ(picture.image(), photo);
}

TEST(LookCubeCacheDeathTest, ALookMissingFromTheAssetsStopsTheProgramNamingIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    LookCubeCache cache;
    EXPECT_DEATH(cache.cube("Nonexistent"), "Nonexistent");
}

TEST(FilteredPicture, ASecondLookReplacesTheFirstAndKeepsTheOrientation) {
    LookCubeCache cache;
    const ImagePtr source = Image::make(samplePhoto("messi5.jpg", {90, 60}), 2.0, ImageOrientation::right);
    FilteredPicture picture(cache, source);
    EXPECT_EQ(picture.image(), source);

    picture.selectLook(3);
    ASSERT_EQ(picture.lookIndex(), 3);
    const ImagePtr first = picture.image();
    ASSERT_TRUE(first);
    EXPECT_NE(first->bitmap(), source->bitmap());
    EXPECT_EQ(first->orientation(), ImageOrientation::right);
    EXPECT_EQ(first->scale(), 1.0);

    picture.selectLook(16);
    EXPECT_EQ(picture.lookIndex(), 16);
    EXPECT_EQ(picture.source(), source);
    const ImagePtr direct = applyLook(cache, filterTable()[16].lookupImage, source);
    EXPECT_EQ(picture.image()->bitmap(), direct->bitmap()); // not look 16 on top of look 3

    picture.selectLook(35);
    picture.selectLook(-1);
    EXPECT_EQ(picture.lookIndex(), 16);

    const ImagePtr other = Image::make(samplePhoto("apple.jpg", {10, 10}));
    picture.setSource(other);
    EXPECT_FALSE(picture.lookIndex());
    EXPECT_EQ(picture.image(), other);
}

TEST(FilterStripView, OneThumbnailButtonPerLookAndATapMovesTheBorderBeforeReporting) {
    FilterStripView strip;
    strip.resize(390, strip.height());
    strip.show();
    ASSERT_EQ(strip.filterScrollViewCount(), 35);
    EXPECT_EQ(strip.widget()->width(), 35 * 82);
    const auto buttons = strip.buttons();
    for (int k = 0; k < buttons.size(); ++k) {
        EXPECT_EQ(buttons[k]->tag(), k);
        EXPECT_EQ(buttons[k]->geometry(), QRect(5 + 82 * k, 1, 74, 99));
        EXPECT_FALSE(buttons[k]->thumbnail().isNull()) << k;
        EXPECT_EQ(buttons[k]->borderWidth(), 1.0);
        EXPECT_EQ(buttons[k]->borderColor().alpha(), 0);
    }

    std::vector<int> reported;
    strip.onFilterSelected = [&](int index) {
        // By the time the look is worked out, the border has moved.
        EXPECT_EQ(strip.buttons()[index]->borderWidth(), 1.0);
        reported.push_back(index);
    };
    QTest::mouseClick(buttons[2], Qt::LeftButton);
    EXPECT_TRUE(reported.empty()); // not inside the tap
    EXPECT_EQ(buttons[2]->borderColor(), QColor(0xfa, 0xca, 0x16));
    EXPECT_EQ(buttons[0]->borderWidth(), 0.0);
    ASSERT_TRUE(testsupport::waitUntil([&] { return !reported.empty(); }));
    EXPECT_EQ(reported, std::vector<int>{2});

    strip.horizontalScrollBar()->setValue(strip.horizontalScrollBar()->maximum());
    QTest::mouseClick(buttons[34], Qt::LeftButton);
    ASSERT_TRUE(testsupport::waitUntil([&] { return reported.size() == 2; }));
    EXPECT_EQ(reported.back(), 34);
    EXPECT_EQ(strip.selectedIndex(), 34);
    EXPECT_EQ(buttons[2]->borderWidth(), 0.0);
    EXPECT_EQ(buttons[34]->borderWidth(), 1.0);
}

TEST(FilterStripView, ReportsNothingOnceTheStripIsGone) {
    auto* strip = new FilterStripView(QStringList{"habitual", "heritage"}, 1);
    EXPECT_EQ(strip->widget()->width(), 3 * 82);
    bool reported = false;
    strip->onFilterSelected = [&](int) { reported = true; };
    strip->FilterButtonTapped(strip->buttons()[1]);
    delete strip;
    testsupport::spin(50);
    EXPECT_FALSE(reported);
}
