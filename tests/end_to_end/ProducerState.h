#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QPointF>
#include <QString>

/// What the demo Producer says of itself in its state file, read anew at each question.
class ProducerState {
public:
    explicit ProducerState(QString path) : path_(std::move(path)) {}

    QJsonObject all() const;
    QJsonArray companions() const { return all()["companions"].toArray(); }
    /// The one that came last; empty without any.
    QJsonObject companion() const { return companions().last().toObject(); }
    /// The key of the item that it edits, "screen:1"; empty without one.
    QString editedItem() const { return companion()["editing"].toString(); }
    QJsonObject item(const QString& key) const;
    QJsonObject deformation(const QString& key) const {
        return item(key)["deformation"].toObject();
    }
    /// Where the point stands, in pixels from the item's centre.
    QPointF point(const QString& key, int id) const;
    /// Ids of the item's selected points, in order, as text: "0 3".
    QString selection(const QString& key) const;

private:
    QString path_;
};
