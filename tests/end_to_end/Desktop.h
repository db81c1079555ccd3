#pragma once

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QString>
#include <QStringList>

/// The hands and eyes of an operator on the X server of the test: real key presses, real mouse
/// moves, pictures of the screen. All places are pixels of the screen.
namespace Desktop {

/// Runs a program to its end; what it printed, trimmed, or nothing and a failure of the test.
QString run(const QString& program, const QStringList& arguments);

/// Waits until a window with that title is shown, and puts it there. Its id.
QString placeWindow(const QString& title, QPoint topLeft);
void focusWindow(const QString& windowId);

/// Key names as the X server knows them, "ctrl+a", "alt+Right", "Escape".
void press(const QString& key);
void keyDown(const QString& key);
void keyUp(const QString& key);

void click(QPoint place);
void mouseDown(QPoint place);
void mouseMove(QPoint place);
void mouseUp();

QImage look();
/// Keeps a picture of the screen under that name when a folder is named in MESHPAD_SCREENSHOTS.
void keepPicture(const QString& name);

} // namespace Desktop
