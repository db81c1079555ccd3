import Meshpad.Scene

// An edge of the mesh; its grid draws it under the points.
MeshLine {}
