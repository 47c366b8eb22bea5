#pragma once

#include "property/reference/Frame.h"
#include "property/reference/Model.h"
#include "property/reference/Shapes.h"

#include <list>
#include <vector>

namespace Reference {

/// Up to two pairs of rotary values, in radians.
struct Rotaries {
  unsigned int count = 0;
  int freeRegister = -1;
  double alpha1 = 0.0;
  double beta1 = 0.0;
  double alpha2 = 0.0;
  double beta2 = 0.0;
};

/// Computes frames and axis values of a machine, step by step, with its memory of the last pair of
/// head and table, of the order of the elements, and of the last failure.
class Calculator {
 public:
  explicit Calculator(const Machine& machine) : machine_(machine) {}

  int GetLastError() const { return lastError_; }

  bool RelativePosition(const Link& link, int reg, const Position& pos, Frame* frame);
  bool PositionElement(const Element& element, const Position& pos, Frame* frame);
  bool PositionMachine(const Position& pos, std::vector<Frame>* frames);
  bool McsToToolTcs(const Position& pos, int head, int table, const Vector& offset, Frame* frame);
  bool WorldDirection(const Position& pos, const Element& element, Vector* dir);
  bool SolveRotaries(const Position& pos, int head, int table, const Vector& ijk, int r0, int r1,
                     Rotaries* solution);
  bool SolveLinear(const Position& pos, int head, int table, const Vector& offset,
                   const std::array<int, 3>& registers, const Vector& point, Vector* xyz);

 private:
  bool Fail(int error);
  void BuildOrder();
  void BuildChain(int head, int table);
  void SolveOneAxis(const Vector& axis, const Vector& tool, const Vector& target,
                    Rotaries* solution, double* angle);
  void SolveTwoAxes(const Vector& axis1, const Vector& axis2, const Vector& tool,
                    const Vector& target, int reg2, Rotaries* solution);

  const Machine& machine_;
  Position scratch_;
  const Element* head_ = nullptr;
  const Element* table_ = nullptr;
  std::list<const Element*> chain_;
  std::list<const Element*> order_;
  std::vector<Frame> relative_;
  Intersections intersections_;
  int lastError_ = 0;
};

}  // namespace Reference
