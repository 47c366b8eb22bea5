#pragma once

#include <array>
#include <string>

namespace OrvoTool {

/// Writes the text of a machine file, element by element. Numbers keep all their digits, more than
/// the library writes.
class MachineFileText {
 public:
  using Triple = std::array<double, 3>;

  /// The range of an axis, in lengths or degrees.
  struct Range {
    double min = 0.0;
    double max = 0.0;
    bool isChecked = true;
  };

  /// A fixed place: the axes U, V, W and the origin, in the frame of the parent.
  struct Frame {
    Triple u = {1.0, 0.0, 0.0};
    Triple v = {0.0, 1.0, 0.0};
    Triple w = {0.0, 0.0, 1.0};
    Triple origin = {};
  };

  /// @name Elements
  /// Each returns the id of the new element, from 1. A parent of -1 is none.
  /// @{
  int AddStatic(const std::string& name, int parent);
  int AddLinear(const std::string& name, int parent, int reg, const Triple& direction,
                const Range& range);
  int AddRotary(const std::string& name, int parent, int reg, const Triple& center,
                const Triple& direction, const Range& range);
  int AddHead(const std::string& name, int parent, const Frame& frame);
  int AddTable(const std::string& name, int parent, const Frame& frame);
  /// @}

  /// Ends the text with a program system between head 0 and table 0.
  /// @param rotary  the registers of the rotary axes; -1 where there is none
  /// @return the whole text
  std::string Finish(const std::string& system, const std::array<int, 3>& linear,
                     const std::array<int, 2>& rotary) const;

 private:
  struct Link {
    const char* type = "POSITION";
    Triple center = {};
    Triple direction = {1.0, 0.0, 0.0};
    Frame frame;
    Range range = {0.0, 0.0, false};
  };

  int Add(const std::string& name, const char* type, int parent, int reg, const Link& link);

  std::string text_;
  int elementNb_ = 0;
};

}  // namespace OrvoTool
