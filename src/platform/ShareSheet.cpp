#include "platform/ShareSheet.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QUrl>
#include <QUuid>
#include <QVBoxLayout>

namespace {
struct Record {
    int count = 0;
    ShareItem last;
};

Record& record() {
    static Record r;
    return r;
}

const QString kCopy = QStringLiteral("Copy");
const QString kOpen = QStringLiteral("Open");
const QString kShowInFolder = QStringLiteral("Show in Folder");
const QString kSaveAs = QStringLiteral("Save As…");
const QString kCancel = QStringLiteral("Cancel");
} // namespace

ShareSheet::ShareSheet(ShareItem item, QWidget* parent) : ViewController(parent), item_(std::move(item)) {
    setObjectName(QStringLiteral("shareSheet"));
    setModalPresentationStyle(ModalPresentationStyle::overCurrentContext);
    setFocusPolicy(Qt::StrongFocus);
}

ShareSheet* ShareSheet::present(ViewController* presenter, ShareItem item, bool animated) {
    if (!presenter)
        return nullptr;
    ++record().count;
    record().last = item;
    auto* sheet = new ShareSheet(std::move(item));
    // A screen that shares while it is itself being presented is raised after us; stay above it.
    presenter->installEventFilter(sheet);
    presenter->present(sheet, animated);
    return sheet;
}

int ShareSheet::presentationCount() {
    return record().count;
}

ShareItem ShareSheet::lastPresentedItem() {
    return record().last;
}

void ShareSheet::resetPresentationRecord() {
    record() = Record{};
}

ShareSheet* ShareSheet::visibleSheet(QWidget* window) {
    if (!window)
        return nullptr;
    ShareSheet* top = nullptr;
    for (auto* sheet : window->findChildren<ShareSheet*>()) {
        if (sheet->isVisible() && sheet->presentingViewController())
            top = sheet;
    }
    return top;
}

bool ShareSheet::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ZOrderChange && watched == presentingViewController() && isVisible())
        raise();
    return ViewController::eventFilter(watched, event);
}

void ShareSheet::viewDidLoad() {
    card_ = new QWidget(this);
    card_->setObjectName(QStringLiteral("shareCard"));
    card_->setAttribute(Qt::WA_StyledBackground, true);
    card_->setStyleSheet(QStringLiteral(
        "#shareCard { background: #f2f2f7; border-top-left-radius: 14px; border-top-right-radius: 14px; }"
        "QPushButton { background: white; border: none; border-radius: 10px; padding: 12px;"
        " font-size: 16px; color: #007aff; }"
        "QPushButton#cancelButton { font-weight: 600; }"
        "QLabel { color: #3c3c43; font-size: 13px; }"));
    auto* layout = new QVBoxLayout(card_);
    layout->setContentsMargins(16, 16, 16, 24);
    layout->setSpacing(8);

    const QString subject = item_.isFile() ? QFileInfo(item_.filePath).fileName() : QStringLiteral("Picture");
    auto* title = new QLabel(subject, card_);
    title->setObjectName(QStringLiteral("shareTitle"));
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);

    const std::pair<QString, std::function<void()>> actions[] = {
        {kCopy, [this] { copy(); }},
        {kOpen, [this] { open(); }},
        {kShowInFolder, [this] { showInFolder(); }},
        {kSaveAs, [this] { saveAs(); }},
    };
    for (const auto& [name, run] : actions) {
        auto* button = new QPushButton(name, card_);
        button->setCursor(Qt::PointingHandCursor);
        connect(button, &QPushButton::clicked, this, run);
        layout->addWidget(button);
    }
    layout->addSpacing(6);
    auto* cancelButton = new QPushButton(kCancel, card_);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    connect(cancelButton, &QPushButton::clicked, this, &ShareSheet::cancel);
    layout->addWidget(cancelButton);
}

void ShareSheet::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0, 0, 0, 90));
}

void ShareSheet::resizeEvent(QResizeEvent* event) {
    ViewController::resizeEvent(event);
    if (card_) {
        const int h = card_->sizeHint().height();
        card_->setGeometry(0, height() - h, width(), h);
    }
}

void ShareSheet::mousePressEvent(QMouseEvent* event) {
    // A tap outside the card is a cancel.
    if (card_ && !card_->geometry().contains(event->position().toPoint()))
        cancel();
}

void ShareSheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        cancel();
    else
        ViewController::keyPressEvent(event);
}

QPushButton* ShareSheet::buttonWithTitle(const QString& title) const {
    for (auto* button : findChildren<QPushButton*>()) {
        if (button->text() == title)
            return button;
    }
    return nullptr;
}

bool ShareSheet::finish(bool ok, const QString& error) {
    lastError_ = error;
    dismiss(true);
    return ok;
}

QString ShareSheet::materialisedPath() {
    if (item_.isFile())
        return item_.filePath;
    if (!temporaryPath_.isEmpty() || !item_.image)
        return temporaryPath_;
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    const QString path =
        QDir(dir).filePath(QStringLiteral("Lumivex-%1.png").arg(QUuid::createUuid().toString(QUuid::Id128)));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(item_.image->pngData()) > 0)
        temporaryPath_ = path;
    return temporaryPath_;
}

bool ShareSheet::copy() {
    auto* mime = new QMimeData;
    if (item_.isFile()) {
        mime->setUrls({QUrl::fromLocalFile(item_.filePath)});
        mime->setText(item_.filePath);
    } else if (item_.image) {
        mime->setImageData(item_.image->uprightBitmap());
    } else {
        delete mime;
        return finish(false, QStringLiteral("Nothing to copy."));
    }
    QApplication::clipboard()->setMimeData(mime);
    return finish(true);
}

bool ShareSheet::open() {
    const QString path = materialisedPath();
    if (path.isEmpty())
        return finish(false, QStringLiteral("Nothing to open."));
    const bool ok = QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    return finish(ok, ok ? QString() : QStringLiteral("No program could open %1.").arg(path));
}

bool ShareSheet::showInFolder() {
    const QString path = materialisedPath();
    if (path.isEmpty())
        return finish(false, QStringLiteral("Nothing to show."));
    const bool ok = QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
    return finish(ok, ok ? QString() : QStringLiteral("The folder could not be opened."));
}

bool ShareSheet::saveAs(const QString& targetPath) {
    QString target = targetPath;
    if (target.isEmpty()) {
        const QString suggested =
            item_.isFile() ? QFileInfo(item_.filePath).fileName() : QStringLiteral("Lumivex.png");
        const QString start =
            QDir(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)).filePath(suggested);
        target = QFileDialog::getSaveFileName(this, kSaveAs, start);
        if (target.isEmpty())
            return finish(false);
    }
    if (item_.isFile()) {
        if (QFileInfo(target).absoluteFilePath() == QFileInfo(item_.filePath).absoluteFilePath())
            return finish(true);
        // The dialog has asked before replacing, so an existing target goes.
        if (QFileInfo::exists(target))
            QFile::remove(target);
        QFile source(item_.filePath);
        const bool ok = source.copy(target);
        return finish(ok, ok ? QString() : source.errorString());
    }
    if (!item_.image)
        return finish(false, QStringLiteral("Nothing to save."));
    // The format follows the name the user typed; PNG when it names none Qt knows.
    const QImage pixels = item_.image->uprightBitmap();
    bool ok = pixels.save(target);
    if (!ok)
        ok = pixels.save(target, "PNG");
    return finish(ok, ok ? QString() : QStringLiteral("%1 could not be written.").arg(target));
}

void ShareSheet::cancel() {
    finish(false);
}
