// Contexts change their pens by selecting objects, vector graphics by a word.

#include "common/paper.h"

#include <optional>

#include "kalvo/display/kxgdidrawadapter.h"
#include "common/failure.h"
#include "common/image_file.h"
#include "common/output_file.h"
#include "kalvo-svg/kxsvgdrawadapter.h"

namespace App {

void DrawOnContext(HDC context, const std::function<void(const Paper&)>& draw) {
    const SavedContext saved(context);
    Zelkor::GDIDrawAdapter surface(context);
    std::optional<SelectedPen> pen;
    draw({surface, [&](const Zelkor::RGBColor& color, int width) {
              pen.reset();
              pen.emplace(context, width, RGB(color.m_n32Red, color.m_n32Green, color.m_n32Blue));
          }});
}

bool IsVectorFile(const std::string& path) { return SmallExtension(path) == ".svg"; }

void SaveVectors(PictureSize size, const std::string& path, const std::function<void(const Paper&)>& draw) {
    Zelkor::SvgDrawAdapter surface(size.width, size.height);
    OutputFile file(path, ".svg");
    Checked([&] {
        draw({surface, [&](const Zelkor::RGBColor& color, int width) { surface.SetPen(color, width); }});
        surface.Save(file.Path().c_str());
    });
    file.Commit();
}

void SaveDrawing(PictureSize size, const std::string& path, const std::function<void(const Paper&)>& draw) {
    if (IsVectorFile(path)) return SaveVectors(size, path, draw);
    Canvas canvas(size.width, size.height);
    Checked([&] { DrawOnContext(canvas.Context(), draw); });
    SavePicture(canvas, path);
}

}  // namespace App
