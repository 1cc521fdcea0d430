// Bad clients on the loopback, bounded in count and time: slow trickles, idle connections, malformed
// requests, pixel bombs and a stop in the middle of a swap.

#include "FaceSwapTestSupport.h"
#include "SwapServer.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <zlib.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <mutex>
#include <thread>

using namespace lumivex::faceswap;
using namespace faceswaptest;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

int connectTo(int port) {
    const int sock = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_port = htons(std::uint16_t(port));
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(sock, reinterpret_cast<sockaddr*>(&addr), sizeof(addr)) != 0) {
        ::close(sock);
        return -1;
    }
    timeval limit{15, 0}; // no test read may hang
    ::setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    return sock;
}

void sendAll(int sock, const std::string& bytes) {
    ::send(sock, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

// Everything the server sends until it closes the connection (or 15 s pass).
std::string readAll(int sock) {
    std::string out;
    char buffer[4096];
    for (ssize_t n; (n = ::recv(sock, buffer, sizeof(buffer), 0)) > 0;)
        out.append(buffer, std::size_t(n));
    return out;
}

std::string rawRequest(int port, const std::string& request) {
    const int sock = connectTo(port);
    if (sock < 0)
        return {};
    sendAll(sock, request);
    std::string answer = readAll(sock);
    ::close(sock);
    return answer;
}

httplib::MultipartFormDataItems swapForm(const std::string& source, const std::string& target) {
    return {{"source", source, "source.jpg", "image/jpeg"},
            {"target", target, "target.jpg", "image/jpeg"},
            {"face_index", "0", "", ""}};
}

std::string taskIdOf(const std::string& json) {
    const auto at = json.find("\"task_id\": \"");
    return at == std::string::npos ? std::string() : json.substr(at + 12, 32);
}

// Submits and polls until the swap is done; the status of the result, or 0.
int swapAndWait(int port, const std::string& source, const std::string& target, Clock::duration limit) {
    httplib::Client cli("127.0.0.1", port);
    cli.set_read_timeout(10, 0);
    httplib::Result submitted = cli.Post("/swap", swapForm(source, target));
    if (!submitted || submitted->status != 200)
        return 0;
    const std::string id = taskIdOf(submitted->body);
    const auto deadline = Clock::now() + limit;
    while (Clock::now() < deadline) {
        httplib::Result res = cli.Get("/result/" + id);
        if (!res)
            return 0;
        if (res->status != 404)
            return res->status;
        std::this_thread::sleep_for(20ms);
    }
    return 0;
}

// A PNG of one flat colour, as large as asked, made row by row so the test itself stays small.
std::string flatPng(std::uint32_t width, std::uint32_t height) {
    auto chunk = [](const std::string& type, const std::string& data) {
        std::string out;
        for (int shift = 24; shift >= 0; shift -= 8)
            out += char((data.size() >> shift) & 0xFF);
        const std::string body = type + data;
        out += body;
        const uLong crc = crc32(0, reinterpret_cast<const Bytef*>(body.data()), uInt(body.size()));
        for (int shift = 24; shift >= 0; shift -= 8)
            out += char((crc >> shift) & 0xFF);
        return out;
    };
    std::string header;
    for (std::uint32_t v : {width, height})
        for (int shift = 24; shift >= 0; shift -= 8)
            header += char((v >> shift) & 0xFF);
    header += std::string("\x08\x02\0\0\0", 5);

    z_stream z{};
    deflateInit(&z, 9);
    std::vector<Bytef> row(1 + std::size_t(width) * 3, 90), out(1 << 20);
    row[0] = 0; // filter byte
    std::string compressed;
    for (std::uint32_t y = 0; y <= height; ++y) {
        const bool last = y == height;
        z.next_in = last ? nullptr : row.data();
        z.avail_in = last ? 0 : uInt(row.size());
        do {
            z.next_out = out.data();
            z.avail_out = uInt(out.size());
            deflate(&z, last ? Z_FINISH : Z_NO_FLUSH);
            compressed.append(reinterpret_cast<char*>(out.data()), out.size() - z.avail_out);
        } while (z.avail_out == 0);
    }
    deflateEnd(&z);
    return std::string("\x89PNG\r\n\x1A\n", 8) + chunk("IHDR", header) + chunk("IDAT", compressed) +
           chunk("IEND", "");
}

// The service binary as the app's run script starts it, on a port of its own.
class ServiceProcess {
public:
    explicit ServiceProcess(int workers = 2) {
        port_ = 21000 + int(::getpid() % 20000);
        pid_ = ::fork();
        if (pid_ == 0) {
            const std::string port = std::to_string(port_), count = std::to_string(workers);
            ::freopen("/dev/null", "w", stderr); // one line per request is noise here
            ::execl(LUMIVEX_FACESWAP_BINARY, LUMIVEX_FACESWAP_BINARY, "--port", port.c_str(), "--workers",
                    count.c_str(), static_cast<char*>(nullptr));
            ::_exit(127);
        }
        const auto deadline = Clock::now() + 10s;
        while (Clock::now() < deadline) {
            const int sock = connectTo(port_);
            if (sock >= 0) {
                ::close(sock);
                return;
            }
            std::this_thread::sleep_for(20ms);
        }
    }
    ~ServiceProcess() {
        if (pid_ > 0 && !exited_) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
    }
    int port() const { return port_; }
    pid_t pid() const { return pid_; }

    // The most memory the process has held, in MB.
    double peakMegabytes() const {
        std::ifstream status("/proc/" + std::to_string(pid_) + "/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmHWM:"))
                return std::stod(line.substr(6)) / 1024.0;
        return -1;
    }

    // Sends SIGTERM and waits up to `limit`; the exit status, or -1 when it did not stop in time.
    int terminate(Clock::duration limit) {
        ::kill(pid_, SIGTERM);
        const auto deadline = Clock::now() + limit;
        while (Clock::now() < deadline) {
            int status = 0;
            if (::waitpid(pid_, &status, WNOHANG) == pid_) {
                exited_ = true;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            std::this_thread::sleep_for(10ms);
        }
        return -1;
    }

private:
    int port_ = 0;
    pid_t pid_ = -1;
    bool exited_ = false;
};

class ServiceAbuse : public faceswaptest::ServiceFixture {
protected:
};

} // namespace

TEST_F(ServiceAbuse, SlowClientsNeitherDelayASwapNorOutstayTheirDeadline) {
    ServerOptions options;
    options.connections.headerDeadline = 2s;
    startServer(options);
    const int port = server->port();

    // Eight clients trickle one header line every 300 ms, as long as they are let.
    constexpr int slow = 8;
    std::vector<std::future<std::pair<std::string, double>>> tricklers;
    for (int i = 0; i < slow; ++i)
        tricklers.push_back(std::async(std::launch::async, [port] {
            const int sock = connectTo(port);
            const auto started = Clock::now();
            sendAll(sock, "POST /swap HTTP/1.1\r\n");
            for (int line = 0; line < 30; ++line) {
                std::this_thread::sleep_for(300ms);
                if (::send(sock, "X-Slow: 1\r\n", 11, MSG_NOSIGNAL) < 0)
                    break;
                pollfd p{sock, POLLIN, 0};
                if (::poll(&p, 1, 0) > 0)
                    break; // the server has answered
            }
            std::string answer = readAll(sock);
            ::close(sock);
            return std::pair{answer, std::chrono::duration<double>(Clock::now() - started).count()};
        }));
    std::this_thread::sleep_for(200ms);

    const auto started = Clock::now();
    EXPECT_EQ(swapAndWait(port, sample("messi5.jpg"), readBytes(templatePath(true, 2)), 10s), 200);
    EXPECT_LT(Clock::now() - started, 10s);

    for (auto& trickler : tricklers) {
        const auto [answer, seconds] = trickler.get();
        EXPECT_TRUE(answer.starts_with("HTTP/1.1 408")) << answer;
        EXPECT_NE(answer.find("The request did not arrive in time: headers are read for 2 s"),
                  std::string::npos);
        EXPECT_GT(seconds, 1.8);
        EXPECT_LT(seconds, 4.0); // the deadline, not the 9 s the trickle would last
    }
}

TEST_F(ServiceAbuse, IdleConnectionsCauseNoOutage) {
    startServer();
    const int port = server->port();
    std::vector<int> idle;
    for (int i = 0; i < 100; ++i)
        idle.push_back(connectTo(port));
    // Kept-alive connections that went quiet after a request hold no one up either.
    std::vector<std::unique_ptr<httplib::Client>> quiet;
    for (int i = 0; i < 10; ++i) {
        quiet.push_back(std::make_unique<httplib::Client>("127.0.0.1", port));
        quiet.back()->set_keep_alive(true);
        ASSERT_TRUE(quiet.back()->Get("/result/x"));
    }
    const auto started = Clock::now();
    httplib::Client cli("127.0.0.1", port);
    httplib::Result res = cli.Get("/result/0123456789abcdef0123456789abcdef");
    ASSERT_TRUE(res);
    EXPECT_EQ(res->status, 410);
    EXPECT_LT(Clock::now() - started, 1s);
    for (int sock : idle)
        ::close(sock);
}

TEST_F(ServiceAbuse, MalformedRequestsAreToldWhatWasWrong) {
    startServer();
    const int port = server->port();
    const struct {
        std::string request;
        std::string status;
        std::string reason;
    } cases[] = {
        {"BREW /swap HTTP/1.1\r\n\r\n", "400",
         "Unknown method BREW; use POST /swap or GET /result/<task id>"},
        {"this is not http\r\n\r\n", "400", "The request line could not be read; send METHOD /path HTTP/1.1"},
        {"GET /result/x HTTP/1.1\r\n" + std::string(70 * 1024, 'a') + "\r\n\r\n", "400",
         "The request's headers are larger than 64 KB"},
        {"GET /swap HTTP/1.1\r\nConnection: close\r\n\r\n", "405", "Use POST for /swap"},
        {"DELETE /result/abc HTTP/1.1\r\nConnection: close\r\n\r\n", "405", "Use GET for /result/<task id>"},
        // A line break in the id: unknown like any other, never the 404 a client would poll forever.
        {"GET /result/ab%0Acd HTTP/1.1\r\nConnection: close\r\n\r\n", "410",
         "Unknown task, or its result has expired"},
    };
    for (const auto& c : cases) {
        const std::string answer = rawRequest(port, c.request);
        EXPECT_TRUE(answer.starts_with("HTTP/1.1 " + c.status)) << c.reason << "\n" << answer.substr(0, 200);
        EXPECT_TRUE(answer.ends_with(c.reason)) << answer.substr(0, 300);
    }

    // What a client puts into a path reaches the log escaped: no forged line, no terminal escape.
    rawRequest(port, "GET /result/%1b%5b31mred%0AGET%20/forged HTTP/1.1\r\nConnection: close\r\n\r\n");
    std::lock_guard lock(logMutex);
    const auto line = std::find_if(logLines.begin(), logLines.end(),
                                   [](const std::string& l) { return l.find("red") != std::string::npos; });
    ASSERT_NE(line, logLines.end());
    EXPECT_TRUE(line->starts_with("GET /result/\\x1b[31mred\\x0aGET /forged 410 ")) << *line;
    for (const std::string& l : logLines)
        EXPECT_EQ(l.find_first_of("\n\x1b"), std::string::npos) << l;
}

TEST(ServiceProcessAbuse, PixelBombsAreRefusedOrReducedWithinBoundedMemory) {
    ServiceProcess service;
    const std::string face = sample("messi5.jpg");
    httplib::Client cli("127.0.0.1", service.port());
    cli.set_read_timeout(20, 0);

    // Beyond the limit: refused at the door, from the header alone.
    const std::string huge = flatPng(20000, 20000);
    EXPECT_LT(huge.size(), 2u << 20);
    httplib::Result refused = cli.Post("/swap", swapForm(face, huge));
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 413);
    EXPECT_EQ(refused->body,
              "The target photo is 20000 × 20000 pixels (400 MP); photos up to 200 MP are accepted");

    // Within it: two at once, each decoded row by row into a few megapixels.
    // Decoded whole, the two would take 600 MB between them.
    const std::string large = flatPng(10000, 10000);
    std::vector<std::future<int>> swaps;
    for (int i = 0; i < 2; ++i)
        swaps.push_back(
            std::async(std::launch::async, [&] { return swapAndWait(service.port(), face, large, 60s); }));
    for (auto& s : swaps)
        EXPECT_EQ(s.get(), 422); // a flat picture has no face
    const double peak = service.peakMegabytes();
    EXPECT_GT(peak, 0);
    EXPECT_LT(peak, 600);
    RecordProperty("peak_mb", int(peak));
    std::printf("peak memory of the service: %.0f MB\n", peak);
}

TEST(ServiceProcessAbuse, SigtermStopsWithinSecondsWhileASwapRunsAndClientsTrickle) {
    ServiceProcess service(1);
    // A long swap: a photo of about 190 MP decoded row by row.
    const std::string large = flatPng(14000, 13500);
    httplib::Client cli("127.0.0.1", service.port());
    httplib::Result submitted = cli.Post("/swap", swapForm(sample("messi5.jpg"), large));
    ASSERT_TRUE(submitted);
    ASSERT_EQ(submitted->status, 200);
    std::vector<int> slow;
    for (int i = 0; i < 3; ++i) {
        slow.push_back(connectTo(service.port()));
        sendAll(slow.back(), "POST /swap HTTP/1.1\r\nX-Slow: 1\r\n");
    }
    std::this_thread::sleep_for(300ms);
    const auto started = Clock::now();
    EXPECT_EQ(service.terminate(5s), 0);
    EXPECT_LT(Clock::now() - started, 3s);
    for (int sock : slow)
        ::close(sock);
}
