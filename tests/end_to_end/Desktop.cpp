#include "tests/end_to_end/Desktop.h"

#include <QDir>
#include <QTest>

namespace {

constexpr int kProgramTimeout = 60'000; // ms
constexpr int kSearchTimeout = 5'000;   // ms

QString point(int value) {
    return QString::number(value);
}

} // namespace

QString Desktop::run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(kProgramTimeout) || process.exitCode() != 0) {
        const QString complaint = QString::fromUtf8(process.readAllStandardError());
        QTest::qFail(
            qPrintable(QStringLiteral("%1 %2: %3").arg(program, arguments.join(' '), complaint)),
            __FILE__, __LINE__);
        return {};
    }
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

QString Desktop::placeWindow(const QString& title, QPoint topLeft) {
    QString id;
    const auto isShown = [&] {
        QProcess search;
        search.start("xdotool", {"search", "--onlyvisible", "--name", title});
        if (!search.waitForFinished(kSearchTimeout)) {
            search.kill();
            search.waitForFinished();
        }
        id = QString::fromUtf8(search.readAllStandardOutput()).section('\n', 0, 0).trimmed();
        return !id.isEmpty();
    };
    if (!QTest::qWaitFor(isShown, kProgramTimeout)) {
        QTest::qFail(qPrintable("no window " + title), __FILE__, __LINE__);
        return {};
    }
    run("xdotool", {"windowmove", id, point(topLeft.x()), point(topLeft.y())});
    return id;
}

void Desktop::focusWindow(const QString& windowId) {
    run("xdotool", {"windowraise", windowId, "windowfocus", "--sync", windowId});
}

void Desktop::press(const QString& key) {
    run("xdotool", {"key", key});
}

void Desktop::keyDown(const QString& key) {
    run("xdotool", {"keydown", key});
}

void Desktop::keyUp(const QString& key) {
    run("xdotool", {"keyup", key});
}

void Desktop::mouseMove(QPoint place) {
    run("xdotool", {"mousemove", point(place.x()), point(place.y())});
}

void Desktop::click(QPoint place) {
    mouseMove(place);
    run("xdotool", {"click", "1"});
}

void Desktop::mouseDown(QPoint place) {
    mouseMove(place);
    run("xdotool", {"mousedown", "1"});
}

void Desktop::mouseUp() {
    run("xdotool", {"mouseup", "1"});
}

QImage Desktop::look() {
    QProcess process;
    process.start("import", {"-window", "root", "png:-"});
    process.waitForFinished(kProgramTimeout);
    return QImage::fromData(process.readAllStandardOutput(), "PNG");
}

void Desktop::keepPicture(const QString& name) {
    const QString folder = qEnvironmentVariable("MESHPAD_SCREENSHOTS");
    if (folder.isEmpty()) {
        return;
    }
    QTest::qWait(400); // a picture for people: what is still being drawn shall be in it
    QDir().mkpath(folder);
    look().save(QDir(folder).filePath(name + ".png"));
}
