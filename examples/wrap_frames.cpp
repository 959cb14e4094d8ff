// Looks at the frames of a camera where the driver put them: nothing is copied.

#include <kalvo/kalvo.h>

#include <cstdint>
#include <cstdio>
#include <vector>

int main() {
    constexpr int kWidth = 640, kHeight = 480, kPitchBytes = 704, kFrames = 3;
    std::vector<std::uint8_t> ring(std::size_t{kFrames} * kPitchBytes * kHeight);  // the driver's memory

    KxImage<KxBW8> frame;
    KxROI<KxBW8> centre(&frame, 0, 0, 0, 0);
    for (int i = 0; i < kFrames; ++i) {
        std::uint8_t* pixels = ring.data() + std::size_t{kPitchBytes} * kHeight * i;
        pixels[240 * kPitchBytes + 320] = static_cast<std::uint8_t>(50 * i);
        // The distance between rows is given in bits.
        frame.SetImagePtr(kWidth, kHeight, pixels, 8 * kPitchBytes);
        centre.SetPlacement(310, 230, 20, 20);
        std::printf("frame %d: %d\n", i, static_cast<int>(centre.GetPixel(10, 10)));
    }
    return KxFailure();
}

// Prints:
// frame 0: 0
// frame 1: 50
// frame 2: 100
