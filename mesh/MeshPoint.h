#pragma once

#include <QObject>
#include <QtQmlIntegration>

class MeshGridItem;

/// One control point of a mesh, as the scene's rules see it: where it stands, whether it is
/// selected, which way up its number reads. It draws nothing itself; every change only marks the
/// grid that draws all points of the mesh at once.
class MeshPoint : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// Position in the item's pixels, origin at the item's top left corner.
    Q_PROPERTY(double x READ x WRITE setX NOTIFY moved)
    Q_PROPERTY(double y READ y WRITE setY NOTIFY moved)
    /// The position that the program wrote last.
    Q_PROPERTY(double previousX READ previousX WRITE setPreviousX NOTIFY moved)
    Q_PROPERTY(double previousY READ previousY WRITE setPreviousY NOTIFY moved)
    /// Index of the point in its mesh, row by row.
    Q_PROPERTY(int pointNum READ pointNum WRITE setPointNum NOTIFY pointNumChanged)
    /// Degrees by which the number is turned against the mesh.
    Q_PROPERTY(double viewingRotation READ viewingRotation WRITE setViewingRotation NOTIFY
                   viewingRotationChanged)
    /// "UNSELECTED", "SELECTED" or "CURRENT"; anything else is ignored.
    Q_PROPERTY(QString state READ state WRITE setState NOTIFY stateChanged)
    /// Whether the state is "SELECTED" or "CURRENT".
    Q_PROPERTY(bool selected READ isSelected NOTIFY stateChanged)
    /// Whether the grid of the point is shown.
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

    /// Writes position and last written position at once.
    Q_INVOKABLE void place(double x, double y);

signals:
    void moved();
    void pointNumChanged();
    void viewingRotationChanged();
    void stateChanged();

private:
    friend class MeshGridItem;

    void markGrid();

    MeshGridItem* grid_ = nullptr; // set and cleared by the grid
    double x_ = 0;
    double y_ = 0;
    double previousX_ = 0;
    double previousY_ = 0;
    double viewingRotation_ = 0;
    int pointNum_ = 0;
    State state_ = State::Unselected;
};
