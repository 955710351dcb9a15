#pragma once
// Raw DEFLATE streams made apart (each ending in a final block, padded to a
// byte) joined into one stream, and the Adler-32 of joined data: what lets
// two threads compress two halves of a PNG's rows at once.

#include <cstddef>
#include <cstdint>
#include <optional>

namespace mw::render {

// The last block of a raw DEFLATE stream, in bits from the stream's start
// (least significant bit of each byte first): its BFINAL bit, and the bit
// just past its end-of-block code (or past its bytes, for a stored block).
struct FinalBlock {
    std::size_t finalBit = 0;
    std::size_t endBit = 0;
    bool operator==(const FinalBlock&) const = default;
};

// Walks the blocks of STREAM (SIZE bytes), decoding their symbols without
// writing output, to find the final one. Nothing when STREAM is not exactly
// one well-formed stream: an invalid block or code, a stream cut short, or
// bytes left after the final block's padding.
std::optional<FinalBlock> finalDeflateBlock(const unsigned char* stream, std::size_t size);

// Most bytes that continueDeflateStream adds.
inline constexpr std::size_t kDeflateContinueBytes = 5;

// Turns STREAM, whose final block is FINAL, into one that goes on: clears
// the BFINAL bit and, when the block ends inside a byte, closes that byte
// with an empty stored block (3 bits, padding, then 00 00 FF FF), so that a
// second stream can follow from the next byte as it is, stored blocks and
// all. Returns where the next stream's first byte goes.
std::size_t continueDeflateStream(unsigned char* stream, FinalBlock final);

// The Adler-32 of two pieces of data one after the other, from each
// piece's own Adler-32 and the second's length.
std::uint32_t adler32Combine(std::uint32_t first, std::uint32_t second, std::size_t secondLength);

}  // namespace mw::render
