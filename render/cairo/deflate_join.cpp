#include "render/cairo/deflate_join.hpp"

#include <array>
#include <bit>
#include <cstring>

namespace mw::render {

namespace {

// Bits least significant first, from a 64-bit buffer refilled a word at a
// time; read as zeros past the end, up to a limit (the caller checks the
// position against the end where it matters).
class BitReader {
public:
    BitReader(const unsigned char* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

    // Bits taken so far.
    std::size_t position() const { return 8 * next_ - available_; }
    unsigned available() const { return available_; }

    // At least 56 bits available afterwards; false once well past the end.
    bool refill() {
        if (next_ + 8 <= size_) {
            std::uint64_t word;
            std::memcpy(&word, bytes_ + next_, 8);
            if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
            buffer_ |= word << available_;
            next_ += (63 - available_) / 8;
            available_ |= 56;
            return true;
        }
        for (; available_ <= 56; ++next_, available_ += 8)
            buffer_ |= std::uint64_t{next_ < size_ ? bytes_[next_] : 0u} << available_;
        return next_ <= size_ + 16;
    }
    // The next N bits (N at most 32, and at most what is available).
    std::uint32_t peek(unsigned n) const { return static_cast<std::uint32_t>(buffer_ & ((std::uint64_t{1} << n) - 1)); }
    void skip(unsigned n) {
        buffer_ >>= n;
        available_ -= n;
    }
    std::uint32_t take(unsigned n) {
        if (available_ < n) refill();
        const std::uint32_t v = peek(n);
        skip(n);
        return v;
    }
    void toByte() { skip(available_ % 8); }
    // Moves on to byte AT (the buffer is dropped).
    void jumpTo(std::size_t at) {
        next_ = at;
        buffer_ = 0;
        available_ = 0;
    }

private:
    const unsigned char* bytes_;
    std::size_t size_;
    std::size_t next_ = 0;  // the next byte to load
    std::uint64_t buffer_ = 0;
    unsigned available_ = 0;
};

constexpr unsigned kMaxCodeLength = 15;

// A canonical Huffman code, decoded through a table of the next kTableBits
// bits, and bit by bit for the rarer longer codes. Each symbol's extra bits
// (a length's or a distance's) are skipped with its code.
class Huffman {
public:
    static constexpr unsigned kTableBits = 10;

    // False for an over-subscribed code; an incomplete one is accepted (a
    // code with one distance is) and its unused codes fail to decode.
    bool build(const std::uint8_t* lengths, std::size_t n, const std::uint8_t* extraBits) {
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
        extraBits_ = extraBits;

        // Codes are sent most significant bit first, so the table is indexed
        // by each code reversed, repeated under every value of the bits after
        // it. An entry is the symbol, then the bits to skip.
        table_.fill(0);
        unsigned code = 0;
        std::size_t index = 0;
        for (unsigned len = 1; len <= kTableBits; ++len, code <<= 1) {
            for (unsigned i = 0; i < count_[len]; ++i, ++code, ++index) {
                unsigned reversed = 0;
                for (unsigned b = 0; b < len; ++b) reversed |= ((code >> b) & 1u) << (len - 1 - b);
                const std::uint32_t symbol = symbol_[index];
                const std::uint32_t entry = symbol << 8 | (len + extra(symbol));
                for (std::size_t j = reversed; j < table_.size(); j += std::size_t{1} << len) table_[j] = entry;
            }
        }
        return true;
    }

    // The next symbol, its code and extra bits taken; -1 for a code that is
    // not in use. Needs 15 bits and the symbol's extra bits available.
    int decode(BitReader& in) const {
        if (const std::uint32_t entry = table_[in.peek(kTableBits)]; entry != 0) {
            in.skip(entry & 0xFF);
            return static_cast<int>(entry >> 8);
        }
        int code = 0, first = 0, index = 0;
        for (unsigned len = 1; len <= kMaxCodeLength; ++len) {
            code |= static_cast<int>(in.peek(1));
            in.skip(1);
            const int count = count_[len];
            if (code - count < first) {
                const std::uint16_t symbol = symbol_[static_cast<std::size_t>(index + code - first)];
                in.skip(extra(symbol));
                return symbol;
            }
            index += count;
            first = (first + count) << 1;
            code <<= 1;
        }
        return -1;
    }

private:
    unsigned extra(std::uint32_t symbol) const { return extraBits_ != nullptr ? extraBits_[symbol] : 0; }

    std::array<std::uint16_t, kMaxCodeLength + 1> count_{};
    std::array<std::uint16_t, 288> symbol_{};
    const std::uint8_t* extraBits_ = nullptr;
    std::array<std::uint32_t, std::size_t{1} << kTableBits> table_{};
};

// Extra bits after each literal/length symbol (lengths 257–285) and each
// distance symbol; zero for the symbols a stream may not use.
constexpr std::array<std::uint8_t, 288> kLiteralExtraBits = [] {
    constexpr std::uint8_t kLengths[29] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                           2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
    std::array<std::uint8_t, 288> bits{};
    for (std::size_t i = 0; i < 29; ++i) bits[257 + i] = kLengths[i];
    return bits;
}();
constexpr std::array<std::uint8_t, 32> kDistanceExtraBits = {0, 0, 0, 0, 1, 1, 2,  2,  3,  3,  4,  4,  5,  5,  6, 6,
                                                             7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13, 0, 0};
constexpr int kEndOfBlock = 256;
constexpr int kLengthSymbolsEnd = 286;
constexpr int kDistanceSymbols = 30;

// Skips one Huffman-coded block's symbols, up to and past its end-of-block
// code. 48 bits hold the longest length and distance with their extra bits.
bool skipSymbols(BitReader& in, const Huffman& literals, const Huffman& distances) {
    for (;;) {
        if (in.available() < 48 && !in.refill()) return false;
        const int symbol = literals.decode(in);
        if (symbol < kEndOfBlock) {
            if (symbol < 0) return false;
            continue;
        }
        if (symbol == kEndOfBlock) return true;
        if (symbol >= kLengthSymbolsEnd) return false;
        const int distance = distances.decode(in);
        if (distance < 0 || distance >= kDistanceSymbols) return false;
    }
}

const Huffman& fixedLiterals() {
    static const Huffman code = [] {
        std::array<std::uint8_t, 288> lengths{};
        for (std::size_t s = 0; s < lengths.size(); ++s) lengths[s] = s < 144 ? 8 : s < 256 ? 9 : s < 280 ? 7 : 8;
        Huffman h;
        h.build(lengths.data(), lengths.size(), kLiteralExtraBits.data());
        return h;
    }();
    return code;
}

const Huffman& fixedDistances() {
    static const Huffman code = [] {
        std::array<std::uint8_t, 30> lengths{};
        lengths.fill(5);
        Huffman h;
        h.build(lengths.data(), lengths.size(), kDistanceExtraBits.data());
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
    if (!lengthCode.build(lengthLengths.data(), lengthLengths.size(), nullptr)) return false;

    std::array<std::uint8_t, 286 + 30> lengths{};
    const unsigned total = literalCount + distanceCount;
    for (unsigned i = 0; i < total;) {
        if (in.available() < 32 && !in.refill()) return false;
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
    return literals.build(lengths.data(), literalCount, kLiteralExtraBits.data()) &&
           distances.build(lengths.data() + literalCount, distanceCount, kDistanceExtraBits.data());
}

}  // namespace

std::optional<FinalBlock> finalDeflateBlock(const unsigned char* stream, std::size_t size) {
    if (stream == nullptr) return std::nullopt;
    BitReader in(stream, size);
    Huffman literals, distances;
    for (;;) {
        if (!in.refill()) return std::nullopt;
        const std::size_t finalBit = in.position();
        const bool final = in.take(1) != 0;
        switch (in.take(2)) {
            case 0: {  // stored: to the byte, LEN, its complement, LEN bytes
                in.toByte();
                const std::uint32_t length = in.take(16), complement = in.take(16);
                if ((length ^ 0xFFFFu) != complement) return std::nullopt;
                in.jumpTo(in.position() / 8 + length);
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
        if (in.position() > 8 * size) return std::nullopt;
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
