#pragma once

// The face swap HTTP service: POST /swap takes a multipart form (source, target, face_index) and answers
// {"task_id": "..."}; GET /result/<id> answers 404 while the swap runs, the JPEG when it is done, and an
// error status with a plain-text reason when it failed. An id that is unknown or whose result has expired
// gets 410, never 404, because clients keep polling as long as they see 404.

#include "GuardedHttpServer.h"
#include "SwapQueue.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>

namespace lumivex::faceswap {

struct ServerOptions {
    std::string host = "127.0.0.1";
    int port = LUMIVEX_FACESWAP_DEFAULT_PORT; // 0 picks a free port
    int workers = 2;
    std::size_t queueCapacity = 32;
    std::chrono::milliseconds resultLifetime = std::chrono::minutes(10);
    std::size_t maxUploadBytes = 25u << 20;
    std::string landmarkModel = kDefaultLandmarkModel;
    SwapLimits limits;
    ConnectionLimits connections;
    // Receives one line per request; empty writes to standard error.
    std::function<void(const std::string&)> log;
};

class SwapServer {
public:
    explicit SwapServer(ServerOptions options);
    ~SwapServer();
    SwapServer(const SwapServer&) = delete;
    SwapServer& operator=(const SwapServer&) = delete;

    // Binds the socket; false when the address is taken or invalid.
    bool bind();
    int port() const { return port_; }

    // Serves until stop(); run() blocks, start() serves on a thread of its own.
    bool run();
    void start();
    // Closes the listening socket and every connection; returns when no request is being served.
    void stop();
    // Stops the swaps as well: waiting ones are dropped, running ones abandoned at their next step. True
    // when every worker has ended within `patience`.
    bool stopSwaps(std::chrono::milliseconds patience);

private:
    ServerOptions options_;
    SwapQueue queue_;
    GuardedHttpServer http_;
    std::thread thread_;
    int port_ = -1;
    socket_t listenSocket_ = -1;
    static constexpr int kListenBacklog = 128;

    void handleSwap(const httplib::Request& req, httplib::Response& res);
    void handleResult(const httplib::Request& req, httplib::Response& res);
    void explainError(const httplib::Request& req, httplib::Response& res);
    void logLine(const httplib::Request& req, const httplib::Response& res);
};

// True when the bytes start like a photo format the decoder reads (JPEG, PNG, WebP, BMP, TIFF).
bool looksLikeImage(const std::string& bytes);

// Bytes as one printable line: control characters, backslashes and bytes outside ASCII become \xNN, so a
// client cannot forge log lines or send escape sequences to a terminal.
std::string escapeForLog(const std::string& text);

} // namespace lumivex::faceswap
