#include "platform/UrlSession.h"
#include "support/TestSupport.h"

#include <QMetaObject>
#include <atomic>
#include <gtest/gtest.h>
#include <httplib.h>
#include <mutex>
#include <thread>

namespace {

// What a request that never reached a server comes back with.
struct Outcome {
    std::mutex mutex;
    std::atomic<bool> done = false;
    bool hadData = false;
    bool hadResponse = false;
    std::optional<SystemError> error;
};

std::shared_ptr<Outcome> fetch(const QUrl& url) {
    auto outcome = std::make_shared<Outcome>();
    UrlRequest request;
    request.url = url;
    request.timeoutInterval = 5.0;
    UrlSession::shared()
        .dataTask(request,
                  [outcome](std::optional<QByteArray> data, std::optional<HttpUrlResponse> response,
                            std::optional<SystemError> error) {
                      std::lock_guard lock(outcome->mutex);
                      outcome->hadData = data.has_value();
                      outcome->hadResponse = response.has_value();
                      outcome->error = error;
                      outcome->done = true;
                  })
        ->resume();
    return outcome;
}

// Failures below HTTP (a scheme nobody speaks, an operation the protocol has not) are the session's
// own errors with a code of its domain, never an answer with a status.
TEST(UrlSessionTest, ProtocolFailuresAreTransportErrorsNotAnswers) {
    for (const QUrl& url : {QUrl(QStringLiteral("gopherx://127.0.0.1/picture")),
                            QUrl(QStringLiteral("ftp://127.0.0.1/picture"))}) {
        const auto outcome = fetch(url);
        ASSERT_TRUE(testsupport::waitUntil([&] { return outcome->done.load(); }, 10000))
            << qPrintable(url.toString());
        std::lock_guard lock(outcome->mutex);
        EXPECT_FALSE(outcome->hadResponse) << qPrintable(url.toString());
        EXPECT_FALSE(outcome->hadData);
        ASSERT_TRUE(outcome->error);
        EXPECT_EQ(outcome->error->domain, QString::fromLatin1(UrlSession::kErrorDomain));
    }
    const auto unknown = fetch(QUrl(QStringLiteral("gopherx://127.0.0.1/picture")));
    ASSERT_TRUE(testsupport::waitUntil([&] { return unknown->done.load(); }, 10000));
    std::lock_guard lock(unknown->mutex);
    ASSERT_TRUE(unknown->error);
    EXPECT_EQ(unknown->error->code, UrlSession::badURL);
}

// Every HTTP status is an answer, with its body, whatever layer Qt files its own error under (it files a
// 400 with the protocol errors).
TEST(UrlSessionTest, ErrorStatusesAreAnswersWithTheirBody) {
    httplib::Server server;
    const int port = server.bind_to_any_port("127.0.0.1");
    server.set_keep_alive_max_count(1);
    server.Get(R"(/status/(\d+))", [](const httplib::Request& request, httplib::Response& response) {
        response.status = std::stoi(request.matches[1]);
        response.set_content("{\"error\":\"no\"}", "application/json");
    });
    std::thread thread([&] { server.listen_after_bind(); });
    while (!server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    for (const int status : {400, 404, 409, 500, 503}) {
        auto outcome = std::make_shared<Outcome>();
        std::optional<int> answered;
        std::optional<QByteArray> body;
        UrlRequest request;
        request.url = QUrl(QStringLiteral("http://127.0.0.1:%1/status/%2").arg(port).arg(status));
        UrlSession::shared()
            .dataTask(request,
                      [outcome, &answered, &body](std::optional<QByteArray> data,
                                                  std::optional<HttpUrlResponse> response,
                                                  std::optional<SystemError> error) {
                          std::lock_guard lock(outcome->mutex);
                          if (response)
                              answered = response->statusCode;
                          body = data;
                          outcome->error = error;
                          outcome->done = true;
                      })
            ->resume();
        ASSERT_TRUE(testsupport::waitUntil([&] { return outcome->done.load(); }, 10000)) << status;
        std::lock_guard lock(outcome->mutex);
        EXPECT_EQ(answered, status);
        EXPECT_EQ(body, QByteArray("{\"error\":\"no\"}")) << status;
        EXPECT_FALSE(outcome->error) << status;
    }
    server.stop();
    thread.join();
}

} // namespace
