#pragma once

#include "mesh/MeshAtlas.h"

#include <QLineF>
#include <QSGNode>

#include <memory>
#include <vector>

class QQuickWindow;

/// A copy of what is drawn of a mesh, so that the render thread needs no access to the mesh.
struct MeshPicture {
    static constexpr QRectF kAll{-1e3, -1e3, 2e3, 2e3};

    struct Point {
        QPointF position;
        double rotation = 0; ///< of the number in degrees
        int number = 0;
        bool isNumberVisible = true; ///< false when other points cover it
        MeshPoint::State state = MeshPoint::State::Unselected;
        /// Visible part of the point's square, relative to its centre in screen pixels, before
        /// rotation; other points cover the rest.
        QRectF visible = kAll;
    };
    /// A point that has gone back.
    struct Mark {
        QPointF position;
        QPointF from;        ///< the tip of the trail
        double rotation = 0; ///< of the number in degrees
    };
    std::vector<QLineF> lines;
    std::vector<Point> points; ///< later points are drawn above earlier ones
    std::vector<Mark> marks;
    double zoom = 1;
    bool upright = true; ///< whether the numbers align with the screen's pixels
    std::shared_ptr<const MeshAtlas> atlas;
};

/// A scene-graph node that draws a mesh; the window's graphics API decides which one.
class MeshNode {
public:
    virtual ~MeshNode() = default;
    virtual QSGNode* node() = 0;
    virtual void setPicture(MeshPicture picture) = 0;

    /// Creates a node for the window's graphics API; the caller owns it through node().
    static MeshNode* create(QQuickWindow* window);
    /// The MeshNode of a scene-graph node from create(); null for null.
    static MeshNode* from(QSGNode* node);
};
