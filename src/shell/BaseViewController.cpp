#include "shell/BaseViewController.h"

#include "platform/Alert.h"
#include "platform/Dispatch.h"
#include "platform/ItemProvider.h"
#include "platform/Log.h"
#include "shell/CameraViewController.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeDatabase>
#include <QPointer>
#include <QSaveFile>
#include <QStandardPaths>
#include <memory>

namespace {

// The items of one answer, gathered as their loads finish. Only the main thread touches `items`.
struct PickedList {
    std::vector<MediaItem> items;
    DispatchGroup group;
};

// By name only: sniffing the first bytes could block the main thread on a pipe or a slow mount.
bool isMovie(const QString& path) {
    return QMimeDatabase()
        .mimeTypeForFile(path, QMimeDatabase::MatchExtension)
        .name()
        .startsWith(QLatin1String("video/"));
}

std::string utf8(const QString& text) {
    return text.toStdString();
}

// Hands the file behind a provider to `handler` on a worker, or the reason it cannot be read. The path
// is only promised for the handler's run, which is why movies are copied there and then.
void loadFileRepresentation(const std::shared_ptr<ItemProvider>& provider,
                            std::function<void(std::optional<QString> url, QString error)> handler) {
    Dispatch::global(QualityOfService::userInitiated).async([provider, handler = std::move(handler)]() {
        const QFileInfo info(provider->filePath());
        if (!info.exists())
            handler(std::nullopt,
                    QStringLiteral("The file “%1” couldn’t be opened because there is no such file.")
                        .arg(info.fileName()));
        else if (!info.isReadable())
            handler(std::nullopt,
                    QStringLiteral(
                        "The file “%1” couldn’t be opened because you don’t have permission to view it.")
                        .arg(info.fileName()));
        else
            handler(info.absoluteFilePath(), {});
    });
}

// Copies by reading until the end rather than trusting the size a file claims, so a pipe or a file
// still being written comes over whole; the target is replaced in one rename, so two copies of one
// name racing each other leave one whole file, that of the copy that finished last.
bool copyWhole(const QString& source, const QString& target, QString* error) {
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *error = in.errorString();
        return false;
    }
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly)) {
        *error = out.errorString();
        return false;
    }
    QByteArray block(1 << 16, Qt::Uninitialized);
    for (;;) {
        const qint64 count = in.read(block.data(), block.size());
        if (count < 0) {
            *error = in.errorString();
            return false;
        }
        if (count == 0)
            break;
        if (out.write(block.constData(), count) != count) {
            *error = out.errorString();
            return false;
        }
    }
    if (!out.commit()) {
        *error = out.errorString();
        return false;
    }
    return true;
}

// On a worker: copies a movie into the temporary folder under its own name, replacing whatever an
// earlier pick left there, and adds it on the main queue. Two movies of the same name thus end up as
// one file, that of the copy that finished last.
void copyMovieInto(const QString& source, const std::shared_ptr<PickedList>& list) {
    const QString target = QDir(QDir::tempPath()).filePath(QFileInfo(source).fileName());
    const QFileInfo existing(target);
    QString error;
    if (existing.exists() || existing.isSymLink()) {
        QFile old(target);
        if (!old.remove())
            error = old.errorString();
    }
    if (error.isEmpty())
        copyWhole(source, target, &error);
    if (!error.isEmpty()) {
        printLine(utf8(QStringLiteral("Failed to copy video: ") + error));
        list->group.leave();
        return;
    }
    Dispatch::main().async([list, target]() {
        list->items.push_back({target, MediaType::video, nullptr});
        list->group.leave();
    });
}

void loadImageInto(const std::shared_ptr<ItemProvider>& provider, const std::shared_ptr<PickedList>& list) {
    const QString path = provider->filePath();
    provider->loadImage([list, path](ImagePtr image, QString /*error*/) {
        Dispatch::main().async([list, path, image = std::move(image)]() {
            // A picture that does not decode is left out rather than handed on without pixels.
            if (image)
                list->items.push_back({path, MediaType::image, image});
            list->group.leave();
        });
    });
}

QStringList imageNamePatterns() {
    QStringList patterns;
    for (const QByteArray& format : QImageReader::supportedImageFormats()) {
        if (!format.startsWith("svg"))
            patterns << QStringLiteral("*.") + QString::fromLatin1(format);
    }
    return patterns;
}

} // namespace

BaseViewController::BaseViewController(QWidget* parent) : ViewController(parent) {}

BaseViewController::~BaseViewController() = default;

void BaseViewController::openCamera() {
    const std::optional<QCameraDevice> device = CameraViewController::preferredDevice();
    if (!device)
        return;
    auto* camera = new CameraViewController(*device);
    camera->setModalPresentationStyle(ModalPresentationStyle::fullScreen);
    QPointer<BaseViewController> self(this);
    QPointer<CameraViewController> sheet(camera);
    camera->onCapture = [self, sheet](QImage photo) {
        const ImagePtr image = Image::make(std::move(photo));
        if (sheet)
            sheet->dismiss(true, [self, image]() {
                if (self)
                    self->imagePickerDidFinishPicking({std::nullopt, image});
            });
    };
    camera->onCancel = [self, sheet]() {
        if (sheet)
            sheet->dismiss(true, [self]() {
                if (self)
                    self->imagePickerDidCancel();
            });
    };
    present(camera, true);
}

void BaseViewController::openLibrary(bool imagesOnly) {
    QPointer<BaseViewController> self(this);
    PhotoPicker::present(this, {1, imagesOnly}, [self, imagesOnly](std::vector<PickerResult> results) {
        if (self)
            self->libraryPickerDidFinish(results, imagesOnly);
    });
}

void BaseViewController::openPhotoPicker(int limit) {
    const PickerConfiguration configuration{limit, true};
    QPointer<BaseViewController> self(this);
    PhotoPicker::present(this, configuration, [self, configuration](std::vector<PickerResult> results) {
        if (self)
            self->photoPickerDidFinish(results, configuration);
    });
}

void BaseViewController::openDocumentPicker() {
    const QString start = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString filter = QStringLiteral("Images (%1)").arg(imageNamePatterns().join(QLatin1Char(' ')));
    const QString file = QFileDialog::getOpenFileName(this, QStringLiteral("Choose a Photo"), start, filter);
    if (file.isEmpty())
        documentPickerWasCancelled();
    else
        documentPickerDidPickDocuments({file});
}

void BaseViewController::libraryPickerDidFinish(const std::vector<PickerResult>& results, bool imagesOnly) {
    const std::shared_ptr<ItemProvider> provider = results.empty() ? nullptr : results.front().itemProvider;
    if (!provider) {
        imagePickerDidCancel();
        return;
    }
    const QString path = provider->filePath();
    // The library shows only the kind asked for; a file of the other kind, found through Browse…, is
    // refused as if nothing had been picked, since the delegate is not ready for it.
    if (isMovie(path) == imagesOnly) {
        imagePickerDidCancel();
        return;
    }
    if (!imagesOnly) {
        imagePickerDidFinishPicking({path, nullptr});
        return;
    }
    QPointer<BaseViewController> self(this);
    provider->loadImage([self](ImagePtr image, QString /*error*/) {
        Dispatch::main().async([self, image = std::move(image)]() {
            if (!self)
                return;
            if (image)
                self->imagePickerDidFinishPicking({std::nullopt, image});
            else
                self->imagePickerDidCancel();
        });
    });
}

void BaseViewController::imagePickerDidFinishPicking(const ImagePickerInfo& info) {
    // Asked afresh before each call: the first answer may have closed the delegate's screen.
    if (info.mediaURL) {
        if (ImageVideoMediaPickerDelegate* delegate = imageVideoPickerDelegate.get())
            delegate->pickedVideo(*info.mediaURL);
    }
    if (info.originalImage) {
        if (ImageVideoMediaPickerDelegate* delegate = imageVideoPickerDelegate.get())
            delegate->pickedImage(info.originalImage);
    }
}

void BaseViewController::imagePickerDidCancel() {
    if (ImageVideoMediaPickerDelegate* delegate = imageVideoPickerDelegate.get())
        delegate->pickCancelled();
}

void BaseViewController::photoPickerDidFinish(const std::vector<PickerResult>& results,
                                              const PickerConfiguration& configuration) {
    if (results.empty()) {
        PhotosMediaPickerDelegate* delegate = photoMediaPickerDelegate.get();
        if (!delegate)
            return;
        const WeakDelegate<PhotosMediaPickerDelegate> weak(delegate);
        auto cancelled = [weak]() {
            if (PhotosMediaPickerDelegate* target = weak.get())
                target->pickedMediaCancelled();
        };
        // The delegate's own screen closes whatever it still shows over itself before it hears of it.
        auto* controller = dynamic_cast<ViewController*>(delegate);
        if (controller && controller->presentedViewController())
            controller->dismiss(true, cancelled);
        else
            cancelled();
        return;
    }
    auto list = std::make_shared<PickedList>();
    for (const PickerResult& result : results) {
        list->group.enter();
        const std::shared_ptr<ItemProvider>& provider = result.itemProvider;
        if (provider && provider->canLoadImage()) {
            loadImageInto(provider, list);
        } else if (provider && isMovie(provider->filePath())) {
            loadFileRepresentation(provider, [list](std::optional<QString> url, QString error) {
                if (!error.isEmpty()) {
                    printLine(utf8(QStringLiteral("Error loading video: ") + error));
                    list->group.leave();
                } else if (!url) {
                    list->group.leave();
                } else {
                    copyMovieInto(*url, list);
                }
            });
        } else {
            list->group.leave();
        }
    }
    QPointer<BaseViewController> self(this);
    list->group.notify(Dispatch::main(), [self, list, configuration]() {
        if (!self)
            return;
        if (PhotosMediaPickerDelegate* delegate = self->photoMediaPickerDelegate.get())
            delegate->pickedMedia(list->items, configuration);
    });
}

void BaseViewController::documentPickerDidPickDocuments(const QStringList& paths) {
    auto list = std::make_shared<PickedList>();
    for (const QString& path : paths) {
        list->group.enter();
        // Files on the desktop need no security scope to be read.
        const auto provider = ItemProvider::forFile(path);
        if (provider->canLoadImage())
            loadImageInto(provider, list);
        else if (isMovie(path))
            Dispatch::global(QualityOfService::userInitiated).async([path, list]() {
                copyMovieInto(path, list);
            });
        else
            list->group.leave();
    }
    QPointer<BaseViewController> self(this);
    list->group.notify(Dispatch::main(), [self, list]() {
        if (!self)
            return;
        if (FileMediaPickerDelegate* delegate = self->fileMediaPickerDelegate.get())
            delegate->pickedFiles(list->items);
    });
}

void BaseViewController::imagePlaygroundDidCreateImageAt(const QString& path) {
    auto showAlert = [this](const QString& title, const QString& message) {
        auto* alert = new Alert(title, message);
        alert->addAction({QStringLiteral("OK"), AlertActionStyle::defaultStyle, {}});
        present(alert, true);
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        showAlert(QStringLiteral("Error!"), QStringLiteral("Error loading image data from URL"));
        return;
    }
    const ImagePtr image = Image::fromData(file.readAll());
    if (!image) {
        showAlert(QStringLiteral("Error"), QStringLiteral("Failed to convert image data to UIImage."));
        return;
    }
    // The generator's sheet, taken before the delegate may present something of its own.
    const QPointer<ViewController> sheet = presentedViewController();
    if (ImagePlayGroundPostProcessingDelegate* delegate = playgroundProcessDelegate.get())
        delegate->playgroundImageReady(image);
    if (sheet)
        sheet->dismiss(true);
}

void BaseViewController::imagePlaygroundDidCancel() {
    auto* controller = dynamic_cast<ViewController*>(playgroundProcessDelegate.get());
    if (controller && controller->presentedViewController())
        controller->dismiss(true);
}
