#include "core/dataline.h"

#include <strings.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

const char* const kDefaultSeparators = " ";

// Printable, non-blank ASCII: what the trim keeps at the ends of a text.
inline bool isGraphic(char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    return byte > 0x20 && byte < 0x7f;
}

// True when the `count` bytes at `bytes` are all zero; reads eight at a time where it can.
inline bool allZero(const char* bytes, size_t count) {
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        uint64_t chunk;
        std::memcpy(&chunk, bytes + i, sizeof chunk);
        if (chunk != 0) return false;
    }
    for (; i < count; ++i) {
        if (bytes[i] != '\0') return false;
    }
    return true;
}

// How far past its known extent a buffer is searched for text that callers wrote in place. A caller's
// text that outruns the extent shows there at once; only a pile of ever shorter texts could hide
// behind a run of this many zeros.
constexpr size_t kLookAhead = 32;

// Where the written part of `buffer` ends: the known extent, pushed past any text that callers
// wrote beyond it.
inline size_t writtenExtent(const char* buffer, size_t size, size_t knownExtent) {
    size_t extent = knownExtent;
    while (extent < size && !allZero(buffer + extent, std::min(kLookAhead, size - extent))) {
        extent = std::min(size, extent + strnlen(buffer + extent, size - extent) + 1);
    }
    return extent;
}

// Zeroes `buffer` as far as it may have been written, which leaves all of it zero.
inline void clearWritten(char* buffer, size_t size, size_t knownExtent) {
    std::memset(buffer, 0, writtenExtent(buffer, size, knownExtent));
}

// The mask that keeps the first `count` bytes (0 to 7) of an 8-byte chunk in memory order.
inline uint64_t keepFirstBytes(size_t count) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    return count == 0 ? 0 : ~uint64_t{0} << (8 * (8 - count));
#else
    return (uint64_t{1} << (8 * count)) - 1;
#endif
}

// ---------------------------------------------------------------------------------------------
// Sixteen bytes at a time. Every x86-64 has SSE2; elsewhere the same answers come a byte at a time.

// Bytes of padding behind the line buffer, so that a scan may read whole blocks past the end of
// the text without leaving the allocation. Nothing is ever written there.
constexpr size_t kLinePadding = 128;

// The most separators that are compared byte for byte; larger sets go through a table.
constexpr unsigned kFewSeparators = 4;

#if defined(__SSE2__)

class Block16 {
public:
    using Spread = __m128i;

    static Spread spread(unsigned char byte) { return _mm_set1_epi8(static_cast<char>(byte)); }
    static Block16 load(const char* bytes) {
        return Block16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
    }

    // Bit i set when byte i is `spread`'s byte.
    unsigned equal(const Spread& byte) const {
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(m_Bytes, byte)));
    }
    unsigned zeros() const { return equal(_mm_setzero_si128()); }
    // Bit i set when the trim keeps byte i: printable ASCII other than the blank.
    unsigned graphic() const {
        // One more than a graphic byte is 0x22 to 0x7f, which as signed bytes are all above 0x21;
        // one more than any other byte is 0x21 or less, or from 128 up, which counts as negative.
        const __m128i kept = _mm_cmpgt_epi8(_mm_add_epi8(m_Bytes, _mm_set1_epi8(1)), _mm_set1_epi8(0x21));
        return static_cast<unsigned>(_mm_movemask_epi8(kept));
    }
    bool allZero() const { return zeros() == 0xFFFF; }
    void store(char* target) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(target), m_Bytes); }
    static void zero(char* target) { _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_setzero_si128()); }

private:
    explicit Block16(__m128i bytes) : m_Bytes(bytes) {}
    __m128i m_Bytes;
};

#else

class Block16 {
public:
    using Spread = unsigned char;

    static Spread spread(unsigned char byte) { return byte; }
    static Block16 load(const char* bytes) {
        Block16 block;
        std::memcpy(block.m_Bytes, bytes, sizeof block.m_Bytes);
        return block;
    }

    unsigned equal(Spread byte) const {
        unsigned bits = 0;
        for (unsigned i = 0; i < 16; ++i) bits |= unsigned{m_Bytes[i] == byte} << i;
        return bits;
    }
    unsigned zeros() const { return equal(0); }
    unsigned graphic() const {
        unsigned bits = 0;
        for (unsigned i = 0; i < 16; ++i) bits |= unsigned{m_Bytes[i] > 0x20 && m_Bytes[i] < 0x7f} << i;
        return bits;
    }
    bool allZero() const { return zeros() == 0xFFFF; }
    void store(char* target) const { std::memcpy(target, m_Bytes, sizeof m_Bytes); }
    static void zero(char* target) { std::memset(target, 0, 16); }

private:
    unsigned char m_Bytes[16];
};

#endif

// The position of the lowest set bit of `bits`, which is not zero.
inline size_t lowestBit(uint64_t bits) {
#if defined(__GNUC__) && defined(__x86_64__)
    // The builtin counts in an int, which the compiler then widens, and it clears the target first:
    // four instructions of the thirty or so the cut spends per token. (This encoding counts the same
    // on every x86-64 when bits is not zero.)
    uint64_t position;
    __asm__("rep bsfq %1, %0" : "=r"(position) : "rm"(bits) : "cc");
    return position;
#else
    return static_cast<unsigned>(__builtin_ctzll(bits));
#endif
}

// Position of the first NUL at or after `text`. Reads whole 64-byte steps, so the buffer must be
// readable that far past the NUL, as the padded line buffer is. Steps that large take most lines in
// one or two, which keeps the end of the loop easy to foresee.
inline size_t textLength(const char* text) {
    for (size_t at = 0;; at += 64) {
        const uint64_t zeros = uint64_t{Block16::load(text + at).zeros()} |
                               uint64_t{Block16::load(text + at + 16).zeros()} << 16 |
                               uint64_t{Block16::load(text + at + 32).zeros()} << 32 |
                               uint64_t{Block16::load(text + at + 48).zeros()} << 48;
        if (zeros != 0) return at + lowestBit(zeros);
    }
}

// The trim of Generic::RemoveLeadingAndTrailingBlanks on a text whose length is known, short of the
// NUL behind the trimmed text, which the caller writes: `length` becomes the trimmed length. False
// when nothing is left, and the text is then empty.
inline bool trimTextLeavingEnd(char* text, size_t& length) {
    size_t first = 0;
    while (first < length && !isGraphic(text[first])) ++first;
    if (first == length) {
        text[0] = '\0';
        length = 0;
        return false;
    }
    size_t last = length - 1;
    while (!isGraphic(text[last])) --last;  // stops at `first` at the latest
    const size_t kept = last - first + 1;
    // Too long a text ends the process there, with the helper's own message.
    if (kept >= Generic::kTrimLimit) Generic::RemoveLeadingAndTrailingBlanks(text);
    if (first != 0) std::memmove(text, text + first, kept);
    length = kept;
    return true;
}

// The trim of Generic::RemoveLeadingAndTrailingBlanks on a text whose length is known, with the same
// result; `length` becomes the trimmed length. False when nothing is left.
inline bool trimText(char* text, size_t& length) {
    if (!trimTextLeavingEnd(text, length)) return false;
    text[length] = '\0';
    return true;
}

// Copies `length` bytes and nothing more, in whole blocks where it can. (A library copy whose size
// the compiler knows to be bounded is expanded into a string instruction that is slow to start.)
inline void copyBytes(char* target, const char* source, size_t length) {
    if (length >= 16) {
        size_t at = 0;
        for (; at + 16 < length; at += 16) Block16::load(source + at).store(target + at);
        // The last block may overlap the one before; it writes the same bytes again.
        Block16::load(source + length - 16).store(target + length - 16);
    } else if (length >= 8) {
        uint64_t head, tail;
        std::memcpy(&head, source, 8);
        std::memcpy(&tail, source + length - 8, 8);
        std::memcpy(target, &head, 8);
        std::memcpy(target + length - 8, &tail, 8);
    } else {
        for (size_t at = 0; at < length; ++at) target[at] = source[at];
    }
}

// Tokens up to this length go into their slot in whole 8-byte chunks.
constexpr size_t kShortToken = 56;

// Where a word slot's written part ends, given the mark of the reader's own writes. Two 8-byte probes
// settle the usual case; text that callers wrote past the mark sends it to the full search.
inline size_t slotExtent(const char* word, size_t size, size_t mark) {
    if (mark + 16 <= size) {
        uint64_t probe[2];
        std::memcpy(probe, word + mark, sizeof probe);
        if ((probe[0] | probe[1]) == 0) return mark;
    }
    return writtenExtent(word, size, mark);
}

// Copies a short token into a slot written up to `extent`, and zeroes whatever stood behind the
// token before: the slot ends as if it had been cleared and the token copied. Copies whole 8-byte
// chunks, so it reads up to 7 bytes past the token, which the line buffer always has.
inline void storeShortToken(char* word, size_t extent, const char* token, size_t length) {
    size_t done = 0;
    for (; done + 8 <= length; done += 8) std::memcpy(word + done, token + done, 8);
    uint64_t last;  // the rest of the token, its NUL and zeros
    std::memcpy(&last, token + done, 8);
    last &= keepFirstBytes(length - done);
    std::memcpy(word + done, &last, 8);
    const size_t written = done + 8;
    if (extent > written) std::memset(word + written, 0, extent - written);
}

// Puts a token into a word slot with the same result as clearing the slot, copying the token in
// (cut to the slot) and trimming it. `mark` is the slot's extent of the reader's own writes.
inline void storeToken(char* word, uint16_t& mark, const char* token, size_t length) {
    const size_t extent = slotExtent(word, DataLine::kWordSize, mark);
    const size_t kept = std::min<size_t>(length, DataLine::kWordSize - 1);
    if (kept <= kShortToken) {
        storeShortToken(word, extent, token, kept);
    } else {
        std::memset(word, 0, extent);
        copyBytes(word, token, kept);
        word[kept] = '\0';
    }
    mark = static_cast<uint16_t>(kept + 1);
    // Tokens hold no separator but may hold other blanks; most need no trim at all.
    if (kept > 0 && (!isGraphic(token[0]) || !isGraphic(token[kept - 1]))) {
        Generic::RemoveLeadingAndTrailingBlanks(word);
    }
}

// Zeroes a buffer as far as it may have been written (see writtenExtent) and resets its extent.
// The usual line is short: then the first kQuickClear bytes are zeroed whatever the extent, with a
// fixed run of stores, and the look past them stands in for the look past the extent, since a text
// that ran past the extent and past those bytes shows there.
constexpr size_t kQuickClear = 128;

// Zeroes `count` bytes through the C library. Ahead of an fgets into the same bytes its wide stores
// measured faster than what the compiler makes of a memset whose size it knows (a run of 16-byte
// stores, or a string instruction that is slow to start), so the size is hidden from it.
inline void zeroBytes(char* bytes, size_t count) {
#if defined(__GNUC__)
    __asm__("" : "+r"(count));
#endif
    std::memset(bytes, 0, count);
}

// True when the kLookAhead bytes at `bytes` are all zero: the look past a short line, in one test.
inline bool lookAheadIsZero(const char* bytes) {
    static_assert(kLookAhead == 32, "four words");
    uint64_t a, b, c, d;
    std::memcpy(&a, bytes, 8);
    std::memcpy(&b, bytes + 8, 8);
    std::memcpy(&c, bytes + 16, 8);
    std::memcpy(&d, bytes + 24, 8);
    return ((a | b) | (c | d)) == 0;
}

inline void clearBuffer(char* buffer, size_t size, size_t& extent) {
    if (extent <= kQuickClear && size >= kQuickClear + kLookAhead && lookAheadIsZero(buffer + kQuickClear)) {
        zeroBytes(buffer, kQuickClear);
    } else {
        clearWritten(buffer, size, extent);
    }
    extent = 0;
}

// fgets into `line` (of `size` bytes). False at end of file or on an error, after which the
// buffer's contents are unknown and `extent` says so.
inline bool fgetsLine(FILE* stream, char* line, size_t size, size_t& extent) {
    if (stream == nullptr) return false;
    // The reader is the only user of its stream while it reads, so it does without the stream's lock.
#if defined(__GLIBC__)
    char* const got = fgets_unlocked(line, static_cast<int>(size), stream);
#else
    char* const got = std::fgets(line, static_cast<int>(size), stream);
#endif
    if (got == nullptr && std::ferror(stream)) extent = size;
    return got != nullptr;
}

// Notes how far fgets wrote, given the first NUL of the line at `length`.
inline void noteLineWritten(const char* line, size_t size, size_t length, size_t& extent) {
    const bool endsAtLineFeed = length > 0 && line[length - 1] == '\n';
    const bool fillsBuffer = length == size - 1;
    if (endsAtLineFeed || fillsBuffer) {
        extent = std::max(extent, length + 1);
    } else {
        // A NUL byte inside the line (or a last line without its line feed) hides how far fgets
        // wrote; the next clear then takes the whole buffer.
        extent = size;
    }
}

// fgets into `line` (of `size` bytes), noting how far the buffer was written and where the text
// ends. False at end of file or on an error.
inline bool readLine(FILE* stream, char* line, size_t size, size_t& extent, size_t& length) {
    if (!fgetsLine(stream, line, size, extent)) return false;
    length = textLength(line);
    noteLineWritten(line, size, length, extent);
    return true;
}

// Reads lines, trimming each, until one is not blank; `length` is then the trimmed length. Without
// `closed`, the NUL behind the trimmed text is left for the caller to write.
template <bool Closed = true>
inline bool readNonBlankLine(FILE* stream, char* line, size_t size, size_t& extent, size_t& length) {
    while (readLine(stream, line, size, extent, length)) {
        if (Closed ? trimText(line, length) : trimTextLeavingEnd(line, length)) return true;
    }
    return false;
}

// True when the two texts are equal. Separator sets are a few bytes long: a plain loop is cheaper
// than a call.
inline bool sameText(const char* a, const char* b) {
    for (; *a == *b; ++a, ++b) {
        if (*a == '\0') return true;
    }
    return false;
}

// A separator set taken apart once for the cut: its distinct bytes where they are few, a table always.
struct SeparatorSet {
    std::string text;
    unsigned count = 0;
    // The distinct bytes, each spread over a block; a smaller set fills the spare places with its
    // first byte, which changes nothing.
    Block16::Spread spread[kFewSeparators] = {};
    std::array<uint8_t, 256> table{};

    void assign(const char* separators) {
        text = separators;
        table.fill(0);
        count = 0;
        unsigned char bytes[kFewSeparators] = {};
        for (const char* c = separators; *c != '\0'; ++c) {
            const unsigned char byte = static_cast<unsigned char>(*c);
            if (table[byte] != 0) continue;
            table[byte] = 1;
            if (count < kFewSeparators) bytes[count] = byte;
            ++count;
        }
        for (unsigned i = 0; i < kFewSeparators; ++i) spread[i] = Block16::spread(bytes[i < count ? i : 0]);
    }
};

// Marks a block's separators by comparing with each of `Count` bytes, or by the table when Count is 0.
template <unsigned Count>
class SeparatorMatcher {
public:
    explicit SeparatorMatcher(const SeparatorSet& set) {
        for (unsigned i = 0; i < Count; ++i) m_Spread[i] = set.spread[i];
    }
    unsigned operator()(const Block16& block, const char*) const {
        unsigned bits = block.equal(m_Spread[0]);
        for (unsigned i = 1; i < Count; ++i) bits |= block.equal(m_Spread[i]);
        return bits;
    }

private:
    Block16::Spread m_Spread[Count];
};

template <>
class SeparatorMatcher<0> {
public:
    explicit SeparatorMatcher(const SeparatorSet& set) : m_Table(set.table.data()) {}
    unsigned operator()(const Block16&, const char* bytes) const {
        unsigned bits = 0;
        for (unsigned i = 0; i < 16; ++i) bits |= unsigned{m_Table[static_cast<unsigned char>(bytes[i])]} << i;
        return bits;
    }

private:
    const uint8_t* m_Table;
};

// Bits for 64 bytes of text, byte 0 in bit 0: its NULs, its separators, and the bytes the trim
// keeps (any other is a blank, a control byte, DEL or a byte from 128 up).
struct ChunkBits {
    uint64_t zeros;
    uint64_t separators;
    uint64_t graphic;
};

template <typename Matcher>
__attribute__((always_inline)) inline ChunkBits lookAtChunk(const char* text, const Matcher& isSeparator) {
    // Spelled out block by block: as a loop the compiler keeps the shifts variable.
    const Block16 b0 = Block16::load(text);
    const Block16 b1 = Block16::load(text + 16);
    const Block16 b2 = Block16::load(text + 32);
    const Block16 b3 = Block16::load(text + 48);
    auto join = [](unsigned q0, unsigned q1, unsigned q2, unsigned q3) {
        return uint64_t{q0} | uint64_t{q1} << 16 | uint64_t{q2} << 32 | uint64_t{q3} << 48;
    };
    return ChunkBits{join(b0.zeros(), b1.zeros(), b2.zeros(), b3.zeros()),
                     join(isSeparator(b0, text), isSeparator(b1, text + 16), isSeparator(b2, text + 32),
                          isSeparator(b3, text + 48)),
                     join(b0.graphic(), b1.graphic(), b2.graphic(), b3.graphic())};
}

// Moves the bits of two chunks down by `count` (1 to 63) places, as the bytes they stand for.
inline void shiftDown(ChunkBits (&seen)[2], size_t count) {
    auto down = [count](uint64_t& low, uint64_t high) { low = (low >> count) | (high << (64 - count)); };
    down(seen[0].zeros, seen[1].zeros);
    down(seen[0].separators, seen[1].separators);
    down(seen[0].graphic, seen[1].graphic);
    seen[1].zeros >>= count;
    seen[1].separators >>= count;
    seen[1].graphic >>= count;
}

inline size_t highestBit(uint64_t bits) { return 63 - static_cast<unsigned>(__builtin_clzll(bits)); }

// The bits below `count` (0 to 64).
inline uint64_t bitsBelow(size_t count) { return count >= 64 ? ~uint64_t{0} : (uint64_t{1} << count) - 1; }

// Where the separators of a trimmed line stand, and whether any token may need a trim of its own.
struct LineSeparators {
    static constexpr size_t kMaxChunks = Generic::kTrimLimit / 64 + 1;

    // One bit per byte, set at separators and from the end of the text on.
    uint64_t bits[kMaxChunks];
    size_t chunks = 0;
    // Some byte that is not a separator is one the trim would take away (a tab, a return, a byte
    // from 128 up), so a token may start or end with it.
    bool oddBytes = false;

    // Where tokens start in chunk `chunk`, given whether the chunk before ended at a separator.
    uint64_t startsIn(size_t chunk, uint64_t& behind) const {
        const uint64_t separators = bits[chunk];
        // A token starts at a byte that is no separator and stands behind one; the start of the text
        // counts as behind a separator.
        const uint64_t starts = ~separators & ((separators << 1) | behind);
        behind = separators >> 63;
        return starts;
    }

    // Looks at the `length` bytes (under 8192) of `text`, readable 64 bytes further.
    template <typename Matcher>
    void find(const char* text, size_t length, const Matcher& isSeparator) {
        const size_t last = length / 64;
        uint64_t odd = 0;
        for (size_t chunk = 0; chunk <= last; ++chunk) {
            const ChunkBits seen = lookAtChunk(text + 64 * chunk, isSeparator);
            // What the trim left behind the text counts as separators.
            const uint64_t separators = seen.separators | (chunk == last ? ~bitsBelow(length % 64) : 0);
            bits[chunk] = separators;
            odd |= ~(seen.graphic | separators);
        }
        chunks = last + 1;
        oddBytes = odd != 0;
    }

    // The same from what a look at the first two chunks found, for a text of under 128 bytes.
    void takeShort(const ChunkBits (&seen)[2], size_t length) {
        bits[0] = seen[0].separators | ~bitsBelow(length);
        bits[1] = seen[1].separators | ~bitsBelow(length < 64 ? 0 : length - 64);
        chunks = 2;
        oddBytes = (~(seen[0].graphic | bits[0]) | ~(seen[1].graphic | bits[1])) != 0;
    }
};

// Reads lines until one is not blank, trims it as Generic::RemoveLeadingAndTrailingBlanks would, but
// for the NUL behind the trimmed text, which the caller writes, and finds its separators. `length`
// is then the trimmed length. False at end of file.
//
// The usual line ends within 128 bytes: one look at them finds the end, the bytes to trim and the
// separators, with no loop whose end would have to be guessed.
template <typename Matcher>
bool readLineToCut(FILE* stream, char* line, size_t size, size_t& extent, size_t& length, LineSeparators& found,
                   const Matcher& isSeparator) {
    while (fgetsLine(stream, line, size, extent)) {
        ChunkBits seen[2] = {lookAtChunk(line, isSeparator), lookAtChunk(line + 64, isSeparator)};
        if ((seen[0].zeros | seen[1].zeros) == 0) {
            // A longer line takes the general steps.
            length = 128 + textLength(line + 128);
            noteLineWritten(line, size, length, extent);
            if (!trimTextLeavingEnd(line, length)) continue;
            found.find(line, length, isSeparator);
            return true;
        }
        const size_t raw = seen[0].zeros != 0 ? lowestBit(seen[0].zeros) : 64 + lowestBit(seen[1].zeros);
        noteLineWritten(line, size, raw, extent);
        const uint64_t graphic[2] = {seen[0].graphic & bitsBelow(raw),
                                     seen[1].graphic & bitsBelow(raw < 64 ? 0 : raw - 64)};
        if ((graphic[0] | graphic[1]) == 0) {
            line[0] = '\0';
            continue;
        }
        const size_t first = graphic[0] != 0 ? lowestBit(graphic[0]) : 64 + lowestBit(graphic[1]);
        const size_t last = graphic[1] != 0 ? 64 + highestBit(graphic[1]) : highestBit(graphic[0]);
        length = last - first + 1;
        if (first != 0) {
            std::memmove(line, line + first, length);
            if (first < 64) {
                // The bits move with the text; reading the moved text again would wait for the move.
                shiftDown(seen, first);
            } else {
                seen[0] = lookAtChunk(line, isSeparator);
                seen[1] = lookAtChunk(line + 64, isSeparator);
            }
        }
        found.takeShort(seen, length);
        return true;
    }
    return false;
}

// Length of the token at `token`, which has `rest` bytes of text left, given the separators among
// its first 16 bytes.
template <typename Matcher>
inline size_t tokenLength(const char* token, size_t rest, unsigned separators, const Matcher& isSeparator) {
    size_t at = 0;
    while (separators == 0 && at + 16 < rest) {
        at += 16;
        separators = isSeparator(Block16::load(token + at), token + at);
    }
    return std::min(at + lowestBit(separators | 0x10000u), rest);
}

// True when the 16 bytes at `bytes` are all zero.
inline bool zero16(const char* bytes) {
    uint64_t halves[2];
    std::memcpy(halves, bytes, sizeof halves);
    return (halves[0] | halves[1]) == 0;
}

// Stores a token that does not fit the quick way: 16 bytes or longer, or bound for a slot that
// held a longer word or text behind the reader's back.
__attribute__((noinline)) void storeLongToken(char* word, uint16_t& mark, const char* token, size_t size) {
    storeToken(word, mark, token, size);
}

// Stores the token of `size` bytes at `token` into `word`, as a clear of the slot, a copy and a
// trim would, and closes the token in the text with a NUL.
template <bool OddBytes>
inline void storeTokenOfLine(char* token, size_t size, char* word, uint16_t& mark) {
    // The usual token is short and lands in a slot that held a short word, with nothing written
    // behind it: the 16 bytes at the token and 16 zeros from its end leave the slot as a clear and a
    // copy would. The zeros may run into bytes 16 to 31, which are zero already.
    if (__builtin_expect((size < 16) & (mark <= 16), 1) && __builtin_expect(zero16(word + 16), 1)) {
        Block16::load(token).store(word);
        Block16::zero(word + size);
        mark = static_cast<uint16_t>(size + 1);
        if (OddBytes && (!isGraphic(token[0]) || !isGraphic(token[size - 1]))) {
            Generic::RemoveLeadingAndTrailingBlanks(word);
        }
    } else {
        storeLongToken(word, mark, token, size);
    }
    // Tokens go in order, so a NUL lands only behind what has been read: a block read across a byte
    // just written would wait until that write is done.
    token[size] = '\0';
}

// Stores every token of the text, in order, into the slots from 0 on, closes each in the text with
// a NUL, and closes the text. Answers the number stored. With `OddBytes`, looks at the ends of each
// token for bytes the trim takes away. The text holds no more tokens than there are slots. Kept out
// of line so that the loop has the registers to itself.
template <bool OddBytes>
__attribute__((noinline)) unsigned cutTokens(char* text, size_t length, const LineSeparators& found,
                                             char* const* slots, uint16_t* marks) {
    size_t index = 0;
    uint64_t behind = 1;  // the start of the text counts as behind a separator
    size_t pending = 0;   // a token that runs on into the next chunk starts here
    bool open = false;
    for (size_t chunk = 0; chunk < found.chunks; ++chunk) {
        const uint64_t separators = found.bits[chunk];
        // A token starts at a byte that is no separator and stands behind one, and ends at a
        // separator that stands behind a byte that is none. Starts and ends take turns, and the
        // bits from the end of the text on are separators, so every token ends.
        const uint64_t behindSeparator = (separators << 1) | behind;
        behind = separators >> 63;
        uint64_t starts = ~separators & behindSeparator;
        uint64_t ends = separators & ~behindSeparator;
        const size_t base = 64 * chunk;
        if (open && ends != 0) {
            const size_t end = base + lowestBit(ends);
            ends &= ends - 1;
            storeTokenOfLine<OddBytes>(text + pending, end - pending, slots[index], marks[index]);
            ++index;
            open = false;
        }
        char* const chunkText = text + base;
        for (; ends != 0; ends &= ends - 1, starts &= starts - 1) {
            const size_t start = lowestBit(starts);
            storeTokenOfLine<OddBytes>(chunkText + start, lowestBit(ends) - start, slots[index], marks[index]);
            ++index;
        }
        if (starts != 0) {
            pending = base + lowestBit(starts);
            open = true;
        }
    }
    text[length] = '\0';
    return static_cast<unsigned>(index);
}

// The same for a text that may hold more tokens than there are slots: stops at the first token
// that finds no slot, closes it as strtok would, and says so in `complete`.
template <typename Matcher>
__attribute__((noinline)) unsigned cutManyTokens(char* text, size_t length, const LineSeparators& found,
                                                 const Matcher isSeparator, char* const* slots, uint16_t* marks,
                                                 bool& complete) {
    complete = true;
    unsigned index = 0;
    uint64_t behind = 1;
    for (size_t chunk = 0; chunk < found.chunks && complete; ++chunk) {
        for (uint64_t starts = found.startsIn(chunk, behind); starts != 0; starts &= starts - 1) {
            const size_t start = 64 * chunk + lowestBit(starts);
            char* const token = text + start;
            if (index == DataLine::kWordSlots) {
                const unsigned ahead = isSeparator(Block16::load(token), token);
                token[tokenLength(token, length - start, ahead, isSeparator)] = '\0';
                complete = false;
                break;
            }
            const unsigned ahead = isSeparator(Block16::load(token), token);
            storeTokenOfLine<true>(token, tokenLength(token, length - start, ahead, isSeparator), slots[index],
                                   marks[index]);
            ++index;
        }
    }
    text[length] = '\0';
    return index;
}

// Stores the tokens of a trimmed line of `length` bytes whose separators are found.
template <typename Matcher>
unsigned cutFoundTokens(char* text, size_t length, const LineSeparators& found, const Matcher& isSeparator,
                        char* const* slots, uint16_t* marks, bool& complete) {
    // A token and its separator take two bytes, so only a line longer than twice the slots can
    // hold more tokens than there are slots.
    complete = true;
    if (length > 2 * DataLine::kWordSlots) {
        return cutManyTokens(text, length, found, isSeparator, slots, marks, complete);
    }
    if (found.oddBytes) return cutTokens<true>(text, length, found, slots, marks);
    return cutTokens<false>(text, length, found, slots, marks);
}

}  // namespace

// Every buffer the reader hands out, the marks that let a read clear only what was written, and the
// parsed forms of the last separator set and end keyword list. Copies of a reader share all of it.
struct DataLine::Buffers {
    Buffers()
        : lineStorage(new char[kLineSize + kLinePadding + kCacheLine]()),
          wordPointers(kWordSlots),
          wordExtent(kWordSlots, 0),
          fixedPointers(kFixedSlots),
          values(new double[kValueCount]()) {
        // One block for all slots, each starting on a cache line of its own, and an odd number of
        // cache lines apart: the slots of a line's words then fall into different sets of the cache
        // instead of crowding a few, as slots about 2 KiB apart do.
        wordStorage.reset(new char[kWordSlots * kWordStride + kCacheLine]());
        char* const first = alignToCacheLine(wordStorage.get());
        for (unsigned slot = 0; slot < kWordSlots; ++slot) wordPointers[slot] = first + slot * kWordStride;
        // The line starts on a cache line too: fgets copies into it in whole cache lines.
        line = alignToCacheLine(lineStorage.get());
        fixedStorage.reserve(kFixedSlots);
        for (unsigned slot = 0; slot < kFixedSlots; ++slot) {
            fixedStorage.emplace_back(new char[kFixedSize]());
            fixedPointers[slot] = fixedStorage.back().get();
        }
    }

    // Parses the end keyword list, or reuses the last result while the same text comes in:
    // section readers pass the same list for every line of a section.
    void useEndKeywords(const char* endKeywords) {
        // The list lives in a 128-byte buffer, so only its first 127 bytes take part. The kept text
        // is the same list when the new one matches it and, short of the limit, ends where it ends.
        constexpr size_t kUsable = kKeywordListSize - 1;
        if (endKeysValid) {
            const size_t compared = endKeysText.size() < kUsable ? endKeysText.size() + 1 : kUsable;
            if (std::strncmp(endKeywords, endKeysText.c_str(), compared) == 0) return;
        }
        endKeysText.assign(endKeywords, strnlen(endKeywords, kUsable));
        endKeys.clear();
        if (endKeysText.find(',') == std::string::npos) {
            // Without a comma the whole text is one keyword, even an empty one.
            endKeys.push_back(endKeysText);
        } else {
            // Cut at commas as strtok would: empty pieces vanish.
            size_t start = 0;
            while (start <= endKeysText.size()) {
                size_t comma = endKeysText.find(',', start);
                if (comma == std::string::npos) comma = endKeysText.size();
                if (comma > start) endKeys.push_back(endKeysText.substr(start, comma - start));
                start = comma + 1;
            }
        }
        // Most lines start with a byte that begins no keyword; they need no comparison at all.
        endKeysMatchAll = false;
        endKeyFirstBytes.fill(false);
        for (const std::string& key : endKeys) {
            if (key.empty()) {
                endKeysMatchAll = true;
                continue;
            }
            const unsigned char first = static_cast<unsigned char>(key[0]);
            endKeyFirstBytes[first] = true;
            endKeyFirstBytes[static_cast<unsigned char>(std::tolower(first))] = true;
            endKeyFirstBytes[static_cast<unsigned char>(std::toupper(first))] = true;
        }
        endKeysValid = true;
    }

    // False when `text` cannot start with a keyword of the list last used: most lines start with a
    // byte that begins none, and need no comparison at all.
    bool mayStartEndKeyword(const char* text) const {
        return endKeysMatchAll || endKeyFirstBytes[static_cast<unsigned char>(text[0])];
    }

    // True when `text` starts with one of the keywords last used, without regard to case.
    bool atEndKeyword(const char* text) const {
        if (endKeysMatchAll) return true;
        for (const std::string& key : endKeys) {
            if (strncasecmp(text, key.c_str(), key.size()) == 0) return true;
        }
        return false;
    }

    // The separator set taken apart, kept while the same set comes in.
    const SeparatorSet& useSeparators(const char* separators) {
        if (!separatorsValid || !sameText(separatorSet.text.c_str(), separators)) {
            separatorSet.assign(separators);
            separatorsValid = true;
        }
        return separatorSet;
    }

    // Reads the next line that is not blank into `text`, trims it but for the NUL behind it, which
    // the caller writes, and finds its separators for cutTokens. False at end of file.
    bool readLineToCut(FILE* stream, char* text, const SeparatorSet& set) {
        // One copy of the steps for each kind of separator set, chosen once per line.
        switch (set.count) {
            case 1: return readLineToCutWith(stream, text, SeparatorMatcher<1>(set));
            case 2: return readLineToCutWith(stream, text, SeparatorMatcher<2>(set));
            case 3:
            case 4: return readLineToCutWith(stream, text, SeparatorMatcher<4>(set));
            default: return readLineToCutWith(stream, text, SeparatorMatcher<0>(set));
        }
    }

    template <typename Matcher>
    bool readLineToCutWith(FILE* stream, char* text, const Matcher& isSeparator) {
        return ::readLineToCut(stream, text, kLineSize, lineExtent, lineLength, separatorsOfLine, isSeparator);
    }

    // The cut of strtok over the trimmed line of `lineLength` bytes whose separators are found, each
    // token into the next slot: a run of separators counts as one, leading separators are skipped,
    // and the first separator behind each token becomes a NUL in the line, as does the byte behind
    // the line. Answers the number of tokens stored.
    unsigned cutTokens(char* text, char* const* slots, const SeparatorSet& set) {
        bool complete = true;
        unsigned stored = 0;
        switch (set.count) {
            case 1: stored = cutTokensWith(text, slots, SeparatorMatcher<1>(set), complete); break;
            case 2: stored = cutTokensWith(text, slots, SeparatorMatcher<2>(set), complete); break;
            case 3:
            case 4: stored = cutTokensWith(text, slots, SeparatorMatcher<4>(set), complete); break;
            default: stored = cutTokensWith(text, slots, SeparatorMatcher<0>(set), complete); break;
        }
        // Leave strtok's hidden position where a strtok loop over the line would have left it; a loop
        // that stopped at the last slot leaves it behind that token, as it stands already.
        if (complete) std::strtok(text + lineLength, set.text.c_str());
        return stored;
    }

    template <typename Matcher>
    unsigned cutTokensWith(char* text, char* const* slots, const Matcher& isSeparator, bool& complete) {
        return cutFoundTokens(text, lineLength, separatorsOfLine, isSeparator, slots, wordExtent.data(), complete);
    }

    // The same for the trimmed line as it stands.
    unsigned cutLine(char* text, char* const* slots, const char* separators) {
        const SeparatorSet& set = useSeparators(separators);
        switch (set.count) {
            case 1: separatorsOfLine.find(text, lineLength, SeparatorMatcher<1>(set)); break;
            case 2: separatorsOfLine.find(text, lineLength, SeparatorMatcher<2>(set)); break;
            case 3:
            case 4: separatorsOfLine.find(text, lineLength, SeparatorMatcher<4>(set)); break;
            default: separatorsOfLine.find(text, lineLength, SeparatorMatcher<0>(set)); break;
        }
        return cutTokens(text, slots, set);
    }

    static char* alignToCacheLine(char* bytes) {
        const uintptr_t address = reinterpret_cast<uintptr_t>(bytes);
        return bytes + (kCacheLine - address % kCacheLine) % kCacheLine;
    }

    std::unique_ptr<char[]> lineStorage;
    char* line = nullptr;
    // Every byte of `line` at or past this offset is zero, as far as the reader's own writes go.
    size_t lineExtent = 0;
    static constexpr size_t kCacheLine = 64;
    static constexpr size_t kWordLines = (kWordSize + kCacheLine - 1) / kCacheLine;
    static constexpr size_t kWordStride = (kWordLines % 2 == 1 ? kWordLines : kWordLines + 1) * kCacheLine;
    std::unique_ptr<char[]> wordStorage;
    std::vector<char*> wordPointers;
    // Per slot: every byte at or past the mark is zero, as far as the reader's own writes go.
    std::vector<uint16_t> wordExtent;
    std::vector<std::unique_ptr<char[]>> fixedStorage;
    std::vector<char*> fixedPointers;
    std::unique_ptr<double[]> values;

    std::string endKeysText;
    std::vector<std::string> endKeys;
    std::array<bool, 256> endKeyFirstBytes{};
    bool endKeysMatchAll = false;
    bool endKeysValid = false;

    SeparatorSet separatorSet;
    bool separatorsValid = false;

    // Where the text of `line` ends: after a read, the first NUL fgets left; after a trim, the end
    // of the trimmed text.
    size_t lineLength = 0;
    LineSeparators separatorsOfLine;
};

DataLine::DataLine(FILE* stream_)
    : flags(0),
      wordCount(0),
      column(0),
      fixedCount(0),
      line(nullptr),
      words(nullptr),
      fixedWords(nullptr),
      values(nullptr),
      stream(stream_),
      m_Buffers(std::make_shared<Buffers>()) {
    line = m_Buffers->line;
    words = m_Buffers->wordPointers.data();
    fixedWords = m_Buffers->fixedPointers.data();
    values = m_Buffers->values.get();
}

DataLine::~DataLine() = default;

DataLine::DataLine(const DataLine& other) { *this = other; }

DataLine& DataLine::operator=(const DataLine& other) {
    if (this == &other) return *this;
    flags = other.flags;
    wordCount = other.wordCount;
    column = other.column;
    fixedCount = other.fixedCount;
    line = other.line;
    words = other.words;
    fixedWords = other.fixedWords;
    values = other.values;
    stream = other.stream;
    m_Buffers = other.m_Buffers;
    return *this;
}

// ---------------------------------------------------------------------------------------------
// Buffer bookkeeping. Clearing the whole 256 KiB line and 4 MiB of slots on every read would cost
// far more than reading the file; these leave the same contents at the cost of what was written.

void DataLine::clearLine() { clearBuffer(line, kLineSize, m_Buffers->lineExtent); }

void DataLine::clearWord(unsigned slot) {
    clearWritten(words[slot], kWordSize, m_Buffers->wordExtent[slot]);
    m_Buffers->wordExtent[slot] = 0;
}

void DataLine::noteWordWritten(unsigned slot, size_t extent) {
    uint16_t& mark = m_Buffers->wordExtent[slot];
    mark = static_cast<uint16_t>(std::max<size_t>(mark, std::min<size_t>(extent, kWordSize)));
}

void DataLine::copyIntoWord(unsigned slot, const char* text, size_t length) {
    // A slot holds 2049 characters and its NUL; longer text is cut rather than run into the next slot.
    length = std::min<size_t>(length, kWordSize - 1);
    copyBytes(words[slot], text, length);
    words[slot][length] = '\0';
    noteWordWritten(slot, length + 1);
}

bool DataLine::readLineIntoBuffer() {
    return readLine(stream, line, kLineSize, m_Buffers->lineExtent, m_Buffers->lineLength);
}

// ---------------------------------------------------------------------------------------------
// End keywords.

bool DataLine::IsEndOfKeyWord(const std::vector<std::string>& endKeys, const char* text) {
    // End keywords are prefixes, compared without case: "TABLE" also ends a section at "TABLES :".
    for (const std::string& key : endKeys) {
        if (strncasecmp(text, key.c_str(), key.size()) == 0) return true;
    }
    return false;
}

bool DataLine::atEndKeyword(const char* endKeywords) {
    if (endKeywords == nullptr) return false;
    m_Buffers->useEndKeywords(endKeywords);
    return m_Buffers->mayStartEndKeyword(line) && m_Buffers->atEndKeyword(line);
}

// ---------------------------------------------------------------------------------------------
// Flags.

void DataLine::setFlag(unsigned bit) {
    if (bit < 32) flags |= (1u << bit);
}

void DataLine::clearFlag(unsigned bit) {
    if (bit < 32) flags &= ~(1u << bit);
}

bool DataLine::isFlagOn(unsigned bit) { return bit < 32 && (flags & (1u << bit)) != 0; }

void DataLine::clearAll() { flags = 0; }

char** DataLine::getWordArray() { return words; }

// ---------------------------------------------------------------------------------------------
// Common steps of the reads.

bool DataLine::readNonBlankTrimmedLine() {
    return readNonBlankLine(stream, line, kLineSize, m_Buffers->lineExtent, m_Buffers->lineLength);
}

unsigned DataLine::storeTokensOfLine(const char* separators) {
    return m_Buffers->cutLine(line, words, separators);
}

void DataLine::copyStrideIntoWord(unsigned slot, const char* text, size_t readable, unsigned index) {
    clearWord(slot);
    const size_t offset = static_cast<size_t>(index) * kDoublesStride;
    if (offset >= readable) return;  // beyond the text every byte reads as zero
    const size_t length = std::min<size_t>(kDoublesStride, readable - offset);
    std::memcpy(words[slot], text + offset, length);
    noteWordWritten(slot, length + 1);
}

// ---------------------------------------------------------------------------------------------
// The reads.

char* DataLine::readNextCard() {
    clearLine();
    if (isFlagOn(kEndFlagBit)) return line;
    flags = 0;
    while (readLineIntoBuffer()) {
        Generic::RemoveLeadingAndTrailingBlanks(line);
        if (line[0] == '\0') continue;
        if (line[0] == '$') {
            clearLine();
            continue;
        }
        if (line[0] == '*') {
            setFlag(kEndFlagBit);
            break;
        }
        copyIntoWord(0, line, std::strlen(line));
        break;
    }
    return line;
}

char* DataLine::readNextCard(unsigned& n, const char* endKeyword) {
    clearLine();
    if (isFlagOn(kEndFlagBit)) {
        n = 0;
        return line;
    }
    flags = 0;
    readNonBlankTrimmedLine();
    // Whole line, exact and case-sensitive, unlike the keyword lists of the other reads.
    if (endKeyword != nullptr && std::strcmp(line, endKeyword) == 0) {
        n = 0;
        setFlag(kEndFlagBit);
    }
    if (line[0] == '\0') n = 0;
    return line;
}

char** DataLine::readNextCardAsWords(unsigned& n, const char* separators, const char* endKeywords) {
    // Every line of a section passes through here, so the steps are spelled out with the inline
    // helpers rather than through the member functions, which the shared library may not inline.
    Buffers& buffers = *m_Buffers;
    clearBuffer(line, kLineSize, buffers.lineExtent);
    if ((flags & (1u << kEndFlagBit)) != 0) {
        n = 0;
        return nullptr;
    }
    if (separators == nullptr) separators = kDefaultSeparators;
    // The keyword list is taken before the line is read, as the steps have it; checking that the
    // kept list still holds does not wait for the line.
    if (endKeywords != nullptr) buffers.useEndKeywords(endKeywords);
    flags = 0;
    // The NUL behind the trimmed line goes in last, once the line has been read: a block read
    // across a byte just written waits for that write.
    const bool cut = n >= 2;
    const SeparatorSet* const set = cut ? &buffers.useSeparators(separators) : nullptr;
    size_t& length = buffers.lineLength;
    const bool got = cut ? buffers.readLineToCut(stream, line, *set)
                         : readNonBlankLine<false>(stream, line, kLineSize, buffers.lineExtent, length);
    if (got) {
        bool atEnd = false;
        if (endKeywords != nullptr && buffers.mayStartEndKeyword(line)) {
            line[length] = '\0';
            atEnd = buffers.atEndKeyword(line);
        }
        if (atEnd) {
            // The end line stays in `line` for a caller that wants to look at it.
            n = 0;
            flags |= 1u << kEndFlagBit;
        } else if (!cut) {
            // One wanted word is the whole line; the slot keeps whatever lies behind the NUL.
            const size_t kept = std::min<size_t>(length, kWordSize - 1);
            copyBytes(words[0], line, kept);
            words[0][kept] = '\0';
            uint16_t& mark = buffers.wordExtent[0];
            mark = std::max(mark, static_cast<uint16_t>(kept + 1));
            line[length] = '\0';
            wordCount = 1;
        } else {
            // Closes the line too.
            wordCount = buffers.cutTokens(line, words, *set);
            n = wordCount;
        }
    }
    // At end of file this is what tells the caller to stop; the end flag stays clear. A line that
    // was read is not empty: the trim left a byte, and strtok puts no NUL at the start.
    if (!got && line[0] == '\0') n = 0;
    return words;
}

double* DataLine::readNextCardAsDoubles(unsigned& n) {
    clearLine();
    if (isFlagOn(kEndFlagBit)) {
        n = 0;
        return values;
    }
    flags = 0;
    // No trimming here: the marks count only in the first column.
    while (!isFlagOn(kLineTakenBit) && readLineIntoBuffer()) {
        if (line[0] == '$') {
            clearLine();
            continue;
        }
        if (line[0] == '*') {
            n = 0;
            setFlag(kEndFlagBit);
            break;
        }
        setFlag(kLineTakenBit);
        unsigned count = 0;
        if (std::strchr(line, ',') != nullptr) {
            for (char* token = std::strtok(line, ","); token != nullptr && count < kValueCount;
                 token = std::strtok(nullptr, ",")) {
                values[count++] = std::atof(token);
            }
        } else {
            // The stride is that of a word slot, so in effect a line without commas yields one number
            // from its first 2048 columns. The line buffer holds no more than 128 such runs.
            const unsigned fields = std::min(n, kLineSize / kDoublesStride);
            for (unsigned field = 0; field < fields; ++field) {
                copyStrideIntoWord(field, line, kLineSize, field);
                const char* word = words[field];
                if (word[0] != '\0' && word[0] != '\n') values[count++] = std::atof(word);
            }
        }
        n = count;
    }
    clearFlag(kLineTakenBit);
    if (line[0] == '\0') n = 0;
    return values;
}

char** DataLine::readRawData(unsigned& n, const char* endKeywords) {
    clearLine();
    if (isFlagOn(kEndFlagBit)) {
        n = 0;
        return nullptr;
    }
    flags = 0;
    wordCount = 0;
    // End of file leaves n as it was; only the null result tells.
    if (!readLineIntoBuffer()) return nullptr;
    // Comment text keeps its leading blanks and line end; only the end test looks at the trimmed line.
    clearWord(0);
    copyIntoWord(0, line, std::strlen(line));
    Generic::RemoveLeadingAndTrailingBlanks(line);
    if (atEndKeyword(endKeywords)) {
        setFlag(kEndFlagBit);
        words[0][0] = '\0';
        n = 0;
        return nullptr;
    }
    n = 1;
    return words;
}

void DataLine::readToEnd(std::string& out, const char* endKeywords) {
    clearLine();
    if (isFlagOn(kEndFlagBit)) return;
    flags = 0;
    wordCount = 0;
    while (readLineIntoBuffer()) {
        clearWord(0);
        copyIntoWord(0, line, std::strlen(line));
        Generic::RemoveLeadingAndTrailingBlanks(line);
        if (atEndKeyword(endKeywords)) {
            setFlag(kEndFlagBit);
            words[0][0] = '\0';
            return;
        }
        out += words[0];
    }
}

char** DataLine::splitIntoWords(unsigned& wordIndex, const char* separators, unsigned& n, bool all) {
    if (n == 0) {
        setFlag(kEndFlagBit);
        return nullptr;
    }
    // An emptied source is how section readers end a section after a single card.
    if (wordIndex >= kWordSlots || words[wordIndex][0] == '\0') {
        n = 0;
        setFlag(kEndFlagBit);
        return nullptr;
    }
    if (separators == nullptr) separators = kDefaultSeparators;
    const unsigned wanted = n;

    // The source is usually word 0 and is overwritten by the first word, so work on copies: one to
    // cut, one to take the rest of the line from.
    char cut[Generic::kTrimLimit];
    char whole[Generic::kTrimLimit];
    const size_t length = strnlen(words[wordIndex], kWordSize);
    std::memcpy(cut, words[wordIndex], length);
    cut[length] = '\0';
    std::memcpy(whole, cut, length + 1);

    wordCount = 0;
    size_t position = 0;
    char* token = std::strtok(cut, separators);
    while (token != nullptr) {
        const size_t tokenLength = std::strlen(token);
        clearWord(wordCount);
        copyIntoWord(wordCount, token, tokenLength);
        Generic::RemoveLeadingAndTrailingBlanks(words[wordCount]);
        ++wordCount;
        char* next = std::strtok(nullptr, separators);
        // One separator is counted per token, whatever stood in the text; the rest of the line below
        // therefore starts early by one for every extra separator before it.
        position += tokenLength + 1;
        if (next == nullptr || position >= length || wordCount == kWordSlots) {
            if (wordCount < kWordSlots) words[wordCount][0] = '\0';
            wordIndex = wordCount;
            break;
        }
        if (all || wordCount < wanted) {
            token = next;
            continue;
        }
        // The wanted count is reached and text remains: the last word takes the rest, blanks and all.
        const size_t restStart = position - tokenLength - 1;
        copyIntoWord(wordCount - 1, whole + restStart, length - restStart);
        wordIndex = wordCount - 1;
        break;
    }
    for (unsigned slot = wordCount; slot < wanted && slot < kWordSlots; ++slot) words[slot][0] = '\0';
    n = wordCount;
    return words;
}

char** DataLine::splitIntoWords(unsigned& n, const unsigned* widths) {
    wordCount = 0;
    column = 0;
    fixedCount = 0;
    const unsigned fields = widths == nullptr ? 0 : std::min(n, kFixedSlots);
    for (unsigned field = 0; field < fields; ++field) {
        // A width over 20 cannot be a field of a fixed-column card; the split stops there.
        if (widths[field] > kMaxFixedWidth) break;
        std::memset(fixedWords[field], 0, kFixedSize);
        std::memcpy(fixedWords[field], line + column, widths[field]);
        column += widths[field];
        ++fixedCount;
    }
    n = fixedCount;
    return fixedWords;
}

double* DataLine::convertToDoubles(const char* text, unsigned& n) {
    if (text == nullptr) text = "";
    // Inside `line` the runs may reach past the text, where the cleared buffer reads as zero; any
    // other text is read no further than its NUL.
    const std::less<const char*> before;
    const bool inLine = !before(text, line) && before(text, line + kLineSize);
    const size_t readable = inLine ? static_cast<size_t>(line + kLineSize - text) : std::strlen(text) + 1;
    const unsigned fields = std::min(n, kValueCount);
    for (unsigned field = 0; field < fields; ++field) {
        copyStrideIntoWord(field, text, readable, field);
        values[field] = std::atof(words[field]);
    }
    return values;
}
