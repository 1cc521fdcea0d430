#include "platform/Assets.h"

#include <QPixmap>

#include "platform/Log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QPainter>
#include <QStandardPaths>
#include <QSvgRenderer>
#include <array>
#include <mutex>

namespace {

const std::array<QString, 5> imageExtensions{QStringLiteral("png"), QStringLiteral("jpg"),
                                             QStringLiteral("jpeg"), QStringLiteral("webp"),
                                             QStringLiteral("svg")};

struct State {
    std::mutex mutex;
    std::optional<QStringList> paths; // empty until first use, so the environment is read late
    QHash<QString, ImagePtr> cache;
    // Bumped whenever the folders or the cache change, so a lookup that raced with the change does not
    // store a stale result.
    quint64 generation = 0;
};

State& state() {
    static State s;
    return s;
}

const QStringList& currentPaths(State& s) {
    if (!s.paths)
        s.paths = Assets::defaultSearchPaths();
    return *s.paths;
}

// "star@2x" → 2; anything else → 1.
double scaleFromBaseName(const QString& baseName) {
    if (baseName.endsWith(QLatin1String("@3x")))
        return 3.0;
    if (baseName.endsWith(QLatin1String("@2x")))
        return 2.0;
    return 1.0;
}

ImagePtr renderSvg(const QString& path, double scale) {
    QSvgRenderer renderer(path);
    const QSize size = renderer.defaultSize();
    if (!renderer.isValid() || size.isEmpty())
        return nullptr;
    QImage bitmap(size, QImage::Format_ARGB32_Premultiplied);
    if (bitmap.isNull())
        return nullptr;
    bitmap.fill(Qt::transparent);
    QPainter painter(&bitmap);
    renderer.render(&painter);
    painter.end();
    return Image::make(std::move(bitmap), scale);
}

ImagePtr loadFile(const QString& path) {
    const QFileInfo info(path);
    const double scale = scaleFromBaseName(info.completeBaseName());
    if (info.suffix().compare(QLatin1String("svg"), Qt::CaseInsensitive) == 0) {
        ImagePtr image = renderSvg(path, scale);
        if (!image)
            printLine(QStringLiteral("Cannot render artwork %1").arg(path).toStdString());
        return image;
    }
    QString error;
    ImagePtr image = Image::fromFile(path, scale, &error);
    if (!image)
        printLine(QStringLiteral("Cannot read artwork %1: %2").arg(path, error).toStdString());
    return image;
}

QStringList candidateFileNames(const QString& name) {
    QStringList names;
    const QString suffix = QFileInfo(name).suffix().toLower();
    if (std::find(imageExtensions.begin(), imageExtensions.end(), suffix) != imageExtensions.end())
        names << name;
    // Highest resolution first: it stays sharp on dense screens and the size in points is the same.
    for (const char* density : {"@3x", "@2x", ""})
        for (const QString& ext : imageExtensions)
            names << name + QLatin1String(density) + QLatin1Char('.') + ext;
    return names;
}

ImagePtr load(const QStringList& paths, const QString& name) {
    const QStringList fileNames = candidateFileNames(name);
    for (const QString& folder : paths) {
        const QDir dir(folder);
        if (folder.isEmpty() || !dir.exists())
            continue;
        for (const QString& fileName : fileNames) {
            const QString path = dir.filePath(fileName);
            if (!QFileInfo(path).isFile())
                continue;
            // A broken file is reported and skipped, so a bad override falls back to the bundled one.
            if (ImagePtr image = loadFile(path))
                return image;
        }
    }
    return nullptr;
}

} // namespace

namespace Assets {

ImagePtr image(const QString& name) {
    if (name.isEmpty())
        return nullptr;
    State& s = state();
    QStringList paths;
    quint64 generation;
    {
        std::lock_guard lock(s.mutex);
        const auto it = s.cache.constFind(name);
        if (it != s.cache.constEnd())
            return *it;
        paths = currentPaths(s);
        generation = s.generation;
    }
    // Decode outside the lock so lookups of other names on other threads are not held up.
    ImagePtr loaded = load(paths, name);
    std::lock_guard lock(s.mutex);
    if (generation != s.generation)
        return loaded;
    // Another thread may have loaded the same name meanwhile; keep one image per name.
    const auto it = s.cache.constFind(name);
    if (it != s.cache.constEnd())
        return *it;
    s.cache.insert(name, loaded);
    return loaded;
}

std::optional<QString> resourceURL(const QString& name, const QString& ext) {
    if (name.isEmpty())
        return std::nullopt;
    QString fileName = name;
    if (!ext.isEmpty())
        fileName += ext.startsWith(QLatin1Char('.')) ? ext : QLatin1Char('.') + ext;
    const QStringList paths = searchPaths();
    for (const QString& folder : paths) {
        if (folder.isEmpty())
            continue;
        const QFileInfo info(QDir(folder).filePath(fileName));
        if (info.isFile())
            return info.absoluteFilePath();
    }
    return std::nullopt;
}

QStringList defaultSearchPaths() {
    QStringList paths;
    const QString userFolder = qEnvironmentVariable("LUMIVEX_ASSETS_DIR");
    if (!userFolder.isEmpty()) {
        paths << userFolder;
    } else {
        const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        if (!data.isEmpty())
            paths << data + QLatin1String("/lumivex/assets");
    }
    paths << QStringLiteral(LUMIVEX_BUILD_ASSETS_DIR);
    paths << QStringLiteral(LUMIVEX_SHARE_DIR "/assets");
    if (QCoreApplication::instance())
        paths << QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                 QLatin1String("/../share/lumivex/assets"));
    paths.removeDuplicates();
    return paths;
}

QStringList searchPaths() {
    State& s = state();
    std::lock_guard lock(s.mutex);
    return currentPaths(s);
}

void setSearchPaths(const QStringList& paths) {
    State& s = state();
    std::lock_guard lock(s.mutex);
    s.paths = paths;
    s.cache.clear();
    ++s.generation;
}

void resetSearchPaths() {
    State& s = state();
    std::lock_guard lock(s.mutex);
    s.paths.reset();
    s.cache.clear();
    ++s.generation;
}

void clearCache() {
    State& s = state();
    std::lock_guard lock(s.mutex);
    s.cache.clear();
    ++s.generation;
}

QIcon icon(const QString& name) {
    const ImagePtr picture = image(name);
    return picture ? QIcon(QPixmap::fromImage(picture->uprightBitmap())) : QIcon();
}

QIcon symbol(const QString& name, int side) {
    const ImagePtr picture = image(name);
    if (!picture || side <= 0)
        return {};
    const QImage bitmap = picture->uprightBitmap().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    int left = bitmap.width(), top = bitmap.height(), right = -1, bottom = -1;
    for (int y = 0; y < bitmap.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(bitmap.constScanLine(y));
        for (int x = 0; x < bitmap.width(); ++x) {
            if (qAlpha(row[x]) == 0)
                continue;
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
    }
    if (right < 0)
        return {};
    // Drawn at three pixels a point, so it stays sharp on dense screens.
    constexpr int kPixelsPerPoint = 3;
    const int canvasSide = side * kPixelsPerPoint;
    const QImage ink = bitmap.copy(QRect(QPoint(left, top), QPoint(right, bottom)));
    const QImage fitted = ink.scaled(canvasSide, canvasSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage canvas(canvasSide, canvasSide, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.drawImage((canvasSide - fitted.width()) / 2, (canvasSide - fitted.height()) / 2, fitted);
    painter.end();
    canvas.setDevicePixelRatio(kPixelsPerPoint);
    return QIcon(QPixmap::fromImage(canvas));
}

} // namespace Assets
