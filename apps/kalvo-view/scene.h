#pragma once
// The picture of a viewer.

#include <memory>
#include <string>

#include "common/canvas.h"
#include "viewer.h"

namespace View {

class Scene {
public:
    // Draws what the viewer shows into a canvas of the size of its window.
    App::Canvas& Paint(const Viewer& viewer);

private:
    void PaintPane(Document& document, const Viewer& viewer, int left, int width);
    void PaintSpace(const Viewer& viewer);
    void PaintPanel(const Viewer& viewer);
    void PaintHelp();

    std::unique_ptr<App::Canvas> m_canvas, m_spare;  // of the size of the window
};

}  // namespace View
