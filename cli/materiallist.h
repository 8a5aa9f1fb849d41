#pragma once

// What `list` and the import summary show of a material database document.

#include <string>
#include <vector>

namespace quillon {
namespace cli {

struct MaterialLine {
    std::string id;
    std::string folder;               // empty when the material is filed nowhere
    std::string type;                 // the value of its "Material_type" dataset, if any
    std::vector<std::string> models;  // IDref of each model that holds datasets, first use first
};

// Every "Record" element of a database document (a DOM document as the Dom* functions take it),
// in document order.
std::vector<MaterialLine> ReadMaterialLines(void* document);

// "ID<TAB>FOLDER<TAB>TYPE<TAB>MODEL,MODEL", with "-" for an empty field.
std::string FormatMaterialLine(const MaterialLine& material);

}  // namespace cli
}  // namespace quillon
