#include "store/crtkit.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// A file of known content in the temporary directory, removed with the test.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& content) {
        char name[] = "/tmp/crtkit_test_XXXXXX";
        const int descriptor = ::mkstemp(name);
        EXPECT_GE(descriptor, 0);
        path_ = name;
        EXPECT_EQ(::write(descriptor, content.data(), content.size()), static_cast<ssize_t>(content.size()));
        ::close(descriptor);
    }
    ~TemporaryFile() { std::remove(path_.c_str()); }
    const char* path() const { return path_.c_str(); }

private:
    std::string path_;
};

const char* const kMissingPath = "/nonexistent-directory/no-such-file.mat";

TEST(CkFOpen, OpensAnExistingFileAsFopenDoes) {
    TemporaryFile file("LISTE :\n");
    FILE* stream = CkFOpen(file.path(), "rb", __FILE__, __LINE__);
    ASSERT_NE(stream, nullptr);
    char line[32] = {};
    ASSERT_NE(std::fgets(line, sizeof line, stream), nullptr);
    EXPECT_STREQ(line, "LISTE :\n");
    EXPECT_EQ(CkFClose(stream, __FILE__, __LINE__), 0);
}

TEST(CkFOpen, GivesNullForAMissingFileWithErrnoSet) {
    errno = 0;
    EXPECT_EQ(CkFOpen(kMissingPath, "rb", __FILE__, __LINE__), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST(CkFOpen, GivesNullForNullArguments) {
    EXPECT_EQ(CkFOpen(nullptr, "rb", __FILE__, __LINE__), nullptr);
    TemporaryFile file("x");
    EXPECT_EQ(CkFOpen(file.path(), nullptr, __FILE__, __LINE__), nullptr);
}

TEST(CkFOpen, CreatesAFileForWriting) {
    TemporaryFile file("");
    FILE* stream = CkFOpen(file.path(), "wb", nullptr, 0);
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fputs("FIN NOM\n", stream), 1);
    EXPECT_EQ(CkFClose(stream, nullptr, 0), 0);
    FILE* again = std::fopen(file.path(), "rb");
    ASSERT_NE(again, nullptr);
    char line[32] = {};
    ASSERT_NE(std::fgets(line, sizeof line, again), nullptr);
    std::fclose(again);
    EXPECT_STREQ(line, "FIN NOM\n");
}

TEST(CkFClose, GivesEofForANullFile) { EXPECT_EQ(CkFClose(nullptr, __FILE__, __LINE__), EOF); }

TEST(CkAccess, AnswersAsAccessDoes) {
    TemporaryFile file("x");
    EXPECT_EQ(CkAccess(file.path(), 0, __FILE__, __LINE__), 0);
    EXPECT_EQ(CkAccess(file.path(), 4, __FILE__, __LINE__), 0);
    EXPECT_EQ(CkAccess(file.path(), 6, __FILE__, __LINE__), ::access(file.path(), R_OK | W_OK));
    EXPECT_EQ(CkAccess("/tmp", 0, __FILE__, __LINE__), 0);
}

TEST(CkAccess, GivesMinusOneForAMissingOrNullPath) {
    EXPECT_EQ(CkAccess(kMissingPath, 0, __FILE__, __LINE__), -1);
    EXPECT_EQ(CkAccess(nullptr, 0, __FILE__, __LINE__), -1);
}

TEST(CkFileCalls, StayQuietOnSuccessAndFailure) {
    TemporaryFile file("x");
    CaptureStderr();
    FILE* stream = CkFOpen(file.path(), "rb", "cardsetimport", 76);
    CkFClose(stream, "cardsetimport", 37);
    CkFOpen(kMissingPath, "rb", "cardsetimport", 76);
    CkAccess(kMissingPath, 0, "cardsetexport", 1);
    EXPECT_EQ(GetCapturedStderr(), "");
}

// Sets or clears the variable for one test and puts back what was there.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        const char* old = std::getenv(name);
        if (old != nullptr) {
            hadOld_ = true;
            old_ = old;
        }
        if (value == nullptr) ::unsetenv(name);
        else ::setenv(name, value, 1);
    }
    ~ScopedVariable() {
        if (hadOld_) ::setenv(name_, old_.c_str(), 1);
        else ::unsetenv(name_);
    }

private:
    const char* name_;
    bool hadOld_ = false;
    std::string old_;
};

TEST(CkIsDLLUnloadWarningEnabled, IsOffWhenTheVariableIsUnsetEmptyOrZero) {
    {
        ScopedVariable variable("CK_DLL_UNLOAD_WARNING", nullptr);
        EXPECT_FALSE(CkIsDLLUnloadWarningEnabled());
    }
    {
        ScopedVariable variable("CK_DLL_UNLOAD_WARNING", "");
        EXPECT_FALSE(CkIsDLLUnloadWarningEnabled());
    }
    {
        ScopedVariable variable("CK_DLL_UNLOAD_WARNING", "0");
        EXPECT_FALSE(CkIsDLLUnloadWarningEnabled());
    }
}

TEST(CkIsDLLUnloadWarningEnabled, IsOnForAnyOtherValue) {
    for (const char* value : {"1", "yes", "00", "true"}) {
        ScopedVariable variable("CK_DLL_UNLOAD_WARNING", value);
        EXPECT_TRUE(CkIsDLLUnloadWarningEnabled()) << value;
    }
}

TEST(CkWriteConsoleMessage, FormatsNarrowTextAndNumbers) {
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"'%s' has %d sections", "S355J2G3.mat", 14);
    EXPECT_EQ(GetCapturedStderr(), "'S355J2G3.mat' has 14 sections\n");
}

TEST(CkWriteConsoleMessage, WritesAPlainMessageAsItStands) {
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"'%s' dll is getting unloaded with application still running!", "Quillon");
    EXPECT_EQ(GetCapturedStderr(), "'Quillon' dll is getting unloaded with application still running!\n");
}

TEST(CkWriteConsoleMessage, DoesNotDoubleALineFeedAlreadyThere) {
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"line %d\n", 1);
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"two\nlines");
    EXPECT_EQ(GetCapturedStderr(), "line 1\ntwo\nlines\n");
}

TEST(CkWriteConsoleMessage, PrefixesWarningsAndErrors) {
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_WARNING, L"%d missing", 2);
    CkWriteConsoleMessage(CK_MESSAGE_ERROR, L"%s", "stop");
    EXPECT_EQ(GetCapturedStderr(), "Warning: 2 missing\nError: stop\n");
}

TEST(CkWriteConsoleMessage, WritesWideTextAsUtf8) {
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"%ls \u00e9 \u20ac", L"Mat\u00e9riaux");
    EXPECT_EQ(GetCapturedStderr(), "Mat\xC3\xA9riaux \xC3\xA9 \xE2\x82\xAC\n");
}

TEST(CkWriteConsoleMessage, WritesMessagesLongerThanItsFirstBuffer) {
    const std::string longText(5000, 'a');
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"<%s>", longText.c_str());
    EXPECT_EQ(GetCapturedStderr(), "<" + longText + ">\n");
}

TEST(CkWriteConsoleMessage, IgnoresANullFormat) {
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, nullptr);
    EXPECT_EQ(GetCapturedStderr(), "");
}

TEST(CkWriteConsoleMessage, LeavesTheOrientationOfStderrOpen) {
    CaptureStderr();
    CkWriteConsoleMessage(CK_MESSAGE_PLAIN, L"x");
    // A byte write must still be possible: the call did not make stderr a wide stream.
    EXPECT_LE(std::fwide(stderr, 0), 0);
    std::fputs("y\n", stderr);
    std::fflush(stderr);
    EXPECT_EQ(GetCapturedStderr(), "x\ny\n");
}

}  // namespace
