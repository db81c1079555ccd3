#pragma once

#include <QLabel>

/// The eye of a list row: shows the picture that its row sets and reports presses.
class BlindButton final : public QLabel {
    Q_OBJECT

public:
    enum class State {
        Reported, ///< the picture is what the Producer reports
        Waiting,  ///< another blind is requested
        Refused,  ///< the Producer did not report it in time
    };

    explicit BlindButton(QWidget* parent = nullptr);

    State state() const { return state_; }
    void setState(State state);
    /// The look of a pressed button, for a finger whose press follows only when it is lifted.
    void setDown(bool isDown);

signals:
    void blindPressed();

protected:
    bool event(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    /// Accepts a press of any mouse button, so that it does not reach and select the row. Ignores
    /// one that the platform generates from a touch.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    State state_ = State::Reported;
    bool isDown_ = false;
};
