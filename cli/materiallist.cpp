#include "cli/materiallist.h"

#include <algorithm>
#include <cstring>

#include "store/dombridge.h"
#include "store/xmlobject.h"

namespace quillon {
namespace cli {

namespace {

// Dom* texts are copies that must be given back.
std::string TakeText(char* text) {
    std::string out = text != nullptr ? text : "";
    DomStringRelease(text);
    return out;
}

std::string Attribute(void* node, const char* name) { return TakeText(DomGetAttVal(node, name)); }

bool NameIs(void* node, const char* name) {
    const char* nodeName = DomGetNodeName(node);
    return nodeName != nullptr && std::strcmp(nodeName, name) == 0;
}

// The material type as the "NOM :" line gave it: kept as the string value of a dataset, in
// whichever model the store put it.
std::string MaterialType(void* record) {
    XMLObject datasets(record, "Dataset");
    for (int i = 0; i < datasets.GetCount(); ++i) {
        void* dataset = datasets.GetNode(i);
        if (Attribute(dataset, "IDref") != "Material_type") continue;
        XMLObject strings(dataset, "String");
        if (strings.GetCount() > 0) return TakeText(DomGetTextNodeValue(strings.GetNode(0)));
    }
    return std::string();
}

// Models, sub-models included, that hold a dataset of their own.
std::vector<std::string> ModelsWithData(void* record) {
    std::vector<std::string> models;
    XMLObject datasets(record, "Dataset");
    for (int i = 0; i < datasets.GetCount(); ++i) {
        void* parent = DomGetParentNode(datasets.GetNode(i));
        if (!NameIs(parent, "Model")) continue;
        std::string idref = Attribute(parent, "IDref");
        if (idref.empty()) idref = "?";
        if (std::find(models.begin(), models.end(), idref) == models.end()) models.push_back(idref);
    }
    return models;
}

}  // namespace

std::vector<MaterialLine> ReadMaterialLines(void* document) {
    std::vector<MaterialLine> lines;
    XMLObject records(document, "Record");
    for (int i = 0; i < records.GetCount(); ++i) {
        void* record = records.GetNode(i);
        MaterialLine line;
        line.id = Attribute(record, "ID");
        line.folder = Attribute(record, "Folder");
        line.type = MaterialType(record);
        line.models = ModelsWithData(record);
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string FormatMaterialLine(const MaterialLine& material) {
    auto field = [](const std::string& text) { return text.empty() ? std::string("-") : text; };
    std::string models;
    for (const auto& model : material.models) {
        if (!models.empty()) models += ',';
        models += model;
    }
    return field(material.id) + '\t' + field(material.folder) + '\t' + field(material.type) + '\t' + field(models);
}

}  // namespace cli
}  // namespace quillon
