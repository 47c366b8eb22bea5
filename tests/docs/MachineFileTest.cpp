// The example of docs/machine-file.md: it is read, and written again as it stands there.

#include "support/TemporaryFolder.h"

#include <Orvo/Orvo.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Orvo::Testing {
namespace {

using namespace Orvo::Kin;

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream file(path);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::string ExampleOfPage() {
  const std::string page = ReadText(std::filesystem::path(ORVO_DOCS_DIR) / "machine-file.md");
  const std::string opening = "\n```xml\n";
  const std::size_t start = page.find(opening);
  const std::size_t end = page.find("\n```\n", start + 1);
  if (start == std::string::npos || end == std::string::npos) {
    return "";
  }
  return page.substr(start + opening.size(), end + 1 - start - opening.size());
}

TEST(MachineFilePage, ExampleIsWrittenAsItIsRead) {
  const std::string example = ExampleOfPage();
  ASSERT_NE(example, "");
  const TemporaryFolder folder;
  std::ofstream(folder.File("given.xml")) << example;

  Machine machine;
  ASSERT_TRUE(machine.ReadXML(folder.Wide("given.xml")));
  EXPECT_FALSE(machine.IsFinished());
  EXPECT_EQ(machine.GetLastError(), MachineErrorNoTable);
  EXPECT_EQ(machine.GetEntityNb(), 2);
  ASSERT_TRUE(machine.WriteXML(folder.Wide("written.xml")));
  EXPECT_EQ(ReadText(folder.File("written.xml")), example);
}

}  // namespace
}  // namespace Orvo::Testing
