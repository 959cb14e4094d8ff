// Shapes as numbers of their inks.

#include "kalvo/raster/stencil.h"

namespace Zelkor::Platform {
namespace {

enum Number : std::uint8_t { kNothing, kBrush, kPen, kGap };

}  // namespace

Stencil::Stencil(const Surface& surface, const Box& box) : m_box(Intersection(box, VisibleBox(surface))) {
    if (m_box.IsEmpty()) m_box = {};
    m_numbers.resize(static_cast<std::size_t>(m_box.Width() * m_box.Height()));
}

Surface Stencil::View() {
    Surface view;
    view.topRow = m_numbers.data();
    view.pitchBytes = m_box.Width();
    view.width = static_cast<int>(m_box.Width());
    view.height = static_cast<int>(m_box.Height());
    view.layout = PixelLayout::Indexed8;
    return view;
}

Inks Stencil::NumbersOf(const Inks& inks) {
    Inks numbers;
    if (inks.brush) numbers.brush = Fill(RawPixel{kBrush});
    numbers.pen = inks.pen;
    numbers.pen->ink = RawPixel{kPen};
    if (inks.pen->gap != kNoInk) numbers.pen->gap = RawPixel{kGap};
    return numbers;
}

void Stencil::Apply(const Surface& surface, const Inks& inks) const {
    const Fill fills[] = {kNoInk, inks.brush.value_or(kNoInk), inks.pen->ink, inks.pen->gap};
    auto number = m_numbers.begin();
    for (std::int64_t y = m_box.top; y < m_box.bottom; ++y) {
        const auto row = number, end = number + m_box.Width();
        while (number != end) {
            const auto next = std::find_if(number, end, [&](std::uint8_t other) { return other != *number; });
            if (*number != kNothing)
                PaintSpan(surface, static_cast<int>(y),
                          {m_box.left + (number - row), m_box.left + (next - row)}, fills[*number]);
            number = next;
        }
    }
}

}  // namespace Zelkor::Platform
