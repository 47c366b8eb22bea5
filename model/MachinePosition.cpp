#include <Orvo/Kin/MachinePosition.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <utility>

namespace Orvo::Kin {

namespace {

using Values = std::vector<double>;

// Applies an operation by element; positions of different sizes are left as they are.
template <typename Operation>
void Combine(Values* a, const Values& b, Operation operation) {
  if (a->size() == b.size()) {
    std::transform(a->begin(), a->end(), b.begin(), a->begin(), operation);
  }
}

template <typename Operation>
void ForEach(Values* values, Operation operation) {
  std::transform(values->begin(), values->end(), values->begin(), operation);
}

}  // namespace

MachinePosition::MachinePosition() : values_(std::make_unique<Values>()) {}

MachinePosition::MachinePosition(const MachinePosition& other)
    : values_(std::make_unique<Values>(*other.values_)) {}

MachinePosition& MachinePosition::operator=(const MachinePosition& other) {
  if (this != &other) {
    if (values_->size() < other.values_->size()) {
      values_->resize(other.values_->size());
    }
    std::copy(other.values_->begin(), other.values_->end(), values_->begin());
  }
  return *this;
}

MachinePosition::~MachinePosition() = default;

void MachinePosition::Alloc(const Register& n) {
  if (n.IsDefined()) {
    values_->resize(static_cast<std::size_t>(n.GetVal()));
  }
  SetAll(0.0);
}

void MachinePosition::Alloc(unsigned long long n) {
  if (n != 0) {
    values_->resize(n);
  }
  SetAll(0.0);
}

void MachinePosition::SetAll(double v) { std::fill(values_->begin(), values_->end(), v); }

unsigned long long MachinePosition::Size() const { return values_->size(); }

double& MachinePosition::operator[](const Register& r) {
  return const_cast<double&>(std::as_const(*this)[r]);
}

const double& MachinePosition::operator[](const Register& r) const {
  if (!r.IsDefined() || static_cast<std::size_t>(r.GetVal()) >= values_->size()) {
    throw std::out_of_range("MachinePosition::operator[] : index out of range");
  }
  return (*values_)[static_cast<std::size_t>(r.GetVal())];
}

MachinePosition MachinePosition::operator+(const MachinePosition& b) {
  MachinePosition result(*this);
  result += b;
  return result;
}

MachinePosition MachinePosition::operator-(const MachinePosition& b) {
  MachinePosition result(*this);
  result -= b;
  return result;
}

MachinePosition MachinePosition::operator-() { return *this * -1.0; }

MachinePosition MachinePosition::operator*(double k) {
  MachinePosition result(*this);
  ForEach(result.values_.get(), [k](double value) { return value * k; });
  return result;
}

MachinePosition MachinePosition::operator/(double k) {
  MachinePosition result(*this);
  ForEach(result.values_.get(), [k](double value) { return value / k; });
  return result;
}

MachinePosition& MachinePosition::operator+=(const MachinePosition& b) {
  Combine(values_.get(), *b.values_, std::plus<>());
  return *this;
}

MachinePosition& MachinePosition::operator-=(const MachinePosition& b) {
  Combine(values_.get(), *b.values_, std::minus<>());
  return *this;
}

}  // namespace Orvo::Kin
