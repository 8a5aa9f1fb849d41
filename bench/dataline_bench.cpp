// How much the line reader costs over the bare fgets loop that it is built on, on a large card file.

#include "core/dataline.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace {

const char* const kSectionEndKeywords = "FIN TABLES,FIN TABL,FIN TABLE,FIN MATERIAUX,FIN NOM";

std::string g_CardFile;

struct FileCloser {
    void operator()(FILE* file) const {
        if (file != nullptr) std::fclose(file);
    }
};
using File = std::unique_ptr<FILE, FileCloser>;

void BM_FgetsLoop(benchmark::State& state) {
    File file(std::fopen(g_CardFile.c_str(), "rb"));
    if (!file) {
        state.SkipWithError("cannot open the card file");
        return;
    }
    std::vector<char> buffer(DataLine::kLineSize);
    size_t lines = 0;
    for (auto _ : state) {
        std::rewind(file.get());
        lines = 0;
        while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), file.get()) != nullptr) ++lines;
        benchmark::DoNotOptimize(buffer.data());
    }
    state.counters["lines"] = static_cast<double>(lines);
}

// Reads the whole file as a section reader would, word by word. An end line gives n of 0 with the
// end flag; the loop clears the flag and goes on, and stops only at the end of the file.
void readWholeFileAsWords(benchmark::State& state, unsigned wanted, const char* endKeywords) {
    File file(std::fopen(g_CardFile.c_str(), "rb"));
    if (!file) {
        state.SkipWithError("cannot open the card file");
        return;
    }
    DataLine reader(file.get());
    size_t lines = 0;
    size_t words = 0;
    for (auto _ : state) {
        std::rewind(file.get());
        reader.clearAll();
        lines = 0;
        words = 0;
        for (;;) {
            unsigned n = wanted;
            char** result = reader.readNextCardAsWords(n, " ", endKeywords);
            benchmark::DoNotOptimize(result);
            if (n == 0) {
                if (std::feof(file.get())) break;
                reader.clearFlag(DataLine::kEndFlagBit);
                continue;
            }
            ++lines;
            words += n;
        }
    }
    state.counters["lines"] = static_cast<double>(lines);
    state.counters["words"] = static_cast<double>(words);
}

void BM_ReadAsWords(benchmark::State& state) { readWholeFileAsWords(state, 32, nullptr); }

void BM_ReadAsWordsWithEndKeywords(benchmark::State& state) {
    readWholeFileAsWords(state, 32, kSectionEndKeywords);
}

// One wanted word stores the whole line: the cost of the line-level work without the cut.
void BM_ReadAsOneWord(benchmark::State& state) { readWholeFileAsWords(state, 1, nullptr); }

BENCHMARK(BM_FgetsLoop)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadAsWords)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadAsWordsWithEndKeywords)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadAsOneWord)->Unit(benchmark::kMillisecond);

// Prints as usual and keeps the CPU time per iteration of every repetition of every benchmark for
// the ratios. The best repetition is the one least disturbed by other load on the machine; the mean
// shows how far that load moved the figures.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred || run.iterations == 0) continue;
            seconds[run.run_name.function_name].push_back(run.cpu_accumulated_time /
                                                          static_cast<double>(run.iterations));
        }
    }

    double best(const std::string& name) const {
        const auto found = seconds.find(name);
        return found == seconds.end() ? 0 : *std::min_element(found->second.begin(), found->second.end());
    }
    double mean(const std::string& name) const {
        const auto found = seconds.find(name);
        if (found == seconds.end()) return 0;
        return std::accumulate(found->second.begin(), found->second.end(), 0.0) /
               static_cast<double>(found->second.size());
    }

private:
    std::map<std::string, std::vector<double>> seconds;
};

bool generateCardFile(const std::filesystem::path& directory) {
    const std::filesystem::path tool = std::filesystem::path(QUILLON_TOOLS_DIR) / "gen_large_mat.py";
    if (!std::filesystem::exists(tool)) {
        std::printf("skipped: the generator %s is missing\n", tool.c_str());
        return false;
    }
    if (std::system("command -v python3 >/dev/null 2>&1") != 0) {
        std::printf("skipped: python3 is not installed\n");
        return false;
    }
    g_CardFile = (directory / "large.mat").string();
    const std::string command = "python3 '" + tool.string() + "' --materials 200 --seed 7 --out '" + g_CardFile + "'";
    if (std::system(command.c_str()) != 0 || !std::filesystem::exists(g_CardFile)) {
        std::printf("skipped: generating the card file failed: %s\n", command.c_str());
        return false;
    }
    std::printf("card file: %s, %ju bytes\n", g_CardFile.c_str(),
                static_cast<uintmax_t>(std::filesystem::file_size(g_CardFile)));
    return true;
}

// The ratio of the best repetitions decides; the ratio of the means is printed beside it.
void printRatio(const RatioReporter& reporter, const char* name) {
    const double baseBest = reporter.best("BM_FgetsLoop");
    const double readerBest = reporter.best(name);
    if (baseBest <= 0 || readerBest <= 0) return;
    const double ratio = readerBest / baseBest;
    std::printf("%s / BM_FgetsLoop = %.2f (%s 3x), mean of repetitions %.2f\n", name, ratio,
                ratio <= 3.0 ? "within" : "OVER", reporter.mean(name) / reporter.mean("BM_FgetsLoop"));
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;

    const std::filesystem::path directory =
        std::filesystem::temp_directory_path() / ("quillon_dataline_bench_" + std::to_string(getpid()));
    std::filesystem::create_directories(directory);
    if (!generateCardFile(directory)) {
        std::filesystem::remove_all(directory);
        return 0;
    }

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    printRatio(reporter, "BM_ReadAsWords");
    printRatio(reporter, "BM_ReadAsWordsWithEndKeywords");
    printRatio(reporter, "BM_ReadAsOneWord");
    std::filesystem::remove_all(directory);
    return 0;
}
