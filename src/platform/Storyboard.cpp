#include "platform/Storyboard.h"

#include "platform/Log.h"
#include "platform/ViewController.h"

#include <QHash>
#include <mutex>

namespace {
struct Registry {
    std::mutex mutex;
    QHash<QString, Storyboard::Factory> factories;
};

Registry& registry() {
    static Registry r;
    return r;
}

QString keyFor(const QString& board, const QString& identifier) {
    return board + QLatin1Char('/') + identifier;
}
} // namespace

void Storyboard::registerController(const QString& board, const QString& identifier, Factory factory) {
    std::lock_guard lock(registry().mutex);
    registry().factories.insert(keyFor(board, identifier), std::move(factory));
}

ViewController* Storyboard::instantiate(const QString& board, const QString& identifier) {
    Factory factory;
    {
        std::lock_guard lock(registry().mutex);
        factory = registry().factories.value(keyFor(board, identifier));
    }
    if (!factory)
        fatalError(
            ("No screen \"" + identifier + "\" is registered in storyboard \"" + board + "\"").toStdString());
    ViewController* screen = factory();
    if (!screen)
        fatalError(("The factory of screen \"" + identifier + "\" made nothing").toStdString());
    return screen;
}

bool Storyboard::contains(const QString& board, const QString& identifier) {
    std::lock_guard lock(registry().mutex);
    return registry().factories.contains(keyFor(board, identifier));
}
