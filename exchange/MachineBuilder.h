#pragma once

#include "exchange/JsonTape.h"

#include <Orvo/Exchange/MachineJson.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/Machine.h>

#include <cstddef>

namespace Orvo::Exchange {

/// Turns the parts of a JSON text into those of a machine.
class MachineBuilder {
 public:
  MachineBuilder(Kin::Machine* machine, const JsonReadOptions& options)
      : machine_(machine), options_(options) {}

  void AddEntity(const JsonTape& tape);
  void AddProgramSystem(const JsonTape& tape);
  void SetCollisionCheck(const JsonTape& tape);
  void ReadHead(const JsonTape& tape, bool isFormat);

  /// What is left when the text has come to its end.
  void Finish();

 private:
  void ReadLink(const JsonTape& tape, std::size_t value, Kin::Entity* entity);
  void ReadMeshes(const JsonTape& tape, std::size_t value, Kin::Entity* entity);

  Kin::Machine* machine_;
  const JsonReadOptions& options_;
};

}  // namespace Orvo::Exchange
