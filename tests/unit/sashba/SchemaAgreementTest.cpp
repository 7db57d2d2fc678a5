// The JSON Schema names exactly the fields and words that the library knows.
#include "sashba/scenario/FieldTables.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <set>
#include <string>

namespace KDV {
namespace {

nlohmann::json definitions()
{
    std::ifstream file(std::string(KDV_SOURCE_DIR) + "/scenarios/scenario.schema.json");
    return nlohmann::json::parse(file).at("$defs");
}

std::set<std::string> namesOf(const nlohmann::json& object)
{
    std::set<std::string> names;
    for (const auto& [name, value] : object.items())
        names.insert(name);
    return names;
}

struct KindInSchema {
    ElementKind kind;
    std::string name;
    std::set<std::string> derivedFields;
    std::set<std::string> lists;
};

const KindInSchema kinds[] = {
    {ElementKind::Hba, "hba", {}, {"physicalDrives", "logicalDrives", "storageBoxes"}},
    {ElementKind::PhysicalDrive, "physicalDrive", {"boxNumber"}, {}},
    {ElementKind::LogicalDrive, "logicalDrive", {}, {}},
    {ElementKind::StorageBox, "storageBox", {}, {}},
};

TEST(Schema, NamesTheFieldsOfTheLibrary)
{
    const nlohmann::json defs = definitions();
    for (const KindInSchema& kind : kinds) {
        std::set<std::string> fields = kind.derivedFields;
        for (const FieldRow& row : fieldsOf(kind.kind))
            fields.emplace(row.name);
        EXPECT_EQ(namesOf(defs.at(kind.name + "Fields").at("properties")), fields) << kind.name;
        fields.insert(kind.lists.begin(), kind.lists.end());
        fields.insert("duplicateNumber");
        EXPECT_EQ(namesOf(defs.at(kind.name).at("properties")), fields) << kind.name;
        EXPECT_EQ(defs.at(kind.name).at("required"), nlohmann::json::array({numberField(kind.kind)}));
    }
}

TEST(Schema, NamesTheWordsOfTheLibrary)
{
    const nlohmann::json defs = definitions();
    for (const KindInSchema& kind : kinds) {
        for (const FieldRow& row : fieldsOf(kind.kind)) {
            if (row.form != FieldForm::Code)
                continue;
            nlohmann::json words = nlohmann::json::array();
            for (const CodeWord& word : row.words)
                words.push_back(word.word);
            const nlohmann::json& field = defs.at(kind.name + "Fields").at("properties").at(row.name);
            EXPECT_EQ(field.at("anyOf").at(0).at("enum"), words) << kind.name << ' ' << row.name;
        }
    }
}

} // namespace
} // namespace KDV
