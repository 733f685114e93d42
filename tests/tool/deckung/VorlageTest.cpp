#include "deckung/Vorlage.h"

#include <gmock/gmock.h>

#include <stdexcept>

using namespace testing;
using namespace werkzeug;

TEST(Vorlage, ValuesAreEscapedAndShownOnOneLine) {
    EXPECT_EQ(fuelleVorlage("<b title=\"{{a}}\">{{a}}</b>", {{"a", "<i>'\"&\n\x1b"}}),
              "<b title=\"&lt;i&gt;&#39;&quot;&amp;\\n\\x1b\">&lt;i&gt;&#39;&quot;&amp;\\n\\x1b</b>");
    EXPECT_EQ(fuelleVorlage("{{zahl}},{{nichts}},{{ja}}", {{"zahl", 3}, {"nichts", nullptr}, {"ja", true}}),
              "3,,true");
}
TEST(Vorlage, OnlyThreeBracesLeaveAValueAsItIs) {
    EXPECT_EQ(fuelleVorlage("{{{a}}}", {{"a", "<i>{{a}}</i>"}}), "<i>{{a}}</i>")
        << "and what is inserted is no template";
    EXPECT_EQ(fuelleVorlage("{{a}}", {{"a", "{{b}}"}}), "{{b}}");
}
TEST(Vorlage, ABlockIsRepeatedForEachEntryOfAList) {
    const Json werte{{"liste", {{{"x", 1}}, {{"x", 2}}}}, {"aussen", "o"}, {"worte", {"a", "b"}}};
    EXPECT_EQ(fuelleVorlage("{{#liste}}{{x}}{{aussen}};{{/liste}}", werte), "1o;2o;");
    EXPECT_EQ(fuelleVorlage("{{#worte}}({{.}}){{/worte}}", werte), "(a)(b)");
    EXPECT_EQ(fuelleVorlage("{{#worte}}\nx\n{{/worte}}\ny", werte), "x\nx\ny")
        << "without the lines of the marks";
}
TEST(Vorlage, WhatIsMissingLeavesABlockOutAndShowsItsOpposite) {
    for (const Json& wert : {Json(nullptr), Json(false), Json(""), Json::array()})
        EXPECT_EQ(fuelleVorlage("{{#a}}ja{{/a}}{{^a}}nein{{/a}}", {{"a", wert}}), "nein");
    for (const Json& wert : {Json(0), Json(true), Json("x"), Json::array({1})})
        EXPECT_EQ(fuelleVorlage("{{#a}}ja{{/a}}{{^a}}nein{{/a}}", {{"a", wert}}), "ja");
}
TEST(Vorlage, AMemberIsNamedByAPoint) {
    EXPECT_EQ(fuelleVorlage("{{a.b}},{{n.b}}", {{"a", {{"b", 1}}}, {"n", nullptr}}), "1,");
}
TEST(Vorlage, ATemplateWithAMistakeIsAnError) {
    EXPECT_THROW(fuelleVorlage("{{fehlt}}", Json::object()), std::logic_error);
    EXPECT_THROW(fuelleVorlage("{{#a}}", {{"a", 1}}), std::logic_error);
    EXPECT_THROW(fuelleVorlage("{{a", {{"a", 1}}), std::logic_error);
}
