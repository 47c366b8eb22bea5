#include "property/reference/Frame.h"

#include <cmath>

namespace Reference {
namespace {

double Minor(const double (&e)[4][4], int skipRow, int skipColumn) {
  double sub[3][3];
  int i = 0;
  for (int r = 0; r < 4; ++r) {
    if (r == skipRow) {
      continue;
    }
    int j = 0;
    for (int c = 0; c < 4; ++c) {
      if (c != skipColumn) {
        sub[i][j++] = e[r][c];
      }
    }
    ++i;
  }
  return sub[0][0] * (sub[1][1] * sub[2][2] - sub[1][2] * sub[2][1]) -
         sub[0][1] * (sub[1][0] * sub[2][2] - sub[1][2] * sub[2][0]) +
         sub[0][2] * (sub[1][0] * sub[2][1] - sub[1][1] * sub[2][0]);
}

}  // namespace

Frame Frame::HInverse() const {
  Frame out;
  out.kind = kind;
  if (kind == Kind::General || kind == Kind::Rotation || kind == Kind::RotationTranslation) {
    for (int c = 0; c < 3; ++c) {
      for (int r = 0; r < 3; ++r) {
        out.m[4 * c + r] = m[4 * r + c];
      }
    }
  }
  if (kind == Kind::Identity || kind == Kind::Rotation || kind == Kind::Projective) {
    return out;
  }
  const Vector t = out.ApplyToPoint(Column(3));
  out.SetTrans(Negated(t));
  return out;
}

double Frame::Determinant() const {
  if (kind != Kind::Projective) {
    return m[0] * (m[5] * m[10] - m[9] * m[6]) - m[4] * (m[1] * m[10] - m[9] * m[2]) +
           m[8] * (m[1] * m[6] - m[5] * m[2]);
  }
  double e[4][4];
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      e[r][c] = m[4 * c + r];
    }
  }
  return e[0][0] * Minor(e, 0, 0) - e[0][1] * Minor(e, 0, 1) + e[0][2] * Minor(e, 0, 2) -
         e[0][3] * Minor(e, 0, 3);
}

Frame Frame::Inverse() const {
  if (kind != Kind::General && kind != Kind::Projective) {
    return HInverse();
  }
  Frame out;
  const double det = Determinant();
  if (kind == Kind::General) {
    if (std::fabs(det) < 1e-20) {
      return out;
    }
    double e[3][3];
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c) {
        e[r][c] = m[4 * c + r];
      }
    }
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c) {
        // The cofactor of (c, r), with the indices of the two other rows and columns in cyclic
        // order, so that no sign is needed.
        const int r1 = (c + 1) % 3;
        const int r2 = (c + 2) % 3;
        const int c1 = (r + 1) % 3;
        const int c2 = (r + 2) % 3;
        const double cofactor = e[r1][c1] * e[r2][c2] - e[r1][c2] * e[r2][c1];
        out.m[4 * c + r] = cofactor / det;
      }
    }
    // With a null origin so far, this turns the origin only.
    out.kind = Kind::General;
    const Vector t = out.ApplyToPoint(Column(3));
    out.m[12] = -t.x;
    out.m[13] = -t.y;
    out.m[14] = -t.z;
    return out;
  }
  if (det == 0.0) {
    return out;
  }
  double e[4][4];
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      e[r][c] = m[4 * c + r];
    }
  }
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      const double sign = (r + c) % 2 == 0 ? 1.0 : -1.0;
      out.m[4 * c + r] = sign * Minor(e, c, r) / det;
    }
  }
  out.kind = Kind::Projective;
  return out;
}

}  // namespace Reference
