#include "overlay/OverlayScreens.h"
#include "overlay/StickerCategoryController.h"
#include "overlay/StickerData.h"
#include "overlay/StickerViewController.h"
#include "platform/Assets.h"
#include "support/TestSupport.h"

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

// Stands in for the editor: keeps what it is handed and dismisses the catalogue, as the editor does.
class EditorStandIn : public ViewController, public StickerHandler {
public:
    QList<ImagePtr> picked;
    void stickerPicked(ImagePtr image) override {
        picked << image;
        dismiss(true);
    }
};

class StickerCatalogueTest : public ::testing::Test {
protected:
    void SetUp() override {
        registerOverlayScreens();
        editor.resize(390, 844);
        editor.show();
        catalogue = new StickerCategoryController;
        catalogue->delegate = &editor;
        catalogue->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
        editor.present(catalogue, true);
        ASSERT_TRUE(testsupport::waitUntil([&] { return catalogue->isVisible(); }));
    }

    EditorStandIn editor;
    QPointer<StickerCategoryController> catalogue;
};

TEST(StickerCatalogue, EveryPictureExistsWithTransparency) {
    int total = 0;
    for (const StickerData& category : StickerData::catalogue()) {
        for (const QString& name : category.stickerImgName) {
            const ImagePtr image = Assets::image(name);
            ASSERT_TRUE(image) << name.toStdString();
            const QImage& bitmap = image->bitmap();
            ASSERT_TRUE(bitmap.hasAlphaChannel()) << name.toStdString();
            EXPECT_EQ(qAlpha(bitmap.pixel(0, 0)), 0) << name.toStdString() << " has no clear corner";
            ++total;
        }
    }
    EXPECT_EQ(total, 268);
}

TEST_F(StickerCatalogueTest, RowsShowTheirCategoryAndAReusedRowFollowsItsNewSection) {
    ASSERT_EQ(StickerData::catalogue().size(), 9);
    for (int section = 0; section < 9; ++section) {
        StickerTableCell* row = catalogue->rowCell(section);
        ASSERT_TRUE(row);
        EXPECT_EQ(row->visibleCells().size(), section == 6 || section == 8 ? 29 : 30) << section;
        EXPECT_EQ(row->seeAllBtn()->property("tag").toInt(), section + 100);
    }
    StickerTableCell* row = catalogue->rowCell(3);
    EXPECT_EQ(row->categoryNameLbl()->text(), "Helloween");
    EXPECT_EQ(row->height(), 265);
    EXPECT_EQ(row->visibleCells().first()->width(), row->stickerCollectionVIew()->height() / 2 - 10);

    row->configure(6);
    EXPECT_EQ(row->categoryNameLbl()->text(), "Party");
    ASSERT_EQ(row->visibleCells().size(), 29);
    EXPECT_EQ(row->visibleCells().last()->stickerName(), "party29");
    // The thirtieth tile of the longer category before is hidden, not left showing its old picture.
    const auto tiles = row->findChildren<StickerCollectionCell*>();
    EXPECT_EQ(
        std::count_if(tiles.begin(), tiles.end(), [row](QWidget* tile) { return tile->isVisibleTo(row); }),
        29);
    row->configure(0);
    EXPECT_EQ(row->visibleCells().size(), 30);
    EXPECT_EQ(row->visibleCells()[29]->stickerName(), "butterfly30");
}

TEST_F(StickerCatalogueTest, ATapInARowHandsThePictureToTheEditor) {
    StickerCollectionCell* cell = catalogue->rowCell(2)->visibleCells()[1];
    QTest::mouseClick(cell, Qt::LeftButton);
    ASSERT_EQ(editor.picked.size(), 1);
    EXPECT_EQ(editor.picked.first(), Assets::image("car2"));
    EXPECT_TRUE(testsupport::waitUntil([&] { return !editor.presentedViewController(); }));
}

TEST_F(StickerCatalogueTest, SeeAllOpensTheWholeCategoryAndItsChoiceReachesTheEditor) {
    QTest::mouseClick(catalogue->rowCell(3)->seeAllBtn(), Qt::LeftButton);
    auto* grid = qobject_cast<StickerViewController*>(catalogue->presentedViewController());
    ASSERT_TRUE(grid);
    ASSERT_TRUE(testsupport::waitUntil([&] { return grid->isVisible(); }));
    EXPECT_EQ(grid->selectedIndex, 3);
    EXPECT_EQ(grid->topLbl()->text(), "HELLOWEEN");
    ASSERT_EQ(grid->cells().size(), 30);
    EXPECT_EQ(grid->itemSide(), static_cast<int>(grid->seeAllCollectionVIew()->width() / 3.0 - 5));
    EXPECT_EQ(grid->cells()[0]->width(), grid->itemSide());
    EXPECT_EQ(grid->cells()[0]->y(), grid->cells()[2]->y()); // three a row
    EXPECT_GT(grid->cells()[3]->y(), grid->cells()[2]->y());

    QPointer<StickerViewController> guard(grid);
    QTest::mouseClick(grid->cells()[4], Qt::LeftButton);
    EXPECT_TRUE(testsupport::waitUntil([&] { return !editor.presentedViewController(); }));
    ASSERT_EQ(editor.picked.size(), 1);
    EXPECT_EQ(editor.picked.first(), Assets::image("helloween5"));
}

TEST_F(StickerCatalogueTest, BackLeavesWithoutAChoice) {
    QTest::mouseClick(catalogue->backButton(), Qt::LeftButton);
    EXPECT_TRUE(testsupport::waitUntil([&] { return !editor.presentedViewController(); }));
    EXPECT_TRUE(editor.picked.isEmpty());
}

} // namespace
