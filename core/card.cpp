// Cards: building them from words, columns or numbers, looking fields up,
// and writing the text of a card (an optional "$" header and one value line).

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/card.h"

unsigned Card::contFlag = 0;

namespace {

// One value of a card is printed into a buffer of this size.
constexpr size_t kValueTextSize = 9216;
// One fixed-column field is cut into a buffer of this size.
constexpr size_t kColumnWorkSize = 128;
// Values made from words or numbers, and empty columns among words, are ten
// columns wide.
constexpr unsigned kWordWidth = 10;
// A number leaf prints far less than this apart from its padding (a double
// in fixed notation is about 325 characters at most).
constexpr size_t kNumberTextMax = 512;

char emptyText[1] = {'\0'};

// A word is blank when it is missing or starts with a control character,
// which takes in the terminating NUL and a line feed. Only the first
// character counts: a word that begins with a space is a real word.
bool isBlankWord(const char* word)
{
    return !word || std::iscntrl(static_cast<unsigned char>(word[0]));
}

const char* nameOrEmpty(const char* name)
{
    return name ? name : "";
}

// Numbers become integers by truncation toward zero. Values beyond the
// range of a 64-bit integer are held at its ends instead of being undefined;
// the narrowing that follows wraps, as integer conversions do.
long long truncateTowardZero(double v)
{
    if (std::isnan(v))
        return 0;
    if (v >= 9.2e18)
        return LLONG_MAX;
    if (v <= -9.2e18)
        return LLONG_MIN;
    return static_cast<long long>(v);
}

bool endsWithLineFeed(const char* text)
{
    const size_t length = std::strlen(text);
    return length > 0 && text[length - 1] == '\n';
}

// Prints one name through a format built from a width, the way the header
// line lays its names over their columns.
void appendFormatted(std::string& out, const char* format, const char* prefix, const char* text)
{
    const int length = std::snprintf(nullptr, 0, format, text);
    if (length < 0) {
        // Only a width beyond what printf can pad gets here.
        out += prefix;
        out += text;
        return;
    }
    const size_t start = out.size();
    out.resize(start + static_cast<size_t>(length) + 1);
    std::snprintf(&out[start], static_cast<size_t>(length) + 1, format, text);
    out.resize(start + static_cast<size_t>(length));
}

bool isPaddedNumberLeaf(Data* value)
{
    return dynamic_cast<UInteger*>(value) || dynamic_cast<Integer*>(value) ||
           dynamic_cast<Double*>(value) || dynamic_cast<BlankObject*>(value);
}

// Writes `bare` padded to `width` into `text`, stopping at the last column
// the buffer holds.
void layOutCut(char* text, const std::string& bare, size_t width, bool leftJustified)
{
    constexpr size_t kLastColumn = kValueTextSize - 1;
    const size_t padding = width > bare.size() ? width - bare.size() : 0;
    std::string laidOut = leftJustified ? bare + std::string(std::min(padding, kLastColumn), ' ')
                                        : std::string(std::min(padding, kLastColumn), ' ') + bare;
    const size_t kept = std::min(laidOut.size(), kLastColumn);
    std::memcpy(text, laidOut.data(), kept);
    text[kept] = '\0';
}

// The leaves print without a bound. A known leaf whose text could pass the
// end of the card's value buffer (a text longer than the buffer, or an
// absurd width) is laid out here by hand with the padding the leaf itself
// would use, and cut at the end of the buffer: such a value loses its tail.
// Everything that fits prints through the leaf, unchanged.
void renderValue(Data* value, char* text, bool noWidth)
{
    constexpr size_t kLastColumn = kValueTextSize - 1;
    const size_t width = noWidth ? 0 : value->width;

    if (CharArray* chars = dynamic_cast<CharArray*>(value)) {
        const char* own = chars->payload ? chars->payload : "";
        const size_t length = std::strlen(own);
        if (std::max(width, length) <= kLastColumn) {
            value->tostring(text, noWidth);
            return;
        }
        layOutCut(text, std::string(own, length), width, false);
        return;
    }

    if (width + kNumberTextMax <= kLastColumn || !isPaddedNumberLeaf(value)) {
        value->tostring(text, noWidth);
        return;
    }
    // So wide that no number reaches the exponent form: the padded bare text
    // is exactly what the leaf would print.
    char bare[kNumberTextMax];
    value->tostring(bare, true);
    layOutCut(text, bare, width, dynamic_cast<BlankObject*>(value) != nullptr);
}

} // namespace

Card::Card(const char* name) : name(nameOrEmpty(name)) {}

Card::Card(const char* name, bool clearNames) : name(nameOrEmpty(name))
{
    if (clearNames)
        clearFlag(KEEP_NAMES);
}

Card::~Card()
{
    for (Data* value : varValues)
        delete value;
}

void Card::setFlag(unsigned mask)
{
    contFlag |= mask;
}

void Card::clearFlag(unsigned mask)
{
    contFlag &= ~mask;
}

unsigned Card::isFlagOn(unsigned mask)
{
    return contFlag & mask;
}

void Card::addField(const char* fieldName, Data* value)
{
    if (isFlagOn(KEEP_NAMES))
        varNames.emplace_back(nameOrEmpty(fieldName));
    varValues.push_back(value);
}

void Card::addEmptyField(int count, unsigned width)
{
    for (int i = 0; i < count; ++i) {
        if (isFlagOn(KEEP_NAMES))
            varNames.emplace_back(" ");
        varValues.push_back(new BlankObject(width));
    }
}

// The common step of the text overloads: a blank word only records the
// field's name as blank; otherwise the type code says what to add.
void Card::addFieldFromWord(unsigned code, const char* fieldName, const char* word, unsigned width,
                            unsigned emptyFieldWidth)
{
    if (isBlankWord(word)) {
        blankFields.emplace_back(nameOrEmpty(fieldName));
        return;
    }
    switch (code) {
    case Data::UINTEGER_TAG:
        addField(fieldName, new UInteger(word, width));
        break;
    case Data::INTEGER_TAG:
        addField(fieldName, new Integer(word, width));
        break;
    case Data::DOUBLE_TAG:
        addField(fieldName, new Double(word, width));
        break;
    case Data::CHARARRAY_TAG:
        addField(fieldName, new CharArray(word, width));
        break;
    case Data::EMPTY_FIELD_CODE:
        addEmptyField(1, emptyFieldWidth);
        break;
    default:
        break;
    }
}

void Card::addFields(unsigned& n, unsigned* types, unsigned* widths, const char** names, char* line)
{
    if (!types || !widths || !names)
        return;
    const size_t lineLength = line ? std::strlen(line) : 0;
    size_t column = 0;
    for (unsigned i = 0; i < n; ++i) {
        // A field wider than the work buffer keeps its first 127 columns, and
        // nothing is read past the end of the line: the columns behind it are
        // blank, as the line's buffer holds zeros there.
        char work[kColumnWorkSize] = {};
        size_t take = std::min<size_t>(widths[i], kColumnWorkSize - 1);
        take = column < lineLength ? std::min(take, lineLength - column) : 0;
        if (take > 0)
            std::memcpy(work, line + column, take);
        // Blank fields hold their columns too.
        column += widths[i];
        addFieldFromWord(types[i], names[i], work, widths[i], widths[i]);
    }
}

void Card::addFields(unsigned& n, unsigned* types, unsigned* widths, const char** names, char** words)
{
    if (!types || !widths || !names || !words)
        return;
    for (unsigned i = 0; i < n; ++i)
        addFieldFromWord(types[i], names[i], words[i], widths[i], kWordWidth);
}

void Card::addFields(unsigned& nFields, unsigned* types, const char** names, unsigned nWords, char** words)
{
    if (nWords == 0 || !types || !names || !words)
        return;
    if (nFields == nWords) {
        for (unsigned i = 0; i < nFields; ++i)
            addFieldFromWord(types[i], names[i], words[i], kWordWidth, kWordWidth);
        return;
    }
    // A line that does not match its table of fields is taken word by word,
    // and every word that is there fills the whole table once: one word under
    // three fields gives three fields of that word.
    for (unsigned j = 0; j < nWords; ++j) {
        if (isBlankWord(words[j])) {
            // Only fields of the table have a name to record; a blank word
            // beyond them is passed over.
            if (j < nFields)
                blankFields.emplace_back(nameOrEmpty(names[j]));
            continue;
        }
        for (unsigned i = 0; i < nFields; ++i)
            addFieldFromWord(types[i], names[i], words[j], kWordWidth, kWordWidth);
    }
}

void Card::addFields(unsigned& n, unsigned* types, const char** names, double* values)
{
    if (!types || !names || !values)
        return;
    for (unsigned i = 0; i < n; ++i) {
        switch (types[i]) {
        case Data::UINTEGER_TAG: {
            unsigned number = static_cast<unsigned>(truncateTowardZero(values[i]));
            addField(names[i], new UInteger(number, kWordWidth));
            break;
        }
        case Data::INTEGER_TAG: {
            int number = static_cast<int>(truncateTowardZero(values[i]));
            addField(names[i], new Integer(number, kWordWidth));
            break;
        }
        case Data::DOUBLE_TAG:
            addField(names[i], new Double(values[i], kWordWidth));
            break;
        case Data::EMPTY_FIELD_CODE:
            addEmptyField(1, kWordWidth);
            break;
        default:
            // Text has no number to come from.
            break;
        }
    }
}

Data* Card::findField(const char* fieldName)
{
    if (!fieldName)
        return nullptr;
    for (size_t i = 0; i < varNames.size(); ++i) {
        if (varNames[i] == fieldName)
            return i < varValues.size() ? varValues[i] : nullptr;
    }
    return nullptr;
}

int Card::intValue(const char* fieldName)
{
    int result = 0;
    if (Data* field = findField(fieldName))
        field->value(&result);
    return result;
}

unsigned Card::uintValue(const char* fieldName)
{
    unsigned result = 0;
    if (Data* field = findField(fieldName))
        field->value(&result);
    return result;
}

double Card::doubleValue(const char* fieldName)
{
    double result = 0;
    if (Data* field = findField(fieldName))
        field->value(&result);
    return result;
}

char* Card::stringValue(const char* fieldName)
{
    char* result = emptyText;
    if (Data* field = findField(fieldName))
        field->value(&result);
    return result;
}

std::string& Card::getName()
{
    return name;
}

std::vector<std::string>& Card::getVarNames()
{
    return varNames;
}

std::vector<std::string>& Card::getBlankFields()
{
    return blankFields;
}

std::vector<Data*>& Card::getVarValues()
{
    return varValues;
}

unsigned Card::numVars()
{
    return static_cast<unsigned>(varValues.size());
}

// The header is a comment line: its "$" takes the first column of the first
// field, and each name is right-justified over its value's column. A name
// without a value (not expected) is laid over a column of width 0.
void Card::appendHeader(std::string& out)
{
    if (varNames.empty())
        return;
    for (size_t i = 0; i < varNames.size(); ++i) {
        const Data* value = i < varValues.size() ? varValues[i] : nullptr;
        const unsigned width = value ? value->width : 0;
        char format[32];
        if (i == 0)
            std::snprintf(format, sizeof format, "$%%%us", width > 0 ? width - 1 : 0);
        else
            std::snprintf(format, sizeof format, "%%%us", width);
        appendFormatted(out, format, i == 0 ? "$" : "", varNames[i].c_str());
    }
    out += '\n';
}

void Card::toFile(_buffile* f, bool noWidth)
{
    char text[kValueTextSize] = {};
    std::string header;
    appendHeader(header);
    if (!header.empty())
        bufFileWrite(f, header.data(), static_cast<unsigned>(header.size()));
    // The buffer is not cleared between values: a value that prints nothing
    // (an array) writes again the text of the value before it.
    for (Data* value : varValues) {
        if (!value)
            continue;
        renderValue(value, text, noWidth);
        bufFileWrite(f, text, static_cast<unsigned>(std::strlen(text)));
    }
    // A last value that ends in a line feed ends the line itself.
    if (!endsWithLineFeed(text))
        bufFileWrite(f, "\n", 1);
}

void Card::tostring(std::string& out, bool noWidth)
{
    char text[kValueTextSize] = {};
    if (!noWidth)
        appendHeader(out);
    for (size_t i = 0; i < varValues.size(); ++i) {
        text[0] = '\0';
        if (varValues[i])
            renderValue(varValues[i], text, noWidth);
        out += text;
        if (noWidth && i + 1 < varValues.size())
            out += ' ';
    }
    if (!endsWithLineFeed(text))
        out += '\n';
}

void Card::tostring(char*, bool) {}

DBCard::DBCard(const char* name) : Card(name), dbTag(0) {}

DBCard::DBCard(const char* name, bool clearNames) : Card(name, clearNames), dbTag(0) {}

DBCard::~DBCard() = default;
