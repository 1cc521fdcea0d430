#pragma once

// An HTTP server that a few bad clients cannot stop. Every connection has a thread of its own (up to a
// limit), so a fresh request never waits behind a slow one; each request must deliver its headers and its
// body within deadlines that count from its first byte, however slowly it trickles; idle keep-alive
// connections are closed after a short wait, at once when many connections are open; and stop() ends
// every connection within moments by shutting its socket down.
//
// Parsing, routing and responses are the HTTP library's: only the reading, the connection loop and the
// threads are replaced.

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <set>
#include <string>

namespace lumivex::faceswap {

struct ConnectionLimits {
    std::chrono::milliseconds headerDeadline{10'000};   // request line and headers, from the request's start
    std::chrono::milliseconds requestDeadline{60'000};  // the whole request, body included
    std::chrono::milliseconds responseDeadline{30'000}; // writing one response to a slow reader
    std::chrono::milliseconds idleTimeout{5'000};       // keep-alive wait for the next request
    std::size_t maxHeaderBytes = 64 * 1024;             // request line and headers together
    std::size_t maxConnections = 256;                   // open at once; the accept loop waits beyond
    std::size_t maxRequestsPerConnection = 100;
};

// Why reading the current request failed, for the error handler, which runs on the connection's thread.
enum class ReadFailure { None, Deadline, HeaderTooLarge };

class GuardedHttpServer : public httplib::Server {
public:
    explicit GuardedHttpServer(ConnectionLimits limits);
    ~GuardedHttpServer() override;

    // Stops accepting, shuts every open connection down and returns once the accept loop has let go.
    void stopAll();
    std::size_t openConnections() const;
    const ConnectionLimits& limits() const { return limits_; }

    // About the request being handled on the calling thread (a handler, the error handler or the logger).
    static ReadFailure currentReadFailure();
    static std::chrono::steady_clock::duration currentRequestAge();
    // Ends the connection after this response: what follows an unreadable request cannot be trusted to
    // start a new one.
    static void closeAfterThisRequest();

private:
    class Connection;
    class ConnectionThreads;

    ConnectionLimits limits_;
    mutable std::mutex mutex_;
    std::condition_variable slotFreed_;
    std::set<socket_t> sockets_;
    std::size_t threads_ = 0;
    std::atomic<bool> stopping_{false};

    static thread_local Connection* current_;

    bool process_and_close_socket(socket_t sock) override;
    bool underPressure() const;
};

} // namespace lumivex::faceswap
