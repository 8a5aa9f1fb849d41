#include <string>
#include <vector>

#include "import/tablehelpers.h"
#include "import/tableconverters.h"
#include "store/orvanegeneric.h"
#include "store/orvaneml.h"

void AddCurveFixedParameter(const char* id, OrvaneMLRecordCurve* curve, const char* value) {
  if (id == nullptr || curve == nullptr || value == nullptr) return;
  const std::string text = value;
  if (text.find(',') != std::string::npos) {
    // "LX,LY": one condition per direction.
    std::vector<std::string> pieces;
    OrvaneGenericAPI::strtoken(text.c_str(), ',', pieces);
    for (const std::string& piece : pieces) AddCurveFixedParameter(id, curve, piece.c_str());
    return;
  }
  for (const OrvaneMLRecordParameterFixed* fixed : curve->m_ParameterFixed)
    if (fixed != nullptr && fixed->m_IDref == id && fixed->m_Value == text) return;
  curve->AddParameterFixed(tables::NewFixedParameter(id, value));
}
