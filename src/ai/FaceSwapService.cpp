#include "ai/FaceSwapService.h"

#include "platform/Dispatch.h"
#include "platform/Log.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>
#include <QUuid>

#ifndef LUMIVEX_FACESWAP_BASE_URL
#define LUMIVEX_FACESWAP_BASE_URL "http://127.0.0.1:8787"
#endif

namespace {

std::optional<QString> decodeUtf8(const QByteArray& data) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(data);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

bool isSuccess(int status) {
    return status >= 200 && status <= 299;
}

template <typename Completion, typename Result>
void completeOnMain(const Completion& completion, Result result) {
    Dispatch::main().async([completion, result = std::move(result)] { completion(result); });
}

SystemError jsonError(const QJsonParseError& error) {
    return SystemError{
        QStringLiteral("QJsonParseError"), int(error.error),
        QStringLiteral("The data couldn't be read because it isn't in the correct format (%1 at "
                       "offset %2).")
            .arg(error.errorString())
            .arg(error.offset)};
}

FaceSwapService::SwapResult interpretSubmit(const std::optional<QByteArray>& data,
                                            const std::optional<HttpUrlResponse>& response,
                                            const std::optional<SystemError>& error) {
    if (error)
        return FaceSwapError(*error);
    if (!response)
        return FaceSwapError(ServiceError::invalidResponse());
    if (!data)
        return FaceSwapError(ServiceError::noData());
    if (!isSuccess(response->statusCode)) {
        if (auto text = decodeUtf8(*data))
            return FaceSwapError(ServiceError::server(*text));
        return FaceSwapError(
            ServiceError::server(QStringLiteral("Server returned HTTP %1").arg(response->statusCode)));
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(*data, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return FaceSwapError(jsonError(parseError));
    const QJsonValue taskId =
        document.isObject() ? document.object().value(QLatin1String("task_id")) : QJsonValue();
    if (!taskId.isString())
        return FaceSwapError(ServiceError::missingTaskId());
    return taskId.toString();
}

} // namespace

QString ServiceError::errorDescription() const {
    switch (kind_) {
    case Kind::server:
        return message_;
    case Kind::invalidImageData:
        return QStringLiteral("Could not convert images to JPEG.");
    case Kind::invalidResponse:
        return QStringLiteral("Invalid server response.");
    case Kind::noData:
        return QStringLiteral("No response data.");
    case Kind::missingTaskId:
        return QStringLiteral("task_id was not found in API response.");
    case Kind::invalidResultURL:
        return QStringLiteral("Invalid result URL.");
    case Kind::invalidImageResponse:
        return QStringLiteral("Could not convert response to UIImage.");
    }
    return {};
}

QString localizedDescription(const FaceSwapError& error) {
    if (const auto* service = std::get_if<ServiceError>(&error))
        return service->errorDescription();
    return std::get<SystemError>(error).localizedDescription;
}

FaceSwapService& FaceSwapService::shared() {
    static FaceSwapService* service = new FaceSwapService(QStringLiteral(LUMIVEX_FACESWAP_BASE_URL));
    return *service;
}

FaceSwapService::FaceSwapService(QString baseURL) : baseURL_(std::move(baseURL)) {}

QByteArray FaceSwapService::multipartBody(const QByteArray& boundary, const QByteArray& sourceJpeg,
                                          const QByteArray& targetJpeg) {
    const QByteArray crlf = "\r\n";
    QByteArray body;
    body.reserve(sourceJpeg.size() + targetJpeg.size() + 512);
    auto filePart = [&](const char* name, const QByteArray& jpeg) {
        body += "--" + boundary + crlf;
        body += QByteArray("Content-Disposition: form-data; name=\"") + name + "\"; filename=\"" + name +
                ".jpg\"" + crlf;
        body += "Content-Type: image/jpeg" + crlf + crlf;
        body += jpeg;
        body += crlf;
    };
    filePart("source", sourceJpeg);
    filePart("target", targetJpeg);
    body += "--" + boundary + crlf;
    body += "Content-Disposition: form-data; name=\"face_index\"" + crlf + crlf;
    body += "0" + crlf;
    body += "--" + boundary + "--" + crlf;
    return body;
}

QString FaceSwapService::percentEncodedPathComponent(const QString& text) {
    // What may stand unescaped in a URL path: unreserved, sub-delimiters, ':', '@' and '/'.
    static const QByteArray allowed = "!$&'()*+,;=:@/-._~";
    QString encoded;
    for (const unsigned char byte : text.toUtf8()) {
        const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= '0' && byte <= '9') || allowed.contains(char(byte));
        if (plain)
            encoded += QChar(byte);
        else
            encoded += QStringLiteral("%%1").arg(uint(byte), 2, 16, QLatin1Char('0')).toUpper();
    }
    return encoded;
}

void FaceSwapService::swapFaces(const ImagePtr& source, const ImagePtr& target,
                                SwapCompletion completion) const {
    const QByteArray sourceJpeg = source ? source->jpegData(1.0) : QByteArray();
    const QByteArray targetJpeg = target ? target->jpegData(1.0) : QByteArray();
    if (sourceJpeg.isEmpty() || targetJpeg.isEmpty()) {
        completion(FaceSwapError(ServiceError::invalidImageData()));
        return;
    }
    const QUrl url(baseURL_ + QStringLiteral("/swap"), QUrl::StrictMode);
    if (!url.isValid())
        fatalError("The face swap service's base URL is not a URL.");

    const QByteArray boundary =
        "Boundary-" + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toLatin1();
    UrlRequest request;
    request.url = url;
    request.httpMethod = "POST";
    request.timeoutInterval = kRequestTimeout;
    request.setValue("multipart/form-data; boundary=" + boundary, "Content-Type");
    request.httpBody = multipartBody(boundary, sourceJpeg, targetJpeg);

    UrlSession::shared()
        .dataTask(std::move(request),
                  [completion = std::move(completion)](std::optional<QByteArray> data,
                                                       std::optional<HttpUrlResponse> response,
                                                       std::optional<SystemError> error) {
                      completeOnMain(completion, interpretSubmit(data, response, error));
                  })
        ->resume();
}

void FaceSwapService::fetchResult(const QString& taskId, FetchCompletion completion) const {
    fetch(baseURL_, taskId, std::move(completion));
}

void FaceSwapService::fetch(QString baseURL, QString taskId, FetchCompletion completion) {
    // An identifier that is not valid text cannot be escaped and goes in as it is.
    const QString component =
        QStringView(taskId).isValidUtf16() ? percentEncodedPathComponent(taskId) : taskId;
    const QUrl url(baseURL + QStringLiteral("/result/") + component,
                   component == taskId ? QUrl::TolerantMode : QUrl::StrictMode);
    if (!url.isValid()) {
        completion(FaceSwapError(ServiceError::invalidResultURL()));
        return;
    }
    UrlRequest request;
    request.url = url;
    request.timeoutInterval = kRequestTimeout;

    UrlSession::shared()
        .dataTask(
            std::move(request),
            [baseURL, taskId, completion](std::optional<QByteArray> data,
                                          std::optional<HttpUrlResponse> response,
                                          std::optional<SystemError> error) {
                if (error)
                    return completeOnMain(completion, FetchResult(FaceSwapError(*error)));
                if (!response)
                    return completeOnMain(completion,
                                          FetchResult(FaceSwapError(ServiceError::invalidResponse())));
                if (response->statusCode == 404) {
                    // Not finished yet: ask again later, for as long as the service keeps saying so.
                    Dispatch::global(QualityOfService::defaultQos)
                        .asyncAfter(kPollInterval,
                                    [baseURL, taskId, completion] { fetch(baseURL, taskId, completion); });
                    return;
                }
                if (isSuccess(response->statusCode)) {
                    ImagePtr image = data ? Image::fromData(*data) : nullptr;
                    if (!image)
                        return completeOnMain(
                            completion, FetchResult(FaceSwapError(ServiceError::invalidImageResponse())));
                    return completeOnMain(completion, FetchResult(std::move(image)));
                }
                const std::optional<QString> text = data ? decodeUtf8(*data) : std::nullopt;
                completeOnMain(completion, FetchResult(FaceSwapError(ServiceError::server(
                                               text ? *text : QStringLiteral("Unknown server error")))));
            })
        ->resume();
}
