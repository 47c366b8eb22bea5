#include "Benchmarks.h"
#include "ScratchFolder.h"

#include <Orvo/Kin/Kinematic.h>

#include <benchmark/benchmark.h>
#include <tinyxml2.h>

#include <memory>
#include <stdexcept>

namespace Orvo::Benchmarks {

namespace {

using Kin::Machine;

/// A machine and the file that it was written to.
struct MachineFile {
  MachineFile(const ScratchFolder& folder, const std::string& givenName, const Machine& given)
      : name(givenName), path(folder.Path(givenName + ".xml")), machine(given) {
    if (!machine.WriteXML(std::wstring(path.begin(), path.end()))) {
      throw std::runtime_error(path + ": can't be written");
    }
    Machine read;
    if (!Read(&read) || read.GetKinematic().GetListEntity().size() !=
                            machine.GetKinematic().GetListEntity().size()) {
      throw std::runtime_error(path + ": not read as it was written");
    }
  }

  bool Read(Machine* read) const { return read->ReadXML(std::wstring(path.begin(), path.end())); }

  std::string name;
  std::string path;
  Machine machine;
};

}  // namespace

void RegisterFiles() {
  static const ScratchFolder folder;
  for (const int elementNb : {1000, 10000, 100000}) {
    for (const bool isDeep : {false, true}) {
      const std::string name = (isDeep ? "deep" : "wide") + std::to_string(elementNb);
      const auto file = std::make_shared<MachineFile>(
          folder, name, isDeep ? MakeDeep(elementNb) : MakeWide(elementNb));
      benchmark::RegisterBenchmark(("W5/" + name + "/orvo").c_str(),
                                   [file](benchmark::State& state) {
                                     for (auto _ : state) {
                                       file->machine.Finish();
                                       benchmark::ClobberMemory();
                                     }
                                   });
      benchmark::RegisterBenchmark(("W6/" + name + "/orvo").c_str(),
                                   [file](benchmark::State& state) {
                                     for (auto _ : state) {
                                       Machine read;
                                       file->Read(&read);
                                       benchmark::ClobberMemory();
                                     }
                                   });
      benchmark::RegisterBenchmark(("W6/" + name + "/tinyxml2").c_str(),
                                   [file](benchmark::State& state) {
                                     for (auto _ : state) {
                                       tinyxml2::XMLDocument document;
                                       document.LoadFile(file->path.c_str());
                                       benchmark::ClobberMemory();
                                     }
                                   });
    }
  }
}

}  // namespace Orvo::Benchmarks
