#pragma once

#include <string>

/// The Render 3D Texture node's built-in self-check: bakes a Perlin texture through the node
/// onto the shipped cube, sphere and torus models and checks every image: the size asked for,
/// textured pixels where the mesh covers the layout, untouched (0, 0, 0, 0) pixels elsewhere,
/// and the same bits whether rendered on one thread or many.
///
/// The models are looked for in the folder "models" next to the running executable, next to
/// the plug-in, in "../share/texture/models" beside either, and finally in the source tree the
/// library was built from. The process-wide engine's scene models are replaced during the run
/// and restored afterwards. Returns true when every check passed; otherwise false, with the
/// first failure in `failure` when given (it is also logged as a warning).
bool runRender3DSelfTest(std::string* failure = nullptr);
