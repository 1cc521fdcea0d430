#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>
#include <optional>

class QNetworkAccessManager;
class QThread;

// An error as the system reports it: a domain, a code within it and words for the user.
struct SystemError {
    QString domain;
    int code = 0;
    QString localizedDescription;
};

struct UrlRequest {
    QUrl url;
    QByteArray httpMethod = "GET";
    QList<QPair<QByteArray, QByteArray>> headers;
    QByteArray httpBody;
    // Longest silence allowed while waiting for the answer, in seconds.
    double timeoutInterval = 60.0;

    void setValue(const QByteArray& value, const QByteArray& header) { headers.append({header, value}); }
};

struct HttpUrlResponse {
    QUrl url;
    int statusCode = 0;
    QList<QPair<QByteArray, QByteArray>> headers;
};

// One request. Nothing happens until resume(); its completion runs once.
class UrlSessionDataTask {
public:
    // Data is absent when the transport failed or the answer carried no body at all (neither a length
    // nor chunks); an answer that declared an empty body gives empty data.
    using Completion =
        std::function<void(std::optional<QByteArray> data, std::optional<HttpUrlResponse> response,
                           std::optional<SystemError> error)>;

    void resume();
    const UrlRequest& originalRequest() const { return request_; }

private:
    friend class UrlSession;
    UrlSessionDataTask(class UrlSession* session, UrlRequest request, Completion completion)
        : session_(session), request_(std::move(request)), completion_(std::move(completion)) {}

    class UrlSession* session_;
    UrlRequest request_;
    Completion completion_;
    bool resumed_ = false;
};

// The process-wide HTTP(S) session. Its QNetworkAccessManager lives on a thread of its own, so answers
// neither wait for nor block the main thread; completions run on that thread, and callers that touch
// views hop to the main queue themselves.
class UrlSession {
public:
    static UrlSession& shared();

    UrlSession();
    ~UrlSession();
    UrlSession(const UrlSession&) = delete;
    UrlSession& operator=(const UrlSession&) = delete;

    std::shared_ptr<UrlSessionDataTask> dataTask(UrlRequest request,
                                                 UrlSessionDataTask::Completion completion);

    // Error codes of the "NSURLErrorDomain"-like domain this session reports.
    static constexpr const char* kErrorDomain = "UrlSessionErrorDomain";
    enum ErrorCode {
        unknown = -1,
        cancelled = -999,
        badURL = -1000,
        timedOut = -1001,
        cannotFindHost = -1003,
        cannotConnectToHost = -1004,
        networkConnectionLost = -1005,
        secureConnectionFailed = -1200
    };

private:
    friend class UrlSessionDataTask;
    void start(UrlRequest request, UrlSessionDataTask::Completion completion);

    QThread* thread_ = nullptr;
    QNetworkAccessManager* manager_ = nullptr;
};
