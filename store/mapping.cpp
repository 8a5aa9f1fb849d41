#include "store/mapping.h"

#include <fcntl.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <string>

// The library target gets the repository's data folder; anything else that
// compiles this file looks in "data" below the working directory.
#ifndef QUILLON_DATA_DIR
#define QUILLON_DATA_DIR "data"
#endif

namespace quillon {

namespace {

// A mapping is a few hundred rows; a file far beyond that is a mistake, and
// refusing it keeps a wrong path from pulling gigabytes into memory.
constexpr size_t kMaxMappingBytes = 64u * 1024u * 1024u;

// The format has six value kinds; anything else is a typo that would
// otherwise surface much later as a dataset of the wrong kind.
const char* const kDataTypes[] = {"float", "string", "integer", "choice", "curve", "link"};

// Text attributes of each row kind, read the same way: absent means empty.
struct ParameterAttribute {
  const char* name;
  std::string MappingParameter::*field;
};
const ParameterAttribute kParameterAttributes[] = {
    {"OrvaneMLID", &MappingParameter::orvaneMLID},
    {"CardsetID", &MappingParameter::cardsetID},
    {"CardsetKW", &MappingParameter::cardsetKW},
    {"CardsetModel", &MappingParameter::cardsetModel},
    {"CardsetKWParent", &MappingParameter::cardsetKWParent},
    {"StartID", &MappingParameter::startID},
    {"Category", &MappingParameter::category},
    {"Model", &MappingParameter::model},
    {"DataType", &MappingParameter::dataType},
    {"DependentParamID", &MappingParameter::dependentParamID},
    {"Label", &MappingParameter::label},
    {"FixedParamIDs", &MappingParameter::fixedParamIDs},
};

struct SectionAttribute {
  const char* name;
  std::string MappingSection::*field;
};
const SectionAttribute kSectionAttributes[] = {
    {"CardsetKW", &MappingSection::cardsetKW},
    {"CardsetKWParent", &MappingSection::cardsetKWParent},
    {"CardsetModel", &MappingSection::cardsetModel},
};

struct ModelAttribute {
  const char* name;
  std::string MappingModel::*field;
};
const ModelAttribute kModelAttributes[] = {
    {"IDref", &MappingModel::idref},
    {"Category", &MappingModel::category},
    {"CardModels", &MappingModel::cardModels},
};

bool IsElement(const xmlNode* node, const char* name) {
  return node->type == XML_ELEMENT_NODE &&
         xmlStrEqual(node->name, reinterpret_cast<const xmlChar*>(name));
}

bool HasAttribute(xmlNode* node, const char* name) {
  return xmlHasNsProp(node, reinterpret_cast<const xmlChar*>(name), nullptr) != nullptr;
}

std::string Attribute(xmlNode* node, const char* name) {
  xmlChar* value = xmlGetNoNsProp(node, reinterpret_cast<const xmlChar*>(name));
  if (value == nullptr) return std::string();
  std::string text(reinterpret_cast<const char*>(value));
  xmlFree(value);
  return text;
}

// "file:line: what", the form compilers use, so editors can jump to it.
std::string Located(const std::string& name, long line, const std::string& what) {
  std::string text = name;
  if (line > 0) text += ":" + std::to_string(line);
  return text + ": " + what;
}

std::string Located(const std::string& name, const xmlNode* node, const std::string& what) {
  return Located(name, xmlGetLineNo(node), what);
}

// libxml2 ends its messages with a line end; the caller composes lines itself.
std::string ParserMessage(const xmlError* error) {
  if (error == nullptr || error->message == nullptr) return "not a well-formed XML document";
  std::string text = error->message;
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  return text;
}

// The parser goes on after its first fault and its last message is often a
// mere consequence ("premature end of data"); the first one names the cause.
struct FirstParserError {
  bool seen = false;
  int line = 0;
  std::string message;
};

void RememberFirstError(void* userData, xmlErrorPtr error) {
  auto* context = static_cast<xmlParserCtxtPtr>(userData);
  if (context == nullptr || context->_private == nullptr || error == nullptr) return;
  auto* first = static_cast<FirstParserError*>(context->_private);
  if (first->seen || error->level < XML_ERR_ERROR) return;
  first->seen = true;
  first->line = error->line;
  first->message = ParserMessage(error);
}

bool IsKnownDataType(const std::string& type) {
  for (const char* known : kDataTypes) {
    if (type == known) return true;
  }
  return false;
}

bool IsDigits(const std::string& text) {
  if (text.empty()) return false;
  for (char c : text) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

// Model lists are split at commas without trimming: the export order reads
// the same attribute that way, so " thermometal" must not match here either.
bool ListsWord(const std::string& list, const std::string& word) {
  if (word.empty()) return false;
  size_t start = 0;
  while (start <= list.size()) {
    size_t end = list.find(',', start);
    if (end == std::string::npos) end = list.size();
    if (list.compare(start, end - start, word) == 0) return true;
    start = end + 1;
  }
  return false;
}

// Reads a whole regular file; the reason names the path when it can't.
bool ReadWholeFile(const std::string& path, std::string& content, std::string& error) {
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = "cannot open mapping file " + path + ": " + std::strerror(errno);
    return false;
  }
  struct stat info;
  if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    close(fd);
    error = "cannot read mapping file " + path + ": not a regular file";
    return false;
  }
  if (static_cast<unsigned long long>(info.st_size) > kMaxMappingBytes) {
    close(fd);
    error = "mapping file " + path + " is larger than " + std::to_string(kMaxMappingBytes) +
            " bytes";
    return false;
  }
  content.clear();
  char buffer[65536];
  for (;;) {
    ssize_t got = read(fd, buffer, sizeof buffer);
    if (got == 0) break;
    if (got < 0) {
      if (errno == EINTR) continue;
      error = "cannot read mapping file " + path + ": " + std::strerror(errno);
      close(fd);
      return false;
    }
    content.append(buffer, static_cast<size_t>(got));
    if (content.size() > kMaxMappingBytes) {
      error = "mapping file " + path + " is larger than " + std::to_string(kMaxMappingBytes) +
              " bytes";
      close(fd);
      return false;
    }
  }
  close(fd);
  return true;
}

// Walks one row kind of the document; `read` turns an element into a row or
// sets the reason and answers false.
class RowReader {
 public:
  RowReader(const std::string& name, std::string& error) : m_Name(name), m_Error(error) {}

  bool Fail(const xmlNode* node, const std::string& what) {
    m_Error = Located(m_Name, node, what);
    return false;
  }

  // A required attribute must be there and must not be empty.
  bool Require(xmlNode* node, const char* element, const char* attribute) {
    if (!HasAttribute(node, attribute)) {
      return Fail(node, std::string("<") + element + "> has no " + attribute + " attribute");
    }
    if (Attribute(node, attribute).empty()) {
      return Fail(node, std::string("<") + element + "> has an empty " + attribute + " attribute");
    }
    return true;
  }

  bool ReadModel(xmlNode* node, MappingModel& model) {
    if (!Require(node, "Model", "IDref")) return false;
    for (const ModelAttribute& attribute : kModelAttributes) {
      model.*attribute.field = Attribute(node, attribute.name);
    }
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
      if (!IsElement(child, "SubModel")) continue;
      if (!Require(child, "SubModel", "IDref")) return false;
      const std::string create = Attribute(child, "Create");
      if (HasAttribute(child, "Create") && create != "true" && create != "false") {
        return Fail(child, "<SubModel> Create must be \"true\" or \"false\", not \"" + create + "\"");
      }
      (create == "false" ? model.optionalSubModels : model.subModels)
          .push_back(Attribute(child, "IDref"));
    }
    return true;
  }

  bool ReadSection(xmlNode* node, MappingSection& section) {
    // The export order takes only elements with both attributes as sections,
    // and an empty parent would put an empty keyword into that order.
    if (!Require(node, "Section", "CardsetKW")) return false;
    if (!Require(node, "Section", "CardsetKWParent")) return false;
    for (const SectionAttribute& attribute : kSectionAttributes) {
      section.*attribute.field = Attribute(node, attribute.name);
    }
    return true;
  }

  bool ReadParameter(xmlNode* node, MappingParameter& parameter) {
    if (!Require(node, "Parameter", "OrvaneMLID")) return false;
    for (const ParameterAttribute& attribute : kParameterAttributes) {
      parameter.*attribute.field = Attribute(node, attribute.name);
    }
    if (!parameter.dataType.empty() && !IsKnownDataType(parameter.dataType)) {
      return Fail(node, "<Parameter> DataType \"" + parameter.dataType +
                            "\" is none of float, string, integer, choice, curve, link");
    }
    // Table numbers are read with atoi on the export road; a word there
    // would silently become table 0.
    if (HasAttribute(node, "StartID") && !IsDigits(parameter.startID)) {
      return Fail(node, "<Parameter> StartID \"" + parameter.startID + "\" is not a table number");
    }
    for (xmlNode* child = node->children; child != nullptr; child = child->next) {
      if (!IsElement(child, "Choice")) continue;
      if (!Require(child, "Choice", "Name")) return false;
      MappingChoice choice;
      choice.name = Attribute(child, "Name");
      // Most choices are written in the card file as they are named.
      choice.cardCode = HasAttribute(child, "CardsetCode") ? Attribute(child, "CardsetCode")
                                                           : choice.name;
      parameter.choices.push_back(choice);
    }
    return true;
  }

 private:
  const std::string& m_Name;
  std::string& m_Error;
};

}  // namespace

bool MappingParameter::ListsCardModel(const std::string& cardModel) const {
  return ListsWord(cardsetModel, cardModel);
}

std::string Mapping::CardModelStem(const std::string& cardModel) {
  return cardModel.substr(0, cardModel.find('_'));
}

void Mapping::Clear() {
  m_Solution.clear();
  m_SourcePath.clear();
  m_Version.clear();
  m_Models.clear();
  m_Sections.clear();
  m_Parameters.clear();
}

bool Mapping::LoadFile(const std::string& path, std::string& error) {
  Clear();
  std::string content;
  if (!ReadWholeFile(path, content, error)) return false;
  if (!Parse(content, path, error)) return false;
  m_SourcePath = path;
  return true;
}

bool Mapping::LoadMemory(const std::string& xml, std::string& error) {
  Clear();
  return Parse(xml, "<memory>", error);
}

bool Mapping::Parse(const std::string& xml, const std::string& name, std::string& error) {
  Clear();
  if (xml.size() > kMaxMappingBytes || xml.size() > static_cast<size_t>(INT_MAX)) {
    error = Located(name, 0L, "mapping is larger than " + std::to_string(kMaxMappingBytes) + " bytes");
    return false;
  }
  xmlInitParser();
  xmlParserCtxtPtr context = xmlNewParserCtxt();
  if (context == nullptr) {
    error = Located(name, 0L, "out of memory for the XML parser");
    return false;
  }
  FirstParserError firstError;
  context->_private = &firstError;
  if (context->sax != nullptr) context->sax->serror = RememberFirstError;
  // No network, no DTD loading, no entity substitution; errors are collected
  // for the caller instead of being printed.
  const int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_BIG_LINES;
  xmlDocPtr document = xmlCtxtReadMemory(context, xml.data(), static_cast<int>(xml.size()),
                                         name.c_str(), nullptr, options);
  if (document == nullptr) {
    if (firstError.seen) {
      error = Located(name, firstError.line, firstError.message);
    } else {
      const xmlError* reason = xmlCtxtGetLastError(context);
      error = Located(name, reason != nullptr ? reason->line : 0, ParserMessage(reason));
    }
    xmlFreeParserCtxt(context);
    return false;
  }
  xmlFreeParserCtxt(context);

  bool ok = true;
  RowReader reader(name, error);
  xmlNode* root = xmlDocGetRootElement(document);
  if (document->intSubset != nullptr || document->extSubset != nullptr) {
    // A mapping needs no entities; refusing declarations keeps entity
    // expansion (and its blow-ups) out of attribute values.
    error = Located(name, 0L, "a mapping must not have a document type declaration");
    ok = false;
  } else if (root == nullptr || !IsElement(root, "Mapping")) {
    error = Located(name, root, std::string("the root element is <") +
                                    (root != nullptr ? reinterpret_cast<const char*>(root->name) : "") +
                                    ">, not <Mapping>");
    ok = false;
  } else {
    m_Solution = Attribute(root, "solution");
    m_Version = Attribute(root, "version");
    if (HasAttribute(root, "version") && m_Version != "1") {
      ok = reader.Fail(root, "mapping version \"" + m_Version + "\" is not supported (only \"1\")");
    }
  }

  // Unknown elements are passed over so that a host can keep notes of its
  // own in the file; the schema is the place to catch misspellings.
  for (xmlNode* group = ok ? root->children : nullptr; ok && group != nullptr; group = group->next) {
    for (xmlNode* row = group->children; ok && row != nullptr; row = row->next) {
      if (IsElement(group, "Models") && IsElement(row, "Model")) {
        MappingModel model;
        ok = reader.ReadModel(row, model);
        if (ok) m_Models.push_back(model);
      } else if (IsElement(group, "Sections") && IsElement(row, "Section")) {
        MappingSection section;
        ok = reader.ReadSection(row, section);
        if (ok) m_Sections.push_back(section);
      } else if (IsElement(group, "Parameters") && IsElement(row, "Parameter")) {
        MappingParameter parameter;
        ok = reader.ReadParameter(row, parameter);
        if (ok) m_Parameters.push_back(parameter);
      }
    }
  }
  xmlFreeDoc(document);
  if (!ok) Clear();
  return ok;
}

namespace {

// The preference order shared by the lookups by card word and by identifier:
// the card model itself, then its stem, then the first matching row.
template <typename Match>
const MappingParameter* FindPreferred(const std::vector<MappingParameter>& rows,
                                      const std::string& cardModel, Match matches) {
  for (const MappingParameter& row : rows) {
    if (matches(row) && row.ListsCardModel(cardModel)) return &row;
  }
  const std::string stem = Mapping::CardModelStem(cardModel);
  if (stem != cardModel) {
    for (const MappingParameter& row : rows) {
      if (matches(row) && row.ListsCardModel(stem)) return &row;
    }
  }
  for (const MappingParameter& row : rows) {
    if (matches(row)) return &row;
  }
  return nullptr;
}

}  // namespace

const MappingParameter* Mapping::FindByCardWord(const std::string& cardWord,
                                                const std::string& cardModel) const {
  // Store-only rows have no card word; an empty word (the label reader asks
  // with one for a line of a single pair) must not find them.
  if (cardWord.empty()) return nullptr;
  return FindPreferred(m_Parameters, cardModel,
                       [&](const MappingParameter& row) { return row.cardsetID == cardWord; });
}

const MappingParameter* Mapping::FindByID(const std::string& orvaneMLID) const {
  if (orvaneMLID.empty()) return nullptr;
  for (const MappingParameter& row : m_Parameters) {
    if (row.orvaneMLID == orvaneMLID) return &row;
  }
  return nullptr;
}

const MappingParameter* Mapping::FindByID(const std::string& orvaneMLID,
                                          const std::string& cardModel) const {
  if (orvaneMLID.empty()) return nullptr;
  return FindPreferred(m_Parameters, cardModel,
                       [&](const MappingParameter& row) { return row.orvaneMLID == orvaneMLID; });
}

const MappingModel* Mapping::DefaultModelForCardModel(const std::string& cardModel) const {
  for (const MappingModel& model : m_Models) {
    if (ListsWord(model.cardModels, cardModel)) return &model;
  }
  const std::string stem = CardModelStem(cardModel);
  if (stem != cardModel) {
    for (const MappingModel& model : m_Models) {
      if (ListsWord(model.cardModels, stem)) return &model;
    }
  }
  return nullptr;
}

const MappingModel* Mapping::FindModel(const std::string& idref) const {
  for (const MappingModel& model : m_Models) {
    if (model.idref == idref) return &model;
  }
  return nullptr;
}

const MappingModel* Mapping::FindOwnerOfSubModel(const std::string& idref) const {
  for (const MappingModel& model : m_Models) {
    for (const std::string& sub : model.subModels) {
      if (sub == idref) return &model;
    }
    for (const std::string& sub : model.optionalSubModels) {
      if (sub == idref) return &model;
    }
  }
  return nullptr;
}

bool Mapping::DeclaresModel(const std::string& idref) const {
  return FindModel(idref) != nullptr || FindOwnerOfSubModel(idref) != nullptr;
}

std::string Mapping::ShippedPath() { return std::string(QUILLON_DATA_DIR) + "/mapping.xml"; }

}  // namespace quillon
