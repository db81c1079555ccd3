#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>

#include <chrono>

class QWidget;

/// Drops the input that was meant for a veil over the window but arrives after it: presses that
/// were queued, or made before the operator could see it go, and the repetitions of a key that was
/// pressed before.
///
/// While the veil is there, it takes all input itself.
class InputGate final : public QObject {
    Q_OBJECT

public:
    /// `window` outlives the gate. Presses are dropped for `delay` after the veil.
    InputGate(QWidget* window, std::chrono::milliseconds delay);

    /// A veil covers the window.
    void close();
    /// The veil is gone.
    void open();
    /// Neither a veil nor its delay.
    [[nodiscard]] bool isOpen() const { return state_ == State::Open; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class State { Open, Closed, Opening };

    void onTick();

    QWidget* window_;
    State state_ = State::Open;
    QTimer timer_{this};
    int ticks_ = 0;     // since open()
    QSet<int> oldKeys_; // pressed while the gate was not open
};
