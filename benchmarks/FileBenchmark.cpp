#include "Benchmarks.h"
#include "ScratchFolder.h"

#include <Orvo/Kin/Kinematic.h>

#include <benchmark/benchmark.h>
#include <tinyxml2.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>

namespace Orvo::Benchmarks {

namespace {

using Kin::Machine;

std::wstring Wide(const std::string& path) { return std::wstring(path.begin(), path.end()); }

std::string BytesOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

void Write(Machine machine, const std::string& path) {
  if (!machine.WriteXML(Wide(path))) {
    throw std::runtime_error(path + ": can't be written");
  }
}

Machine Read(const std::string& path) {
  Machine machine;
  if (!machine.ReadXML(Wide(path))) {
    throw std::runtime_error(path + ": can't be read");
  }
  return machine;
}

/// A machine and two files of it: as it is written, and with markup behind the root that takes the
/// XML parser to read.
struct MachineFile {
  MachineFile(const ScratchFolder& folder, const std::string& givenName, const Machine& given)
      : name(givenName),
        path(folder.Path(name + ".xml")),
        pathForParser(folder.Path(name + "_parsed.xml")),
        machine(given) {
    Write(machine, path);
    // Directions are made unit when they are read, so the second file is what both ways must give.
    const std::string again = folder.Path("again.xml");
    Write(Read(path), again);
    Write(Read(again), path);
    std::ofstream(pathForParser, std::ios::binary) << BytesOf(path) << "<!behind>";
    Write(Read(pathForParser), again);
    tinyxml2::XMLDocument document;
    if (BytesOf(path) != BytesOf(again) ||
        Read(path).GetKinematic().GetListEntity().size() !=
            machine.GetKinematic().GetListEntity().size() ||
        document.LoadFile(path.c_str()) != tinyxml2::XML_SUCCESS) {
      throw std::runtime_error(path + ": not read as it was written");
    }
  }

  std::string name;
  std::string path;
  std::string pathForParser;
  Machine machine;
};

void RegisterReading(const std::string& name, const std::string& path) {
  benchmark::RegisterBenchmark(name.c_str(), [path](benchmark::State& state) {
    const std::wstring widePath = Wide(path);
    for (auto _ : state) {
      Machine read;
      benchmark::DoNotOptimize(read.ReadXML(widePath));
    }
  });
}

void RegisterFile(const std::shared_ptr<MachineFile>& file) {
  benchmark::RegisterBenchmark(("W5/" + file->name + "/orvo").c_str(),
                               [file](benchmark::State& state) {
                                 for (auto _ : state) {
                                   file->machine.Finish();
                                   benchmark::ClobberMemory();
                                 }
                               });
  RegisterReading("W6/" + file->name + "/orvo", file->path);
  // The parser alone, and the library by way of it.
  benchmark::RegisterBenchmark(("W6/" + file->name + "/tinyxml2").c_str(),
                               [file](benchmark::State& state) {
                                 for (auto _ : state) {
                                   tinyxml2::XMLDocument document;
                                   document.LoadFile(file->path.c_str());
                                   benchmark::ClobberMemory();
                                 }
                               });
  RegisterReading("W6/" + file->name + "/parsed", file->pathForParser);
}

}  // namespace

void RegisterFiles(const std::vector<Subject>& subjects) {
  static const ScratchFolder folder;
  for (const Subject& subject : subjects) {
    RegisterFile(std::make_shared<MachineFile>(folder, subject.name, subject.machine));
  }
  for (const int elementNb : {1000, 10000, 100000}) {
    const std::string size = std::to_string(elementNb);
    RegisterFile(std::make_shared<MachineFile>(folder, "wide" + size, MakeWide(elementNb)));
    RegisterFile(std::make_shared<MachineFile>(folder, "deep" + size, MakeDeep(elementNb)));
  }
}

}  // namespace Orvo::Benchmarks
