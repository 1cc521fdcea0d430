#include "collage/LayersPanelView.h"

#include "collage/CollageCellStyle.h"
#include "collage/LayerCell.h"
#include "collage/LayersTabButton.h"
#include "platform/Animations.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QDrag>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollArea>
#include <QScrollBar>
#include <QVariantAnimation>
#include <algorithm>
#include <cmath>

using namespace CollageCellStyle;

namespace {

constexpr int cardInset = 8;
constexpr int headerInset = 24;
constexpr QSize headerIconSize{26, 20};
constexpr int headerLabelGap = 12;
constexpr int closeSide = 36;
constexpr int closeTrailing = 20;
constexpr int tableGap = 20;

class ScrimView : public QWidget {
public:
    explicit ScrimView(QWidget* parent) : QWidget(parent) {}
    std::function<void()> onTap;
    double alpha = 0.0;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), QColor::fromRgbF(0, 0, 0, static_cast<float>(0.35 * alpha)));
    }
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()) && onTap)
            onTap();
    }
};

// The sheet: near black, with a hairline border and rounded corners on the side that faces the
// screen only.
class CardView : public QWidget {
public:
    explicit CardView(QWidget* parent) : QWidget(parent) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF bounds = QRectF(rect()).adjusted(0.5, 0.5, 0.5, -0.5);
        const double r = LayersPanelView::cardCornerRadius;
        QPainterPath path;
        path.moveTo(bounds.right(), bounds.top());
        path.lineTo(bounds.left() + r, bounds.top());
        path.arcTo(QRectF(bounds.left(), bounds.top(), 2 * r, 2 * r), 90, 90);
        path.lineTo(bounds.left(), bounds.bottom() - r);
        path.arcTo(QRectF(bounds.left(), bounds.bottom() - 2 * r, 2 * r, 2 * r), 180, 90);
        path.lineTo(bounds.right(), bounds.bottom());
        path.closeSubpath();
        painter.setPen(QPen(white(0.08), 1.0));
        painter.setBrush(QColor::fromRgbF(0.07f, 0.07f, 0.07f));
        painter.drawPath(path);
    }
    // Clicks on the sheet must not fall through to the scrim behind it.
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }
};

class HeaderIconView : public QWidget {
public:
    explicit HeaderIconView(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        LayersTabButton::drawLayersSymbol(painter, QRectF(rect()), Qt::white);
    }
};

class CloseButton : public QAbstractButton {
public:
    explicit CloseButton(QWidget* parent) : QAbstractButton(parent) {
        setFixedSize(closeSide, closeSide);
        setCursor(Qt::PointingHandCursor);
        setAccessibleName(QCoreApplication::translate("LayersPanelView", "Close"));
        setFocusPolicy(Qt::TabFocus);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(white(isDown() ? 0.3 : 0.2));
        painter.drawEllipse(QRectF(rect()));
        const QRectF glyph = QRectF(rect()).adjusted(12, 12, -12, -12);
        if (!drawSymbol(painter, QStringLiteral("xmark"), glyph, Qt::white)) {
            painter.setPen(QPen(Qt::white, 2.0, Qt::SolidLine, Qt::RoundCap));
            painter.drawLine(glyph.topLeft(), glyph.bottomRight());
            painter.drawLine(glyph.topRight(), glyph.bottomLeft());
        }
    }
};

} // namespace

LayersPanelView::LayersPanelView(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);

    auto* scrim = new ScrimView(this);
    scrim->onTap = [this]() { dismiss(true); };
    scrimView_ = scrim;

    cardView_ = new CardView(this);
    headerIconView_ = new HeaderIconView(cardView_);
    headerLabel_ = new QLabel(tr("Layers"), cardView_);
    QFont headerFont = font();
    headerFont.setPixelSize(26);
    headerFont.setBold(true);
    headerLabel_->setFont(headerFont);
    headerLabel_->setStyleSheet(QStringLiteral("color: white; background: transparent;"));
    closeButton_ = new CloseButton(cardView_);
    connect(closeButton_, &QAbstractButton::clicked, this, [this]() { dismiss(true); });

    tableView_ = new QScrollArea(cardView_);
    tableView_->setFrameShape(QFrame::NoFrame);
    tableView_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tableView_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tableView_->setFocusPolicy(Qt::NoFocus);
    tableView_->setWidgetResizable(false);
    tableView_->setAutoFillBackground(false);
    tableView_->viewport()->setAutoFillBackground(false);
    tableView_->viewport()->setAcceptDrops(true);
    tableView_->viewport()->installEventFilter(this);
    rowsView_ = new QWidget;
    rowsView_->setAutoFillBackground(false);
    tableView_->setWidget(rowsView_);
    rowsView_->setAutoFillBackground(false);

    dropIndicator_ = new QWidget(rowsView_);
    dropIndicator_->setObjectName(QStringLiteral("dropIndicator"));
    dropIndicator_->setAttribute(Qt::WA_StyledBackground);
    dropIndicator_->setAttribute(Qt::WA_TransparentForMouseEvents);
    dropIndicator_->setStyleSheet(QStringLiteral("background: rgb(%1, %2, %3); border-radius: 1px;")
                                      .arg(systemBlue().red())
                                      .arg(systemBlue().green())
                                      .arg(systemBlue().blue()));
    dropIndicator_->hide();

    if (parent) {
        setGeometry(parent->rect());
        parent->installEventFilter(this);
    }
    hide();
    setProgress(closedOffset(), 0.0);
}

LayersPanelView::~LayersPanelView() {
    stopAnimation();
}

LayerCell* LayersPanelView::cellForRow(int row) const {
    if (row < 0 || row >= rowCount())
        return nullptr;
    return cells_[static_cast<size_t>(row)];
}

double LayersPanelView::closedOffset() const {
    // Past the screen's edge on any width, not just a phone's.
    return std::max(closedTrailing, std::ceil(width() * cardWidthFraction) + 1.0);
}

void LayersPanelView::open() {
    stopAnimation();
    open_ = true;
    show();
    raise();
    reloadData();
    layoutCard();
    setFocus(Qt::OtherFocusReason);
    animateTo(0.0, 1.0, true, openDuration);
}

void LayersPanelView::dismiss(bool animated) {
    if (isHidden())
        return;
    stopAnimation();
    open_ = false;
    dropIndicator_->hide();
    animateTo(closedOffset(), 0.0, false, animated ? closeDuration : 0.0);
}

void LayersPanelView::animateTo(double trailing, double scrimAlpha, bool opening, double duration) {
    const double fromTrailing = trailing_;
    const double fromAlpha = scrimAlpha_;
    QPointer<LayersPanelView> weak(this);
    auto step = [weak, fromTrailing, fromAlpha, trailing, scrimAlpha](double progress) {
        if (weak)
            weak->setProgress(Animations::interpolate(fromTrailing, trailing, progress),
                              Animations::interpolate(fromAlpha, scrimAlpha, progress));
    };
    if (opening) {
        animation_ = Animations::spring(this, duration, openDamping, 0.0, step);
        return;
    }
    animation_ = Animations::animate(
        this, duration, step,
        [weak](bool) {
            if (weak && !weak->open_)
                weak->hide();
        },
        AnimationCurve::easeInOut);
}

void LayersPanelView::stopAnimation() {
    if (animation_)
        animation_->stop();
    animation_ = nullptr;
}

void LayersPanelView::setProgress(double trailing, double scrimAlpha) {
    trailing_ = trailing;
    scrimAlpha_ = std::clamp(scrimAlpha, 0.0, 1.0);
    static_cast<ScrimView*>(scrimView_)->alpha = scrimAlpha_;
    scrimView_->update();
    layoutCard();
}

void LayersPanelView::layoutCard() {
    scrimView_->setGeometry(rect());
    const int cardWidth = static_cast<int>(std::lround(width() * cardWidthFraction));
    const int cardX = width() - cardWidth + static_cast<int>(std::lround(trailing_));
    cardView_->setGeometry(cardX, cardInset, cardWidth, std::max(0, height() - 2 * cardInset));

    headerIconView_->setGeometry(headerInset, headerInset, headerIconSize.width(), headerIconSize.height());
    const int iconCentreY = headerInset + headerIconSize.height() / 2;
    const int labelX = headerInset + headerIconSize.width() + headerLabelGap;
    const int closeX = cardWidth - closeTrailing - closeSide;
    const int labelHeight = headerLabel_->sizeHint().height();
    headerLabel_->setGeometry(labelX, iconCentreY - labelHeight / 2, std::max(0, closeX - 8 - labelX),
                              labelHeight);
    closeButton_->move(closeX, iconCentreY - closeSide / 2);

    const int tableTop = headerInset + headerIconSize.height() + tableGap;
    tableView_->setGeometry(0, tableTop, cardWidth, std::max(0, cardView_->height() - tableTop));
    layoutRows();
}

void LayersPanelView::layoutRows() {
    const int rowWidth = tableView_->viewport()->width();
    rowsView_->resize(rowWidth, rowCount() * LayerCell::rowHeight);
    for (int row = 0; row < rowCount(); ++row)
        cells_[static_cast<size_t>(row)]->setGeometry(0, row * LayerCell::rowHeight, rowWidth,
                                                      LayerCell::rowHeight);
}

void LayersPanelView::reloadData() {
    const int count = numberOfLayers ? std::max(0, numberOfLayers()) : 0;
    // Cells are kept and reconfigured; surplus ones go later, as one of them may be mid-event.
    while (rowCount() > count) {
        LayerCell* cell = cells_.back();
        cells_.pop_back();
        cell->hide();
        cell->onTap = nullptr;
        cell->onDragRequested = nullptr;
        cell->deleteLater();
    }
    while (rowCount() < count) {
        auto* cell = new LayerCell(rowsView_);
        cell->onTap = [this, cell]() {
            const int row = cell->row();
            if (row < 0)
                return;
            if (onSelectRow)
                onSelectRow(row);
            reloadData();
        };
        cell->onDragRequested = [this, cell]() {
            if (cell->row() >= 0)
                startDrag(cell->row());
        };
        cells_.push_back(cell);
        cell->show();
    }
    for (int row = 0; row < count; ++row) {
        LayerCell* cell = cells_[static_cast<size_t>(row)];
        cell->prepareForReuse();
        cell->configure(row, thumbnail ? thumbnail(row) : nullptr, isRowSelected && isRowSelected(row));
    }
    dropIndicator_->raise();
    layoutRows();
}

QString LayersPanelView::layerMimeType() {
    return QStringLiteral("application/x-lumivex-layer-row");
}

QMimeData* LayersPanelView::mimeDataForRow(int row) const {
    auto* data = new QMimeData;
    const QString stamp = QStringLiteral("%1:%2:%3")
                              .arg(QCoreApplication::applicationPid())
                              .arg(reinterpret_cast<quintptr>(this))
                              .arg(row);
    data->setData(layerMimeType(), stamp.toUtf8());
    data->setText(QStringLiteral("layer-%1").arg(row));
    return data;
}

std::optional<int> LayersPanelView::sourceRow(const QMimeData* data) const {
    if (!data || !data->hasFormat(layerMimeType()))
        return std::nullopt;
    const QStringList parts = QString::fromUtf8(data->data(layerMimeType())).split(QLatin1Char(':'));
    if (parts.size() != 3)
        return std::nullopt;
    bool pidOk = false, panelOk = false, rowOk = false;
    const qint64 pid = parts[0].toLongLong(&pidOk);
    const quintptr panel = parts[1].toULongLong(&panelOk);
    const int row = parts[2].toInt(&rowOk);
    if (!pidOk || !panelOk || !rowOk || pid != QCoreApplication::applicationPid() ||
        panel != reinterpret_cast<quintptr>(this) || row < 0 || row >= rowCount())
        return std::nullopt;
    return row;
}

std::optional<int> LayersPanelView::destinationRow(const QPoint& position) const {
    if (rowCount() == 0)
        return std::nullopt;
    const int y = rowsView_->mapFrom(tableView_->viewport(), position).y();
    return std::clamp(y / LayerCell::rowHeight, 0, rowCount() - 1);
}

bool LayersPanelView::moveRow(int from, int to) {
    if (from == to || from < 0 || to < 0 || from >= rowCount() || to >= rowCount())
        return false;
    if (onMoveRow)
        onMoveRow(from, to);
    reloadData();
    return true;
}

std::optional<int> LayersPanelView::selectedRow() const {
    for (int row = 0; row < rowCount(); ++row)
        if (cells_[static_cast<size_t>(row)]->isLayerSelected())
            return row;
    return std::nullopt;
}

void LayersPanelView::startDrag(int row) {
    LayerCell* cell = cellForRow(row);
    if (!cell)
        return;
    auto* drag = new QDrag(this);
    drag->setMimeData(mimeDataForRow(row));
    const QPixmap picture = cell->grab(cell->cardRect());
    drag->setPixmap(picture);
    drag->setHotSpot(cell->mapFromGlobal(QCursor::pos()) - cell->cardRect().topLeft());
    drag->exec(Qt::MoveAction, Qt::MoveAction);
    dropIndicator_->hide();
}

void LayersPanelView::showDropIndicator(std::optional<int> source, std::optional<int> destination) {
    if (!source || !destination || *source == *destination) {
        dropIndicator_->hide();
        return;
    }
    // The row takes the destination's place: above it when moving up, below it when moving down.
    const int edge = *destination < *source ? *destination * LayerCell::rowHeight
                                            : (*destination + 1) * LayerCell::rowHeight;
    dropIndicator_->setGeometry(16, std::max(0, edge - 2), std::max(0, rowsView_->width() - 32), 3);
    dropIndicator_->show();
    dropIndicator_->raise();
}

bool LayersPanelView::handleDragEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto* move = static_cast<QDragMoveEvent*>(event);
        const std::optional<int> source = sourceRow(move->mimeData());
        if (!source) {
            move->ignore();
            return true;
        }
        move->setDropAction(Qt::MoveAction);
        move->accept();
        showDropIndicator(source, destinationRow(move->position().toPoint()));
        return true;
    }
    case QEvent::DragLeave:
        dropIndicator_->hide();
        return true;
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        dropIndicator_->hide();
        const std::optional<int> source = sourceRow(drop->mimeData());
        if (!source) {
            drop->ignore();
            return true;
        }
        const int destination = destinationRow(drop->position().toPoint()).value_or(rowCount() - 1);
        moveRow(*source, destination);
        drop->setDropAction(Qt::MoveAction);
        drop->accept();
        return true;
    }
    default:
        return false;
    }
}

bool LayersPanelView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parent() && event->type() == QEvent::Resize) {
        setGeometry(parentWidget()->rect());
    } else if (watched == tableView_->viewport()) {
        if (event->type() == QEvent::Resize)
            layoutRows();
        else if (handleDragEvent(event))
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

void LayersPanelView::resizeEvent(QResizeEvent*) {
    // A closed card stays past the edge whatever the new width.
    if (!open_ && trailing_ > 0.0)
        trailing_ = closedOffset();
    layoutCard();
}

void LayersPanelView::keyPressEvent(QKeyEvent* event) {
    const bool up = event->key() == Qt::Key_Up;
    const bool down = event->key() == Qt::Key_Down;
    if (event->key() == Qt::Key_Escape) {
        dismiss(true);
        return;
    }
    if (!up && !down) {
        QWidget::keyPressEvent(event);
        return;
    }
    const std::optional<int> selected = selectedRow();
    if (event->modifiers() & Qt::ControlModifier) {
        if (selected)
            moveRow(*selected, *selected + (up ? -1 : 1));
    } else if (rowCount() > 0) {
        const int row = selected ? std::clamp(*selected + (up ? -1 : 1), 0, rowCount() - 1) : 0;
        if (!selected || row != *selected) {
            if (onSelectRow)
                onSelectRow(row);
            reloadData();
        }
    }
    if (const std::optional<int> now = selectedRow())
        tableView_->ensureWidgetVisible(cellForRow(*now), 0, 0);
}
