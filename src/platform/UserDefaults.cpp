#include "platform/UserDefaults.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace {

QString defaultStandardPath() {
    QString folder = qEnvironmentVariable("LUMIVEX_CONFIG_DIR");
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation);
    return QDir(folder).filePath(QStringLiteral("defaults.ini"));
}

} // namespace

UserDefaults::UserDefaults(const QString& filePath) {
    open(filePath);
}

UserDefaults::~UserDefaults() = default;

void UserDefaults::open(const QString& filePath) {
    std::lock_guard lock(mutex_);
    if (settings_)
        settings_->sync();
    settings_ = std::make_unique<QSettings>(filePath, QSettings::IniFormat);
}

UserDefaults& UserDefaults::standard() {
    // Resolved on first use, so the application's name is already set when the folder is chosen.
    static UserDefaults instance(defaultStandardPath());
    return instance;
}

void UserDefaults::setStandardPath(const QString& filePath) {
    standard().open(filePath);
}

bool UserDefaults::boolForKey(const QString& key) const {
    std::lock_guard lock(mutex_);
    return settings_->value(key, false).toBool();
}

void UserDefaults::setBool(bool value, const QString& key) {
    std::lock_guard lock(mutex_);
    settings_->setValue(key, value);
}

void UserDefaults::removeObjectForKey(const QString& key) {
    std::lock_guard lock(mutex_);
    settings_->remove(key);
}

bool UserDefaults::synchronize() {
    std::lock_guard lock(mutex_);
    settings_->sync();
    return settings_->status() == QSettings::NoError;
}

QString UserDefaults::path() const {
    std::lock_guard lock(mutex_);
    return settings_->fileName();
}
