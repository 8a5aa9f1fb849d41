#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "core/export.h"

// Trim and number-repair helpers shared by the line reader and the section locator.
class QUILLON_API Generic {
public:
    // Longest text the trimming helpers accept; a longer one ends the process, because every line of
    // a card file passes through them and nothing downstream could hold it.
    static constexpr size_t kTrimLimit = 8192;

    // Removes, at both ends, every byte that isgraph rejects (blanks, control bytes, bytes from 128 up).
    static void RemoveLeadingAndTrailingBlanks(char* text);
    // The right-hand half of the above; the text must hold at least one byte that stops the walk.
    static void RemoveTrailingBlanks(char* text);
    // Copies `length` bytes and puts back the "e" that a writer gave up to fit a number in its column
    // ("-1.2345-05" -> "-1.2345e-05"). `target` must be zeroed and have two spare bytes.
    static void MemCpy(char* target, const char* source, size_t length);
};

// Reads an open card file line by line and cuts lines into words. One object serves a whole import;
// the words it hands out stay valid until the next read.
class QUILLON_API DataLine {
public:
    static constexpr unsigned kLineSize = 0x40000;
    static constexpr unsigned kWordSlots = 2048;
    static constexpr unsigned kWordSize = 2050;
    static constexpr unsigned kFixedSlots = 10;
    static constexpr unsigned kFixedSize = 24;
    static constexpr unsigned kMaxFixedWidth = 20;
    static constexpr unsigned kValueCount = 2048;
    static constexpr unsigned kDoublesStride = 2048;
    static constexpr unsigned kKeywordListSize = 128;
    // Bit numbers for setFlag/clearFlag/isFlagOn.
    static constexpr unsigned kLineTakenBit = 0;
    static constexpr unsigned kEndFlagBit = 3;

    explicit DataLine(FILE* stream);
    ~DataLine();
    // Copies share the buffers of their source; the buffers live until the last sharer is gone.
    DataLine(const DataLine& other);
    DataLine& operator=(const DataLine& other);

    // Next non-blank, non-"$" line, trimmed; a "*" line sets the end flag.
    char* readNextCard();
    // Next non-blank line, trimmed; a line equal to `endKeyword` sets the end flag and n to 0.
    char* readNextCard(unsigned& n, const char* endKeyword);
    // Next non-blank line cut into words; n in: wanted words, out: words stored.
    char** readNextCardAsWords(unsigned& n, const char* separators, const char* endKeywords);
    // Next line as numbers, comma separated or in fixed columns; "$" skipped, "*" ends.
    double* readNextCardAsDoubles(unsigned& n);
    // Next line as it stands, in word 0; null at end of file (n untouched) or at the end keyword.
    char** readRawData(unsigned& n, const char* endKeywords);
    // Every raw line up to the end keyword or end of file, appended to `out`.
    void readToEnd(std::string& out, const char* endKeywords);
    // Re-cuts word `wordIndex` into words; without `all` the last wanted word takes the rest.
    char** splitIntoWords(unsigned& wordIndex, const char* separators, unsigned& n, bool all);
    // Fixed columns of `line` into `fixedWords`.
    char** splitIntoWords(unsigned& n, const unsigned* widths);
    // Numbers from fixed runs of 2048 columns of `text`.
    double* convertToDoubles(const char* text, unsigned& n);
    // True when `line` starts with one of the keywords, without regard to case.
    bool IsEndOfKeyWord(const std::vector<std::string>& endKeys, const char* line);
    char** getWordArray();

    // The argument is a bit number (the end of a section is bit 3), not a bit value.
    void setFlag(unsigned bit);
    void clearFlag(unsigned bit);
    bool isFlagOn(unsigned bit);
    void clearAll();

    uint32_t flags;
    uint32_t wordCount;
    uint32_t column;
    uint32_t fixedCount;
    char* line;
    char** words;
    char** fixedWords;
    double* values;
    FILE* stream;

private:
    // The buffers behind the public pointers, with the marks and caches that keep reads cheap.
    struct Buffers;

    // Zeroes what earlier reads and callers wrote into `line`, so that all of it reads as zero.
    void clearLine();
    // Zeroes one word slot as far as it was written.
    void clearWord(unsigned slot);
    // Records that bytes [0, extent) of a slot may now be non-zero.
    void noteWordWritten(unsigned slot, size_t extent);
    // fgets into `line`, keeping track of how far the buffer was written.
    bool readLineIntoBuffer();
    // Reads lines, trimming each, until one is not blank; false at end of file.
    bool readNonBlankTrimmedLine();
    // Copies text into a slot, cut to what the slot holds, and closes it.
    void copyIntoWord(unsigned slot, const char* text, size_t length);
    // Cuts `line` as strtok would, each token into the next slot; returns the count stored.
    unsigned storeTokensOfLine(const char* separators);
    // One fixed run of `kDoublesStride` columns of `text` (readable for `readable` bytes) into a slot.
    void copyStrideIntoWord(unsigned slot, const char* text, size_t readable, unsigned index);
    // True when `line` starts with one of the keywords of `endKeywords`; null tests nothing.
    bool atEndKeyword(const char* endKeywords);

    std::shared_ptr<Buffers> m_Buffers;
};
