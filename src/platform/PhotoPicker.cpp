#include "platform/PhotoPicker.h"

#include "platform/Dispatch.h"
#include "platform/HeifDecoder.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QStandardPaths>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace {

// Thumbnails are decoded at about twice a cell's edge so they stay sharp on dense screens.
constexpr int kThumbnailPixels = 256;
constexpr int kMinimumColumns = 3;
constexpr int kPreferredCellEdge = 120;
constexpr int kCellSpacing = 2;
// A folder of tens of thousands of files would make a grid nobody scrolls; the newest are what people pick.
constexpr int kMaximumShownFiles = 1000;

PhotoPicker::TestSource& testSource() {
    static PhotoPicker::TestSource source;
    return source;
}

std::optional<PickerConfiguration>& lastPickerConfiguration() {
    static std::optional<PickerConfiguration> configuration;
    return configuration;
}

QStringList namePatterns(bool imagesOnly) {
    QStringList patterns;
    for (const QByteArray& format : QImageReader::supportedImageFormats()) {
        // Drawings are not photos: a vector picture has no pixel size of its own to edit.
        if (format.startsWith("svg"))
            continue;
        patterns << QStringLiteral("*.") + QString::fromLatin1(format);
    }
    // Decoded by libheif, not by a Qt plug-in.
    for (const QString& suffix : HeifDecoder::suffixes())
        if (!patterns.contains(QStringLiteral("*.") + suffix))
            patterns << QStringLiteral("*.") + suffix;
    if (!imagesOnly)
        patterns << QStringLiteral("*.mp4") << QStringLiteral("*.mov") << QStringLiteral("*.m4v");
    return patterns;
}

QStringList listLibrary(bool imagesOnly) {
    const QStringList patterns = namePatterns(imagesOnly);
    QSet<QString> seen;
    QFileInfoList found;
    for (const QString& folder : PhotoPicker::libraryFolders()) {
        const QFileInfoList entries = QDir(folder).entryInfoList(patterns, QDir::Files | QDir::Readable);
        for (const QFileInfo& info : entries) {
            // The album usually sits inside Pictures; a linked file must not show twice.
            const QString key = info.canonicalFilePath();
            if (seen.contains(key))
                continue;
            seen.insert(key);
            found << info;
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const QFileInfo& a, const QFileInfo& b) {
        const QDateTime ta = a.lastModified(), tb = b.lastModified();
        return ta != tb ? ta > tb : a.fileName() < b.fileName();
    });
    QStringList paths;
    for (int i = 0; i < found.size() && i < kMaximumShownFiles; ++i)
        paths << found[i].absoluteFilePath();
    return paths;
}

// Worker side: a small upright copy that fills a square cell, never the full picture.
QImage makeThumbnail(const QString& path) {
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid()) {
        if (static_cast<qint64>(size.width()) * size.height() > Image::maxPixelCount)
            return {};
        const double k = double(kThumbnailPixels) / std::max(1, std::min(size.width(), size.height()));
        if (k < 1.0) {
            reader.setScaledSize(QSize(std::max(1, int(std::lround(size.width() * k))),
                                       std::max(1, int(std::lround(size.height() * k)))));
        }
    }
    return reader.read();
}

QString photosText(int count) {
    return count == 1 ? QStringLiteral("1 photo") : QStringLiteral("%1 photos").arg(count);
}

} // namespace

// One square of the grid: the thumbnail (a grey placeholder until it is made), a pressed look, and a
// numbered badge for its place in the selection.
class PhotoPicker::Cell : public QAbstractButton {
public:
    Cell(QString path, QWidget* parent) : QAbstractButton(parent), path_(std::move(path)) {
        setFocusPolicy(Qt::NoFocus);
        setCursor(Qt::PointingHandCursor);
        setToolTip(QFileInfo(path_).fileName());
        setAccessibleName(QFileInfo(path_).fileName());
    }

    const QString& path() const { return path_; }
    bool thumbnailReady() const { return ready_; }

    void setThumbnail(const QImage& thumbnail) {
        thumbnail_ = thumbnail;
        ready_ = true;
        update();
    }
    void setBadge(int number, bool dimmed) {
        if (number == badge_ && dimmed == dimmed_)
            return;
        badge_ = number;
        dimmed_ = dimmed;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        const QRectF bounds = rect();
        p.fillRect(bounds, QColor(0xe5, 0xe5, 0xea));
        if (!thumbnail_.isNull()) {
            const QSizeF size = thumbnail_.size();
            const double s = std::max(bounds.width() / size.width(), bounds.height() / size.height());
            QRectF target(QPointF(), size * s);
            target.moveCenter(bounds.center());
            p.save();
            p.setClipRect(bounds);
            p.drawImage(target, thumbnail_);
            p.restore();
        } else if (ready_) {
            p.setPen(QColor(0x8e, 0x8e, 0x93));
            p.drawText(bounds, Qt::AlignCenter | Qt::TextWordWrap, QStringLiteral("No preview"));
        }
        if (isDown())
            p.fillRect(bounds, QColor(0, 0, 0, 70));
        if (dimmed_)
            p.fillRect(bounds, QColor(255, 255, 255, 140));
        if (badge_ > 0)
            p.fillRect(bounds, QColor(255, 255, 255, 40));

        const double d = 22;
        const QRectF circle(bounds.right() - d - 5, bounds.top() + 5, d, d);
        if (badge_ > 0) {
            p.setPen(QPen(Qt::white, 1.5));
            p.setBrush(QColor(0x0a, 0x84, 0xff));
            p.drawEllipse(circle);
            QFont font = p.font();
            font.setBold(true);
            font.setPixelSize(12);
            p.setFont(font);
            p.drawText(circle, Qt::AlignCenter, QString::number(badge_));
        } else if (!dimmed_) {
            p.setPen(QPen(QColor(255, 255, 255, 230), 1.5));
            p.setBrush(QColor(0, 0, 0, 40));
            p.drawEllipse(circle);
        }
    }

private:
    QString path_;
    QImage thumbnail_;
    bool ready_ = false;
    int badge_ = 0;
    bool dimmed_ = false;
};

PhotoPicker::PhotoPicker(PickerConfiguration configuration, QWidget* parent)
    : ViewController(parent), configuration_(configuration) {
    setObjectName(QStringLiteral("photoPicker"));
    setModalPresentationStyle(ModalPresentationStyle::pageSheet);
    setFocusPolicy(Qt::StrongFocus);
}

PhotoPicker::~PhotoPicker() = default;

QStringList PhotoPicker::libraryFolders() {
    QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    if (pictures.isEmpty())
        pictures = QDir::home().filePath(QStringLiteral("Pictures"));
    QString album = qEnvironmentVariable("LUMIVEX_PHOTO_LIBRARY");
    if (album.isEmpty())
        album = QDir(pictures).filePath(QStringLiteral("Lumivex"));
    return {album, pictures};
}

void PhotoPicker::setTestSource(TestSource source) {
    testSource() = std::move(source);
}

std::optional<PickerConfiguration> PhotoPicker::lastConfiguration() {
    return lastPickerConfiguration();
}

void PhotoPicker::present(ViewController* presenter, const PickerConfiguration& configuration,
                          Completion completion) {
    lastPickerConfiguration() = configuration;
    if (testSource() || !presenter) {
        std::vector<PickerResult> results;
        if (testSource()) {
            if (const std::optional<QStringList> files = testSource()(configuration)) {
                for (const QString& file : *files) {
                    if (configuration.selectionLimit > 0 &&
                        static_cast<int>(results.size()) >= configuration.selectionLimit)
                        break;
                    results.push_back({ItemProvider::forFile(file)});
                }
            }
        }
        // Never inline: a real picker answers only after its dismissal, on a later turn of the loop.
        Dispatch::main().async([completion, results = std::move(results)]() {
            if (completion)
                completion(results);
        });
        return;
    }
    auto* picker = new PhotoPicker(configuration);
    QPointer<PhotoPicker> guard(picker);
    picker->setFinishHandler([guard, completion](std::vector<PickerResult> results) {
        auto deliver = [completion, results = std::move(results)]() {
            Dispatch::main().async([completion, results]() {
                if (completion)
                    completion(results);
            });
        };
        if (guard && guard->presentingViewController())
            guard->dismiss(true, deliver);
        else
            deliver();
    });
    presenter->present(picker, true);
}

void PhotoPicker::viewDidLoad() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 0);
    layout->setSpacing(0);

    auto* header = new QHBoxLayout;
    header->setContentsMargins(12, 6, 12, 6);
    cancelButton_ = new QPushButton(QStringLiteral("Cancel"), this);
    addButton_ = new QPushButton(
        configuration_.selectionLimit == 1 ? QStringLiteral("Done") : QStringLiteral("Add"), this);
    titleLabel_ = new QLabel(this);
    titleLabel_->setAlignment(Qt::AlignCenter);
    QFont titleFont = titleLabel_->font();
    titleFont.setBold(true);
    titleFont.setPixelSize(17);
    titleLabel_->setFont(titleFont);
    for (QPushButton* button : {cancelButton_, addButton_}) {
        button->setFlat(true);
        button->setFocusPolicy(Qt::NoFocus);
        button->setCursor(Qt::PointingHandCursor);
    }
    addButton_->setObjectName(QStringLiteral("pickerAdd"));
    cancelButton_->setObjectName(QStringLiteral("pickerCancel"));
    header->addWidget(cancelButton_);
    header->addWidget(titleLabel_, 1);
    header->addWidget(addButton_);
    layout->addLayout(header);

    scrollArea_ = new QScrollArea(this);
    scrollArea_->setFrameShape(QFrame::NoFrame);
    scrollArea_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scrollArea_->setWidgetResizable(false);
    grid_ = new QWidget;
    scrollArea_->setWidget(grid_);
    scrollArea_->viewport()->installEventFilter(this);
    layout->addWidget(scrollArea_, 1);

    emptyLabel_ = new QLabel(QStringLiteral("No photos in the album or the Pictures folder.\n"
                                            "Use Browse… to pick files from anywhere."),
                             scrollArea_->viewport());
    emptyLabel_->setAlignment(Qt::AlignCenter);
    emptyLabel_->setWordWrap(true);

    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(12, 8, 12, 12);
    hintLabel_ = new QLabel(this);
    hintLabel_->setObjectName(QStringLiteral("pickerHint"));
    hintLabel_->setStyleSheet(QStringLiteral("color: #8e8e93;"));
    hintLabel_->setWordWrap(true);
    hintLabel_->hide();
    browseButton_ = new QPushButton(QStringLiteral("Browse…"), this);
    browseButton_->setFocusPolicy(Qt::NoFocus);
    browseButton_->setCursor(Qt::PointingHandCursor);
    footer->addWidget(hintLabel_, 1);
    footer->addWidget(browseButton_);
    layout->addLayout(footer);

    setStyleSheet(
        QStringLiteral("QPushButton { color: #0a84ff; font-size: 16px; border: none; padding: 6px; }"
                       "QPushButton:disabled { color: #aeaeb2; }"
                       "QPushButton:pressed { color: #5ea8ff; }"
                       "QLabel { color: #1c1c1e; }"
                       "QScrollArea, QScrollArea > QWidget > QWidget { background: #f2f2f7; }"));

    connect(cancelButton_, &QPushButton::clicked, this, &PhotoPicker::cancel);
    connect(addButton_, &QPushButton::clicked, this, &PhotoPicker::confirm);
    connect(browseButton_, &QPushButton::clicked, this, &PhotoPicker::browse);

    for (const QString& path : listLibrary(configuration_.imagesOnly))
        addCell(path, false);
    refreshSelectionState();
}

void PhotoPicker::addCell(const QString& path, bool atFront) {
    auto* cell = new Cell(path, grid_);
    connect(cell, &QAbstractButton::clicked, this, [this, path]() { toggleSelection(path); });
    if (atFront)
        cells_.prepend(cell);
    else
        cells_.append(cell);
    cell->show();
    requestThumbnail(cell);
    relayoutGrid();
}

void PhotoPicker::requestThumbnail(Cell* cell) {
    QPointer<QAbstractButton> guard(cell);
    const QString path = cell->path();
    Dispatch::global(QualityOfService::utility).async([guard, path]() {
        QImage thumbnail = makeThumbnail(path);
        Dispatch::main().async([guard, thumbnail]() {
            if (guard)
                static_cast<Cell*>(guard.data())->setThumbnail(thumbnail);
        });
    });
}

void PhotoPicker::relayoutGrid() {
    if (!scrollArea_)
        return;
    const int width = scrollArea_->viewport()->width();
    const int columns = std::max(kMinimumColumns, width / kPreferredCellEdge);
    const int edge = std::max(1, (width - (columns - 1) * kCellSpacing) / columns);
    const int count = static_cast<int>(cells_.size());
    const int rows = (count + columns - 1) / columns;
    for (int i = 0; i < count; ++i) {
        const int row = i / columns, column = i % columns;
        cells_[i]->setGeometry(column * (edge + kCellSpacing), row * (edge + kCellSpacing), edge, edge);
    }
    grid_->resize(width, std::max(0, rows * (edge + kCellSpacing) - kCellSpacing));
    emptyLabel_->setGeometry(scrollArea_->viewport()->rect().adjusted(24, 0, -24, 0));
    emptyLabel_->setVisible(cells_.isEmpty());
}

bool PhotoPicker::eventFilter(QObject* watched, QEvent* event) {
    if (scrollArea_ && watched == scrollArea_->viewport() && event->type() == QEvent::Resize)
        relayoutGrid();
    return ViewController::eventFilter(watched, event);
}

QStringList PhotoPicker::shownFiles() const {
    QStringList paths;
    for (const Cell* cell : cells_)
        paths << cell->path();
    return paths;
}

QAbstractButton* PhotoPicker::cellForFile(const QString& path) const {
    const QString wanted = QFileInfo(path).absoluteFilePath();
    for (Cell* cell : cells_) {
        if (cell->path() == wanted)
            return cell;
    }
    return nullptr;
}

bool PhotoPicker::isThumbnailReady(const QString& path) const {
    const QString wanted = QFileInfo(path).absoluteFilePath();
    for (const Cell* cell : cells_) {
        if (cell->path() == wanted)
            return cell->thumbnailReady();
    }
    return false;
}

bool PhotoPicker::toggleSelection(const QString& path) {
    if (finished_)
        return false;
    const QString file = QFileInfo(path).absoluteFilePath();
    const int limit = configuration_.selectionLimit;
    if (selection_.removeOne(file)) {
        hintLabel_->hide();
        refreshSelectionState();
        return true;
    }
    if (limit > 0 && selection_.size() >= limit) {
        hintLabel_->setText(QStringLiteral("You can select up to %1.").arg(photosText(limit)));
        hintLabel_->show();
        return false;
    }
    selection_.append(file);
    refreshSelectionState();
    // With room for one photo there is nothing to confirm: the tap is the choice.
    if (limit == 1)
        confirm();
    return true;
}

void PhotoPicker::addBrowsedFiles(const QStringList& paths) {
    if (finished_ || paths.isEmpty())
        return;
    QStringList files;
    for (const QString& path : paths) {
        const QString file = QFileInfo(path).absoluteFilePath();
        if (!files.contains(file))
            files << file;
    }
    for (auto it = files.crbegin(); it != files.crend(); ++it) {
        if (!cellForFile(*it))
            addCell(*it, true);
    }
    scrollArea_->verticalScrollBar()->setValue(0);
    for (const QString& file : files) {
        if (finished_ || selection_.contains(file))
            continue;
        toggleSelection(file);
    }
}

void PhotoPicker::refreshSelectionState() {
    const int limit = configuration_.selectionLimit;
    const bool full = limit > 0 && selection_.size() >= limit;
    for (Cell* cell : cells_) {
        const int number = static_cast<int>(selection_.indexOf(cell->path())) + 1;
        cell->setBadge(number, full && number == 0);
    }
    const int count = static_cast<int>(selection_.size());
    if (count == 0)
        titleLabel_->setText(limit == 1  ? QStringLiteral("Choose a photo")
                             : limit > 0 ? QStringLiteral("Choose up to %1").arg(photosText(limit))
                                         : QStringLiteral("Photos"));
    else if (limit > 0)
        titleLabel_->setText(QStringLiteral("%1 of %2 Selected").arg(count).arg(limit));
    else
        titleLabel_->setText(QStringLiteral("%1 Selected").arg(count));
    addButton_->setEnabled(count > 0);
}

void PhotoPicker::confirm() {
    if (selection_.isEmpty())
        return;
    finish(true);
}

void PhotoPicker::cancel() {
    finish(false);
}

void PhotoPicker::finish(bool confirmed) {
    if (finished_)
        return;
    finished_ = true;
    std::vector<PickerResult> results;
    if (confirmed) {
        for (const QString& file : selection_)
            results.push_back({ItemProvider::forFile(file)});
    }
    if (finishHandler_)
        finishHandler_(std::move(results));
}

void PhotoPicker::browse() {
    QString start = QDir::homePath();
    for (const QString& folder : libraryFolders()) {
        if (QFileInfo(folder).isDir()) {
            start = folder;
            break;
        }
    }
    const QString filter = QStringLiteral("%1 (%2)").arg(
        configuration_.imagesOnly ? QStringLiteral("Images") : QStringLiteral("Media"),
        namePatterns(configuration_.imagesOnly).join(QLatin1Char(' ')));
    QPointer<PhotoPicker> self(this);
    const QStringList files =
        QFileDialog::getOpenFileNames(this, QStringLiteral("Choose Photos"), start, filter);
    if (self)
        self->addBrowsedFiles(files);
}

void PhotoPicker::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        cancel();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        confirm();
        return;
    default:
        ViewController::keyPressEvent(event);
    }
}

void PhotoPicker::paintEvent(QPaintEvent*) {
    // A sheet with rounded top corners; what lies behind shows in the corners.
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath sheet;
    const QRectF r = rect();
    sheet.addRoundedRect(r.adjusted(0, 0, 0, 12), 12, 12);
    p.fillPath(sheet, QColor(0xf2, 0xf2, 0xf7));
}
