// Rows of ellipses and round corners, and the ring that a pen leaves along them.

#include "kalvo/raster/ring.h"

#include <cmath>
#include <cstdlib>

namespace Zelkor::Platform {
namespace {

Box OuterBox(const Box& box, std::int64_t penWidth) {
    const std::int64_t before = penWidth / 2;
    const std::int64_t after = (penWidth - 1) / 2;
    return {box.left - before, box.top - before, box.right + after, box.bottom + after};
}

}  // namespace

RoundedRows::RoundedRows(const Box& box, std::int64_t cornerWidth, std::int64_t cornerHeight)
    : m_box(box), m_cornerWidth(cornerWidth), m_cornerHeight(cornerHeight) {
    if (cornerWidth <= 0 || cornerHeight <= 0) m_cornerWidth = m_cornerHeight = 0;
}

Span RoundedRows::Row(std::int64_t y) const {
    if (m_box.IsEmpty() || y < m_box.top || y >= m_box.bottom) return {};
    const std::int64_t fromEdge = std::min(y - m_box.top, m_box.bottom - 1 - y);
    if (fromEdge >= m_cornerHeight / 2) return m_box.Columns();
    const std::int64_t reach = Reach(m_cornerHeight - 1 - 2 * fromEdge);
    const std::int64_t doubledCentre = m_cornerWidth - 1;
    const std::int64_t cut = DivideUp<std::int64_t>(doubledCentre - reach, 2);
    return {m_box.left + cut, m_box.right - cut};
}

// The greatest x of x^2 / width^2 + distance^2 / height^2 <= 1.
std::int64_t RoundedRows::Reach(std::int64_t distance) const {
    if (distance <= 1) return m_cornerWidth - 1;
    const auto reach = static_cast<std::int64_t>(IntegerRoot(SquaredReach(distance)));
    return std::max<std::int64_t>(reach, m_cornerWidth % 2 == 0 ? 1 : 0);
}

// width^2 * (height^2 - distance^2) / height^2, rounded down. The product has up to 134 bits, so it is
// divided in two steps; that of usual sizes has 64, and one division takes a fraction of the time.
UInt128 RoundedRows::SquaredReach(std::int64_t distance) const {
    constexpr std::uint64_t kUsual = 0x10000;
    const auto width = static_cast<std::uint64_t>(m_cornerWidth);
    const auto height = static_cast<std::uint64_t>(m_cornerHeight);
    const auto down = static_cast<std::uint64_t>(distance);
    if (width < kUsual && height < kUsual)
        return width * width * ((height - down) * (height + down)) / (height * height);
    const UInt128 dividend = UInt128{height - down} * (height + down) * width;
    return (dividend / height * width + dividend % height * width / height) / height;
}

Ring::Ring(const Box& box, std::int64_t cornerWidth, std::int64_t cornerHeight, std::int64_t penWidth)
    : m_isWide(penWidth > 1),
      m_outerBox(OuterBox(box, penWidth)),
      m_outer(m_outerBox, cornerWidth + penWidth - 1, cornerHeight + penWidth - 1),
      m_inner(m_outerBox.GrownBy(-penWidth), cornerWidth - penWidth - 1, cornerHeight - penWidth - 1) {
    // An ellipse turns from steep to flat where its radius is width^2, or height^2, over the diagonal.
    const auto width = static_cast<double>(cornerWidth), height = static_cast<double>(cornerHeight);
    const double diagonal = std::max(1.0, std::hypot(width, height));
    m_steepReach = m_outerBox.Height() - cornerHeight + static_cast<std::int64_t>(height * height / diagonal);
    m_flatReach = m_outerBox.Width() - cornerWidth + static_cast<std::int64_t>(width * width / diagonal);
}

Span Ring::OuterRow(std::int64_t y) {
    KnownRow& known = m_known[y & 1];
    if (known.y != y) known = {y, m_outer.Row(y)};
    return known.span;
}

Ring::Row Ring::At(std::int64_t y) {
    const Span outer = OuterRow(y);
    if (m_isWide) return {outer, m_inner.Row(y)};
    // A pixel is inner when its four neighbours belong to the shape. Of the rows above and below, the one
    // further from the middle is the shorter one.
    const bool isAboveMiddle = 2 * y < m_outerBox.top + m_outerBox.bottom - 1;
    const Span next = OuterRow(isAboveMiddle ? y - 1 : y + 1);
    return {outer, Intersection(next, {outer.begin + 1, outer.end - 1})};
}

void Ring::Paint(const Surface& surface, int y, Span piece, const Stroke& pen) const {
    if (!pen.IsDashed()) return PaintSpan(surface, y, piece, pen.ink);
    ForVisibleSpans(surface, y, piece, [&](int x0, int x1) {
        for (int x = x0; x < x1; ++x) ApplyInk(surface, x, y, pen.InkAt(StepsTo(x, y)));
    });
}

std::int64_t Ring::StepsTo(std::int64_t x, std::int64_t y) const {
    const std::int64_t right = 2 * x - (m_outerBox.left + m_outerBox.right - 1);
    const std::int64_t up = m_outerBox.top + m_outerBox.bottom - 1 - 2 * y;
    const std::int64_t quarter = m_steepReach + m_flatReach;
    const bool isSteep = std::abs(up) <= m_steepReach;
    const std::int64_t within = isSteep ? std::abs(up) : quarter - std::abs(right);
    const bool isLeft = right < 0, isUpper = up >= 0;
    const std::int64_t half = isLeft ? 2 * quarter - within : within;
    return std::max<std::int64_t>(isUpper ? half : 4 * quarter - half, 0) / 2;
}

}  // namespace Zelkor::Platform
