#pragma once

#include <QImage>
#include <QPoint>
#include <QString>
#include <QStringList>

/// The hands and eyes of an operator on the X server of the test: real key presses, real mouse
/// moves, pictures of the screen. All places are pixels of the screen.
namespace Desktop {

/// Runs a program to its end; what it printed, or nothing and a failure of the test.
QByteArray run(const QString& program, const QStringList& arguments);

/// What the hands do, in xdotool's words: "key ctrl+a", "keydown ctrl", "mousedown 1".
void act(const QString& words);
/// The words for a pointer at that place.
QString at(QPoint place);
inline void click(QPoint place) {
    act(at(place) + " click 1");
}

/// Waits until a window with that title is shown, and puts it there. Its id.
QString placeWindow(const QString& title, QPoint topLeft);

inline QImage look() {
    return QImage::fromData(run("import", {"-window", "root", "png:-"}), "PNG");
}
/// Keeps a picture of the screen under that name when a folder is named in MESHPAD_SCREENSHOTS.
void keepPicture(const QString& name);

} // namespace Desktop
