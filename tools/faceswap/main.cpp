// lumivex-faceswap: the face swap service the AI Blend screens talk to.

#include "SwapServer.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <pthread.h>
#include <string>
#include <thread>

namespace {

void usage(std::ostream& out) {
    out << "usage: lumivex-faceswap [--host ADDR] [--port N] [--workers N] [--queue N]\n"
           "                        [--result-minutes N] [--max-upload-mb N] [--landmarks FILE]\n";
}

bool readNumber(const char* text, long min, long max, long& value) {
    char* end = nullptr;
    value = std::strtol(text, &end, 10);
    return end && *end == '\0' && end != text && value >= min && value <= max;
}

} // namespace

int main(int argc, char** argv) {
    lumivex::faceswap::ServerOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            usage(std::cout);
            return 0;
        }
        if (i + 1 >= argc) {
            usage(std::cerr);
            return 2;
        }
        const char* value = argv[++i];
        long n = 0;
        bool ok = true;
        if (arg == "--host")
            options.host = value;
        else if (arg == "--landmarks")
            options.landmarkModel = value;
        else if (arg == "--port" && (ok = readNumber(value, 0, 65535, n)))
            options.port = int(n);
        else if (arg == "--workers" && (ok = readNumber(value, 1, 64, n)))
            options.workers = int(n);
        else if (arg == "--queue" && (ok = readNumber(value, 1, 10000, n)))
            options.queueCapacity = std::size_t(n);
        else if (arg == "--result-minutes" && (ok = readNumber(value, 1, 24 * 60, n)))
            options.resultLifetime = std::chrono::minutes(n);
        else if (arg == "--max-upload-mb" && (ok = readNumber(value, 1, 4096, n)))
            options.maxUploadBytes = std::size_t(n) << 20;
        else
            ok = false;
        if (!ok) {
            std::cerr << "lumivex-faceswap: bad option " << arg << " " << value << "\n";
            usage(std::cerr);
            return 2;
        }
    }

    // Signals are taken by one thread with sigwait, so stopping happens outside a signal handler. They are
    // blocked before any other thread starts, and every thread inherits the mask.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    lumivex::faceswap::SwapServer server(options);
    if (!server.bind()) {
        std::cerr << "lumivex-faceswap: cannot listen on " << options.host << ":" << options.port << "\n";
        return 1;
    }
    std::cerr << "lumivex-faceswap: listening on http://" << options.host << ":" << server.port() << " with "
              << options.workers << " worker(s)" << std::endl;

    std::thread waiter([&] {
        int received = 0;
        sigwait(&signals, &received);
        std::cerr << "lumivex-faceswap: stopping" << std::endl;
        server.stop();
    });
    const bool served = server.run();
    // If serving ended on its own, wake the waiter so it can be joined.
    kill(getpid(), SIGTERM);
    waiter.join();
    // A swap of a large photo can take seconds; a stopping service does not wait for it.
    if (!server.stopSwaps(std::chrono::seconds(2))) {
        std::cerr << "lumivex-faceswap: abandoning the running swap" << std::endl;
        std::_Exit(0);
    }
    return served ? 0 : 1;
}
