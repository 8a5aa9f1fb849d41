// What a whole import costs, against baselines measured in the same run on the same files:
//
//   import / xmllint      the import of a card file into an empty store, against `xmllint --noout`
//                         (a child process) parsing the database that this import writes;
//   import / two-pass     the same import against two bare fgets passes over the card file, the
//                         least any reader of this format does (the locator's pass and the readers');
//   scaling               the import of 2000 materials against that of 200;
//   peak RSS              of a child process that does nothing but the import, against three times
//                         the database file and 16 MB.
//
// The card files are generated once per run into a scratch folder. Usage:
//   import_bench [--materials-small N] [--materials-large N] [Google Benchmark flags]
// Targets: import <= 2.0 x xmllint; large <= 11 x small for 10x materials; RSS <= 3 x DB + 16 MB.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <limits.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "core/card.h"
#include "import/cardsetimport.h"
#include "store/dombridge.h"
#include "store/orvane.h"

extern char** environ;

namespace {

struct Workload {
    int materials = 0;
    std::string cardFile;
    std::string database;      // what the import of the card file writes
    long cardBytes = 0;
    long databaseBytes = 0;
    long peakRssKb = 0;        // ru_maxrss of a child that only imports
    long childHighWaterKb = 0; // the same child's own VmHWM, as it reports it
};

std::string g_ScratchDir;
std::string g_AbsentDatabase;
std::map<int, Workload> g_Workloads;

long FileSize(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? static_cast<long>(info.st_size) : -1;
}

// Runs argv to its end; its standard output goes to `output` when given, and its standard error
// too when `quiet`. Returns the wait status.
int RunChild(const std::vector<std::string>& args, rusage* usage = nullptr, const std::string& output = "",
             bool quiet = false) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!output.empty())
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (quiet) posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    std::vector<char*> argv;
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    pid_t pid = -1;
    const int failed = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) return -1;
    int status = 0;
    rusage ignored {};
    if (wait4(pid, &status, 0, usage != nullptr ? usage : &ignored) != pid) return -1;
    return status;
}

// One whole import as a host does it: a driver over a fresh, empty store.
void* ImportOnce(const std::string& cardFile) {
    CardsetImport importer(cardFile.c_str(), g_AbsentDatabase.c_str());
    void* document = nullptr;
    std::string message;
    importer.ImportMaterialList(&document, message, false);
    return document;
}

long HighWaterKb() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) return std::atol(line.c_str() + 6);
    }
    return -1;
}

// The child of the RSS measure: the import and nothing else, then its own high-water mark.
int ImportOnlyChild(const std::string& cardFile, const std::string& absentDatabase) {
    g_AbsentDatabase = absentDatabase;
    void* document = ImportOnce(cardFile);
    std::printf("%ld\n", HighWaterKb());
    return document != nullptr ? 0 : 1;
}

// Two bare passes of fgets over the card file with the reader's own line buffer size.
size_t TwoPassScan(const std::string& cardFile) {
    FILE* file = std::fopen(cardFile.c_str(), "rb");
    if (file == nullptr) return 0;
    std::vector<char> line(0x40000);
    size_t lines = 0;
    for (int pass = 0; pass < 2; ++pass) {
        std::rewind(file);
        while (std::fgets(line.data(), static_cast<int>(line.size()), file) != nullptr) ++lines;
    }
    std::fclose(file);
    return lines;
}

// The store that the run before filled is emptied outside the timing: what a host pays for
// freeing an earlier import is not part of this one.
void EmptyStoreUntimed(benchmark::State& state) {
    state.PauseTiming();
    OrvaneStaticVars::Init(g_AbsentDatabase.c_str());
    state.ResumeTiming();
}

// One untimed import first: the first run in a process also pays for faulting in its heap, and
// the sizes are run a different number of times, so an average over a cold first run would favour
// the size that runs more often.
void WarmUp(const Workload& work) {
    OrvaneStaticVars::Init(g_AbsentDatabase.c_str());
    ImportOnce(work.cardFile);
}

void BM_Import(benchmark::State& state) {
    const Workload& work = g_Workloads.at(static_cast<int>(state.range(0)));
    WarmUp(work);
    for (auto _ : state) {
        EmptyStoreUntimed(state);
        benchmark::DoNotOptimize(ImportOnce(work.cardFile));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * work.cardBytes);
}

void BM_ImportAndSave(benchmark::State& state) {
    const Workload& work = g_Workloads.at(static_cast<int>(state.range(0)));
    const std::string target = g_ScratchDir + "/saved.xml";
    WarmUp(work);
    for (auto _ : state) {
        EmptyStoreUntimed(state);
        if (DomSaveDocument(ImportOnce(work.cardFile), target.c_str()) == 0) state.SkipWithError("save failed");
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * work.cardBytes);
}

// The time of xmllint is the processor time of the child (user and system), which the machine's
// other load touches far less than its wall time; the wall time is kept as a counter.
void BM_Xmllint(benchmark::State& state) {
    const Workload& work = g_Workloads.at(static_cast<int>(state.range(0)));
    double wall = 0;
    for (auto _ : state) {
        rusage usage {};
        timespec start {};
        timespec end {};
        clock_gettime(CLOCK_MONOTONIC, &start);
        if (RunChild({"xmllint", "--noout", work.database}, &usage) != 0) state.SkipWithError("xmllint failed");
        clock_gettime(CLOCK_MONOTONIC, &end);
        wall += static_cast<double>(end.tv_sec - start.tv_sec) + 1e-9 * static_cast<double>(end.tv_nsec - start.tv_nsec);
        state.SetIterationTime(static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                               1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec));
    }
    state.counters["wall_s"] = benchmark::Counter(wall, benchmark::Counter::kAvgIterations);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * work.databaseBytes);
}

void BM_TwoPassScan(benchmark::State& state) {
    const Workload& work = g_Workloads.at(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(TwoPassScan(work.cardFile));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * work.cardBytes * 2);
}

// Keeps the times of every run, in seconds, by benchmark and argument ("BM_Import/200").
class RecordingReporter : public benchmark::ConsoleReporter {
public:
    struct Times {
        double cpu = 0;   // processor time of this process; for xmllint, of the child
        double wall = 0;
    };

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred || run.iterations == 0) continue;
            Times& times = m_Times[run.run_name.function_name + "/" + run.run_name.args];
            const auto wall = run.counters.find("wall_s");
            if (wall != run.counters.end()) {
                times.cpu = run.GetAdjustedRealTime() / 1e3;  // the manual time: the child's processor time
                times.wall = wall->second.value;
            } else {
                times.cpu = run.GetAdjustedCPUTime() / 1e3;
                times.wall = run.GetAdjustedRealTime() / 1e3;
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }
    Times Get(const char* benchmark, int materials) const {
        const auto found = m_Times.find(std::string(benchmark) + "/" + std::to_string(materials));
        return found == m_Times.end() ? Times() : found->second;
    }

private:
    std::map<std::string, Times> m_Times;
};

bool Prepare(const std::vector<int>& sizes, const std::string& self) {
    const char* base = std::getenv("TMPDIR");
    g_ScratchDir = std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") + "/quillon_import_bench_" +
                   std::to_string(getpid());
    if (RunChild({"mkdir", "-p", g_ScratchDir}) != 0) return false;
    g_AbsentDatabase = g_ScratchDir + "/no-such-database.xml";
    std::remove(g_AbsentDatabase.c_str());
    for (int materials : sizes) {
        Workload work;
        work.materials = materials;
        work.cardFile = g_ScratchDir + "/generated-" + std::to_string(materials) + ".mat";
        work.database = g_ScratchDir + "/generated-" + std::to_string(materials) + ".xml";
        const int generated = RunChild({"python3", std::string(QUILLON_TOOLS_DIR) + "/gen_large_mat.py", "--materials",
                                        std::to_string(materials), "--seed", "2024", "--out", work.cardFile},
                                       nullptr, "/dev/null", true);
        if (generated != 0) {
            std::fprintf(stderr, "import_bench: could not generate %s\n", work.cardFile.c_str());
            return false;
        }
        work.cardBytes = FileSize(work.cardFile);
        g_Workloads[materials] = work;
    }
    // Peak RSS first, while this process is still small: a child's maximum also counts what it
    // inherited from its parent until it replaced its image.
    for (auto& entry : g_Workloads) {
        Workload& work = entry.second;
        rusage usage {};
        const std::string report = g_ScratchDir + "/rss.txt";
        const int status = RunChild({self, "--import-only", work.cardFile, g_AbsentDatabase}, &usage, report);
        if (status != 0) {
            std::fprintf(stderr, "import_bench: the import-only child failed on %s\n", work.cardFile.c_str());
            return false;
        }
        work.peakRssKb = usage.ru_maxrss;
        std::ifstream in(report);
        in >> work.childHighWaterKb;
    }
    // The database that each import writes: what xmllint reads.
    for (auto& entry : g_Workloads) {
        Workload& work = entry.second;
        if (DomSaveDocument(ImportOnce(work.cardFile), work.database.c_str()) == 0) return false;
        work.databaseBytes = FileSize(work.database);
    }
    OrvaneStaticVars::Init(g_AbsentDatabase.c_str());
    return true;
}

const char* Verdict(bool met) { return met ? "met" : "MISSED"; }

void PrintSummary(const RecordingReporter& reporter, int small, int large) {
    std::printf("\nImport against baselines measured in this run (seconds per run; processor time, wall time "
                "in brackets):\n");
    std::printf("%-10s %8s %8s %18s %18s %18s %18s\n", "materials", "card MB", "DB MB", "import", "import+save",
                "xmllint --noout", "2-pass fgets");
    auto cell = [](const RecordingReporter::Times& times) {
        char text[64];
        std::snprintf(text, sizeof text, "%.3f (%.3f)", times.cpu, times.wall);
        return std::string(text);
    };
    for (int materials : {small, large}) {
        const Workload& work = g_Workloads.at(materials);
        std::printf("%-10d %8.1f %8.1f %18s %18s %18s %18s\n", materials, work.cardBytes / 1048576.0,
                    work.databaseBytes / 1048576.0, cell(reporter.Get("BM_Import", materials)).c_str(),
                    cell(reporter.Get("BM_ImportAndSave", materials)).c_str(),
                    cell(reporter.Get("BM_Xmllint", materials)).c_str(),
                    cell(reporter.Get("BM_TwoPassScan", materials)).c_str());
    }
    std::printf("\n");
    for (int materials : {small, large}) {
        const RecordingReporter::Times import = reporter.Get("BM_Import", materials);
        const RecordingReporter::Times lint = reporter.Get("BM_Xmllint", materials);
        const RecordingReporter::Times scan = reporter.Get("BM_TwoPassScan", materials);
        const double ratio = lint.cpu > 0 ? import.cpu / lint.cpu : 0;
        std::printf("%5d materials: import / xmllint = %.2f (wall %.2f; target <= 2.0: %s); import / two-pass "
                    "scan = %.0f\n",
                    materials, ratio, lint.wall > 0 ? import.wall / lint.wall : 0, Verdict(ratio <= 2.0),
                    scan.cpu > 0 ? import.cpu / scan.cpu : 0);
    }
    const RecordingReporter::Times smallTime = reporter.Get("BM_Import", small);
    const RecordingReporter::Times largeTime = reporter.Get("BM_Import", large);
    const double scaling = smallTime.cpu > 0 ? largeTime.cpu / smallTime.cpu : 0;
    const double allowed = 1.1 * large / small;
    std::printf("scaling: %d-material time / %d-material time = %.2f (wall %.2f) for %.0fx materials "
                "(target <= %.1f: %s)\n",
                large, small, scaling, smallTime.wall > 0 ? largeTime.wall / smallTime.wall : 0,
                static_cast<double>(large) / small, allowed, Verdict(scaling <= allowed));
    for (int materials : {small, large}) {
        const Workload& work = g_Workloads.at(materials);
        const double limitMb = 3.0 * work.databaseBytes / 1048576.0 + 16.0;
        const double peakMb = work.peakRssKb / 1024.0;
        std::printf("%5d materials: peak RSS %.1f MB (the child's own high-water mark %.1f MB) against "
                    "3 x DB + 16 MB = %.1f MB: %s\n",
                    materials, peakMb, work.childHighWaterKb / 1024.0, limitMb, Verdict(peakMb <= limitMb));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--import-only") == 0) return ImportOnlyChild(argv[2], argv[3]);

    int small = 200;
    int large = 2000;
    std::vector<char*> rest;
    for (int i = 0; i < argc; ++i) {
        if (i + 1 < argc && std::strcmp(argv[i], "--materials-small") == 0) {
            small = std::atoi(argv[++i]);
        } else if (i + 1 < argc && std::strcmp(argv[i], "--materials-large") == 0) {
            large = std::atoi(argv[++i]);
        } else {
            rest.push_back(argv[i]);
        }
    }
    if (small <= 0 || large <= small) {
        std::fprintf(stderr, "import_bench: need 0 < --materials-small < --materials-large\n");
        return 2;
    }
    int restCount = static_cast<int>(rest.size());
    benchmark::Initialize(&restCount, rest.data());

    char self[PATH_MAX] = {};
    if (readlink("/proc/self/exe", self, sizeof self - 1) <= 0) return 1;
    if (!Prepare({small, large}, self)) return 1;
    for (int materials : {small, large}) {
        const int iterations = materials <= 500 ? 10 : 2;
        benchmark::RegisterBenchmark("BM_Import", BM_Import)
            ->Arg(materials)->Iterations(iterations)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("BM_ImportAndSave", BM_ImportAndSave)
            ->Arg(materials)->Iterations(iterations)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("BM_Xmllint", BM_Xmllint)
            ->Arg(materials)->Iterations(iterations)->UseManualTime()->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark("BM_TwoPassScan", BM_TwoPassScan)
            ->Arg(materials)->Iterations(iterations)->Unit(benchmark::kMillisecond);
    }
    RecordingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintSummary(reporter, small, large);
    benchmark::Shutdown();
    RunChild({"rm", "-rf", g_ScratchDir});
    return 0;
}
