#pragma once

#include <QObject>

class QKeyEvent;

/// Installed on the application, marks the repetitions of a key that is held as what they are.
///
/// Some window systems report each repetition as a release and a press of the same moment, and Qt
/// does not recognise all of them: a Space that is held would press a button again and again.
class KeyRepeatFilter : public QObject {
    Q_OBJECT

public:
    explicit KeyRepeatFilter(QObject* parent) : QObject(parent) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] bool isRepetition(const QKeyEvent& press) const;

    int releasedKey_ = 0;
    quint64 releaseTime_ = 0; // of the window system, ms; 0 for none
};
