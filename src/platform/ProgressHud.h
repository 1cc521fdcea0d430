#pragma once

#include <QString>

class QWidget;

// A busy indicator over the key window with a mask that blocks input until it is dismissed.
class ProgressHud {
public:
    static void show(const QString& status = QString());
    static void dismiss();
    static bool isVisible();
    static QString status();
    // The window the indicator covers; by default the key window.
    static void setHost(QWidget* host);
};
