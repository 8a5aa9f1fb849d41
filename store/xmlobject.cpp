#include "store/xmlobject.h"

#include <libxml/tree.h>

#include <cstring>

namespace {

// Walks the subtree without recursion, so a deeply nested document can't
// exhaust the stack; children are visited before siblings, which is document
// order.
template <typename Visit>
void WalkDescendantElements(xmlNodePtr parent, Visit visit) {
  xmlNodePtr node = parent->children;
  while (node != nullptr && node != parent) {
    if (node->type == XML_ELEMENT_NODE) visit(node);
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr) {
      node = node->children;
      continue;
    }
    while (node != parent && node->next == nullptr) node = node->parent;
    if (node != parent) node = node->next;
  }
}

}  // namespace

XMLObject::XMLObject(void* parent, const char* name) {
  if (parent == nullptr || name == nullptr) return;
  xmlNodePtr start = static_cast<xmlNodePtr>(parent);
  if (start->type != XML_ELEMENT_NODE && start->type != XML_DOCUMENT_NODE) return;
  WalkDescendantElements(start, [&](xmlNodePtr element) {
    if (element->name != nullptr &&
        std::strcmp(reinterpret_cast<const char*>(element->name), name) == 0) {
      m_Nodes.push_back(element);
    }
  });
}

XMLObject::XMLObject(const XMLObject& other) = default;
XMLObject& XMLObject::operator=(const XMLObject& other) = default;
XMLObject::~XMLObject() = default;

int XMLObject::GetCount() const { return static_cast<int>(m_Nodes.size()); }

void* XMLObject::GetNode(int i) const {
  if (i < 0 || i >= GetCount()) return nullptr;
  return m_Nodes[static_cast<std::size_t>(i)];
}

namespace quillon {

void ForEachElement(void* root, const std::function<void(void* element)>& visit) {
  if (root == nullptr) return;
  xmlNodePtr start = static_cast<xmlNodePtr>(root);
  if (start->type == XML_ELEMENT_NODE) visit(start);
  if (start->type != XML_ELEMENT_NODE && start->type != XML_DOCUMENT_NODE) return;
  WalkDescendantElements(start, [&](xmlNodePtr element) { visit(element); });
}

}  // namespace quillon
