#pragma once

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointF>
#include <QStringList>

#include <algorithm>

/// What the demo Producer says of itself in its state file, read anew at each question.
class ProducerState {
public:
    explicit ProducerState(QString path) : path_(std::move(path)) {}

    QJsonObject all() const {
        QFile file(path_);
        return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                              : QJsonObject();
    }
    QJsonArray companions() const { return all()["companions"].toArray(); }
    /// The one that came last; empty without any.
    QJsonObject companion() const { return companions().last().toObject(); }
    /// The key of the item that it edits, "screen:1"; empty without one.
    QString editedItem() const { return companion()["editing"].toString(); }
    QJsonObject item(const QString& key) const {
        const QJsonArray items = all()["items"].toArray();
        const auto found = std::ranges::find_if(
            items, [&](const QJsonValue& value) { return value["item"].toString() == key; });
        return found == items.end() ? QJsonObject() : (*found).toObject();
    }
    /// Where the point stands, in pixels from the item's centre.
    QPointF point(const QString& key, int id) const {
        const QJsonValue place = deformation(key)["xy"].toArray()[id];
        return {place[0].toDouble(), place[1].toDouble()};
    }
    /// Ids of the item's selected points, in order, as text: "0 3".
    QString selection(const QString& key) const {
        QStringList ids;
        for (const QJsonValue& id : deformation(key)["selectedXy"].toArray())
            ids.append(QString::number(id.toInt()));
        return ids.join(' ');
    }

private:
    QJsonObject deformation(const QString& key) const {
        return item(key)["deformation"].toObject();
    }

    QString path_;
};
