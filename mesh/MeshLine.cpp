#include "mesh/MeshLine.h"

#include "mesh/MeshGridItem.h"

#include <QtMath>

#include <cmath>

MeshLine::MeshLine(QObject* parent) : QObject(parent) {}

MeshLine::~MeshLine() {
    if (grid_)
        grid_->removeLine(this);
}

void MeshLine::setFromPoint(MeshPoint* point) {
    if (point == fromPoint_)
        return;
    fromPoint_ = point;
    scheduleRedraw();
    emit endsChanged();
}

void MeshLine::setToPoint(MeshPoint* point) {
    if (point == toPoint_)
        return;
    toPoint_ = point;
    scheduleRedraw();
    emit endsChanged();
}

double MeshLine::length() const {
    if (!fromPoint_ || !toPoint_)
        return 0;
    return std::hypot(toPoint_->x() - fromPoint_->x(), toPoint_->y() - fromPoint_->y());
}

double MeshLine::rotation() const {
    if (!fromPoint_ || !toPoint_)
        return 0;
    return qRadiansToDegrees(
        std::atan2(toPoint_->y() - fromPoint_->y(), toPoint_->x() - fromPoint_->x()));
}

void MeshLine::scheduleRedraw() {
    if (grid_)
        grid_->scheduleRedraw();
}
