#include "cluster/sharedvalue.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <cmath>

namespace mivohost {

namespace {

const QLatin1String valueField("value");
const QLatin1String machineField("by");
const QLatin1String nameField("name");
constexpr int longestName = 64;

} // namespace

QByteArray SharedValue::toJson() const
{
    const QJsonValue json = value.userType() == QMetaType::QString ? QJsonValue(value.toString())
                                                                   : QJsonValue(value.toDouble());
    return QJsonDocument(QJsonObject{{valueField, json},
                                     {machineField, machine},
                                     {nameField, name.left(longestName)}})
        .toJson(QJsonDocument::Compact);
}

std::optional<SharedValue> SharedValue::fromJson(const QByteArray& json)
{
    if (json.size() > longest) {
        return std::nullopt;
    }
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const QJsonValue value = object.value(valueField);
    const QString machine = object.value(machineField).toString();
    const QString name = object.value(nameField).toString().left(longestName);
    if (value.isString()) {
        return SharedValue{value.toString(), machine, name};
    }
    if (!value.isDouble()) {
        return std::nullopt;
    }
    constexpr double mostExact = 9007199254740992.; // 2^53
    const double number = value.toDouble();
    if (number == std::floor(number) && std::abs(number) < mostExact) {
        return SharedValue{static_cast<qlonglong>(number), machine, name};
    }
    return SharedValue{number, machine, name};
}

} // namespace mivohost
