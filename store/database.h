#pragma once

// A material database: every material (in the order it was made or loaded)
// and the folders that file them, with the XML form that is kept on disk.
// docs/store.md describes the file format; data/database.rng is its schema.

#include <string>
#include <vector>

#include "core/export.h"
#include "store/records.h"

namespace quillon {

class QUILLON_API MaterialDatabase {
 public:
  MaterialDatabase() = default;
  ~MaterialDatabase();
  MaterialDatabase(const MaterialDatabase&) = delete;
  MaterialDatabase& operator=(const MaterialDatabase&) = delete;

  // Frees every material and folder.
  void Clear();

  const std::vector<OrvaneMLRecordMaterial*>& Materials() const { return m_Materials; }
  const std::vector<OrvaneMLRecordMaterials*>& Folders() const { return m_Folders; }

  OrvaneMLRecordMaterial* FindMaterial(const std::string& id) const;
  // A new material with no model; the database owns it.
  OrvaneMLRecordMaterial* AddMaterial(const std::string& id);
  OrvaneMLRecordMaterials* FindFolder(const std::string& name) const;
  OrvaneMLRecordMaterials* GetOrCreateFolder(const std::string& name);
  // The folder that files the material, or null.
  OrvaneMLRecordMaterials* FolderOf(const OrvaneMLRecordMaterial* material) const;
  // Files the material in `folder` and in no other one.  Ignores a folder or
  // material that the database doesn't hold.
  void FileMaterial(OrvaneMLRecordMaterials* folder, OrvaneMLRecordMaterial* material);

  // A new libxml2 document (xmlDocPtr as void*) of the whole database; the
  // caller frees it.  The same records always give the same document.
  void* BuildDocument() const;
  // Replaces the content by that of a database document.  On failure the
  // database is left empty and `error` says why.
  bool LoadDocument(void* document, std::string& error);
  bool LoadFile(const std::string& path, std::string& error);
  // Writes the database to `path` atomically.
  bool SaveFile(const std::string& path, std::string& error) const;

  // Root children of a loaded file that the format doesn't know, kept as XML
  // text and written back.
  std::vector<std::string> m_ForeignElements;

 private:
  std::vector<OrvaneMLRecordMaterial*> m_Materials;  // owned
  std::vector<OrvaneMLRecordMaterials*> m_Folders;   // owned
};

// The element names and the version of the format, shared by writer and reader.
namespace dbxml {
inline constexpr const char* kRoot = "MaterialDatabase";
inline constexpr const char* kFormatVersion = "1";
}  // namespace dbxml

// Records to XML and back, for one material (the reader and writer of the
// database use them; tests call them on single records).
QUILLON_API void* BuildMaterialElement(void* document, const OrvaneMLRecordMaterial& material, const char* folder);
// Reads one "Record" element; null with `error` set when it has no ID.
QUILLON_API OrvaneMLRecordMaterial* ReadMaterialElement(void* element, std::string& error);

}  // namespace quillon
