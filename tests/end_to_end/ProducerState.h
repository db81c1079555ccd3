#pragma once

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointF>
#include <QStringList>

#include <algorithm>

/// The state file of the demo Producer. Every call reads the file again.
struct ProducerState {
    QString path;

    QJsonObject all() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject();
    }
    QJsonArray companions() const { return all()["companions"].toArray(); }
    /// The newest companion; empty without any.
    QJsonObject companion() const { return companions().last().toObject(); }
    /// The key of the item whose mesh the newest companion requested, for example "screen:1".
    QString editedItem() const { return companion()["editing"].toString(); }
    QJsonObject item(const QString& key) const {
        const QJsonArray items = all()["items"].toArray();
        const auto found = std::ranges::find_if(
            items, [&](const QJsonValue& value) { return value["item"].toString() == key; });
        return found == items.end() ? QJsonObject() : (*found).toObject();
    }
    /// The position of a control point, in pixels from the item's centre.
    QPointF point(const QString& key, int id) const {
        const QJsonValue position = item(key)["deformation"].toObject()["xy"].toArray()[id];
        return {position[0].toDouble(), position[1].toDouble()};
    }
    /// The ids of the item's selected points in ascending order, for example "0 3".
    QString selection(const QString& key) const {
        QStringList ids;
        for (const QJsonValue& id : item(key)["deformation"].toObject()["selectedXy"].toArray())
            ids.append(QString::number(id.toInt()));
        return ids.join(' ');
    }
};
