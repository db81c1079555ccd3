#pragma once

#include "mesh/MeshPoint.h"

#include <QObject>
#include <QPointer>
#include <QtQmlIntegration>

class MeshGridItem;

/// A straight edge of a mesh between two control points. The grid draws it; length and direction
/// are computed on reading.
class MeshLine : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(MeshPoint* fromPoint READ fromPoint WRITE setFromPoint NOTIFY endsChanged)
    Q_PROPERTY(MeshPoint* toPoint READ toPoint WRITE setToPoint NOTIFY endsChanged)
    /// Distance of the ends in the item's pixels; 0 while an end is missing.
    Q_PROPERTY(double length READ length)
    /// Direction from the first end to the second in degrees, clockwise from the right.
    Q_PROPERTY(double rotation READ rotation)

public:
    explicit MeshLine(QObject* parent = nullptr);
    ~MeshLine() override;

    MeshPoint* fromPoint() const { return fromPoint_; }
    MeshPoint* toPoint() const { return toPoint_; }
    void setFromPoint(MeshPoint* point);
    void setToPoint(MeshPoint* point);

    double length() const;
    double rotation() const;

signals:
    void endsChanged();

private:
    friend class MeshGridItem;

    void scheduleRedraw();

    MeshGridItem* grid_ = nullptr; // set and cleared by the grid
    QPointer<MeshPoint> fromPoint_;
    QPointer<MeshPoint> toPoint_;
};
