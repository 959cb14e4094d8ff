#pragma once
// Statistics of the most recent samples.

#include <cstdint>
#include <memory>

#include "kalvo/base/kxexport.h"

/// Keeps the last samples, up to a fixed number, and computes statistics over those it holds. Sums are taken
/// in single precision, in the order of the ring of samples. Used by one thread at a time.
/// @code
/// KxStatistics last(100);  // of the hundred most recent samples
/// for (const float millimetres : {15.1f, 14.9f, 15.0f}) last.NewElement(millimetres);
/// std::printf("%f +- %f\n", last.Average(), last.Deviation());
/// @endcode
class KX_API KxStatistics {
public:
    /// Keeps the last `n` samples; 0 keeps none. Fails as `Reset` does.
    explicit KxStatistics(unsigned int n = 0);
    KxStatistics(const KxStatistics&) = delete;
    KxStatistics& operator=(const KxStatistics&) = delete;
    ~KxStatistics();

    /// Forgets all samples; from now on the last `n` are kept. Without memory: `KX_ERROR_ALLOCATION`, and
    /// samples are ignored as after `Reset(0)`.
    void Reset(unsigned int n);
    /// Adds a sample, in place of the oldest when there is no room.
    void NewElement(float f32Sample);

    /// Number of samples held.
    unsigned int Count() const { return m_un32Count; }
    /// The mean; 0 without samples.
    float Average() const;
    /// Standard deviation of the samples held, as a population; 0 with less than two.
    float Deviation() const;
    /// The smallest sample; 0 without samples. A NaN counts only when it is the first in the ring.
    float Minimum() const;
    /// The largest sample, alike.
    float Maximum() const;

private:
    std::uint32_t m_un32Capacity = 0;
    std::uint32_t m_un32Count = 0;
    std::uint32_t m_un32Next = 0;  // where the next sample goes
    std::unique_ptr<float[]> m_pSamples;
};
