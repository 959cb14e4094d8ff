// Pixel vectors: construction, lookup tables and moments. Plotting stands with the other drawing code.

#include "kalvo/display/kxpixelvector.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kalvo/frame/boundary.h"
#include "kalvo/frame/roundtoint.h"
#include "kalvo/vectors/vectorcore.h"

namespace {

using namespace Zelkor::Kalvo;

constexpr unsigned kToTheEnd = std::numeric_limits<unsigned>::max();

template <class Pixel>
constexpr const char* kWeightedMoment = nullptr;
template <>
constexpr const char* kWeightedMoment<KxBW8> = "KxBW8Vector::WeightedMoment";
template <>
constexpr const char* kWeightedMoment<KxBW16> = "KxBW16Vector::WeightedMoment";
template <>
constexpr const char* kWeightedMoment<KxBW32> = "KxBW32Vector::WeightedMoment";

// The index after `last`, when `first` to `last` are indices of a vector of `count` elements.
std::uint64_t CheckedEnd(unsigned first, unsigned last, unsigned count) {
    if (count == 0) throw Exception(KX_ERROR_VECTOR_NUMBER_OF_ELEMENTS);
    if (first >= count) throw Exception(KX_ERROR_PARAMETER_1_OUT_OF_RANGE);
    const std::uint64_t end = last == kToTheEnd ? count : std::uint64_t{last} + 1;
    if (end > count) throw Exception(KX_ERROR_PARAMETER_2_OUT_OF_RANGE);
    if (first >= end) throw Exception(KX_ERROR_PARAMETERS_OUT_OF_RANGE);
    return end;
}

// Makes `level(i)` element i of 256.
template <class Level>
void FillTable(KxBW8Vector& table, const char* traceName, const Level& level) {
    constexpr unsigned kLevels = 256;
    KxOk();
    AtBoundary(traceName, [&] {
        VectorCore<KxBW8>::SetCount(table, kLevels);
        for (unsigned i = 0; i < kLevels; ++i) table.GetDataPtr()[i] = level(i);
    });
}

std::uint8_t ClampedLevel(double value) {
    return static_cast<std::uint8_t>(std::clamp(TruncateToInt(value), 0, 255));
}

// Here also what is negative becomes white.
std::uint8_t WrappedLevel(double value) {
    return static_cast<std::uint8_t>(std::min(static_cast<std::uint32_t>(TruncateToInt(value)), 255u));
}

}  // namespace

template <class Pixel>
KxGrayVectorTemplate<Pixel>::KxGrayVectorTemplate(unsigned int un32MaxElements, int bUnsigned)
    : m_bUnsigned(bUnsigned) {
    this->SetMaxElements(un32MaxElements);
    SetAutoYRange();
}

template <class Pixel>
float KxGrayVectorTemplate<Pixel>::WeightedMoment(unsigned int un32First, unsigned int un32Last) const {
    return AtBoundary(kWeightedMoment<Pixel>, [&] {
        const std::uint64_t end = CheckedEnd(un32First, un32Last, this->GetNumElements());
        std::uint32_t weights = 0;
        double moments = 0;
        for (std::uint64_t i = un32First; i < end; ++i) {
            const std::uint32_t weight = this->GetDataPtr()[i];
            weights += weight;
            moments += static_cast<std::uint32_t>(i * weight);
        }
        return weights > 0 ? static_cast<float>(moments / weights) : 0.0f;
    });
}

void KxBW8Vector::SetupThreshold(KxBW8 threshold, KxBW8 below, KxBW8 above) {
    FillTable(*this, "KxBW8Vector::SetupThreshold",
              [&](unsigned i) { return i < threshold ? below : above; });
}

void KxBW8Vector::SetupGainOffset(float f32Gain, float f32Offset, float f32Gamma) {
    const double gamma = f32Gamma;
    const auto linear = [&](unsigned i) { return double{f32Gain} * i + f32Offset; };
    FillTable(*this, "KxBW8Vector::SetupGainOffset", [&](unsigned i) {
        if (gamma == 1) return ClampedLevel(linear(i));
        if (gamma < 1) {
            const double curve = std::pow(double{static_cast<float>(i) / 255.0f}, gamma);
            return ClampedLevel(curve * (f32Gain * 255.0f) + f32Offset);
        }
        const float level = std::max(0.0f, static_cast<float>(linear(i)));
        return WrappedLevel(std::pow(double{level / 255.0f}, gamma) * 255.0);
    });
}

KxC24Vector::KxC24Vector(unsigned int un32MaxElements) {
    SetMaxElements(un32MaxElements);
    SetAutoYRange();
}

KxINT32Vector::KxINT32Vector(unsigned int un32MaxElements) {
    SetMaxElements(un32MaxElements);
    SetAutoYRange();
}

template class KxGrayVectorTemplate<KxBW8>;
template class KxGrayVectorTemplate<KxBW16>;
template class KxGrayVectorTemplate<KxBW32>;
