// Every sample card file through the real tool: import into a fresh database,
// the database validates against the shipped schema, and list names each
// material with its folder.

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/relaxng.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

const std::string kTool = std::string(QUILLON_BINARY_DIR) + "/cli/quillon";

struct ToolRun {
  int exitCode = -1;
  std::string out;
};

// Runs the tool through the shell with its output captured; arguments here are
// plain paths without quotes or blanks.
ToolRun RunTool(const std::string& args) {
  ToolRun run;
  FILE* pipe = popen((kTool + " " + args + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return run;
  char buffer[4096];
  while (size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) run.out.append(buffer, n);
  const int status = pclose(pipe);
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

std::string ScratchDir() {
  std::string dir = "/tmp/quillon_cli_corpus_" + std::to_string(getpid());
  mkdir(dir.c_str(), 0700);
  return dir;
}

bool ValidatesAgainstSchema(const std::string& database, std::string& why) {
  const std::string schemaPath = std::string(QUILLON_SOURCE_DIR) + "/data/database.rng";
  xmlRelaxNGParserCtxtPtr parser = xmlRelaxNGNewParserCtxt(schemaPath.c_str());
  xmlRelaxNGPtr schema = xmlRelaxNGParse(parser);
  xmlRelaxNGFreeParserCtxt(parser);
  if (schema == nullptr) {
    why = "schema did not load";
    return false;
  }
  xmlDocPtr doc = xmlReadFile(database.c_str(), nullptr, XML_PARSE_NONET);
  bool valid = false;
  if (doc == nullptr) {
    why = "database did not parse";
  } else {
    xmlRelaxNGValidCtxtPtr context = xmlRelaxNGNewValidCtxt(schema);
    valid = xmlRelaxNGValidateDoc(context, doc) == 0;
    if (!valid) why = "database does not validate";
    xmlRelaxNGFreeValidCtxt(context);
    xmlFreeDoc(doc);
  }
  xmlRelaxNGFree(schema);
  return valid;
}

// Material identifier -> folder, from list's tab-separated lines.
std::map<std::string, std::string> FoldersListed(const std::string& output) {
  std::map<std::string, std::string> folders;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    const size_t first = line.find('\t');
    if (first == std::string::npos) continue;
    const size_t second = line.find('\t', first + 1);
    folders[line.substr(0, first)] = line.substr(first + 1, second - first - 1);
  }
  return folders;
}

struct CorpusCase {
  const char* file;
  std::map<std::string, std::string> folders;
};

class CorpusThroughTheTool : public testing::TestWithParam<CorpusCase> {};

void PrintTo(const CorpusCase& c, std::ostream* os) { *os << c.file; }

}  // namespace

TEST_P(CorpusThroughTheTool, ImportsIntoAValidDatabaseThatListsItsMaterialsWithFolders) {
  const CorpusCase& c = GetParam();
  const std::string database = ScratchDir() + "/" + c.file + ".xml";
  std::remove(database.c_str());

  const ToolRun imported = RunTool("import " + std::string(QUILLON_CORPUS_DIR) + "/" + c.file + " --db " + database);
  ASSERT_EQ(0, imported.exitCode) << imported.out;
  EXPECT_EQ(std::string::npos, imported.out.find("error")) << imported.out;

  std::string why;
  EXPECT_TRUE(ValidatesAgainstSchema(database, why)) << why;

  const ToolRun listed = RunTool("list --db " + database);
  ASSERT_EQ(0, listed.exitCode) << listed.out;
  EXPECT_EQ(c.folders, FoldersListed(listed.out)) << listed.out;
}

INSTANTIATE_TEST_SUITE_P(
    SampleFiles, CorpusThroughTheTool,
    testing::Values(
        CorpusCase{"S355J2G3.mat", {{"W_S355J2G3", "Low alloy steels"}}},
        CorpusCase{"16MnCr5_thermometal.mat", {{"W_16MnCr5", "Case hardening steels"}}},
        CorpusCase{"case_hardening_steels.mat",
                   {{"W_20MnCr5", "Case hardening steels"}, {"W_18CrNiMo7-6", "Case hardening steels"}}},
        CorpusCase{"AlMg4.5Mn.mat", {{"W_AlMg4.5Mn", "Aluminium alloys"}}},
        CorpusCase{"NiCr19Fe19Nb5Mo3.mat", {{"W_NiCr19Fe19Nb5Mo3", "Nickel alloys"}}},
        // A distortion file: "W" gains the prefix, "DE" keeps its name.
        CorpusCase{"S460M_DE.mat", {{"DEW_S460M", "Distortion steels"}, {"DE_S690QL", "Distortion steels"}}},
        // Everything of a metallurgy file goes to one material in "Weld".
        CorpusCase{"METALLURGY.mat", {{"MetallurgyMat", "Weld"}}},
        CorpusCase{"42CrMo4_tempering.mat", {{"W_42CrMo4", "Quenched and tempered steels"}}},
        // No Class for the first material; the last line of a two-line Class wins.
        CorpusCase{"stainless_steels.mat",
                   {{"W_X2CrNiMo17-12-2", "UnSorted"},
                    {"W_X5CrNi18-10", "Stainless steels"},
                    {"W_X2CrNiMoN22-5-3", "Duplex stainless steels"}}}));

TEST(CorpusThroughTheToolIntoOneDatabase, EveryFileAddsToTheSameDatabase) {
  const std::string database = ScratchDir() + "/all.xml";
  std::remove(database.c_str());
  for (const char* file : {"S355J2G3.mat", "case_hardening_steels.mat", "stainless_steels.mat"}) {
    const ToolRun imported = RunTool("import " + std::string(QUILLON_CORPUS_DIR) + "/" + file + " --db " + database);
    ASSERT_EQ(0, imported.exitCode) << imported.out;
  }
  const ToolRun listed = RunTool("list --db " + database);
  EXPECT_EQ(1u + 2u + 3u, FoldersListed(listed.out).size()) << listed.out;
  std::string why;
  EXPECT_TRUE(ValidatesAgainstSchema(database, why)) << why;
}
