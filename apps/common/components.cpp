// One overload per pixel type.

#include "common/components.h"

#include <algorithm>
#include <cmath>

#include "common/pixel_types.h"

namespace App {
namespace {

using Numbers = std::vector<double>;

template <class Plain>
requires requires(Plain pixel) { pixel.m_Value; }
Numbers Split(Plain pixel) { return {static_cast<double>(pixel.m_Value)}; }
Numbers Split(KxBW1 pixel) { return {static_cast<double>(pixel.m_un8Value)}; }
Numbers Split(KxC15 v) {
    return {double(v.m_Value >> 10 & 31), double(v.m_Value >> 5 & 31), double(v.m_Value & 31)};
}
Numbers Split(KxC16 v) {
    return {double(v.m_Value >> 11 & 31), double(v.m_Value >> 5 & 63), double(v.m_Value & 31)};
}
Numbers Split(KxC24 v) { return {double(v.m_un8C0), double(v.m_un8C1), double(v.m_un8C2)}; }
Numbers Split(KxC24A v) {
    return {double(v.m_un8C0), double(v.m_un8C1), double(v.m_un8C2), double(v.m_un8A)};
}
Numbers Split(KxYUY2 v) { return {double(v.m_un8Y), double(v.m_un8U), double(v.m_un8V)}; }

// Types without numbers of their own are shown by their bytes.
template <class Pixel>
requires(!requires(Pixel pixel) { Split(pixel); }) Numbers Split(const Pixel& pixel) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&pixel);
    return Numbers(bytes, bytes + sizeof pixel);
}

}  // namespace

std::vector<double> Components(const KxGenericROI& image, int x, int y) {
    Numbers numbers;
    ForPixel<Zelkor::Kalvo::PixelTypes>(
        const_cast<KxGenericROI&>(image).GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
            numbers = Split(static_cast<const KxROI<Pixel>&>(image).GetPixel(x, y));
        });
    return numbers;
}

double Difference(const KxGenericROI& first, const KxGenericROI& second, int x, int y) {
    const Numbers a = Components(first, x, y), b = Components(second, x, y);
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

}  // namespace App
