#include "io/MeshFileName.h"

#include <gtest/gtest.h>

#include <string>

namespace Orvo::Testing {
namespace {

TEST(MeshFileName, TakesTheSuffixOffAndAppendsIdAndIndex) {
  struct Case {
    const wchar_t* path;
    int id;
    unsigned int index;
    const wchar_t* name;
  };
  const Case cases[] = {
      {L"C:\\m\\mill.xml", 12, 0, L"C:\\m\\mill_12_0.stl"},
      {L"mill.xml", 1, 2, L"mill_1_2.stl"},
      {L"mill", 1, 2, L"mill_1_2.stl"},
      {L"/a/b.c/mill", 1, 2, L"/a/b_1_2.stl"},
      {L"/a/b.c/mill.xml", 1, 2, L"/a/b.c/mill_1_2.stl"},
      {L"mill.a.b", 1, 2, L"mill.a_1_2.stl"},
      {L"mill.", 1, 2, L"mill_1_2.stl"},
      {L".xml", 1, 2, L"_1_2.stl"},
      {L".", 1, 2, L"_1_2.stl"},
      {L"", 1, 2, L"_1_2.stl"},
      {L"./mill", 1, 2, L"_1_2.stl"},
      {L"mill.xml", -1, 0, L"mill_-1_0.stl"},
      {L"mill.xml", -2147483647 - 1, 4294967295U, L"mill_-2147483648_4294967295.stl"},
      {L"mill.xml", 2147483647, 2147483648U, L"mill_2147483647_2147483648.stl"},
      {L"M\u00fchle.xml", 3, 1, L"M\u00fchle_3_1.stl"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Kin::MeshFileName(c.path, c.id, c.index), c.name) << c.path;
  }
}

}  // namespace
}  // namespace Orvo::Testing
