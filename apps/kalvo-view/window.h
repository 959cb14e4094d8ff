#pragma once
// The viewer in a window of the screen.

#include "scene.h"

namespace View {

// Shows the viewer until the user closes it. Throws when there is no screen.
void RunWindow(Viewer& viewer, Scene& scene);

}  // namespace View
