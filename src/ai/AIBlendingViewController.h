#pragma once

#include "ai/FaceSwapService.h"
#include "platform/ViewController.h"
#include "resources/AssetNames.h"

#include <QList>

class AIBlendingThumbnailCell;
class GenderPillButton;
class QAbstractButton;
class QLabel;
class QScrollArea;

using Gender = AssetNames::Gender;

// First screen of the AI blend: forty stock pictures per gender; a tap picks one and asks for the
// user's photo, which starts the blend.
class AIBlendingViewController : public ViewController {
    Q_OBJECT
public:
    explicit AIBlendingViewController(QWidget* parent = nullptr);

    // The service the blend talks to; the shared one unless a test points elsewhere.
    const FaceSwapService* faceSwapService = &FaceSwapService::shared();

    Gender selectedGender() const { return selectedGender_; }
    const ImagePtr& pendingTemplateImage() const { return pendingTemplateImage_; }

    void selectGender(Gender gender);
    void didSelectItem(int item);
    // Runs the blend of the pending stock picture with the user's photo.
    void startBlend(ImagePtr photo);

    GenderPillButton* maleButton() const { return maleButton_; }
    GenderPillButton* femaleButton() const { return femaleButton_; }
    QAbstractButton* backButton() const { return backButton_; }
    QScrollArea* thumbnailCollectionView() const { return collection_; }
    const QList<AIBlendingThumbnailCell*>& cells() const { return cells_; }

protected:
    void viewDidLoad() override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void reloadThumbnails();
    void layoutCells();
    void handlePickerResults(std::vector<struct PickerResult> results);

    Gender selectedGender_ = Gender::male;
    ImagePtr pendingTemplateImage_;
    QAbstractButton* backButton_ = nullptr;
    QLabel* titleLabel_ = nullptr;
    GenderPillButton* maleButton_ = nullptr;
    GenderPillButton* femaleButton_ = nullptr;
    QWidget* dividerView_ = nullptr;
    QScrollArea* collection_ = nullptr;
    QWidget* grid_ = nullptr;
    QList<AIBlendingThumbnailCell*> cells_;
};
