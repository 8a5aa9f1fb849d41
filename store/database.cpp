#include "store/database.h"

#include <libxml/tree.h>

#include <algorithm>

#include "store/dombridge.h"

namespace quillon {

MaterialDatabase::~MaterialDatabase() { Clear(); }

void MaterialDatabase::Clear() {
  for (OrvaneMLRecordMaterials* folder : m_Folders) delete folder;
  m_Folders.clear();
  for (OrvaneMLRecordMaterial* material : m_Materials) delete material;
  m_Materials.clear();
  m_ForeignElements.clear();
}

OrvaneMLRecordMaterial* MaterialDatabase::FindMaterial(const std::string& id) const {
  for (OrvaneMLRecordMaterial* material : m_Materials) {
    if (material->m_ID == id) return material;
  }
  return nullptr;
}

OrvaneMLRecordMaterial* MaterialDatabase::AddMaterial(const std::string& id) {
  auto* material = new OrvaneMLRecordMaterial(id.c_str());
  m_Materials.push_back(material);
  return material;
}

OrvaneMLRecordMaterials* MaterialDatabase::FindFolder(const std::string& name) const {
  for (OrvaneMLRecordMaterials* folder : m_Folders) {
    if (folder->m_Name == name) return folder;
  }
  return nullptr;
}

OrvaneMLRecordMaterials* MaterialDatabase::GetOrCreateFolder(const std::string& name) {
  if (OrvaneMLRecordMaterials* folder = FindFolder(name)) return folder;
  auto* folder = new OrvaneMLRecordMaterials(name.c_str());
  m_Folders.push_back(folder);
  return folder;
}

OrvaneMLRecordMaterials* MaterialDatabase::FolderOf(const OrvaneMLRecordMaterial* material) const {
  for (OrvaneMLRecordMaterials* folder : m_Folders) {
    if (folder->Holds(material)) return folder;
  }
  return nullptr;
}

void MaterialDatabase::FileMaterial(OrvaneMLRecordMaterials* folder, OrvaneMLRecordMaterial* material) {
  if (std::find(m_Folders.begin(), m_Folders.end(), folder) == m_Folders.end()) return;
  if (std::find(m_Materials.begin(), m_Materials.end(), material) == m_Materials.end()) return;
  for (OrvaneMLRecordMaterials* other : m_Folders) {
    if (other != folder) other->RemoveMaterial(material);
  }
  folder->AddMaterial(material);
}

bool MaterialDatabase::SaveFile(const std::string& path, std::string& error) const {
  void* document = BuildDocument();
  const bool saved = DomSaveDocument(document, path.c_str()) != 0;
  xmlFreeDoc(static_cast<xmlDocPtr>(document));
  if (!saved) error = path + ": the database could not be written";
  return saved;
}

}  // namespace quillon
