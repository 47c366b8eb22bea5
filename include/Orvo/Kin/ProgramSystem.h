#pragma once

#include <Orvo/Export.h>
#include <Orvo/ISerializableXML.h>
#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/TableIndex.h>

#include <memory>
#include <string>

namespace Orvo::Kin {

struct ProgramSystemImplementation;

/// One way of programming a machine: which head, which table, which axes, which rotary solution.
///
/// A plain value: a copy takes the contents. Nothing is checked against a machine; the computation
/// meets heads, tables and registers that don't exist as missing.
class ORVO_API ProgramSystem : public ISerializableXML {
 public:
  /// Makes a program system without name, head, table or registers.
  ///
  /// Deliberate: its policy is `RotariesComputeShortestWay`, not the value called "Default".
  ProgramSystem();

  /// Copies everything.
  ProgramSystem(const ProgramSystem& other);

  /// Copies everything.
  ProgramSystem& operator=(const ProgramSystem& other);
  ~ProgramSystem() override;

  /// Sets the name: any text, unique or not.
  void SetProgramSystemName(const std::wstring& name);

  /// Sets the table that carries the workpiece, by its place among the machine's tables.
  void SetTableIndex(const TableIndex& table);

  /// Sets the head that carries the tool, by its place among the machine's heads.
  void SetHeadIndex(const HeadIndex& head);

  /// Sets the registers of the main linear axes.
  void SetMainLinear(const Register& x, const Register& y, const Register& z);

  /// Sets the registers of the two main rotary axes; an undefined one means that there is none.
  void SetMainRotary(const Register& r0, const Register& r1);

  /// Sets how rotary solutions are chosen.
  void SetRotariesCompute(RotariesCompute rotariesCompute);

  /// Returns the name.
  const std::wstring& GetProgramSystemName() const;

  /// Returns the table, or an undefined index.
  const TableIndex& GetTableIndex() const;

  /// Returns the head, or an undefined index.
  const HeadIndex& GetHeadIndex() const;

  /// Returns the register of the main X (0), Y (1) or Z (2) axis.
  ///
  /// Deliberate: any other index, negative ones included, gives element 0.
  const Register& GetMainLinear(int i) const;

  /// Returns the register of the first (0) or second (1) main rotary axis.
  ///
  /// Deliberate: any other index, negative ones included, gives element 0.
  const Register& GetMainRotary(int i) const;

  /// Returns how rotary solutions are chosen.
  RotariesCompute GetRotariesCompute();

 protected:
  bool SerializeXML(XMLWriter& writer, XMLElement* parent) override;
  bool DeserializeXML(XMLReader& reader, XMLElement* parent) override;

 private:
  std::unique_ptr<ProgramSystemImplementation> implementation_;
};

}  // namespace Orvo::Kin
