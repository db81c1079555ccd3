#pragma once

#include <QDir>
#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QTest>

/// Key presses, mouse input and screenshots on the X server of the test. Positions are pixels of
/// the screen.
namespace Desktop {

/// Runs a program to its end and returns its output; fails the test when the program fails.
inline QByteArray run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (process.waitForFinished(60'000) && process.exitCode() == 0)
        return process.readAllStandardOutput();
    const QString command = program + ' ' + arguments.join(' ');
    QTest::qFail(qPrintable(command + ": " + process.readAllStandardError()), __FILE__, __LINE__);
    return {};
}

/// Runs xdotool with these words, for example "key ctrl+a" or "mousedown 1".
inline void xdotool(const QString& words) {
    run("xdotool", words.split(' '));
}

/// The words that move the pointer there.
inline QString moveTo(QPoint position) {
    return QString("mousemove %1 %2").arg(position.x()).arg(position.y());
}

inline void click(QPoint position) {
    xdotool(moveTo(position) + " click 1");
}

/// Waits for a window whose title matches, moves it and returns its id.
inline QString placeWindow(const QString& title, QPoint topLeft) {
    const QByteArray ids = run("xdotool", {"search", "--sync", "--onlyvisible", "--name", title});
    const QString id = QString::fromUtf8(ids).section('\n', 0, 0);
    xdotool(QString("windowmove %1 %2 %3").arg(id).arg(topLeft.x()).arg(topLeft.y()));
    return id;
}

inline QImage screenshot() {
    return QImage::fromData(run("import", {"-window", "root", "png:-"}), "PNG");
}

/// Saves a screenshot in the folder MESHPAD_SCREENSHOTS, if that is set.
inline void saveScreenshot(const QString& name) {
    if (!qEnvironmentVariableIsSet("MESHPAD_SCREENSHOTS"))
        return;
    const QDir folder(qEnvironmentVariable("MESHPAD_SCREENSHOTS"));
    folder.mkpath(".");
    QTest::qWait(400); // until everything is drawn; nothing reports the end of it
    screenshot().save(folder.filePath(name + ".png"));
}

} // namespace Desktop
