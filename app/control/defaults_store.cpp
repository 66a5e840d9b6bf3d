#include "app/control/defaults_store.h"

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <memory>

namespace loadwarden {

namespace {

std::unique_ptr<QSettings> open(const std::optional<std::string>& path) {
    if (path) {
        return std::make_unique<QSettings>(QString::fromStdString(*path), QSettings::NativeFormat);
    }
    return std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, "Loadwarden",
                                       "Loadwarden");
}

} // namespace

std::optional<std::string> DefaultsStore::read(const std::string& key) const {
    const QVariant value = open(path_)->value(QString::fromStdString(key));
    if (!value.isValid()) {
        return std::nullopt;
    }
    return value.toByteArray().toStdString();
}

bool DefaultsStore::write(const std::string& key, const std::string& value) const {
    const auto settings = open(path_);
    settings->setValue(QString::fromStdString(key), QByteArray::fromStdString(value));
    settings->sync();
    return settings->status() == QSettings::NoError;
}

std::string DefaultsStore::path() const {
    return open(path_)->fileName().toStdString();
}

} // namespace loadwarden
