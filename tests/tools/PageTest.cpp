#include "tools/ToolRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstddef>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace Orvo::Testing {
namespace {

using testing::HasSubstr;

std::string Whole(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream) << file;
  return std::string((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
}

std::string Page() { return Whole(ORVO_TOOLS_TEST_DIR "/../../docs/tool.md"); }

/// Returns "NUMBER NAME SEVERITY" of every match of a pattern.
std::set<std::string> Rows(const std::string& text, const std::string& pattern) {
  std::set<std::string> rows;
  const std::regex regex(pattern);
  for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
    rows.insert((*match)[1].str() + " " + (*match)[2].str());
  }
  return rows;
}

// The page has every code of validate: its number, its name, and whether it is an error.
TEST(ToolPage, HasEveryFinding) {
  const std::string sources = ORVO_TOOLS_TEST_DIR "/../../tools/orvo/MachineFinding";
  const std::set<std::string> numbers =
      Rows(Whole(sources + ".h"), R"(\n  ([A-Z]\w+) = (\d{3}),?(?=\n))");
  const std::string entries = Whole(sources + ".cpp");
  EXPECT_GE(numbers.size(), 40U);
  const std::string page = Page();
  std::size_t rowNb = 0;
  for (const std::string& row : numbers) {
    const std::string symbol = row.substr(0, row.find(' '));
    const std::string number = row.substr(row.find(' ') + 1);
    std::smatch entry;
    ASSERT_TRUE(
        std::regex_search(entries, entry,
                          std::regex("FindingCode::" + symbol +
                                     R"delimiter(, "([a-z0-9-]+)",\s+Severity::(\w+))delimiter")))
        << symbol;
    const std::string severity = entry[2] == "Error" ? "error" : "warning";
    EXPECT_THAT(page,
                HasSubstr("\n| V" + number + " | `" + entry[1].str() + "` | " + severity + " | "));
    ++rowNb;
  }
  EXPECT_EQ(Rows(page, R"(\n\| V(\d{3}) \| `([a-z0-9-]+)`)").size(), rowNb);
}

// The page has every kind of machine, and every command.
TEST(ToolPage, HasEveryKindAndCommand) {
  const ToolRun tool;
  const std::string page = Page();
  for (const nlohmann::json& kind :
       nlohmann::json::parse(tool.Run({"new", "--list", "--format", "json"}).out)) {
    EXPECT_THAT(page, HasSubstr("`" + kind["kind"].get<std::string>() + "`"));
  }
  const std::string help = tool.Run({"--help"}).out;
  for (const std::string& row : Rows(help, R"(\n  ([a-z]+) +([a-z]))")) {
    const std::string command = row.substr(0, row.find(' '));
    EXPECT_TRUE(std::regex_search(page, std::regex("\n\\|[^|]*`" + command + "[ `]"))) << command;
  }
}

// The example of the page is what the program says.
TEST(ToolPage, ExampleIsWhatTheProgramSays) {
  const ToolRun tool;
  const std::string line = "$ orvo fk machine.xml A=30 X=10.5 --offset 0,0,30 --format csv\n";
  const std::string page = Page();
  const std::size_t begin = page.find(line);
  ASSERT_NE(begin, std::string::npos);
  const std::size_t first = begin + line.size();
  EXPECT_EQ(tool.Run({"fk", ExampleMachine("trunnion_ac"), "A=30", "X=10.5", "--offset", "0,0,30",
                      "--format", "csv"})
                .out,
            page.substr(first, page.find("```", first) - first));
}

}  // namespace
}  // namespace Orvo::Testing
