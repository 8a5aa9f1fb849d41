// The store's configuration: the active solution and where its mapping is,
// both steered by the environment.

#include "store/orvanedb.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "store/mapping.h"

namespace {

const char* const kVariables[] = {"QUILLON_SOLUTION", "QUILLON_MAPPING_FILE", "QUILLON_MAPPING_DIR"};

// Each test starts from an environment without the three variables and
// leaves the process's own values as it found them.
class OrvaneConfigTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : kVariables) {
      const char* value = getenv(name);
      m_Saved.push_back(value != nullptr ? std::make_pair(true, std::string(value))
                                         : std::make_pair(false, std::string()));
      unsetenv(name);
    }
    char folder[] = "/tmp/quillon_config_XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    m_Folder = folder;
  }

  void TearDown() override {
    for (size_t i = 0; i < m_Saved.size(); ++i) {
      if (m_Saved[i].first) {
        setenv(kVariables[i], m_Saved[i].second.c_str(), 1);
      } else {
        unsetenv(kVariables[i]);
      }
    }
    for (const std::string& file : m_Files) std::remove(file.c_str());
    rmdir(m_Folder.c_str());
  }

  std::string MakeFile(const std::string& name) {
    const std::string path = m_Folder + "/" + name;
    std::ofstream(path) << "<Mapping solution=\"x\"/>\n";
    m_Files.push_back(path);
    return path;
  }

  std::string MappingPath(const char* solution) {
    std::string path = "unchanged";
    m_Config.GetMappingXMLFile(solution, path);
    return path;
  }

  OrvaneConfig m_Config;
  std::string m_Folder;
  std::vector<std::string> m_Files;
  std::vector<std::pair<bool, std::string>> m_Saved;
};

TEST_F(OrvaneConfigTest, ActiveSolutionIsOrielJointByDefault) {
  EXPECT_STREQ(m_Config.GetActiveSolution(), "Oriel Joint");
  EXPECT_STREQ(OrvaneConfig::DefaultSolution(), "Oriel Joint");
}

TEST_F(OrvaneConfigTest, EmptySolutionVariableCountsAsUnset) {
  setenv("QUILLON_SOLUTION", "", 1);
  EXPECT_STREQ(m_Config.GetActiveSolution(), "Oriel Joint");
}

TEST_F(OrvaneConfigTest, ActiveSolutionComesFromQuillonSolution) {
  setenv("QUILLON_SOLUTION", "Bead Study", 1);
  EXPECT_STREQ(m_Config.GetActiveSolution(), "Bead Study");
  setenv("QUILLON_SOLUTION", "Other", 1);
  EXPECT_STREQ(m_Config.GetActiveSolution(), "Other") << "read anew at each call";
}

TEST_F(OrvaneConfigTest, ActiveSolutionTextIsOwnedByTheConfiguration) {
  setenv("QUILLON_SOLUTION", "Bead Study", 1);
  const char* text = m_Config.GetActiveSolution();
  unsetenv("QUILLON_SOLUTION");
  EXPECT_STREQ(text, "Bead Study") << "the text outlives the variable until the next call";
}

TEST_F(OrvaneConfigTest, WithoutVariablesTheShippedMappingIsUsed) {
  EXPECT_EQ(MappingPath("Oriel Joint"), quillon::Mapping::ShippedPath());
  EXPECT_EQ(MappingPath(nullptr), quillon::Mapping::ShippedPath());
  EXPECT_EQ(MappingPath("Any Other Solution"), quillon::Mapping::ShippedPath());
  quillon::Mapping mapping;
  std::string error;
  EXPECT_TRUE(mapping.LoadFile(MappingPath("Oriel Joint"), error)) << error;
}

TEST_F(OrvaneConfigTest, MappingFileVariableServesEverySolution) {
  const std::string file = MakeFile("one.xml");
  setenv("QUILLON_MAPPING_FILE", file.c_str(), 1);
  EXPECT_EQ(MappingPath("Oriel Joint"), file);
  EXPECT_EQ(MappingPath("Bead Study"), file);
  EXPECT_EQ(MappingPath(nullptr), file);
}

TEST_F(OrvaneConfigTest, MappingFileVariableIsTakenAsItStandsEvenIfMissing) {
  // The loader reports a missing file with its path; silently falling back
  // would hide the host's typo.
  setenv("QUILLON_MAPPING_FILE", "/nonexistent/mapping.xml", 1);
  EXPECT_EQ(MappingPath("Oriel Joint"), "/nonexistent/mapping.xml");
}

TEST_F(OrvaneConfigTest, MappingFolderGivesTheFileNamedAfterTheSolution) {
  const std::string file = MakeFile("Oriel Joint.xml");
  setenv("QUILLON_MAPPING_DIR", m_Folder.c_str(), 1);
  EXPECT_EQ(MappingPath("Oriel Joint"), file);
}

TEST_F(OrvaneConfigTest, MappingFolderMayEndInASlash) {
  const std::string file = MakeFile("Oriel Joint.xml");
  setenv("QUILLON_MAPPING_DIR", (m_Folder + "/").c_str(), 1);
  EXPECT_EQ(MappingPath("Oriel Joint"), file);
}

TEST_F(OrvaneConfigTest, MappingFolderWithoutTheSolutionFallsBackOnTheShippedFile) {
  MakeFile("Oriel Joint.xml");
  setenv("QUILLON_MAPPING_DIR", m_Folder.c_str(), 1);
  EXPECT_EQ(MappingPath("Bead Study"), quillon::Mapping::ShippedPath());
}

TEST_F(OrvaneConfigTest, NullOrEmptySolutionMeansTheActiveOne) {
  const std::string bead = MakeFile("Bead Study.xml");
  const std::string oriel = MakeFile("Oriel Joint.xml");
  setenv("QUILLON_MAPPING_DIR", m_Folder.c_str(), 1);
  EXPECT_EQ(MappingPath(nullptr), oriel);
  EXPECT_EQ(MappingPath(""), oriel);
  setenv("QUILLON_SOLUTION", "Bead Study", 1);
  EXPECT_EQ(MappingPath(nullptr), bead);
  EXPECT_EQ(MappingPath("Oriel Joint"), oriel) << "a named solution beats the active one";
}

TEST_F(OrvaneConfigTest, MappingFileVariableWinsOverTheFolder) {
  MakeFile("Oriel Joint.xml");
  const std::string file = MakeFile("one.xml");
  setenv("QUILLON_MAPPING_DIR", m_Folder.c_str(), 1);
  setenv("QUILLON_MAPPING_FILE", file.c_str(), 1);
  EXPECT_EQ(MappingPath("Oriel Joint"), file);
}

TEST_F(OrvaneConfigTest, SolutionNamesThatLeaveTheFolderAreNotLookedUp) {
  // "../x" would name a file outside the folder the host chose.
  mkdir((m_Folder + "/sub").c_str(), 0700);
  const std::string outside = MakeFile("x.xml");
  setenv("QUILLON_MAPPING_DIR", (m_Folder + "/sub").c_str(), 1);
  EXPECT_EQ(MappingPath("../x"), quillon::Mapping::ShippedPath());
  EXPECT_NE(MappingPath("../x"), m_Folder + "/sub/../x.xml");
  EXPECT_NE(MappingPath("../x"), outside);
  EXPECT_EQ(MappingPath(".."), quillon::Mapping::ShippedPath());
  rmdir((m_Folder + "/sub").c_str());
}

TEST_F(OrvaneConfigTest, EmptyVariablesCountAsUnset) {
  setenv("QUILLON_MAPPING_FILE", "", 1);
  setenv("QUILLON_MAPPING_DIR", "", 1);
  EXPECT_EQ(MappingPath("Oriel Joint"), quillon::Mapping::ShippedPath());
}

TEST_F(OrvaneConfigTest, ConfigurationsAreDefaultConstructibleAndIndependent) {
  OrvaneConfig other;
  setenv("QUILLON_SOLUTION", "A", 1);
  const char* first = m_Config.GetActiveSolution();
  setenv("QUILLON_SOLUTION", "B", 1);
  EXPECT_STREQ(other.GetActiveSolution(), "B");
  EXPECT_STREQ(first, "A");
}

}  // namespace
