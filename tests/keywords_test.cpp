#include "core/keywords.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace {

std::vector<std::string> KeysOf(const std::map<std::string, std::string>& table) {
    std::vector<std::string> keys;
    for (const auto& entry : table) keys.push_back(entry.first);
    return keys;
}

TEST(KeywordTables, HaveTheirFixedSizes) {
    EXPECT_EQ(KeywordPairTable.size(), 25u);
    EXPECT_EQ(BalancedKeywordTable.size(), 15u);
    EXPECT_EQ(KeywordTypeTable.size(), 24u);
}

TEST(KeywordPairTable, GivesTheClosingTextOfEachOpener) {
    EXPECT_EQ(KeywordPairTable.at("LISTE :"), "FIN LISTE");
    EXPECT_EQ(KeywordPairTable.at("NOM :"), "FIN NOM");
    EXPECT_EQ(KeywordPairTable.at("Chemical Composition:"), "Phases:");
    EXPECT_EQ(KeywordPairTable.at("Phases:"), "Typical Applications:");
    EXPECT_EQ(KeywordPairTable.at("Initial phases proportions if wire"), "EndInitial phases proportions if wire");
    EXPECT_EQ(KeywordPairTable.at("METALLURGY"), "REACTION");
    EXPECT_EQ(KeywordPairTable.at("TABLE"), "FIN MATERIAUX");
    EXPECT_EQ(KeywordPairTable.at("TABLES"), "FIN MATERIAUX");
    EXPECT_EQ(KeywordPairTable.at("CHIMIE :"), "FIN CHIMIE");
}

TEST(KeywordPairTable, HasOpenersWithoutClosingText) {
    for (const char* key : {"MATERIAUX :", "REACTION", "FIN NOM", "DEF_MATERIAL", "MATERIAL", "GRAIN"}) {
        ASSERT_EQ(KeywordPairTable.count(key), 1u) << key;
        EXPECT_EQ(KeywordPairTable.at(key), "") << key;
    }
}

TEST(BalancedKeywordTable, GivesTheRequiredClosingKeyword) {
    EXPECT_EQ(BalancedKeywordTable.at("COMMENTAIRES :"), "FIN COMMENTAIRES");
    EXPECT_EQ(BalancedKeywordTable.at("Class"), "EndClass");
    EXPECT_EQ(BalancedKeywordTable.at("Units"), "EndUnits");
    EXPECT_EQ(BalancedKeywordTable.at("MATERIAUX :"), "FIN MATERIAUX");
    EXPECT_EQ(BalancedKeywordTable.at("TABLES :"), "FIN TABLES");
    EXPECT_EQ(BalancedKeywordTable.count("TABLE"), 0u);
    EXPECT_EQ(BalancedKeywordTable.count("Phases:"), 0u);
}

TEST(BalancedKeywordTable, OpenersAreAllLocatorKeywords) {
    for (const auto& entry : BalancedKeywordTable)
        EXPECT_EQ(KeywordPairTable.count(entry.first), 1u) << entry.first;
}

TEST(BalancedKeywordTable, MateriauxClosesOnlyHereThoughPairTableGivesNoText) {
    EXPECT_EQ(KeywordPairTable.at("MATERIAUX :"), "");
    EXPECT_EQ(BalancedKeywordTable.at("MATERIAUX :"), "FIN MATERIAUX");
}

TEST(KeywordTypeTable, NumbersEveryKeyword) {
    const std::vector<std::pair<std::string, unsigned>> expected = {
        {"LISTE :", 1},
        {"COMMENTAIRES :", 2},
        {"Chemical Composition:", 3},
        {"Phases:", 4},
        {"Phases", 4},
        {"Typical applications:", 5},
        {"Labels:", 6},
        {"LABELS :", 7},
        {"TABLES :", 8},
        {"MATERIAUX :", 9},
        {"TABLE", 10},
        {"TABLES", 10},
        {"NOM :", 11},
        {"Class", 12},
        {"MaterialType", 13},
        {"REACTION", 14},
        {"Composition", 15},
        {"DEF_MATERIAL", 16},
        {"Initial phases proportions", 17},
        {"Initial phases proportions if wire", 18},
        {"Initial hardness", 19},
        {"MATERIAL", 20},
        {"CHIMIE :", 21},
        {"GRAIN", 22},
    };
    ASSERT_EQ(expected.size(), KeywordTypeTable.size());
    for (const auto& entry : expected) {
        ASSERT_EQ(KeywordTypeTable.count(entry.first), 1u) << entry.first;
        EXPECT_EQ(KeywordTypeTable.at(entry.first), entry.second) << entry.first;
    }
}

TEST(KeywordTypeTable, HoldsTwentyTwoDistinctNumbersFromOneToTwentyTwo) {
    std::set<unsigned> numbers;
    for (const auto& entry : KeywordTypeTable) numbers.insert(entry.second);
    EXPECT_EQ(numbers.size(), 22u);
    EXPECT_EQ(*numbers.begin(), 1u);
    EXPECT_EQ(*numbers.rbegin(), 22u);
}

TEST(KeywordTypeNumbers, HaveTheirFixedValues) {
    const std::vector<unsigned> numbers = {
        KW_MATLIST,          KW_COMMENTS,          KW_CHEMICAL_COMPOSITION, KW_PHASES,
        KW_TYPICAL_APPS,     KW_LABEL_EXPLANATION, KW_MAT_LABELS,           KW_MAT_TABLES,
        KW_MATERIAUX,        KW_METALLURGY_TABLE,  KW_MATERIAL_DETAILS,     KW_MAT_CLASS,
        KW_MATERIAL_TYPE,    KW_REACTION,          KW_COMPOSITION,          KW_DEF_MATERIAL,
        KW_PHASE_INFO,       KW_PHASE_INFO_IF_WIRE, KW_INITIAL_HARDNESS,    KW_METALLURGY,
        KW_CHIMIE,           KW_GRAIN,
    };
    for (unsigned i = 0; i < numbers.size(); ++i) EXPECT_EQ(numbers[i], i + 1);
}

TEST(KeywordTypeNumbers, ConvertToUnsignedWithoutACast) {
    static_assert(std::is_convertible_v<decltype(KW_GRAIN), unsigned>);
    unsigned keywordType = KW_MATERIAL_DETAILS;
    EXPECT_EQ(keywordType, KeywordTypeTable.at("NOM :"));
    EXPECT_EQ(KeywordTypeTable.at("GRAIN"), KW_GRAIN);
    EXPECT_EQ(KeywordTypeTable.at("MATERIAL"), KW_METALLURGY);
    EXPECT_EQ(KeywordTypeTable.at("TABLES"), KW_METALLURGY_TABLE);
}

TEST(KeywordTables, KeepTheirDifferentSpellingsOfTypicalApplications) {
    EXPECT_EQ(KeywordPairTable.at("Phases:"), "Typical Applications:");
    EXPECT_EQ(KeywordTypeTable.count("Typical applications:"), 1u);
    EXPECT_EQ(KeywordTypeTable.count("Typical Applications:"), 0u);
    EXPECT_EQ(KeywordPairTable.count("Typical applications:"), 0u);
    EXPECT_EQ(KeywordPairTable.count("Typical Applications:"), 0u);
}

TEST(KeywordTables, TypedKeywordsTheLocatorNeverRecords) {
    EXPECT_EQ(KeywordPairTable.count("Labels:"), 0u);
    EXPECT_EQ(KeywordPairTable.count("Typical applications:"), 0u);
    EXPECT_EQ(KeywordTypeTable.count("Labels:"), 1u);
    // "Labels:" and "LABELS :" are two different keywords.
    EXPECT_NE(KeywordTypeTable.at("Labels:"), KeywordTypeTable.at("LABELS :"));
}

TEST(KeywordTables, LocatedKeywordsWithoutTypeNumber) {
    for (const char* key : {"METALLURGY", "Units", "FIN NOM"}) {
        EXPECT_EQ(KeywordPairTable.count(key), 1u) << key;
        EXPECT_EQ(KeywordTypeTable.count(key), 0u) << key;
    }
}

TEST(KeywordTables, IterateInByteOrderCapitalsFirst) {
    // Byte order: a capital sorts before every small letter, so "COMMENTAIRES :" comes before
    // "Chemical Composition:" and "METALLURGY" before "MaterialType".
    const std::vector<std::string> pairKeys = {
        "CHIMIE :", "COMMENTAIRES :", "Chemical Composition:", "Class", "Composition",
        "DEF_MATERIAL", "FIN NOM", "GRAIN", "Initial hardness", "Initial phases proportions",
        "Initial phases proportions if wire", "LABELS :", "LISTE :", "MATERIAL", "MATERIAUX :",
        "METALLURGY", "MaterialType", "NOM :", "Phases", "Phases:", "REACTION", "TABLE", "TABLES",
        "TABLES :", "Units",
    };
    EXPECT_EQ(KeysOf(KeywordPairTable), pairKeys);

    const std::vector<std::string> balancedKeys = {
        "CHIMIE :", "COMMENTAIRES :", "Class", "Composition", "Initial hardness",
        "Initial phases proportions", "Initial phases proportions if wire", "LABELS :", "LISTE :",
        "MATERIAUX :", "MaterialType", "NOM :", "Phases", "TABLES :", "Units",
    };
    EXPECT_EQ(KeysOf(BalancedKeywordTable), balancedKeys);
}

TEST(KeywordTables, ClosingKeywordsSortEndBeforeFin) {
    std::set<std::string> closing;
    for (const auto& entry : BalancedKeywordTable) closing.insert(entry.second);
    const std::vector<std::string> expected = {
        "EndClass", "EndComposition", "EndInitial hardness", "EndInitial phases proportions",
        "EndInitial phases proportions if wire", "EndMaterialType", "EndPhases", "EndUnits",
        "FIN CHIMIE", "FIN COMMENTAIRES", "FIN LABELS", "FIN LISTE", "FIN MATERIAUX", "FIN NOM",
        "FIN TABLES",
    };
    EXPECT_EQ(std::vector<std::string>(closing.begin(), closing.end()), expected);
}

TEST(KeywordTables, TableSortsBeforeTablesAndTablesColon) {
    auto table = KeywordPairTable.find("TABLE");
    ASSERT_NE(table, KeywordPairTable.end());
    EXPECT_EQ((++table)->first, "TABLES");
    EXPECT_EQ((++table)->first, "TABLES :");
}

TEST(KeywordTables, LookupsAreCaseSensitiveAndWhole) {
    EXPECT_EQ(KeywordPairTable.count("liste :"), 0u);
    EXPECT_EQ(KeywordPairTable.count("LISTE :  "), 0u);
    EXPECT_EQ(KeywordPairTable.count("LISTE:"), 0u);
    EXPECT_EQ(KeywordTypeTable.count("phases"), 0u);
}

}  // namespace
