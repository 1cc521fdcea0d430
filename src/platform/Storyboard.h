#pragma once

#include <QString>
#include <functional>

class ViewController;

// Registry of screens that are made by board and identifier rather than by their class.
class Storyboard {
public:
    using Factory = std::function<ViewController*()>;

    static void registerController(const QString& board, const QString& identifier, Factory factory);
    // A new screen, or null when nothing is registered under that name.
    static ViewController* instantiate(const QString& board, const QString& identifier);
    static bool contains(const QString& board, const QString& identifier);
};
