// A material database survives `kill -9` of `quillon import` at any moment: the built tool imports
// a large generated card file into an existing database and is killed at the start, while it reads,
// as the save begins, in the middle of the save and right after the temporary file is complete.
// Each time the database file must be byte for byte what it was, or (only where the kill may have
// come after the rename) byte for byte what a completed run writes; never anything in between.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "store/orvane.h"

extern char** environ;

namespace fs = std::filesystem;

namespace {

const std::string kTool = std::string(QUILLON_BINARY_DIR) + "/cli/quillon";
const std::string kGenerator = std::string(QUILLON_TOOLS_DIR) + "/gen_large_mat.py";
const std::string kSmallCardFile = std::string(QUILLON_CORPUS_DIR) + "/S355J2G3.mat";
// Large enough that reading and saving take a while to kill into. The sanitizer build runs the
// same moments on a smaller file, as its tool is several times slower.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kMaterials = 40;
#else
constexpr int kMaterials = 200;
#endif

std::string ReadBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void WriteBytes(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

// Runs a program with its output sent to `log`; returns its pid, or -1.
pid_t Spawn(const std::vector<std::string>& args, const fs::path& log) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    std::vector<char*> argv;
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    pid_t pid = -1;
    const int failed = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return failed == 0 ? pid : -1;
}

int WaitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return status;
}

bool Exited(pid_t pid, int& status) {
    const pid_t done = waitpid(pid, &status, WNOHANG);
    return done == pid;
}

// Bytes the process has read so far (its rchar), or -1 once it is gone.
long long BytesRead(pid_t pid) {
    std::ifstream io("/proc/" + std::to_string(pid) + "/io");
    for (std::string line; std::getline(io, line);) {
        if (line.rfind("rchar:", 0) == 0) return std::atoll(line.c_str() + 6);
    }
    return -1;
}

std::vector<fs::path> TemporaryFiles(const fs::path& database) {
    std::vector<fs::path> found;
    const std::string prefix = database.filename().string() + ".tmp";
    for (const auto& entry : fs::directory_iterator(database.parent_path())) {
        if (entry.path().filename().string().rfind(prefix, 0) == 0) found.push_back(entry.path());
    }
    return found;
}

// What a scenario saw when it killed the import.
struct KillOutcome {
    bool killed = false;           // SIGKILL ended it (rather than a normal exit first)
    bool temporaryExisted = false; // a temporary save file stood beside the database at the kill
    int status = 0;
};

class KillSafetyTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const char* base = std::getenv("TMPDIR");
        s_Dir = fs::path(base != nullptr && base[0] != '\0' ? base : "/tmp") /
                ("quillon_killsafety_" + std::to_string(getpid()));
        fs::remove_all(s_Dir);
        fs::create_directories(s_Dir);
        s_CardFile = s_Dir / "large.mat";
        const std::string generate = "python3 '" + kGenerator + "' --materials " + std::to_string(kMaterials) +
                                     " --seed 11 --out '" + s_CardFile.string() + "' >/dev/null 2>&1";
        s_Ready = fs::exists(kTool) && std::system(generate.c_str()) == 0 && fs::exists(s_CardFile);
        if (!s_Ready) return;

        // The database that every kill must leave alone: one material, written by the tool itself.
        const fs::path base_db = s_Dir / "base.xml";
        const pid_t small = Spawn({kTool, "import", kSmallCardFile, "--db", base_db.string()}, s_Dir / "base.log");
        s_Ready = small > 0 && WaitFor(small) == 0;
        s_Before = ReadBytes(base_db);

        // A completed run over a copy: what the database becomes, and how far the tool has read when
        // the save begins. Progress is told by the bytes it has read, not by the clock, so that the
        // moments below are the same on a busy machine.
        const fs::path reference = s_Dir / "reference" / "db.xml";
        fs::create_directories(reference.parent_path());
        WriteBytes(reference, s_Before);
        const pid_t run = Spawn({kTool, "import", s_CardFile.string(), "--db", reference.string()},
                                s_Dir / "reference.log");
        int status = 0;
        bool sawTemporary = false;
        while (!Exited(run, status)) {
            const long long read = BytesRead(run);
            if (!sawTemporary && !TemporaryFiles(reference).empty()) sawTemporary = true;
            if (!sawTemporary && read > s_ReadBeforeSave) s_ReadBeforeSave = read;
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
        s_Ready = s_Ready && WIFEXITED(status) && WEXITSTATUS(status) == 0;
        s_Complete = ReadBytes(reference);
    }

    static void TearDownTestSuite() {
        if (!::testing::Test::HasFailure()) fs::remove_all(s_Dir);
    }

    void SetUp() override {
        ASSERT_TRUE(fs::exists(kTool)) << kTool << " is not built; build the quillon_cli target first";
        ASSERT_TRUE(s_Ready) << "the large card file or the reference import could not be made in " << s_Dir;
        ASSERT_GT(s_ReadBeforeSave, 0) << "the reference run's reading was not seen";
        ASSERT_FALSE(s_Before.empty());
        ASSERT_NE(s_Complete, s_Before) << "the reference import changed nothing";
    }

    // A fresh copy of the database in a folder of its own, and the import started over it.
    pid_t StartImport(const std::string& name, fs::path& database) {
        const fs::path folder = s_Dir / name;
        fs::remove_all(folder);
        fs::create_directories(folder);
        database = folder / "db.xml";
        WriteBytes(database, s_Before);
        return Spawn({kTool, "import", s_CardFile.string(), "--db", database.string()}, folder / "import.log");
    }

    // Kills the import once `ready` says so (or at once when it is null), and reaps it.
    static KillOutcome KillWhen(pid_t pid, const fs::path& database, const std::function<bool()>& ready) {
        KillOutcome outcome;
        int status = 0;
        while (ready && !ready()) {
            if (Exited(pid, status)) {
                outcome.status = status;
                return outcome;
            }
        }
        outcome.temporaryExisted = !TemporaryFiles(database).empty();
        kill(pid, SIGKILL);
        outcome.status = WaitFor(pid);
        outcome.killed = WIFSIGNALED(outcome.status) && WTERMSIG(outcome.status) == SIGKILL;
        return outcome;
    }

    // Kills the import once it has read `share` of what the reference run read before its save.
    static KillOutcome KillAfterReading(pid_t pid, const fs::path& database, double share) {
        const long long mark = static_cast<long long>(static_cast<double>(s_ReadBeforeSave) * share);
        return KillWhen(pid, database, [pid, mark] {
            std::this_thread::sleep_for(std::chrono::microseconds(50));
            return BytesRead(pid) >= mark;
        });
    }

    // Before the rename, the database must be untouched.
    void ExpectUntouched(const fs::path& database, const KillOutcome& outcome, const std::string& moment) {
        EXPECT_TRUE(outcome.killed) << moment << ": the import was not killed (status " << outcome.status << ")";
        const std::string after = ReadBytes(database);
        EXPECT_EQ(after.size(), s_Before.size()) << moment;
        EXPECT_TRUE(after == s_Before) << moment << ": the database changed although the import was killed";
    }

    // True once the kernel reports `events` on a file of the database's folder whose name starts
    // with the temporary prefix of the save; waits up to a millisecond per call.
    static bool TemporaryFileEvent(int watch, const fs::path& database) {
        pollfd ready{watch, POLLIN, 0};
        if (poll(&ready, 1, 1) <= 0) return false;
        alignas(inotify_event) char buffer[4096];
        const ssize_t got = read(watch, buffer, sizeof buffer);
        const std::string prefix = database.filename().string() + ".tmp";
        for (ssize_t at = 0; at < got;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
            if (event->len > 0 && std::string(event->name).rfind(prefix, 0) == 0) return true;
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
        return false;
    }

    // True once a temporary save file holds at least a third of what the database will be.
    static bool SaveUnderWay(const fs::path& database) {
        std::this_thread::sleep_for(std::chrono::microseconds(50));
        for (const fs::path& temporary : TemporaryFiles(database)) {
            std::error_code error;
            const uintmax_t size = fs::file_size(temporary, error);
            if (!error && size >= s_Complete.size() / 3 && size < s_Complete.size()) return true;
        }
        return false;
    }

    static fs::path s_Dir;
    static fs::path s_CardFile;
    static bool s_Ready;
    static std::string s_Before;
    static std::string s_Complete;
    static long long s_ReadBeforeSave;
};

fs::path KillSafetyTest::s_Dir;
fs::path KillSafetyTest::s_CardFile;
bool KillSafetyTest::s_Ready = false;
std::string KillSafetyTest::s_Before;
std::string KillSafetyTest::s_Complete;
long long KillSafetyTest::s_ReadBeforeSave = 0;

TEST_F(KillSafetyTest, CompletedImportReplacesTheDatabaseWithAValidOneAlsoOverLeftovers) {
    fs::path database;
    const pid_t first = StartImport("complete", database);
    ASSERT_GT(first, 0);
    // Leave a half-written temporary file behind, as a kill during the save does.
    const KillOutcome outcome = KillWhen(first, database, [&] { return SaveUnderWay(database); });
    ASSERT_TRUE(ReadBytes(database) == s_Before) << "killed during the save (" << outcome.killed << ")";
    const size_t leftovers = TemporaryFiles(database).size();

    const pid_t second = Spawn({kTool, "import", s_CardFile.string(), "--db", database.string()},
                               database.parent_path() / "second.log");
    ASSERT_GT(second, 0);
    const int status = WaitFor(second);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    const std::string after = ReadBytes(database);
    EXPECT_TRUE(after == s_Complete) << "two completed imports of the same file wrote different databases";
    // The completed run leaves no temporary file of its own; what the killed one left stays.
    EXPECT_EQ(TemporaryFiles(database).size(), leftovers);

    // Valid: the store loads it, with the material it held before and every generated one.
    OrvaneStaticVars::Init(database.c_str());
    EXPECT_STREQ(OrvaneStaticVars::GetLastError(), "");
    EXPECT_EQ(std::string(OrvaneStaticVars::GetLoadedDatabasePath()), database.string());
    EXPECT_GE(OrvaneStaticVars::GetMaterials().size(), static_cast<size_t>(kMaterials + 1));
    const fs::path before = database.parent_path() / "before.xml";
    WriteBytes(before, s_Before);
    OrvaneStaticVars::Init(before.c_str());
    EXPECT_EQ(OrvaneStaticVars::GetMaterials().size(), 1u);
    OrvaneStaticVars::Init(nullptr);
}

TEST_F(KillSafetyTest, KillAtAnyMomentLeavesTheOldDatabaseOrTheCompleteNewOne) {
    {
        fs::path database;
        const pid_t pid = StartImport("at-once", database);
        ASSERT_GT(pid, 0);
        ExpectUntouched(database, KillWhen(pid, database, nullptr), "killed at once");
    }
    for (const int percent : {10, 40, 80}) {
        const std::string moment = "killed at " + std::to_string(percent) + "% of the reading time";
        fs::path database;
        const pid_t pid = StartImport("reading-" + std::to_string(percent), database);
        ASSERT_GT(pid, 0);
        const KillOutcome outcome = KillAfterReading(pid, database, percent / 100.0);
        EXPECT_FALSE(outcome.temporaryExisted) << moment << ": the save had begun";
        ExpectUntouched(database, outcome, moment);
    }
    {
        // The moment the temporary file is made beside the database, as the kernel tells it.
        fs::path database;
        const pid_t pid = StartImport("save-begins", database);
        ASSERT_GT(pid, 0);
        const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        ASSERT_GE(watch, 0);
        ASSERT_GE(inotify_add_watch(watch, database.parent_path().c_str(), IN_CREATE), 0);
        const KillOutcome outcome = KillWhen(pid, database, [&] { return TemporaryFileEvent(watch, database); });
        close(watch);
        EXPECT_TRUE(outcome.temporaryExisted) << "the kill did not come during the save";
        ExpectUntouched(database, outcome, "killed as the save began");
    }
    {
        // A third of the way through writing the temporary file.
        fs::path database;
        const pid_t pid = StartImport("save-middle", database);
        ASSERT_GT(pid, 0);
        const KillOutcome outcome = KillWhen(pid, database, [&] { return SaveUnderWay(database); });
        if (outcome.killed) {
            EXPECT_TRUE(outcome.temporaryExisted) << "the kill did not come during the save";
            ExpectUntouched(database, outcome, "killed in the middle of the save");
        } else {
            // The whole save went by between two looks at the file: the run completed.
            EXPECT_TRUE(ReadBytes(database) == s_Complete) << "an import that ran to its end left a database "
                                                              "that is neither the old one nor the complete one";
        }
    }
    {
        // The temporary file is closed just before the rename, so the kill lands on either side of it:
        // the old database or the complete new one, never a mix.
        fs::path database;
        const pid_t pid = StartImport("save-complete", database);
        ASSERT_GT(pid, 0);
        const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        ASSERT_GE(watch, 0);
        ASSERT_GE(inotify_add_watch(watch, database.parent_path().c_str(), IN_CLOSE_WRITE), 0);
        const KillOutcome outcome = KillWhen(pid, database, [&] { return TemporaryFileEvent(watch, database); });
        close(watch);
        const std::string after = ReadBytes(database);
        EXPECT_TRUE(after == s_Before || after == s_Complete)
            << "the database is neither the old one nor the complete new one (" << after.size() << " bytes)";
        if (!outcome.killed) {
            EXPECT_TRUE(after == s_Complete) << "a run that reached its end left the old database";
        }
    }
}

}  // namespace
