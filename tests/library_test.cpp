#include "core/library.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <regex>
#include <string>

namespace {

namespace fs = std::filesystem;

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

const char* const kUnloadWarning = "'Quillon' dll is getting unloaded with application still running!\n";

std::string LoadedLibraryPath() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&Quillon_get_module_info), &info) == 0 || info.dli_fname == nullptr) return "";
    return info.dli_fname;
}

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

// --- module information ---------------------------------------------------------------------------

TEST(ModuleInfo, ZeroGivesTheKindOfModule) { EXPECT_STREQ(Quillon_get_module_info(0), "Dynamic linked library"); }

TEST(ModuleInfo, OneGivesTheVersionText) { EXPECT_STREQ(Quillon_get_module_info(1), "24.0.0.000"); }

TEST(ModuleInfo, AnyOtherValueGivesTheOneLineVersionRecord) {
    const std::string record = Quillon_get_module_info(-1);
    const std::regex shape(
        "Quillon version 24\\.0\\.0\\.000 \\(see README\\.md\\) built on .+ "
        "[A-Z][a-z]{2} [ 0-9][0-9] [0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}");
    EXPECT_TRUE(std::regex_match(record, shape)) << record;
    EXPECT_EQ(record.find('\n'), std::string::npos);
    EXPECT_STREQ(Quillon_get_module_info(2), record.c_str());
    EXPECT_STREQ(Quillon_get_module_info(INT_MIN), record.c_str());
    EXPECT_STREQ(Quillon_get_module_info(INT_MAX), record.c_str());
}

TEST(ModuleInfo, VersionRecordNamesTheBuildMachine) {
    const std::string record = Quillon_get_module_info(3);
    const std::string afterOn = record.substr(record.find(" built on ") + 10);
    EXPECT_FALSE(afterOn.empty());
    EXPECT_NE(afterOn.front(), ' ');
}

TEST(LibraryCalls, InitializeTerminateAndKeepLoadedDoNothing) {
    CaptureStderr();
    QuillonInitialize();
    QuillonTerminate();
    __localFnToKeepQuillonDllLoaded();
    QuillonInitialize();
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_STREQ(Quillon_get_module_info(1), "24.0.0.000");
}

// --- pinning --------------------------------------------------------------------------------------

TEST(LibraryPinning, LibraryStaysLoadedAfterItsHandlesAreClosed) {
    const std::string path = LoadedLibraryPath();
    ASSERT_FALSE(path.empty());
    void* first = dlopen(path.c_str(), RTLD_NOW);
    ASSERT_NE(first, nullptr) << dlerror();
    void* second = dlopen(path.c_str(), RTLD_NOW);
    ASSERT_NE(second, nullptr) << dlerror();
    EXPECT_EQ(dlclose(first), 0);
    EXPECT_EQ(dlclose(second), 0);
    void* still = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(still, nullptr);
    dlclose(still);
    EXPECT_STREQ(Quillon_get_module_info(0), "Dynamic linked library");
}

TEST(LibraryPinning, PinningAgainDoesNoHarm) {
    EXPECT_TRUE(quillon::PinLibrary());
    EXPECT_TRUE(quillon::PinLibrary());
    const std::string path = LoadedLibraryPath();
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(handle, nullptr);
    dlclose(handle);
    EXPECT_STREQ(Quillon_get_module_info(1), "24.0.0.000");
}

// The library this test is linked with can never be unloaded anyway, so the pinning is shown on a
// second copy of it loaded at run time, which would leave at dlclose were it not pinned.
TEST(LibraryPinning, ACopyLoadedAtRunTimeIsNotUnloadedByDlclose) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer refuses RTLD_DEEPBIND, which keeps the copy bound to itself";
#else
    const std::string path = LoadedLibraryPath();
    ASSERT_FALSE(path.empty());
    char directory[] = "/tmp/library_test_XXXXXX";
    ASSERT_NE(::mkdtemp(directory), nullptr);
    const fs::path copy = fs::path(directory) / "libquillon_copy.so";
    fs::copy_file(path, copy);

    // RTLD_DEEPBIND: the copy must use its own functions and tables, not those of the library
    // already loaded, or it would pin that one instead of itself.
    for (int round = 0; round < 2; ++round) {
        void* handle = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
        ASSERT_NE(handle, nullptr) << dlerror();
        void* info = dlsym(handle, "Quillon_get_module_info");
        ASSERT_NE(info, nullptr);
        EXPECT_NE(info, reinterpret_cast<void*>(&Quillon_get_module_info));
        EXPECT_EQ(dlclose(handle), 0);
        void* still = dlopen(copy.c_str(), RTLD_NOW | RTLD_NOLOAD);
        ASSERT_NE(still, nullptr) << "the copy was unloaded";
        dlclose(still);
    }
    fs::remove_all(directory);
#endif
}

// --- the unload warning ---------------------------------------------------------------------------

TEST(UnloadWarning, WritesTheWarningWhenEnabledAndTheProcessGoesOn) {
    ScopedVariable enabled("CK_DLL_UNLOAD_WARNING", "1");
    CaptureStderr();
    EXPECT_TRUE(quillon::UnloadWarning(false));
    EXPECT_EQ(GetCapturedStderr(), kUnloadWarning);
}

TEST(UnloadWarning, StaysQuietWhenNotEnabled) {
    {
        ScopedVariable disabled("CK_DLL_UNLOAD_WARNING", nullptr);
        CaptureStderr();
        EXPECT_FALSE(quillon::UnloadWarning(false));
        EXPECT_EQ(GetCapturedStderr(), "");
    }
    {
        ScopedVariable disabled("CK_DLL_UNLOAD_WARNING", "0");
        CaptureStderr();
        EXPECT_FALSE(quillon::UnloadWarning(false));
        EXPECT_EQ(GetCapturedStderr(), "");
    }
}

TEST(UnloadWarning, NeverWritesWhenTheProcessIsEnding) {
    for (const char* value : {"1", static_cast<const char*>(nullptr)}) {
        ScopedVariable variable("CK_DLL_UNLOAD_WARNING", value);
        CaptureStderr();
        EXPECT_FALSE(quillon::UnloadWarning(true));
        EXPECT_EQ(GetCapturedStderr(), "");
    }
}

// Runs `body` in a child process with stderr into a pipe, and gives back what the child wrote.
template <typename Body>
std::string StderrOfChild(Body body) {
    int pipeEnds[2];
    if (::pipe(pipeEnds) != 0) return "<no pipe>";
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeEnds[0]);
        ::dup2(pipeEnds[1], STDERR_FILENO);
        body();
        ::_exit(99);  // not reached: the body ends the process
    }
    ::close(pipeEnds[1]);
    std::string written;
    char buffer[512];
    ssize_t got;
    while ((got = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0) written.append(buffer, static_cast<size_t>(got));
    ::close(pipeEnds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return written;
}

TEST(UnloadWarning, IsNotWrittenWhenTheProcessExits) {
    const std::string written = StderrOfChild([] {
        ::setenv("CK_DLL_UNLOAD_WARNING", "1", 1);
        std::exit(0);
    });
    EXPECT_EQ(written.find("dll is getting unloaded"), std::string::npos) << written;
}

}  // namespace
