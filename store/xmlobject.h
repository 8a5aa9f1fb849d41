#pragma once

// The elements of one name below a node, gathered once at construction.

#include <functional>
#include <vector>

#include "core/export.h"

class QUILLON_API XMLObject {
 public:
  // Every descendant element of `parent` (not `parent` itself) named `name`,
  // in document order.  A null parent or name gives an empty list.
  XMLObject(void* parent, const char* name);
  // A copy holds the same nodes.
  XMLObject(const XMLObject& other);
  XMLObject& operator=(const XMLObject& other);
  ~XMLObject();

  int GetCount() const;
  // The i-th node, or null when i is out of range.
  void* GetNode(int i) const;

 private:
  std::vector<void*> m_Nodes;
};

namespace quillon {
// Calls `visit` for `root` (when it is an element) and every element below it,
// in document order.  For the store's own readers; `visit` must not change the
// tree while the walk is under way.
QUILLON_API void ForEachElement(void* root, const std::function<void(void* element)>& visit);
}  // namespace quillon
