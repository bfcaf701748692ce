#include "json/JSONReader.h"

#include "json/JSONParser.h"

#include <gtest/gtest.h>

#include <functional>

using namespace kestrin;

namespace {

std::string message(const std::function<void()>& action) {
    try {
        action();
    } catch (const JSONError& error) {
        return error.message;
    }
    return "no error";
}

/// What reading the key "k" of an object with that one member says.
template <class Reading> std::string reading(std::string_view member, Reading read) {
    const JSONValue value = parseJSON("{\"k\":" + std::string(member) + "}");
    return message([&] { static_cast<void>((JSONReader(value).*read)("k")); });
}

} // namespace

TEST(ReadingTypedMembers, givesEachType) {
    const JSONValue value = parseJSON(
        R"({"s":"t","b":true,"i":-3,"u":18446744073709551615,"d":1.5,"o":{"s":"in"},"l":["a","b"],"os":[{"i":1},{"i":2}]})");
    const JSONReader reader(value);
    EXPECT_EQ(reader.string("s"), "t");
    EXPECT_TRUE(reader.boolean("b"));
    EXPECT_EQ(reader.signedInteger("i"), -3);
    EXPECT_EQ(reader.unsignedInteger("u"), UINT64_MAX);
    EXPECT_EQ(reader.number("d"), 1.5);
    EXPECT_EQ(reader.number("i"), -3.0);
    EXPECT_EQ(reader.object("o").string("s"), "in");
    EXPECT_EQ(reader.strings("l"), (std::vector<std::string>{"a", "b"}));
    ASSERT_EQ(reader.objects("os").size(), 2u);
    EXPECT_EQ(reader.objects("os")[1].signedInteger("i"), 2);
}

TEST(ReadingTypedMembers, refusesWhatOnlyLooksLikeAnInteger) {
    for (const char* wrong : {"300.9", "300.0", "3e2", "true", "\"300\"", "null", "[]", "{}", "9223372036854775808",
             "-9223372036854775809", "1e30"})
        EXPECT_EQ(reading(wrong, &JSONReader::signedInteger), "“k” must be a whole number.") << wrong;
    for (const char* wrong : {"-1", "1.5", "true", "18446744073709551616", "\"1\"", "null"})
        EXPECT_EQ(reading(wrong, &JSONReader::unsignedInteger), "“k” must be a whole number that is not negative.")
            << wrong;
}

TEST(ReadingTypedMembers, namesTheKeyAndWhatItMustBe) {
    EXPECT_EQ(reading("1", &JSONReader::string), "“k” must be text.");
    EXPECT_EQ(reading("1", &JSONReader::boolean), "“k” must be true or false.");
    EXPECT_EQ(reading("\"true\"", &JSONReader::boolean), "“k” must be true or false.");
    EXPECT_EQ(reading("true", &JSONReader::number), "“k” must be a number.");
    EXPECT_EQ(reading("[]", &JSONReader::object), "“k” must be an object.");
    EXPECT_EQ(reading("{}", &JSONReader::strings), "“k” must be a list.");
    EXPECT_EQ(reading("[\"a\",1]", &JSONReader::strings), "“k[1]” must be text.");
    EXPECT_EQ(reading("[{},null]", &JSONReader::objects), "“k[1]” must be an object.");
    EXPECT_EQ(message([] { JSONReader(JSONValue(1)); }), "The JSON value must be an object.");
}

TEST(ReadingTypedMembers, namesAMemberOfAnInnerObjectByItsPath) {
    const JSONValue value = parseJSON(R"({"sites":[{"url":"u"},{"url":7}],"o":{"x":{}}})");
    EXPECT_EQ(message([&] { static_cast<void>(JSONReader(value).objects("sites")[1].string("url")); }),
        "“sites[1].url” must be text.");
    EXPECT_EQ(message([&] { static_cast<void>(JSONReader(value).object("o").object("x").string("y")); }),
        "“o.x.y” is missing.");
}

TEST(ReadingTypedMembers, namesAMissingKey) {
    const JSONValue value = parseJSON("{}");
    EXPECT_EQ(message([&] { static_cast<void>(JSONReader(value).string("name")); }), "“name” is missing.");
    EXPECT_EQ(message([&] { static_cast<void>(JSONReader(value).objects("sites")); }), "“sites” is missing.");
}

TEST(ReadingTypedMembers, acceptsNullForOptionalsOnly) {
    const JSONValue value = parseJSON(R"({"k":null})");
    const JSONReader reader(value);
    for (const char* key : {"k", "absent"}) {
        EXPECT_EQ(reader.optionalString(key), std::nullopt);
        EXPECT_EQ(reader.optionalBoolean(key), std::nullopt);
        EXPECT_EQ(reader.optionalSignedInteger(key), std::nullopt);
        EXPECT_EQ(reader.optionalUnsignedInteger(key), std::nullopt);
        EXPECT_EQ(reader.optionalNumber(key), std::nullopt);
        EXPECT_FALSE(reader.optionalObject(key).has_value());
    }
    EXPECT_EQ(reading("null", &JSONReader::string), "“k” must be text.");
    EXPECT_EQ(reading("null", &JSONReader::boolean), "“k” must be true or false.");
    EXPECT_EQ(reading("null", &JSONReader::strings), "“k” must be a list.");
}

TEST(ReadingTypedMembers, isStrictAboutAnOptionalThatIsThere) {
    EXPECT_EQ(reading("300.9", &JSONReader::optionalSignedInteger), "“k” must be a whole number.");
    EXPECT_EQ(reading("1", &JSONReader::optionalBoolean), "“k” must be true or false.");
    EXPECT_EQ(reading("1", &JSONReader::optionalString), "“k” must be text.");
    EXPECT_EQ(reading("[]", &JSONReader::optionalObject), "“k” must be an object.");
}

TEST(ReadingTypedMembers, refusesAKeyThatStandsTwiceOnlyWhenItIsRead) {
    const JSONValue value = parseForeignJSON(R"({"o":{"k":"a","other":1,"k":"a","l":[]}})");
    const JSONReader reader = JSONReader(value).object("o");
    EXPECT_EQ(message([&] { static_cast<void>(reader.string("k")); }), "“o.k” stands there twice.");
    EXPECT_EQ(message([&] { static_cast<void>(reader.optionalBoolean("k")); }), "“o.k” stands there twice.");
    EXPECT_EQ(reader.signedInteger("other"), 1);
}

TEST(ReadingTypedMembers, givesNoObjectsForAnOptionalListThatIsAbsentOrNull) {
    const JSONValue value = parseJSON(R"({"null":null,"two":[{},{"k":1}],"text":"","numbers":[1]})");
    const JSONReader reader(value);
    EXPECT_TRUE(reader.optionalObjects("absent").empty());
    EXPECT_TRUE(reader.optionalObjects("null").empty());
    ASSERT_EQ(reader.optionalObjects("two").size(), 2u);
    EXPECT_EQ(reader.optionalObjects("two")[1].signedInteger("k"), 1);
    EXPECT_EQ(message([&] { static_cast<void>(reader.optionalObjects("text")); }), "“text” must be a list.");
    EXPECT_EQ(
        message([&] { static_cast<void>(reader.optionalObjects("numbers")); }), "“numbers[0]” must be an object.");
}
