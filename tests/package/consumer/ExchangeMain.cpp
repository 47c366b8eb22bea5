// A program outside the library that takes a machine to JSON and back.

#include <Orvo/Exchange/Exchange.h>
#include <Orvo/Orvo.h>

#include <iostream>
#include <sstream>

int main() {
  using namespace Orvo;
  Kin::Machine machine;
  const Kin::EntityId bed = machine.AddEntityStatic(L"bed", -1)->GetEntityId();
  Kin::EntityId end = bed;
  const Vector3D directions[] = {AxisX, AxisY, AxisZ};
  for (int i = 0; i < 3; ++i) {
    Kin::Entity* const axis = machine.AddEntityLinear(L"linear", end, directions[i]);
    axis->SetRegister(i);
    end = axis->GetEntityId();
  }
  machine.AddEntityHead(L"head", end, Matrix43());
  machine.AddEntityTable(L"table", bed, Matrix43());
  if (!machine.Finish()) {
    return 1;
  }
  std::stringstream text;
  Exchange::WriteMachineJson(machine, text);
  Kin::Machine again;
  Exchange::ReadMachineJson(text, "text", &again);
  std::cout << again.GetEntityNb() << " elements\n";
  try {
    Exchange::WriteUrdf(Kin::Machine(), text);
    return 1;
  } catch (const Exchange::ExchangeError&) {
    return 0;
  }
}
