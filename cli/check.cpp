#include "cli/check.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <istream>
#include <map>
#include <set>
#include <sstream>

#include "core/keywords.h"

namespace quillon {
namespace cli {

namespace {

// The import's locator reads with a 1024-byte fgets buffer: a longer line reaches it in pieces of
// 1023 bytes, and each piece is judged as a line of its own. The section readers read with a
// buffer of 0x40000 bytes, and it is their pieces that the trimming limit applies to.
constexpr std::size_t kLocatorPiece = 1024 - 1;
constexpr std::size_t kReaderPiece = 0x40000 - 1;

// Material headers are told apart by their first five characters, case and all.
constexpr std::size_t kHeaderPrefix = 5;

// The card format's idea of a blank: every byte that the C locale's isgraph rejects, spelled out
// so that the checker agrees with the library whatever locale the process runs in.
bool IsGraphic(char c) {
    const unsigned char byte = static_cast<unsigned char>(c);
    return byte > 0x20 && byte < 0x7f;
}

// A line as the library sees it: a C string, so a NUL byte ends it, trimmed at both ends.
std::string Trim(const std::string& raw) {
    const std::size_t end = std::min(raw.size(), std::strlen(raw.c_str()));
    std::size_t first = 0;
    while (first < end && !IsGraphic(raw[first])) ++first;
    std::size_t last = end;
    while (last > first && !IsGraphic(raw[last - 1])) --last;
    return raw.substr(first, last - first);
}

bool StartsWith(const std::string& text, const char* prefix, std::size_t length) {
    return text.compare(0, length, prefix, length) == 0;
}

bool IsMaterialHeader(const std::string& line) {
    return StartsWith(line, "NOM :", kHeaderPrefix) || StartsWith(line, "GRAIN", kHeaderPrefix);
}

// Blanks as a writer would type them inside a keyword line.
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

char Upper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

std::string WithoutBlanks(const std::string& text) {
    std::string out;
    for (char c : text)
        if (!IsBlank(c)) out += c;
    return out;
}

std::string UpperCase(const std::string& text) {
    std::string out = text;
    for (char& c : out) c = Upper(c);
    return out;
}

std::string Normalise(const std::string& text) { return UpperCase(WithoutBlanks(text)); }

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

// Every text that the locator or the import driver takes as a whole keyword line: the openers the
// locator accepts, the keywords that have a reader, and every closing text. The key of the map is
// the text with case and blanks ignored.
const std::map<std::string, std::vector<std::string>>& LookalikeTargets() {
    static const std::map<std::string, std::vector<std::string>> targets = [] {
        std::set<std::string> keywords;
        for (const auto& pair : KeywordPairTable) {
            keywords.insert(pair.first);
            if (!pair.second.empty()) keywords.insert(pair.second);
        }
        for (const auto& pair : BalancedKeywordTable) keywords.insert(pair.second);
        for (const auto& pair : KeywordTypeTable) keywords.insert(pair.first);
        std::map<std::string, std::vector<std::string>> byNormalForm;
        for (const auto& keyword : keywords) byNormalForm[Normalise(keyword)].push_back(keyword);
        return byNormalForm;
    }();
    return targets;
}

bool IsExactKeyword(const std::string& line) {
    const auto found = LookalikeTargets().find(Normalise(line));
    if (found == LookalikeTargets().end()) return false;
    return std::find(found->second.begin(), found->second.end(), line) != found->second.end();
}

std::string LookalikeMessage(const std::string& written, const std::string& keyword) {
    return Quoted(written) + " is not the keyword " + Quoted(keyword) + " (case and blanks count)";
}

// Whether `line` looks like a keyword written with other case or other blanks; if so, `message`
// names the keyword it most likely meant. A line that is a keyword itself, or a material header,
// resembles nothing.
bool FindLookalike(const std::string& line, std::string& message) {
    if (line.empty() || IsMaterialHeader(line) || IsExactKeyword(line)) return false;
    const std::string normal = Normalise(line);

    const auto found = LookalikeTargets().find(normal);
    if (found != LookalikeTargets().end()) {
        // Some keywords differ from each other only by case or blanks ("Labels:" and "LABELS :"):
        // name the one that needs the fewest kinds of change.
        const std::vector<std::string>& candidates = found->second;
        const std::string* best = &candidates.front();
        auto pick = [&](auto same) {
            for (const auto& candidate : candidates)
                if (same(candidate)) return &candidate;
            return static_cast<const std::string*>(nullptr);
        };
        if (const auto* byBlanks = pick([&](const std::string& c) { return WithoutBlanks(c) == WithoutBlanks(line); }))
            best = byBlanks;
        else if (const auto* byCase = pick([&](const std::string& c) { return UpperCase(c) == UpperCase(line); }))
            best = byCase;
        message = LookalikeMessage(line, *best);
        return true;
    }

    // "NOM :" opens a material by its first five characters, whatever follows: quote as much of the
    // line as stands for the keyword.
    static const std::string nomNormal = Normalise("NOM :");
    if (normal.compare(0, nomNormal.size(), nomNormal) == 0) {
        std::size_t taken = 0;
        std::size_t end = 0;
        while (end < line.size() && taken < nomNormal.size()) {
            if (!IsBlank(line[end])) ++taken;
            ++end;
        }
        message = LookalikeMessage(line.substr(0, end), "NOM :");
        return true;
    }

    // "GRAIN" carries its values on the keyword line, so only its first word can be compared.
    const std::string firstWord = line.substr(0, std::find_if(line.begin(), line.end(), IsBlank) - line.begin());
    if (UpperCase(firstWord) == "GRAIN") {
        message = LookalikeMessage(firstWord, "GRAIN");
        return true;
    }
    return false;
}

// Whether the locator records a trimmed piece: a material header, or a key of its pair table.
bool IsLocated(const std::string& trimmed) {
    return !trimmed.empty() && (IsMaterialHeader(trimmed) || KeywordPairTable.count(trimmed) != 0);
}

// The longest text, after trimming, that the section readers meet in one line of the file (`full`,
// with its line feed). They read it from its start in pieces of kReaderPiece bytes; but the driver
// also seeks to every offset the locator recorded, and inside a line longer than the locator's
// buffer that is the start of a 1023-byte piece, or later in it when a NUL byte shortens what the
// locator measured. From such an offset the readers' pieces fall elsewhere, and behind a NUL byte
// they see text that a read from the line's start never reaches.
std::size_t LongestReaderPiece(const std::string& full) {
    const std::size_t size = full.size();
    const bool hasNul = full.find('\0') != std::string::npos;
    if (size <= kReaderPiece && !hasNul) {
        // A read from inside the line sees a part of what a read from its start sees.
        return Trim(full).size();
    }

    std::vector<std::size_t> starts{0};
    for (std::size_t piece = 0; piece < size; piece += kLocatorPiece) {
        const std::string raw = full.substr(piece, kLocatorPiece);
        if (!IsLocated(Trim(raw))) continue;
        // The locator's offset is the end of the piece less the length that strlen gives it.
        const std::size_t offset = piece + raw.size() - std::strlen(raw.c_str());
        if (offset != 0) starts.push_back(offset);
    }

    // The trimmed length of the C string at `from` cut at `to`, in constant time per piece.
    std::vector<std::size_t> nextNul(size + 1, size);
    std::vector<std::size_t> nextGraphic(size + 1, size);
    std::vector<std::size_t> graphicsBefore(size + 1, 0);  // index + 1 of the last graphic byte before
    for (std::size_t i = size; i-- > 0;) {
        nextNul[i] = full[i] == '\0' ? i : nextNul[i + 1];
        nextGraphic[i] = IsGraphic(full[i]) ? i : nextGraphic[i + 1];
    }
    for (std::size_t i = 0; i < size; ++i) graphicsBefore[i + 1] = IsGraphic(full[i]) ? i + 1 : graphicsBefore[i];
    auto trimmedLength = [&](std::size_t from, std::size_t to) -> std::size_t {
        const std::size_t end = std::min(to, nextNul[from]);
        const std::size_t first = nextGraphic[from];
        if (first >= end) return 0;
        return graphicsBefore[end] - first;
    };

    std::size_t longest = 0;
    for (const std::size_t start : starts) {
        for (std::size_t from = start; from < size; from += kReaderPiece)
            longest = std::max(longest, trimmedLength(from, std::min(size, from + kReaderPiece)));
    }
    return longest;
}

// A line that the locator records, with the line of the file it came from.
struct Located {
    std::string text;
    unsigned long line;
};

class Checker {
public:
    Checker() {
        for (const auto& pair : BalancedKeywordTable) {
            Section& section = m_Sections[pair.second];
            section.open = false;
            section.opener = pair.first;
        }
    }

    void AddLine(const std::string& raw, bool endsWithLineFeed, unsigned long number) {
        CheckLength(raw, endsWithLineFeed, number);

        // The same pieces, trims and lookups as the locator, so that what is reported at a "NOM :"
        // line is exactly what the import reports.
        const std::string full = endsWithLineFeed ? raw + '\n' : raw;
        for (std::size_t start = 0; start < full.size(); start += kLocatorPiece)
            LocatePiece(Trim(full.substr(start, kLocatorPiece)), number);

        const std::string trimmed = Trim(raw);
        std::string message;
        if (trimmed.size() <= kLongestLine && FindLookalike(trimmed, message))
            Add(number, FindingKind::kKeywordLookalike, message);
    }

    std::vector<Finding> Finish() {
        for (const auto& entry : m_Sections) {
            if (!entry.second.open) continue;
            Add(entry.second.openedAt, FindingKind::kUnclosedAtEnd,
                entry.first + " not found in " + m_CurrentName + " (" + Quoted(entry.second.opener) +
                    " is still open at the end of the file)");
        }
        CheckDefMaterial();
        CheckDuplicates();
        std::stable_sort(m_Findings.begin(), m_Findings.end(),
                         [](const Finding& a, const Finding& b) { return a.line < b.line; });
        return std::move(m_Findings);
    }

private:
    struct Section {
        bool open = false;
        std::string opener;           // the keyword that opened it last
        unsigned long openedAt = 0;   // the line where it went from closed to open
    };

    void Add(unsigned long line, FindingKind kind, std::string message, std::string locatorText = "") {
        Finding finding;
        finding.line = line;
        finding.kind = kind;
        finding.message = std::move(message);
        finding.locatorText = std::move(locatorText);
        m_Findings.push_back(std::move(finding));
    }

    void CheckLength(const std::string& raw, bool endsWithLineFeed, unsigned long number) {
        const std::string full = endsWithLineFeed ? raw + '\n' : raw;
        const std::size_t longest = LongestReaderPiece(full);
        if (longest > kLongestLine)
            Add(number, FindingKind::kOverlongLine,
                "line of " + std::to_string(longest) +
                    " characters after trimming: the import ends the whole process on a line of " +
                    std::to_string(kLongestLine + 1) + " characters or more");
    }

    void LocatePiece(const std::string& line, unsigned long number) {
        if (line.empty()) return;
        if (IsMaterialHeader(line)) {
            // A GRAIN line stands inside a material and reports nothing; it still names what
            // follows it in the next report.
            if (!StartsWith(line, "GRAIN", kHeaderPrefix)) {
                for (auto& entry : m_Sections) {
                    Section& section = entry.second;
                    if (!section.open) continue;
                    std::string locatorText = entry.first + " not found in " + m_CurrentName;
                    Add(section.openedAt, FindingKind::kUnclosedAtMaterial,
                        locatorText + " (" + Quoted(section.opener) +
                            " is still open at the next material, line " + std::to_string(number) + ")",
                        locatorText);
                    section.open = false;
                }
            }
            m_Located.push_back({line, number});
            m_CurrentName = line;
            return;
        }
        if (KeywordPairTable.count(line) != 0) {
            m_Located.push_back({line, number});
            const auto balanced = BalancedKeywordTable.find(line);
            if (balanced != BalancedKeywordTable.end()) {
                Section& section = m_Sections[balanced->second];
                // Opening it again before it was closed leaves it open since the first time.
                if (!section.open) section.openedAt = number;
                section.open = true;
                section.opener = line;
            }
            return;
        }
        const auto closing = m_Sections.find(line);
        if (closing != m_Sections.end()) closing->second.open = false;
    }

    // DEF_MATERIAL has no end keyword: its reader takes every later line of the file as a
    // "name = value" pair. Only the material's own "FIN NOM" may follow it harmlessly.
    void CheckDefMaterial() {
        for (std::size_t i = 0; i < m_Located.size(); ++i) {
            if (m_Located[i].text != "DEF_MATERIAL") continue;
            for (std::size_t j = i + 1; j < m_Located.size(); ++j) {
                if (m_Located[j].text == "FIN NOM") continue;
                Add(m_Located[i].line, FindingKind::kDefMaterialNotLast,
                    "DEF_MATERIAL is not the last section of the file: its \"name = value\" lines run to "
                    "the end of the file, so " +
                        Quoted(m_Located[j].text) + " at line " + std::to_string(m_Located[j].line) +
                        " and every line after it are read as pairs too");
                break;
            }
        }
    }

    // The import drops a repeated material by the same walk over the located lines: the first
    // occurrence wins, and a repeat goes out up to the next "FIN NOM".
    void CheckDuplicates() {
        std::vector<Located> entries = m_Located;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (!StartsWith(entries[i].text, "NOM :", kHeaderPrefix)) continue;
            const Located first = entries[i];
            std::size_t from = i + 1;
            for (;;) {
                std::size_t repeat = from;
                while (repeat < entries.size() && entries[repeat].text != first.text) ++repeat;
                if (repeat == entries.size()) break;
                std::size_t end = repeat;
                while (end < entries.size() && entries[end].text != "FIN NOM") ++end;
                const std::string head = "duplicate material " + Quoted(first.text) + " (first at line " +
                                         std::to_string(first.line) + "): ";
                if (end == entries.size()) {
                    Add(entries[repeat].line, FindingKind::kDuplicateMaterial,
                        head + "no \"FIN NOM\" follows it, so the import reads it again into the same material");
                    break;
                }
                Add(entries[repeat].line, FindingKind::kDuplicateMaterial,
                    head + "the import keeps the first and skips this one up to its \"FIN NOM\" at line " +
                        std::to_string(entries[end].line));
                entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(repeat),
                              entries.begin() + static_cast<std::ptrdiff_t>(end) + 1);
                from = repeat;
            }
        }
    }

    std::map<std::string, Section> m_Sections;  // by closing keyword, in the locator's report order
    std::string m_CurrentName;
    std::vector<Located> m_Located;
    std::vector<Finding> m_Findings;
};

}  // namespace

std::vector<Finding> CheckCardStream(std::istream& in) {
    Checker checker;
    std::string raw;
    unsigned long number = 0;
    // std::getline rather than a fixed buffer, so that a line of any length is measured whole.
    while (std::getline(in, raw)) {
        ++number;
        checker.AddLine(raw, !in.eof(), number);
    }
    return checker.Finish();
}

std::vector<Finding> CheckCardText(const std::string& text) {
    std::istringstream in(text);
    return CheckCardStream(in);
}

bool CheckCardFile(const std::string& path, std::vector<Finding>& findings) {
    findings.clear();
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return false;
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    findings = CheckCardStream(in);
    return !in.bad();
}

std::string FormatFinding(const std::string& file, const Finding& finding) {
    return file + ":" + std::to_string(finding.line) + ": " + finding.message;
}

}  // namespace cli
}  // namespace quillon
