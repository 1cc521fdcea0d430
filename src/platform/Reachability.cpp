#include "platform/Reachability.h"

#include "platform/Dispatch.h"

#include <QNetworkInformation>
#include <QNetworkInterface>

namespace {

// The system's verdict, when it has a clear one. The backend lives on the main thread (it listens for
// changes there), so other threads go straight to the interface scan.
std::optional<uint32_t> networkInformationFlags() {
    if (!Dispatch::isMainThread())
        return std::nullopt;
    if (!QNetworkInformation::instance() && !QNetworkInformation::loadDefaultBackend())
        return std::nullopt;
    QNetworkInformation* information = QNetworkInformation::instance();
    if (!information)
        return std::nullopt;
    switch (information->reachability()) {
    case QNetworkInformation::Reachability::Online:
        return Reachability::kReachable;
    case QNetworkInformation::Reachability::Disconnected:
        return 0u;
    default:
        return std::nullopt;
    }
}

uint32_t interfaceFlags() {
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& interface : interfaces) {
        const auto flags = interface.flags();
        if (!flags.testFlag(QNetworkInterface::IsUp) || !flags.testFlag(QNetworkInterface::IsRunning) ||
            flags.testFlag(QNetworkInterface::IsLoopBack))
            continue;
        if (!interface.addressEntries().isEmpty())
            return Reachability::kReachable;
    }
    return 0;
}

} // namespace

Reachability::Reachability(FlagReader reader) : reader_(std::move(reader)) {}

bool Reachability::isReachable() const {
    return isReachable(reader_ ? reader_() : std::nullopt);
}

bool Reachability::isReachable(std::optional<uint32_t> flags) {
    return flags && (*flags & kReachable) && !(*flags & kConnectionRequired);
}

std::optional<uint32_t> Reachability::systemFlags() {
    if (const auto flags = networkInformationFlags())
        return flags;
    return interfaceFlags();
}
