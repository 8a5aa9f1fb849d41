// The card file checker on its own: what it reports, on which line, and that its account of open
// sections agrees with the import's locator line for line.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "cli/check.h"
#include "core/dataloc.h"
#include "core/keywords.h"

using quillon::cli::CheckCardFile;
using quillon::cli::CheckCardText;
using quillon::cli::Finding;
using quillon::cli::FindingKind;
using quillon::cli::FormatFinding;
using ::testing::HasSubstr;

namespace {

std::vector<Finding> OfKind(const std::vector<Finding>& findings, FindingKind kind) {
    std::vector<Finding> out;
    for (const auto& finding : findings)
        if (finding.kind == kind) out.push_back(finding);
    return out;
}

std::string Describe(const std::vector<Finding>& findings) {
    std::string out;
    for (const auto& finding : findings) out += FormatFinding("f.mat", finding) + "\n";
    return out;
}

// The locator's own report for `text`, one entry per line of its warning text.
std::vector<std::string> LocatorWarnings(const std::string& text) {
    FILE* file = std::tmpfile();
    EXPECT_NE(file, nullptr);
    if (file == nullptr) return {};
    std::fwrite(text.data(), 1, text.size(), file);
    std::fflush(file);
    DataLoc locator(file);
    std::fclose(file);
    std::vector<std::string> lines;
    std::istringstream in(locator.warnings);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

std::vector<std::string> CheckerAtMaterials(const std::string& text) {
    std::vector<std::string> lines;
    for (const auto& finding : OfKind(CheckCardText(text), FindingKind::kUnclosedAtMaterial))
        lines.push_back(finding.locatorText);
    return lines;
}

void ExpectSameAsLocator(const std::string& text) {
    std::vector<std::string> expected = LocatorWarnings(text);
    std::vector<std::string> actual = CheckerAtMaterials(text);
    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    EXPECT_EQ(actual, expected) << text;
}

std::vector<std::string> CorpusCardFiles() {
    std::vector<std::string> files;
    DIR* dir = opendir(QUILLON_CORPUS_DIR);
    if (dir == nullptr) return files;
    while (dirent* entry = readdir(dir)) {
        const std::string name = entry->d_name;
        if (name.size() > 4 && name.compare(name.size() - 4, 4, ".mat") == 0)
            files.push_back(std::string(QUILLON_CORPUS_DIR) + "/" + name);
    }
    closedir(dir);
    std::sort(files.begin(), files.end());
    return files;
}

std::string ReadWhole(const std::string& path) {
    FILE* file = std::fopen(path.c_str(), "rb");
    std::string text;
    if (file == nullptr) return text;
    char buffer[4096];
    size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, got);
    std::fclose(file);
    return text;
}

const char* const kTwoMaterialsFirstCommentOpen =
    "LISTE :\n"                          // 1
    "W A mechanical mm\n"                // 2
    "W B mechanical mm\n"                // 3
    "FIN LISTE\n"                        // 4
    "NOM : W A mechanical mm\n"          // 5
    "COMMENTAIRES :\n"                   // 6
    "free text\n"                        // 7
    "FIN NOM\n"                          // 8
    "NOM : W B mechanical mm\n"          // 9
    "COMMENTAIRES :\n"                   // 10
    "FIN COMMENTAIRES\n"                 // 11
    "FIN NOM\n";                         // 12

}  // namespace

TEST(CheckCorpus, EveryCorpusFileIsClean) {
    const auto files = CorpusCardFiles();
    ASSERT_GE(files.size(), 9u);
    for (const auto& file : files) {
        std::vector<Finding> findings;
        ASSERT_TRUE(CheckCardFile(file, findings)) << file;
        EXPECT_TRUE(findings.empty()) << file << "\n" << Describe(findings);
    }
}

TEST(CheckCorpus, AgreesWithTheLocatorOnEveryCorpusFile) {
    for (const auto& file : CorpusCardFiles()) ExpectSameAsLocator(ReadWhole(file));
}

TEST(CheckFile, UnreadableAndDirectoryAreNotOpened) {
    std::vector<Finding> findings;
    EXPECT_FALSE(CheckCardFile("/nonexistent/dir/none.mat", findings));
    EXPECT_FALSE(CheckCardFile(QUILLON_CORPUS_DIR, findings));
}

TEST(CheckUnclosed, OpenCommentAtNextMaterialIsReportedAtItsOpeningLine) {
    const auto findings = CheckCardText(kTwoMaterialsFirstCommentOpen);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].kind, FindingKind::kUnclosedAtMaterial);
    EXPECT_EQ(findings[0].line, 6u);
    EXPECT_EQ(findings[0].locatorText, "FIN COMMENTAIRES not found in NOM : W A mechanical mm");
    EXPECT_EQ(findings[0].message,
              "FIN COMMENTAIRES not found in NOM : W A mechanical mm (\"COMMENTAIRES :\" is still open at the "
              "next material, line 9)");
    ExpectSameAsLocator(kTwoMaterialsFirstCommentOpen);
}

TEST(CheckUnclosed, OpenAtEndOfFileIsReportedThoughTheLocatorIsSilent) {
    const std::string text =
        "NOM : W A mechanical mm\n"  // 1
        "LABELS :\n"                 // 2
        "E 210000\n"                 // 3
        "FIN NOM\n";                 // 4
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].kind, FindingKind::kUnclosedAtEnd);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_EQ(findings[0].message,
              "FIN LABELS not found in NOM : W A mechanical mm (\"LABELS :\" is still open at the end of the file)");
    EXPECT_TRUE(findings[0].locatorText.empty());
    EXPECT_TRUE(LocatorWarnings(text).empty());
}

TEST(CheckUnclosed, TwoOpenSectionsAreBothReportedWithTheirOwnLines) {
    const std::string text =
        "NOM : W A m mm\n"     // 1
        "COMMENTAIRES :\n"     // 2
        "Class\n"              // 3
        "Steels\n"             // 4
        "NOM : W B m mm\n"     // 5
        "FIN NOM\n";           // 6
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 2u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_EQ(findings[0].locatorText, "FIN COMMENTAIRES not found in NOM : W A m mm");
    EXPECT_EQ(findings[1].line, 3u);
    EXPECT_EQ(findings[1].locatorText, "EndClass not found in NOM : W A m mm");
    ExpectSameAsLocator(text);
}

TEST(CheckUnclosed, ListBeforeFirstMaterialNamesAnEmptyMaterial) {
    const std::string text =
        "LISTE :\n"            // 1
        "W A m mm\n"           // 2
        "NOM : W A m mm\n"     // 3
        "FIN NOM\n";           // 4
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 1u);
    EXPECT_EQ(findings[0].locatorText, "FIN LISTE not found in ");
    ExpectSameAsLocator(text);
}

TEST(CheckUnclosed, GrainLineReportsNothingButNamesTheNextReport) {
    const std::string text =
        "NOM : W A m mm\n"                 // 1
        "MATERIAUX :\n"                    // 2
        "GRAIN TMIN 900 Q 280000\n"        // 3
        "NOM : W B m mm\n"                 // 4
        "FIN NOM\n";                       // 5
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_EQ(findings[0].locatorText, "FIN MATERIAUX not found in GRAIN TMIN 900 Q 280000");
    ExpectSameAsLocator(text);
}

TEST(CheckUnclosed, ReopeningKeepsTheLineWhereItFirstOpened) {
    const std::string text =
        "NOM : W A m mm\n"     // 1
        "CHIMIE :\n"           // 2
        "C 0.2\n"              // 3
        "CHIMIE :\n"           // 4
        "NOM : W B m mm\n";    // 5
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_EQ(findings[0].locatorText, "FIN CHIMIE not found in NOM : W A m mm");
    ExpectSameAsLocator(text);
}

TEST(CheckUnclosed, ClosedAndReopenedReportsTheSecondOpening) {
    const std::string text =
        "NOM : W A m mm\n"     // 1
        "CHIMIE :\n"           // 2
        "FIN CHIMIE\n"         // 3
        "CHIMIE :\n"           // 4
        "C 0.2\n";             // 5
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 4u);
    EXPECT_EQ(findings[0].kind, FindingKind::kUnclosedAtEnd);
}

TEST(CheckUnclosed, ClosingWithoutOpeningAndIndentedKeywordsAreQuiet) {
    const std::string text =
        "  NOM : W A m mm\r\n"
        "FIN LABELS\r\n"
        "   COMMENTAIRES :   \r\n"
        "\tFIN COMMENTAIRES\r\n"
        "FIN NOM\r\n";
    const auto findings = CheckCardText(text);
    EXPECT_TRUE(findings.empty()) << Describe(findings);
}

TEST(CheckUnclosed, KeywordInTheSecondPieceOfALongLineCountsAsTheLocatorSeesIt) {
    // The locator reads 1023 bytes at a time: what stands behind them is judged as a line of its own.
    const std::string text = "NOM : W A m mm\n" + std::string(1023, 'x') + "COMMENTAIRES :\n" +
                             "NOM : W B m mm\n";
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_EQ(findings[0].locatorText, "FIN COMMENTAIRES not found in NOM : W A m mm");
    ExpectSameAsLocator(text);
}

TEST(CheckDuplicates, RepeatedMaterialNamesTheFirstLineAndItsFinNom) {
    const std::string text =
        "NOM : W A m mm\n"     // 1
        "FIN NOM\n"            // 2
        "NOM : W B m mm\n"     // 3
        "FIN NOM\n"            // 4
        "NOM : W A m mm\n"     // 5
        "LABELS :\n"           // 6
        "FIN LABELS\n"         // 7
        "FIN NOM\n";           // 8
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].kind, FindingKind::kDuplicateMaterial);
    EXPECT_EQ(findings[0].line, 5u);
    EXPECT_EQ(findings[0].message,
              "duplicate material \"NOM : W A m mm\" (first at line 1): the import keeps the first and skips "
              "this one up to its \"FIN NOM\" at line 8");
}

TEST(CheckDuplicates, ThreeTimesGivesTwoFindings) {
    const std::string text =
        "NOM : W A m mm\nFIN NOM\n"    // 1, 2
        "NOM : W A m mm\nFIN NOM\n"    // 3, 4
        "NOM : W A m mm\nFIN NOM\n";   // 5, 6
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 2u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 3u);
    EXPECT_EQ(findings[1].line, 5u);
    EXPECT_THAT(findings[1].message, HasSubstr("(first at line 1)"));
}

TEST(CheckDuplicates, RepeatWithoutFinNomStaysInTheImport) {
    const std::string text =
        "NOM : W A m mm\n"     // 1
        "FIN NOM\n"            // 2
        "NOM : W A m mm\n";    // 3
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 3u);
    EXPECT_THAT(findings[0].message, HasSubstr("no \"FIN NOM\" follows it"));
}

TEST(CheckDuplicates, DifferentWordsAreDifferentMaterials) {
    const auto findings = CheckCardText("NOM : W A m mm\nFIN NOM\nNOM : W A  m mm\nFIN NOM\n");
    EXPECT_TRUE(findings.empty()) << Describe(findings);
}

TEST(CheckLength, LimitIsOnTheTrimmedLine) {
    const std::string longest(8191, 'a');
    EXPECT_TRUE(CheckCardText("NOM : W A m mm\n" + longest + "\n").empty());
    EXPECT_TRUE(CheckCardText("NOM : W A m mm\n   " + longest + "  \r\n").empty());

    const auto findings = CheckCardText("NOM : W A m mm\n" + longest + "a\nFIN NOM\n");
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].kind, FindingKind::kOverlongLine);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_THAT(findings[0].message, HasSubstr("line of 8192 characters after trimming"));
}

TEST(CheckLength, VeryLongLineWithoutLineFeedAtTheEnd) {
    const auto findings = CheckCardText("NOM : W A m mm\nFIN NOM\n\n" + std::string(300000, 'z'));
    ASSERT_EQ(OfKind(findings, FindingKind::kOverlongLine).size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 4u);
}

TEST(CheckLookalike, CaseAndBlankVariantsOfKeywords) {
    const std::string text =
        "LISTE :\n"                      // 1
        "W A m mm\n"                     // 2
        "Fin Liste\n"                    // 3
        "nom : W A m mm\n"               // 4
        "MATERIAUX:\n"                   // 5
        "LABELS:\n"                      // 6
        "grain TMIN 900\n"               // 7
        "fin nom\n"                      // 8
        "NOM:W B m mm\n"                 // 9
        "Endclass\n";                    // 10
    const auto findings = OfKind(CheckCardText(text), FindingKind::kKeywordLookalike);
    ASSERT_EQ(findings.size(), 8u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 3u);
    EXPECT_EQ(findings[0].message, "\"Fin Liste\" is not the keyword \"FIN LISTE\" (case and blanks count)");
    EXPECT_EQ(findings[1].line, 4u);
    EXPECT_EQ(findings[1].message, "\"nom :\" is not the keyword \"NOM :\" (case and blanks count)");
    EXPECT_EQ(findings[2].line, 5u);
    EXPECT_EQ(findings[2].message, "\"MATERIAUX:\" is not the keyword \"MATERIAUX :\" (case and blanks count)");
    EXPECT_EQ(findings[3].line, 6u);
    EXPECT_EQ(findings[3].message, "\"LABELS:\" is not the keyword \"LABELS :\" (case and blanks count)");
    EXPECT_EQ(findings[4].line, 7u);
    EXPECT_EQ(findings[4].message, "\"grain\" is not the keyword \"GRAIN\" (case and blanks count)");
    EXPECT_EQ(findings[5].line, 8u);
    EXPECT_EQ(findings[5].message, "\"fin nom\" is not the keyword \"FIN NOM\" (case and blanks count)");
    EXPECT_EQ(findings[6].line, 9u);
    EXPECT_EQ(findings[6].message, "\"NOM:\" is not the keyword \"NOM :\" (case and blanks count)");
    EXPECT_EQ(findings[7].line, 10u);
    EXPECT_EQ(findings[7].message, "\"Endclass\" is not the keyword \"EndClass\" (case and blanks count)");
}

TEST(CheckLookalike, KeywordsThemselvesAndDataLinesAreQuiet) {
    const std::string text =
        "NOM : W A m mm\n"
        "COMMENTAIRES :\n"
        "Labels:\n"
        "Typical applications:\n"
        "Phases:\n"
        "Phases\n"
        "EndPhases\n"
        "Phase 1: Ferrite\n"
        "Nominal values\n"
        "TABLE &80&\n"
        "END\n"
        "FIN COMMENTAIRES\n"
        "GRAINS ARE COUNTED ON THE HEADER RULE\n"
        "FIN NOM\n";
    const auto findings = OfKind(CheckCardText(text), FindingKind::kKeywordLookalike);
    EXPECT_TRUE(findings.empty()) << Describe(findings);
}

TEST(CheckDefMaterial, FollowedByAnotherSectionIsReportedAtItsLine) {
    const std::string text =
        "NOM : W A m mm\n"     // 1
        "DEF_MATERIAL\n"       // 2
        "MATID = 7\n"          // 3
        "LABELS :\n"           // 4
        "E 1\n"                // 5
        "FIN LABELS\n"         // 6
        "FIN NOM\n";           // 7
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].kind, FindingKind::kDefMaterialNotLast);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_THAT(findings[0].message, HasSubstr("\"LABELS :\" at line 4"));
}

TEST(CheckDefMaterial, OnlyItsFinNomBehindItIsFineButANextMaterialIsNot) {
    EXPECT_TRUE(CheckCardText("NOM : W A m mm\nDEF_MATERIAL\nX = 1\nFIN NOM\n").empty());
    const auto findings = CheckCardText(
        "NOM : W A m mm\n"     // 1
        "DEF_MATERIAL\n"       // 2
        "X = 1\n"              // 3
        "FIN NOM\n"            // 4
        "NOM : W B m mm\n"     // 5
        "FIN NOM\n");          // 6
    ASSERT_EQ(findings.size(), 1u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_THAT(findings[0].message, HasSubstr("\"NOM : W B m mm\" at line 5"));
}

TEST(CheckOutput, FindingsComeSortedByLine) {
    const std::string text =
        "NOM : W A m mm\n"     // 1
        "DEF_MATERIAL\n"       // 2
        "MATERIAUX:\n"         // 3
        "CHIMIE :\n"           // 4
        "NOM : W A m mm\n"     // 5
        "FIN NOM\n";           // 6
    const auto findings = CheckCardText(text);
    ASSERT_EQ(findings.size(), 4u) << Describe(findings);
    EXPECT_EQ(findings[0].line, 2u);
    EXPECT_EQ(findings[1].line, 3u);
    EXPECT_EQ(findings[2].line, 4u);
    EXPECT_EQ(findings[3].line, 5u);
    EXPECT_EQ(FormatFinding("x.mat", findings[1]),
              "x.mat:3: \"MATERIAUX:\" is not the keyword \"MATERIAUX :\" (case and blanks count)");
}

TEST(CheckUnclosed, AgreesWithTheLocatorOnManyShuffledFiles) {
    // Keyword lines of every kind, in every order: openers, closers, headers, lines the locator
    // must not take for keywords, and lines long enough to reach it in pieces.
    std::vector<std::string> pool;
    for (const auto& pair : KeywordPairTable) pool.push_back(pair.first);
    for (const auto& pair : BalancedKeywordTable) pool.push_back(pair.second);
    for (const char* line : {"NOM : W A m mm", "NOM : W B m mm", "NOM :", "GRAIN TMIN 900", "GRAINS", "nom : W A m mm",
                             "MATERIAUX:", "Fin Liste", "  COMMENTAIRES :  \r", "\tFIN COMMENTAIRES\r", "", "E 210000",
                             "1 / T 1 2 20 0 1450 0.0193", "Phases: ferrite"})
        pool.push_back(line);
    pool.push_back(std::string(1023, 'x') + "COMMENTAIRES :");
    pool.push_back(std::string(1022, ' ') + "NOM : W C m mm");
    pool.push_back(std::string(2046, '-') + "FIN COMMENTAIRES");

    std::mt19937 random(20240611u);
    std::uniform_int_distribution<std::size_t> pick(0, pool.size() - 1);
    std::uniform_int_distribution<int> length(1, 60);
    for (int file = 0; file < 400; ++file) {
        std::string text;
        const int lines = length(random);
        for (int i = 0; i < lines; ++i) text += pool[pick(random)] + "\n";
        ExpectSameAsLocator(text);
        if (HasFailure()) break;
    }
}
