#include "tools/ToolRun.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace Orvo::Testing {
namespace {

std::string Whole(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
}

/// A run whose whole output is kept.
struct Golden {
  const char* name;     ///< of the file in golden/
  const char* command;  ///< for the shell, behind the program's name
};

// In a folder with the trunnion (machine.xml), a head that reaches half of all directions
// (head.xml), a machine with many faults (faulty.xml), axis values (axes.csv), two paths (path.csv,
// part.apt) and rows that follow the first one but for a slip (rows.csv).
constexpr Golden Runs[] = {
    {"help", "--help"},
    {"help_info", "info --help"},
    {"help_validate", "validate --help"},
    {"help_fk", "fk --help"},
    {"help_ik", "ik --help"},
    {"help_explain", "explain --help"},
    {"help_new", "new --help"},
    {"info", "info machine.xml"},
    {"info_json", "info machine.xml --format json"},
    {"validate", "validate machine.xml"},
    {"validate_faulty", "validate faulty.xml"},
    {"validate_faulty_json", "validate faulty.xml --format json"},
    {"validate_faulty_jsonl", "validate faulty.xml --format jsonl"},
    {"fk", "fk machine.xml A=30 X=10.5 --offset 0,0,30 --element Table"},
    {"fk_file", "fk machine.xml axes.csv"},
    {"fk_csv", "fk machine.xml axes.csv --format csv"},
    {"fk_json", "fk machine.xml A=30 --format json --element C"},
    {"fk_jsonl", "fk machine.xml axes.csv --format jsonl"},
    {"ik", "ik machine.xml 10,20,30 0,0.5,0.866 --offset 0,0,30"},
    {"ik_free", "ik machine.xml 10,20,30 0,0,1 --start C=90"},
    {"ik_out", "ik machine.xml 900,20,30 0,0,1"},
    {"ik_json", "ik machine.xml 10,20,30 0,0.5,0.866 --offset 0,0,30 --format json"},
    {"explain", "explain machine.xml 900,20,60 0,0,1"},
    {"explain_range", "explain machine.xml 9,20,60 0,0.1,-1"},
    {"explain_unreachable", "explain head.xml 9,20,60 0,1,-1"},
    {"explain_json", "explain head.xml 9,20,60 0,1,-1 --format json"},
    {"explain_jsonl", "explain head.xml 9,20,60 0,1,-1 --format jsonl"},
    {"new_list", "new --list"},
    {"new_list_json", "new --list --format json"},
    {"new_trunnion_ac", "new trunnion-ac --a -30,120 --pivot 62.5"},
    {"help_solve", "solve --help"},
    {"help_check", "check --help"},
    {"help_vectors", "vectors --help"},
    {"solve", "solve machine.xml path.csv --offset 0,0,30 -o - --summary none"},
    {"solve_optimal",
     "solve machine.xml path.csv --offset 0,0,30 --policy optimal --no-residuals -o -"},
    {"solve_apt",
     "solve machine.xml part.apt --offset 0,0,30 --policy greedy --no-residuals --inverse-time "
     "-o -"},
    {"solve_jsonl",
     "solve machine.xml part.apt --offset 0,0,30 --format jsonl --summary json -o -"},
    {"check", "check machine.xml rows.csv --offset 0,0,30 --path path.csv --speed X=5 --feed 600"},
    {"check_json", "check machine.xml rows.csv --offset 0,0,30 --format json"},
    {"check_jsonl", "check machine.xml rows.csv --offset 0,0,30 --format jsonl"},
    {"vectors", "vectors write machine.xml --count 1 --offset 0,0,70 -o -"},
    {"usage", "ik machine.xml 10,20"},
    {"missing", "info missing.xml"},
};

// What the program writes, byte for byte: standard output, error stream, status. Where a change is
// meant, ORVO_UPDATE_GOLDEN=1 writes the files anew; the difference is what the commit explains.
TEST(GoldenOutput, IsAsItWas) {
  const ToolRun tool;
  const bool isUpdate = std::getenv("ORVO_UPDATE_GOLDEN") != nullptr;
  tool.Write("machine.xml", Whole(ExampleMachine("trunnion_ac")));
  tool.Write("head.xml", Whole(ExampleMachine("nutating_head_bc")));
  tool.Write("faulty.xml", Whole(ORVO_TOOLS_TEST_DIR "/golden/faulty.xml"));
  tool.Write("axes.csv", "# two positions\nX,A,C\n0,0,0\n10.5,30,-90\n");
  tool.Write("path.csv",
             "x,y,z,i,j,k\n10,0,0,0,0,1\n20,0,0,0,0.5,0.8660254037844386\n900,0,0,0,0,1\n"
             "0,0,0,0,0,-1\n30,0,0,0,0,1\n");
  tool.Write("part.apt",
             "PARTNO PLATE\nUNITS/MM\nMULTAX/ON\nSPINDL/RPM,1000,CLW\nFROM/0,0,100,0,0,1\nRAPID\n"
             "GOTO/10,0,20,0,0,1\nFEDRAT/600,MMPM\nGOTO/40,0,20,0,0,1\nGOTO/400,0,20,0,0,1\n"
             "FINI\n");
  tool.Write("rows.csv",
             "X,Y,Z,A,C\n10,0,40,0,0\n20,-20,34.641016,30,0\n200,0,40,30,-270\n0,0,40,-1,0\n"
             "30,0,40.002,0,0\n");
  // The mesh files of the machine are not there; what is told of them is part of the output.
  for (const Golden& run : Runs) {
    SCOPED_TRACE(run.command);
    const ToolResult result = tool.Shell(std::string("\"$ORVO\" ") + run.command);
    const std::string seen = "$ orvo " + std::string(run.command) + "\n" + result.out +
                             (result.err.empty() ? "" : "--- error stream\n" + result.err) +
                             "--- status " + std::to_string(result.status) + "\n";
    const std::string file = ORVO_TOOLS_TEST_DIR "/golden/" + std::string(run.name) + ".txt";
    if (isUpdate) {
      std::ofstream(file, std::ios::binary) << seen;
    }
    EXPECT_EQ(seen, Whole(file));
  }
}

}  // namespace
}  // namespace Orvo::Testing
