// Field values: construction, the text each writes into a card line, and
// the typed read-back with its check of the type tag.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/blockpool.h"
#include "core/card.h"

namespace {

// What an untyped or absent text field reads as. Callers get a writable
// pointer by the interface, but nothing may be written through it.
char emptyText[1] = {'\0'};

// A type tag that no longer matches its class is reported on standard output,
// the one place where a field value speaks up.
void reportWrongType(const char* what)
{
    std::printf("wrong data type sent to get %s\n", what);
}

// Texts from the reader are never null, but a host may pass one; it reads as
// the empty text, which atoi and atof turn into 0.
const char* textOrEmpty(const char* s)
{
    return s ? s : "";
}

// Formats are built in two steps, first the format text, then the value.
constexpr size_t kFormatSize = 32;

} // namespace

void Object::tostring(std::string&, bool) {}

Object::~Object() = default;

void* Object::operator new(std::size_t size) { return quillon::AllocateSmallBlock(size); }

void Object::operator delete(void* block, std::size_t size) noexcept { quillon::ReleaseSmallBlock(block, size); }

Data::Data(unsigned type, unsigned& width) : type(type), width(width) {}

Data::~Data() = default;

void Data::value(char** out)
{
    if (out)
        *out = emptyText;
}

void Data::value(double* out)
{
    if (out)
        *out = 0;
}

void Data::value(int* out)
{
    if (out)
        *out = 0;
}

void Data::value(unsigned int* out)
{
    if (out)
        *out = 0;
}

// ---------------------------------------------------------------- UInteger

UInteger::UInteger(unsigned& v, unsigned width) : Data(UINTEGER_TAG, width), payload(v) {}

UInteger::UInteger(const char* s, unsigned width)
    : Data(UINTEGER_TAG, width), payload(static_cast<unsigned>(std::atoi(textOrEmpty(s))))
{
}

UInteger::~UInteger() = default;

void UInteger::tostring(char* out, bool noWidth)
{
    char format[kFormatSize];
    if (noWidth)
        std::snprintf(format, sizeof format, "%%u");
    else
        std::snprintf(format, sizeof format, "%%%du", static_cast<int>(width));
    std::sprintf(out, format, payload);
}

void UInteger::value(unsigned int* out)
{
    if (!out)
        return;
    if (type != UINTEGER_TAG) {
        *out = 0;
        reportWrongType("unsigned int value");
        return;
    }
    *out = payload;
}

// ----------------------------------------------------------------- Integer

Integer::Integer(int& v, unsigned width) : Data(INTEGER_TAG, width), payload(v) {}

Integer::Integer(const char* s, unsigned width)
    : Data(INTEGER_TAG, width), payload(std::atoi(textOrEmpty(s)))
{
}

Integer::~Integer() = default;

void Integer::tostring(char* out, bool noWidth)
{
    char format[kFormatSize];
    if (noWidth)
        std::snprintf(format, sizeof format, "%%d");
    else
        std::snprintf(format, sizeof format, "%%%dd", static_cast<int>(width));
    std::sprintf(out, format, payload);
}

void Integer::value(int* out)
{
    if (!out)
        return;
    if (type != INTEGER_TAG) {
        *out = 0;
        reportWrongType("int value");
        return;
    }
    *out = payload;
}

// ------------------------------------------------------------------ Double

Double::Double(double& v, unsigned width) : Data(DOUBLE_TAG, width), payload(v) {}

Double::Double(const char* s, unsigned width)
    : Data(DOUBLE_TAG, width), payload(std::atof(textOrEmpty(s)))
{
}

Double::~Double() = default;

void Double::tostring(char* out, bool noWidth)
{
    // "%.14lf" of the largest double is about 325 characters; the text is
    // built here and copied out, so no value can run past this buffer.
    char text[512];
    std::snprintf(text, sizeof text, "%.14lf", payload);

    // Trailing zeros go, the decimal point stays: 1 is written "1.", and a
    // value too small for the fourteenth decimal reads as 0.
    size_t length = std::strlen(text);
    while (length > 0 && text[length - 1] == '0')
        text[--length] = '\0';

    // Without a width there is no column to fit: the bare fixed text is the
    // harmless answer, and it is what text-only cards expect of a number.
    if (noWidth) {
        std::strcpy(out, text);
        return;
    }

    char paddingFormat[kFormatSize];
    std::snprintf(paddingFormat, sizeof paddingFormat, "%%%ds", static_cast<int>(width));
    if (length <= width) {
        std::sprintf(out, paddingFormat, text);
        return;
    }

    // Below six columns the exponent form has no room for decimals; the
    // precision would otherwise wrap round to billions of digits.
    const unsigned precision = width >= 6 ? width - 6 : 0;
    char exponentFormat[kFormatSize];
    std::snprintf(exponentFormat, sizeof exponentFormat, "%%%u.%ue", width, precision);
    std::snprintf(text, sizeof text, exponentFormat, payload);

    // Still too wide: the "e" is given up for the sign, and the reader's
    // number repair puts it back. Infinities and not-a-numbers have no "e".
    if (std::strlen(text) > width) {
        char* e = std::strrchr(text, 'e');
        if (e)
            std::memmove(e, e + 1, std::strlen(e + 1) + 1);
    }
    std::strcpy(out, text);
}

void Double::value(double* out)
{
    if (!out)
        return;
    if (type != DOUBLE_TAG) {
        *out = 0;
        reportWrongType("double value");
        return;
    }
    *out = payload;
}

// ------------------------------------------------------------------- Float

Float::Float(float& v, unsigned width) : Data(FLOAT_TAG, width), payload(v) {}

Float::Float(const char* s, unsigned width)
    : Data(FLOAT_TAG, width), payload(static_cast<float>(std::atof(textOrEmpty(s))))
{
}

Float::~Float() = default;

void Float::tostring(char* out, bool)
{
    std::sprintf(out, "%10g", static_cast<double>(payload));
}

void Float::value(float* out)
{
    if (!out)
        return;
    if (type != FLOAT_TAG) {
        *out = 0;
        reportWrongType("float value");
        return;
    }
    *out = payload;
}

// --------------------------------------------------------------- CharArray

CharArray::CharArray(const char* s, unsigned width)
    : Data(CHARARRAY_TAG, width), payload(strdup(textOrEmpty(s)))
{
}

CharArray::~CharArray()
{
    std::free(payload);
}

void CharArray::tostring(char* out, bool noWidth)
{
    char format[kFormatSize];
    if (noWidth)
        std::snprintf(format, sizeof format, "%%s");
    else
        std::snprintf(format, sizeof format, "%%%us", width);
    std::sprintf(out, format, payload ? payload : "");
}

void CharArray::value(char** out)
{
    if (!out)
        return;
    if (type != CHARARRAY_TAG) {
        *out = nullptr;
        reportWrongType("char array");
        return;
    }
    *out = payload;
}

void CharArray::setWidth(unsigned newWidth)
{
    width = newWidth;
}

// ------------------------------------------------------------- DoubleArray

DoubleArray::DoubleArray(int count, double* values, unsigned width)
    : Data(DOUBLEARRAY_TAG, width), count(count), payload(nullptr)
{
    // Nothing is allocated for an empty (or negative) count, which is also
    // the case where the destructor frees nothing.
    if (count > 0) {
        payload = static_cast<double*>(std::malloc(sizeof(double) * static_cast<size_t>(count)));
        if (!payload)
            throw std::bad_alloc();
        if (values)
            std::memcpy(payload, values, sizeof(double) * static_cast<size_t>(count));
        else
            std::memset(payload, 0, sizeof(double) * static_cast<size_t>(count));
    }
}

DoubleArray::~DoubleArray()
{
    if (count != 0)
        std::free(payload);
}

void DoubleArray::tostring(char*, bool) {}

unsigned DoubleArray::value(double** out)
{
    if (out) {
        if (type != DOUBLEARRAY_TAG) {
            *out = nullptr;
            reportWrongType("double array");
        } else {
            *out = payload;
        }
    }
    return static_cast<unsigned>(count);
}

// ------------------------------------------------------------- BlankObject

BlankObject::BlankObject() : BlankObject(10) {}

BlankObject::BlankObject(unsigned width) : Data(BLANK_TAG, width) {}

BlankObject::~BlankObject() = default;

void BlankObject::tostring(char* out, bool noWidth)
{
    char format[kFormatSize];
    if (noWidth)
        std::snprintf(format, sizeof format, "%%s");
    else
        std::snprintf(format, sizeof format, "%%-%us", width);
    std::sprintf(out, format, " ");
}
