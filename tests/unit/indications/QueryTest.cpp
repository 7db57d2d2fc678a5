#include "indications/Query.h"

#include "hostschema/SchemaName.h"
#include "indications/QueryError.h"

#include <map>
#include <memory>
#include <string>

#include <gtest/gtest.h>

using namespace KDV::Host;

namespace {

// An object with properties by name; arrays by "Name[0]"; embedded objects under their names.
struct FakeObject : QuerySource {
    std::string className = "X_Alert";
    std::string superclass = "CIM_AlertIndication";
    std::map<std::string, QueryValue> values;
    std::map<std::string, FakeObject> embedded;

    bool isA(std::string_view name) const override { return sameName(name, className) || sameName(name, superclass); }
    QueryValue value(const PropertyPath& path) const override
    {
        const FakeObject* object = this;
        for (std::size_t i = 0; i < path.size(); ++i) {
            const std::string key = path[i].name + (path[i].index < 0 ? "" : "[" + std::to_string(path[i].index) + "]");
            if (!path[i].scope.empty() && !object->isA(path[i].scope)) return {};
            if (i + 1 == path.size()) {
                const auto found = object->values.find(key);
                return found == object->values.end() ? QueryValue() : found->second;
            }
            const auto next = object->embedded.find(key);
            if (next == object->embedded.end()) return {};
            object = &next->second;
        }
        return {};
    }
    Truth isA(const PropertyPath& path, std::string_view name) const override
    {
        const auto found = embedded.find(path.front().name);
        return found == embedded.end() ? Truth::Unknown : truthOf(found->second.isA(name));
    }
};

FakeObject alert()
{
    FakeObject object;
    object.values["EventID"] = QueryValue::ofText("301");
    object.values["Summary"] = QueryValue::ofText("It's \"down\"\n");
    object.values["PerceivedSeverity"] = QueryValue::ofUnsigned(5);
    object.values["SequenceNumber"] = QueryValue::ofSigned(-3);
    object.values["Big"] = QueryValue::ofUnsigned(UINT64_MAX);
    object.values["Ratio"] = QueryValue::ofReal(0.5);
    object.values["Urgent"] = QueryValue::ofBoolean(true);
    object.values["IndicationTime"] = QueryValue::ofDateTime("20260101120000.000000+060");
    object.values["Age"] = QueryValue::ofDateTime("00000001000000.000000:000");
    object.values["RecommendedActions[0]"] = QueryValue::ofText("Replace it");
    object.values["RecommendedActions"] = QueryValue::other();
    FakeObject inner;
    inner.className = "X_Disk";
    inner.superclass = "CIM_MediaAccessDevice";
    inner.values["DeviceID"] = QueryValue::ofText("7");
    object.embedded["SourceInstance"] = inner;
    object.values["SourceInstance"] = QueryValue::other();
    return object;
}

bool matches(const std::string& condition, const std::string& language = "DMTF:CQL")
{
    return Query::compile("SELECT * FROM X_Alert WHERE " + condition, language).matches(alert());
}

CMPIrc refusal(const std::string& query, const std::string& language = "DMTF:CQL")
{
    try {
        Query::compile(query, language);
    } catch (const QueryError& error) {
        EXPECT_NE(std::string(error.what()), "");
        return error.rc();
    }
    return CMPI_RC_OK;
}

} // namespace

TEST(Query, MatchesConditionsThatHold)
{
    for (const char* condition : {
             "EventID = '301'",
             "'301' = EventID",
             "EventID = \"301\"",
             "X_Alert.EventID = '301'",
             "x_alert.EventID <> '302'",
             "EventID > '30' AND EventID >= '301' AND EventID < '302' AND EventID <= '301'",
             "PerceivedSeverity = 5",
             "PerceivedSeverity = 5.0",
             "PerceivedSeverity < 5.5 AND PerceivedSeverity > 4.5",
             "PerceivedSeverity = 0x5 AND PerceivedSeverity = 101B",
             "PerceivedSeverity = +5",
             "SequenceNumber = -3 AND SequenceNumber < 0 AND SequenceNumber > -3.5 AND SequenceNumber < -2.5",
             "SequenceNumber < Big AND Big > SequenceNumber",
             "Big = 18446744073709551615 AND Big < 18446744073709551616.0 AND Big > 1.8446744073709550e19",
             "Ratio = .5 AND Ratio < 1 AND 1 > Ratio AND Ratio = 5e-1",
             "Urgent = TRUE AND Urgent <> false",
             "Summary = 'It''s \"down\"\\n'",
             "Summary = 'It\\'s \\\"down\\\"\\u000a'",
             "IndicationTime = '20260101110000.000000+000'",
             "IndicationTime < '20260101110000.000001+000' AND IndicationTime > '20251231235959.999999+000'",
             "Age > '00000000235959.999999:000'",
             "Missing IS NULL",
             "EventID IS NOT NULL",
             "RecommendedActions IS NOT NULL",
             "RecommendedActions[0] = 'Replace it'",
             "RecommendedActions[1] IS NULL",
             "SourceInstance.DeviceID = '7'",
             "SourceInstance.X_Disk::DeviceID = '7'",
             "SourceInstance.X_Other::DeviceID IS NULL",
             "SourceInstance ISA CIM_MediaAccessDevice",
             "SourceInstance ISA \"x_disk\"",
             "X_Alert ISA CIM_AlertIndication",
             "NOT X_Alert ISA CIM_Error",
             "EventID = '1' OR EventID = '301'",
             "EventID = '1' AND EventID = '2' OR EventID = '301'",
             "EventID = '301' OR EventID = '1' AND EventID = '2'",
             "(EventID = '1' OR EventID = '301') AND NOT (PerceivedSeverity = 4)",
             "not not EventID = '301'",
         })
        EXPECT_TRUE(matches(condition)) << condition;
}

TEST(Query, DoesNotMatchConditionsThatDoNotHold)
{
    for (const char* condition : {
             "EventID = '302'",
             "EventID = '0301'",
             "NOT EventID = '301'",
             "PerceivedSeverity <> 5",
             "PerceivedSeverity = 5.000001",
             "Big = 18446744073709551614",
             "Urgent = FALSE",
             "EventID IS NULL",
             "Missing IS NOT NULL",
             "(EventID = '1' OR EventID = '301') AND PerceivedSeverity = 4",
             "SourceInstance ISA X_Alert",
             "X_Alert ISA CIM_Error",
             "IndicationTime = '20260101120000.000000+000'",
         })
        EXPECT_FALSE(matches(condition)) << condition;
}

TEST(Query, TakesWhatIsUnknownForNeitherTrueNorFalse)
{
    for (const char* unknown :
         {"Missing = 1", "Missing <> 1", "EventID = 301", "EventID < 1", "Urgent > FALSE", "Urgent = 1",
          "RecommendedActions = 'Replace it'", "RecommendedActions[9] = 'x'", "IndicationTime = 'yesterday'",
          "IndicationTime < '2026****120000.000000+060'", "IndicationTime > '00000001000000.000000:000'",
          "Missing ISA CIM_Error", "Missing.DeviceID = '7'", "EventID.Deeper = '7'"}) {
        const std::string text = unknown;
        EXPECT_FALSE(matches(text)) << text;
        EXPECT_FALSE(matches("NOT (" + text + ")")) << text;
        EXPECT_TRUE(matches(text + " OR EventID = '301'")) << text;
        EXPECT_FALSE(matches(text + " OR EventID = '1'")) << text;
        EXPECT_FALSE(matches(text + " AND EventID = '301'")) << text;
        EXPECT_TRUE(matches("NOT (" + text + " AND EventID = '1')")) << text;
    }
}

TEST(Query, MatchesOnlyInstancesOfTheClassThatItSelectsFrom)
{
    EXPECT_TRUE(Query::compile("SELECT * FROM CIM_AlertIndication", "WQL").matches(alert()));
    EXPECT_TRUE(Query::compile("select * from x_ALERT", "wql").matches(alert()));
    EXPECT_FALSE(Query::compile("SELECT * FROM CIM_InstIndication", "WQL").matches(alert()));
}

TEST(Query, KnowsTheWaysToSelectProperties)
{
    EXPECT_TRUE(Query::compile("SELECT * FROM X_Alert", "WQL").selected().empty());
    EXPECT_TRUE(Query::compile("SELECT X_Alert.* FROM X_Alert", "DMTF:CQL").selected().empty());
    const Query query = Query::compile("SELECT EventID, x_alert.Summary FROM X_Alert WHERE Ratio > 0", "CIM:CQL");
    EXPECT_EQ(query.selected(), (std::vector<std::string>{"EventID", "Summary"}));
    EXPECT_EQ(query.propertiesNamed(), (std::vector<std::string>{"EventID", "Summary", "Ratio"}));
    EXPECT_EQ(refusal("SELECT Other.EventID FROM X_Alert"), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal("SELECT Other.* FROM X_Alert"), CMPI_RC_ERR_INVALID_QUERY);
}

TEST(Query, NamesNoPropertyOfAnotherClassAmongItsOwn)
{
    const Query query = Query::compile(
        "SELECT * FROM X_Alert WHERE X_Sub::Extra = 1 AND SourceInstance.DeviceID = '7' AND X_Alert ISA X_Sub",
        "DMTF:CQL");
    EXPECT_EQ(query.propertiesNamed(), (std::vector<std::string>{"SourceInstance"}));
}

TEST(Query, RefusesOtherLanguages)
{
    for (const char* language : {"", "SQL", "CQL", "DMTF:FQL", "WQL2", " WQL"})
        EXPECT_EQ(refusal("SELECT * FROM X_Alert", language), CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED) << language;
}

TEST(Query, RefusesWhatItCannotRead)
{
    for (const char* query : {
             "",
             "   ",
             "DELETE FROM X_Alert",
             "SELECT",
             "SELECT * X_Alert",
             "SELECT * FROM",
             "SELECT * FROM 'X_Alert'",
             "SELECT * FROM X_Alert, Y_Alert",
             "SELECT * FROM X_Alert WHERE",
             "SELECT * FROM SELECT",
             "SELECT , FROM X_Alert",
             "SELECT a, FROM X_Alert",
             "SELECT *, a FROM X_Alert",
             "SELECT * FROM X_Alert WHERE EventID",
             "SELECT * FROM X_Alert WHERE EventID =",
             "SELECT * FROM X_Alert WHERE = '1'",
             "SELECT * FROM X_Alert WHERE EventID == '1'",
             "SELECT * FROM X_Alert WHERE EventID != '1'",
             "SELECT * FROM X_Alert WHERE EventID = '1",
             "SELECT * FROM X_Alert WHERE EventID = '1\\",
             "SELECT * FROM X_Alert WHERE EventID = '\\q'",
             "SELECT * FROM X_Alert WHERE EventID = '\\u12'",
             "SELECT * FROM X_Alert WHERE EventID = '\\ud800'",
             "SELECT * FROM X_Alert WHERE EventID = '\\u0000'",
             "SELECT * FROM X_Alert WHERE EventID = NULL",
             "SELECT * FROM X_Alert WHERE EventID LIKE '%'",
             "SELECT * FROM X_Alert WHERE 1 = 1",
             "SELECT * FROM X_Alert WHERE '1' IS NULL",
             "SELECT * FROM X_Alert WHERE EventID IS '1'",
             "SELECT * FROM X_Alert WHERE EventID ISA ''",
             "SELECT * FROM X_Alert WHERE EventID ISA 5",
             "SELECT * FROM X_Alert WHERE (EventID = '1'",
             "SELECT * FROM X_Alert WHERE EventID = '1')",
             "SELECT * FROM X_Alert WHERE EventID = '1' AND",
             "SELECT * FROM X_Alert WHERE EventID = '1' EventID = '2'",
             "SELECT * FROM X_Alert WHERE a[ = 1",
             "SELECT * FROM X_Alert WHERE a[-1] = 1",
             "SELECT * FROM X_Alert WHERE a[65536] = 1",
             "SELECT * FROM X_Alert WHERE a[0 = 1",
             "SELECT * FROM X_Alert WHERE a. = 1",
             "SELECT * FROM X_Alert WHERE a = 12x",
             "SELECT * FROM X_Alert WHERE a = 0x",
             "SELECT * FROM X_Alert WHERE a = 12B",
             "SELECT * FROM X_Alert WHERE a = 18446744073709551616",
             "SELECT * FROM X_Alert WHERE a = --1",
             "SELECT * FROM X_Alert WHERE a = -'1'",
             "SELECT * FROM X_Alert; DROP",
             "SELECT * FROM X_Alert WHERE a = 1 ORDER BY a",
         })
        EXPECT_EQ(refusal(query), CMPI_RC_ERR_INVALID_QUERY) << query;
    EXPECT_EQ(refusal(std::string("SELECT * FROM X\0Y", 17)), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal(std::string("SELECT * FROM X WHERE a='\0'", 27)), CMPI_RC_ERR_INVALID_QUERY);
}

TEST(Query, KeepsWhatOnlyOneLanguageHasOutOfTheOther)
{
    EXPECT_EQ(refusal("SELECT * FROM X_Alert WHERE a[0] = 1", "WQL"), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal("SELECT * FROM X_Alert WHERE X_Sub::a = 1", "WQL"), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_TRUE(matches("EventID != '1'", "WQL"));
    EXPECT_TRUE(matches("SourceInstance ISA 'X_Disk' AND SourceInstance.DeviceID = '7'", "WQL"));
}

TEST(Query, LimitsDepthLengthAndNumberOfConditions)
{
    const auto nested = [](unsigned depth) {
        return "SELECT * FROM X_Alert WHERE " + std::string(depth, '(') + "a = 1" + std::string(depth, ')');
    };
    EXPECT_EQ(refusal(nested(Query::maxDepth - 1)), CMPI_RC_OK);
    EXPECT_EQ(refusal(nested(Query::maxDepth)), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal(nested(3000)), CMPI_RC_ERR_INVALID_QUERY);

    std::string negations = "SELECT * FROM X_Alert WHERE ";
    for (int i = 0; i < 1000; ++i)
        negations += "NOT ";
    EXPECT_EQ(refusal(negations + "a = 1"), CMPI_RC_ERR_INVALID_QUERY);

    std::string chain = "SELECT * FROM X_Alert WHERE a=1";
    for (unsigned i = 0; i < 200; ++i)
        chain += " OR a=1";
    EXPECT_EQ(refusal(chain), CMPI_RC_OK);
    for (unsigned i = 0; i < 200; ++i)
        chain += " OR a=1";
    EXPECT_EQ(refusal(chain), CMPI_RC_ERR_INVALID_QUERY);

    std::string path = "SELECT * FROM X_Alert WHERE a";
    for (int i = 0; i < 600; ++i)
        path += ".a";
    EXPECT_EQ(refusal(path + " = 1"), CMPI_RC_ERR_INVALID_QUERY);
    EXPECT_EQ(refusal("SELECT * FROM X_Alert" + std::string(Query::maxLength, ' ')), CMPI_RC_ERR_INVALID_QUERY);
}

// Every prefix, and every query with one byte changed, is either read or refused.
TEST(Query, SurvivesDamagedTexts)
{
    const std::string whole =
        "SELECT EventID FROM X_Alert WHERE (a[0] = 'x\\u0041''' OR NOT b IS NULL) AND c.D::e >= -1.5e3 AND f ISA G";
    ASSERT_EQ(refusal(whole), CMPI_RC_OK);
    unsigned read = 0;
    for (std::size_t length = 0; length < whole.size(); ++length)
        read += refusal(whole.substr(0, length)) == CMPI_RC_OK ? 1 : 0;
    EXPECT_LT(read, 40u);
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = whole;
            changed[at] = static_cast<char>(byte);
            const CMPIrc rc = refusal(changed);
            EXPECT_TRUE(rc == CMPI_RC_OK || rc == CMPI_RC_ERR_INVALID_QUERY) << changed;
        }
}
