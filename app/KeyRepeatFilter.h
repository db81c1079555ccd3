#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPointer>

#include <chrono>
#include <memory>

class QKeyEvent;

/// Event filter of the application: marks the repetitions of a held key as auto-repeat.
///
/// Some window systems report a repetition as a release and a press, and Qt recognises only those
/// whose press has arrived when it reads the release. This filter delivers a release to the window
/// only after repeatGap and drops it if the same key is pressed again before. Modifier keys pass at
/// once, because they do not repeat.
class KeyRepeatFilter : public QObject {
    Q_OBJECT

public:
    /// A press that follows the release of the same key so soon is a repetition.
    static constexpr std::chrono::milliseconds repeatGap{30};

    explicit KeyRepeatFilter(QObject* parent);
    ~KeyRepeatFilter() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void holdRelease(QObject* window, const QKeyEvent& release);
    void deliverRelease();
    [[nodiscard]] bool isRepetition(const QObject* window, const QKeyEvent& press) const;
    static void sendRepetition(QObject* window, QKeyEvent& press);

    QPointer<QObject> window_;           ///< got the last release
    std::unique_ptr<QKeyEvent> release_; ///< null when it has been delivered or dropped
    QBasicTimer timer_;
    int releasedKey_ = 0;
    quint64 releaseTime_ = 0; ///< of the window system, ms
};
