#include "tests/support/SceneRig.h"

#include "network/events/MediaMovePointEvent.h"
#include "network/events/ScreenMovePointEvent.h"
#include "network/events/ScreenPartMovePointEvent.h"
#include "network/events/TextureMovePointEvent.h"

#include <QTest>

using namespace NetworkCompanion;

namespace MeshpadTest {

SceneRig::SceneRig(QSize size, const Timing& timing)
    : screen(kScreen, 100, kScreenSize.width(), kScreenSize.height(), false, "Screen",
             configuration, nullptr),
      part(kPart, 101, kScreenSize.width(), kScreenSize.height(), false, "Part", configuration,
           nullptr),
      media(MediaType::Image, kMediaCue, 5, 102, kMediaSize.width(), kMediaSize.height(), false,
            "Media", configuration, nullptr),
      texture(kTextureCue, 6, 103, kMediaSize.width(), kMediaSize.height(), false, "Texture",
              configuration, nullptr) {
    screen.addPart(&part);
    connect();
    canvas = std::make_unique<Canvas>(configuration, nullptr, timing);
    view = canvas->findChild<QQuickWidget*>();
    canvas->resize(size);
    canvas->show();
    canvas->activateWindow();
    QTRY_VERIFY(canvas->isActiveWindow());
    view->setFocus();
    canvas->onScreenItemAdded(kScreen, kScreenSize.width(), kScreenSize.height(), 0, 0, "Screen");
    canvas->onScreenPartItemAdded(kScreen, kPart, kScreenSize.width(), kScreenSize.height(), 0,
                                  "Part");
    canvas->onMediaItemAdded(1, kMediaCue, 5, kMediaSize.width(), kMediaSize.height(), 0, "Media");
    canvas->onTextureItemAdded(kTextureCue, 6, kMediaSize.width(), kMediaSize.height(), 0,
                               "Texture");
}

SceneRig::~SceneRig() {
    canvas->onSelectedItem(nullptr);
    clear();
}

void SceneRig::deform(const Item& item, int deformation, int rows, int columns) {
    const auto type = LV_NTC_DeformationType(deformation - 1);
    const auto [kind, id, subId] = item.key();
    if (&item == &screen)
        canvas->onScreenDeformationMode(type, id, "", rows, columns, false);
    else if (&item == &part)
        canvas->onScreenPartDeformationMode(type, id, subId, "", rows, columns, false);
    else if (&item == &texture)
        canvas->onTextureDeformationMode(kind, type, id, subId, "", rows, columns, false);
    else
        canvas->onMediaDeformationMode(kind, type, id, subId, "", rows, columns, false);
}

void SceneRig::select(Item& item, int deformation, int rows, int columns) {
    canvas->onSelectedItem(&item);
    deform(item, deformation, rows, columns);
    evaluate("getCurrentItem().itemDeformer.adjustView()");
}

QMap<int, SceneRig::SentPoint> SceneRig::sentPoints(bool xy) const {
    QMap<int, SentPoint> points;
    const double width = number("getCurrentItem().sourceWidth");
    const double height = number("getCurrentItem().sourceHeight");
    const auto add = [&](const auto& events) {
        for (const auto* event : events)
            if (event->xy() == xy)
                points.insert(int(event->pointId()),
                              {xy ? event->x() + width / 2 : event->x() * width,
                               xy ? event->y() + height / 2 : event->y() * height,
                               event->selected()});
    };
    add(producer.eventsOf<ScreenMovePointEvent>());
    add(producer.eventsOf<ScreenPartMovePointEvent>());
    add(producer.eventsOf<MediaMovePointEvent>());
    add(producer.eventsOf<TextureMovePointEvent>());
    return points;
}

} // namespace MeshpadTest
