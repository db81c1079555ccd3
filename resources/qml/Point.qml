import Meshpad.Scene

// A control point; its grid draws it as a circle of the same size at every zoom.
MeshPoint {}
