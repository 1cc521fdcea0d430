#pragma once

#include "platform/Image.h"
#include "platform/UrlSession.h"

#include <QString>
#include <functional>
#include <variant>

// The errors of the face swap protocol, each with the words the failure alert shows.
class ServiceError {
public:
    enum class Kind {
        server,
        invalidImageData,
        invalidResponse,
        noData,
        missingTaskId,
        invalidResultURL,
        invalidImageResponse,
    };

    static ServiceError server(QString message) { return ServiceError(Kind::server, std::move(message)); }
    static ServiceError invalidImageData() { return ServiceError(Kind::invalidImageData); }
    static ServiceError invalidResponse() { return ServiceError(Kind::invalidResponse); }
    static ServiceError noData() { return ServiceError(Kind::noData); }
    static ServiceError missingTaskId() { return ServiceError(Kind::missingTaskId); }
    static ServiceError invalidResultURL() { return ServiceError(Kind::invalidResultURL); }
    static ServiceError invalidImageResponse() { return ServiceError(Kind::invalidImageResponse); }

    Kind kind() const { return kind_; }
    // The payload of `server`; empty for the other cases.
    const QString& message() const { return message_; }
    QString errorDescription() const;

    bool operator==(const ServiceError&) const = default;

private:
    explicit ServiceError(Kind kind, QString message = {}) : kind_(kind), message_(std::move(message)) {}

    Kind kind_;
    QString message_;
};

// What a blend can fail with: one of ours, or what the transport or the JSON parser reported.
using FaceSwapError = std::variant<ServiceError, SystemError>;
QString localizedDescription(const FaceSwapError& error);

// Client of the face swap web service: uploads a photo and a template, then polls for the picture.
// Stateless and immutable, so calls may overlap and polls may outlive their callers.
class FaceSwapService {
public:
    using SwapResult = std::variant<QString, FaceSwapError>;   // the task identifier
    using FetchResult = std::variant<ImagePtr, FaceSwapError>; // the finished picture
    using SwapCompletion = std::function<void(SwapResult)>;
    using FetchCompletion = std::function<void(FetchResult)>;

    static constexpr double kRequestTimeout = 60.0;
    static constexpr double kPollInterval = 2.0;

    static FaceSwapService& shared();

    // An instance talking to another origin (no trailing slash); the program uses shared() only.
    explicit FaceSwapService(QString baseURL);

    const QString& baseURL() const { return baseURL_; }

    // Completions run on the main queue, except an image that cannot be encoded, which is reported at
    // once on the calling thread and sends nothing.
    void swapFaces(const ImagePtr& source, const ImagePtr& target, SwapCompletion completion) const;
    // Polls while the service answers 404; a result URL that cannot be formed is reported at once on the
    // calling thread.
    void fetchResult(const QString& taskId, FetchCompletion completion) const;

    // The multipart body of a submit, for a given boundary.
    static QByteArray multipartBody(const QByteArray& boundary, const QByteArray& sourceJpeg,
                                    const QByteArray& targetJpeg);
    // The task identifier as it goes into the result path.
    static QString percentEncodedPathComponent(const QString& text);

private:
    static void fetch(QString baseURL, QString taskId, FetchCompletion completion);

    const QString baseURL_;
};
