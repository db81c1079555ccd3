import Meshpad.Scene

// An edge of the mesh, drawn by its grid under the points.
MeshLine {}
