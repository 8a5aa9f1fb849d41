#pragma once

// Typed field values, cards and the small buffered writer they are written
// through. A card is one line of a card file: named fields, each with a type
// tag and a column width.

#include <cstddef>
#include <string>
#include <vector>

#include "core/export.h"

// Abstract root of everything that can print itself into a card line.
class QUILLON_API Object {
public:
    // Values and cards are small and made by the million; they come from the
    // small-block pool (core/blockpool.h).
    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size) noexcept;

    // Leaves `out` as it is; only cards append their text here.
    virtual void tostring(std::string& out, bool noWidth);
    // Prints the value into `out`, which the caller sizes.
    virtual void tostring(char* out, bool noWidth) = 0;
    virtual ~Object();
};

// One field value. `type` is the tag of the leaf class, `width` its column
// count. Every `value` slot here answers the "nothing of that type" value; a
// leaf overrides only the slot of its own type, so asking a field for another
// type quietly gives 0.
class QUILLON_API Data : public Object {
public:
    // Type tags of the leaves, also the type codes of `Card::addFields`.
    // 4 and 7 have no class: 7 is the code that asks for an empty column.
    enum TypeTag : unsigned {
        UINTEGER_TAG = 0,
        INTEGER_TAG = 1,
        DOUBLE_TAG = 2,
        FLOAT_TAG = 3,
        CHARARRAY_TAG = 5,
        DOUBLEARRAY_TAG = 6,
        EMPTY_FIELD_CODE = 7,
        BLANK_TAG = 8,
    };

    unsigned type;
    unsigned width;

    Data(unsigned type, unsigned& width);
    Data(const Data& other) = default;
    Data& operator=(const Data& other) = default;
    ~Data() override;

    using Object::tostring;
    virtual void value(char** out);
    virtual void value(double* out);
    virtual void value(int* out);
    virtual void value(unsigned int* out);
};

class QUILLON_API UInteger : public Data {
public:
    unsigned payload;

    UInteger(unsigned& v, unsigned width);
    UInteger(const char* s, unsigned width);
    UInteger(const UInteger& other) = default;
    UInteger& operator=(const UInteger& other) = default;
    ~UInteger() override;

    using Data::tostring;
    using Data::value;
    void tostring(char* out, bool noWidth) override;
    void value(unsigned int* out) override;
};

class QUILLON_API Integer : public Data {
public:
    int payload;

    Integer(int& v, unsigned width);
    Integer(const char* s, unsigned width);
    Integer(const Integer& other) = default;
    Integer& operator=(const Integer& other) = default;
    ~Integer() override;

    using Data::tostring;
    using Data::value;
    void tostring(char* out, bool noWidth) override;
    void value(int* out) override;
};

class QUILLON_API Double : public Data {
public:
    double payload;

    Double(double& v, unsigned width);
    Double(const char* s, unsigned width);
    Double(const Double& other) = default;
    Double& operator=(const Double& other) = default;
    ~Double() override;

    using Data::tostring;
    using Data::value;
    // The number format of the card file: fixed notation without trailing
    // zeros when it fits the width, else exponent notation, giving up the
    // "e" when even that is too wide.
    void tostring(char* out, bool noWidth) override;
    void value(double* out) override;
};

class QUILLON_API Float : public Data {
public:
    float payload;

    Float(float& v, unsigned width);
    Float(const char* s, unsigned width);
    Float(const Float& other) = default;
    Float& operator=(const Float& other) = default;
    ~Float() override;

    using Data::tostring;
    using Data::value;
    // Always ten columns or more, whatever the width.
    void tostring(char* out, bool noWidth) override;
    void value(float* out);
};

class QUILLON_API CharArray : public Data {
public:
    // Owned, freed with free(). A copy shares it: destroy only one of the two.
    char* payload;

    CharArray(const char* s, unsigned width);
    CharArray(const CharArray& other) = default;
    CharArray& operator=(const CharArray& other) = default;
    ~CharArray() override;

    using Data::tostring;
    using Data::value;
    void tostring(char* out, bool noWidth) override;
    void value(char** out) override;
    void setWidth(unsigned width);
};

class QUILLON_API DoubleArray : public Data {
public:
    int count;
    // Owned when `count` is not 0. A copy shares it: destroy only one of the two.
    double* payload;

    DoubleArray(int count, double* values, unsigned width);
    DoubleArray(const DoubleArray& other) = default;
    DoubleArray& operator=(const DoubleArray& other) = default;
    ~DoubleArray() override;

    using Data::tostring;
    using Data::value;
    // Arrays have no text of their own in a card line.
    void tostring(char* out, bool noWidth) override;
    unsigned value(double** out);
};

// Holds a column open: prints one blank, left-justified over its width.
class QUILLON_API BlankObject : public Data {
public:
    BlankObject();
    explicit BlankObject(unsigned width);
    BlankObject(const BlankObject& other) = default;
    BlankObject& operator=(const BlankObject& other) = default;
    ~BlankObject() override;

    using Data::tostring;
    void tostring(char* out, bool noWidth) override;
};

// Buffered writer over a low-level file handle.
struct QUILLON_API _buffile {
    char* next;
    unsigned room;
    char buffer[8192];
    unsigned (*flush)(unsigned c, _buffile* f);
    unsigned (*close)(_buffile* f, int closeHandle);
    int handle;
};

QUILLON_API _buffile* bufFileCreate(int handle);
// Returns `length`, or ~0u when a flush on the way failed.
QUILLON_API unsigned bufFileWrite(_buffile* f, const void* data, unsigned length);
// Stores `c` as a byte unless it is ~0u, then writes out everything stored.
// Returns `c`, or ~0u when the handle took fewer bytes than asked.
QUILLON_API unsigned bufFileFlush(unsigned c, _buffile* f);
// Runs the `close` entry and frees the record.
QUILLON_API unsigned bufFileClose(_buffile* f, int closeHandle);

// One record of named, typed fields. The card owns its values; copies are
// shallow and share them.
class QUILLON_API Card : public Object {
public:
    explicit Card(const char* name);
    // With `clearNames` true, field names stop being recorded for this and
    // every later card until the next section is constructed.
    Card(const char* name, bool clearNames);
    Card(const Card& other) = default;
    Card& operator=(const Card& other) = default;
    ~Card() override;

    // Bits of the process-wide mode word.
    enum ModeBit : unsigned {
        KEEP_NAMES = 2,     // addField and addEmptyField record field names
        BUILD_CARDS = 4,    // section readers build a card per line
        READ_ONLY = 8,      // counted only by ImportObject::length
        RUN_CONVERTERS = 16 // section readers run their store converter
    };

    // Process-wide mode word. The arguments are bit values, not bit numbers.
    static void setFlag(unsigned mask);
    static void clearFlag(unsigned mask);
    static unsigned isFlagOn(unsigned mask);

    void addField(const char* name, Data* value);
    void addEmptyField(int count, unsigned width);

    // Fixed columns cut out of `line`.
    void addFields(unsigned& n, unsigned* types, unsigned* widths, const char** names, char* line);
    // One word per field.
    void addFields(unsigned& n, unsigned* types, unsigned* widths, const char** names, char** words);
    // Words that may not match the field count; every value is ten wide.
    void addFields(unsigned& nFields, unsigned* types, const char** names, unsigned nWords, char** words);
    // From numbers, truncating toward zero for the integer codes.
    void addFields(unsigned& n, unsigned* types, const char** names, double* values);

    Data* findField(const char* name);
    int intValue(const char* name);
    unsigned uintValue(const char* name);
    double doubleValue(const char* name);
    char* stringValue(const char* name);

    std::string& getName();
    std::vector<std::string>& getVarNames();
    std::vector<std::string>& getBlankFields();
    std::vector<Data*>& getVarValues();
    unsigned numVars();

    void toFile(_buffile* f, bool noWidth);
    void tostring(std::string& out, bool noWidth) override;
    // A card has no text of a single value.
    void tostring(char* out, bool noWidth) override;

private:
    void addFieldFromWord(unsigned code, const char* name, const char* word, unsigned width,
                          unsigned emptyFieldWidth);
    void appendHeader(std::string& out);

    std::string name;
    std::vector<std::string> varNames;
    std::vector<std::string> blankFields;
    std::vector<Data*> varValues;

    static unsigned contFlag;
};

// A card made on the export path.
class QUILLON_API DBCard : public Card {
public:
    // Left unset by the name constructors (zeroed here so that copies never
    // read indeterminate memory); carried by copy and assignment.
    unsigned dbTag;

    explicit DBCard(const char* name);
    DBCard(const char* name, bool clearNames);
    DBCard(const DBCard& other) = default;
    DBCard& operator=(const DBCard& other) = default;
    ~DBCard() override;
};
