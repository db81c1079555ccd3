#pragma once

#include "mesh/MeshAtlas.h"

#include <QLineF>
#include <QSGNode>

#include <memory>
#include <vector>

class QQuickWindow;

/// Everything that the drawing of a mesh needs to know, copied out of the mesh so that it can be
/// drawn on another thread.
struct MeshPicture {
    static constexpr QRectF kAll{-1e3, -1e3, 2e3, 2e3};

    struct Point {
        QPointF position;
        double rotation = 0; ///< of the number, degrees
        int number = 0;
        bool isNumberSeen = true; ///< false where other points lie on it
        MeshPoint::State state = MeshPoint::State::Unselected;
        /// What is seen of its square, from the point's centre in pixels of the screen, unturned;
        /// the rest lies under other points.
        QRectF seen = kAll;
    };
    std::vector<QLineF> lines;
    std::vector<Point> points; ///< later ones lie above earlier ones
    double zoom = 1;
    bool upright = true; ///< whether the numbers stand upright on the screen, pixel by pixel
    std::shared_ptr<const MeshAtlas> atlas;
};

/// A scene-graph node that draws a mesh; which one depends on what the window is drawn with.
class MeshNode {
public:
    virtual ~MeshNode() = default;
    virtual QSGNode* node() = 0;
    /// Takes over what to draw from now on.
    virtual void setPicture(MeshPicture picture) = 0;

    /// A new node fit for the window; the caller owns it through node().
    static MeshNode* create(QQuickWindow* window);
    /// The node again as it was created, null for null.
    static MeshNode* from(QSGNode* node);
};
