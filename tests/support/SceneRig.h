#pragma once

#include "tests/support/Rig.h"
#include "tests/support/SceneView.h"
#include "warp/Canvas.h"
#include "warp/MediaItem.h"
#include "warp/ScreenItem.h"
#include "warp/ScreenPartItem.h"
#include "warp/TextureItem.h"

#include <QMap>

#include <memory>

namespace MeshpadTest {

/// The scene on its real bridge, connected to the fake Producer, with one item of each kind. The
/// test selects items in place of the list.
class SceneRig : public Rig, public SceneView {
public:
    static constexpr int kScreen = 3;
    static constexpr int kPart = 7;
    static constexpr unsigned int kMediaCue = 3'000'000'011U; // more than an int holds
    static constexpr unsigned int kTextureCue = 12;
    static constexpr QSize kScreenSize{1920, 1080};
    static constexpr QSize kMediaSize{1000, 600};

    explicit SceneRig(QSize size = {1060, 610}, const Timing& timing = Timing());
    ~SceneRig();

    /// One of the items below. `deformation` in the scene's numbers, 0 none to 3 curve.
    void select(Item& item, int deformation = 3, int rows = 3, int columns = 3);
    void deform(const Item& item, int deformation, int rows, int columns);

    /// A point as the Producer received it last, in the current item's coordinates.
    struct SentPoint {
        double x;
        double y;
        bool selected;
    };
    QMap<int, SentPoint> sentPoints(bool xy) const;

    std::unique_ptr<Canvas> canvas;
    ScreenItem screen;
    ScreenPartItem part;
    MediaItem media;
    TextureItem texture;
};

} // namespace MeshpadTest
