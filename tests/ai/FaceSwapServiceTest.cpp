#include "ai/FaceSwapService.h"
#include "platform/Dispatch.h"
#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <atomic>
#include <gtest/gtest.h>
#include <httplib.h>
#include <mutex>
#include <thread>

namespace {

ImagePtr solidImage(int width, int height, QColor color) {
    QImage bitmap(width, height, QImage::Format_RGB32);
    bitmap.fill(color);
    return Image::make(bitmap);
}

// A real HTTP server on the loopback, run on its own thread for the length of a test.
class LoopbackServer {
public:
    LoopbackServer() {
        port = server.bind_to_any_port("127.0.0.1");
        // One request per connection, so stopping never waits for an idle keep-alive.
        server.set_keep_alive_max_count(1);
        thread = std::thread([this] { server.listen_after_bind(); });
        while (!server.is_running())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ~LoopbackServer() {
        server.stop();
        thread.join();
    }
    QString origin() const { return QStringLiteral("http://127.0.0.1:%1").arg(port); }

    httplib::Server server;
    int port = 0;
    std::thread thread;
};

// Collects the completions of one call, checking that each arrives on the main thread.
template <typename Result> struct Outcome {
    std::vector<Result> results;
    bool allOnMain = true;

    auto completion() {
        return [this](Result result) {
            allOnMain = allOnMain && Dispatch::isMainThread();
            results.push_back(std::move(result));
        };
    }
    bool wait(int timeoutMs = 5000) {
        return testsupport::waitUntil([this] { return !results.empty(); }, timeoutMs);
    }
};

std::optional<ServiceError> serviceError(const FaceSwapError& error) {
    if (const auto* e = std::get_if<ServiceError>(&error))
        return *e;
    return std::nullopt;
}

template <typename Result> std::optional<ServiceError> serviceErrorOf(const Result& result) {
    if (const auto* error = std::get_if<FaceSwapError>(&result))
        return serviceError(*error);
    return std::nullopt;
}

} // namespace

TEST(FaceSwapServiceTest, PictureThatCannotBeEncodedFailsAtOnceWithoutARequest) {
    LoopbackServer http;
    std::atomic<int> requests{0};
    http.server.Post("/swap", [&](const httplib::Request&, httplib::Response& res) {
        ++requests;
        res.set_content(R"({"task_id":"x"})", "application/json");
    });
    FaceSwapService service(http.origin());

    // Wider than JPEG can describe, so the encoder gives nothing.
    const ImagePtr unencodable = solidImage(70000, 1, Qt::gray);
    ASSERT_TRUE(unencodable->jpegData(1.0).isEmpty());

    std::optional<FaceSwapService::SwapResult> result;
    service.swapFaces(solidImage(8, 8, Qt::red), unencodable,
                      [&](FaceSwapService::SwapResult r) { result = r; });
    ASSERT_TRUE(result.has_value()); // reported before swapFaces returned
    EXPECT_EQ(serviceErrorOf(*result), ServiceError::invalidImageData());
    EXPECT_EQ(localizedDescription(std::get<FaceSwapError>(*result)), "Could not convert images to JPEG.");
    testsupport::spin(200);
    EXPECT_EQ(requests.load(), 0);
}

// A bare HTTP/1.1 listener on the main thread that keeps each request's bytes exactly as they came
// over the wire (a full HTTP library splits multipart bodies into parts before a handler sees them).
struct RawRequestRecorder {
    QTcpServer server;
    std::vector<std::pair<std::string, std::string>> seen; // content type, body
    // Sent back to every request, exactly as it stands.
    QByteArray response = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 32\r\n"
                          "Connection: close\r\n\r\n{\"other\": 1, \"task_id\": \"job-1\"}";

    RawRequestRecorder() {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, [this] {
            while (QTcpSocket* socket = server.nextPendingConnection()) {
                auto buffer = std::make_shared<QByteArray>();
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer] {
                    buffer->append(socket->readAll());
                    const qsizetype headerEnd = buffer->indexOf("\r\n\r\n");
                    if (headerEnd < 0)
                        return;
                    const QByteArray head = buffer->left(headerEnd);
                    QByteArray contentType;
                    qsizetype length = 0;
                    for (const QByteArray& line : head.split('\n')) {
                        const QByteArray trimmed = line.trimmed();
                        if (trimmed.toLower().startsWith("content-type:"))
                            contentType = trimmed.mid(13).trimmed();
                        if (trimmed.toLower().startsWith("content-length:"))
                            length = trimmed.mid(15).trimmed().toLongLong();
                    }
                    if (buffer->size() - headerEnd - 4 < length)
                        return;
                    seen.emplace_back(contentType.toStdString(),
                                      buffer->mid(headerEnd + 4, length).toStdString());
                    socket->write(response);
                    socket->disconnectFromHost();
                });
                QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
    }
    QString origin() const { return QStringLiteral("http://127.0.0.1:%1").arg(server.serverPort()); }
};

TEST(FaceSwapServiceTest, SubmitSendsTheMultipartBodyByteForByteWithAFreshBoundary) {
    RawRequestRecorder http;
    ASSERT_TRUE(http.server.isListening());
    auto& seen = http.seen;
    FaceSwapService service(http.origin());
    const ImagePtr source = solidImage(40, 30, Qt::blue);
    const ImagePtr target = solidImage(20, 50, Qt::yellow);

    for (int round = 0; round < 2; ++round) {
        Outcome<FaceSwapService::SwapResult> outcome;
        service.swapFaces(source, target, outcome.completion());
        ASSERT_TRUE(outcome.wait());
        ASSERT_EQ(std::get<QString>(outcome.results.front()), "job-1");
        EXPECT_TRUE(outcome.allOnMain);
    }

    ASSERT_EQ(seen.size(), 2u);
    const QRegularExpression header(
        "^multipart/form-data; "
        "boundary=(Boundary-[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12})$");
    QStringList boundaries;
    for (const auto& [contentType, body] : seen) {
        const auto match = header.match(QString::fromStdString(contentType));
        ASSERT_TRUE(match.hasMatch()) << contentType;
        const QByteArray b = match.captured(1).toLatin1();
        boundaries << match.captured(1);
        const QByteArray expected =
            "--" + b + "\r\n" +
            "Content-Disposition: form-data; name=\"source\"; filename=\"source.jpg\"\r\n" +
            "Content-Type: image/jpeg\r\n\r\n" + source->jpegData(1.0) + "\r\n" + "--" + b + "\r\n" +
            "Content-Disposition: form-data; name=\"target\"; filename=\"target.jpg\"\r\n" +
            "Content-Type: image/jpeg\r\n\r\n" + target->jpegData(1.0) + "\r\n" + "--" + b + "\r\n" +
            "Content-Disposition: form-data; name=\"face_index\"\r\n\r\n" + "0\r\n" + "--" + b + "--\r\n";
        EXPECT_EQ(QByteArray::fromStdString(body), expected);
    }
    EXPECT_NE(boundaries[0], boundaries[1]);
}

TEST(FaceSwapServiceTest, SubmitAnswersBecomeTheirErrorsInOrder) {
    LoopbackServer http;
    struct Answer {
        int status;
        std::string body;
    };
    std::vector<Answer> answers = {
        {500, ""},                  // server with the empty text
        {500, "\xff\xfe\xfd"},      // not UTF-8: the status goes into the words
        {502, "Bad gateway today"}, // the body's own words
        {200, R"({"task_id": 7})"}, // not a string
        {200, "[]"},                // not an object
        {200, "{}"},                // no members
        {200, ""},                  // the parser's own error
    };
    std::atomic<size_t> next{0};
    http.server.Post("/swap", [&](const httplib::Request&, httplib::Response& res) {
        const Answer& answer = answers[next++];
        res.status = answer.status;
        res.set_content(answer.body, "text/plain");
    });
    FaceSwapService service(http.origin());
    const ImagePtr photo = solidImage(8, 8, Qt::green);

    std::vector<FaceSwapService::SwapResult> results;
    for (size_t i = 0; i < answers.size(); ++i) {
        Outcome<FaceSwapService::SwapResult> outcome;
        service.swapFaces(photo, photo, outcome.completion());
        ASSERT_TRUE(outcome.wait()) << i;
        results.push_back(outcome.results.front());
    }
    EXPECT_EQ(serviceErrorOf(results[0]), ServiceError::server(""));
    EXPECT_EQ(serviceErrorOf(results[1]), ServiceError::server("Server returned HTTP 500"));
    EXPECT_EQ(serviceErrorOf(results[2]), ServiceError::server("Bad gateway today"));
    EXPECT_EQ(serviceErrorOf(results[3]), ServiceError::missingTaskId());
    EXPECT_EQ(localizedDescription(std::get<FaceSwapError>(results[3])),
              "task_id was not found in API response.");
    EXPECT_EQ(serviceErrorOf(results[4]), ServiceError::missingTaskId());
    EXPECT_EQ(serviceErrorOf(results[5]), ServiceError::missingTaskId());
    ASSERT_TRUE(std::holds_alternative<FaceSwapError>(results[6]));
    const auto* parserError = std::get_if<SystemError>(&std::get<FaceSwapError>(results[6]));
    ASSERT_NE(parserError, nullptr);
    EXPECT_FALSE(parserError->localizedDescription.isEmpty());
}

TEST(FaceSwapServiceTest, FetchFailuresUseTheBodyOrGenericWords) {
    LoopbackServer http;
    http.server.Get(R"(/result/.*)", [&](const httplib::Request& req, httplib::Response& res) {
        const std::string id = req.path.substr(std::string("/result/").size());
        res.status = id == "notimage" ? 200 : id == "edge" ? 299 : id == "past" ? 300 : 500;
        if (id == "edge") {
            const QByteArray jpeg = solidImage(6, 4, Qt::blue)->jpegData(0.9);
            res.set_content(jpeg.toStdString(), "image/jpeg");
        } else if (id == "empty")
            res.set_content("", "text/plain");
        else if (id == "binary")
            res.set_content("\xc3\x28", "text/plain");
        else if (id == "words" || id == "past")
            res.set_content("No face found in the source photo", "text/plain");
        else
            res.set_content("this is not a picture", "image/jpeg");
    });
    FaceSwapService service(http.origin());

    auto fetch = [&](const QString& id) {
        Outcome<FaceSwapService::FetchResult> outcome;
        service.fetchResult(id, outcome.completion());
        EXPECT_TRUE(outcome.wait()) << id.toStdString();
        EXPECT_TRUE(outcome.allOnMain);
        return outcome.results.empty() ? std::nullopt : serviceErrorOf(outcome.results.front());
    };
    EXPECT_EQ(fetch("empty"), ServiceError::server(""));
    EXPECT_EQ(fetch("binary"), ServiceError::server("Unknown server error"));
    EXPECT_EQ(fetch("words"), ServiceError::server("No face found in the source photo"));
    EXPECT_EQ(fetch("notimage"), ServiceError::invalidImageResponse());
    // Every status of the 200s is a success, and the first of the 300s is not.
    Outcome<FaceSwapService::FetchResult> edge;
    service.fetchResult(QStringLiteral("edge"), edge.completion());
    ASSERT_TRUE(edge.wait());
    const auto* picture = std::get_if<ImagePtr>(&edge.results.front());
    ASSERT_TRUE(picture && *picture);
    EXPECT_EQ((*picture)->pixelSize(), QSize(6, 4));
    EXPECT_EQ(fetch("past"), ServiceError::server("No face found in the source photo"));
}

TEST(FaceSwapServiceTest, TaskIdsAreEscapedForThePathButLettersAndDigitsStay) {
    EXPECT_EQ(FaceSwapService::percentEncodedPathComponent(QStringLiteral("Job-0_9.z~a/b:c@d")),
              QStringLiteral("Job-0_9.z~a/b:c@d"));
    EXPECT_EQ(FaceSwapService::percentEncodedPathComponent(QStringLiteral("a b?c#0%é")),
              QStringLiteral("a%20b%3Fc%230%25%C3%A9"));
}

TEST(FaceSwapServiceTest, FetchFailureWithNoBodyAtAllUsesGenericWords) {
    // No length, no chunks, nothing before the connection closes: there is no body, which is not
    // the same as an empty one.
    RawRequestRecorder http;
    http.response = "HTTP/1.1 500 Internal Server Error\r\nConnection: close\r\n\r\n";
    FaceSwapService service(http.origin());
    Outcome<FaceSwapService::FetchResult> outcome;
    service.fetchResult(QStringLiteral("job-1"), outcome.completion());
    ASSERT_TRUE(outcome.wait());
    EXPECT_EQ(serviceErrorOf(outcome.results.front()), ServiceError::server("Unknown server error"));
}

TEST(FaceSwapServiceTest, FetchPollsEveryTwoSecondsUntilThePictureIsReady) {
    LoopbackServer http;
    std::atomic<int> requests{0};
    const QByteArray jpeg = solidImage(12, 9, Qt::magenta)->jpegData(0.9);
    std::mutex mutex;
    std::vector<std::string> targets;
    http.server.Get(R"(/result/.*)", [&](const httplib::Request& req, httplib::Response& res) {
        {
            std::lock_guard lock(mutex);
            targets.push_back(req.target);
        }
        if (++requests <= 2) {
            res.status = 404;
            res.set_content("still working", "text/plain");
            return;
        }
        res.set_content(jpeg.toStdString(), "image/jpeg");
    });
    FaceSwapService service(http.origin());

    QElapsedTimer clock;
    clock.start();
    Outcome<FaceSwapService::FetchResult> outcome;
    service.fetchResult("a b?c", outcome.completion());
    ASSERT_TRUE(outcome.wait(8000));
    const qint64 elapsed = clock.elapsed();
    testsupport::spin(300); // nothing more may arrive

    ASSERT_EQ(outcome.results.size(), 1u);
    EXPECT_TRUE(outcome.allOnMain);
    const auto* image = std::get_if<ImagePtr>(&outcome.results.front());
    ASSERT_TRUE(image && *image);
    EXPECT_EQ((*image)->pixelSize(), QSize(12, 9));
    EXPECT_GE(elapsed, 3900);
    EXPECT_LT(elapsed, 6000);
    EXPECT_EQ(requests.load(), 3);
    // The same, escaped request each time.
    for (const auto& target : targets)
        EXPECT_EQ(target, "/result/a%20b%3Fc");
}

TEST(FaceSwapServiceTest, TransportErrorsPassThrough) {
    int closedPort = 0;
    {
        LoopbackServer http;
        closedPort = http.port;
    }
    FaceSwapService service(QStringLiteral("http://127.0.0.1:%1").arg(closedPort));
    Outcome<FaceSwapService::SwapResult> outcome;
    const ImagePtr photo = solidImage(4, 4, Qt::white);
    service.swapFaces(photo, photo, outcome.completion());
    ASSERT_TRUE(outcome.wait());
    const auto& error = std::get<FaceSwapError>(outcome.results.front());
    ASSERT_TRUE(std::holds_alternative<SystemError>(error));
    EXPECT_EQ(std::get<SystemError>(error).code, UrlSession::cannotConnectToHost);
}
