// The panels of the mirror editor: how they are built and how they slide over the tool strip.
#include "mirror/MirrorVController.h"

#include "filters/FilterStripView.h"
#include "mirror/ColorSwatchStripView.h"
#include "mirror/MirrorCell.h"
#include "mirror/MirrorPattern.h"
#include "mirror/TextCell.h"
#include "overlay/FontCell.h"
#include "overlay/FontList.h"
#include "platform/Animations.h"
#include "platform/Assets.h"
#include "platform/Log.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QVariantAnimation>
#include <array>
#include <cmath>

namespace {
constexpr int headerHeight = 36;
constexpr int textToolsHeight = headerHeight + 70;
const QString panelStyle = QStringLiteral("background: rgb(28, 28, 30);");
const QString captionStyle = QStringLiteral("color: white; font-weight: 600; background: transparent;");
const QString closeStyle =
    QStringLiteral("QPushButton { color: white; background: transparent; border: none; font-size: 18px; }");
} // namespace

QWidget* MirrorVController::makePanel(const QString& title, std::function<void()> close) {
    auto* panel = new QWidget(this);
    panel->setObjectName(title);
    panel->setAttribute(Qt::WA_StyledBackground);
    panel->setStyleSheet(panelStyle);
    auto* caption = new QLabel(title, panel);
    caption->setStyleSheet(captionStyle);
    caption->setGeometry(16, 0, 220, headerHeight);
    if (close) {
        auto* closeButton = new QPushButton(QStringLiteral("✕"), panel);
        closeButton->setObjectName(QStringLiteral("closeButton"));
        closeButton->setStyleSheet(closeStyle);
        closeButton->setCursor(Qt::PointingHandCursor);
        closeButton->setGeometry(0, 0, 40, headerHeight);
        closeButton->setProperty("alignRight", true);
        connect(closeButton, &QPushButton::clicked, this, std::move(close));
    }
    return panel;
}

void MirrorVController::buildPatternPanel() {
    QWidget* panel = makePanel(QStringLiteral("2D Mirror"), [this] { mirrorCancel(); });
    mirrorPatternScrollView_ = new QScrollArea(panel);
    mirrorPatternScrollView_->setFrameShape(QFrame::NoFrame);
    mirrorPatternScrollView_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    mirrorPatternScrollView_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* strip = new QWidget;
    strip->resize(MirrorPatterns::lowCount * 88, 80);
    for (int k = 0; k < MirrorPatterns::lowCount; ++k) {
        auto* button = new QPushButton(strip);
        button->setGeometry(5 + 88 * k, 1, 78, 78);
        button->setProperty("tag", k);
        button->setCursor(Qt::PointingHandCursor);
        button->setIconSize(QSize(78, 78));
        if (ImagePtr picture = Assets::image(MirrorPatterns::table()[size_t(k)].thumbnail))
            button->setIcon(QIcon(QPixmap::fromImage(picture->uprightBitmap())));
        button->setAccessibleName(MirrorPatterns::table()[size_t(k)].thumbnail);
        // The first pattern starts marked.
        button->setStyleSheet(k == 0 ? QStringLiteral("border: 1.5px solid #FACa16; border-radius: 5px;")
                                     : QStringLiteral("border: none; border-radius: 5px;"));
        connect(button, &QPushButton::clicked, this, [this, k] { PatternsActionTapped(k); });
        patternButtons_ << button;
        mirrorPatternScrollViewCount = k;
    }
    mirrorPatternScrollView_->setWidget(strip);
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::mirrorPattern, panel, 0, 300, headerHeight + 84, true, false, 300, {}}));
}

void MirrorVController::buildHighMirrorPanel() {
    QWidget* panel = makePanel(QStringLiteral("3d Mirror"), [this] { highmirroCancelBtn(); });
    highMirrorCollectionVIew_ = new QScrollArea(panel);
    highMirrorCollectionVIew_->setFrameShape(QFrame::NoFrame);
    highMirrorCollectionVIew_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    highMirrorCollectionVIew_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* strip = new QWidget;
    strip->resize(MirrorPatterns::highCount * 88 + 5, 80);
    for (int i = 0; i < MirrorPatterns::highCount; ++i) {
        auto* cell = new MirrorCell(i, strip);
        cell->move(5 + 88 * i, 1);
        connect(cell, &QAbstractButton::clicked, this, [this, i] { didSelectHighMirror(i); });
        highMirrorCells_ << cell;
    }
    highMirrorCollectionVIew_->setWidget(strip);
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::highMirror, panel, 0, -400, headerHeight + 84, false, false, -400, {}}));
}

void MirrorVController::buildFilterPanel() {
    QWidget* panel = makePanel(QStringLiteral("Effects"), [this] { filterCancel(); });
    filterScrollView_ = new FilterStripView(panel);
    filterScrollView_->onFilterSelected = [self = QPointer<MirrorVController>(this)](int index) {
        if (self)
            self->FilterButtonTapped(index);
    };
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::filter, panel, 0, 300, headerHeight + 104, true, false, 300, {}}));
}

void MirrorVController::buildGalleryPanel() {
    QWidget* panel = makePanel(QStringLiteral("Gallery"), {});
    const std::array<std::pair<int, const char*>, 5> buttons{
        {{101, "Camera"}, {102, "Photos"}, {103, "Files"}, {104, "Generate"}, {100, "Close"}}};
    for (auto [tag, title] : buttons) {
        auto* button = new QPushButton(QString::fromLatin1(title), panel);
        button->setProperty("tag", tag);
        button->setCursor(Qt::PointingHandCursor);
        button->setStyleSheet(QStringLiteral("QPushButton { color: white; background: rgb(48, 48, 52); "
                                             "border-radius: 10px; padding: 6px; }"));
        connect(button, &QPushButton::clicked, this, [this, tag = tag] { imageChooseBtn(tag); });
        galleryButtons_ << button;
    }
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::gallery, panel, 0, -400, headerHeight + 70, false, false, -400, {}}));
}

void MirrorVController::buildTextPanels() {
    static const std::array<std::array<const char*, 2>, toolCount> textTools{{{"Add", "ic_addtext"},
                                                                              {"Font", "ic_font"},
                                                                              {"Colour", "ic_color"},
                                                                              {"Align", "ic_alignment"},
                                                                              {"Opacity", "ic_opacity"},
                                                                              {"Caps", "ic_caps"}}};
    QWidget* text = makePanel(QStringLiteral("Text"), [this] { textBackAction(); });
    for (int i = 0; i < toolCount; ++i) {
        const QString picture = QString::fromLatin1(textTools[size_t(i)][1]);
        auto* cell = new TextCell(i, QString::fromLatin1(textTools[size_t(i)][0]), picture,
                                  picture + QLatin1Char('1'), text);
        connect(cell, &QAbstractButton::clicked, this, [this, i] { didSelectTextTool(i); });
        textCells_ << cell;
    }
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::textEditing, text, 0, -400, textToolsHeight, false, false, -400, {}}));

    QWidget* font = makePanel(QStringLiteral("Font"), [this] { fontCancelAction(); });
    auto* done = new QPushButton(QStringLiteral("Done"), font);
    done->setObjectName(QStringLiteral("fontDoneButton"));
    done->setStyleSheet(closeStyle);
    connect(done, &QPushButton::clicked, this, [this] { fontDoneAction(); });
    fontCollectionView_ = new QScrollArea(font);
    fontCollectionView_->setFrameShape(QFrame::NoFrame);
    fontCollectionView_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    fontCollectionView_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* strip = new QWidget;
    strip->setStyleSheet(QStringLiteral("background: white;"));
    strip->resize(FontList::count * 110, 80);
    for (int i = 0; i < FontList::count; ++i) {
        auto* cell = new FontCell(strip);
        cell->setGeometry(i * 110, 0, 110, 80);
        cell->configure(i);
        connect(cell, &FontCell::tapped, this, [this](int index) { didSelectFont(index); });
        fontCells_ << cell;
    }
    fontCollectionView_->setWidget(strip);
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::font, font, 0, -400, headerHeight + 84, false, false, -400, {}}));

    QWidget* colour = makePanel(QStringLiteral("Colour"), {});
    buttonScrollView_ = new ColorSwatchStripView(colour);
    buttonScrollView_->onColorChosen = [this](Color color) { buttonTapped(color); };
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::multiColor, colour, 70, -400, headerHeight + 80, false, true, -400, {}}));

    QWidget* opacity = makePanel(QStringLiteral("Opacity"), {});
    opacitySlider_ = new QSlider(Qt::Horizontal, opacity);
    opacitySlider_->setRange(0, 100);
    opacitySlider_->setValue(100);
    connect(opacitySlider_, &QSlider::valueChanged, this, [this](int value) { sliderACtion(value / 100.0); });
    panels_.push_back(std::make_unique<PanelSlot>(
        PanelSlot{Panel::opacity, opacity, 70, -400, headerHeight + 50, false, true, -400, {}}));
}

MirrorVController::PanelSlot& MirrorVController::slot(Panel panel) {
    for (const auto& s : panels_)
        if (s->panel == panel)
            return *s;
    fatalError("MirrorVController: a panel is missing");
}

const MirrorVController::PanelSlot& MirrorVController::slot(Panel panel) const {
    return const_cast<MirrorVController*>(this)->slot(panel);
}

double MirrorVController::panelConstant(Panel panel) const {
    return slot(panel).constant;
}

bool MirrorVController::isPanelShown(Panel panel) const {
    return slot(panel).constant == slot(panel).shown;
}

QWidget* MirrorVController::panelView(Panel panel) const {
    return slot(panel).view;
}

void MirrorVController::layoutPanels() {
    const int w = width(), bottom = height();
    for (const auto& s : panels_) {
        const double y = s->pushesDown
                             ? bottom - s->height + s->constant
                             : bottom - s->height - s->constant - (s->aboveTextTools ? headerHeight : 0);
        s->view->setGeometry(0, int(std::lround(y)), w, s->height);
        const QRect content(0, headerHeight, w, s->height - headerHeight);
        for (QWidget* child : s->view->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (child->property("alignRight").toBool())
                child->move(w - child->width() - 6, 0);
            else if (qobject_cast<QScrollArea*>(child) || qobject_cast<QSlider*>(child))
                child->setGeometry(content.adjusted(qobject_cast<QSlider*>(child) ? 24 : 0, 0,
                                                    qobject_cast<QSlider*>(child) ? -24 : 0, 0));
        }
    }
    if (QWidget* done = panelView(Panel::font)->findChild<QPushButton*>(QStringLiteral("fontDoneButton")))
        done->setGeometry(w - 110, 0, 60, headerHeight);
    const int cellWidth = w / toolCount;
    for (TextCell* cell : textCells_)
        cell->setGeometry(cell->index() * cellWidth, headerHeight, cellWidth, 70);
    const int galleryWidth = (w - 12) / int(galleryButtons_.size());
    for (int i = 0; i < galleryButtons_.size(); ++i)
        galleryButtons_[i]->setGeometry(6 + i * galleryWidth + 3, headerHeight + 8, galleryWidth - 6, 48);
}

void MirrorVController::slidePanel(Panel panel, bool shown, double duration) {
    PanelSlot& s = slot(panel);
    const double from = s.constant, to = shown ? s.shown : s.hidden;
    if (shown)
        s.view->raise();
    if (auto* running = qobject_cast<QVariantAnimation*>(s.animation.data()))
        running->stop();
    QPointer<MirrorVController> self(this);
    s.constant = to; // the target counts at once, as a constraint's constant does
    s.animation = Animations::animate(this, duration, [self, &s, from, to](double t) {
        if (!self)
            return;
        const double target = s.constant;
        s.constant = Animations::interpolate(from, to, t);
        self->layoutPanels();
        s.constant = target;
    });
}

void MirrorVController::showOnly(Panel panel) {
    for (const auto& s : panels_)
        if (s->panel != panel && isPanelShown(s->panel))
            slidePanel(s->panel, false);
    slidePanel(panel, true);
}
