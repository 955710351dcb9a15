#include "render/cairo/deflate_join.hpp"

#include <array>
#include <bit>
#include <cstring>

namespace mw::render {

namespace {

// Bits least significant first, read as zeros past the end (the caller
// checks the position against the end where it matters).
class BitReader {
public:
    BitReader(const unsigned char* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

    std::size_t position() const { return bit_; }
    bool pastEnd() const { return bit_ > 8 * size_; }

    // The next N bits, N at most 32.
    std::uint32_t peek(unsigned n) const {
        const std::size_t byte = bit_ >> 3;
        std::uint64_t word = 0;
        if (byte + 8 <= size_) {
            std::memcpy(&word, bytes_ + byte, 8);
            if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
        } else {
            for (std::size_t i = 0; byte + i < size_ && i < 8; ++i) word |= std::uint64_t{bytes_[byte + i]} << (8 * i);
        }
        return static_cast<std::uint32_t>((word >> (bit_ & 7)) & ((std::uint64_t{1} << n) - 1));
    }
    void skip(std::size_t n) { bit_ += n; }
    std::uint32_t take(unsigned n) {
        const std::uint32_t v = peek(n);
        skip(n);
        return v;
    }
    void toByte() { bit_ = (bit_ + 7) & ~std::size_t{7}; }

private:
    const unsigned char* bytes_;
    std::size_t size_;
    std::size_t bit_ = 0;
};

constexpr unsigned kMaxCodeLength = 15;

// A canonical Huffman code, decoded through a table of the next kTableBits
// bits, and bit by bit for the rarer longer codes.
class Huffman {
public:
    static constexpr unsigned kTableBits = 10;

    // False for an over-subscribed code; an incomplete one is accepted (a
    // code with one distance is) and its unused codes fail to decode.
    bool build(const std::uint8_t* lengths, std::size_t n) {
        count_.fill(0);
        for (std::size_t s = 0; s < n; ++s) ++count_[lengths[s]];
        count_[0] = 0;
        int left = 1;
        for (unsigned len = 1; len <= kMaxCodeLength; ++len) {
            left = 2 * left - count_[len];
            if (left < 0) return false;
        }
        std::array<std::uint16_t, kMaxCodeLength + 2> offset{};
        for (unsigned len = 1; len <= kMaxCodeLength; ++len) offset[len + 1] = offset[len] + count_[len];
        for (std::size_t s = 0; s < n; ++s)
            if (lengths[s] != 0) symbol_[offset[lengths[s]]++] = static_cast<std::uint16_t>(s);

        // Codes are sent most significant bit first, so the table is indexed
        // by each code reversed, repeated under every value of the bits after it.
        table_.fill(0);
        unsigned code = 0;
        std::size_t index = 0;
        for (unsigned len = 1; len <= kTableBits; ++len, code <<= 1) {
            for (unsigned i = 0; i < count_[len]; ++i, ++code, ++index) {
                unsigned reversed = 0;
                for (unsigned b = 0; b < len; ++b) reversed |= ((code >> b) & 1u) << (len - 1 - b);
                const auto entry = static_cast<std::uint16_t>(symbol_[index] << 4 | len);
                for (std::size_t j = reversed; j < table_.size(); j += std::size_t{1} << len) table_[j] = entry;
            }
        }
        return true;
    }

    // The next symbol; -1 for a code that is not in use.
    int decode(BitReader& in) const {
        if (const std::uint16_t entry = table_[in.peek(kTableBits)]; entry != 0) {
            in.skip(entry & 15u);
            return entry >> 4;
        }
        int code = 0, first = 0, index = 0;
        for (unsigned len = 1; len <= kMaxCodeLength; ++len) {
            code |= static_cast<int>(in.take(1));
            const int count = count_[len];
            if (code - count < first) return symbol_[static_cast<std::size_t>(index + code - first)];
            index += count;
            first = (first + count) << 1;
            code <<= 1;
        }
        return -1;
    }

private:
    std::array<std::uint16_t, kMaxCodeLength + 1> count_{};
    std::array<std::uint16_t, 288> symbol_{};
    std::array<std::uint16_t, std::size_t{1} << kTableBits> table_{};
};

constexpr std::array<std::uint8_t, 29> kLengthExtraBits = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                           2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::array<std::uint8_t, 30> kDistanceExtraBits = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                                             6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};
constexpr unsigned kEndOfBlock = 256;

// Skips one Huffman-coded block's symbols, up to and past its end-of-block code.
bool skipSymbols(BitReader& in, const Huffman& literals, const Huffman& distances) {
    for (;;) {
        if (in.pastEnd()) return false;
        const int symbol = literals.decode(in);
        if (symbol < 0) return false;
        if (symbol < static_cast<int>(kEndOfBlock)) continue;
        if (symbol == static_cast<int>(kEndOfBlock)) return true;
        const auto length = static_cast<std::size_t>(symbol) - kEndOfBlock - 1;
        if (length >= kLengthExtraBits.size()) return false;
        in.skip(kLengthExtraBits[length]);
        const int distance = distances.decode(in);
        if (distance < 0 || distance >= static_cast<int>(kDistanceExtraBits.size())) return false;
        in.skip(kDistanceExtraBits[static_cast<std::size_t>(distance)]);
    }
}

const Huffman& fixedLiterals() {
    static const Huffman code = [] {
        std::array<std::uint8_t, 288> lengths{};
        for (std::size_t s = 0; s < lengths.size(); ++s) lengths[s] = s < 144 ? 8 : s < 256 ? 9 : s < 280 ? 7 : 8;
        Huffman h;
        h.build(lengths.data(), lengths.size());
        return h;
    }();
    return code;
}

const Huffman& fixedDistances() {
    static const Huffman code = [] {
        std::array<std::uint8_t, 30> lengths{};
        lengths.fill(5);
        Huffman h;
        h.build(lengths.data(), lengths.size());
        return h;
    }();
    return code;
}

// Reads a dynamic block's code descriptions into LITERALS and DISTANCES.
bool readDynamicCodes(BitReader& in, Huffman& literals, Huffman& distances) {
    const unsigned literalCount = in.take(5) + 257, distanceCount = in.take(5) + 1, lengthCount = in.take(4) + 4;
    if (literalCount > 286 || distanceCount > 30) return false;
    static constexpr std::array<std::uint8_t, 19> kOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                            11, 4,  12, 3, 13, 2, 14, 1, 15};
    std::array<std::uint8_t, 19> lengthLengths{};
    for (unsigned i = 0; i < lengthCount; ++i) lengthLengths[kOrder[i]] = static_cast<std::uint8_t>(in.take(3));
    Huffman lengthCode;
    if (!lengthCode.build(lengthLengths.data(), lengthLengths.size())) return false;

    std::array<std::uint8_t, 286 + 30> lengths{};
    const unsigned total = literalCount + distanceCount;
    for (unsigned i = 0; i < total;) {
        if (in.pastEnd()) return false;
        const int symbol = lengthCode.decode(in);
        if (symbol < 0) return false;
        if (symbol < 16) {
            lengths[i++] = static_cast<std::uint8_t>(symbol);
            continue;
        }
        std::uint8_t repeated = 0;
        unsigned times = 0;
        if (symbol == 16) {
            if (i == 0) return false;
            repeated = lengths[i - 1];
            times = 3 + in.take(2);
        } else {
            times = symbol == 17 ? 3 + in.take(3) : 11 + in.take(7);
        }
        if (i + times > total) return false;
        for (; times > 0; --times) lengths[i++] = repeated;
    }
    if (lengths[kEndOfBlock] == 0) return false;
    return literals.build(lengths.data(), literalCount) &&
           distances.build(lengths.data() + literalCount, distanceCount);
}

}  // namespace

std::optional<FinalBlock> finalDeflateBlock(const unsigned char* stream, std::size_t size) {
    if (stream == nullptr) return std::nullopt;
    BitReader in(stream, size);
    Huffman literals, distances;
    for (;;) {
        const std::size_t finalBit = in.position();
        const bool final = in.take(1) != 0;
        switch (in.take(2)) {
            case 0: {  // stored: to the byte, LEN, its complement, LEN bytes
                in.toByte();
                const std::uint32_t length = in.take(16), complement = in.take(16);
                if ((length ^ 0xFFFFu) != complement) return std::nullopt;
                in.skip(8 * std::size_t{length});
                break;
            }
            case 1:
                if (!skipSymbols(in, fixedLiterals(), fixedDistances())) return std::nullopt;
                break;
            case 2:
                if (!readDynamicCodes(in, literals, distances) || !skipSymbols(in, literals, distances))
                    return std::nullopt;
                break;
            default:
                return std::nullopt;
        }
        if (in.pastEnd()) return std::nullopt;
        if (final) {
            // The stream is this block and its padding, nothing more.
            if ((in.position() + 7) / 8 != size) return std::nullopt;
            return FinalBlock{finalBit, in.position()};
        }
    }
}

std::size_t continueDeflateStream(unsigned char* stream, FinalBlock final) {
    stream[final.finalBit / 8] &= static_cast<unsigned char>(~(1u << (final.finalBit % 8)));
    const std::size_t endByte = final.endBit / 8;
    const unsigned endBits = final.endBit % 8;
    if (endBits == 0) return endByte;
    // An empty stored block: its three header bits (not final, type 0) and
    // the padding up to the next byte are zeros, then its length and the
    // length's complement.
    stream[endByte] &= static_cast<unsigned char>((1u << endBits) - 1);
    std::size_t at = endByte + 1;
    if (endBits > 5) stream[at++] = 0;
    const unsigned char emptyStored[4] = {0x00, 0x00, 0xFF, 0xFF};
    std::memcpy(stream + at, emptyStored, sizeof emptyStored);
    return at + sizeof emptyStored;
}

std::uint32_t adler32Combine(std::uint32_t first, std::uint32_t second, std::size_t secondLength) {
    // a = 1 + Σ bytes, b = Σ of a after each byte (both mod 65521). Over the
    // joined data a is a₁ + a₂ − 1, and b gains the first piece's a − 1
    // once for every byte of the second.
    constexpr std::uint64_t kBase = 65521;
    const std::uint64_t a1 = first & 0xFFFF, b1 = first >> 16, a2 = second & 0xFFFF, b2 = second >> 16;
    const std::uint64_t n = secondLength % kBase;
    const std::uint64_t a = (a1 + a2 + kBase - 1) % kBase;
    const std::uint64_t b = (b1 + b2 + n * ((a1 + kBase - 1) % kBase)) % kBase;
    return static_cast<std::uint32_t>(b << 16 | a);
}

}  // namespace mw::render
