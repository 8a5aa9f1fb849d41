#pragma once

// A small C interface over the store's XML document.  Documents and nodes are
// opaque pointers (libxml2 underneath).  Every function accepts null arguments
// and then answers null or 0 or does nothing, so a caller may chain lookups
// without checking each step.

#include <string>

#include "core/export.h"

extern "C" {

// The root element of a document, or null.
QUILLON_API void* DomGetRootElement(void* doc);
// The parent element of a node.  Null for the root element (its parent is the
// document itself, which is no element) and for a detached node.
QUILLON_API void* DomGetParentNode(void* node);
// The element's name.  Owned by the document: do not release.
QUILLON_API const char* DomGetNodeName(void* node);
// A copy of an attribute's value, null if absent.  Give it back with DomStringRelease.
QUILLON_API char* DomGetAttVal(void* node, const char* name);
// A copy of the element's text content.  Give it back with DomStringRelease.
QUILLON_API char* DomGetTextNodeValue(void* node);
// Releases a text from DomGetAttVal or DomGetTextNodeValue.  Null is ignored.
QUILLON_API void DomStringRelease(char* text);

// A new element owned by `doc` but not yet attached anywhere.
QUILLON_API void* DomCreateNewElement(void* doc, const char* name);
// Attaches `child` as the last child of `parent`; a child that already stands
// somewhere else, in this document or another, is moved.  Nothing happens when
// the move would put a node below itself, give a document a second root
// element, or when `child` is a text node (which libxml2 would merge into a
// neighbour and free).
QUILLON_API void DomAppendChild(void* doc, void* parent, void* child);
// A copy of `node` for `doc`, not attached; `deep` non-zero copies the subtree,
// zero the element with its attributes only.  Null for text nodes.
QUILLON_API void* DomCloneNodeNew(void* doc, void* node, int deep);
// Takes the element out of its parent.  The node stays valid and may be
// appended elsewhere; if it is still detached when its document is freed with
// DomFreeDocument it is freed then.
QUILLON_API void DomDeleteElement(void* node);

// For hosts: parse a file (no network, no DTD loading, no entity expansion,
// text kept as written).  Null on failure.
QUILLON_API void* DomParseFile(const char* path);
// Frees a document, with every node of it still left detached.  The bridge
// keeps its list of a document's detached nodes in the document's `_private`
// field, so a document whose nodes went through DomCreateNewElement,
// DomCloneNodeNew or DomDeleteElement must be freed here, not with xmlFreeDoc.
QUILLON_API void DomFreeDocument(void* doc);
// Writes the document as indented UTF-8 with an XML declaration.  Where a
// parsed file already holds blank text between elements, that text is written
// as it stands and no indentation is added there, so a saved file read back
// and saved again gives the same bytes (elements appended under such a parent
// come out on its line).  The text goes to a temporary file beside `path` that
// is synced and then renamed over it, so an interrupted save leaves the old
// file whole.  Non-zero on success.
QUILLON_API int DomSaveDocument(void* doc, const char* path);

}  // extern "C"

namespace quillon {
// DomParseFile that also tells why a file could not be read: `reason` gets a
// text naming the file and, where the parser knows them, the line and the
// parser's message.  Null on failure, as DomParseFile.
QUILLON_API void* DomParseFileWithReason(const char* path, std::string& reason);

// Called by DomSaveDocument after the temporary file is complete and synced and
// before it is renamed over the target; null removes the hook.  Tests use it to
// stand for a process killed at the worst moment.
QUILLON_API void SetSaveInterruptHookForTesting(void (*hook)(const char* tempPath));
}  // namespace quillon
