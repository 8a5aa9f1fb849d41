#pragma once

// XPath over a database document, for the tests that read back what an import
// stored: the nodes an expression selects, or their texts.

#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <string>
#include <vector>

namespace xpathtest {

inline std::vector<xmlNodePtr> SelectNodes(void* document, const std::string& path, xmlNodePtr from = nullptr) {
  std::vector<xmlNodePtr> nodes;
  xmlXPathContextPtr context = xmlXPathNewContext(static_cast<xmlDocPtr>(document));
  if (from != nullptr) context->node = from;
  xmlXPathObjectPtr result = xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path.c_str()), context);
  if (result != nullptr && result->nodesetval != nullptr)
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) nodes.push_back(result->nodesetval->nodeTab[i]);
  xmlXPathFreeObject(result);
  xmlXPathFreeContext(context);
  return nodes;
}

inline std::vector<std::string> SelectTexts(void* document, const std::string& path, xmlNodePtr from = nullptr) {
  std::vector<std::string> texts;
  for (xmlNodePtr node : SelectNodes(document, path, from)) {
    xmlChar* text = xmlNodeGetContent(node);
    texts.push_back(text != nullptr ? reinterpret_cast<const char*>(text) : "");
    xmlFree(text);
  }
  return texts;
}

}  // namespace xpathtest
