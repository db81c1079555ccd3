#pragma once

#include <QObject>
#include <QtQmlIntegration>

class MeshGridItem;

/// One control point of a mesh: its position, its selection state and the rotation of its number.
/// The grid draws all points; a change of a point schedules a redraw of the grid.
class MeshPoint : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// Position in the item's pixels, origin at the item's top left corner.
    Q_PROPERTY(double x READ x WRITE setX NOTIFY moved)
    Q_PROPERTY(double y READ y WRITE setY NOTIFY moved)
    /// The last position that the program wrote.
    Q_PROPERTY(double previousX READ previousX WRITE setPreviousX NOTIFY moved)
    Q_PROPERTY(double previousY READ previousY WRITE setPreviousY NOTIFY moved)
    /// Index of the point in its mesh, row by row.
    Q_PROPERTY(int pointNum READ pointNum WRITE setPointNum NOTIFY pointNumChanged)
    /// Rotation of the number against the mesh in degrees.
    Q_PROPERTY(double viewingRotation READ viewingRotation WRITE setViewingRotation NOTIFY
                   viewingRotationChanged)
    /// "UNSELECTED", "SELECTED" or "CURRENT"; other values are ignored.
    Q_PROPERTY(QString state READ state WRITE setState NOTIFY stateChanged)
    /// Whether the state is "SELECTED" or "CURRENT".
    Q_PROPERTY(bool selected READ isSelected NOTIFY stateChanged)
    /// Whether the point's grid is visible.
    Q_PROPERTY(bool visible READ isVisible)

public:
    enum class State { Unselected, Selected, Current };

    explicit MeshPoint(QObject* parent = nullptr);
    ~MeshPoint() override;

    double x() const { return x_; }
    double y() const { return y_; }
    double previousX() const { return previousX_; }
    double previousY() const { return previousY_; }
    int pointNum() const { return pointNum_; }
    double viewingRotation() const { return viewingRotation_; }
    QString state() const;
    State selection() const { return state_; }
    bool isSelected() const { return state_ != State::Unselected; }
    bool isVisible() const;

    void setX(double x);
    void setY(double y);
    void setPreviousX(double x);
    void setPreviousY(double y);
    void setPointNum(int number);
    void setViewingRotation(double degrees);
    void setState(const QString& state);

    /// Sets position and last written position.
    Q_INVOKABLE void setPosition(double x, double y);

signals:
    void moved();
    void pointNumChanged();
    void viewingRotationChanged();
    void stateChanged();

private:
    friend class MeshGridItem;

    void scheduleRedraw();

    MeshGridItem* grid_ = nullptr; // set and cleared by the grid
    double x_ = 0;
    double y_ = 0;
    double previousX_ = 0;
    double previousY_ = 0;
    double viewingRotation_ = 0;
    int pointNum_ = 0;
    State state_ = State::Unselected;
};
