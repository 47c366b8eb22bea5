#include "faults/MemorySweep.h"
#include "faults/SampleMachine.h"
#include "support/FaultReport.h"
#include "support/TemporaryFolder.h"

#include <Orvo/Kin/Machine.h>

#include <gtest/gtest.h>
#include <locale.h>

#include <clocale>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace {

bool isLocaleRefused = false;

}  // namespace

// The linker leads the library's calls of newlocale here.
extern "C" {
locale_t __real_newlocale(int categories, const char* name, locale_t base);
locale_t __wrap_newlocale(int categories, const char* name, locale_t base);
}

locale_t __wrap_newlocale(int categories, const char* name, locale_t base) {
  return isLocaleRefused ? nullptr : __real_newlocale(categories, name, base);
}

namespace Orvo::Testing {
namespace {

// The first number that takes the C library to read asks for the locale of all such numbers. Where
// there is no memory for it, the next one asks again.
int ReadWithoutLocale(const std::wstring& path) {
  isLocaleRefused = true;
  Kin::Machine machine;
  const FaultEnding ending = EndingOf([&] { return machine.ReadXML(path); });
  isLocaleRefused = false;
  Kin::Machine again;
  return ending == FaultEnding::Threw && again.ReadXML(path) ? 0 : 1;
}

TEST(LocaleFault, MissingLocaleThrowsAndIsAskedForAgain) {
  // In a process that has read no such number yet.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TemporaryFolder folder;
  std::ifstream example(ExampleMachineFile("trunnion_ac"), std::ios::binary);
  std::string text(std::istreambuf_iterator<char>(example), {});
  const std::string number = "\"0.000000\"";
  text.replace(text.find(number), number.size(), "\"0e0\"");
  folder.Write("machine.xml", text);
  const std::wstring path = folder.Wide("machine.xml");
  EXPECT_EXIT(std::_Exit(ReadWithoutLocale(path)), testing::ExitedWithCode(0), "");
  CountFault("read a machine file", "memory: no locale", FaultEnding::Threw);
}

}  // namespace
}  // namespace Orvo::Testing
