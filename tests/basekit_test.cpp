#include "store/basekit.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace {

namespace fs = std::filesystem;

// "é" and "ü" as UTF-8 bytes, and as wide characters.
const char* const kEAcuteUtf8 = "\xC3\xA9";
const char* const kUUmlautUtf8 = "\xC3\xBC";

// ---- BkString ----------------------------------------------------------------

TEST(BkStringTest, NarrowTextIsReadAsUtf8) {
  const std::string narrow = std::string("Caract") + kEAcuteUtf8 + "ristique";
  BkString text(narrow.c_str(), 0);
  EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(text)), L"Caract\u00e9ristique");
}

TEST(BkStringTest, NonAsciiTextSurvivesTheRoundTripThroughWideText) {
  const std::string narrow = std::string("Gl") + kUUmlautUtf8 + "hen " + kEAcuteUtf8 + " \xE2\x82\xAC \xF0\x9F\x94\xA5";
  BkString text(narrow.c_str(), 0);
  EXPECT_EQ(std::string(text.GetAnsiBuffer()), narrow);

  BkString wide(L"Gl\u00fchen \u00e9", 0);
  EXPECT_EQ(std::string(wide.GetAnsiBuffer()), std::string("Gl") + kUUmlautUtf8 + "hen " + kEAcuteUtf8);
}

TEST(BkStringTest, BytesThatAreNotUtf8ComeBackUnchanged) {
  const std::string latin1 = "Caract\xE9ristique \xFC \xC3";  // ISO-8859-1 and a cut sequence
  BkString text(latin1.c_str(), 0);
  EXPECT_EQ(std::string(text.GetAnsiBuffer()), latin1);
}

TEST(BkStringTest, ConversionDoesNotDependOnTheProcessLocale) {
  const char* previous = std::setlocale(LC_ALL, nullptr);
  const std::string saved = previous != nullptr ? previous : "C";
  std::setlocale(LC_ALL, "C");
  BkString text(kEAcuteUtf8, 0);
  EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(text)), L"\u00e9");
  EXPECT_EQ(std::string(text.GetAnsiBuffer()), kEAcuteUtf8);
  std::setlocale(LC_ALL, saved.c_str());
}

TEST(BkStringTest, AssignmentTakesNarrowAndWideText) {
  BkString text("first", 0);
  text = L"second";
  EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(text)), L"second");
  text = "third";
  EXPECT_EQ(std::string(text.GetAnsiBuffer()), "third");
  text = static_cast<const char*>(nullptr);
  EXPECT_NE(text.IsEmpty(), 0);
}

TEST(BkStringTest, AppendingAddsNarrowTextAtTheEnd) {
  BkString text(L"KORA", 0);
  text += "/";
  text += kEAcuteUtf8;
  text += nullptr;
  EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(text)), L"KORA/\u00e9");
}

TEST(BkStringTest, FindGivesThePositionWithExactCase) {
  BkString name("C:\\data\\METALLURGY.mat", 0);
  EXPECT_EQ(name.Find(L"METALLURGY.mat", 0), 8);
  EXPECT_LT(name.Find(L"metallurgy.mat", 0), 0);
  EXPECT_LT(name.Find(L"absent", 0), 0);
  EXPECT_EQ(name.Find(L"a", 0), 4);
  EXPECT_EQ(name.Find(L"a", 5), 6);
  EXPECT_EQ(name.Find(L"mat", 0), 19);
}

TEST(BkStringTest, FindOutsideTheTextIsNegative) {
  BkString name("abc", 0);
  EXPECT_LT(name.Find(L"a", -1), 0);
  EXPECT_LT(name.Find(L"a", 4), 0);
  EXPECT_LT(name.Find(nullptr, 0), 0);
}

TEST(BkStringTest, IsEmptyOnlyForEmptyText) {
  EXPECT_NE(BkString("", 0).IsEmpty(), 0);
  EXPECT_NE(BkString(static_cast<const wchar_t*>(nullptr), 0).IsEmpty(), 0);
  EXPECT_NE(BkString().IsEmpty(), 0);
  EXPECT_EQ(BkString(" ", 0).IsEmpty(), 0);
  EXPECT_EQ(BkString(L"x", 0).IsEmpty(), 0);
}

TEST(BkStringTest, NarrowBufferStaysPutWhileTheTextIsUnchanged) {
  BkString text("METALLURGY", 0);
  char* first = text.GetAnsiBuffer();
  char* second = text.GetAnsiBuffer();
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, "METALLURGY");
  text += ".mat";
  EXPECT_STREQ(text.GetAnsiBuffer(), "METALLURGY.mat");
}

TEST(BkStringTest, CopiesAreIndependent) {
  BkString original("a", 0);
  BkString copy(original);
  copy += "b";
  EXPECT_STREQ(original.GetAnsiBuffer(), "a");
  EXPECT_STREQ(copy.GetAnsiBuffer(), "ab");
  original = copy;
  EXPECT_STREQ(original.GetAnsiBuffer(), "ab");
}

// ---- BkFileUtl -----------------------------------------------------------------

struct PathCase {
  const char* path;
  const wchar_t* fileName;
  const wchar_t* directory;
};

class BkFileUtlPathTest : public ::testing::TestWithParam<PathCase> {};

TEST_P(BkFileUtlPathTest, SplitsIntoDirectoryEndingInItsSeparatorAndFileName) {
  const PathCase& c = GetParam();
  BkFileUtl path(c.path, 0);
  EXPECT_EQ(std::wstring(path.GetFileName()), c.fileName);
  EXPECT_EQ(std::wstring(path.GetPath()), c.directory);
  // A file name appended to the directory as it stands gives the path back.
  BkString joined(path.GetPath(), 0);
  joined += BkString(path.GetFileName(), 0).GetAnsiBuffer();
  EXPECT_STREQ(joined.GetAnsiBuffer(), c.path);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, BkFileUtlPathTest,
    ::testing::Values(PathCase{"C:\\data\\METALLURGY.mat", L"METALLURGY.mat", L"C:\\data\\"},
                      PathCase{"/tmp/x/METALLURGY.mat", L"METALLURGY.mat", L"/tmp/x/"},
                      PathCase{"METALLURGY.mat", L"METALLURGY.mat", L""},
                      PathCase{"a/b\\c.mat", L"c.mat", L"a/b\\"},
                      PathCase{"/export/", L"", L"/export/"},
                      PathCase{"/METALLURGY.DAT", L"METALLURGY.DAT", L"/"},
                      PathCase{"", L"", L""}));

class BkFileUtlFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "quillon-basekit-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    m_Dir = pattern;
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(m_Dir, ignored);
  }
  std::string Path(const std::string& name) const { return m_Dir + "/" + name; }
  static std::wstring Wide(const std::string& narrow) {
    return std::wstring(static_cast<const wchar_t*>(BkString(narrow.c_str(), 0)));
  }
  static std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  std::string m_Dir;
};

TEST_F(BkFileUtlFilesTest, CopyInCopiesTheFileByteForByte) {
  std::string content("LISTE :\r\nS355\0J2\n", 17);
  content += std::string(200000, 'x');  // more than one buffer
  std::ofstream(Path("METALLURGY.DAT"), std::ios::binary) << content;
  BkFileUtl source(Path("METALLURGY.DAT").c_str(), 0);
  ASSERT_NE(source.CopyIn(Wide(Path("METALLURGY_metallurgy.mat")).c_str()), 0);
  EXPECT_EQ(Read(Path("METALLURGY_metallurgy.mat")), content);
  EXPECT_EQ(Read(Path("METALLURGY.DAT")), content);
}

TEST_F(BkFileUtlFilesTest, CopyInReplacesAnExistingFile) {
  std::ofstream(Path("new.dat"), std::ios::binary) << "new";
  std::ofstream(Path("old.mat"), std::ios::binary) << "old and longer";
  ASSERT_NE(BkFileUtl(Path("new.dat").c_str(), 0).CopyIn(Wide(Path("old.mat")).c_str()), 0);
  EXPECT_EQ(Read(Path("old.mat")), "new");
}

TEST_F(BkFileUtlFilesTest, CopyInOntoItselfKeepsTheFile) {
  std::ofstream(Path("same.dat"), std::ios::binary) << "content";
  ASSERT_NE(BkFileUtl(Path("same.dat").c_str(), 0).CopyIn(Wide(Path("./same.dat")).c_str()), 0);
  EXPECT_EQ(Read(Path("same.dat")), "content");
}

TEST_F(BkFileUtlFilesTest, CopyInFailsWithoutSourceOrTargetDirectory) {
  EXPECT_EQ(BkFileUtl(Path("absent.dat").c_str(), 0).CopyIn(Wide(Path("copy.mat")).c_str()), 0);
  EXPECT_FALSE(fs::exists(Path("copy.mat")));
  std::ofstream(Path("present.dat"), std::ios::binary) << "x";
  EXPECT_EQ(BkFileUtl(Path("present.dat").c_str(), 0)
                .CopyIn(Wide(Path("missing/copy.mat")).c_str()),
            0);
  EXPECT_EQ(BkFileUtl(m_Dir.c_str(), 0).CopyIn(Wide(Path("dir.mat")).c_str()), 0);
  EXPECT_EQ(BkFileUtl(Path("present.dat").c_str(), 0).CopyIn(nullptr), 0);
}

TEST_F(BkFileUtlFilesTest, IsDirectoryNameOnlyForExistingDirectories) {
  std::ofstream(Path("file.mat"), std::ios::binary) << "x";
  EXPECT_NE(BkFileUtl::IsDirectoryName(Wide(m_Dir).c_str()), 0);
  EXPECT_NE(BkFileUtl::IsDirectoryName(Wide(m_Dir + "/").c_str()), 0);
  EXPECT_EQ(BkFileUtl::IsDirectoryName(Wide(Path("file.mat")).c_str()), 0);
  EXPECT_EQ(BkFileUtl::IsDirectoryName(Wide(Path("absent")).c_str()), 0);
  EXPECT_EQ(BkFileUtl::IsDirectoryName(L""), 0);
  EXPECT_EQ(BkFileUtl::IsDirectoryName(nullptr), 0);
}

TEST_F(BkFileUtlFilesTest, NonAsciiFileNamesAreUsedAsUtf8) {
  const std::string name = std::string("Mat") + kEAcuteUtf8 + "riau.dat";
  std::ofstream(Path(name), std::ios::binary) << "x";
  BkFileUtl source(Path(name).c_str(), 0);
  EXPECT_EQ(std::wstring(source.GetFileName()), L"Mat\u00e9riau.dat");
  ASSERT_NE(source.CopyIn(Wide(Path(std::string("copie ") + kEAcuteUtf8)).c_str()), 0);
  EXPECT_TRUE(fs::exists(Path(std::string("copie ") + kEAcuteUtf8)));
}

TEST(BkFileUtlTest, IsDestroyedThroughItsBaseClass) {
  EXPECT_TRUE(std::has_virtual_destructor<BkFileUtl>::value);
}

// ---- Variables --------------------------------------------------------------------

TEST(BkVariableTest, ValueOfASetVariableIsItsWideText) {
  ASSERT_EQ(setenv("QUILLON_TEST_PATH", (std::string("/r") + kEAcuteUtf8 + "s").c_str(), 1), 0);
  const wchar_t* value = BkVariableGetValue(L"QUILLON_TEST_PATH", 1);
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(std::wstring(value), L"/r\u00e9s");
  BkString taken(value, 0);
  EXPECT_EQ(taken.IsEmpty(), 0);
  unsetenv("QUILLON_TEST_PATH");
}

TEST(BkVariableTest, UnsetVariableGivesNullAndEmptyOneEmptyText) {
  unsetenv("QUILLON_TEST_UNSET");
  EXPECT_EQ(BkVariableGetValue(L"QUILLON_TEST_UNSET", 1), nullptr);
  ASSERT_EQ(setenv("QUILLON_TEST_EMPTY", "", 1), 0);
  const wchar_t* empty = BkVariableGetValue(L"QUILLON_TEST_EMPTY", 1);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(std::wstring(empty), L"");
  unsetenv("QUILLON_TEST_EMPTY");
  EXPECT_EQ(BkVariableGetValue(nullptr, 1), nullptr);
}

TEST(BkVariableTest, ValueStaysValidWhileOtherNamesAreLookedUp) {
  ASSERT_EQ(setenv("QUILLON_TEST_A", "first", 1), 0);
  ASSERT_EQ(setenv("QUILLON_TEST_B", "second", 1), 0);
  const wchar_t* a = BkVariableGetValue(L"QUILLON_TEST_A", 1);
  const wchar_t* b = BkVariableGetValue(L"QUILLON_TEST_B", 1);
  ASSERT_NE(a, nullptr);
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(std::wstring(a), L"first");
  EXPECT_EQ(std::wstring(b), L"second");
  ASSERT_EQ(setenv("QUILLON_TEST_A", "changed", 1), 0);
  EXPECT_EQ(std::wstring(BkVariableGetValue(L"QUILLON_TEST_A", 1)), L"changed");
  unsetenv("QUILLON_TEST_A");
  unsetenv("QUILLON_TEST_B");
}

struct BooleanCase {
  const char* value;  // null: the variable is unset
  int fallback;
  int expected;
};

class BkVariableBooleanTest : public ::testing::TestWithParam<BooleanCase> {};

TEST_P(BkVariableBooleanTest, ReadsTruthWordsWithoutRegardToCase) {
  const BooleanCase& c = GetParam();
  if (c.value != nullptr) {
    ASSERT_EQ(setenv("QUILLON_TEST_FLAG", c.value, 1), 0);
  } else {
    unsetenv("QUILLON_TEST_FLAG");
  }
  EXPECT_EQ(BkVariableGetBoolean(L"QUILLON_TEST_FLAG", c.fallback), c.expected);
  unsetenv("QUILLON_TEST_FLAG");
}

INSTANTIATE_TEST_SUITE_P(
    Words, BkVariableBooleanTest,
    ::testing::Values(BooleanCase{"1", 0, 1}, BooleanCase{"true", 0, 1},
                      BooleanCase{"TRUE", 0, 1}, BooleanCase{"Yes", 0, 1},
                      BooleanCase{"on", 0, 1}, BooleanCase{" on ", 0, 1},
                      BooleanCase{"0", 1, 0}, BooleanCase{"false", 1, 0},
                      BooleanCase{"No", 1, 0}, BooleanCase{"OFF", 1, 0},
                      BooleanCase{"maybe", 0, 0}, BooleanCase{"maybe", 1, 1},
                      BooleanCase{"2", 7, 7}, BooleanCase{"", 5, 5},
                      BooleanCase{nullptr, 0, 0}, BooleanCase{nullptr, 1, 1}));

TEST(BkVariableTest, NullNameGivesTheFallback) {
  EXPECT_EQ(BkVariableGetBoolean(nullptr, 1), 1);
  EXPECT_EQ(BkVariableGetBoolean(nullptr, 0), 0);
}

// ---- Messages ------------------------------------------------------------------------

TEST(BkOutputMessageTest, DefaultWritesUtf8ToStandardErrorEndingInALineFeed) {
  BkSetMessageHandler(nullptr);
  ::testing::internal::CaptureStderr();
  BkOutputMessage(2, L"Section not found in METALLURGY \u00e9");
  BkOutputMessage(1, L"already ended\n");
  const std::string written = ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(written, std::string("Section not found in METALLURGY ") + kEAcuteUtf8 +
                         "\nalready ended\n");
}

std::vector<std::pair<int, std::wstring>> g_Messages;
void RecordMessage(int kind, const wchar_t* text) { g_Messages.emplace_back(kind, text); }

TEST(BkOutputMessageTest, InstalledHandlerReceivesKindAndText) {
  g_Messages.clear();
  BkSetMessageHandler(RecordMessage);
  ::testing::internal::CaptureStderr();
  BkOutputMessage(1, L"TABLE 100 have too many points,exceeds 5 lines");
  BkOutputMessage(2, L"warning");
  BkOutputMessage(2, nullptr);
  const std::string written = ::testing::internal::GetCapturedStderr();
  BkSetMessageHandler(nullptr);
  EXPECT_EQ(written, "");
  ASSERT_EQ(g_Messages.size(), 2u);
  EXPECT_EQ(g_Messages[0].first, 1);
  EXPECT_EQ(g_Messages[0].second, L"TABLE 100 have too many points,exceeds 5 lines");
  EXPECT_EQ(g_Messages[1].first, 2);
}

TEST(BkOutputMessageTest, NullHandlerRestoresTheDefault) {
  g_Messages.clear();
  BkSetMessageHandler(RecordMessage);
  BkSetMessageHandler(nullptr);
  ::testing::internal::CaptureStderr();
  BkOutputMessage(1, L"back to stderr");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "back to stderr\n");
  EXPECT_TRUE(g_Messages.empty());
}

// ---- Conversion scope -------------------------------------------------------------------

TEST(BkConversionAllocatorTest, ConversionsWorkTheSameWhileItIsHeld) {
  EXPECT_TRUE(std::is_default_constructible<BkConversionAllocator>::value);
  BkConversionAllocator scope;
  BkString text(kUUmlautUtf8, 0);
  EXPECT_EQ(std::wstring(static_cast<const wchar_t*>(text)), L"\u00fc");
}

}  // namespace
