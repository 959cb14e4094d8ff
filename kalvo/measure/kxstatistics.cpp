// A ring of samples and the sums over it.

#include "kalvo/measure/kxstatistics.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <span>

#include "kalvo/frame/boundary.h"

KxStatistics::KxStatistics(unsigned int n) { Reset(n); }

KxStatistics::~KxStatistics() = default;

void KxStatistics::Reset(unsigned int n) {
    m_pSamples.reset();  // first, so that old and new samples never need memory together
    m_un32Capacity = m_un32Count = m_un32Next = 0;
    if (n == 0) return;
    m_pSamples.reset(new (std::nothrow) float[n]);
    if (!m_pSamples) return Zelkor::Kalvo::Report(KX_ERROR_ALLOCATION, "KxStatistics::Reset");
    m_un32Capacity = n;
}

void KxStatistics::NewElement(float f32Sample) {
    if (m_un32Next >= m_un32Capacity) return;
    m_pSamples[m_un32Next] = f32Sample;
    m_un32Count = std::max(m_un32Count, ++m_un32Next);
    if (m_un32Next == m_un32Capacity) m_un32Next = 0;
}

// Every partial sum below is rounded to single precision, so the order of the samples counts.

float KxStatistics::Average() const {
    if (m_un32Count == 0) return 0;
    float sum = 0;
    for (const float sample : std::span(m_pSamples.get(), m_un32Count)) sum += sample;
    return static_cast<float>(double{sum} / m_un32Count);
}

float KxStatistics::Deviation() const {
    if (m_un32Count < 2) return 0;
    const float average = Average();
    float sum = 0;
    for (const float sample : std::span(m_pSamples.get(), m_un32Count)) {
        const double difference = sample - average;  // its square is exact in double precision
        sum = static_cast<float>(sum + difference * difference);
    }
    return static_cast<float>(std::sqrt(double{sum} / m_un32Count));
}

// A comparison with NaN is false, so these replace their first value by ordered ones only.

float KxStatistics::Minimum() const {
    return m_un32Count > 0 ? *std::min_element(m_pSamples.get(), m_pSamples.get() + m_un32Count) : 0;
}

float KxStatistics::Maximum() const {
    return m_un32Count > 0 ? *std::max_element(m_pSamples.get(), m_pSamples.get() + m_un32Count) : 0;
}
