// Inputs that once ended the whole process of `quillon import` although its guard had passed them,
// and their near neighbours that must still import as before. The line reader ends the process on
// a trimmed text of 8192 characters or more by design; the guard (`quillon check`'s reader) has to
// see every text the readers will trim, including those that start inside a line:
// - behind a NUL byte, which ends the text that a read from the line's start sees;
// - inside a line longer than the readers' 0x40000-byte buffer, when the locator recorded a section
//   in the middle of it, since the reads from there fall into other pieces.

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

namespace {

const std::string kTool = std::string(QUILLON_BINARY_DIR) + "/cli/quillon";
constexpr size_t kLocatorPiece = 1023;
constexpr size_t kReaderPiece = 0x40000 - 1;

struct ToolRun {
    int code = -1;    // exit code, -1 when the process did not exit normally
    int signal = 0;   // the signal that ended it
    std::string out;  // standard output and error together
};

class FuzzRegressions : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(fs::exists(kTool)) << kTool << " is not built";
        const char* base = std::getenv("TMPDIR");
        m_Dir = fs::path(base != nullptr && base[0] != '\0' ? base : "/tmp") /
                ("quillon_fuzzregressions_" + std::to_string(getpid()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(m_Dir);
        fs::create_directories(m_Dir);
    }
    void TearDown() override {
        if (!HasFailure()) fs::remove_all(m_Dir);
    }

    fs::path Write(const std::string& name, const std::string& bytes) {
        const fs::path path = m_Dir / name;
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out << bytes;
        return path;
    }

    ToolRun Tool(const std::string& arguments) {
        const fs::path log = m_Dir / "tool.log";
        const std::string command = "'" + kTool + "' " + arguments + " >'" + log.string() + "' 2>&1";
        const int status = std::system(command.c_str());
        ToolRun run;
        if (WIFEXITED(status)) run.code = WEXITSTATUS(status);
        // std::system runs the tool under a shell, which reports a signal as 128 + its number.
        if (run.code > 128) run.signal = run.code - 128;
        if (WIFSIGNALED(status)) run.signal = WTERMSIG(status);
        std::ifstream in(log, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        run.out = text.str();
        return run;
    }

    // `quillon import` must turn the file away (exit 1, the database never written), not die.
    void ExpectRefused(const fs::path& card) {
        const fs::path database = m_Dir / "refused.xml";
        const ToolRun check = Tool("check '" + card.string() + "'");
        EXPECT_EQ(check.code, 1) << check.out;
        EXPECT_NE(check.out.find("characters after trimming"), std::string::npos) << check.out;
        const ToolRun import = Tool("import '" + card.string() + "' --db '" + database.string() + "'");
        EXPECT_EQ(import.signal, 0) << "the import died: " << import.out;
        EXPECT_EQ(import.code, 1) << import.out;
        EXPECT_NE(import.out.find("not imported"), std::string::npos) << import.out;
        EXPECT_FALSE(fs::exists(database));
    }

    // Within the limits, the guard says nothing about length and the import runs to its end.
    void ExpectImported(const fs::path& card) {
        const fs::path database = m_Dir / "imported.xml";
        const ToolRun check = Tool("check '" + card.string() + "'");
        EXPECT_EQ(check.out.find("characters after trimming"), std::string::npos) << check.out;
        const ToolRun import = Tool("import '" + card.string() + "' --db '" + database.string() + "'");
        EXPECT_EQ(import.signal, 0) << "the import died: " << import.out;
        EXPECT_EQ(import.code, 0) << import.out;
        EXPECT_TRUE(fs::exists(database));
    }

    fs::path m_Dir;
};

// A line that starts with a NUL byte, then blanks to the end of the locator's first piece, then a
// material header and more text than the reader takes.
std::string HeaderBehindNul(size_t tail) {
    return std::string(1, '\0') + std::string(kLocatorPiece - 1, ' ') + "NOM : W A mechanical mm " +
           std::string(tail, 'a') + "\nFIN NOM\n";
}

// A line longer than the reader's buffer, blank but for one run of text that starts at a piece of
// the locator (`shift` bytes into it) and straddles the first piece boundary of the reader: each of
// the reader's pieces from the line's start holds under 8192 characters of it.
std::string StraddlingLongLine(size_t shift, const std::string& opening) {
    const size_t start = kLocatorPiece * 252 + shift;  // 4347 - shift bytes before the boundary
    const size_t end = kReaderPiece + 4000;
    std::string line(270000, ' ');
    const std::string text = opening + std::string(end - start - opening.size(), 'b');
    line.replace(start, text.size(), text);
    return line;
}

TEST_F(FuzzRegressions, HeaderBehindANulByteWithAnOverlongRestIsRefused) {
    ExpectRefused(Write("nul.mat", HeaderBehindNul(9000)));
}

TEST_F(FuzzRegressions, HeaderBehindANulByteWithAShortRestStillImports) {
    ExpectImported(Write("nul-short.mat", HeaderBehindNul(100)));
}

TEST_F(FuzzRegressions, HeaderInsideALineLongerThanTheReaderBufferIsRefused) {
    ExpectRefused(Write("long.mat", "LISTE :\nW A mechanical mm\nFIN LISTE\n" +
                                        StraddlingLongLine(0, "NOM : W B mechanical mm ") + "\nFIN NOM\n"));
}

TEST_F(FuzzRegressions, LineLongerThanTheReaderBufferWithoutAHeaderInsideStillImports) {
    // The same run of text one byte later: the locator's piece no longer starts with the header, so
    // the readers meet the line only from its start, in pieces within the limit.
    ExpectImported(Write("long-comment.mat", "NOM : W A mechanical mm\nCOMMENTAIRES :\n" +
                                                 StraddlingLongLine(1, "xNOM : W B mechanical mm ") +
                                                 "\nFIN COMMENTAIRES\nFIN NOM\n"));
}

}  // namespace
