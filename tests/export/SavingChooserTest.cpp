#include "export/ExportScreens.h"
#include "export/SavingTypeCell.h"
#include "export/SavingTypeController.h"
#include "platform/AppWindow.h"
#include "platform/Storyboard.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPointer>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct Recorder : ViewController, SavingMethodPass {
    QList<SavingtypeMethod> chosen;
    bool chooserGoneWhenTold = false;
    void savingMethodChosen(SavingtypeMethod type) override {
        chosen << type;
        chooserGoneWhenTold = presentedViewController() == nullptr;
    }
};

class Chooser : public ::testing::Test {
protected:
    void SetUp() override {
        registerExportScreens();
        window.setRootViewController(editor = new Recorder);
        window.makeKeyAndVisible();
    }
    SavingTypeController* open(bool isimage, int selectedIndex = SavingTypeController::kNoRow) {
        auto* chooser = qobject_cast<SavingTypeController*>(
            Storyboard::instantiate(QStringLiteral("Main"), QStringLiteral("SavingTypeController")));
        chooser->delegate = editor;
        chooser->isimage = isimage;
        chooser->selectedIndex = selectedIndex;
        editor->present(chooser, true);
        return chooser;
    }
    static QList<int> rowsWhere(SavingTypeController* chooser, QWidget* (*part)(SavingTypeCell*)) {
        QList<int> rows;
        for (int row = 0; row < chooser->numberOfItems(); ++row) {
            if (!part(chooser->cellForRow(row))->isHidden())
                rows << row;
        }
        return rows;
    }
    static QWidget* pill(SavingTypeCell* cell) { return cell->suggestedLbl(); }
    static QWidget* check(SavingTypeCell* cell) { return cell->selectbtn(); }

    AppWindow window;
    Recorder* editor = nullptr;
};

TEST_F(Chooser, RowsShowTheFormatsWithThePillOnTheSuggestedOneAndNoCheckAtEight) {
    SavingTypeController* chooser = open(true);
    ASSERT_EQ(chooser->numberOfItems(), 7);
    EXPECT_EQ(chooser->cellForRow(6)->saveformatnameLbl()->text(), QStringLiteral("TIFF"));
    EXPECT_EQ(chooser->cellForRow(1)->infolbl()->text(),
              QStringLiteral("Best for complex images, illustrations"));
    EXPECT_EQ(chooser->cellForRow(0)->height(), 60);
    EXPECT_EQ(chooser->cellForRow(7), nullptr);
    EXPECT_EQ(chooser->containerCornerRadius(), 40);
    EXPECT_EQ(rowsWhere(chooser, pill), QList<int>{1});
    EXPECT_TRUE(rowsWhere(chooser, check).isEmpty());
    editor->dismiss(false);

    // A video: the pill moves to MP4 Video; a sheet's own type carries the check mark.
    SavingTypeController* videoChooser = open(false, 3);
    EXPECT_EQ(rowsWhere(videoChooser, pill), QList<int>{5});
    EXPECT_EQ(rowsWhere(videoChooser, check), QList<int>{3});
}

TEST_F(Chooser, PickingARowClearsTheVeilClosesAndOnlyThenTellsTheDelegate) {
    QPointer<SavingTypeController> chooser = open(true);
    EXPECT_EQ(chooser->backgroundColor(), SavingTypeController::dimmingColor());
    EXPECT_NEAR(chooser->backgroundColor().alphaF(), 0.6, 0.01);

    QTest::mouseClick(chooser->cellForRow(4), Qt::LeftButton);
    EXPECT_EQ(editor->chosen, QList<SavingtypeMethod>{SavingtypeMethod::SVG});
    EXPECT_TRUE(editor->chooserGoneWhenTold);
    if (chooser) {
        EXPECT_EQ(chooser->selectedIndex, 4);
        EXPECT_EQ(chooser->backgroundColor().alpha(), 0);
    }

    // Rows past the last format count as TIFF; negative rows are ignored.
    SavingTypeController* second = open(true);
    second->didSelectRow(-1);
    EXPECT_EQ(editor->presentedViewController(), second);
    second->didSelectRow(9);
    EXPECT_EQ(editor->chosen.last(), SavingtypeMethod::TIFF);
}

TEST_F(Chooser, ADelegateThatIsGoneIsNotCalled) {
    auto* other = new Recorder;
    SavingTypeController* chooser = open(true);
    chooser->delegate = other;
    delete other;
    chooser->didSelectRow(0); // must not touch the deleted delegate
    EXPECT_TRUE(editor->chosen.isEmpty());
}

} // namespace
