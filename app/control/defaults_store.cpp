#include "app/control/defaults_store.h"

#include "core/foundation/kept_aside.h"

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <memory>
#include <vector>

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

std::optional<std::string> DefaultsStore::keepAside(const std::string& key) const {
    const auto settings = open(path_);
    const QString name = QString::fromStdString(key);
    const QVariant value = settings->value(name);
    if (!value.isValid()) {
        return std::nullopt;
    }
    std::vector<std::string> keys;
    for (const QString& stored : settings->childKeys()) {
        keys.push_back(stored.toStdString());
    }
    const KeptAside::Plan plan = KeptAside::key(key).plan(clock_(), keys);
    settings->setValue(QString::fromStdString(plan.name), value);
    settings->remove(name);
    for (const std::string& dropped : plan.dropped) {
        settings->remove(QString::fromStdString(dropped));
    }
    settings->sync();
    if (settings->status() != QSettings::NoError) {
        return std::nullopt;
    }
    return plan.name;
}

std::string DefaultsStore::path() const {
    return open(path_)->fileName().toStdString();
}

} // namespace loadwarden
