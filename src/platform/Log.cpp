#include "platform/Log.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace {
std::mutex& outputMutex() {
    static std::mutex m;
    return m;
}
} // namespace

void printLine(std::string_view line) {
    std::lock_guard lock(outputMutex());
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void fatalError(std::string_view message) {
    {
        std::lock_guard lock(outputMutex());
        std::fputs("Fatal error: ", stderr);
        std::fwrite(message.data(), 1, message.size(), stderr);
        std::fputc('\n', stderr);
        std::fflush(stderr);
    }
    std::abort();
}
