#include "platform/HeifDecoder.h"

#include <algorithm>
#include <cstring>
#include <libheif/heif.h>
#include <memory>
#include <mutex>

namespace HeifDecoder {

namespace {

struct ContextDeleter {
    void operator()(heif_context* context) const { heif_context_free(context); }
};
struct HandleDeleter {
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
};
struct ImageDeleter {
    void operator()(heif_image* image) const { heif_image_release(image); }
};
struct OptionsDeleter {
    void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
};

// Codec plug-ins are found by heif_init; it is reference counted and never undone, as the program
// decodes these pictures until it exits.
void initialise() {
    static std::once_flag once;
    std::call_once(once, [] { heif_init(nullptr); });
}

// What the file calls itself, for messages: "HEIC", "AVIF" or "HEIF".
QString kindOf(const QByteArray& data) {
    const char* mime = heif_get_file_mime_type(reinterpret_cast<const uint8_t*>(data.constData()),
                                               int(std::min<qsizetype>(data.size(), 64)));
    if (mime && std::strcmp(mime, "image/avif") == 0)
        return QStringLiteral("AVIF");
    if (mime && (std::strcmp(mime, "image/heic") == 0 || std::strcmp(mime, "image/heic-sequence") == 0))
        return QStringLiteral("HEIC");
    return QStringLiteral("HEIF");
}

QString describe(const heif_error& error, const QString& kind) {
    const QString detail = QString::fromUtf8(error.message ? error.message : "");
    // A codec without a decoder here, or an item type libheif does not know (a newer codec).
    if (error.code == heif_error_Unsupported_feature)
        return QStringLiteral("this %1 picture uses a codec or feature that cannot be decoded here (%2)")
            .arg(kind, detail);
    if (error.code == heif_error_Invalid_input || error.code == heif_error_Decoder_plugin_error)
        return QStringLiteral("damaged or truncated %1 file: %2").arg(kind, detail);
    return QStringLiteral("cannot decode %1 picture: %2").arg(kind, detail);
}

struct Opened {
    std::unique_ptr<heif_context, ContextDeleter> context;
    std::unique_ptr<heif_image_handle, HandleDeleter> handle;
};

// Reads the boxes of `data`, which must outlive the result (libheif reads it in place).
std::optional<Opened> open(const QByteArray& data, QString* error) {
    auto fail = [&](const QString& reason) -> std::optional<Opened> {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    initialise();
    const QString kind = kindOf(data);
    Opened opened;
    opened.context.reset(heif_context_alloc());
    if (!opened.context)
        return fail(QStringLiteral("cannot start the %1 decoder").arg(kind));
    heif_error status = heif_context_read_from_memory_without_copy(opened.context.get(), data.constData(),
                                                                   std::size_t(data.size()), nullptr);
    if (status.code != heif_error_Ok)
        return fail(describe(status, kind));
    heif_image_handle* handle = nullptr;
    status = heif_context_get_primary_image_handle(opened.context.get(), &handle);
    if (status.code != heif_error_Ok)
        return fail(describe(status, kind));
    opened.handle.reset(handle);
    return opened;
}

} // namespace

QStringList suffixes() {
    return {QStringLiteral("heic"), QStringLiteral("heif"), QStringLiteral("hif"), QStringLiteral("avif")};
}

bool recognizes(const QByteArray& head) {
    if (head.size() < 12)
        return false;
    const heif_filetype_result type = heif_check_filetype(reinterpret_cast<const uint8_t*>(head.constData()),
                                                          int(std::min<qsizetype>(head.size(), 64)));
    return type == heif_filetype_yes_supported || type == heif_filetype_yes_unsupported;
}

std::optional<Probe> probe(const QByteArray& data, QString* error) {
    const std::optional<Opened> opened = open(data, error);
    if (!opened)
        return std::nullopt;
    const Probe result{QSize(heif_image_handle_get_width(opened->handle.get()),
                             heif_image_handle_get_height(opened->handle.get())),
                       heif_image_handle_has_alpha_channel(opened->handle.get()) != 0};
    if (result.size.isEmpty()) {
        if (error)
            *error = QStringLiteral("%1 picture without a size").arg(kindOf(data));
        return std::nullopt;
    }
    return result;
}

std::int64_t transientBytes(QSize size) {
    // Up to four planes of 8-bit samples at full resolution (4:4:4 with alpha), then the interleaved
    // RGBA picture made from them.
    return std::int64_t(size.width()) * size.height() * 8;
}

QImage decode(const QByteArray& data, QString* error) {
    auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return QImage();
    };
    const std::optional<Opened> opened = open(data, error);
    if (!opened)
        return QImage();
    const QString kind = kindOf(data);
    const bool alpha = heif_image_handle_has_alpha_channel(opened->handle.get()) != 0;

    const std::unique_ptr<heif_decoding_options, OptionsDeleter> options(heif_decoding_options_alloc());
    // The default, stated because the orientation flag of what we return depends on it.
    options->ignore_transformations = 0;
    heif_image* decoded = nullptr;
    const heif_error status = heif_decode_image(opened->handle.get(), &decoded, heif_colorspace_RGB,
                                                heif_chroma_interleaved_RGBA, options.get());
    const std::unique_ptr<heif_image, ImageDeleter> image(decoded);
    if (status.code != heif_error_Ok)
        return fail(describe(status, kind));

    const int width = heif_image_get_width(image.get(), heif_channel_interleaved);
    const int height = heif_image_get_height(image.get(), heif_channel_interleaved);
    int stride = 0;
    const uint8_t* pixels = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    if (!pixels || width <= 0 || height <= 0)
        return fail(QStringLiteral("cannot decode %1 picture: no pixels").arg(kind));
    QImage result(width, height, alpha ? QImage::Format_RGBA8888 : QImage::Format_RGBX8888);
    if (result.isNull())
        return fail(QStringLiteral("not enough memory for a %1 × %2 picture").arg(width).arg(height));
    for (int y = 0; y < height; ++y) {
        uchar* row = result.scanLine(y);
        std::memcpy(row, pixels + std::ptrdiff_t(y) * stride, std::size_t(width) * 4);
        if (!alpha) // RGBX wants its fourth byte opaque whatever the decoder left there
            for (int x = 0; x < width; ++x)
                row[x * 4 + 3] = 0xFF;
    }
    return result;
}

} // namespace HeifDecoder
