#include "SwapServer.h"

#include <sys/socket.h>

#include <charconv>
#include <cstring>
#include <iostream>
#include <mutex>

namespace lumivex::faceswap {

namespace {

constexpr const char* kText = "text/plain; charset=utf-8";

void fail(httplib::Response& res, int status, const std::string& reason) {
    res.status = status;
    res.set_content(reason, kText);
}

bool startsWith(const std::string& bytes, const char* magic, std::size_t length, std::size_t at = 0) {
    return bytes.size() >= at + length && std::memcmp(bytes.data() + at, magic, length) == 0;
}

bool isKnownMethod(const std::string& method) {
    for (const char* known : {"GET", "HEAD", "POST", "PUT", "DELETE", "CONNECT", "OPTIONS", "TRACE", "PATCH"})
        if (method == known)
            return true;
    return false;
}

long long seconds(std::chrono::milliseconds ms) {
    return (ms.count() + 999) / 1000;
}

} // namespace

bool looksLikeImage(const std::string& bytes) {
    return startsWith(bytes, "\xFF\xD8\xFF", 3) || startsWith(bytes, "\x89PNG\r\n\x1A\n", 8) ||
           (startsWith(bytes, "RIFF", 4) && startsWith(bytes, "WEBP", 4, 8)) || startsWith(bytes, "BM", 2) ||
           startsWith(bytes, "II*\0", 4) || startsWith(bytes, "MM\0*", 4);
}

std::string escapeForLog(const std::string& text) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(text.size());
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        if (c >= 0x20 && c < 0x7f && c != '\\') {
            out += ch;
        } else {
            out += "\\x";
            out += digits[c >> 4];
            out += digits[c & 15];
        }
    }
    return out;
}

SwapServer::SwapServer(ServerOptions options)
    : options_(std::move(options)), queue_({options_.workers, options_.queueCapacity, options_.resultLifetime,
                                            options_.landmarkModel, options_.limits}),
      http_(options_.connections) {
    http_.set_payload_max_length(options_.maxUploadBytes);
    // Keep the listening socket so bind() can widen its backlog (see there).
    http_.set_socket_options([this](socket_t sock) {
        httplib::default_socket_options(sock);
        listenSocket_ = sock;
    });
    http_.Post("/swap",
               [this](const httplib::Request& req, httplib::Response& res) { handleSwap(req, res); });
    // Any id, even one with a line break in it, reaches the handler and so gets 410 when unknown.
    http_.Get(R"(/result/([\s\S]*))",
              [this](const httplib::Request& req, httplib::Response& res) { handleResult(req, res); });
    http_.set_error_handler(
        httplib::Server::HandlerWithResponse([this](const httplib::Request& req, httplib::Response& res) {
            if (!res.body.empty())
                return httplib::Server::HandlerResponse::Unhandled;
            explainError(req, res);
            return httplib::Server::HandlerResponse::Handled;
        }));
    http_.set_exception_handler([](const httplib::Request&, httplib::Response& res, std::exception_ptr) {
        fail(res, 500, "Internal error");
    });
    http_.set_logger(
        [this](const httplib::Request& req, const httplib::Response& res) { logLine(req, res); });
}

SwapServer::~SwapServer() {
    stop();
    queue_.shutdown();
}

bool SwapServer::bind() {
    if (options_.port == 0)
        port_ = http_.bind_to_any_port(options_.host);
    else
        port_ = http_.bind_to_port(options_.host, options_.port) ? options_.port : -1;
    // The packaged HTTP library listens with a backlog of 5, which drops connections when a burst of
    // clients arrives while the machine is busy; listening again on the bound socket widens it.
    if (port_ > 0 && listenSocket_ >= 0)
        ::listen(listenSocket_, kListenBacklog);
    return port_ > 0;
}

bool SwapServer::run() {
    return http_.listen_after_bind();
}

void SwapServer::start() {
    if (port_ <= 0)
        return;
    thread_ = std::thread([this] { http_.listen_after_bind(); });
    // Requests sent before the accept loop runs would still be queued by the kernel, but tests that stop
    // at once would race the loop's start.
    while (!http_.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void SwapServer::stop() {
    http_.stopAll();
    if (thread_.joinable())
        thread_.join();
}

bool SwapServer::stopSwaps(std::chrono::milliseconds patience) {
    return queue_.shutdown(patience);
}

void SwapServer::handleSwap(const httplib::Request& req, httplib::Response& res) {
    if (!req.is_multipart_form_data())
        return fail(res, 400, "Send a multipart form with the parts source, target and face_index");
    if (req.files.empty())
        return fail(res, 400, "The form has no parts; send source, target and face_index");
    for (const char* name : {"source", "target", "face_index"})
        if (!req.has_file(name))
            return fail(res, 400, std::string("The form has no part named ") + name);

    SwapJob job;
    job.source = req.get_file_value("source").content;
    job.target = req.get_file_value("target").content;
    for (const auto& [name, bytes, limits] : {std::tuple{"source", &job.source, &options_.limits.source},
                                              std::tuple{"target", &job.target, &options_.limits.target}}) {
        if (!looksLikeImage(*bytes))
            return fail(res, 400,
                        std::string("The part ") + name + " is not a JPEG, PNG, WebP, BMP or TIFF photo");
        // A pixel bomb is turned away here, from its header, before it takes a place in the queue.
        const ImageHeader header = readImageHeader(*bytes);
        if (header.valid() && header.pixels() > limits->maxPixels)
            return fail(res, 413, decodeLimited(*bytes, *limits, std::string(name) + " photo").reason);
    }

    const std::string index = req.get_file_value("face_index").content;
    const auto [end, error] = std::from_chars(index.data(), index.data() + index.size(), job.faceIndex);
    if (error != std::errc() || end != index.data() + index.size() || job.faceIndex < 0)
        return fail(res, 400, "face_index must be a whole number from 0 (0 is the largest face)");

    const std::optional<std::string> id = queue_.submit(std::move(job));
    if (!id) {
        res.set_header("Retry-After", "5");
        return fail(res, 503, "The service is busy; try again in a moment");
    }
    res.set_content("{\"task_id\": \"" + *id + "\"}", "application/json");
}

void SwapServer::handleResult(const httplib::Request& req, httplib::Response& res) {
    const TaskStatus task = queue_.status(req.matches[1]);
    switch (task.kind) {
    case TaskStatus::Kind::Unknown:
        return fail(res, 410, "Unknown task, or its result has expired");
    case TaskStatus::Kind::Pending:
        return fail(res, 404, "The swap is not finished yet");
    case TaskStatus::Kind::Done:
        res.set_content(task.body, task.contentType.c_str());
        return;
    case TaskStatus::Kind::Failed:
        return fail(res, task.status, task.body);
    }
}

// The library answers some failures itself (unreadable requests, oversized bodies, unknown paths) without a
// body; each gets a reason a person can read.
void SwapServer::explainError(const httplib::Request& req, httplib::Response& res) {
    const ConnectionLimits& limits = options_.connections;
    if (res.status == 400 || res.status == 408 || res.status == 413 || res.status == 414)
        GuardedHttpServer::closeAfterThisRequest();
    switch (GuardedHttpServer::currentReadFailure()) {
    case ReadFailure::Deadline:
        return fail(res, 408,
                    "The request did not arrive in time: headers are read for " +
                        std::to_string(seconds(limits.headerDeadline)) + " s, a whole request for " +
                        std::to_string(seconds(limits.requestDeadline)) + " s");
    case ReadFailure::HeaderTooLarge:
        return fail(res, 400,
                    "The request's headers are larger than " + std::to_string(limits.maxHeaderBytes / 1024) +
                        " KB");
    case ReadFailure::None:
        break;
    }
    switch (res.status) {
    case 413:
        return fail(res, 413,
                    "The upload is larger than " + std::to_string(options_.maxUploadBytes >> 20) + " MB");
    case 414:
        return fail(res, 400, "The request line is too long");
    case 400:
        if (req.version != "HTTP/1.1" && req.version != "HTTP/1.0")
            return fail(res, 400, "The request line could not be read; send METHOD /path HTTP/1.1");
        if (!isKnownMethod(req.method))
            return fail(res, 400,
                        "Unknown method " + escapeForLog(req.method.substr(0, 32)) +
                            "; use POST /swap or GET /result/<task id>");
        if (req.path.empty())
            return fail(res, 400, "The request line could not be read; send METHOD /path HTTP/1.1");
        if (req.method == "POST" && req.path == "/swap")
            return fail(res, 400, "The request could not be read as a multipart form");
        return fail(res, 400, "The request's headers could not be read");
    case 404:
        if (req.path == "/swap" && req.method != "POST") {
            res.set_header("Allow", "POST");
            return fail(res, 405, "Use POST for /swap");
        }
        if (req.path.starts_with("/result/") && req.method != "GET" && req.method != "HEAD") {
            res.set_header("Allow", "GET");
            return fail(res, 405, "Use GET for /result/<task id>");
        }
        return fail(res, 404, "Not found");
    default:
        return fail(res, res.status, "HTTP error " + std::to_string(res.status));
    }
}

void SwapServer::logLine(const httplib::Request& req, const httplib::Response& res) {
    const long long ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(GuardedHttpServer::currentRequestAge()).count();
    const std::string line = escapeForLog(req.method.empty() ? "-" : req.method) + " " +
                             escapeForLog(req.path.empty() ? "-" : req.path) + " " +
                             std::to_string(res.status) + " " + std::to_string(res.body.size()) + "B " +
                             std::to_string(ms) + "ms";
    if (options_.log) {
        options_.log(line);
        return;
    }
    static std::mutex mutex;
    std::lock_guard lock(mutex);
    std::cerr << line << std::endl;
}

} // namespace lumivex::faceswap
