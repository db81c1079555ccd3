#include "tools/demo_producer/DemoEdits.h"

#include "tools/demo_producer/ShowNames.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace NetworkCompanion;

namespace {

constexpr int kFastestTickMs = 10;
constexpr double kMostPerSecond = 10'000;

} // namespace

DemoEdits::DemoEdits(ProducerSession& session, Commands& commands, double editsPerSecond,
                     quint32 seed, QObject* parent)
    : QObject(parent), session_(session), commands_(commands), random_(seed) {
    const double rate = std::clamp(editsPerSecond, 0.01, kMostPerSecond);
    const int period = std::max(kFastestTickMs, int(1000 / rate));
    perTick_ = rate * period / 1000;
    connect(&timer_, &QTimer::timeout, this, [this] {
        for (due_ += perTick_; due_ >= 1; due_ -= 1)
            edit();
    });
    timer_.start(period);
}

const ShowItem* DemoEdits::anyItem() {
    const auto& items = session_.show().items();
    return items.empty() ? nullptr : &items[std::size_t(random_.bounded(int(items.size())))];
}

void DemoEdits::edit() {
    const int choice = random_.bounded(1000);
    if (choice < 880 && !session_.show().items().empty())
        movePoint();
    else
        run(commandFor(choice));
}

QString DemoEdits::commandFor(int choice) {
    const ShowItem* const item = anyItem();
    if (!item || choice == 999)
        return QStringLiteral("new-show");
    const QString name = nameOf(item->key);
    if (choice < 920)
        return QStringLiteral("blind %1 %2")
            .arg(name, item->blinded ? QStringLiteral("off") : QStringLiteral("on"));
    if (choice < 945) {
        static const QStringList kDeformations{
            QStringLiteral("keystone 2 2"), QStringLiteral("bezier 4 4"),
            QStringLiteral("bezier 7 10"),  QStringLiteral("curve 3 3"),
            QStringLiteral("curve 5 8"),    QStringLiteral("keystone 2 2 reset"),
            QStringLiteral("none")};
        return QStringLiteral("deform %1 %2")
            .arg(name, kDeformations[random_.bounded(int(kDeformations.size()))]);
    }
    if (choice < 965) {
        const bool none = random_.bounded(3) > 0;
        const auto pattern = LV_NTC_PictureType(none ? 0 : random_.bounded(12));
        return QStringLiteral("pattern %1").arg(nameOf(pattern));
    }
    if (choice < 975)
        return QStringLiteral("remove %1").arg(name);
    if (choice < 985)
        return QStringLiteral("restore");
    if (choice < 992)
        return QStringLiteral("key %1 #%2 Key %3")
            .arg(1 + random_.bounded(14))
            .arg(random_.bounded(0x1000000), 6, 16, QChar(u'0'))
            .arg(random_.bounded(100));
    if (choice < 997)
        return QStringLiteral("delete-key %1").arg(1 + random_.bounded(14));
    return QStringLiteral("key-grid %1 %2").arg(1 + random_.bounded(4)).arg(1 + random_.bounded(5));
}

void DemoEdits::movePoint() {
    if (gesture_.step >= gesture_.steps || !session_.show().find(gesture_.item)) {
        const ShowItem* const item = anyItem();
        if (item->shownKind() == Warp::Kind::None)
            return;
        const bool xy = item->key.type == LV_NTC_ElementType::Screen ||
                        item->key.type == LV_NTC_ElementType::ScreenPart || random_.bounded(4);
        const auto& points = xy ? item->warp.xy : item->warp.uv;
        const auto point = std::size_t(random_.bounded(int(points.size())));
        // Stays near its position in the straight mesh, so that the picture can still be
        // recognised.
        const Warp straight =
            Warp::straight(item->warp.kind, item->warp.rows, item->warp.columns, item->size);
        const QSizeF reach = xy ? QSizeF(item->size) : QSizeF(1, 1);
        const QPointF offset((random_.generateDouble() - 0.5) * 0.3 * reach.width(),
                             (random_.generateDouble() - 0.5) * 0.3 * reach.height());
        gesture_ = {item->key,
                    xy,
                    quint32(point),
                    points[point].position,
                    (xy ? straight.xy : straight.uv)[point].position * 0.92 + offset,
                    0,
                    10 + random_.bounded(40)};
    }
    ++gesture_.step;
    const double progress = 0.5 - 0.5 * std::cos(std::numbers::pi * gesture_.step / gesture_.steps);
    session_.movePoint(gesture_.item, gesture_.xy, gesture_.point,
                       gesture_.from + (gesture_.to - gesture_.from) * progress);
}
