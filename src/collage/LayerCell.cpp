#include "collage/LayerCell.h"

#include "collage/CheckerboardView.h"
#include "collage/CollageCellStyle.h"
#include "collage/DragGripView.h"
#include "platform/ImageView.h"

#include <QApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

using namespace CollageCellStyle;

namespace {

constexpr int sideMargin = 16;
constexpr int verticalMargin = 8;
constexpr int gripLeading = 16;
constexpr QSize gripSize{20, 24};
constexpr int gap = 12;
constexpr int textGap = 16;
constexpr int textTrailing = 16;
// On a narrow card the picture gives way before the title is cut.
constexpr int minimumThumbnailWidth = 56;

} // namespace

LayerCell::LayerCell(QWidget* parent) : QWidget(parent) {
    setFixedHeight(rowHeight);
    setCursor(Qt::OpenHandCursor);

    dragHandleView_ = new DragGripView(this);
    checkerboardView_ = new CheckerboardView(this);
    thumbnailImageView_ = new ImageView(this);
    thumbnailImageView_->setContentMode(ContentMode::scaleAspectFit);
    thumbnailImageView_->setAttribute(Qt::WA_TransparentForMouseEvents);

    titleLabel_ = new QLabel(this);
    QFont titleFont = font();
    titleFont.setPixelSize(20);
    titleLabel_->setFont(titleFont);
    titleLabel_->setStyleSheet(QStringLiteral("color: white; background: transparent;"));
    titleLabel_->setAttribute(Qt::WA_TransparentForMouseEvents);

    // Kept for a second line of text; empty in this design, so it takes no room.
    subtitleLabel_ = new QLabel(this);
    subtitleLabel_->setAttribute(Qt::WA_TransparentForMouseEvents);
    subtitleLabel_->hide();

    layoutParts();
}

QString LayerCell::layerTitle(int row) {
    return QStringLiteral("Layer %1").arg(row + 1, 2, 10, QLatin1Char('0'));
}

void LayerCell::configure(int row, ImagePtr thumbnail, bool isSelected) {
    row_ = row;
    selected_ = isSelected;
    titleLabel_->setText(layerTitle(row));
    setAccessibleName(titleLabel_->text());
    thumbnailImageView_->setImage(std::move(thumbnail));
    layoutParts();
    update();
}

void LayerCell::prepareForReuse() {
    row_ = -1;
    selected_ = false;
    titleLabel_->clear();
    thumbnailImageView_->setImage(nullptr);
    update();
}

QString LayerCell::title() const {
    return titleLabel_->text();
}

ImagePtr LayerCell::thumbnail() const {
    return thumbnailImageView_->image();
}

QColor LayerCell::borderColor() const {
    return selected_ ? systemBlue() : white(0.06);
}

QRect LayerCell::cardRect() const {
    return rect().adjusted(sideMargin, verticalMargin, -sideMargin, -verticalMargin);
}

QRect LayerCell::thumbnailRect() const {
    const QRect card = cardRect();
    const int left = card.left() + gripLeading + gripSize.width() + gap;
    const int titleWidth = QFontMetrics(titleLabel_->font()).horizontalAdvance(layerTitle(0));
    const int room = card.right() + 1 - left - textGap - titleWidth - textTrailing;
    const int width = std::clamp(room, minimumThumbnailWidth, preferredThumbnailWidth);
    return {left, card.top() + gap, width, std::max(0, card.height() - 2 * gap)};
}

void LayerCell::layoutParts() {
    const QRect card = cardRect();
    dragHandleView_->setGeometry(card.left() + gripLeading, card.center().y() - gripSize.height() / 2 + 1,
                                 gripSize.width(), gripSize.height());
    const QRect picture = thumbnailRect();
    checkerboardView_->setGeometry(picture);
    thumbnailImageView_->setGeometry(picture);
    const int textLeft = picture.right() + 1 + textGap;
    const int textWidth = std::max(0, card.right() + 1 - textTrailing - textLeft);
    const int textHeight = titleLabel_->sizeHint().height();
    titleLabel_->setGeometry(textLeft, card.center().y() - textHeight / 2 + 1, textWidth, textHeight);
}

void LayerCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF card(cardRect());
    painter.setPen(Qt::NoPen);
    painter.setBrush(white(0.04));
    painter.drawRoundedRect(card, cornerRadius, cornerRadius);
    // The border is stroked inside the card so a thicker one does not grow the card.
    const double half = borderWidth() / 2;
    painter.setPen(QPen(borderColor(), borderWidth()));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(card.adjusted(half, half, -half, -half), cornerRadius - half,
                            cornerRadius - half);
}

void LayerCell::resizeEvent(QResizeEvent*) {
    layoutParts();
}

void LayerCell::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    pressed_ = true;
    dragging_ = false;
    pressPosition_ = event->position().toPoint();
}

void LayerCell::mouseMoveEvent(QMouseEvent* event) {
    if (!pressed_ || dragging_ || !(event->buttons() & Qt::LeftButton))
        return;
    if ((event->position().toPoint() - pressPosition_).manhattanLength() < QApplication::startDragDistance())
        return;
    dragging_ = true;
    pressed_ = false;
    if (onDragRequested)
        onDragRequested();
}

void LayerCell::mouseReleaseEvent(QMouseEvent* event) {
    const bool tapped = pressed_ && !dragging_ && event->button() == Qt::LeftButton &&
                        rect().contains(event->position().toPoint());
    pressed_ = false;
    dragging_ = false;
    if (tapped && onTap)
        onTap();
}
