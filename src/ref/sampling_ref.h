// SPDX-License-Identifier: BSD-3-Clause
// Chroma down-sampling (box filter) and up-sampling (triangle filter) by two, one
// row at a time, in plain integer arithmetic (T.81 A.1.1 leaves the filters to the
// application; these are the ones this library has always used).
//
// Two forms with different rounding, both kept for existing callers:
//  - the row functions replicate the edge samples themselves and round the box
//    filter with biases that alternate along the row (0, 1 for H2V1 and 1, 2 for
//    H2V2), so that exact halves round down and up in turn;
//  - the plane rows use constant biases (1 for H2V1, 3 for H2V2) and read one
//    sample beyond the region on each side, which the caller supplies.
// The triangle filter weighs the nearer source sample 3/4 and the farther 1/4 in
// each direction; the H2V2 forms first form column sums C = 3 N + F (nearer and
// farther row) and round even outputs with 8/16 and odd ones with 7/16.
#ifndef KROJ_SRC_REF_SAMPLING_REF_H_
#define KROJ_SRC_REF_SAMPLING_REF_H_

#include <stdint.h>

namespace kro::ref {

// ---- Row forms ----

// ceil(w / 2) outputs; an odd w reads s[w], one sample past the row.
inline void DownRowH2V1Box(const uint8_t* s, int w, uint8_t* d) {
  for (int j = 0; 2 * j < w; ++j)
    d[j] = static_cast<uint8_t>((s[2 * j] + s[2 * j + 1] + (j & 1)) >> 1);
}

inline void DownRowH2V2Box(const uint8_t* a, const uint8_t* c, int w, uint8_t* d) {
  for (int j = 0; 2 * j < w; ++j)
    d[j] = static_cast<uint8_t>((a[2 * j] + a[2 * j + 1] + c[2 * j] + c[2 * j + 1] + 1 + (j & 1)) >>
                                2);
}

// ---- Plane rows (width = destination samples) ----

inline void DownH2V1Row(const uint8_t* s, uint8_t* d, int width) {
  for (int x = 0; x < width; ++x) d[x] = static_cast<uint8_t>((s[2 * x] + s[2 * x + 1] + 1) >> 1);
}

// The bias of 3 rounds a mean whose fraction is a quarter or more upward.
inline void DownH2V2Row(const uint8_t* a, const uint8_t* c, uint8_t* d, int width) {
  for (int x = 0; x < width; ++x)
    d[x] = static_cast<uint8_t>((a[2 * x] + a[2 * x + 1] + c[2 * x] + c[2 * x + 1] + 3) >> 2);
}

// Reads s[-1] and s[width / 2]: the caller's border, never replicated.
inline void UpH2V1Row(const uint8_t* s, uint8_t* d, int width) {
  for (int x = 0; x < width; ++x) {
    const int i = x >> 1;
    d[x] = static_cast<uint8_t>((x & 1) ? (3 * s[i] + s[i + 1] + 2) >> 2
                                        : (3 * s[i] + s[i - 1] + 1) >> 2);
  }
}

// n is the nearer source row, f the farther; reads one column beyond each side.
inline void UpH2V2Row(const uint8_t* n, const uint8_t* f, uint8_t* d, int width) {
  auto col = [&](int i) { return 3 * n[i] + f[i]; };
  for (int x = 0; x < width; ++x) {
    const int i = x >> 1;
    d[x] = static_cast<uint8_t>((x & 1) ? (3 * col(i) + col(i + 1) + 7) >> 4
                                        : (3 * col(i) + col(i - 1) + 8) >> 4);
  }
}

// 2w outputs; the outermost ones copy the edge samples, the ones between are those
// of the plane row (`middle`, which a vector row may replace). A one-sample row (w ==
// 1) is accepted for compatibility: the filter then forms an opening pair from s[0]
// and s[1] and a closing pair after it, but the caller's row holds only two
// samples, so only the opening pair is stored and nothing is written past d[1].
template <class Middle = void (*)(const uint8_t*, uint8_t*, int)>
inline void UpRowH2V1Triangle(const uint8_t* s, int w, uint8_t* d, Middle middle = &UpH2V1Row) {
  d[0] = s[0];
  d[1] = static_cast<uint8_t>((3 * s[0] + s[1] + 2) >> 2);
  if (w < 2) return;
  middle(s + 1, d + 2, 2 * (w - 2));
  d[2 * w - 2] = static_cast<uint8_t>((3 * s[w - 1] + s[w - 2] + 1) >> 2);
  d[2 * w - 1] = s[w - 1];
}

// n is the nearer source row, f the farther one. For w == 1 only the opening pair
// (from the column sums C_0 and C_1) is stored, as above.
template <class Middle = void (*)(const uint8_t*, const uint8_t*, uint8_t*, int)>
inline void UpRowH2V2Triangle(const uint8_t* n, const uint8_t* f, int w, uint8_t* d,
                              Middle middle = &UpH2V2Row) {
  auto col = [&](int i) { return 3 * n[i] + f[i]; };
  d[0] = static_cast<uint8_t>((4 * col(0) + 8) >> 4);
  d[1] = static_cast<uint8_t>((3 * col(0) + col(1) + 7) >> 4);
  if (w < 2) return;
  middle(n + 1, f + 1, d + 2, 2 * (w - 2));
  d[2 * w - 2] = static_cast<uint8_t>((3 * col(w - 1) + col(w - 2) + 8) >> 4);
  d[2 * w - 1] = static_cast<uint8_t>((4 * col(w - 1) + 7) >> 4);
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_SAMPLING_REF_H_
