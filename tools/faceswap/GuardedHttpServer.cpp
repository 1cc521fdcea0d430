#include "GuardedHttpServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <thread>

namespace lumivex::faceswap {

using Clock = std::chrono::steady_clock;

namespace {

int millisUntil(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return int(std::clamp<long long>(left, 0, 60'000));
}

// 1 ready, 0 timed out, -1 failed. Retries an interrupted wait with what is left of the time.
int waitFor(socket_t sock, short events, Clock::time_point deadline) {
    for (;;) {
        pollfd p{sock, events, 0};
        const int n = ::poll(&p, 1, millisUntil(deadline));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n;
        return 1; // readable, writable, or hung up: the next recv/send tells which
    }
}

void addressOf(socket_t sock, bool peer, std::string& ip, int& port) {
    sockaddr_storage addr{};
    socklen_t length = sizeof(addr);
    if ((peer ? ::getpeername(sock, reinterpret_cast<sockaddr*>(&addr), &length)
              : ::getsockname(sock, reinterpret_cast<sockaddr*>(&addr), &length)) != 0)
        return;
    char text[INET6_ADDRSTRLEN] = {};
    if (addr.ss_family == AF_INET) {
        const auto* in = reinterpret_cast<const sockaddr_in*>(&addr);
        ::inet_ntop(AF_INET, &in->sin_addr, text, sizeof(text));
        port = ntohs(in->sin_port);
    } else if (addr.ss_family == AF_INET6) {
        const auto* in = reinterpret_cast<const sockaddr_in6*>(&addr);
        ::inet_ntop(AF_INET6, &in->sin6_addr, text, sizeof(text));
        port = ntohs(in->sin6_port);
    }
    ip = text;
}

} // namespace

// One accepted socket as the library's stream: buffered reads that fail once the request's deadline has
// passed or its headers grow too large, and writes bounded by the response deadline.
class GuardedHttpServer::Connection : public httplib::Stream {
public:
    Connection(socket_t sock, const ConnectionLimits& limits) : sock_(sock), limits_(limits) {}

    // Waits for the first byte of the next request until `deadline`; false when none came or the peer left.
    bool waitForRequest(Clock::time_point deadline) {
        if (begin_ < end_)
            return true;
        if (waitFor(sock_, POLLIN, deadline) != 1)
            return false;
        return fill() > 0;
    }

    void beginRequest(Clock::time_point start) {
        start_ = start;
        deadline_ = start + limits_.headerDeadline;
        inHeaders_ = true;
        headerBytes_ = 0;
        tail_ = 0;
        failure_ = ReadFailure::None;
        writeDeadline_.reset();
    }

    ReadFailure failure() const { return failure_; }
    bool closeAfterResponse = false;
    Clock::time_point start() const { return start_; }

    bool is_readable() const override { return begin_ < end_ || waitFor(sock_, POLLIN, Clock::now()) == 1; }

    bool is_writable() const override { return waitFor(sock_, POLLOUT, writeDeadline()) == 1; }

    ssize_t read(char* ptr, size_t size) override {
        if (begin_ == end_) {
            if (Clock::now() >= deadline_ || waitFor(sock_, POLLIN, deadline_) != 1) {
                failure_ = ReadFailure::Deadline;
                return -1;
            }
            const ssize_t n = fill();
            if (n <= 0)
                return n;
        }
        const std::size_t n = std::min(size, end_ - begin_);
        std::memcpy(ptr, buffer_ + begin_, n);
        begin_ += n;
        if (inHeaders_ && !scanHeaders(ptr, n))
            return -1;
        return ssize_t(n);
    }

    ssize_t write(const char* ptr, size_t size) override {
        if (!is_writable())
            return -1;
        return ::send(sock_, ptr, size, MSG_NOSIGNAL);
    }

    void get_remote_ip_and_port(std::string& ip, int& port) const override {
        addressOf(sock_, true, ip, port);
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override {
        addressOf(sock_, false, ip, port);
    }
    socket_t socket() const override { return sock_; }

private:
    socket_t sock_;
    const ConnectionLimits& limits_;
    char buffer_[4096];
    std::size_t begin_ = 0, end_ = 0;
    Clock::time_point start_ = Clock::now();
    Clock::time_point deadline_ = Clock::now();
    mutable std::optional<Clock::time_point> writeDeadline_;
    bool inHeaders_ = true;
    std::size_t headerBytes_ = 0;
    std::uint32_t tail_ = 0; // the last four header bytes
    ReadFailure failure_ = ReadFailure::None;

    Clock::time_point writeDeadline() const {
        if (!writeDeadline_)
            writeDeadline_ = Clock::now() + limits_.responseDeadline;
        return *writeDeadline_;
    }

    ssize_t fill() {
        ssize_t n;
        do
            n = ::recv(sock_, buffer_, sizeof(buffer_), 0);
        while (n < 0 && errno == EINTR);
        begin_ = 0;
        end_ = n > 0 ? std::size_t(n) : 0;
        return n;
    }

    // Counts header bytes until the blank line; past it the body's deadline applies.
    bool scanHeaders(const char* bytes, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            tail_ = (tail_ << 8) | std::uint8_t(bytes[i]);
            if (tail_ == 0x0D0A0D0A) {
                inHeaders_ = false;
                deadline_ = start_ + limits_.requestDeadline;
                return true;
            }
        }
        headerBytes_ += n;
        if (headerBytes_ > limits_.maxHeaderBytes) {
            failure_ = ReadFailure::HeaderTooLarge;
            return false;
        }
        return true;
    }
};

thread_local GuardedHttpServer::Connection* GuardedHttpServer::current_ = nullptr;

// A thread per connection, bounded: enqueue waits while the limit is reached, which deadlines bound.
class GuardedHttpServer::ConnectionThreads : public httplib::TaskQueue {
public:
    explicit ConnectionThreads(GuardedHttpServer& server) : server_(server) {}

    void enqueue(std::function<void()> fn) override {
        {
            std::unique_lock lock(server_.mutex_);
            server_.slotFreed_.wait(lock, [this] {
                return server_.threads_ < server_.limits_.maxConnections || server_.stopping_;
            });
            ++server_.threads_;
        }
        std::thread([this, fn = std::move(fn)] {
            fn();
            std::lock_guard lock(server_.mutex_);
            --server_.threads_;
            server_.slotFreed_.notify_all();
        }).detach();
    }

    // Waits for every connection thread; stopAll() has shut their sockets, so this takes moments.
    void shutdown() override {
        std::unique_lock lock(server_.mutex_);
        server_.slotFreed_.wait(lock, [this] { return server_.threads_ == 0; });
    }

private:
    GuardedHttpServer& server_;
};

GuardedHttpServer::GuardedHttpServer(ConnectionLimits limits) : limits_(limits) {
    new_task_queue = [this] { return new ConnectionThreads(*this); };
}

GuardedHttpServer::~GuardedHttpServer() {
    stopAll();
    // Threads of connections accepted just before the stop may still be finishing.
    std::unique_lock lock(mutex_);
    slotFreed_.wait(lock, [this] { return threads_ == 0; });
}

void GuardedHttpServer::stopAll() {
    stopping_ = true;
    stop();
    std::lock_guard lock(mutex_);
    for (socket_t sock : sockets_)
        ::shutdown(sock, SHUT_RDWR);
    slotFreed_.notify_all();
}

std::size_t GuardedHttpServer::openConnections() const {
    std::lock_guard lock(mutex_);
    return sockets_.size();
}

bool GuardedHttpServer::underPressure() const {
    return openConnections() * 4 >= limits_.maxConnections * 3;
}

ReadFailure GuardedHttpServer::currentReadFailure() {
    return current_ ? current_->failure() : ReadFailure::None;
}

Clock::duration GuardedHttpServer::currentRequestAge() {
    return current_ ? Clock::now() - current_->start() : Clock::duration::zero();
}

void GuardedHttpServer::closeAfterThisRequest() {
    if (current_)
        current_->closeAfterResponse = true;
}

bool GuardedHttpServer::process_and_close_socket(socket_t sock) {
    const Clock::time_point accepted = Clock::now();
    {
        std::lock_guard lock(mutex_);
        if (stopping_) {
            ::close(sock);
            return false;
        }
        sockets_.insert(sock);
    }
    Connection connection(sock, limits_);
    current_ = &connection;
    bool ok = true;
    for (std::size_t served = 0; served < limits_.maxRequestsPerConnection && !stopping_; ++served) {
        // A new connection has its header deadline to start; a kept-alive one waits only briefly, and not
        // at all when connections are scarce.
        const Clock::time_point wait = served == 0       ? accepted + limits_.headerDeadline
                                       : underPressure() ? Clock::now()
                                                         : Clock::now() + limits_.idleTimeout;
        if (!connection.waitForRequest(wait))
            break;
        connection.beginRequest(served == 0 ? accepted : Clock::now());
        const bool last = served + 1 == limits_.maxRequestsPerConnection || underPressure() || stopping_;
        bool closed = false;
        ok = process_request(connection, last, closed, [](httplib::Request&) {});
        if (!ok || closed || last || connection.failure() != ReadFailure::None ||
            connection.closeAfterResponse)
            break;
    }
    current_ = nullptr;
    {
        std::lock_guard lock(mutex_);
        sockets_.erase(sock);
    }
    ::shutdown(sock, SHUT_RDWR);
    ::close(sock);
    return ok;
}

} // namespace lumivex::faceswap
