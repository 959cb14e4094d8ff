#pragma once
// Saved positions of archive streams: taking one off the stack, and going back after a failure.

#include <utility>
#include <vector>

#include "kalvo/frame/boundary.h"
#include "kalvo/streams/kxserializer.h"

namespace Zelkor::Kalvo {

// Takes the last position off a stack. Throws KX_ERROR_FILE_ACCESS when there is none.
template <class Position>
Position PopPosition(std::vector<Position>& positions) {
    if (positions.empty()) throw Exception(KX_ERROR_FILE_ACCESS);
    const Position position = positions.back();
    positions.pop_back();
    return position;
}

// Takes a stream back to where it stood, unless the work was done and `Keep` said so.
class StreamRewinder {
public:
    explicit StreamRewinder(KxSerializer& stream) : m_stream(&stream) { stream.PushStreamPos(); }
    StreamRewinder(const StreamRewinder&) = delete;
    StreamRewinder& operator=(const StreamRewinder&) = delete;

    // The failure that brings us here matters more than one of going back.
    ~StreamRewinder() {
        if (m_stream) OrNeutral([this] { Rewind(); });
    }

    // Leaves the stream where it is now.
    void Keep() { std::exchange(m_stream, nullptr)->PopAndForgetStreamPos(); }

    // Goes back at once. Throws KX_ERROR_FILE_ACCESS when the stream cannot.
    void Rewind() { std::exchange(m_stream, nullptr)->PopAndApplyStreamPos(); }

private:
    KxSerializer* m_stream;
};

}  // namespace Zelkor::Kalvo
