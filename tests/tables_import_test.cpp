// Tables on the whole import road: every corpus file through the driver, the
// database saved and read back, and each table of the file found as a curve
// (or constants, coefficients, a function) with the file's numbers, in order.
// The expected numbers come from a reader of the table lines of its own,
// written here without the library.

#include <gtest/gtest.h>
#include "xpath_test_support.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <cctype>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "import/cardsetimport.h"
#include "import/sectionconverters.h"
#include "import/tableconverters.h"
#include "import_test_support.h"
#include "store/orvanegeneric.h"

using namespace importtest;

namespace {

// ---- The file's tables, read independently ----

enum class Kind { kPairs, kTriples, kCoefficients, kConstant, kFunction };

struct FileTable {
  std::string material;
  std::string id;
  Kind kind = Kind::kPairs;
  std::vector<std::string> values;  // exponents written with "e"
  std::string scale;                // type 9
  bool familyMember = false;        // named by an earlier "T 7" line
  std::vector<std::string> lines;   // function text
};

std::string Trim(const std::string& text) {
  size_t first = 0;
  while (first < text.size() && !std::isgraph(static_cast<unsigned char>(text[first]))) ++first;
  size_t last = text.size();
  while (last > first && !std::isgraph(static_cast<unsigned char>(text[last - 1]))) --last;
  return text.substr(first, last - first);
}

std::vector<std::string> Split(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

bool StartsWithNoCase(const std::string& text, const std::string& prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i)
    if (std::toupper(static_cast<unsigned char>(text[i])) != std::toupper(static_cast<unsigned char>(prefix[i])))
      return false;
  return true;
}

std::string Number(std::string word) {
  const size_t star = word.find('*');
  if (star != std::string::npos) word[star] = 'e';
  return word;
}

// "NOM : W S355J2G3 mechanical mm" names the material "W_S355J2G3"; a
// distortion file puts "DE" in front of a type that lacks it.
std::string MaterialOf(const std::string& line, bool distortion) {
  std::vector<std::string> words = Split(line.substr(5));
  if (words.size() < 2) return std::string();
  std::string type = words[0];
  if (distortion && !StartsWithNoCase(type, "de")) type = "DE" + type;
  if (StartsWithNoCase(words[1], type)) return words[1];
  return type + "_" + words[1];
}

std::vector<FileTable> ReadTables(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  const bool distortion = path.find("_DE.mat") != std::string::npos || path.find("_de.mat") != std::string::npos;
  std::string lower = path;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  std::string material = lower.find("metallurgy.mat") != std::string::npos ? "MetallurgyMat" : "";

  enum class Section { kNone, kMaterial, kMetallurgy } section = Section::kNone;
  std::vector<FileTable> tables;
  std::map<std::string, bool> members;  // material and id of the members of families
  bool inFunction = false;
  for (std::string raw; std::getline(in, raw);) {
    const std::string line = Trim(raw);
    if (line.empty()) continue;
    if (line.compare(0, 5, "NOM :") == 0) material = MaterialOf(line, distortion);
    if (section == Section::kNone) {
      if (line == "TABLES :") section = Section::kMaterial;
      if (line == "TABLE" || line == "TABLES") section = Section::kMetallurgy;
      continue;
    }
    if (StartsWithNoCase(line, "FIN TABL") || StartsWithNoCase(line, "FIN MATERIAUX") ||
        StartsWithNoCase(line, "FIN NOM") || (section == Section::kMetallurgy && line == "END")) {
      section = Section::kNone;
      inFunction = false;
      continue;
    }
    if (section == Section::kMetallurgy && line[0] == '*') {
      for (const std::string& word : Split(line.substr(1))) tables.back().values.push_back(Number(word));
      continue;
    }
    const size_t slash = line.find('/');
    if (inFunction && slash == std::string::npos) {
      tables.back().lines.push_back(line);
      continue;
    }
    inFunction = false;
    FileTable table;
    table.material = material;
    table.id = Trim(line.substr(0, slash));
    std::vector<std::string> words = Split(line.substr(slash + 1));
    if (section == Section::kMetallurgy) {
      table.kind = words[0] == "2" ? Kind::kTriples : Kind::kPairs;
      for (size_t i = 1; i < words.size(); ++i) table.values.push_back(Number(words[i]));
    } else if (words[0] == "FORTRAN") {
      table.kind = Kind::kFunction;
      inFunction = true;
    } else if (words[0] == "T") {
      const std::string type = words[1];
      if (type == "7") {
        // Its members are tables of their own: value, "&id&", value, "&id&", ...
        std::string marks = line.substr(slash + 1);
        for (char& c : marks)
          if (c == '&' || c == '-') c = ' ';
        std::vector<std::string> pairs = Split(marks);
        for (size_t i = 4; i < pairs.size(); i += 2) members[material + "/" + pairs[i]] = true;
        continue;
      }
      size_t first = 3;
      if (type == "8") {
        table.kind = Kind::kCoefficients;
        first = 2;
      }
      if (type == "9") {
        table.scale = words[3];
        first = 4;
      }
      for (size_t i = first; i < words.size(); ++i) table.values.push_back(Number(words[i]));
    } else if (line.find('&') != std::string::npos) {
      continue;  // a list of tables
    } else if (words.size() == 1) {
      table.kind = Kind::kConstant;
      table.values.push_back(words[0]);
    } else {
      continue;  // several constants: no constant line as a whole
    }
    table.familyMember = members.count(material + "/" + table.id) != 0;
    tables.push_back(table);
  }
  return tables;
}

// ---- The saved database ----

class Database {
 public:
  explicit Database(const std::string& path) : m_Document(xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET)) {}
  ~Database() { xmlFreeDoc(m_Document); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  bool Loaded() const { return m_Document != nullptr; }

  std::vector<xmlNodePtr> Nodes(const std::string& path, xmlNodePtr from = nullptr) const {
    return xpathtest::SelectNodes(m_Document, path, from);
  }

  std::vector<std::string> Texts(const std::string& path, xmlNodePtr from = nullptr) const {
    return xpathtest::SelectTexts(m_Document, path, from);
  }

 private:
  xmlDocPtr m_Document;
};

std::string RecordPath(const std::string& material) { return "/MaterialDatabase/Record[@ID='" + material + "']"; }

std::vector<std::string> Every(const std::vector<std::string>& values, size_t start, size_t step) {
  std::vector<std::string> picked;
  for (size_t i = start; i < values.size(); i += step) picked.push_back(values[i]);
  return picked;
}

class TablesImportTest : public testing::Test {
 protected:
  // Imports a card file as a host does and saves the database.
  std::string Import(const std::string& path) {
    FreshStore();
    m_Database = ScratchDir() + "/tables-import.xml";
    m_Run = ImportAsAHost(path, m_Database);
    EXPECT_GT(m_Run.visited, 0) << path;
    EXPECT_EQ(m_Run.message, "") << path;
    EXPECT_TRUE(OrvaneStaticVars::SaveDatabase(m_Database.c_str())) << OrvaneStaticVars::GetLastError();
    return m_Database;
  }

  // Each table of the file, found in the saved database with its numbers.
  void CheckTables(const std::string& name) {
    const std::string path = CorpusPath(name);
    std::vector<FileTable> tables = ReadTables(path);
    Database database(Import(path));
    ASSERT_TRUE(database.Loaded()) << name;
    for (const FileTable& table : tables) {
      SCOPED_TRACE(name + ": table " + table.id + " of " + table.material);
      ++m_Checked;
      const std::string record = RecordPath(table.material);
      ASSERT_EQ(database.Nodes(record).size(), 1u);
      switch (table.kind) {
        case Kind::kPairs:
        case Kind::kTriples: CheckCurve(database, record, table); break;
        case Kind::kCoefficients: CheckCoefficients(database, record, table); break;
        case Kind::kConstant:
          EXPECT_EQ(database.Texts(record + "/Datasets/Dataset[@DatasetID='" + table.id +
                                   "']/FloatList/FloatItem[1]/Constant/Value"),
                    table.values);
          break;
        case Kind::kFunction: CheckFunction(database, record, table); break;
      }
    }
  }

  void CheckCurve(const Database& database, const std::string& record, const FileTable& table) {
    // The curve of the table is the one that holds values; post-processing
    // may leave a twin without them.
    std::vector<xmlNodePtr> curves;
    for (xmlNodePtr curve : database.Nodes(record + "//Curve[@Label='Curve" + table.id + "']"))
      if (!database.Nodes("DataAxis/ValueList/Value", curve).empty()) curves.push_back(curve);
    ASSERT_EQ(curves.size(), 1u);
    const size_t step = table.kind == Kind::kTriples ? 3 : 2;
    EXPECT_EQ(database.Texts("ParameterAxis[1]/ValueList/Value", curves[0]), Every(table.values, 0, step));
    EXPECT_EQ(database.Texts("DataAxis/ValueList/Value", curves[0]), Every(table.values, 1, step));
    if (table.kind == Kind::kTriples) {
      EXPECT_EQ(database.Texts("ParameterAxis[@IDref='EnthalpyChange']/ValueList/Value", curves[0]),
                Every(table.values, 2, step));
    }
    // The scale of X goes with a curve that the table's own line makes; a
    // member of a family has its curve from the family's line already.
    if (!table.scale.empty() && !table.familyMember) {
      EXPECT_EQ(database.Texts("CurveInfo/@ScaleX", curves[0]), std::vector<std::string>{table.scale});
    }
    if (table.familyMember) {
      EXPECT_TRUE(database.Texts("CurveInfo/@ScaleX", curves[0]).empty());
    }
  }

  void CheckCoefficients(const Database& database, const std::string& record, const FileTable& table) {
    // The table and its copies for the Y and Z directions.
    std::vector<xmlNodePtr> lists =
        database.Nodes(record + "/Datasets/Dataset[@DatasetID='" + table.id + "']/FloatList");
    ASSERT_EQ(lists.size(), 3u);
    for (xmlNodePtr list : lists) EXPECT_EQ(database.Texts("FloatItem/Constant/Value", list), table.values);
  }

  void CheckFunction(const Database& database, const std::string& record, const FileTable& table) {
    // The function is kept with the parameter whose "STATUS" line names it.
    std::vector<std::string> ids = database.Texts(record + "//Dataset[@IDref='FortranStatus']/Link/@DatasetIDref");
    ASSERT_EQ(ids.size(), 1u);
    std::string text = "FORTRAN;";
    for (size_t i = 0; i < table.lines.size(); ++i)
      text += table.lines[i] + (i + 1 < table.lines.size() ? ";" : "");
    EXPECT_EQ(database.Texts(record + "/Datasets/Dataset[@IDref='FortranStatus'][@DatasetID='" + ids[0] + "']/String"),
              std::vector<std::string>{text});
  }

  // The warnings of the last import that say a word is not in the mapping.
  static std::vector<std::string> MappingWarnings() {
    std::vector<std::string> found;
    for (const std::string& warning : OrvaneGenericLog::GetDBWarnings())
      if (warning.find("is not in the mapping") != std::string::npos) found.push_back(warning);
    return found;
  }

  HostImport m_Run;
  std::string m_Database;
  int m_Checked = 0;
};

// ---- Every table of every corpus file ----

TEST_F(TablesImportTest, TheIndependentReaderFindsTheTablesOfTheWeldSteel) {
  std::vector<FileTable> tables = ReadTables(CorpusPath("S355J2G3.mat"));
  // 1, 21-26, 41-46, the function, 61, 62, 63 and the one-constant table 81.
  ASSERT_EQ(tables.size(), 18u);
  EXPECT_EQ(tables[0].values.front(), "20");
  EXPECT_EQ(tables[13].kind, Kind::kFunction);
  EXPECT_EQ(tables[13].lines.back(), "END");
  EXPECT_EQ(tables[16].scale, "0.01");
  EXPECT_TRUE(tables[16].familyMember);
  EXPECT_FALSE(tables[0].familyMember);
  EXPECT_EQ(tables[17].kind, Kind::kConstant);
}

TEST_F(TablesImportTest, WeldSteel) {
  CheckTables("S355J2G3.mat");
  EXPECT_EQ(m_Checked, 18);
}

TEST_F(TablesImportTest, CreepNickelAlloy) {
  CheckTables("NiCr19Fe19Nb5Mo3.mat");
  EXPECT_EQ(m_Checked, 8);
}

TEST_F(TablesImportTest, AluminiumWithCarriageReturns) {
  CheckTables("AlMg4.5Mn.mat");
  EXPECT_EQ(m_Checked, 5);
}

TEST_F(TablesImportTest, ThermometalWithMetallurgyTables) {
  CheckTables("16MnCr5_thermometal.mat");
  EXPECT_EQ(m_Checked, 23);
}

TEST_F(TablesImportTest, CaseHardeningSteels) {
  CheckTables("case_hardening_steels.mat");
  EXPECT_EQ(m_Checked, 2 * (2 + 10 + 13));
}

TEST_F(TablesImportTest, MetallurgyFile) {
  CheckTables("METALLURGY.mat");
  EXPECT_EQ(m_Checked, 23);
}

TEST_F(TablesImportTest, TemperingSteel) {
  CheckTables("42CrMo4_tempering.mat");
  EXPECT_EQ(m_Checked, 17);
}

TEST_F(TablesImportTest, StainlessSteels) {
  CheckTables("stainless_steels.mat");
  EXPECT_EQ(m_Checked, 8);
}

TEST_F(TablesImportTest, DistortionSteels) {
  CheckTables("S460M_DE.mat");
  EXPECT_EQ(m_Checked, 6);
}

// ---- What the tables add around their numbers ----

TEST_F(TablesImportTest, TheWeldSteelsListsAndFamiliesCarryTheirConditions) {
  Database database(Import(CorpusPath("S355J2G3.mat")));
  const std::string record = RecordPath("W_S355J2G3");
  // Thermal strains: one phase each, and the direction of the label line.
  EXPECT_EQ(database.Texts(record + "//Curve[@Label='Curve23']/ParameterFixed[@IDref='StrainType']/Value"),
            std::vector<std::string>{"LX"});
  EXPECT_EQ(database.Texts(record + "//Dataset[@DatasetID='20']/Link/@DatasetIDref"),
            (std::vector<std::string>{"21", "22", "23", "24", "25", "26"}));
  // Yield stress per phase.
  EXPECT_EQ(database.Texts(record + "//Curve[@Label='Curve44']/ParameterFixed[@IDref='Selected_Phases']/Value"),
            std::vector<std::string>{"Martensite"});
  EXPECT_EQ(database.Texts(record + "//Curve[@Label='Curve44']/ParameterAxis/@IDref"),
            std::vector<std::string>{"Temperature"});
  // The hardening family: a temperature each, plastic strain on the axis.
  EXPECT_EQ(database.Texts(record + "//Curve[@Label='Curve62']/ParameterFixed[@IDref='TEMP']/Value"),
            std::vector<std::string>{"5.000000e+02"});
  EXPECT_EQ(database.Texts(record + "//Curve[@Label='Curve62']/ParameterAxis/@IDref"),
            std::vector<std::string>{"Plastic_strain"});
  EXPECT_EQ(database.Texts(record + "//Dataset[@IDref='Yield_Carbon_Coeff']/FloatList/FloatItem/Constant/Value"),
            (std::vector<std::string>{"1650", ""}));
}

TEST_F(TablesImportTest, TheCreepListGivesEachCreepTableItsParameter) {
  Database database(Import(CorpusPath("NiCr19Fe19Nb5Mo3.mat")));
  const std::string record = RecordPath("W_NiCr19Fe19Nb5Mo3");
  const char* names[] = {"CreepLogHardeningCoefficient", "CreepSensitivityExponent", "CreepH", "CreepLogC",
                         "CreepConstantP"};
  for (int i = 0; i < 5; ++i) {
    const std::string id = std::to_string(201 + i);
    EXPECT_EQ(database.Texts(record + "/Datasets/Dataset[@DatasetID='" + id + "']/@IDref"),
              std::vector<std::string>{names[i]})
        << id;
  }
  EXPECT_EQ(database.Nodes(record + "//Model[@IDref='CreepRuptureModel']").size(), 1u);
  EXPECT_EQ(database.Texts(record + "//Model[@IDref='CreepRuptureModel']/Dataset[@IDref='CreepH']/Link/@DatasetIDref"),
            std::vector<std::string>{"203"});
}

TEST_F(TablesImportTest, DiffusionCoefficientsNameTheirElements) {
  Database database(Import(CorpusPath("case_hardening_steels.mat")));
  const std::string record = RecordPath("W_20MnCr5");
  EXPECT_EQ(database.Texts(record + "/Datasets/Dataset[@DatasetID='6']/FloatList/ParameterFixed[@IDref="
                                    "'Element_name']/Value"),
            (std::vector<std::string>{"Carbon", "Carbon", "Carbon"}));
  EXPECT_EQ(database.Texts(record + "/Datasets/Dataset[@DatasetID='7'][@IDref='DiffusionCoefficientZ']/FloatList/"
                                    "ParameterFixed[@IDref='Element_name']/Value"),
            std::vector<std::string>{"Nitrogen"});
}

TEST_F(TablesImportTest, NoTableWordIsMissingFromTheMapping) {
  for (const char* name : {"S355J2G3.mat", "NiCr19Fe19Nb5Mo3.mat", "AlMg4.5Mn.mat", "16MnCr5_thermometal.mat",
                           "case_hardening_steels.mat", "METALLURGY.mat", "42CrMo4_tempering.mat",
                           "stainless_steels.mat", "S460M_DE.mat"}) {
    Import(CorpusPath(name));
    for (const std::string& warning : MappingWarnings())
      for (const char* word : {"\"CREEP", "\"TABLE\"", "\"STATUS\"", "\"UnreferencedTable\"", "Creep",
                               "DiffusionCoefficient", "Thermal_conductivity_weld", "EnthalpyChange"})
        EXPECT_EQ(warning.find(word), std::string::npos) << name << ": " << warning;
  }
}

// ---- A function and the "STATUS" line that names it ----

TEST_F(TablesImportTest, AFileWithOneStatusLineAndOneFunctionKeepsTheFunctionWithItsParameter) {
  // Both numbers start at 50000 and move together in this program.
  ASSERT_EQ(GetStatusCounter(), GetFortranTableCounter());
  const int number = GetStatusCounter();
  const std::string path = WriteCardFile("status.mat",
                                         "NOM : W F1 mechanical mm\n"
                                         "LABELS :\nSTATUS 0\nNU 0.3\nFIN LABELS\n"
                                         "TABLES :\n7 / FORTRAN\nSIGY = 355. * 2\nEND\nFIN TABLES\n"
                                         "FIN NOM\n");
  Database database(Import(path));
  const std::string record = RecordPath("W_F1");
  const std::string id = std::to_string(number);
  EXPECT_EQ(database.Texts(record + "//Model//Dataset[@IDref='FortranStatus']/Link/@DatasetIDref"),
            std::vector<std::string>{id});
  EXPECT_EQ(database.Texts(record + "/Datasets/Dataset[@DatasetID='" + id + "']/@IDref"),
            std::vector<std::string>{"FortranStatus"});
  EXPECT_EQ(database.Texts(record + "/Datasets/Dataset[@DatasetID='" + id + "']/String"),
            std::vector<std::string>{"FORTRAN;SIGY = 355. * 2;END"});
  EXPECT_EQ(database.Nodes(record + "//Dataset[@DatasetID='7']").size(), 0u);
  EXPECT_EQ(GetStatusCounter(), GetFortranTableCounter());
}

}  // namespace
