#pragma once
// Surfaces with a pen: what pictures of pixels and of vectors are drawn on alike.

#include <functional>
#include <string>

#include "kalvo/display/kxdrawadapter.h"
#include "common/canvas.h"

namespace App {

// A surface, and how to choose the pen that `RGBColor::Current` stands for on it.
struct Paper {
    Zelkor::DrawAdapter& surface;
    std::function<void(const Zelkor::RGBColor& color, int width)> setPen;
};

// Lets `draw` draw on a context, which is put back as it was.
void DrawOnContext(HDC context, const std::function<void(const Paper&)>& draw);

// Whether a file of that name holds vectors.
bool IsVectorFile(const std::string& path);
// Saves what is drawn as vectors.
void SaveVectors(PictureSize size, const std::string& path, const std::function<void(const Paper&)>& draw);
// Saves what is drawn as vectors or as pixels, in the format of the name.
void SaveDrawing(PictureSize size, const std::string& path, const std::function<void(const Paper&)>& draw);

}  // namespace App
