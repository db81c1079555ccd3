#include "mesh/MeshPoint.h"

#include "mesh/MeshGridItem.h"

namespace {
const QString kStateNames[] = {QStringLiteral("UNSELECTED"), QStringLiteral("SELECTED"),
                               QStringLiteral("CURRENT")};
}

MeshPoint::MeshPoint(QObject* parent) : QObject(parent) {}

MeshPoint::~MeshPoint() {
    if (grid_)
        grid_->removePoint(this);
}

QString MeshPoint::state() const {
    return kStateNames[static_cast<int>(state_)];
}

bool MeshPoint::isVisible() const {
    return grid_ && grid_->isVisible();
}

void MeshPoint::setX(double x) {
    if (x == x_)
        return;
    x_ = x;
    scheduleRedraw();
    emit moved();
}

void MeshPoint::setY(double y) {
    if (y == y_)
        return;
    y_ = y;
    scheduleRedraw();
    emit moved();
}

void MeshPoint::setPreviousX(double x) {
    previousX_ = x;
    emit moved();
}

void MeshPoint::setPreviousY(double y) {
    previousY_ = y;
    emit moved();
}

void MeshPoint::setPointNum(int number) {
    if (number == pointNum_)
        return;
    pointNum_ = number;
    scheduleRedraw();
    emit pointNumChanged();
}

void MeshPoint::setViewingRotation(double degrees) {
    if (degrees == viewingRotation_)
        return;
    viewingRotation_ = degrees;
    scheduleRedraw();
    emit viewingRotationChanged();
}

void MeshPoint::setState(const QString& state) {
    for (const State candidate : {State::Unselected, State::Selected, State::Current}) {
        if (candidate == state_ || state != kStateNames[static_cast<int>(candidate)])
            continue;
        state_ = candidate;
        scheduleRedraw();
        emit stateChanged();
        return;
    }
}

void MeshPoint::setPosition(double x, double y) {
    x_ = previousX_ = x;
    y_ = previousY_ = y;
    scheduleRedraw();
    emit moved();
}

void MeshPoint::scheduleRedraw() {
    if (grid_)
        grid_->scheduleRedraw();
}
