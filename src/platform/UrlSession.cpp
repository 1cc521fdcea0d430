#include "platform/UrlSession.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QThread>
#include <cmath>

namespace {

// Qt groups its error codes by layer: below 200 the connection or a proxy, 301…399 the protocol. An
// answer without a status line is no answer. With one, only the connection's errors spoil it (a body
// cut short, a stalled transfer); a protocol error with a status is an answer all the same, since Qt
// files an HTTP 400 there, and content and server errors are answers too.
bool isTransportError(const QNetworkReply* reply, const QVariant& status) {
    const int code = int(reply->error());
    return !status.isValid() || (code > 0 && code < 200);
}

SystemError transportError(const QNetworkReply* reply) {
    SystemError error{UrlSession::kErrorDomain, UrlSession::unknown, reply->errorString()};
    switch (reply->error()) {
    case QNetworkReply::OperationCanceledError: // the transfer time-out is the only thing that cancels
    case QNetworkReply::TimeoutError:
        error.code = UrlSession::timedOut;
        error.localizedDescription = QStringLiteral("The request timed out.");
        break;
    case QNetworkReply::HostNotFoundError:
        error.code = UrlSession::cannotFindHost;
        break;
    case QNetworkReply::ConnectionRefusedError:
        error.code = UrlSession::cannotConnectToHost;
        break;
    case QNetworkReply::RemoteHostClosedError:
        error.code = UrlSession::networkConnectionLost;
        break;
    case QNetworkReply::SslHandshakeFailedError:
        error.code = UrlSession::secureConnectionFailed;
        break;
    case QNetworkReply::ProtocolUnknownError:
    case QNetworkReply::ProtocolInvalidOperationError:
        error.code = UrlSession::badURL;
        break;
    default:
        break;
    }
    return error;
}

} // namespace

void UrlSessionDataTask::resume() {
    if (resumed_)
        return;
    resumed_ = true;
    session_->start(request_, std::move(completion_));
}

UrlSession& UrlSession::shared() {
    // Never destroyed: requests still under way at exit must not find a dead thread.
    static UrlSession* session = new UrlSession;
    return *session;
}

UrlSession::UrlSession() : thread_(new QThread) {
    thread_->setObjectName(QStringLiteral("UrlSession"));
    manager_ = new QNetworkAccessManager;
    manager_->moveToThread(thread_);
    thread_->start();
}

UrlSession::~UrlSession() {
    QMetaObject::invokeMethod(
        manager_, [manager = manager_] { delete manager; }, Qt::BlockingQueuedConnection);
    thread_->quit();
    thread_->wait();
    delete thread_;
}

std::shared_ptr<UrlSessionDataTask> UrlSession::dataTask(UrlRequest request,
                                                         UrlSessionDataTask::Completion completion) {
    return std::shared_ptr<UrlSessionDataTask>(
        new UrlSessionDataTask(this, std::move(request), std::move(completion)));
}

void UrlSession::start(UrlRequest request, UrlSessionDataTask::Completion completion) {
    QNetworkAccessManager* manager = manager_;
    QMetaObject::invokeMethod(
        manager,
        [manager, request = std::move(request), completion = std::move(completion)] {
            QNetworkRequest networkRequest(request.url);
            networkRequest.setTransferTimeout(int(std::lround(request.timeoutInterval * 1000.0)));
            for (const auto& [name, value] : request.headers)
                networkRequest.setRawHeader(name, value);
            QNetworkReply* reply =
                request.httpMethod == "GET" && request.httpBody.isEmpty()
                    ? manager->get(networkRequest)
                    : manager->sendCustomRequest(networkRequest, request.httpMethod, request.httpBody);
            QObject::connect(reply, &QNetworkReply::finished, reply, [reply, completion] {
                reply->deleteLater();
                const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
                if (isTransportError(reply, status)) {
                    completion(std::nullopt, std::nullopt, transportError(reply));
                    return;
                }
                HttpUrlResponse response;
                response.url = reply->url();
                response.statusCode = status.toInt();
                for (const auto& pair : reply->rawHeaderPairs())
                    response.headers.append(pair);
                std::optional<QByteArray> data = reply->readAll();
                const bool framed =
                    reply->hasRawHeader("Content-Length") || reply->hasRawHeader("Transfer-Encoding");
                if (data->isEmpty() && !framed)
                    data.reset();
                completion(std::move(data), std::move(response), std::nullopt);
            });
        },
        Qt::QueuedConnection);
}
