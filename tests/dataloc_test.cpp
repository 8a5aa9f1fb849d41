#include "core/dataloc.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "core/dataline.h"

namespace {

namespace fs = std::filesystem;

using Entries = std::vector<std::pair<long, std::string>>;

// A card file in a temporary stream, scanned as the importer would scan it.
DataLoc Locate(const std::string& text) {
    FILE* file = std::tmpfile();
    EXPECT_NE(file, nullptr);
    std::fwrite(text.data(), 1, text.size(), file);
    DataLoc located(file);
    std::fclose(file);
    return located;
}

Entries EntriesOf(const DataLoc& located) {
    EXPECT_EQ(located.keywords.size(), located.offsets.size());
    Entries entries;
    for (size_t i = 0; i < located.keywords.size() && i < located.offsets.size(); ++i)
        entries.emplace_back(located.offsets[i], located.keywords[i]);
    return entries;
}

std::vector<std::string> KeywordsOf(const std::string& text) { return Locate(text).keywords; }

std::string CorpusPath(const char* name) { return std::string(QUILLON_CORPUS_DIR) + "/" + name; }

DataLoc LocateFile(const std::string& path) {
    FILE* file = std::fopen(path.c_str(), "rb");
    EXPECT_NE(file, nullptr) << path;
    if (file == nullptr) return DataLoc(nullptr);
    DataLoc located(file);
    std::fclose(file);
    return located;
}

// --- material headers and the reports they make -------------------------------------------------

TEST(DataLocReports, UnclosedCommentsInTheLastMaterialAreNotReported) {
    const DataLoc located = Locate("NOM : W A mechanical mm\nCOMMENTAIRES :\nsome text\nFIN NOM\n");
    EXPECT_EQ(located.warnings, "");
    EXPECT_EQ(located.keywords, (std::vector<std::string>{"NOM : W A mechanical mm", "COMMENTAIRES :", "FIN NOM"}));
}

TEST(DataLocReports, UnclosedCommentsAreReportedAtTheNextMaterialHeader) {
    const DataLoc located = Locate(
        "NOM : W A mechanical mm\nCOMMENTAIRES :\nsome text\nFIN NOM\n"
        "NOM : W B mechanical mm\nFIN NOM\n");
    EXPECT_EQ(located.warnings, "FIN COMMENTAIRES not found in NOM : W A mechanical mm\n");
}

TEST(DataLocReports, OpenSectionsAreReportedInKeyOrderNotInOpeningOrder) {
    const DataLoc located = Locate(
        "NOM : A\nCOMMENTAIRES :\nClass\nLow alloy steels\n"
        "NOM : B\n");
    EXPECT_EQ(located.warnings,
              "EndClass not found in NOM : A\n"
              "FIN COMMENTAIRES not found in NOM : A\n");
}

TEST(DataLocReports, EveryOpenSectionIsReportedInKeyOrder) {
    const DataLoc located = Locate(
        "NOM : A\nTABLES :\nMATERIAUX :\nLABELS :\nUnits\nPhases\nInitial phases proportions if wire\n"
        "Initial phases proportions\nCHIMIE :\nNOM : B\n");
    EXPECT_EQ(located.warnings,
              "EndInitial phases proportions not found in NOM : A\n"
              "EndInitial phases proportions if wire not found in NOM : A\n"
              "EndPhases not found in NOM : A\n"
              "EndUnits not found in NOM : A\n"
              "FIN CHIMIE not found in NOM : A\n"
              "FIN LABELS not found in NOM : A\n"
              "FIN MATERIAUX not found in NOM : A\n"
              "FIN TABLES not found in NOM : A\n");
}

TEST(DataLocReports, AReportClosesTheSectionSoItIsNotRepeated) {
    const DataLoc located = Locate("NOM : A\nCOMMENTAIRES :\nNOM : B\nNOM : C\n");
    EXPECT_EQ(located.warnings, "FIN COMMENTAIRES not found in NOM : A\n");
}

TEST(DataLocReports, ClosedSectionsAreNotReported) {
    const DataLoc located = Locate(
        "NOM : A\nCOMMENTAIRES :\nClass\nx\nEndClass\nFIN COMMENTAIRES\nLABELS :\nFIN LABELS\nNOM : B\n");
    EXPECT_EQ(located.warnings, "");
}

TEST(DataLocReports, UnclosedListBeforeTheFirstMaterialIsReportedWithAnEmptyName) {
    const DataLoc located = Locate("LISTE :\nW A mechanical mm\nNOM : W A mechanical mm\nFIN NOM\n");
    EXPECT_EQ(located.warnings, "FIN LISTE not found in \n");
    EXPECT_EQ(located.keywords.front(), "LISTE :");
    EXPECT_EQ(located.offsets.front(), 0);
}

TEST(DataLocReports, SectionOpenAtTheEndOfTheFileIsNotReported) {
    const DataLoc located = Locate("LISTE :\nW A mechanical mm\n");
    EXPECT_EQ(located.warnings, "");
    EXPECT_EQ(located.keywords, std::vector<std::string>{"LISTE :"});
}

TEST(DataLocReports, MissingFinNomIsNeverReported) {
    const DataLoc located = Locate("NOM : A\nLABELS :\nFIN LABELS\nNOM : B\nNOM : C\n");
    EXPECT_EQ(located.warnings, "");
}

TEST(DataLocReports, TableDoesNotOpenFinMateriauxButMateriauxDoes) {
    EXPECT_EQ(Locate("NOM : A\nTABLE\n1 / 1 20 1\nNOM : B\n").warnings, "");
    EXPECT_EQ(Locate("NOM : A\nTABLES\nNOM : B\n").warnings, "");
    EXPECT_EQ(Locate("NOM : A\nMATERIAUX :\nTABLE\nNOM : B\n").warnings, "FIN MATERIAUX not found in NOM : A\n");
    EXPECT_EQ(Locate("NOM : A\nMATERIAUX :\nTABLE\nFIN MATERIAUX\nNOM : B\n").warnings, "");
}

TEST(DataLocReports, ClosingLineThatWasNeverOpenedIsSilentlyAccepted) {
    const DataLoc located = Locate("NOM : A\nFIN COMMENTAIRES\nEndClass\nNOM : B\n");
    EXPECT_EQ(located.warnings, "");
    EXPECT_EQ(located.keywords, (std::vector<std::string>{"NOM : A", "NOM : B"}));
}

TEST(DataLocReports, SecondOpeningOfTheSameKindIsReportedOnce) {
    const DataLoc located = Locate("NOM : A\nClass\nClass\nNOM : B\n");
    EXPECT_EQ(located.warnings, "EndClass not found in NOM : A\n");
    EXPECT_EQ(Locate("NOM : A\nClass\nClass\nEndClass\nNOM : B\n").warnings, "");
}

TEST(DataLocReports, ClosingKeywordsAreWholeLineAndCaseSensitive) {
    EXPECT_EQ(Locate("NOM : A\nCOMMENTAIRES :\nfin commentaires\nNOM : B\n").warnings,
              "FIN COMMENTAIRES not found in NOM : A\n");
    EXPECT_EQ(Locate("NOM : A\nCOMMENTAIRES :\nFIN COMMENTAIRES done\nNOM : B\n").warnings,
              "FIN COMMENTAIRES not found in NOM : A\n");
    EXPECT_EQ(Locate("NOM : A\nCOMMENTAIRES :\n   FIN COMMENTAIRES \r\nNOM : B\n").warnings, "");
}

TEST(DataLocReports, NameCarriesTheWholeHeaderLine) {
    const DataLoc located = Locate("  NOM : W S355J2G3 mechanical mm  \r\nCHIMIE :\nNOM : B\n");
    EXPECT_EQ(located.warnings, "FIN CHIMIE not found in NOM : W S355J2G3 mechanical mm\n");
    EXPECT_EQ(located.currentName, "NOM : B");
}

// --- GRAIN lines --------------------------------------------------------------------------------

TEST(DataLocGrain, AnyLineStartingWithGrainIsAHeader) {
    const DataLoc located = Locate("NOM : A\nGRAIN TMIN 900 Q 280000\nGRAINSIZE 12\nGRAINS\nGRAIN\nGRAI\n");
    EXPECT_EQ(located.keywords,
              (std::vector<std::string>{"NOM : A", "GRAIN TMIN 900 Q 280000", "GRAINSIZE 12", "GRAINS", "GRAIN"}));
    EXPECT_EQ(located.currentName, "GRAIN");
}

TEST(DataLocGrain, GrainLineReportsNothingAndLeavesSectionsOpen) {
    const DataLoc located = Locate("NOM : A\nMATERIAUX :\nGRAIN TMIN 900\nTABLE\nNOM : B\n");
    // The GRAIN line became the current name, so the report at the next material names it.
    EXPECT_EQ(located.warnings, "FIN MATERIAUX not found in GRAIN TMIN 900\n");
}

TEST(DataLocGrain, SectionClosedAfterAGrainLineIsNotReported) {
    const DataLoc located = Locate("NOM : A\nMATERIAUX :\nGRAIN TMIN 900\nFIN MATERIAUX\nNOM : B\n");
    EXPECT_EQ(located.warnings, "");
}

TEST(DataLocGrain, GrainIsCaseSensitive) {
    const DataLoc located = Locate("NOM : A\ngrain TMIN 900\nGrain\n");
    EXPECT_EQ(located.keywords, std::vector<std::string>{"NOM : A"});
    EXPECT_EQ(located.currentName, "NOM : A");
}

// --- which lines are keyword lines ---------------------------------------------------------------

TEST(DataLocKeywords, LeadingBlanksAndCarriageReturnAreTrimmedButOffsetIsTheRawLineStart) {
    const std::string text = "NOM : A\r\n\r\n \t LABELS :\r\nE 1\r\n   TABLES :   \r\n";
    const DataLoc located = Locate(text);
    EXPECT_EQ(EntriesOf(located), (Entries{{0, "NOM : A"},
                                           {static_cast<long>(text.find(" \t LABELS")), "LABELS :"},
                                           {static_cast<long>(text.find("   TABLES")), "TABLES :"}}));
}

TEST(DataLocKeywords, MateriauxWithTrailingBlanksIsRecognisedButNotWithoutBlankBeforeColon) {
    EXPECT_EQ(KeywordsOf("MATERIAUX :   \n"), std::vector<std::string>{"MATERIAUX :"});
    EXPECT_EQ(KeywordsOf("MATERIAUX:\n"), std::vector<std::string>{});
    EXPECT_EQ(KeywordsOf("MATERIAUX  :\n"), std::vector<std::string>{});
}

TEST(DataLocKeywords, LowerCaseNomIsIgnored) {
    const DataLoc located = Locate("NOM : A\nCOMMENTAIRES :\nnom : B\nNom : C\n");
    EXPECT_EQ(located.keywords, (std::vector<std::string>{"NOM : A", "COMMENTAIRES :"}));
    EXPECT_EQ(located.warnings, "");
    EXPECT_EQ(located.currentName, "NOM : A");
}

TEST(DataLocKeywords, NomHeaderIsAFiveCharacterPrefix) {
    EXPECT_EQ(KeywordsOf("NOM :\nNOM :X\nNOM:\nNOM  : A\n"), (std::vector<std::string>{"NOM :", "NOM :X"}));
}

TEST(DataLocKeywords, KeywordWithWordsBehindItIsData) {
    EXPECT_EQ(KeywordsOf("TABLE 10\nLABELS : x\nREACTION 1\nTABLE &80&\n"), std::vector<std::string>{});
}

TEST(DataLocKeywords, KeywordLookupIsCaseSensitive) {
    EXPECT_EQ(KeywordsOf("labels :\nclass\nPHASES\ncomposition\n"), std::vector<std::string>{});
}

TEST(DataLocKeywords, KeywordsInsideACommentBlockAreLocated) {
    const DataLoc located = Locate(
        "COMMENTAIRES :\nText\nChemical Composition:\nPhases:\nPhases\nx\nEndPhases\nFIN COMMENTAIRES\n");
    EXPECT_EQ(located.keywords,
              (std::vector<std::string>{"COMMENTAIRES :", "Chemical Composition:", "Phases:", "Phases"}));
}

TEST(DataLocKeywords, TypedKeywordsOutsideThePairTableAreNotLocated) {
    EXPECT_EQ(KeywordsOf("Labels:\nTypical applications:\nTypical Applications:\nEND\n"), std::vector<std::string>{});
}

TEST(DataLocKeywords, FinNomAndOtherPairKeysAreLocatedAsSections) {
    EXPECT_EQ(KeywordsOf("FIN NOM\nMETALLURGY\nUnits\nDEF_MATERIAL\nMATERIAL\nREACTION\n"),
              (std::vector<std::string>{"FIN NOM", "METALLURGY", "Units", "DEF_MATERIAL", "MATERIAL", "REACTION"}));
}

TEST(DataLocKeywords, BlankLinesAndBlankOnlyLinesAreSkipped) {
    const std::string text = "\n   \n\t\r\nLISTE :\n";
    EXPECT_EQ(EntriesOf(Locate(text)), (Entries{{static_cast<long>(text.find("LISTE")), "LISTE :"}}));
}

// --- lines longer than the buffer ---------------------------------------------------------------

TEST(DataLocLongLines, KeywordBehindTheFirst1023BytesIsLocatedAsALineOfItsOwn) {
    const std::string text = std::string(1023, ' ') + "LABELS :\nFIN LABELS\n";
    EXPECT_EQ(EntriesOf(Locate(text)), (Entries{{1023, "LABELS :"}}));
}

TEST(DataLocLongLines, KeywordCutByTheBufferEdgeIsNotLocated) {
    const std::string text = std::string(1020, 'x') + "TABLES :\nLISTE :\n";
    const DataLoc located = Locate(text);
    EXPECT_EQ(EntriesOf(located), (Entries{{static_cast<long>(text.find("LISTE")), "LISTE :"}}));
}

TEST(DataLocLongLines, EveryPieceOfAVeryLongLineIsJudged) {
    // 3 * 1023 bytes of data, then a keyword that starts a fourth piece.
    const std::string text = std::string(3 * 1023, 'x') + "COMMENTAIRES :\nNOM : B\n";
    const DataLoc located = Locate(text);
    EXPECT_EQ(EntriesOf(located), (Entries{{3 * 1023, "COMMENTAIRES :"},
                                           {static_cast<long>(text.find("NOM")), "NOM : B"}}));
    EXPECT_EQ(located.warnings, "FIN COMMENTAIRES not found in \n");
}

// --- streams ------------------------------------------------------------------------------------

TEST(DataLocStreams, EmptyFileYieldsNothing) {
    const DataLoc located = Locate("");
    EXPECT_TRUE(located.keywords.empty());
    EXPECT_TRUE(located.offsets.empty());
    EXPECT_EQ(located.warnings, "");
    EXPECT_EQ(located.currentName, "");
}

TEST(DataLocStreams, NullStreamYieldsNothing) {
    const DataLoc located(nullptr);
    EXPECT_TRUE(located.keywords.empty());
    EXPECT_TRUE(located.offsets.empty());
}

TEST(DataLocStreams, ScanStartsFromTheBeginningWhereverTheStreamStands) {
    FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    std::fputs("LISTE :\nx\nFIN LISTE\nNOM : A\n", file);  // left positioned at the end
    const DataLoc located(file);
    std::fclose(file);
    EXPECT_EQ(EntriesOf(located), (Entries{{0, "LISTE :"}, {20, "NOM : A"}}));
}

TEST(DataLocStreams, CopiesAreIndependentValues) {
    const DataLoc located = Locate("LISTE :\nNOM : A\n");
    DataLoc copy = located;
    copy.keywords.erase(copy.keywords.begin());
    copy.offsets.erase(copy.offsets.begin());
    EXPECT_EQ(located.keywords.size(), 2u);
    EXPECT_EQ(copy.keywords, std::vector<std::string>{"NOM : A"});
    EXPECT_EQ(copy.currentName, "NOM : A");
}

// --- getKeyword ---------------------------------------------------------------------------------

std::string FirstWord(const char* text) {
    char buffer[256];
    std::snprintf(buffer, sizeof buffer, "%s", text);
    DataLoc(nullptr).getKeyword(buffer);
    return buffer;
}

TEST(DataLocGetKeyword, CutsBehindTheFirstWordOfLettersAndUnderscores) {
    EXPECT_EQ(FirstWord("NOM : W S355J2G3 mechanical mm"), "NOM");
    EXPECT_EQ(FirstWord("TABLES :"), "TABLES");
    EXPECT_EQ(FirstWord("DEF_MATERIAL"), "DEF_MATERIAL");
    EXPECT_EQ(FirstWord("GRAIN2 TMIN 900"), "GRAIN");
    EXPECT_EQ(FirstWord("Initial phases proportions"), "Initial");
    EXPECT_EQ(FirstWord("Chemical Composition:"), "Chemical");
    EXPECT_EQ(FirstWord("Phases:"), "Phases");
}

TEST(DataLocGetKeyword, FirstCharacterIsNotTested) {
    EXPECT_EQ(FirstWord("1abc def"), "1abc");
    EXPECT_EQ(FirstWord(" abc"), " abc");
    EXPECT_EQ(FirstWord("::x"), ":");
    EXPECT_EQ(FirstWord("_x_y-z"), "_x_y");
}

TEST(DataLocGetKeyword, ShortTextsStayAsTheyAre) {
    EXPECT_EQ(FirstWord("X"), "X");
    EXPECT_EQ(FirstWord(""), "");
    EXPECT_EQ(FirstWord("TABLE"), "TABLE");
}

// --- the sample card files ----------------------------------------------------------------------

std::vector<fs::path> CorpusCardFiles() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(QUILLON_CORPUS_DIR)) {
        const std::string extension = entry.path().extension().string();
        if (entry.is_regular_file() && (extension == ".mat" || extension == ".dat")) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(DataLocCorpus, EveryOffsetPointsAtTheRawKeywordLine) {
    const std::vector<fs::path> files = CorpusCardFiles();
    ASSERT_GE(files.size(), 10u);
    for (const fs::path& path : files) {
        SCOPED_TRACE(path.string());
        FILE* file = std::fopen(path.c_str(), "rb");
        ASSERT_NE(file, nullptr);
        const DataLoc located(file);
        ASSERT_EQ(located.keywords.size(), located.offsets.size());
        long previous = -1;
        for (size_t i = 0; i < located.keywords.size(); ++i) {
            EXPECT_GT(located.offsets[i], previous);  // file order
            previous = located.offsets[i];
            ASSERT_EQ(std::fseek(file, located.offsets[i], SEEK_SET), 0);
            char line[1024];
            ASSERT_NE(std::fgets(line, sizeof line, file), nullptr);
            Generic::RemoveLeadingAndTrailingBlanks(line);
            EXPECT_EQ(std::string(line), located.keywords[i]) << "entry " << i;
        }
        std::fclose(file);
    }
}

TEST(DataLocCorpus, WellFormedSampleFilesGiveNoWarnings) {
    for (const fs::path& path : CorpusCardFiles()) {
        EXPECT_EQ(LocateFile(path.string()).warnings, "") << path;
    }
}

TEST(DataLocCorpus, WeldSteelFileLocatesItsListMaterialAndCommentKeywords) {
    const DataLoc located = LocateFile(CorpusPath("S355J2G3.mat"));
    EXPECT_EQ(located.keywords, (std::vector<std::string>{
                                    "LISTE :",
                                    "NOM : W S355J2G3 mechanical mm",
                                    "COMMENTAIRES :",
                                    "Chemical Composition:",
                                    "Phases:",
                                    "Class",
                                    "Phases",
                                    "Initial hardness",
                                    "Initial phases proportions if wire",
                                    "Initial phases proportions",
                                    "Composition",
                                    "LABELS :",
                                    "TABLES :",
                                    "FIN NOM",
                                }));
    ASSERT_GE(located.offsets.size(), 3u);
    // "LISTE :\n" + "W S355J2G3 mechanical mm\n" + "FIN LISTE\n" + "\n"
    EXPECT_EQ(located.offsets[0], 0);
    EXPECT_EQ(located.offsets[1], 8 + 25 + 10 + 1);
    EXPECT_EQ(located.offsets[2], 44 + 31 + 1);
    EXPECT_EQ(located.currentName, "NOM : W S355J2G3 mechanical mm");
}

TEST(DataLocCorpus, ThermometalFileLocatesMetallurgyKeywordsAndTheGrainLine) {
    const DataLoc located = LocateFile(CorpusPath("16MnCr5_thermometal.mat"));
    EXPECT_EQ(located.keywords, (std::vector<std::string>{
                                    "LISTE :",
                                    "NOM : W 16MnCr5 thermometal_cp mm",
                                    "COMMENTAIRES :",
                                    "Class",
                                    "MATERIAUX :",
                                    "METALLURGY",
                                    "REACTION",
                                    "GRAIN TMIN 900 Q 280000 POWER 2 C 2e+06 AUSTENITE 6",
                                    "TABLE",
                                    "FIN NOM",
                                }));
    EXPECT_EQ(located.currentName, "GRAIN TMIN 900 Q 280000 POWER 2 C 2e+06 AUSTENITE 6");
}

TEST(DataLocCorpus, CrlfFileIsLocatedWithOffsetsCountingTheCarriageReturns) {
    const DataLoc located = LocateFile(CorpusPath("AlMg4.5Mn.mat"));
    EXPECT_EQ(located.keywords, (std::vector<std::string>{
                                    "LISTE :",
                                    "NOM : W AlMg4.5Mn mechanical mm",
                                    "COMMENTAIRES :",
                                    "Class",
                                    "MaterialType",
                                    "Units",
                                    "Composition",
                                    "LABELS :",
                                    "TABLES :",
                                    "FIN NOM",
                                    "NOM : W AlMg4.5Mn thermometal_cp mm",
                                    "COMMENTAIRES :",
                                    "MATERIAUX :",
                                    "METALLURGY",
                                    "FIN NOM",
                                }));
    ASSERT_GE(located.offsets.size(), 2u);
    // "LISTE :\r\n" + two list lines + "FIN LISTE\r\n" + "\r\n"
    EXPECT_EQ(located.offsets[1], 9 + 27 + 31 + 11 + 2);
}

TEST(DataLocCorpus, MetallurgyFileHeaderIsNotAWholeLineKeyword) {
    const DataLoc located = LocateFile(CorpusPath("METALLURGY.mat"));
    EXPECT_EQ(located.keywords, (std::vector<std::string>{"REACTION", "TABLE"}));
    EXPECT_EQ(located.currentName, "");
}

TEST(DataLocCorpus, MultiMaterialFileHasSixMaterialBlocks) {
    const DataLoc located = LocateFile(CorpusPath("case_hardening_steels.mat"));
    const auto count = [&](const std::string& keyword) {
        return std::count(located.keywords.begin(), located.keywords.end(), keyword);
    };
    const auto headers = std::count_if(located.keywords.begin(), located.keywords.end(),
                                       [](const std::string& k) { return k.rfind("NOM : ", 0) == 0; });
    EXPECT_EQ(headers, 6);
    EXPECT_EQ(count("FIN NOM"), 6);
    EXPECT_EQ(count("LISTE :"), 1);
    ASSERT_FALSE(located.keywords.empty());
    EXPECT_EQ(located.keywords.front(), "LISTE :");
    EXPECT_EQ(located.keywords.back(), "FIN NOM");
}

// --- the example program ------------------------------------------------------------------------

struct ProgramRun {
    int exitCode = -1;
    std::string output;
};

ProgramRun RunLocateSections(const std::string& arguments) {
    const std::string program = std::string(QUILLON_BINARY_DIR) + "/examples/locate_sections";
    ProgramRun run;
    FILE* pipe = ::popen((program + " " + arguments + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return run;
    char buffer[4096];
    size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.output.append(buffer, got);
    const int status = ::pclose(pipe);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

bool LocateSectionsBuilt() {
    return fs::exists(std::string(QUILLON_BINARY_DIR) + "/examples/locate_sections");
}

TEST(LocateSectionsProgram, PrintsOffsetAndKeywordPerSection) {
    if (!LocateSectionsBuilt()) GTEST_SKIP() << "example program not built";
    const ProgramRun run = RunLocateSections("'" + CorpusPath("METALLURGY.mat") + "'");
    EXPECT_EQ(run.exitCode, 0);
    const DataLoc located = LocateFile(CorpusPath("METALLURGY.mat"));
    ASSERT_EQ(located.offsets.size(), 2u);
    EXPECT_EQ(run.output, std::to_string(located.offsets[0]) + "\tREACTION\n" +
                              std::to_string(located.offsets[1]) + "\tTABLE\n");
}

TEST(LocateSectionsProgram, WrongArgumentsGiveUsageAndExitCodeTwo) {
    if (!LocateSectionsBuilt()) GTEST_SKIP() << "example program not built";
    const ProgramRun run = RunLocateSections("");
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_NE(run.output.find("usage: locate_sections FILE.mat"), std::string::npos);
}

TEST(LocateSectionsProgram, MissingFileGivesExitCodeOne) {
    if (!LocateSectionsBuilt()) GTEST_SKIP() << "example program not built";
    const ProgramRun run = RunLocateSections("/nonexistent/none.mat");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "locate_sections: /nonexistent/none.mat: could not open file\n");
}

}  // namespace
