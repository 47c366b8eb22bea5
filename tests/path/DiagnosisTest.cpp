#include <Orvo/Path/Diagnosis.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <set>
#include <string>

namespace Orvo::Path {
namespace {

Diagnosis Sample() {
  Diagnosis diagnosis(DiagnosisCode::LinearRange);
  diagnosis.point = 4;
  diagnosis.line = 9;
  diagnosis.quantities = {{"a", 0.1, "1"}, {"b", std::numeric_limits<double>::infinity(), "1"}};
  ElementFinding finding;
  finding.element = "Z \"main\" \xC3\xBC";
  finding.reg = 2;
  finding.solution = 1;
  finding.quantities = {
      {"nearest", 12.5, "length"}, {"max", 10.0, "length"}, {"excess", 2.5, "length"}};
  diagnosis.elements.push_back(finding);
  return diagnosis;
}

TEST(Diagnosis, TextNamesPointAndNumbers) {
  EXPECT_EQ(Sample().MakeText(),
            "point 5 (line 9): the point needs linear values out of range: solution 2: Z \"main\" "
            "\xC3\xBC would be 12.5, 2.5 above 10");
}

TEST(Diagnosis, JsonHoldsTheSameRecord) {
  const nlohmann::json json = nlohmann::json::parse(Sample().MakeJson());
  EXPECT_EQ(json.at("code"), 103);
  EXPECT_EQ(json.at("name"), "linear-range");
  EXPECT_EQ(json.at("point"), 4);
  EXPECT_EQ(json.at("line"), 9);
  EXPECT_EQ(json.at("quantities").at("a").at("value"), 0.1);
  EXPECT_TRUE(json.at("quantities").at("b").at("value").is_null());
  const nlohmann::json& element = json.at("elements").at(0);
  EXPECT_EQ(element.at("element"), "Z \"main\" \xC3\xBC");
  EXPECT_EQ(element.at("register"), 2);
  EXPECT_EQ(element.at("solution"), 1);
  EXPECT_EQ(element.at("quantities").at("excess").at("unit"), "length");
  EXPECT_EQ(json.at("text"), Sample().MakeText());
}

TEST(Diagnosis, EveryCodeHasANameOfItsOwnAndASentence) {
  std::set<std::string> names;
  for (const int code : {0, 101, 102, 103, 104, 105, 201, 202, 203, 204, 205, 206, 301, 302}) {
    Diagnosis diagnosis(static_cast<DiagnosisCode>(code));
    diagnosis.detail = "detail";
    names.insert(diagnosis.GetName());
    EXPECT_FALSE(diagnosis.MakeText().empty());
    EXPECT_EQ(diagnosis.IsFailure(), code / 100 == 1 || code / 100 == 3);
    EXPECT_EQ(nlohmann::json::parse(diagnosis.MakeJson()).at("code"), code);
  }
  EXPECT_EQ(names.size(), 14U);
}

}  // namespace
}  // namespace Orvo::Path
