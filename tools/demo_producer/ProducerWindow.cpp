#include "tools/demo_producer/ProducerWindow.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

using namespace NetworkCompanion;

namespace {

constexpr int kAnimationMs = 125;
constexpr int kRepaintMs = 30; ///< the least time between two repaints
constexpr qint64 kFlashMs = 1800;
constexpr qsizetype kLogKept = 60;
constexpr double kStillSeconds = 4.6;

} // namespace

ProducerWindow::ProducerWindow(ProducerSession& session, const QString& name,
                               const QString& address, bool still, bool meshes)
    : session_(session), still_(still) {
    view_.producerName = name;
    view_.address = address;
    view_.seconds = kStillSeconds;
    view_.meshes = meshes;
    setWindowTitle(name);
    resize(1280, 720);
    setMinimumSize(960, 600);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(&session, &ProducerSession::changed, this, &ProducerWindow::scheduleRepaint);
    connect(&session, &ProducerSession::logged, this, &ProducerWindow::showLine);
    connect(&session, &ProducerSession::quickKeyExecuted, this,
            &ProducerWindow::onQuickKeyExecuted);
    repaint_.setSingleShot(true);
    connect(&repaint_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    connect(&animation_, &QTimer::timeout, this, &ProducerWindow::scheduleRepaint);
    running_.start();
    if (!still)
        animation_.start(kAnimationMs);
}

void ProducerWindow::scheduleRepaint() {
    // Waits at least as long as the last paint took, so that painting uses at most half of the
    // time.
    if (!repaint_.isActive())
        repaint_.start(std::max(kRepaintMs, int(lastPaintMs_)));
}

void ProducerWindow::showLine(const QString& line) {
    view_.log.append(line);
    if (view_.log.size() > kLogKept)
        view_.log.removeFirst();
    scheduleRepaint();
}

void ProducerWindow::onQuickKeyExecuted(quint32 id, const QString& name, const QString& color) {
    view_.flash = KeyFlash{id, name, QColor(color), 1.0};
    sinceFlash_.start();
    scheduleRepaint();
}

void ProducerWindow::paintEvent(QPaintEvent*) {
    QElapsedTimer painting;
    painting.start();
    if (!still_)
        view_.seconds = kStillSeconds + double(running_.elapsed()) / 1000.0;
    if (view_.flash) {
        const double left = 1.0 - double(sinceFlash_.elapsed()) / kFlashMs;
        if (left <= 0)
            view_.flash.reset();
        else
            view_.flash->strength = std::min(1.0, left * 2.0); // full strength, then fading
        scheduleRepaint();
    }
    QPainter painter(this);
    painter_.paint(painter, rect(), session_, view_);
    lastPaintMs_ = painting.elapsed();
}

void ProducerWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_N:
        session_.startNewShow();
        break;
    case Qt::Key_P: {
        const int next = (int(session_.show().pattern) + 1) % (int(LV_NTC_PictureType::White) + 1);
        session_.setPattern(LV_NTC_PictureType(next));
        break;
    }
    case Qt::Key_B: {
        std::vector<ItemKey> screens;
        bool allBlinded = true;
        for (const ShowItem& item : session_.show().items()) {
            if (item.key.type == LV_NTC_ElementType::Screen) {
                screens.push_back(item.key);
                allBlinded = allBlinded && item.blinded;
            }
        }
        for (const ItemKey& screen : screens)
            session_.setBlinded(screen, !allBlinded);
        break;
    }
    case Qt::Key_M:
        view_.meshes = !view_.meshes;
        update();
        break;
    case Qt::Key_F11:
        setWindowState(windowState() ^ Qt::WindowFullScreen);
        break;
    case Qt::Key_Q:
        close();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}
