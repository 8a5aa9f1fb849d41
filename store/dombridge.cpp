#include "store/dombridge.h"

#include <fcntl.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlsave.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

// The store's files are data, never a reason to reach the network, read a DTD
// or expand an entity; parser messages are turned into return values instead
// of being printed.  Blank text is kept, so a saved file reads back unchanged.
constexpr int kParseOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;

void (*g_SaveInterruptHook)(const char*) = nullptr;

xmlNodePtr AsNode(void* node) { return static_cast<xmlNodePtr>(node); }
xmlDocPtr AsDoc(void* doc) { return static_cast<xmlDocPtr>(doc); }

bool IsDocumentNode(xmlNodePtr node) {
  return node->type == XML_DOCUMENT_NODE || node->type == XML_HTML_DOCUMENT_NODE;
}

// What may be moved around the tree.  Text nodes are left out on purpose:
// libxml2 merges an appended text node into a text neighbour and frees it,
// which would leave the caller holding a dangling pointer.
bool IsMovable(xmlNodePtr node) {
  return node->type == XML_ELEMENT_NODE || node->type == XML_COMMENT_NODE ||
         node->type == XML_PI_NODE || node->type == XML_CDATA_SECTION_NODE;
}

// Nodes that belong to a document but stand in no tree: made by the bridge
// and not yet appended, or taken out by DomDeleteElement.  Callers keep using
// such nodes, so they can't be freed when they are detached; the document
// frees the ones still detached when it goes.  The list hangs off the document
// itself, so it can never outlive it or be confused with a later document at
// the same address.
using DetachedNodes = std::unordered_set<xmlNodePtr>;

DetachedNodes* DetachedNodesOf(xmlDocPtr doc, bool create) {
  if (doc == nullptr) return nullptr;
  auto* nodes = static_cast<DetachedNodes*>(doc->_private);
  if (nodes == nullptr && create) {
    nodes = new DetachedNodes;
    doc->_private = nodes;
  }
  return nodes;
}

void RememberDetached(xmlNodePtr node) {
  if (DetachedNodes* nodes = DetachedNodesOf(node->doc, true)) nodes->insert(node);
}

void ForgetDetached(xmlNodePtr node) {
  if (DetachedNodes* nodes = DetachedNodesOf(node->doc, false)) nodes->erase(node);
}

bool IsSelfOrAncestor(xmlNodePtr candidate, xmlNodePtr node) {
  for (xmlNodePtr at = node; at != nullptr; at = at->parent) {
    if (at == candidate) return true;
  }
  return false;
}

std::string DirectoryOf(const std::string& path) {
  const std::string::size_type cut = path.find_last_of('/');
  if (cut == std::string::npos) return ".";
  if (cut == 0) return "/";
  return path.substr(0, cut);
}

// A new file gets the permissions an ordinary create would give it; a
// replaced file keeps its own.
mode_t PermissionsFor(const std::string& path) {
  struct stat existing;
  if (stat(path.c_str(), &existing) == 0) return existing.st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// The rename is only durable once the directory entry is on disk; a failure
// here leaves a complete file either way, so it is not reported.
void SyncDirectory(const std::string& directory) {
  const int fd = open(directory.c_str(), O_RDONLY | O_DIRECTORY);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

bool WriteDocument(xmlDocPtr doc, int fd) {
  xmlSaveCtxtPtr save = xmlSaveToFd(fd, "UTF-8", XML_SAVE_FORMAT);
  if (save == nullptr) return false;
  const bool written = xmlSaveDoc(save, doc) >= 0;
  const bool flushed = xmlSaveClose(save) >= 0;
  return written && flushed;
}

std::string TrimLineEnd(const char* text) {
  std::string result = text != nullptr ? text : "";
  while (!result.empty() && (result.back() == '\n' || result.back() == '\r')) result.pop_back();
  return result;
}

// The parser goes on after a well-formedness error and reports what follows
// from it; the first error is the one that tells the reader what is wrong.
struct FirstParseError {
  bool seen = false;
  int line = 0;
  std::string message;
};
thread_local FirstParseError* t_FirstParseError = nullptr;

void RememberFirstParseError(void*, xmlErrorPtr error) {
  FirstParseError* first = t_FirstParseError;
  if (first == nullptr || first->seen || error == nullptr || error->level < XML_ERR_ERROR) return;
  first->seen = true;
  first->line = error->line;
  first->message = TrimLineEnd(error->message);
}

}  // namespace

extern "C" {

void* DomGetRootElement(void* doc) {
  if (doc == nullptr) return nullptr;
  return xmlDocGetRootElement(AsDoc(doc));
}

void* DomGetParentNode(void* node) {
  if (node == nullptr) return nullptr;
  xmlNodePtr parent = AsNode(node)->parent;
  if (parent == nullptr || IsDocumentNode(parent)) return nullptr;
  return parent;
}

const char* DomGetNodeName(void* node) {
  if (node == nullptr) return nullptr;
  return reinterpret_cast<const char*>(AsNode(node)->name);
}

char* DomGetAttVal(void* node, const char* name) {
  if (node == nullptr || name == nullptr) return nullptr;
  if (AsNode(node)->type != XML_ELEMENT_NODE) return nullptr;
  return reinterpret_cast<char*>(xmlGetProp(AsNode(node), reinterpret_cast<const xmlChar*>(name)));
}

char* DomGetTextNodeValue(void* node) {
  if (node == nullptr) return nullptr;
  return reinterpret_cast<char*>(xmlNodeGetContent(AsNode(node)));
}

void DomStringRelease(char* text) {
  if (text != nullptr) xmlFree(text);
}

void* DomCreateNewElement(void* doc, const char* name) {
  if (doc == nullptr || name == nullptr) return nullptr;
  const auto* xmlName = reinterpret_cast<const xmlChar*>(name);
  // An element that could not be written back as XML is refused here rather
  // than producing an unreadable file at save time.
  if (xmlValidateName(xmlName, 0) != 0) return nullptr;
  xmlNodePtr element = xmlNewDocNode(AsDoc(doc), nullptr, xmlName, nullptr);
  if (element != nullptr) RememberDetached(element);
  return element;
}

void DomAppendChild(void* doc, void* parent, void* child) {
  if (doc == nullptr || parent == nullptr || child == nullptr) return;
  xmlNodePtr into = AsNode(parent);
  xmlNodePtr moved = AsNode(child);
  if (!IsMovable(moved)) return;
  if (into->type != XML_ELEMENT_NODE && !IsDocumentNode(into)) return;
  // A document holds one root element only.
  if (IsDocumentNode(into) && moved->type == XML_ELEMENT_NODE &&
      xmlDocGetRootElement(reinterpret_cast<xmlDocPtr>(into)) != nullptr) {
    return;
  }
  // A node put below itself would make a cycle that every walk loops on.
  if (IsSelfOrAncestor(moved, into)) return;

  ForgetDetached(moved);
  xmlUnlinkNode(moved);
  // Names of a parsed document live in its dictionary, which goes when that
  // document is freed; adopting re-homes them (and namespace references) in
  // the new document before the node moves there.
  if (moved->doc != into->doc &&
      xmlDOMWrapAdoptNode(nullptr, moved->doc, moved, into->doc, into, 0) != 0) {
    RememberDetached(moved);
    return;
  }
  if (xmlAddChild(into, moved) == nullptr) RememberDetached(moved);
}

void* DomCloneNodeNew(void* doc, void* node, int deep) {
  if (doc == nullptr || node == nullptr) return nullptr;
  if (!IsMovable(AsNode(node))) return nullptr;
  // 1 copies the whole subtree; 2 the element with its attributes only, as a
  // shallow DOM clone does.
  xmlNodePtr copy = xmlDocCopyNode(AsNode(node), AsDoc(doc), deep != 0 ? 1 : 2);
  if (copy != nullptr) RememberDetached(copy);
  return copy;
}

void DomDeleteElement(void* node) {
  if (node == nullptr) return;
  xmlNodePtr element = AsNode(node);
  if (!IsMovable(element)) return;
  xmlUnlinkNode(element);
  RememberDetached(element);
}

void* DomParseFile(const char* path) {
  std::string reason;
  return quillon::DomParseFileWithReason(path, reason);
}

void DomFreeDocument(void* doc) {
  if (doc == nullptr) return;
  xmlDocPtr document = AsDoc(doc);
  if (DetachedNodes* nodes = DetachedNodesOf(document, false)) {
    // Names may live in the document's dictionary, so the nodes go first.
    for (xmlNodePtr node : *nodes) {
      if (node->parent == nullptr && node->doc == document) xmlFreeNode(node);
    }
    delete nodes;
    document->_private = nullptr;
  }
  xmlFreeDoc(document);
}

int DomSaveDocument(void* doc, const char* path) {
  if (doc == nullptr || path == nullptr || *path == '\0') return 0;
  const std::string target = path;
  // The temporary file stands beside the target so the rename stays within
  // one file system and is atomic.
  std::string temporary = target + ".tmpXXXXXX";
  const int fd = mkstemp(temporary.data());
  if (fd < 0) return 0;

  bool ok = fchmod(fd, PermissionsFor(target)) == 0;
  ok = ok && WriteDocument(AsDoc(doc), fd);
  ok = ok && fsync(fd) == 0;
  ok = (close(fd) == 0) && ok;
  if (ok && g_SaveInterruptHook != nullptr) g_SaveInterruptHook(temporary.c_str());
  ok = ok && rename(temporary.c_str(), target.c_str()) == 0;
  if (!ok) {
    unlink(temporary.c_str());
    return 0;
  }
  SyncDirectory(DirectoryOf(target));
  return 1;
}

}  // extern "C"

namespace quillon {

void* DomParseFileWithReason(const char* path, std::string& reason) {
  if (path == nullptr) {
    reason = "No file name given";
    return nullptr;
  }
  if (access(path, R_OK) != 0) {
    reason = std::string("Unable to open file ") + path;
    return nullptr;
  }
  xmlParserCtxtPtr context = xmlNewParserCtxt();
  if (context == nullptr) {
    reason = std::string("Unable to read file ") + path;
    return nullptr;
  }
  FirstParseError firstError;
  t_FirstParseError = &firstError;
  context->sax->serror = RememberFirstParseError;
  xmlDocPtr doc = xmlCtxtReadFile(context, path, nullptr, kParseOptions);
  t_FirstParseError = nullptr;
  xmlFreeParserCtxt(context);
  if (doc == nullptr) {
    reason = std::string("Unable to read file ") + path;
    if (firstError.line > 0) reason += ", line " + std::to_string(firstError.line);
    if (!firstError.message.empty()) reason += ": " + firstError.message;
  }
  return doc;
}

void SetSaveInterruptHookForTesting(void (*hook)(const char* tempPath)) {
  g_SaveInterruptHook = hook;
}

}  // namespace quillon
