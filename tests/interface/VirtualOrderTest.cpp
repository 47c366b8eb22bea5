#include <Orvo/Orvo.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string>

// The places of the virtual operations, as a class derived by a caller sees them. The tables are
// read as compilers lay them out by the Itanium C++ ABI; others have one place for a destructor.
#if defined(__GXX_ABI_VERSION)

namespace Orvo::Testing {
namespace {

/// What was called, one letter a call.
std::string& Calls() {
  static std::string calls;
  return calls;
}

template <typename Base>
class Persisted : public Base {
 public:
  ~Persisted() override { Calls() += '~'; }

 protected:
  bool SerializeXML(XMLWriter& /*writer*/, XMLElement* /*parent*/) override {
    Calls() += 's';
    return true;
  }
  bool DeserializeXML(XMLReader& /*reader*/, XMLElement* /*parent*/) override {
    Calls() += 'd';
    return true;
  }
};

template <typename Base>
class Destroyed : public Base {
 public:
  using Base::Base;
  ~Destroyed() override { Calls() += '~'; }
};

class DestroyedSolver : public Kin::ProgramSystemCompute {
 public:
  DestroyedSolver() : ProgramSystemCompute(Machine(), Kin::ProgramSystem()) {}
  ~DestroyedSolver() override { Calls() += '~'; }

 private:
  static const Kin::Machine& Machine() {
    static const Kin::Machine machine;
    return machine;
  }
};

class DestroyedCalculator : public Kin::MachineCompute {
 public:
  DestroyedCalculator() : MachineCompute(Machine()) {}
  ~DestroyedCalculator() override { Calls() += '~'; }

 private:
  static const Kin::Machine& Machine() {
    static const Kin::Machine machine;
    return machine;
  }
};

/// One place of the table of an object whose class a caller derived from Base.
template <typename Base>
void* PlaceOf(Base* object, std::size_t place) {
  return (*reinterpret_cast<void***>(object))[place];
}

template <typename Base>
void CallOperation(Base* object, std::size_t place) {
  using Operation = bool (*)(Base*, void*, void*);
  char stream = 0;
  EXPECT_TRUE(reinterpret_cast<Operation>(PlaceOf(object, place))(object, &stream, nullptr));
}

/// Destroys an object by the first place of its destructor, and another one by the second, which
/// frees its memory too.
template <typename Base, typename Derived>
void CallDestructors(std::size_t firstPlace) {
  using Destructor = void (*)(Base*);
  alignas(Derived) unsigned char memory[sizeof(Derived)];
  Base* const held = new (memory) Derived;
  reinterpret_cast<Destructor>(PlaceOf(held, firstPlace))(held);
  EXPECT_EQ(Calls(), "~");
  Base* const owned = new Derived;
  reinterpret_cast<Destructor>(PlaceOf(owned, firstPlace + 1))(owned);
  EXPECT_EQ(Calls(), "~~");
}

template <typename Base>
class PersistedOrder : public testing::Test {};

using PersistedClasses = testing::Types<ISerializableXML, Kin::Machine, Kin::Kinematic, Kin::Entity,
                                        Kin::EntityLink, Kin::ProgramSystem>;
TYPED_TEST_SUITE(PersistedOrder, PersistedClasses);

TYPED_TEST(PersistedOrder, WritesThenReadsThenIsDestroyed) {
  Calls().clear();
  {
    Persisted<TypeParam> derived;
    TypeParam* const base = &derived;
    CallOperation(base, 0);
    CallOperation(base, 1);
    EXPECT_EQ(Calls(), "sd");
  }
  Calls().clear();
  CallDestructors<TypeParam, Persisted<TypeParam>>(2);
}

template <typename Pair>
class DestructorOnly : public testing::Test {};

template <typename BaseType, typename DerivedType = Destroyed<BaseType>>
struct Derivation {
  using Base = BaseType;
  using Derived = DerivedType;
};
using OtherClasses = testing::Types<Derivation<Angle>, Derivation<Matrix43>, Derivation<Mesh>,
                                    Derivation<Kin::CollisionCheck>, Derivation<Kin::EntityMesh>,
                                    Derivation<Kin::MachinePosition>,
                                    Derivation<Kin::MachineCompute, DestroyedCalculator>,
                                    Derivation<Kin::ProgramSystemCompute, DestroyedSolver>>;
TYPED_TEST_SUITE(DestructorOnly, OtherClasses);

TYPED_TEST(DestructorOnly, IsTheFirstPlace) {
  Calls().clear();
  CallDestructors<typename TypeParam::Base, typename TypeParam::Derived>(0);
}

}  // namespace
}  // namespace Orvo::Testing

#endif
