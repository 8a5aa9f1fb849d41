#include "core/dataline.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Printable, non-blank ASCII as the C locale's isgraph sees it. Spelled out so that a host that
// changes the locale cannot change what a card file's line is.
inline bool isGraphic(char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    return byte > 0x20 && byte < 0x7f;
}

// Nothing downstream can hold a line of this size, and silently cutting it would change its meaning.
[[noreturn]] void endOnOverlongText() {
    std::fputs("quillon: a line of 8192 characters or more cannot be read\n", stderr);
    std::abort();
}

}  // namespace

void Generic::RemoveLeadingAndTrailingBlanks(char* text) {
    if (text == nullptr) return;
    char* start = text;
    while (*start != '\0' && !isGraphic(*start)) ++start;
    if (*start == '\0') {
        text[0] = '\0';
        return;
    }
    char* last = start + std::strlen(start) - 1;
    while (!isGraphic(*last)) --last;  // stops at `start` at the latest, which is graphic
    const size_t length = static_cast<size_t>(last - start) + 1;
    if (length >= kTrimLimit) endOnOverlongText();
    if (start != text) std::memmove(text, start, length);
    text[length] = '\0';
}

void Generic::RemoveTrailingBlanks(char* text) {
    if (text == nullptr) return;
    size_t length = std::strlen(text);
    // An all-blank text has nothing to stop the walk; it ends up empty rather than read before its start.
    while (length > 0 && !isGraphic(text[length - 1])) --length;
    if (length >= kTrimLimit) endOnOverlongText();
    text[length] = '\0';
}

void Generic::MemCpy(char* target, const char* source, size_t length) {
    std::memcpy(target, source, length);
    // Only a decimal number without its exponent letter can have lost the "e" to its column width.
    if (std::strpbrk(target, "eE") != nullptr || std::strchr(target, '.') == nullptr) return;
    auto isSign = [](char c) { return c == '+' || c == '-'; };
    if (length >= 2 && isSign(target[length - 2])) {
        target[length] = target[length - 1];
        target[length - 1] = target[length - 2];
        target[length - 2] = 'e';
    } else if (length >= 3 && isSign(target[length - 3])) {
        target[length] = target[length - 1];
        target[length - 1] = target[length - 2];
        target[length - 2] = target[length - 3];
        target[length - 3] = 'e';
    }
}
