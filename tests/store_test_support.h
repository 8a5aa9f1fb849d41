#pragma once

// Shared by the store's test programs: a small mapping written by the test
// and put in force through QUILLON_MAPPING_FILE, scratch files, and a fresh
// store per test.

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "store/orvane.h"
#include "store/orvanegeneric.h"

namespace storetest {

inline const char* kMappingXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<Mapping solution="Store Test" version="1">
  <Models>
    <Model IDref="GenericInfo_Weld" Category="Generic Info">
      <SubModel IDref="Phase_details_model" Create="false"/>
    </Model>
    <Model IDref="PhaseDetails" Category="Generic Info"/>
    <Model IDref="Mechanical_Weld" Category="Mechanical" CardModels="mechanical,mechanical_phases">
      <SubModel IDref="SpecialPropertyModel"/>
    </Model>
    <Model IDref="Thermal_Weld" Category="Thermo-Physical" CardModels="thermometal">
      <SubModel IDref="ThermalPropertyModel"/>
    </Model>
    <Model IDref="Metallurgy_Weld" Category="Metallurgy" CardModels="Metallurgy_Weld">
      <SubModel IDref="ReactionDefinition" Create="false"/>
    </Model>
    <Model IDref="Tempering_Weld" Category="Tempering" CardModels="tempering"/>
  </Models>
  <Sections>
    <Section CardsetKW="LABELS :" CardsetKWParent="NOM :" CardsetModel="mechanical"/>
  </Sections>
  <Parameters>
    <Parameter OrvaneMLID="Material_type" CardsetKW="NOM :" Model="GenericInfo_Weld" DataType="choice">
      <Choice Name="Weld" CardsetCode="W"/>
    </Parameter>
    <Parameter OrvaneMLID="Youngs_modulus_weld" CardsetID="E" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="float"/>
    <Parameter OrvaneMLID="Youngs_modulus_thermal" CardsetID="E" CardsetKW="MATERIAUX :" CardsetModel="thermometal"
               Model="ThermalPropertyModel" DataType="float"/>
    <Parameter OrvaneMLID="Density_weld" CardsetID="RHO" CardsetKW="MATERIAUX :" CardsetModel="thermometal"
               Model="ThermalPropertyModel" DataType="curve" DependentParamID="Temperature" FixedParamIDs="Selected_Phases"/>
    <Parameter OrvaneMLID="Hardening_model" CardsetID="MODEL" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="choice">
      <Choice Name="Isotropic" CardsetCode="1"/>
      <Choice Name="Kinematic" CardsetCode="2"/>
    </Parameter>
    <Parameter OrvaneMLID="Label_text" CardsetID="TXT" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="string"/>
    <Parameter OrvaneMLID="Number of Phases" CardsetID="PHAS" CardsetKW="MATERIAUX :" Model="PhaseDetails" DataType="integer"/>
    <Parameter OrvaneMLID="Phase_name" CardsetID="PHASE" CardsetKW="Phases" Model="Phase_details_model" DataType="string"/>
    <Parameter OrvaneMLID="Phase_description" CardsetKW="Phases" Model="Phase_details_model" DataType="string"/>
    <Parameter OrvaneMLID="Table_link" CardsetID="LNK" CardsetKW="LABELS :" CardsetModel="mechanical"
               Model="Mechanical_Weld" DataType="link"/>
    <Parameter OrvaneMLID="Parent_phase" CardsetKW="REACTION" Model="ReactionDefinition" DataType="string"/>
  </Parameters>
</Mapping>
)";

inline std::string ScratchPath(const std::string& name) {
  const char* base = std::getenv("TMPDIR");
  return std::string(base != nullptr && base[0] != '\0' ? base : "/tmp") + "/quillon_store_" +
         std::to_string(getpid()) + "_" + name;
}

inline void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

inline bool FileExists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

// Each test starts on an empty store under the test mapping.
class StoreTest : public ::testing::Test {
 protected:
  // The mapping the store is started with; a suite may give one of its own.
  virtual const char* MappingXml() const { return kMappingXml; }

  void SetUp() override {
    m_MappingPath = ScratchPath("mapping.xml");
    WriteFile(m_MappingPath, MappingXml());
    setenv("QUILLON_MAPPING_FILE", m_MappingPath.c_str(), 1);
    OrvaneStaticVars::Init("no database of this name");
  }
  void TearDown() override {
    OrvaneStaticVars::Init(nullptr);
    unsetenv("QUILLON_MAPPING_FILE");
    std::remove(m_MappingPath.c_str());
  }

  // A material made current under a card model, as a "NOM :" line does it.
  OrvaneMLRecordMaterial* StartMaterial(const char* id, const char* cardModel) {
    OrvaneStaticVars::ClearDatasets();
    OrvaneStaticVars::SetActiveModel(cardModel);
    return OrvaneStaticVars::GetOrCreateMaterial(id);
  }

  std::string m_MappingPath;
};

}  // namespace storetest
