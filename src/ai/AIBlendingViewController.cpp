#include "ai/AIBlendingViewController.h"

#include "ai/AIBlendProcessingViewController.h"
#include "ai/AIBlendResultViewController.h"
#include "ai/AIBlendViews.h"
#include "platform/Alert.h"
#include "platform/Assets.h"
#include "platform/Dispatch.h"
#include "platform/NavigationController.h"
#include "platform/PhotoPicker.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

AIBlendingViewController::AIBlendingViewController(QWidget* parent) : ViewController(parent) {}

void AIBlendingViewController::viewDidLoad() {
    backButton_ = makeBlendBackButton(this);
    connect(backButton_, &QAbstractButton::clicked, this, [this] {
        // Leaves the whole flow, which lives in a navigation controller of its own.
        if (NavigationController* navigation = navigationController())
            navigation->dismiss(true);
        else
            dismiss(true);
    });

    titleLabel_ = new QLabel(QStringLiteral("AI Blending"), this);
    QFont titleFont;
    titleFont.setPixelSize(17);
    titleFont.setWeight(QFont::DemiBold);
    titleLabel_->setFont(titleFont);
    titleLabel_->setStyleSheet(QStringLiteral("color: white;"));
    titleLabel_->setAlignment(Qt::AlignCenter);

    maleButton_ = new GenderPillButton(QStringLiteral("Male"), this);
    femaleButton_ = new GenderPillButton(QStringLiteral("Female"), this);
    maleButton_->setActive(true);
    connect(maleButton_, &QAbstractButton::clicked, this, [this] { selectGender(Gender::male); });
    connect(femaleButton_, &QAbstractButton::clicked, this, [this] { selectGender(Gender::female); });

    dividerView_ = new QWidget(this);
    dividerView_->setStyleSheet(QStringLiteral("background: rgba(255, 255, 255, 25);"));

    collection_ = new QScrollArea(this);
    collection_->setFrameShape(QFrame::NoFrame);
    collection_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    collection_->setStyleSheet(
        QStringLiteral("QScrollArea, QScrollArea > QWidget > QWidget { background: black; }"
                       // A slim indicator, as on a phone, rather than a desktop trough beside the grid.
                       "QScrollBar:vertical { width: 6px; background: transparent; margin: 2px 0; }"
                       "QScrollBar::handle:vertical { background: rgba(255, 255, 255, 90);"
                       " border-radius: 3px; min-height: 32px; }"
                       "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
                       "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }"));
    grid_ = new QWidget;
    collection_->setWidget(grid_);
    // The viewport gets its real width only once the scroll area has been laid out, which for a
    // screen still hidden is after this one's resize: the cells follow the viewport, not the screen.
    collection_->viewport()->installEventFilter(this);
    for (int item = 0; item < AssetNames::templateCount; ++item) {
        auto* cell = new AIBlendingThumbnailCell(grid_);
        connect(cell, &QAbstractButton::clicked, this, [this, item] { didSelectItem(item); });
        cells_.append(cell);
    }
    reloadThumbnails();
}

void AIBlendingViewController::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Qt::black);
}

void AIBlendingViewController::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    if (!isViewLoaded())
        return;
    const int w = width();
    backButton_->move(16, 8);
    titleLabel_->setGeometry(60, 8, w - 120, 32);
    const int rowWidth = int(w * 0.82);
    const int tabWidth = (rowWidth - 12) / 2;
    const int rowLeft = (w - rowWidth) / 2;
    maleButton_->setGeometry(rowLeft, 60, tabWidth, 44);
    femaleButton_->setGeometry(rowLeft + tabWidth + 12, 60, tabWidth, 44);
    dividerView_->setGeometry(0, 124, w, 1);
    collection_->setGeometry(0, 125, w, std::max(0, height() - 125));
    layoutCells();
}

bool AIBlendingViewController::eventFilter(QObject* watched, QEvent* event) {
    if (collection_ && watched == collection_->viewport() && event->type() == QEvent::Resize)
        layoutCells();
    return ViewController::eventFilter(watched, event);
}

void AIBlendingViewController::layoutCells() {
    // Two square columns with 16 around and between them.
    const int width = collection_->viewport()->width();
    const int side = std::max(0, (width - 48) / 2);
    for (int item = 0; item < cells_.size(); ++item)
        cells_[item]->setGeometry(16 + (item % 2) * (side + 16), 16 + (item / 2) * (side + 16), side, side);
    const int rows = (int(cells_.size()) + 1) / 2;
    grid_->resize(width, 16 + rows * (side + 16));
}

void AIBlendingViewController::reloadThumbnails() {
    for (int item = 0; item < cells_.size(); ++item)
        cells_[item]->setImage(Assets::image(AssetNames::templateName(selectedGender_, item)));
}

void AIBlendingViewController::selectGender(Gender gender) {
    if (gender == selectedGender_)
        return;
    selectedGender_ = gender;
    loadViewIfNeeded();
    maleButton_->setActive(gender == Gender::male);
    femaleButton_->setActive(gender == Gender::female);
    reloadThumbnails();
    collection_->verticalScrollBar()->setValue(0);
}

void AIBlendingViewController::didSelectItem(int item) {
    const ImagePtr picture = Assets::image(AssetNames::templateName(selectedGender_, item));
    if (!picture)
        return;
    pendingTemplateImage_ = picture;
    PickerConfiguration configuration;
    configuration.selectionLimit = 1;
    configuration.imagesOnly = true;
    QPointer<AIBlendingViewController> self(this);
    PhotoPicker::present(this, configuration, [self](std::vector<PickerResult> results) {
        if (self)
            self->handlePickerResults(std::move(results));
    });
}

void AIBlendingViewController::handlePickerResults(std::vector<PickerResult> results) {
    if (results.empty() || !results.front().itemProvider || !results.front().itemProvider->canLoadImage()) {
        pendingTemplateImage_.reset();
        return;
    }
    QPointer<AIBlendingViewController> self(this);
    // A photo that does not decode leaves everything as it is, without a word. The photo goes to the
    // service with all its pixels, so it is read whole rather than at display size.
    results.front().itemProvider->loadFullResolutionImage([self](ImagePtr image, QString) {
        if (!image)
            return;
        Dispatch::main().async([self, image] {
            if (self)
                self->startBlend(image);
        });
    });
}

void AIBlendingViewController::startBlend(ImagePtr photo) {
    if (!pendingTemplateImage_)
        return;
    const ImagePtr target = std::move(pendingTemplateImage_);
    pendingTemplateImage_.reset();
    NavigationController* navigation = navigationController();
    if (!navigation)
        return;

    auto* processing = new AIBlendProcessingViewController(photo, target, faceSwapService);
    QPointer<AIBlendingViewController> self(this);
    QPointer<AIBlendProcessingViewController> weakProcessing(processing);
    processing->onFinished = [self, weakProcessing, photo](ImagePtr result) {
        if (!self || !self->navigationController())
            return;
        NavigationController* navigation = self->navigationController();
        // The result replaces the processing screen, so going back lands on the templates.
        QList<ViewController*> controllers = navigation->viewControllers();
        if (weakProcessing)
            controllers.removeAll(weakProcessing.data());
        controllers.append(new AIBlendResultViewController(std::move(result), photo));
        navigation->setViewControllers(controllers, true);
    };
    processing->onFailed = [self](const FaceSwapError& error) {
        if (!self)
            return;
        if (NavigationController* navigation = self->navigationController())
            navigation->popViewController(true);
        auto* alert = new Alert(QStringLiteral("Blend Failed"), localizedDescription(error));
        alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, {}});
        self->present(alert, true);
    };
    navigation->pushViewController(processing, true);
}
