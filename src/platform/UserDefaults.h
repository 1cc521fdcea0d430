#pragma once

#include <QString>

#include <memory>
#include <mutex>

class QSettings;

// Small persistent flags (first launch seen, onboarding done), kept in an INI file. Safe to use from any
// thread.
class UserDefaults {
public:
    explicit UserDefaults(const QString& filePath);
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    // The application's store: $LUMIVEX_CONFIG_DIR/defaults.ini, else defaults.ini in the per-user
    // configuration folder. References stay valid across setStandardPath.
    static UserDefaults& standard();
    // Points the application's store at another file (tests, command line); pending writes to the old file
    // are saved first.
    static void setStandardPath(const QString& filePath);

    // An absent key reads false. Keys are case-sensitive.
    bool boolForKey(const QString& key) const;
    void setBool(bool value, const QString& key);
    void removeObjectForKey(const QString& key);
    // Writes pending changes and reloads changes made by others; answers false when the file cannot be
    // written or read.
    bool synchronize();
    QString path() const;

private:
    void open(const QString& filePath);

    mutable std::mutex mutex_;
    std::unique_ptr<QSettings> settings_;
};
