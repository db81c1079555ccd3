#pragma once

#include <QObject>

class QKeyEvent;

/// Event filter of the application: marks the repetitions of a held key as auto-repeat.
///
/// Some window systems report a repetition as a release and a press of the same time, and Qt does
/// not recognise all of them, so that a held Space would press a button repeatedly.
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
