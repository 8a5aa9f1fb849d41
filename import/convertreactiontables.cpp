#include <strings.h>

#include <string>
#include <vector>

#include "import/reactionconverters.h"
#include "store/orvane.h"
#include "store/orvaneml.h"

namespace {

// The kinetic keys of a reaction line, compared without case.
const char* const kKeys[] = {"K", "KP", "F", "FP", "N", "PEQ", "TAU", "FCA"};

bool IsKey(const std::string& token) {
  for (const char* key : kKeys) {
    if (strcasecmp(token.c_str(), key) == 0) return true;
  }
  return false;
}

// The store's card words of the one-letter keys.
std::string StoreKey(const std::string& key) {
  if (strcasecmp(key.c_str(), "K") == 0) return "KT";
  if (strcasecmp(key.c_str(), "F") == 0) return "FX";
  if (strcasecmp(key.c_str(), "N") == 0) return "NX";
  return key;
}

bool IsGrainMark(const std::string& token) { return strcasecmp(token.c_str(), "G") == 0; }

OrvaneMLRecordDataset* KeyDataset(const std::string& name) {
  return OrvaneStaticVars::GetOrCreateDataset(name.c_str(), "IDref", false, nullptr, nullptr);
}

// Every blank cuts: two blanks in a row give an empty token.
std::vector<std::string> Cut(const char* text) {
  std::vector<std::string> tokens;
  std::string rest(text);
  size_t start = 0;
  for (;;) {
    const size_t blank = rest.find(' ', start);
    if (blank == std::string::npos) {
      tokens.push_back(rest.substr(start));
      return tokens;
    }
    tokens.push_back(rest.substr(start, blank - start));
    start = blank + 1;
  }
}

void AddLink(OrvaneMLRecordDataset* dataset, const std::string& tableId) {
  OrvaneMLRecordLink* link = new OrvaneMLRecordLink();
  link->SetDatasetIDref(tableId.c_str());
  dataset->AddLink(link);
}

// The grain size of the open end of a line: the first condition of the
// first curve.  A dataset without one has no size left to fill.
OrvaneMLRecordParameterFixed* GrainSizeOf(OrvaneMLRecordDataset* dataset) {
  if (dataset->m_Float == nullptr || dataset->m_Float->m_Curves.empty()) return nullptr;
  OrvaneMLRecordCurve* curve = dataset->m_Float->m_Curves.front();
  return curve->m_ParameterFixed.empty() ? nullptr : curve->m_ParameterFixed.front();
}

// "G size TABLE id", repeated: `index` holds the first "G" and is left at the
// last table id read.  False when the line ran out before a table id.
bool GrainSizeTables(OrvaneMLRecordDataset* dataset, const std::string& name, const std::vector<std::string>& tokens,
                     size_t& index) {
  if (!AddGrainSizeCurve(dataset, nullptr, tokens, index)) return false;
  index += 3;
  while (index + 1 < tokens.size() && IsGrainMark(tokens[index + 1])) {
    size_t mark = index + 1;
    if (!AddGrainSizeCurve(KeyDataset(name), nullptr, tokens, mark)) return false;
    index = mark + 3;
  }
  return true;
}

}  // namespace

void LinkReactionTable(OrvaneMLRecordDataset* dataset, const std::vector<std::string>& tokens, size_t index) {
  if (dataset == nullptr || index >= tokens.size()) return;
  AddLink(dataset, tokens[index]);
  OrvaneStaticVars::AddDataset(dataset, tokens[index].c_str());
}

bool AddGrainSizeCurve(OrvaneMLRecordDataset* dataset, OrvaneMLRecordDataset* last,
                       const std::vector<std::string>& tokens, size_t& index) {
  if (dataset == nullptr) return false;
  const size_t count = tokens.size();

  if (last == nullptr) {
    OrvaneMLRecordDatasets* datasets = OrvaneStaticVars::GetDatasetsPtr();
    if (datasets == nullptr) return false;
    // One dataset per grain size, of the key's identifier, its curve
    // conditioned on the size.  The size may still be open, and the table
    // too: a "*" line brings them.
    OrvaneMLRecordDataset* grain = new OrvaneMLRecordDataset();
    grain->SetIDref(dataset->GetIDref());
    grain->m_Float = new OrvaneMLRecordFloat();
    OrvaneMLRecordCurve* curve = new OrvaneMLRecordCurve();
    grain->m_Float->AddCurve(curve);
    OrvaneMLRecordParameterFixed* size = new OrvaneMLRecordParameterFixed();
    size->SetIDref("Grain_size");
    size->SetValue("");
    curve->AddParameterFixed(size);
    datasets->AddDataset(grain);

    if (index + 3 < count) {
      const std::string& tableId = tokens[index + 3];
      size->SetValue(tokens[index + 1].c_str());
      AddLink(dataset, tableId);
      curve->SetLabel(("Curve" + tableId).c_str());
      grain->SetDatasetID(tableId.c_str());
      OrvaneStaticVars::AddDataset(grain, tableId.c_str());
      return true;
    }
    if (index + 1 < count) size->SetValue(tokens[index + 1].c_str());
    return false;
  }

  if (index >= count) return false;
  OrvaneMLRecordParameterFixed* size = GrainSizeOf(last);
  if (size != nullptr && size->m_Value.empty()) {
    size->SetValue(tokens[index].c_str());
    index += 2;
    if (index >= count) return false;
  }
  const std::string& tableId = tokens[index];
  AddLink(dataset, tableId);
  if (last->m_Float != nullptr && !last->m_Float->m_Curves.empty()) {
    last->m_Float->m_Curves.front()->SetLabel(("Curve" + tableId).c_str());
  }
  last->SetDatasetID(tableId.c_str());
  OrvaneStaticVars::AddDataset(last, tableId.c_str());
  return true;
}

void ParseReactionTableDetails(const char* details) {
  if (details == nullptr || details[0] == '\0') return;
  const std::vector<std::string> tokens = Cut(details);
  const size_t count = tokens.size();

  size_t i = 0;
  while (i < count) {
    const std::string& token = tokens[i];

    if (IsKey(token)) {
      const std::string name = StoreKey(token);
      // A key at the end of the line: its dataset is made, its table may
      // follow on a "*" line.
      if (i + 1 == count) {
        KeyDataset(name);
        break;
      }
      if (!IsGrainMark(tokens[i + 1])) {
        // "KEY TABLE id": the word between key and id is passed over,
        // whatever it says.
        OrvaneMLRecordDataset* dataset = KeyDataset(name);
        i += 2;
        if (i >= count) break;
        LinkReactionTable(dataset, tokens, i);
        ++i;
        continue;
      }
      ++i;
      if (!GrainSizeTables(KeyDataset(name), name, tokens, i)) break;
      ++i;
      continue;
    }

    // Not a key: the line goes on with the key the line before left open,
    // which is the store's current dataset.
    OrvaneMLRecordDataset* current = OrvaneStaticVars::GetCurrentDataset();
    if (current == nullptr) {
      // Nothing was opened yet: there is nothing the token could belong to.
      ++i;
      continue;
    }
    const std::string currentIDref = current->GetIDref();
    const std::string name = StoreKey(currentIDref.substr(0, currentIDref.find('_')));

    if (IsGrainMark(token)) {
      if (!GrainSizeTables(current, name, tokens, i)) break;
      ++i;
      continue;
    }
    if (strcasecmp(token.c_str(), "TABLE") == 0) {
      ++i;
      if (i >= count) break;
    }
    OrvaneMLRecordDatasets* datasets = OrvaneStaticVars::GetDatasetsPtr();
    OrvaneMLRecordDataset* last =
        datasets == nullptr || datasets->GetDataset().empty() ? nullptr : datasets->GetDataset().back();
    if (last != nullptr && currentIDref == last->GetIDref()) {
      AddGrainSizeCurve(current, last, tokens, i);
    } else {
      LinkReactionTable(current, tokens, i);
    }
    ++i;
  }
}
