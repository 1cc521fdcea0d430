#pragma once

#include "platform/Log.h"

#include <QString>
#include <functional>
#include <string>

class ViewController;

// Registry of screens that are made by board and identifier rather than by their class. Every screen is
// registered once at start-up; asking for one that is not registered, or for the wrong class, is a
// programmer's error that stops the program with the name that was asked for.
class Storyboard {
public:
    using Factory = std::function<ViewController*()>;

    static void registerController(const QString& board, const QString& identifier, Factory factory);
    // A new screen; never null.
    static ViewController* instantiate(const QString& board, const QString& identifier);
    static bool contains(const QString& board, const QString& identifier);

    // A new screen of class T; never null.
    template <typename T> static T* instantiate(const QString& board, const QString& identifier) {
        auto* screen = qobject_cast<T*>(instantiate(board, identifier));
        if (!screen)
            fatalError(("Storyboard \"" + board + "\" screen \"" + identifier + "\" is not a " +
                        QString::fromLatin1(T::staticMetaObject.className()))
                           .toStdString());
        return screen;
    }
};
