#include "tests/end_to_end/Desktop.h"

#include <QDir>
#include <QProcess>
#include <QTest>

namespace {

constexpr int kProgramTimeout = 60'000; // ms
constexpr int kSearchTimeout = 5'000;   // ms

} // namespace

QByteArray Desktop::run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (process.waitForFinished(kProgramTimeout) && process.exitCode() == 0)
        return process.readAllStandardOutput();
    const QString complaint = QString::fromUtf8(process.readAllStandardError());
    QTest::qFail(qPrintable(QString("%1 %2: %3").arg(program, arguments.join(' '), complaint)),
                 __FILE__, __LINE__);
    return {};
}

void Desktop::act(const QString& words) {
    run("xdotool", words.split(' '));
}

QString Desktop::at(QPoint place) {
    return QString("mousemove %1 %2").arg(place.x()).arg(place.y());
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
    act(QString("windowmove %1 %2 %3").arg(id).arg(topLeft.x()).arg(topLeft.y()));
    return id;
}

void Desktop::keepPicture(const QString& name) {
    const QString folder = qEnvironmentVariable("MESHPAD_SCREENSHOTS");
    if (folder.isEmpty())
        return;
    QTest::qWait(400); // a picture for people: what is still being drawn shall be in it
    QDir().mkpath(folder);
    look().save(QDir(folder).filePath(name + ".png"));
}
