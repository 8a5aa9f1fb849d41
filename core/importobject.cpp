// Sections: the cards of one keyword, and the text they write.

#include <cstdlib>
#include <cstring>

#include "core/importobject.h"

namespace {

const char* keywordOrEmpty(const char* keyword)
{
    return keyword ? keyword : "";
}

} // namespace

ImportObject::ImportObject(const char* keyword)
    : keywordType(0), keyword(keywordOrEmpty(keyword)), shortKW(0), ioType(IO_IMPORT), cardCounter(0)
{
    // Cards made for a section record their field names: readers and
    // writers look fields up by name.
    Card::setFlag(Card::KEEP_NAMES);
}

ImportObject::ImportObject(const char* keyword, unsigned& keywordType) : ImportObject(keyword)
{
    this->keywordType = keywordType;
}

ImportObject::ImportObject(char* keyword) : ImportObject(static_cast<const char*>(keyword)) {}

ImportObject::ImportObject(char* keyword, unsigned& keywordType)
    : ImportObject(static_cast<const char*>(keyword), keywordType)
{
}

ImportObject::~ImportObject()
{
    for (Card* card : cardList)
        delete card;
    for (_KWTypeIDStr* entry : KWTypeIDList)
        std::free(entry);
}

void ImportObject::addCard(Card* card)
{
    cardList.push_back(card);
}

Card* ImportObject::findCard(const char* name)
{
    if (!name)
        return nullptr;
    for (Card* card : cardList) {
        if (card && std::strcmp(card->getName().c_str(), name) == 0)
            return card;
    }
    return nullptr;
}

std::vector<Card*>& ImportObject::getCardList()
{
    return cardList;
}

std::string& ImportObject::getKeyword()
{
    return keyword;
}

unsigned& ImportObject::getKeywordType()
{
    return keywordType;
}

std::vector<unsigned>* ImportObject::getIDList()
{
    return &IDList;
}

std::vector<_KWTypeIDStr*>* ImportObject::getKWTypeIDList()
{
    return &KWTypeIDList;
}

int ImportObject::isFlagOn(int mask)
{
    return ioType & mask;
}

void ImportObject::setIOType(int value)
{
    ioType = value;
}

void ImportObject::setShortKW(unsigned value)
{
    shortKW = value;
}

unsigned ImportObject::length()
{
    if (!cardList.empty())
        return static_cast<unsigned>(cardList.size());
    // Every driver switches converters on, so after the first driver an empty
    // section still counts as one.
    return Card::isFlagOn(Card::READ_ONLY) || Card::isFlagOn(Card::RUN_CONVERTERS) ? 1 : 0;
}

// The closing keyword is not written here: the export callers add it.
void ImportObject::toFile(_buffile* f, bool noWidth)
{
    bufFileWrite(f, keyword.data(), static_cast<unsigned>(keyword.size()));
    bufFileWrite(f, "\n", 1);
    for (Card* card : cardList) {
        if (card)
            card->toFile(f, noWidth);
    }
}

void ImportObject::tostring(std::string& out, bool noWidth, bool keywordLine)
{
    out += keyword;
    // Without a keyword line the whole of `out` so far, the keyword
    // included, becomes one line of its own, and the cards follow on it.
    if (keywordLine)
        out += '\n';
    else
        out = "\n" + out + " ";
    for (Card* card : cardList) {
        if (card)
            card->tostring(out, noWidth);
    }
    if (!keywordLine)
        out += '\n';
}

ExportObject::ExportObject(const char* keyword)
    : ImportObject(keyword), lineCounter(0), providerState(0), providerFlag(0)
{
    ioType = IO_EXPORT;
}

ExportObject::ExportObject(const char* keyword, unsigned& keywordType)
    : ImportObject(keyword, keywordType), lineCounter(0), providerState(0), providerFlag(0)
{
    ioType = IO_EXPORT;
}

ExportObject::ExportObject(char* keyword) : ExportObject(static_cast<const char*>(keyword)) {}

ExportObject::ExportObject(char* keyword, unsigned& keywordType)
    : ExportObject(static_cast<const char*>(keyword), keywordType)
{
}

// Moving copies, so that the source keeps its cards as a copy would.
ExportObject::ExportObject(ExportObject&& other) : ExportObject(static_cast<const ExportObject&>(other)) {}

ExportObject::~ExportObject() = default;
