#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

class AppDelegate;
class AppWindow;

struct StartupOptions {
    // Where the launch flags are kept; empty for the user's own configuration folder.
    QString configDir;
    // Photos named on the command line, opened in the collage editor once the first screen is up.
    QStringList photos;
};

// Brings the program up once the QApplication exists: registers every screen made by name, points the
// settings at their folder, makes the application object, connects the system's state changes to it and
// runs its start-up. The program and its end-to-end tests start through this same code, so a journey
// tested is a journey a user can take.
class AppStartup : public QObject {
    Q_OBJECT
public:
    explicit AppStartup(StartupOptions options, QObject* parent = nullptr);
    ~AppStartup() override;

    // Call once.
    void start();

    AppDelegate& delegate() const { return *delegate_; }
    AppWindow* window() const;

    // Every screen the program makes by board and identifier. Idempotent.
    static void registerScreens();

private:
    StartupOptions options_;
    std::unique_ptr<AppDelegate> delegate_;
};
