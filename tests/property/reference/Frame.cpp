#include "property/reference/Frame.h"

#include <cmath>
#include <cstring>
#include <cwchar>

namespace Reference {
namespace {

const double IdentityValues[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// Row r of the three direction columns times x, y, z.
double Row(const Frame& f, int r, double x, double y, double z) {
  const double first = f.m[r] * x;
  const double second = f.m[4 + r] * y;
  const double third = f.m[8 + r] * z;
  const double tail = second + third;
  return first + tail;
}

// The block R of a product, with a null fourth row.
void MultiplyBlocks(const Frame& a, const Frame& b, Frame* out) {
  for (int c = 0; c < 3; ++c) {
    for (int r = 0; r < 3; ++r) {
      out->m[4 * c + r] = Row(a, r, b.m[4 * c], b.m[4 * c + 1], b.m[4 * c + 2]);
    }
  }
}

void CopyBlock(const Frame& from, Frame* out) {
  for (int c = 0; c < 3; ++c) {
    for (int r = 0; r < 3; ++r) {
      out->m[4 * c + r] = from.m[4 * c + r];
    }
  }
}

// a.R * b.T + a.T
void CarryOrigin(const Frame& a, const Frame& b, Frame* out) {
  for (int r = 0; r < 3; ++r) {
    out->m[12 + r] = Row(a, r, b.m[12], b.m[13], b.m[14]) + a.m[12 + r];
  }
}

}  // namespace

Frame::Frame() : kind(Kind::Identity) { std::memcpy(m, IdentityValues, sizeof m); }

Frame& Frame::operator=(const Frame& other) {
  if (this == &other) {
    return *this;
  }
  if (kind == Kind::Identity && other.kind == Kind::Identity) {
    return *this;
  }
  std::memcpy(m, other.m, sizeof m);
  kind = other.kind;
  return *this;
}

Frame Frame::FromLanes(const double* p) {
  Frame out;
  std::memcpy(out.m, p, sizeof out.m);
  out.kind = Kind::General;
  return out;
}

void Frame::Load(const double* p) {
  std::memmove(m, p, sizeof m);
  IdentifyKind();
}

void Frame::SetIdentity() {
  std::memcpy(m, IdentityValues, sizeof m);
  kind = Kind::Identity;
}

Vector Frame::Column(int column) const {
  return {m[4 * column], m[4 * column + 1], m[4 * column + 2], 0.0};
}

void Frame::SetColumn(int column, const Vector& v) {
  m[4 * column] = v.x;
  m[4 * column + 1] = v.y;
  m[4 * column + 2] = v.z;
  m[4 * column + 3] = v.w;
}

void Frame::SetUVW(const Vector& u, const Vector& v, const Vector& w) {
  SetColumn(0, u);
  SetColumn(1, v);
  SetColumn(2, w);
  kind = Kind::Rotation;
}

void Frame::SetUVWT(const Vector& u, const Vector& v, const Vector& w, const Vector& t) {
  SetColumn(0, u);
  SetColumn(1, v);
  SetColumn(2, w);
  SetColumn(3, t);
  m[15] = 1.0;
  kind = Kind::RotationTranslation;
}

void Frame::SetTrans(const Vector& t) {
  SetColumn(3, t);
  m[15] = 1.0;
  UpdateKind(Kind::Translation);
}

void Frame::UpdateKind(Kind op) {
  if (kind == Kind::Identity) {
    kind = op;
  } else if (kind == Kind::General || op == Kind::General) {
    kind = Kind::General;
  } else if (kind == Kind::Projective || op == Kind::Projective) {
    kind = Kind::Projective;
  } else if (kind == Kind::Rotation) {
    if (op == Kind::Translation || op == Kind::RotationTranslation) {
      kind = Kind::RotationTranslation;
    }
  } else if (kind == Kind::Translation) {
    if (op == Kind::Rotation || op == Kind::RotationTranslation) {
      kind = Kind::RotationTranslation;
    }
  }
}

void Frame::IdentifyKind() {
  kind = Kind::General;
  const bool plainRow = m[3] == 0.0 && m[7] == 0.0 && m[11] == 0.0 && m[15] == 1.0;
  if (!plainRow) {
    kind = Kind::Projective;
    return;
  }
  const bool originIsNull = m[12] == 0.0 && m[13] == 0.0 && m[14] == 0.0;
  Frame r;
  std::memcpy(r.m, m, sizeof m);
  r.m[12] = 0.0;
  r.m[13] = 0.0;
  r.m[14] = 0.0;
  r.m[15] = 1.0;
  if (r.Equal(Frame())) {
    kind = originIsNull ? Kind::Identity : Kind::Translation;
    return;
  }
  if (!r.IsRotary()) {
    return;
  }
  kind = originIsNull ? Kind::Rotation : Kind::RotationTranslation;
}

Frame Frame::Times(const Frame& b) const {
  const Frame& a = *this;
  if (a.kind == Kind::Identity) {
    return Frame(b);
  }
  if (b.kind == Kind::Identity) {
    return Frame(a);
  }
  Frame out;
  if (a.kind == Kind::Rotation && b.kind == Kind::Translation) {
    CopyBlock(a, &out);
    CarryOrigin(a, b, &out);
    out.kind = Kind::RotationTranslation;
    return out;
  }
  if (a.kind == Kind::Rotation && b.kind == Kind::Rotation) {
    MultiplyBlocks(a, b, &out);
    out.kind = Kind::Rotation;
    return out;
  }
  if (a.kind == Kind::Translation && b.kind == Kind::Rotation) {
    CopyBlock(b, &out);
    for (int r = 12; r < 15; ++r) {
      out.m[r] = a.m[r];
    }
    out.kind = Kind::RotationTranslation;
    return out;
  }
  if (a.kind == Kind::Translation && b.kind == Kind::RotationTranslation) {
    CopyBlock(b, &out);
    for (int r = 12; r < 15; ++r) {
      out.m[r] = a.m[r] + b.m[r];
    }
    out.kind = Kind::RotationTranslation;
    return out;
  }
  if (a.kind == Kind::RotationTranslation && b.kind == Kind::Translation) {
    CopyBlock(a, &out);
    CarryOrigin(a, b, &out);
    out.kind = Kind::RotationTranslation;
    return out;
  }
  if (a.kind == Kind::Projective || b.kind == Kind::Projective) {
    for (int c = 0; c < 4; ++c) {
      for (int r = 0; r < 4; ++r) {
        const double three = Row(a, r, b.m[4 * c], b.m[4 * c + 1], b.m[4 * c + 2]);
        out.m[4 * c + r] = three + a.m[12 + r] * b.m[4 * c + 3];
      }
    }
    out.kind = Kind::Projective;
    return out;
  }
  MultiplyBlocks(a, b, &out);
  CarryOrigin(a, b, &out);
  const bool general = a.kind == Kind::General || b.kind == Kind::General;
  out.kind = general ? Kind::General : Kind::RotationTranslation;
  return out;
}

Vector Frame::ApplyToPoint(const Vector& p) const {
  Vector out;
  switch (kind) {
    case Kind::General:
    case Kind::RotationTranslation:
      out.x = Row(*this, 0, p.x, p.y, p.z) + m[12];
      out.y = Row(*this, 1, p.x, p.y, p.z) + m[13];
      out.z = Row(*this, 2, p.x, p.y, p.z) + m[14];
      return out;
    case Kind::Identity:
      return {p.x, p.y, p.z, 0.0};
    case Kind::Rotation:
      out.x = Row(*this, 0, p.x, p.y, p.z);
      out.y = Row(*this, 1, p.x, p.y, p.z);
      out.z = Row(*this, 2, p.x, p.y, p.z);
      return out;
    case Kind::Translation:
      return {p.x + m[12], p.y + m[13], p.z + m[14], 0.0};
    case Kind::Projective: {
      out.x = Row(*this, 0, p.x, p.y, p.z) + m[12];
      out.y = Row(*this, 1, p.x, p.y, p.z) + m[13];
      out.z = Row(*this, 2, p.x, p.y, p.z) + m[14];
      const double w = Row(*this, 3, p.x, p.y, p.z) + m[15];
      if (w != 0.0 && w != 1.0) {
        out.x = out.x / w;
        out.y = out.y / w;
        out.z = out.z / w;
      }
      return out;
    }
  }
  return out;
}

Vector Frame::ApplyToVector(const Vector& v) const {
  switch (kind) {
    case Kind::Identity:
    case Kind::Translation:
      return {v.x, v.y, v.z, 0.0};
    case Kind::General:
    case Kind::Rotation:
    case Kind::RotationTranslation:
      return {Row(*this, 0, v.x, v.y, v.z), Row(*this, 1, v.x, v.y, v.z),
              Row(*this, 2, v.x, v.y, v.z), 0.0};
    case Kind::Projective:
      break;
  }
  return {};
}

void Frame::SetRotation(int direction, double radians) {
  const double ca = std::cos(radians);
  const double sa = std::sin(radians);
  double u[3] = {1.0, 0.0, 0.0};
  double v[3] = {0.0, 1.0, 0.0};
  double w[3] = {0.0, 0.0, 1.0};
  const bool isZero = radians == 0.0;
  if (!isZero) {
    if (direction == 0) {
      v[1] = ca;
      v[2] = sa;
      w[1] = -sa;
      w[2] = ca;
    } else if (direction == 1) {
      u[0] = ca;
      u[2] = -sa;
      w[0] = sa;
      w[2] = ca;
    } else {
      u[0] = ca;
      u[1] = sa;
      v[0] = -sa;
      v[1] = ca;
    }
  }
  for (int r = 0; r < 3; ++r) {
    m[r] = u[r];
    m[4 + r] = v[r];
    m[8 + r] = w[r];
  }
  if (!isZero) {
    UpdateKind(Kind::Rotation);
    return;
  }
  if (kind == Kind::General || kind == Kind::Translation || kind == Kind::RotationTranslation) {
    kind = Kind::Translation;
  } else {
    kind = Kind::Identity;
  }
}

void Frame::SetRotation(const Vector& axis, double radians) {
  if (radians == 0.0) {
    SetRotation(2, 0.0);
    m[3] = 0.0;
    m[7] = 0.0;
    m[11] = 0.0;
    return;
  }
  const double tol = 0.00001;
  if (IsSameSign(axis, 4, tol)) {
    SetRotation(2, radians);
  } else if (IsSameSign(axis, 5, tol)) {
    SetRotation(2, -radians);
  } else if (IsSameSign(axis, 0, tol)) {
    SetRotation(0, radians);
  } else if (IsSameSign(axis, 1, tol)) {
    SetRotation(0, -radians);
  } else if (IsSameSign(axis, 2, tol)) {
    SetRotation(1, radians);
  } else if (IsSameSign(axis, 3, tol)) {
    SetRotation(1, -radians);
  } else {
    Frame f;
    f.MakeAxisW(axis);
    Frame rz;
    rz.SetRotation(2, radians);
    const Frame product = f.Times(rz).Times(f.HInverse());
    for (int c = 0; c < 3; ++c) {
      SetColumn(c, product.Column(c));
    }
    kind = Kind::Rotation;
  }
}

bool Frame::MakeAxisW(const Vector& w) {
  SetIdentity();
  Vector n = w;
  if (!MakeUnit(&n, 0.001)) {
    return false;
  }
  Vector v = Cross(n, {1.0, 0.0, 0.0, 0.0});
  if (!MakeUnit(&v, 0.001)) {
    v = Cross(n, {0.0, 1.0, 0.0, 0.0});
  }
  const Vector u = Cross(v, n);
  SetColumn(0, u);
  SetColumn(1, v);
  SetColumn(2, n);
  kind = Kind::Rotation;
  return true;
}

bool Frame::IsIdentity() const {
  if (kind == Kind::Identity) {
    return true;
  }
  for (int c = 0; c < 4; ++c) {
    for (int r = 0; r < 3; ++r) {
      if (m[4 * c + r] != IdentityValues[4 * c + r]) {
        return false;
      }
    }
  }
  return true;
}

bool Frame::IsTranslation() const {
  if (kind == Kind::Translation) {
    return true;
  }
  return m[0] == 1.0 && m[5] == 1.0 && m[10] == 1.0;
}

bool Frame::IsRotary() const {
  const Vector u = Column(0);
  const Vector v = Column(1);
  const Vector w = Column(2);
  const Vector columns[3] = {u, v, w};
  for (const Vector& column : columns) {
    if (std::fabs(Norm(column) - 1.0) > 0.001) {
      return false;
    }
  }
  const double tol = 0.0001;
  return Reference::IsSame(Cross(u, v), w, tol) && Reference::IsSame(Cross(v, w), u, tol) &&
         Reference::IsSame(Cross(w, u), v, tol);
}

bool Frame::IsSame(const Frame& other, double tol) const {
  const int order[16] = {12, 13, 14, 0, 1, 2, 4, 5, 6, 8, 9, 10, 15, 3, 7, 11};
  const int count = kind == Kind::Projective ? 16 : 12;
  for (int i = 0; i < count; ++i) {
    if (std::fabs(m[order[i]] - other.m[order[i]]) > tol) {
      return false;
    }
  }
  return true;
}

bool Frame::Equal(const Frame& other) const {
  for (int i = 0; i < 16; ++i) {
    if (!(m[i] == other.m[i])) {
      return false;
    }
  }
  return true;
}

std::wstring Frame::DebugText() const {
  wchar_t buffer[6000];
  const int written =
      std::swprintf(buffer, 6000,
                    L"(u=(%5.3f, %5.3f, %5.3f), v=(%5.3f, %5.3f, %5.3f), "
                    L"w=(%5.3f, %5.3f, %5.3f), t=(%5.3f, %5.3f, %5.3f))",
                    m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10], m[12], m[13], m[14]);
  return written < 0 ? std::wstring() : std::wstring(buffer);
}

}  // namespace Reference
