#include "tests/end_to_end/ProducerState.h"

#include <QFile>
#include <QJsonDocument>
#include <QStringList>

QJsonObject ProducerState::all() const {
    QFile file(path_);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

QJsonObject ProducerState::item(const QString& key) const {
    const QJsonArray items = all()["items"].toArray();
    for (const QJsonValue& value : items) {
        if (value.toObject()["item"].toString() == key) {
            return value.toObject();
        }
    }
    return {};
}

QPointF ProducerState::point(const QString& key, int id) const {
    const QJsonArray place = deformation(key)["xy"].toArray()[id].toArray();
    return {place[0].toDouble(), place[1].toDouble()};
}

QString ProducerState::selection(const QString& key) const {
    QStringList ids;
    for (const QJsonValue& id : deformation(key)["selectedXy"].toArray()) {
        ids.append(QString::number(id.toInt()));
    }
    return ids.join(' ');
}
