#pragma once

#include <Orvo/Vector3D.h>

#include <charconv>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace Orvo::Testing {

/// The folders of examples/machines.
inline const std::vector<std::string>& ExampleMachineNames() {
  static const std::vector<std::string> names = {
      "gantry_head_head_ca", "head_table_bc", "millturn_2h2t", "nutating_head_bc", "trunnion_ac"};
  return names;
}

inline std::string ExampleMachineFile(const std::string& name) {
  return std::string(ORVO_EXAMPLES_DIR) + "/machines/" + name + "/" + name + ".xml";
}

inline std::string ExamplePathFile(const std::string& name) {
  return std::string(ORVO_EXAMPLES_DIR) + "/paths/" + name + ".csv";
}

/// Widens a file name; those of the examples are ASCII when the folder of the project is.
inline std::wstring WideName(const std::string& name) {
  return std::wstring(name.begin(), name.end());
}

inline std::string ReadBytes(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) {
    throw std::runtime_error("can't read " + file);
  }
  return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

/// Splits the lines of a CSV file into fields, without its first line.
inline std::vector<std::vector<std::string>> ReadTable(const std::string& file) {
  std::istringstream lines(ReadBytes(file));
  std::vector<std::vector<std::string>> rows;
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::vector<std::string> row;
    std::istringstream fields(line);
    std::string field;
    while (std::getline(fields, field, ',')) {
      row.push_back(field);
    }
    rows.push_back(row);
  }
  return rows;
}

inline double ToNumber(const std::string& text) {
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw std::runtime_error("'" + text + "' is no number");
  }
  return number;
}

/// Reads a CSV file of numbers, without its first line.
inline std::vector<std::vector<double>> ReadNumbers(const std::string& file) {
  std::vector<std::vector<double>> rows;
  for (const std::vector<std::string>& texts : ReadTable(file)) {
    std::vector<double> row;
    for (const std::string& text : texts) {
      row.push_back(ToNumber(text));
    }
    rows.push_back(row);
  }
  return rows;
}

/// Which path runs on which program system, where it lies and with which tool.
struct ExamplePair {
  std::string machine;
  std::string programSystem;
  std::string path;
  Vector3D shift;
  Vector3D offset;
};

inline std::ostream& operator<<(std::ostream& out, const ExamplePair& pair) {
  return out << pair.machine << " " << pair.programSystem << " " << pair.path;
}

inline std::vector<ExamplePair> ReadPairs() {
  std::vector<ExamplePair> pairs;
  for (const std::vector<std::string>& row :
       ReadTable(std::string(ORVO_EXAMPLES_DIR) + "/pairs.csv")) {
    pairs.push_back({row.at(0), row.at(1), row.at(2),
                     Vector3D(ToNumber(row.at(3)), ToNumber(row.at(4)), ToNumber(row.at(5))),
                     Vector3D(ToNumber(row.at(6)), ToNumber(row.at(7)), ToNumber(row.at(8)))});
  }
  return pairs;
}

}  // namespace Orvo::Testing
