// libFuzzer target: arbitrary bytes as a card file, through the checker behind `quillon check` and
// through the whole import driver into a fresh, empty store.
//
// What counts as a failure, besides what the sanitizers catch:
// - the import ends the process (abort) on a file that the checker passed as readable;
// - the import cannot open the file it was given, or hands back no document;
// - the locator's "not found in" lines and the checker's reports of the same sections disagree;
// - the duplicate report of the driver and the checker's duplicates disagree;
// - records still in the store after it was started afresh (state that would pile up over inputs).
//
// A file holding a line of 8192 characters or more after trimming is turned away before the import
// sees it, as `quillon import` turns it away: the line reader ends the process on such a line by
// design, and that end is no finding.

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "cli/check.h"
#include "core/card.h"
#include "core/dataloc.h"
#include "import/cardsetimport.h"
#include "store/basekit.h"
#include "store/orvane.h"

namespace {

std::string g_ScratchDir;
std::string g_AbsentDatabase;
std::string g_HostMessages;

// The file name steers parts of the import (a distortion file, the metallurgy file), so the input
// picks one of three names by its length: a mutation that adds or drops a byte moves it to another.
const char* const kFileNames[] = {"fuzz.mat", "fuzz_DE.mat", "METALLURGY.mat"};

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "fuzz_import: %s\n", what.c_str());
    std::abort();
}

void CollectHostMessage(int /*kind*/, const wchar_t* text) {
    if (text == nullptr) return;
    BkString narrow(text, 0);
    g_HostMessages += narrow.GetAnsiBuffer();
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// Sum of the counts in the driver's duplicate report ("name = count" lines under a heading).
long CountDuplicatesDropped(const std::string& report) {
    long total = 0;
    for (const std::string& line : SplitLines(report)) {
        const size_t equals = line.rfind(" = ");
        if (equals == std::string::npos) continue;
        total += std::atol(line.c_str() + equals + 3);
    }
    return total;
}

bool WriteFile(const std::string& path, const uint8_t* data, size_t size) {
    FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr) return false;
    const bool written = size == 0 || std::fwrite(data, 1, size, file) == size;
    return std::fclose(file) == 0 && written;
}

// The driver's statics outlive a driver by design; each input starts them as a new process would,
// so that nothing accumulates over millions of inputs.
void ResetDriverStatics() {
    CardsetImport::m_PhaseIndexIDrefMap.clear();
    CardsetImport::m_PhaseIndexNameMap.clear();
    CardsetImport::m_CreepFlag = 0;
    CardsetImport::m_CurrentPhaseIndex = 1;
    CardsetImport::m_DistortionFlag = 0;
    Card::clearFlag(~0u);
    g_HostMessages.clear();
    g_HostMessages.shrink_to_fit();
}

// After a fresh start the store must be empty, whatever the input left in it.
void CheckNothingLeftBehind() {
    if (!OrvaneStaticVars::GetMaterials().empty()) Fail("the store kept materials over a fresh start");
    if (!OrvaneStaticVars::GetMatModelList().empty()) Fail("the store kept models over a fresh start");
    if (!OrvaneStaticVars::GetLXLYLZMap().empty()) Fail("the store kept strain directions over a fresh start");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    const char* base = std::getenv("TMPDIR");
    g_ScratchDir = std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") + "/quillon_fuzz_" +
                   std::to_string(getpid());
    std::string command = "mkdir -p '" + g_ScratchDir + "'";
    if (std::system(command.c_str()) != 0) Fail("cannot make " + g_ScratchDir);
    g_AbsentDatabase = g_ScratchDir + "/no-such-database.xml";
    std::remove(g_AbsentDatabase.c_str());
    // The locator's reports reach the host only when a resources folder is named.
    ::setenv("KORA_RESOURCES_PATH", g_ScratchDir.c_str(), 1);
    ::unsetenv("ORVANE_ALLOW_MATERIAL_CALIBRATION");
    BkSetMessageHandler(CollectHostMessage);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);

    // The checker reads every input, also those the import may not see.
    const std::vector<quillon::cli::Finding> findings = quillon::cli::CheckCardText(text);
    bool overlong = false;
    unsigned long previousLine = 0;
    for (const quillon::cli::Finding& finding : findings) {
        if (finding.line < previousLine) Fail("checker findings out of line order");
        previousLine = finding.line;
        if (finding.kind == quillon::cli::FindingKind::kOverlongLine) overlong = true;
        if (quillon::cli::FormatFinding("fuzz.mat", finding).empty()) Fail("empty formatted finding");
    }
    if (overlong) return -1;  // the one deliberate end of the process; keep such inputs out of the corpus

    const std::string path = g_ScratchDir + "/" + kFileNames[size % 3];
    if (!WriteFile(path, data, size)) Fail("cannot write " + path);

    std::string locatorWarnings;
    std::string duplicateReport;
    ResetDriverStatics();
    {
        CardsetImport importer(path.c_str(), g_AbsentDatabase.c_str());
        void* document = nullptr;
        std::string message;
        const int sections = importer.ImportMaterialList(&document, message, false);
        if (sections < 0) Fail("negative section count");
        if (document == nullptr) Fail("no document handed back: " + message);
        if (importer.m_DataLoc == nullptr) Fail("no locator after an import");
        if (static_cast<size_t>(sections) > importer.m_DataLoc->keywords.size())
            Fail("more sections visited than located");
        locatorWarnings = importer.m_DataLoc->warnings;
        duplicateReport = importer.GetWarningMessage();
        // The document belongs to the store; the fresh start below frees it.
    }
    std::remove(path.c_str());

    // The locator's "not found in" lines are the checker's reports of sections left open at the
    // next material, word for word; they come in another order (by closing keyword per material
    // there, by line here), so they are compared as sorted lists.
    std::vector<std::string> fromLocator = SplitLines(locatorWarnings);
    std::vector<std::string> fromChecker;
    long duplicatesSkipped = 0;
    for (const quillon::cli::Finding& finding : findings) {
        if (finding.kind == quillon::cli::FindingKind::kUnclosedAtMaterial) fromChecker.push_back(finding.locatorText);
        if (finding.kind == quillon::cli::FindingKind::kDuplicateMaterial &&
            finding.message.find("skips this one") != std::string::npos)
            ++duplicatesSkipped;
    }
    std::sort(fromLocator.begin(), fromLocator.end());
    std::sort(fromChecker.begin(), fromChecker.end());
    if (fromLocator != fromChecker) Fail("the locator's open-section reports and the checker's disagree");
    if (!locatorWarnings.empty() && g_HostMessages.find(fromLocator.front().substr(0, 8)) == std::string::npos)
        Fail("the open-section reports did not reach the host");
    if (CountDuplicatesDropped(duplicateReport) != duplicatesSkipped)
        Fail("the driver's duplicate report and the checker's disagree");

    // Give back everything the input made, here rather than at the next input's start: an input
    // then frees as many blocks as it allocates, and libFuzzer's leak check (which looks for inputs
    // that do not) points at real leaks only.
    OrvaneStaticVars::Init(g_AbsentDatabase.c_str());
    CheckNothingLeftBehind();
    ResetDriverStatics();
    return 0;
}
