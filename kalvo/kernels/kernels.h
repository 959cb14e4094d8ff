#pragma once
// The byte kernels: inner loops over rows of bytes and packed bits, one table of them per instruction set.
// They know bytes and counts only; formats, regions and errors belong to their callers.

#include <cstddef>
#include <cstdint>
#include <span>

namespace Zelkor::Kernels {

struct GatherPlan;

// Bits count from the most significant one: bit 0 of a byte is 0x80. Every entry takes any count, 0 included,
// and any alignment. It reads and writes only bytes that hold a part of its operands.
struct Table {
    const char* name;

    // Copies 24-bit pixels, exchanging the first and third byte of each. In place or without overlap.
    void (*swapRedBlue)(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);

    // The bits from bit `firstBit` (0 to 7) of bits[0] on become bytes: 255 for a 1, 0 for a 0.
    void (*expandBits)(const std::uint8_t* bits, int firstBit, std::uint8_t* bytes, std::size_t pixels);

    // One bit per byte, 1 where byte >= threshold. The last byte written is filled up with 0 bits.
    void (*thresholdToBits)(const std::uint8_t* bytes, std::uint8_t threshold, std::uint8_t* bits,
                            std::size_t pixels);

    // Copies between any bit offsets (0 to 7), without overlap; other destination bits stay as they are.
    void (*copyBits)(const std::uint8_t* source, int sourceBit, std::uint8_t* destination, int destinationBit,
                     std::size_t bits);

    // How many leading bytes equal bytes[0].
    std::size_t (*runLength)(const std::uint8_t* bytes, std::size_t count);

    // How many bytes stand before the first three equal ones in a row; `count` if there are none.
    std::size_t (*literalLength)(const std::uint8_t* bytes, std::size_t count);

    // Copies bytes; the operands may overlap.
    void (*copyBytes)(const std::uint8_t* source, std::uint8_t* destination, std::size_t bytes);

    // Each byte becomes entry `byte` of a table of 256. In place or without overlap.
    void (*lookUp)(const std::uint8_t* table, const std::uint8_t* source, std::uint8_t* destination,
                   std::size_t count);

    // Pixels of three bytes get a fourth one, 0, or lose it; and a byte becomes a pixel of three equal bytes,
    // and a 0. Without overlap.
    void (*widen24To32)(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);
    void (*narrow32To24)(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);
    void (*repeatTo24)(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);
    void (*repeatTo32)(const std::uint8_t* source, std::uint8_t* destination, std::size_t pixels);

    // Takes the last byte of each word of two or four bytes. Without overlap.
    void (*lastBytes)(const std::uint8_t* words, int wordBytes, std::uint8_t* bytes, std::size_t count);

    // Each destination byte d becomes (s x alpha + d x (255 - alpha)) / 255, rounded. Without overlap.
    void (*blendConstant)(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes,
                          std::uint8_t alpha);

    // Takes blocks of 64 bytes into the five words of a SHA-1 state.
    void (*sha1Blocks)(std::uint32_t* state, const std::uint8_t* blocks, std::size_t count);

    // Makes a row of the pixels of another; see gatherplan.h. Without overlap.
    void (*gatherRow)(const GatherPlan& plan, const std::uint8_t* source, std::uint8_t* destination);
};

// The best set for this processor, chosen once.
const Table& Active();

// Every set this processor can run: the portable one first, then ever better ones. For tests and benchmarks.
std::span<const Table> Available();

// One per file of kernels: puts the entries it has into the table and leaves the others.
namespace RowsPortable {
void Install(Table& kernels);
}
namespace RowsAvx2 {
void Install(Table& kernels);
}
namespace RowsVbmi {
void Install(Table& kernels);
}
namespace PixelsPortable {
void Install(Table& kernels);
}
namespace PixelsAvx2 {
void Install(Table& kernels);
}
namespace GatherPortable {
void Install(Table& kernels);
}
namespace GatherAvx2 {
void Install(Table& kernels);
}
namespace Sha1Portable {
void Install(Table& kernels);
}
namespace Sha1ShaNi {
void Install(Table& kernels);
}

}  // namespace Zelkor::Kernels
