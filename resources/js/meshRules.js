.pragma library

// The geometry of a mesh: neighbours, rows and columns, lines, the limits of a move, coordinates of the Producer. These
// functions do not depend on the scene. Points are numbered row by row.

// Kinds of items, as list, bridge and scene number them.
var NO_ITEM = 0;
var MEDIA = 1;
var TEXTURE = 2;
var SCREEN = 3;
var SCREEN_PART = 4;

// Kinds of deformation as the scene numbers them.
var NONE = 0;
var KEYSTONE = 1;
var BEZIER = 2;
var CURVE = 3;

var XY_GRID = 0;
var UV_GRID = 1;

// A screen in this mode shows no deformation.
var SIMPLE_MODE = 1;
var DEFORMATION_MODE = 2;

var SMALLEST_GRID = 2;
var LARGEST_GRID = 64;

var UNIT_VECTORS = {
    top: { x: 0, y: -1 },
    left: { x: -1, y: 0 },
    right: { x: 1, y: 0 },
    bottom: { x: 0, y: 1 }
};

var LINES_AND_SIDES = {
    topRow: "top",
    currentRow: "left",
    bottomRow: "bottom",
    leftColumn: "left",
    currentColumn: "top",
    rightColumn: "right"
};

function isGridSize(count) {
    return Number.isInteger(count) && count >= SMALLEST_GRID && count <= LARGEST_GRID;
}

function isVertical(direction) {
    return direction === "top" || direction === "bottom";
}

// The direction of a vector; a diagonal counts as vertical.
function directionOf(vector) {
    if (Math.abs(vector.x) > Math.abs(vector.y))
        return vector.x < 0 ? "left" : "right";
    return vector.y < 0 ? "top" : "bottom";
}

// The direction in the mesh of a direction on the screen. `rotate(point, degrees)` rotates a point about the origin.
function rotatedDirection(direction, degrees, rotate) {
    const unit = UNIT_VECTORS[direction];
    return directionOf(rotate(Qt.point(unit.x, unit.y), degrees));
}

// The line in the mesh ("topRow", "currentRow", "bottomRow", "leftColumn", "currentColumn", "rightColumn") of a line on
// the screen.
function rotatedLine(line, degrees, rotate) {
    if (line === "currentRow" || line === "currentColumn") {
        const keepsKind = !isVertical(rotatedDirection("left", degrees, rotate));
        return keepsKind === (line === "currentRow") ? "currentRow" : "currentColumn";
    }
    const side = rotatedDirection(LINES_AND_SIDES[line], degrees, rotate);
    return side + (isVertical(side) ? "Row" : "Column");
}

// Number of the neighbour in a direction of the mesh, -1 at the mesh's edge.
function neighbour(direction, point, columns, count) {
    switch (direction) {
    case "top":
        return point > columns - 1 ? point - columns : -1;
    case "left":
        return point % columns !== 0 ? point - 1 : -1;
    case "right":
        return point % columns !== columns - 1 ? point + 1 : -1;
    default:
        return point + columns < count ? point + columns : -1;
    }
}

// Numbers of the points of a line through or beside a point, in order; empty beyond the mesh's edge.
function pointsOfLine(line, point, rows, columns) {
    let through = point;
    if (line !== "currentRow" && line !== "currentColumn")
        through = neighbour(LINES_AND_SIDES[line], point, columns, rows * columns);
    if (through < 0)
        return [];
    const isColumn = line.endsWith("Column");
    const step = isColumn ? columns : 1;
    const first = isColumn ? through % columns : through - through % columns;
    const end = isColumn ? rows * columns : first + columns;
    const points = [];
    for (let next = first; next < end; next += step)
        points.push(next);
    return points;
}

// The ends of all lines of a mesh: [from, to, from, to, ...]. With `skipPatchCenter` only the borders of patches of
// three by three cells are drawn.
function lineEnds(rows, columns, skipPatchCenter) {
    const increment = skipPatchCenter ? 3 : 1;
    const ends = [];
    for (let row = 0; row < rows; row += increment) {
        for (let column = 1; column < columns; ++column)
            ends.push(row * columns + column - 1, row * columns + column);
    }
    for (let row = 1; row < rows; ++row) {
        for (let column = 0; column < columns; column += increment)
            ends.push((row - 1) * columns + column, row * columns + column);
    }
    return ends;
}

function clampedStep(old, step, size) {
    if (old + step < 0)
        return old < -step ? -old : step;
    if (old + step > size)
        return size - old < step ? size - old : step;
    return step;
}

// The largest movement towards (dx, dy) that keeps all points between (0, 0) and (width, height).
function clampedDelta(points, width, height, dx, dy) {
    let outside = false;
    for (const point of points) {
        dx = clampedStep(point.x, dx, width);
        dy = clampedStep(point.y, dy, height);
        outside = outside || point.x < 0 || point.x > width || point.y < 0 || point.y > height;
    }
    if (!outside)
        return { dx: dx, dy: dy };
    // The first pass may have enlarged the movement to bring points inside; the others must stay inside.
    for (const point of points) {
        if (point.x >= 0 && point.x <= width)
            dx = clampedStep(point.x, dx, width);
        if (point.y >= 0 && point.y <= height)
            dy = clampedStep(point.y, dy, height);
    }
    return { dx: dx, dy: dy };
}

// The Producer counts in pixels from the item's centre (XY) or in fractions of its size (UV). The scene stores
// fromProducer(toProducer(x)), so that an echo has exactly the same value and moves no point.
function toProducer(position, size, isXy) {
    return isXy ? position - size / 2 : position / size;
}

function fromProducer(position, size, isXy) {
    return isXy ? position + size / 2 : position * size;
}

// The protocol counts the control points of a bezier, the operator the corners of its patches.
function patchCorners(controlPoints) {
    return (controlPoints - 1) / 3 + 1;
}

// The smallest rectangle around all points, null without points.
function boundingBox(points) {
    if (points.length === 0)
        return null;
    let left = Infinity, top = Infinity, right = -Infinity, bottom = -Infinity;
    for (const point of points) {
        const x = point.x;
        const y = point.y;
        if (x < left)
            left = x;
        if (x > right)
            right = x;
        if (y < top)
            top = y;
        if (y > bottom)
            bottom = y;
    }
    return { x: left, y: top, width: right - left, height: bottom - top };
}
