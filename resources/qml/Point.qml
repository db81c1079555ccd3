import Meshpad.Scene

// A control point. It is drawn by its grid, a circle of the same size at every zoom.
MeshPoint {}
