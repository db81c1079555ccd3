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
    stage_.producerName = name;
    stage_.address = address;
    stage_.seconds = kStillSeconds;
    stage_.meshes = meshes;
    setWindowTitle(name);
    resize(1280, 720);
    setMinimumSize(960, 600);
    setAttribute(Qt::WA_OpaquePaintEvent);
    connect(&session, &ProducerSession::changed, this, &ProducerWindow::repaintSoon);
    connect(&session, &ProducerSession::logged, this, &ProducerWindow::showLine);
    connect(&session, &ProducerSession::quickKeyExecuted, this,
            &ProducerWindow::onQuickKeyExecuted);
    repaint_.setSingleShot(true);
    connect(&repaint_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    connect(&animation_, &QTimer::timeout, this, &ProducerWindow::repaintSoon);
    running_.start();
    if (!still)
        animation_.start(kAnimationMs);
}

void ProducerWindow::repaintSoon() {
    // However long it takes to paint, half of the time is left for companions.
    if (!repaint_.isActive())
        repaint_.start(std::max(kRepaintMs, int(lastPaintMs_)));
}

void ProducerWindow::showLine(const QString& line) {
    stage_.log.append(line);
    if (stage_.log.size() > kLogKept)
        stage_.log.removeFirst();
    repaintSoon();
}

void ProducerWindow::onQuickKeyExecuted(quint32 id, const QString& name, const QString& color) {
    stage_.flash = KeyFlash{id, name, QColor(color), 1.0};
    sinceFlash_.start();
    repaintSoon();
}

void ProducerWindow::paintEvent(QPaintEvent*) {
    QElapsedTimer painting;
    painting.start();
    if (!still_)
        stage_.seconds = kStillSeconds + double(running_.elapsed()) / 1000.0;
    if (stage_.flash) {
        const double left = 1.0 - double(sinceFlash_.elapsed()) / kFlashMs;
        if (left <= 0)
            stage_.flash.reset();
        else
            stage_.flash->strength = std::min(1.0, left * 2.0); // stands, then fades
        repaintSoon();
    }
    QPainter painter(this);
    painter_.paint(painter, rect(), session_, stage_);
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
        stage_.meshes = !stage_.meshes;
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
