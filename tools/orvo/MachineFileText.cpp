#include "MachineFileText.h"

#include "NumberText.h"

#include <fmt/format.h>

namespace OrvoTool {
namespace {

std::string Vector(const char* name, const MachineFileText::Triple& v) {
  return fmt::format(R"(<{} X="{}" Y="{}" Z="{}"/>)", name, ExactNumber(v[0]), ExactNumber(v[1]),
                     ExactNumber(v[2]));
}

}  // namespace

int MachineFileText::Add(const std::string& name, const char* type, int parent, int reg,
                         const Link& link) {
  ++elementNb_;
  const char* isMoving = reg >= 0 ? "true" : "false";
  text_ += fmt::format(
      R"(        <Entity>
            <Name>{}</Name>
            <Type>{}</Type>
            <ParallelType>CHAIN</ParallelType>
            <Id>{}</Id>
            <ParentId>{}</ParentId>
            <Register>{}</Register>
            <Motor>{}</Motor>
            <RangeAxis>{}</RangeAxis>
            <Mounting>false</Mounting>
            <EntityLink>
                <Type>{}</Type>
                {}
                {}
                <Position>
                    {}
                    {}
                    {}
                    {}
                </Position>
                <ZeroRef>0</ZeroRef>
                <RangeMin>{}</RangeMin>
                <RangeMax>{}</RangeMax>
            </EntityLink>
        </Entity>
)",
      name, type, elementNb_, parent, reg, isMoving, link.range.isChecked ? "true" : "false",
      link.type, Vector("Center", link.center), Vector("Dir", link.direction),
      Vector("U", link.frame.u), Vector("V", link.frame.v), Vector("W", link.frame.w),
      Vector("T", link.frame.origin), ExactNumber(link.range.min), ExactNumber(link.range.max));
  return elementNb_;
}

int MachineFileText::AddStatic(const std::string& name, int parent) {
  return Add(name, "AXIS", parent, -1, Link());
}

int MachineFileText::AddLinear(const std::string& name, int parent, int reg,
                               const Triple& direction, const Range& range) {
  Link link;
  link.type = "LINEAR";
  link.direction = direction;
  link.range = range;
  return Add(name, "AXIS", parent, reg, link);
}

int MachineFileText::AddRotary(const std::string& name, int parent, int reg, const Triple& center,
                               const Triple& direction, const Range& range) {
  Link link;
  link.type = "ROTARY";
  link.center = center;
  link.direction = direction;
  link.range = range;
  return Add(name, "AXIS", parent, reg, link);
}

int MachineFileText::AddHead(const std::string& name, int parent, const Frame& frame) {
  Link link;
  link.frame = frame;
  return Add(name, "HEAD", parent, -1, link);
}

int MachineFileText::AddTable(const std::string& name, int parent, const Frame& frame) {
  Link link;
  link.frame = frame;
  return Add(name, "TABLE", parent, -1, link);
}

std::string MachineFileText::Finish(const std::string& system, const std::array<int, 3>& linear,
                                    const std::array<int, 2>& rotary) const {
  return R"(<?xml version="1.0" encoding="UTF-8"?>
<Machine Version="0">
    <Entities>
)" + text_ +
         fmt::format(R"(    </Entities>
    <ProgramSystems>
        <ProgramSystem>
            <ProgramSystemName>{}</ProgramSystemName>
            <TableIndex>0</TableIndex>
            <HeadIndex>0</HeadIndex>
            <MainLinear RegX="{}" RegY="{}" RegZ="{}"/>
            <MainRotary RegR0="{}" RegR1="{}"/>
            <RotariesCompute>ShortestWay</RotariesCompute>
        </ProgramSystem>
    </ProgramSystems>
    <CollisionCheck/>
</Machine>
)",
                     system, linear[0], linear[1], linear[2], rotary[0], rotary[1]);
}

}  // namespace OrvoTool
