// The quillon tool end to end: the built binary, run in a scratch directory on real files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using ::testing::HasSubstr;
using ::testing::Not;

namespace fs = std::filesystem;

namespace {

const std::string kTool = std::string(QUILLON_BINARY_DIR) + "/cli/quillon";
const std::string kCorpus = QUILLON_CORPUS_DIR;

struct Result {
    int code = -1;         // exit code, or -1 when the process did not exit normally
    int signal = 0;        // the signal that ended it, if one did
    std::string out;
    std::string err;
};

std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void WriteFile(const fs::path& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

class CliTest : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/quillon_cli_XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        m_Dir = pattern;
        m_Capture = m_Dir / ".capture";
        fs::create_directory(m_Capture);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(m_Dir, ignored);
    }

    // Runs the tool with `args`, in the scratch directory.
    Result Run(const std::vector<std::string>& args) {
        const fs::path outPath = m_Capture / "out";
        const fs::path errPath = m_Capture / "err";
        const pid_t child = ::fork();
        if (child == 0) {
            if (::chdir(m_Dir.c_str()) != 0) ::_exit(127);
            const int out = ::open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            const int err = ::open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
            if (out < 0 || err < 0) ::_exit(127);
            ::dup2(out, STDOUT_FILENO);
            ::dup2(err, STDERR_FILENO);
            std::vector<char*> argv;
            argv.push_back(const_cast<char*>(kTool.c_str()));
            for (const auto& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
            argv.push_back(nullptr);
            ::execv(kTool.c_str(), argv.data());
            ::_exit(127);
        }
        Result result;
        int status = 0;
        EXPECT_GT(child, 0);
        if (child <= 0) return result;
        ::waitpid(child, &status, 0);
        if (WIFEXITED(status)) result.code = WEXITSTATUS(status);
        if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
        result.out = ReadFile(outPath);
        result.err = ReadFile(errPath);
        return result;
    }

    fs::path Path(const std::string& name) const { return m_Dir / name; }

    // Lines of `list --db database` that start with `id` and a tab.
    std::vector<std::string> ListedLinesOf(const std::string& database, const std::string& id) {
        const Result listed = Run({"list", "--db", database});
        EXPECT_EQ(listed.code, 0) << listed.err;
        std::vector<std::string> found;
        for (const auto& line : Lines(listed.out))
            if (line.rfind(id + "\t", 0) == 0) found.push_back(line);
        return found;
    }

    fs::path m_Dir;
    fs::path m_Capture;
};

const std::string kOpenCommentThenNextMaterial =
    "LISTE :\n"                      // 1
    "W A mechanical mm\n"            // 2
    "W B mechanical mm\n"            // 3
    "FIN LISTE\n"                    // 4
    "\n"                             // 5
    "NOM : W A mechanical mm\n"      // 6
    "COMMENTAIRES :\n"               // 7
    "Plate, hot rolled\n"            // 8
    "\n"                             // 9
    "NOM : W B mechanical mm\n"      // 10
    "COMMENTAIRES :\n"               // 11
    "Plate, normalised\n"            // 12
    "FIN COMMENTAIRES\n"             // 13
    "FIN NOM\n";                     // 14

}  // namespace

TEST_F(CliTest, HelpNamesTheCommandsTheDefaultDatabaseAndTheExitCodes) {
    const Result help = Run({"--help"});
    EXPECT_EQ(help.code, 0);
    EXPECT_THAT(help.out, HasSubstr("import"));
    EXPECT_THAT(help.out, HasSubstr("list"));
    EXPECT_THAT(help.out, HasSubstr("check"));
    EXPECT_THAT(help.out, HasSubstr("Exit codes"));
    EXPECT_THAT(help.out, HasSubstr("Examples"));

    const Result importHelp = Run({"import", "--help"});
    EXPECT_EQ(importHelp.code, 0);
    EXPECT_THAT(importHelp.out, HasSubstr("materials.xml"));
    EXPECT_THAT(importHelp.out, HasSubstr("--distortion"));
}

TEST_F(CliTest, UsageErrorsExitWithTwo) {
    EXPECT_EQ(Run({}).code, 2);
    EXPECT_EQ(Run({"frobnicate"}).code, 2);
    EXPECT_EQ(Run({"check"}).code, 2);
    EXPECT_EQ(Run({"list"}).code, 2);
    EXPECT_EQ(Run({"import", "a.mat", "--bogus"}).code, 2);
}

TEST_F(CliTest, ImportCreatesTheDefaultDatabaseAndListShowsItsMaterial) {
    const Result imported = Run({"import", kCorpus + "/S355J2G3.mat"});
    ASSERT_EQ(imported.code, 0) << imported.out << imported.err;
    ASSERT_TRUE(fs::exists(Path("materials.xml")));
    EXPECT_EQ(imported.err, "");
    // The store keeps the material type as a word of its own: "W" on the card is "Weld" there.
    EXPECT_THAT(imported.out, HasSubstr("W_S355J2G3\tLow alloy steels\tWeld\t"));
    EXPECT_THAT(imported.out, HasSubstr("materials in the database (all of them): 1, new: 1\n"));
    EXPECT_THAT(imported.out, HasSubstr("sections read: "));

    const auto listed = ListedLinesOf("materials.xml", "W_S355J2G3");
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].rfind("W_S355J2G3\tLow alloy steels\tWeld\t", 0), 0u) << listed[0];
    EXPECT_THAT(listed[0], HasSubstr("Mechanical_Weld"));
    EXPECT_THAT(listed[0], Not(HasSubstr("\tnew")));
}

TEST_F(CliTest, SecondImportKeepsTheFirstFilesMaterials) {
    ASSERT_EQ(Run({"import", kCorpus + "/S355J2G3.mat", "--db", "steels.xml"}).code, 0);
    const Result second = Run({"import", kCorpus + "/case_hardening_steels.mat", "--db", "steels.xml"});
    ASSERT_EQ(second.code, 0) << second.out << second.err;
    EXPECT_THAT(second.out, HasSubstr("materials in the database (all of them): 3, new: 2\n"));
    // The summary lists every material of the database and marks the ones this import added.
    for (const auto& line : Lines(second.out)) {
        if (line.rfind("W_S355J2G3\t", 0) == 0) {
            EXPECT_THAT(line, Not(HasSubstr("\tnew")));
        }
        if (line.rfind("W_20MnCr5\t", 0) == 0) {
            EXPECT_THAT(line, HasSubstr("\tnew"));
        }
    }
    EXPECT_THAT(second.out, HasSubstr("\nW_S355J2G3\t"));

    EXPECT_EQ(ListedLinesOf("steels.xml", "W_S355J2G3").size(), 1u);
    const auto first = ListedLinesOf("steels.xml", "W_20MnCr5");
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0].rfind("W_20MnCr5\tCase hardening steels\tWeld\t", 0), 0u) << first[0];
    EXPECT_THAT(first[0], HasSubstr("Diffusion_Weld"));
    EXPECT_THAT(first[0], HasSubstr("Thermal_Weld"));
    EXPECT_THAT(first[0], HasSubstr("Mechanical_Weld"));
    const auto second18 = ListedLinesOf("steels.xml", "W_18CrNiMo7-6");
    ASSERT_EQ(second18.size(), 1u);
    EXPECT_EQ(second18[0].rfind("W_18CrNiMo7-6\tCase hardening steels\tWeld\t", 0), 0u) << second18[0];
}

TEST_F(CliTest, DistortionOptionPrefixesTheMaterialType) {
    const Result result = Run({"import", kCorpus + "/S355J2G3.mat", "--db", "db.xml", "--distortion"});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(ListedLinesOf("db.xml", "DEW_S355J2G3").size(), 1u);
    EXPECT_TRUE(ListedLinesOf("db.xml", "W_S355J2G3").empty());
}

TEST_F(CliTest, ImportOfAMissingFileWritesNothing) {
    const Result result = Run({"import", "nothere.mat"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "quillon: nothere.mat: could not open file\n");
    EXPECT_EQ(result.out, "");
    EXPECT_FALSE(fs::exists(Path("materials.xml")));
}

TEST_F(CliTest, ImportOfADirectoryIsAFileThatCannotBeOpened) {
    fs::create_directory(Path("folder.mat"));
    const Result result = Run({"import", "folder.mat", "--db", "db.xml"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "quillon: folder.mat: could not open file\n");
    EXPECT_FALSE(fs::exists(Path("db.xml")));
}

TEST_F(CliTest, ImportPassesOpenSectionsOnAsWarningsAndStillSucceeds) {
    WriteFile(Path("open.mat"), kOpenCommentThenNextMaterial);
    const Result result = Run({"import", "open.mat", "--db", "db.xml"});
    ASSERT_EQ(result.code, 0) << result.err;
    EXPECT_THAT(result.err,
                HasSubstr("quillon: open.mat: warning: FIN COMMENTAIRES not found in NOM : W A mechanical mm\n"));
    EXPECT_TRUE(fs::exists(Path("db.xml")));
}

TEST_F(CliTest, ImportReportsSkippedDuplicates) {
    WriteFile(Path("twice.mat"),
              "NOM : W A mechanical mm\n"
              "Class\nPlates\nEndClass\n"
              "FIN NOM\n"
              "NOM : W A mechanical mm\n"
              "Class\nOther plates\nEndClass\n"
              "FIN NOM\n");
    const Result result = Run({"import", "twice.mat", "--db", "db.xml"});
    ASSERT_EQ(result.code, 0) << result.err;
    const std::string report = "The following duplicates are ignored while reading\nNOM : W A mechanical mm = 1\n";
    ASSERT_GE(result.out.size(), report.size());
    EXPECT_EQ(result.out.substr(result.out.size() - report.size()), report) << "the report closes the summary";
    const auto listed = ListedLinesOf("db.xml", "W_A");
    ASSERT_EQ(listed.size(), 1u);
    EXPECT_EQ(listed[0].rfind("W_A\tPlates\t", 0), 0u) << listed[0];
}

TEST_F(CliTest, MalformedDatabaseIsRefusedAndLeftAsItWas) {
    const std::string broken = "<MaterialDatabase><Record ID=\"x\">";
    WriteFile(Path("db.xml"), broken);
    const Result result = Run({"import", kCorpus + "/S355J2G3.mat", "--db", "db.xml"});
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.err, HasSubstr("quillon: db.xml: could not read database\n"));
    EXPECT_EQ(ReadFile(Path("db.xml")), broken);

    const Result listed = Run({"list", "--db", "db.xml"});
    EXPECT_EQ(listed.code, 1);
    EXPECT_THAT(listed.err, HasSubstr("quillon: db.xml: could not read database\n"));
}

TEST_F(CliTest, UnwritableDatabaseFailsWithItsOwnMessage) {
    const Result result = Run({"import", kCorpus + "/S355J2G3.mat", "--db", "no/such/dir/db.xml"});
    EXPECT_EQ(result.code, 1);
    EXPECT_THAT(result.err, HasSubstr("quillon: no/such/dir/db.xml: could not write database\n"));
}

TEST_F(CliTest, ListOfAMissingDatabase) {
    const Result result = Run({"list", "--db", "none.xml"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "quillon: none.xml: could not read database\n");
    EXPECT_EQ(result.out, "");
}

TEST_F(CliTest, CheckIsSilentOnEveryCorpusFile) {
    int checked = 0;
    for (const auto& entry : fs::directory_iterator(kCorpus)) {
        if (entry.path().extension() != ".mat") continue;
        const Result result = Run({"check", entry.path().string()});
        EXPECT_EQ(result.code, 0) << entry.path() << "\n" << result.out << result.err;
        EXPECT_EQ(result.out, "") << entry.path();
        EXPECT_EQ(result.err, "") << entry.path();
        ++checked;
    }
    EXPECT_GE(checked, 9);
}

TEST_F(CliTest, CheckOfAMissingFile) {
    const Result result = Run({"check", "none.mat"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "quillon: none.mat: could not open file\n");
    EXPECT_EQ(result.out, "");
}

TEST_F(CliTest, CheckReportsAnOpenCommentAtItsKeywordLine) {
    WriteFile(Path("open.mat"), kOpenCommentThenNextMaterial);
    const Result result = Run({"check", "open.mat"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out,
              "open.mat:7: FIN COMMENTAIRES not found in NOM : W A mechanical mm (\"COMMENTAIRES :\" is still open "
              "at the next material, line 10)\n");
    EXPECT_EQ(result.err, "");
}

TEST_F(CliTest, CheckReportsASectionOpenAtTheEndOfTheFile) {
    WriteFile(Path("end.mat"),
              "NOM : W A mechanical mm\n"    // 1
              "\n"                           // 2
              "LABELS :\n"                   // 3
              "E -&1&\n"                     // 4
              "NU 0.3\n"                     // 5
              "FIN NOM\n");                  // 6
    const Result result = Run({"check", "end.mat"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out,
              "end.mat:3: FIN LABELS not found in NOM : W A mechanical mm (\"LABELS :\" is still open at the end "
              "of the file)\n");
}

TEST_F(CliTest, CheckNamesBothLinesOfADuplicateMaterial) {
    WriteFile(Path("twice.mat"),
              "NOM : W A mechanical mm\n"    // 1
              "FIN NOM\n"                    // 2
              "\n"                           // 3
              "NOM : W A mechanical mm\n"    // 4
              "Class\n"                      // 5
              "Plates\n"                     // 6
              "EndClass\n"                   // 7
              "FIN NOM\n");                  // 8
    const Result result = Run({"check", "twice.mat"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out,
              "twice.mat:4: duplicate material \"NOM : W A mechanical mm\" (first at line 1): the import keeps the "
              "first and skips this one up to its \"FIN NOM\" at line 8\n");
}

TEST_F(CliTest, OverlongLineIsReportedAndTheImportRefusesTheFile) {
    WriteFile(Path("long.mat"),
              "NOM : W A mechanical mm\n"                      // 1
              "COMMENTAIRES :\n"                               // 2
              + std::string(9000, 'x') + "\n"                  // 3
              "FIN COMMENTAIRES\n"                             // 4
              "FIN NOM\n");                                    // 5
    const Result checked = Run({"check", "long.mat"});
    EXPECT_EQ(checked.code, 1);
    const std::string finding =
        "long.mat:3: line of 9000 characters after trimming: the import ends the whole process on a line of 8192 "
        "characters or more";
    EXPECT_EQ(checked.out, finding + "\n");

    const Result imported = Run({"import", "long.mat", "--db", "db.xml"});
    EXPECT_EQ(imported.signal, 0);
    EXPECT_EQ(imported.code, 1);
    EXPECT_EQ(Lines(imported.err).at(0), finding);
    EXPECT_EQ(imported.out, "");
    EXPECT_FALSE(fs::exists(Path("db.xml")));
}

TEST_F(CliTest, OverlongLineNeverTouchesAnExistingDatabase) {
    ASSERT_EQ(Run({"import", kCorpus + "/S355J2G3.mat", "--db", "db.xml"}).code, 0);
    const std::string before = ReadFile(Path("db.xml"));
    WriteFile(Path("long.mat"), "NOM : W B mechanical mm\n" + std::string(8192, 'y') + "\nFIN NOM\n");
    const Result imported = Run({"import", "long.mat", "--db", "db.xml"});
    EXPECT_EQ(imported.code, 1);
    EXPECT_THAT(imported.err, HasSubstr("long.mat:2: line of 8192 characters"));
    EXPECT_EQ(ReadFile(Path("db.xml")), before);
}

TEST_F(CliTest, CheckReportsKeywordsWrittenWithOtherCaseOrBlanks) {
    WriteFile(Path("spelling.mat"),
              "LISTE :\n"                    // 1
              "W A thermometal_cp mm\n"      // 2
              "FIN LISTE\n"                  // 3
              "nom : W A thermometal_cp mm\n"// 4
              "MATERIAUX:\n"                 // 5
              "METALLURGY\n"                 // 6
              "PHASE 1\n"                    // 7
              "FIN MATERIAUX\n"              // 8
              "FIN NOM\n");                  // 9
    const Result result = Run({"check", "spelling.mat"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out,
              "spelling.mat:4: \"nom :\" is not the keyword \"NOM :\" (case and blanks count)\n"
              "spelling.mat:5: \"MATERIAUX:\" is not the keyword \"MATERIAUX :\" (case and blanks count)\n");
}

TEST_F(CliTest, CheckReportsADefMaterialBlockFollowedByAnotherSection) {
    WriteFile(Path("def.mat"),
              "NOM : W A mechanical mm\n"    // 1
              "DEF_MATERIAL\n"               // 2
              "MATID = 718\n"                // 3
              "\n"                           // 4
              "LABELS :\n"                   // 5
              "NU 0.3\n"                     // 6
              "FIN LABELS\n"                 // 7
              "FIN NOM\n");                  // 8
    const Result result = Run({"check", "def.mat"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.out,
              "def.mat:2: DEF_MATERIAL is not the last section of the file: its \"name = value\" lines run to the "
              "end of the file, so \"LABELS :\" at line 5 and every line after it are read as pairs too\n");
}
