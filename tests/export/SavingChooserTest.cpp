#include "export/ExportScreens.h"
#include "export/SavingTypeCell.h"
#include "export/SavingTypeController.h"
#include "platform/AppWindow.h"
#include "platform/Storyboard.h"

#include <QCoreApplication>
#include <QLabel>
#include <QPointer>
#include <QTest>
#include <QWindow>
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

// A drag that starts on a row moves the sheet: far enough, it closes; short, it snaps back. Either way the
// row it started on is not picked. Driven through the window, where the row takes the press.
TEST_F(Chooser, DragStartedOnARowMovesTheSheetInsteadOfPickingTheRow) {
    QPointer<SavingTypeController> chooser = open(true);
    QWindow* handle = window.windowHandle();
    ASSERT_NE(handle, nullptr);
    SavingTypeCell* row = chooser->cellForRow(2);
    const QPoint start = row->mapTo(&window, row->rect().center());
    ASSERT_EQ(window.childAt(start)->window(), &window);

    QTest::mousePress(handle, Qt::LeftButton, {}, start);
    QTest::mouseMove(handle, start + QPoint(0, 20));
    QTest::mouseMove(handle, start + QPoint(0, 40));
    EXPECT_NEAR(chooser->containerTranslation(), 40, 1);
    QTest::mouseRelease(handle, Qt::LeftButton, {}, start + QPoint(0, 40));
    EXPECT_TRUE(editor->chosen.isEmpty());
    EXPECT_EQ(chooser->containerTranslation(), 0); // snapped back
    EXPECT_EQ(editor->presentedViewController(), chooser);

    const int far = static_cast<int>(chooser->dismissThreshold()) + 30;
    QTest::mousePress(handle, Qt::LeftButton, {}, start);
    for (int dy = 20; dy <= far; dy += 20)
        QTest::mouseMove(handle, start + QPoint(0, dy));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, start + QPoint(0, far));
    EXPECT_TRUE(editor->chosen.isEmpty());
    EXPECT_EQ(editor->presentedViewController(), nullptr);

    // A plain tap still picks.
    chooser = open(true);
    row = chooser->cellForRow(2);
    QTest::mouseClick(handle, Qt::LeftButton, {}, row->mapTo(&window, row->rect().center()));
    EXPECT_EQ(editor->chosen.size(), 1);
}

// Each row, clicked, stands for its own format; the titles say which.
TEST_F(Chooser, EveryRowPicksItsOwnFormat) {
    const QList<SavingtypeMethod> formats = {SavingtypeMethod::JPG,         SavingtypeMethod::PNG,
                                             SavingtypeMethod::PDFStandard, SavingtypeMethod::PDFPrint,
                                             SavingtypeMethod::SVG,         SavingtypeMethod::MP4Video,
                                             SavingtypeMethod::TIFF};
    const QStringList titles = {"JPG", "PNG", "PDF Standard", "PDF Print", "SVG", "MP4 Video", "TIFF"};
    for (int row = 0; row < formats.size(); ++row) {
        SavingTypeController* chooser = open(true);
        EXPECT_EQ(chooser->cellForRow(row)->saveformatnameLbl()->text(), titles[row]) << row;
        QTest::mouseClick(chooser->cellForRow(row), Qt::LeftButton);
        ASSERT_EQ(editor->chosen.size(), row + 1) << row;
        EXPECT_EQ(editor->chosen.last(), formats[row]) << row;
    }
    // Rows past the end count as the last format, and a negative one picks nothing.
    EXPECT_EQ(savingTypeForRow(9), SavingtypeMethod::TIFF);
    SavingTypeController* chooser = open(true);
    chooser->didSelectRow(-1);
    EXPECT_EQ(editor->chosen.size(), formats.size());
}

} // namespace
