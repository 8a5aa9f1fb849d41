#pragma once

// One section of a card file in memory: its keyword line, its keyword type
// and its cards. Sections hold and write cards; they parse nothing.

#include <string>
#include <vector>

#include "core/card.h"
#include "core/export.h"

// An entry of a section's keyword type list. The system itself never fills
// one; a host that does allocates it with malloc, since the section releases
// its entries with free.
struct QUILLON_API _KWTypeIDStr {};

class QUILLON_API ImportObject {
public:
    // Read on import.
    static constexpr int IO_IMPORT = 0x400;
    // Made for export.
    static constexpr int IO_EXPORT = 0x800;

    // The keyword type number (keyword tables); left at 0 by the one-argument
    // constructors.
    unsigned keywordType;
    // The section's line as located, e.g. "COMMENTAIRES :" or a whole "NOM :" line.
    std::string keyword;
    // Owned. Copies of the section share them.
    std::vector<Card*> cardList;
    // Set only through setShortKW.
    unsigned shortKW;
    // IO_IMPORT or IO_EXPORT; export code may replace it.
    int ioType;
    // Kept for hosts; nothing in the system reads or writes it.
    std::vector<unsigned> reservedIDList;
    std::vector<unsigned> IDList;
    // Owned, released with free. Copies of the section share them.
    std::vector<_KWTypeIDStr*> KWTypeIDList;
    // Lines turned into cards by the store readers of the export path.
    unsigned cardCounter;

    // Constructing a section turns field-name recording on for every later
    // card in the process.
    explicit ImportObject(char* keyword);
    ImportObject(char* keyword, unsigned& keywordType);
    // For callers holding constant text; the same as the two above.
    explicit ImportObject(const char* keyword);
    ImportObject(const char* keyword, unsigned& keywordType);
    // Shallow: the copy shares the cards and keyword type entries.
    ImportObject(const ImportObject& other) = default;
    ImportObject& operator=(const ImportObject& other) = default;
    virtual ~ImportObject();

    void addCard(Card* card);
    Card* findCard(const char* name);

    std::vector<Card*>& getCardList();
    std::string& getKeyword();
    unsigned& getKeywordType();
    std::vector<unsigned>* getIDList();
    std::vector<_KWTypeIDStr*>* getKWTypeIDList();

    int isFlagOn(int mask);
    void setIOType(int value);
    void setShortKW(unsigned value);

    // The number of cards; an empty section counts as one once a driver has
    // switched converters (or read-only mode) on.
    unsigned length();

    void toFile(_buffile* f, bool noWidth);
    void tostring(std::string& out, bool noWidth, bool keywordLine);
};

class QUILLON_API ExportObject : public ImportObject {
public:
    // Position of the line provider's loop within the section.
    unsigned lineCounter;
    // Provider word that no constructor sets (zeroed here so that copies never
    // read indeterminate memory); carried by copy and assignment.
    unsigned providerState;
    // Provider word, 0 at construction.
    unsigned providerFlag;

    explicit ExportObject(char* keyword);
    ExportObject(char* keyword, unsigned& keywordType);
    explicit ExportObject(const char* keyword);
    ExportObject(const char* keyword, unsigned& keywordType);
    // Both copy: the copy shares the cards.
    ExportObject(const ExportObject& other) = default;
    ExportObject(ExportObject&& other);
    ExportObject& operator=(const ExportObject& other) = default;
    ~ExportObject() override;
};
