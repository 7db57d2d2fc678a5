// The JSON Schema names exactly the fields and words that the library knows, and so does the documentation.
#include "sashba/scenario/FieldTables.h"
#include "sashba/scenario/ScenarioReader.h"

#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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
            if (row.form != FieldForm::Code) continue;
            nlohmann::json words = nlohmann::json::array();
            for (const CodeWord& word : row.words)
                words.push_back(word.word);
            const nlohmann::json& field = defs.at(kind.name + "Fields").at("properties").at(row.name);
            EXPECT_EQ(field.at("anyOf").at(0).at("enum"), words) << kind.name << ' ' << row.name;
        }
    }
}

std::string documentation()
{
    std::ifstream file(std::string(KDV_SOURCE_DIR) + "/docs/scenarios.md");
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Documentation, NamesEveryFieldAndWord)
{
    const std::string text = documentation();
    for (const KindInSchema& kind : kinds) {
        for (const FieldRow& row : fieldsOf(kind.kind)) {
            EXPECT_NE(text.find('`' + std::string(row.name) + '`'), std::string::npos) << kind.name << ' ' << row.name;
            for (const CodeWord& word : row.words) {
                const std::string plain(word.word);
                EXPECT_TRUE(text.find('`' + plain + '`') != std::string::npos ||
                            text.find("`\"" + plain + "\"`") != std::string::npos)
                    << kind.name << ' ' << plain;
            }
        }
    }
}

TEST(Documentation, ShowsAScenarioThatWorks)
{
    const std::string text = documentation();
    const std::size_t begin = text.find("{\n  \"description\"");
    ASSERT_NE(begin, std::string::npos);
    Problems problems;
    EXPECT_TRUE(readScenario(text.substr(begin, text.find("```", begin) - begin), problems)) << problems.text();
}

} // namespace
} // namespace KDV
