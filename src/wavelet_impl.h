// SPDX-License-Identifier: BSD-3-Clause
// Shared machinery of the 5/3 and 9/7 wavelet families: the line-buffer readers that
// copy a row or column with whole-sample symmetric extension and the writers that put
// it back, the one-dimensional passes of the 2D transforms, the 2D drivers (in place
// and through a working image), the work-buffer sizes and the region-form drivers.
#ifndef KROJ_SRC_WAVELET_IMPL_H_
#define KROJ_SRC_WAVELET_IMPL_H_

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <memory>
#include <new>
#include <type_traits>

#include "kro_checks.h"
#include "ref/wavelet_ref.h"

namespace kro {

using ref::Contig;
using ref::Ld;
using ref::St;
using ref::Strided;

// ---------------------------------------------------------------------------------
// Line-buffer readers and writers. `data` points at the first sample of the line
// inside the buffer; the extension occupies the samples before and after it.
// The _Row forms take consecutive samples, the _Col forms a pointer and a row step.

// Whole-sample symmetric extension: data[-k] = data[k] for k = 1..left and
// data[n + j] = data[n - 2 - j] for j = 0..right-1 (needs n > left, n > right + 1).
template <class T>
inline void ExtendLine(T* data, int n, int left, int right) {
  for (int k = 1; k <= left; ++k) St(data - k, Ld(data + k));
  for (int j = 0; j < right; ++j) St(data + n + j, Ld(data + n - 2 - j));
}

// Four samples of extension on each side for lines of 2 to 4 samples, where the
// mirror turns back at both ends: the left side reflects into the line with period
// 2 (n - 1), the right side copies from the already extended buffer.
template <class T>
inline void ExtendLine4(T* data, int n) {
  const int period = 2 * (n - 1);
  for (int k = 1; k <= 4; ++k) {
    const int r = k % period;
    St(data - k, Ld(data + (r < n ? r : period - r)));
  }
  for (int j = 0; j < 4; ++j) St(data + n + j, Ld(data + n - 2 - j));
}

template <class T, class Line>
inline void CopyIn(const Line& src, int n, T* data) {
  for (int i = 0; i < n; ++i) St(data + i, src[i]);
}

// The quadrant place of interleaved position j: low-pass positions (those of even
// parity, given the first sample's parity p) go to the front in order, high-pass
// ones after the (n + 1 - p) / 2 low-pass samples.
constexpr int BandPlace(int j, int n, int p) {
  const int n_low = (n + 1 - p) / 2;
  return ref::IsOdd(j, p) ? n_low + j / 2 : j / 2;
}

template <class T, class Line>
inline void CopyInInterleaved(const Line& src, int n, int p, T* data) {
  for (int j = 0; j < n; ++j) St(data + j, src[BandPlace(j, n, p)]);
}

template <class T>
inline void ownpj_ReadExt_Row(const T* src, int n, T* data, int left, int right) {
  CopyIn(Contig<const T>{src}, n, data);
  ExtendLine(data, n, left, right);
}
template <class T>
inline void ownpj_ReadExt_Col(const T* src, int step, int n, T* data, int left, int right) {
  CopyIn(Strided<const T>{src, step}, n, data);
  ExtendLine(data, n, left, right);
}
template <class T>
inline void ownpj_ReadExt4_Row(const T* src, int n, T* data) {
  CopyIn(Contig<const T>{src}, n, data);
  ExtendLine4(data, n);
}
template <class T>
inline void ownpj_ReadExt4_Col(const T* src, int step, int n, T* data) {
  CopyIn(Strided<const T>{src, step}, n, data);
  ExtendLine4(data, n);
}

// Re-interleave a line in quadrant layout (low-pass part first) into natural order.
template <class T>
inline void ownpj_ReadInterleaveExt_Row(const T* src, int n, int p, T* data, int left, int right) {
  CopyInInterleaved(Contig<const T>{src}, n, p, data);
  ExtendLine(data, n, left, right);
}
template <class T>
inline void ownpj_ReadInterleaveExt_Col(const T* src, int step, int n, int p, T* data, int left,
                                        int right) {
  CopyInInterleaved(Strided<const T>{src, step}, n, p, data);
  ExtendLine(data, n, left, right);
}
template <class T>
inline void ownpj_ReadInterleaveExt4_Row(const T* src, int n, int p, T* data) {
  CopyInInterleaved(Contig<const T>{src}, n, p, data);
  ExtendLine4(data, n);
}
template <class T>
inline void ownpj_ReadInterleaveExt4_Col(const T* src, int step, int n, int p, T* data) {
  CopyInInterleaved(Strided<const T>{src, step}, n, p, data);
  ExtendLine4(data, n);
}

// De-interleave a transformed line into quadrant layout.
template <class T, class Line>
inline void WriteInterleaved(const T* data, int n, int p, const Line& dst) {
  for (int j = 0; j < n; ++j) dst.Set(BandPlace(j, n, p), Ld(data + j));
}
template <class T>
inline void ownpj_WriteInterleave_Row(const T* data, int n, int p, T* dst) {
  WriteInterleaved(data, n, p, Contig<T>{dst});
}
template <class T>
inline void ownpj_WriteInterleave_Col(const T* data, int n, int p, T* dst, int step) {
  WriteInterleaved(data, n, p, Strided<T>{dst, step});
}

// Natural order back.
template <class T>
inline void ownpj_Write_Row(const T* data, int n, T* dst) {
  for (int i = 0; i < n; ++i) St(dst + i, Ld(data + i));
}
template <class T>
inline void ownpj_Write_Col(const T* data, int n, T* dst, int step) {
  const Strided<T> line{dst, step};
  for (int i = 0; i < n; ++i) line.Set(i, Ld(data + i));
}

// ---------------------------------------------------------------------------------
// Reading a line through either kind of accessor, so that one pass serves rows and
// columns. A row is Contig, a column Strided.

template <class T>
inline void ReadExt(const Contig<T>& l, int n, T* data, int left, int right) {
  ownpj_ReadExt_Row<T>(l.base, n, data, left, right);
}
template <class T>
inline void ReadExt(const Strided<T>& l, int n, T* data, int left, int right) {
  ownpj_ReadExt_Col<T>(l.base, static_cast<int>(l.step), n, data, left, right);
}
template <class T>
inline void ReadExt4(const Contig<T>& l, int n, T* data) {
  ownpj_ReadExt4_Row<T>(l.base, n, data);
}
template <class T>
inline void ReadExt4(const Strided<T>& l, int n, T* data) {
  ownpj_ReadExt4_Col<T>(l.base, static_cast<int>(l.step), n, data);
}
template <class T>
inline void ReadInterleaveExt(const Contig<T>& l, int n, int p, T* data, int left, int right) {
  ownpj_ReadInterleaveExt_Row<T>(l.base, n, p, data, left, right);
}
template <class T>
inline void ReadInterleaveExt(const Strided<T>& l, int n, int p, T* data, int left, int right) {
  ownpj_ReadInterleaveExt_Col<T>(l.base, static_cast<int>(l.step), n, p, data, left, right);
}
template <class T>
inline void ReadInterleaveExt4(const Contig<T>& l, int n, int p, T* data) {
  ownpj_ReadInterleaveExt4_Row<T>(l.base, n, p, data);
}
template <class T>
inline void ReadInterleaveExt4(const Strided<T>& l, int n, int p, T* data) {
  ownpj_ReadInterleaveExt4_Col<T>(l.base, static_cast<int>(l.step), n, p, data);
}
template <class T>
inline void WriteInterleave(const T* data, int n, int p, const Contig<T>& l) {
  ownpj_WriteInterleave_Row<T>(data, n, p, l.base);
}
template <class T>
inline void WriteInterleave(const T* data, int n, int p, const Strided<T>& l) {
  ownpj_WriteInterleave_Col<T>(data, n, p, l.base, static_cast<int>(l.step));
}
template <class T>
inline void Write(const T* data, int n, const Contig<T>& l) {
  ownpj_Write_Row<T>(data, n, l.base);
}
template <class T>
inline void Write(const T* data, int n, const Strided<T>& l) {
  ownpj_Write_Col<T>(data, n, l.base, static_cast<int>(l.step));
}

// ---------------------------------------------------------------------------------
// One-dimensional passes of the 2D in-place transforms, on a line of n samples whose
// first sample has parity p, with the caller's line buffer `buf`.

// 5/3 line buffer: two samples of extension on each side.
inline constexpr int kExt53 = 2;
// 9/7 line buffer: four.
inline constexpr int kExt97 = 4;

template <class T>
inline T* LineData(uint8_t* buf, int ext) {
  return reinterpret_cast<T*>(buf) + ext;
}

template <class T, class Line>
inline void Fwd53Pass(const Line& line, int n, int p, uint8_t* buf) {
  if (n == 1) {
    if (p) line.Set(0, static_cast<T>(ShlWrap32(line[0], 1)));
    return;
  }
  if (n == 2) {
    // The update uses the unwrapped 32-bit difference, stored or not.
    const int32_t e = line[p], o = line[1 - p];
    const int32_t d = SubWrap32(o, e);
    line.Set(1, static_cast<T>(d));
    line.Set(0, static_cast<T>(AddWrap32(e, Sra(AddWrap32(d, 1), 1))));
    return;
  }
  T* data = LineData<T>(buf, kExt53);
  ReadExt(line, n, data, 2 - p, ((p + n) & 1) + 1);
  ref::Fwd53Line(data, n, p);
  WriteInterleave(data, n, p, line);
}

template <class T, class Line>
inline void Inv53Pass(const Line& line, int n, int p, uint8_t* buf) {
  if (n == 1) {
    // Signed division, truncating toward zero (not a shift).
    if (p) line.Set(0, static_cast<T>(line[0] / 2));
    return;
  }
  if (n == 2) {
    const int32_t l = line[0], h = line[1];
    const int32_t even = SubWrap32(l, Sra(AddWrap32(h, 1), 1));
    const int32_t odd = AddWrap32(h, even);
    line.Set(p, static_cast<T>(even));
    line.Set(1 - p, static_cast<T>(odd));
    return;
  }
  T* data = LineData<T>(buf, kExt53);
  ReadInterleaveExt(line, n, p, data, p + 1, ((p + n) & 1) ? 1 : 2);
  ref::Inv53Line(data, n, p);
  Write(data, n, line);
}

// 9/7, arithmetic A: lines of 5 or more take the plain extension (forward 4 - p on the
// left, ((p + n) & 1) + 3 on the right; inverse 3 + p and 4 - ((p + n) & 1)), lines
// of 2 to 4 the folding four-sample one; a single sample is scaled by p + 1.
template <class A, class Line>
inline void Fwd97Pass(const Line& line, int n, int p, uint8_t* buf) {
  using T = typename A::Sample;
  if (n == 1) {
    if (p) line.Set(0, static_cast<T>(ShlWrap32(line[0], 1)));
    return;
  }
  T* data = LineData<T>(buf, kExt97);
  const int left = 4 - p, right = ((p + n) & 1) + 3;
  if (n >= 5) {
    ReadExt(line, n, data, left, right);
  } else {
    ReadExt4(line, n, data);
  }
  ref::Fwd97Line<A>(data, n, p, -left, n - 1 + right);
  WriteInterleave(data, n, p, line);
}

template <class A, class Line>
inline void Inv97Pass(const Line& line, int n, int p, uint8_t* buf) {
  using T = typename A::Sample;
  if (n == 1) {
    if (p) line.Set(0, static_cast<T>(line[0] / 2));
    return;
  }
  T* data = LineData<T>(buf, kExt97);
  const int left = 3 + p, right = 4 - ((p + n) & 1);
  if (n >= 5) {
    ReadInterleaveExt(line, n, p, data, left, right);
  } else {
    ReadInterleaveExt4(line, n, p, data);
  }
  ref::Inv97Line<A>(data, n, p, -left, n - 1 + right);
  Write(data, n, line);
}

// ---------------------------------------------------------------------------------
// Vertical passes on whole rows. Lifting a column through the line buffer gives, at
// every position, the same value as lifting the rows of the tile in place with the
// mirrored row standing in for the missing neighbour (row -1 is row 1, row n is row
// n - 2): each step is symmetric in its two neighbours, so the extension values the
// line buffer computes are the mirrored rows' values. The rows are then moved into
// quadrant order (forward) or out of it (inverse) through one spare row.

// Row j of an n-row tile, mirrored at both ends (j from -1 to n).
template <class T>
struct TileRows {
  T* base;
  int step;
  int n;
  T* operator()(int j) const {
    return RowPtr(base, step, j < 0 ? -j : j >= n ? 2 * (n - 1) - j : j);
  }
};

// The row moves below keep one visited bit per row: on the stack for tiles of up to
// kMaxRowMoves rows, on the heap for taller ones. ok() is false only when that
// allocation fails; the caller then goes column by column through the line buffer,
// which needs no marks.
inline constexpr int kMaxRowMoves = 1 << 15;

class RowMarks {
 public:
  explicit RowMarks(int n) {
    if (n > kMaxRowMoves) {
      heap_.reset(new (std::nothrow) uint64_t[(static_cast<size_t>(n) + 63) / 64]());
      words_ = heap_.get();
    }
  }
  RowMarks(const RowMarks&) = delete;
  RowMarks& operator=(const RowMarks&) = delete;
  bool ok() const { return words_ != nullptr; }
  bool Seen(int j) const { return (words_[j >> 6] >> (j & 63)) & 1; }
  void Mark(int j) { words_[j >> 6] |= uint64_t{1} << (j & 63); }

 private:
  uint64_t local_[kMaxRowMoves / 64] = {};
  std::unique_ptr<uint64_t[]> heap_;
  uint64_t* words_ = local_;
};

// The interleaved index whose sample lands on quadrant place `place`.
constexpr int InterleavedIndex(int place, int n, int p) {
  const int n_low = (n + 1 - p) / 2;
  return place < n_low ? 2 * place + p : 2 * (place - n_low) + 1 - p;
}

// Moves the rows of a tile so that row j ends on row BandPlace(j) (to_bands) or the
// reverse, following each cycle of the permutation backwards with one spare row.
template <class T>
void MoveRows(T* img, int step, int w, int n, int p, bool to_bands, uint8_t* spare,
              RowMarks& marks) {
  const size_t row_bytes = static_cast<size_t>(w) * sizeof(T);
  // The row that has to arrive on row `dst`.
  auto source_of = [&](int dst) {
    return to_bands ? InterleavedIndex(dst, n, p) : BandPlace(dst, n, p);
  };
  for (int start = 0; start < n; ++start) {
    if (marks.Seen(start)) continue;
    if (source_of(start) == start) continue;
    memcpy(spare, RowPtr(img, step, start), row_bytes);
    int dst = start;
    for (int src = source_of(dst); src != start; dst = src, src = source_of(dst)) {
      memcpy(RowPtr(img, step, dst), RowPtr(img, step, src), row_bytes);
      marks.Mark(dst);
    }
    memcpy(RowPtr(img, step, dst), spare, row_bytes);
    marks.Mark(dst);
  }
}

// The parity of row j decides its step: odd rows are high-pass.
template <class F>
void ForRowsOfParity(int n, int p, bool odd, F&& f) {
  for (int j = ref::IsOdd(0, p) == odd ? 0 : 1; j < n; j += 2) f(j);
}

// 5/3 vertical passes; lines of one and two samples follow Fwd53Pass / Inv53Pass.
template <class T>
void Fwd53Vertical(T* img, int step, int w, int n, int p, uint8_t* buf) {
  RowMarks marks(n);
  if (n <= 2 || !marks.ok()) {
    for (int x = 0; x < w; ++x) Fwd53Pass<T>(Strided<T>{img + x, step}, n, p, buf);
    return;
  }
  const TileRows<T> row{img, step, n};
  ForRowsOfParity(n, p, true, [&](int j) { ref::Predict53Row(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, false, [&](int j) { ref::Update53Row(row(j), row(j - 1), row(j + 1), w); });
  MoveRows(img, step, w, n, p, true, buf, marks);
}

template <class T>
void Inv53Vertical(T* img, int step, int w, int n, int p, uint8_t* buf) {
  RowMarks marks(n);
  if (n <= 2 || !marks.ok()) {
    for (int x = 0; x < w; ++x) Inv53Pass<T>(Strided<T>{img + x, step}, n, p, buf);
    return;
  }
  MoveRows(img, step, w, n, p, false, buf, marks);
  const TileRows<T> row{img, step, n};
  ForRowsOfParity(n, p, false,
                  [&](int j) { ref::UnUpdate53Row(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, true,
                  [&](int j) { ref::UnPredict53Row(row(j), row(j - 1), row(j + 1), w); });
}

// 9/7 vertical passes: four steps, each over the rows of its parity, then the
// scaling; in the 32s form the rows hold the lifted floats' bits in between.
template <class A>
void Fwd97Vertical(typename A::Sample* img, int step, int w, int n, int p, uint8_t* buf) {
  using T = typename A::Sample;
  using R = ref::Rows97<A>;
  RowMarks marks(n);
  if (n <= 1 || !marks.ok()) {
    for (int x = 0; x < w; ++x) Fwd97Pass<A>(Strided<T>{img + x, step}, n, p, buf);
    return;
  }
  const TileRows<T> row{img, step, n};
  ForRowsOfParity(n, p, true, [&](int j) { R::Alpha(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, false, [&](int j) { R::Beta(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, true,
                  [&](int j) { R::template Lift<A::Gamma>(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, false,
                  [&](int j) { R::template Lift<A::Delta>(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, true, [&](int j) { R::High(row(j), w); });
  ForRowsOfParity(n, p, false, [&](int j) { R::Low(row(j), w); });
  MoveRows(img, step, w, n, p, true, buf, marks);
}

template <class A>
void Inv97Vertical(typename A::Sample* img, int step, int w, int n, int p, uint8_t* buf) {
  using T = typename A::Sample;
  using R = ref::Rows97<A>;
  RowMarks marks(n);
  if (n <= 1 || !marks.ok()) {
    for (int x = 0; x < w; ++x) Inv97Pass<A>(Strided<T>{img + x, step}, n, p, buf);
    return;
  }
  MoveRows(img, step, w, n, p, false, buf, marks);
  const TileRows<T> row{img, step, n};
  ForRowsOfParity(n, p, true, [&](int j) { R::InvHigh(row(j), w); });
  ForRowsOfParity(n, p, false, [&](int j) { R::InvLow(row(j), w); });
  ForRowsOfParity(n, p, false,
                  [&](int j) { R::template Lift<A::UnDelta>(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, true,
                  [&](int j) { R::template Lift<A::UnGamma>(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, false,
                  [&](int j) { R::template Lift<A::UnBeta>(row(j), row(j - 1), row(j + 1), w); });
  ForRowsOfParity(n, p, true,
                  [&](int j) { R::template Lift<A::UnAlpha>(row(j), row(j - 1), row(j + 1), w); });
  for (int j = 0; j < n; ++j) R::Out(row(j), w);
}

// ---------------------------------------------------------------------------------
// Reference 2D drivers. Pass::Run(line, n, p, buf) transforms one line through the
// line buffer; Pass::Vertical(img, step, w, h, p, buf) all columns at once.
// Forward: the vertical pass, then every row; inverse: rows, then the vertical pass.
// kSplitMin is the shortest line that needs the line buffer (the SIMD forms lift
// such lines in split form, shorter ones through Run).

template <class T>
struct Fwd53Ref {
  static constexpr int kSplitMin = 3;
  template <class Line>
  static void Run(const Line& line, int n, int p, uint8_t* buf) {
    Fwd53Pass<T>(line, n, p, buf);
  }
  static void Vertical(T* img, int step, int w, int n, int p, uint8_t* buf) {
    Fwd53Vertical<T>(img, step, w, n, p, buf);
  }
};
template <class T>
struct Inv53Ref {
  static constexpr int kSplitMin = 3;
  template <class Line>
  static void Run(const Line& line, int n, int p, uint8_t* buf) {
    Inv53Pass<T>(line, n, p, buf);
  }
  static void Vertical(T* img, int step, int w, int n, int p, uint8_t* buf) {
    Inv53Vertical<T>(img, step, w, n, p, buf);
  }
};

// The 9/7 arithmetic of each sample type.
template <class T>
struct D97Of;
template <>
struct D97Of<int16_t> {
  using type = ref::D97Q14;
};
template <>
struct D97Of<int32_t> {
  using type = ref::D97Float32s;
};
template <>
struct D97Of<float> {
  using type = ref::D97Float;
};
template <class T>
using D97 = typename D97Of<T>::type;

template <class T>
struct Fwd97Ref {
  static constexpr int kSplitMin = 2;
  template <class Line>
  static void Run(const Line& line, int n, int p, uint8_t* buf) {
    Fwd97Pass<D97<T>>(line, n, p, buf);
  }
  static void Vertical(T* img, int step, int w, int n, int p, uint8_t* buf) {
    Fwd97Vertical<D97<T>>(img, step, w, n, p, buf);
  }
};
template <class T>
struct Inv97Ref {
  static constexpr int kSplitMin = 2;
  template <class Line>
  static void Run(const Line& line, int n, int p, uint8_t* buf) {
    Inv97Pass<D97<T>>(line, n, p, buf);
  }
  static void Vertical(T* img, int step, int w, int n, int p, uint8_t* buf) {
    Inv97Vertical<D97<T>>(img, step, w, n, p, buf);
  }
};

template <class T, class Pass>
void Rows(T* img, int step, int w, int h, int p, uint8_t* buf) {
  for (int y = 0; y < h; ++y) Pass::Run(Contig<T>{RowPtr(img, step, y)}, w, p, buf);
}

template <class T, class FwdPass>
void Fwd2DInPlace(T* img, int step, const KroiRect& r, uint8_t* buf) {
  if (r.width < 1 || r.height < 1) return;
  FwdPass::Vertical(img, step, r.width, r.height, r.y & 1, buf);
  Rows<T, FwdPass>(img, step, r.width, r.height, r.x & 1, buf);
}
template <class T, class InvPass>
void Inv2DInPlace(T* img, int step, const KroiRect& r, uint8_t* buf) {
  if (r.width < 1 || r.height < 1) return;
  Rows<T, InvPass>(img, step, r.width, r.height, r.x & 1, buf);
  InvPass::Vertical(img, step, r.width, r.height, r.y & 1, buf);
}

// A one-level 2D transform in place (chosen per call among the SIMD targets).
template <class T>
using Transform2D = void (*)(T* img, int step, const KroiRect& r, uint8_t* buf);

// Argument checks of the in-place forms, then the transform.
template <class T>
KroStatus InPlace2D(Transform2D<T> transform, T* pSrcDst, int srcDstStep, const KroiRect* pTileRect,
                    Kro8u* pBuffer) {
  if (pSrcDst == nullptr) return kroStatusNullPointer;
  if (BadStep(srcDstStep)) return kroStatusBadStep;
  if (AnyNull(pTileRect, pBuffer)) return kroStatusNullPointer;
  transform(pSrcDst, srcDstStep, *pTileRect, pBuffer);
  return kroStatusOk;
}

// Working-image row step of the out-of-place forms: the row size rounded up to 32
// bytes (32-bit arithmetic, as the buffer size query computes it).
template <class T>
constexpr int WorkStep(int width) {
  return AddWrap32(MulWrap32(width, static_cast<int>(sizeof(T))), 31) & ~31;
}

// The quadrants of the out-of-place forms, cut from the width and height alone: the
// first sample counts as low-pass whatever the origin's parity (this library's
// long-standing behaviour, kept for existing callers).
struct Quadrant {
  int x, y, w, h;
};
constexpr Quadrant BandQuadrant(int band, int width, int height) {
  const int wl = (width + 1) / 2, hl = (height + 1) / 2;
  switch (band) {
    case 0:
      return {0, 0, wl, hl};
    case 1:
      return {0, hl, wl, height / 2};
    case 2:
      return {wl, 0, width / 2, hl};
    default:
      return {wl, hl, width / 2, height / 2};
  }
}

template <class T>
void CopyRect(const T* src, int src_step, T* dst, int dst_step, int w, int h) {
  if (w <= 0) return;
  for (int y = 0; y < h; ++y)
    memcpy(RowPtr(dst, dst_step, y), RowPtr(src, src_step, y), static_cast<size_t>(w) * sizeof(T));
}

// Checks shared by both out-of-place directions, in their documented order: the
// principal pointers, the image step, the band pointers, the band steps, the size.
template <class B>
KroStatus CheckOutOfPlace(const void* image, int image_step, B* const* band, const int* band_step,
                          const KroiRect* rect, const Kro8u* buffer) {
  if (image == nullptr || band == nullptr || band_step == nullptr || rect == nullptr ||
      buffer == nullptr)
    return kroStatusNullPointer;
  if (BadStep(image_step)) return kroStatusBadStep;
  if (AnyNull(band[0], band[1], band[2], band[3])) return kroStatusNullPointer;
  if (BadStep(band_step[0], band_step[1], band_step[2], band_step[3])) return kroStatusBadStep;
  if (rect->width < 1 || rect->height < 1) return kroStatusBadSize;
  return kroStatusOk;
}

// The out-of-place level between a source image and four bands (forward) or back
// (inverse), with the caller's buffer as working image and line buffer.
template <class T>
using FwdBandsFn = void (*)(const T* src, int src_step, T* const* band, const int* band_step,
                            const KroiRect& r, uint8_t* buf);
template <class T>
using InvBandsFn = void (*)(const T* const* band, const int* band_step, T* dst, int dst_step,
                            const KroiRect& r, uint8_t* buf);

// Through the working image: copy in, one level in place (line buffer right after the
// image), copy the quadrants out; the inverse the other way round.
template <class T, Transform2D<T> kLevel>
void FwdBandsThroughImage(const T* src, int src_step, T* const* band, const int* band_step,
                          const KroiRect& r, uint8_t* buf) {
  const int work_step = WorkStep<T>(r.width);
  T* work = reinterpret_cast<T*>(buf);
  CopyRect(src, src_step, work, work_step, r.width, r.height);
  kLevel(work, work_step, r, buf + static_cast<ptrdiff_t>(work_step) * r.height);
  for (int b = 0; b < 4; ++b) {
    const Quadrant q = BandQuadrant(b, r.width, r.height);
    CopyRect(RowPtr(work, work_step, q.y) + q.x, work_step, band[b], band_step[b], q.w, q.h);
  }
}
template <class T, Transform2D<T> kLevel>
void InvBandsThroughImage(const T* const* band, const int* band_step, T* dst, int dst_step,
                          const KroiRect& r, uint8_t* buf) {
  const int work_step = WorkStep<T>(r.width);
  T* work = reinterpret_cast<T*>(buf);
  for (int b = 0; b < 4; ++b) {
    const Quadrant q = BandQuadrant(b, r.width, r.height);
    CopyRect(band[b], band_step[b], RowPtr(work, work_step, q.y) + q.x, work_step, q.w, q.h);
  }
  kLevel(work, work_step, r, buf + static_cast<ptrdiff_t>(work_step) * r.height);
  CopyRect(work, work_step, dst, dst_step, r.width, r.height);
}

template <class T>
KroStatus Fwd2DOutOfPlace(FwdBandsFn<T> kernel, const T* pSrc, int srcStep, T* pDstBand[4],
                          int dstBandStep[4], const KroiRect* pTileRect, Kro8u* pBuffer) {
  const KroStatus st = CheckOutOfPlace<T>(pSrc, srcStep, pDstBand, dstBandStep, pTileRect, pBuffer);
  if (st != kroStatusOk) return st;
  kernel(pSrc, srcStep, pDstBand, dstBandStep, *pTileRect, pBuffer);
  return kroStatusOk;
}

template <class T>
KroStatus Inv2DOutOfPlace(InvBandsFn<T> kernel, const T* pSrcBand[4], int srcBandStep[4], T* pDst,
                          int dstStep, const KroiRect* pTileRect, Kro8u* pBuffer) {
  const KroStatus st =
      CheckOutOfPlace<const T>(pDst, dstStep, pSrcBand, srcBandStep, pTileRect, pBuffer);
  if (st != kroStatusOk) return st;
  kernel(pSrcBand, srcBandStep, pDst, dstStep, *pTileRect, pBuffer);
  return kroStatusOk;
}

// ---------------------------------------------------------------------------------
// Work-buffer sizes. The in-place size is one line of max(width, height) + 2 ext
// samples, or 0 when no line is long enough to need the buffer; it is computed in 64
// bits and kept as 32. The out-of-place size adds the working image, in 32 bits.

inline int InPlaceBufSize(const KroiRect& r, int sample_bytes, int ext, int short_max) {
  if (r.width <= short_max && r.height <= short_max) return 0;
  const int64_t longest = std::max<int64_t>(r.width, r.height);
  return Wrap32(static_cast<int64_t>(sample_bytes) * (longest + 2 * ext));
}

template <class T, int kExt, int kShortMax>
KroStatus GetBufSize(const KroiRect* pTileRect, int* pSize, bool out_of_place) {
  if (AnyNull(pTileRect, pSize)) return kroStatusNullPointer;
  const int in_place = InPlaceBufSize(*pTileRect, sizeof(T), kExt, kShortMax);
  *pSize = out_of_place
               ? AddWrap32(MulWrap32(WorkStep<T>(pTileRect->width), pTileRect->height), in_place)
               : in_place;
  return kroStatusOk;
}

// ---------------------------------------------------------------------------------
// Region forms: checks (pointers, steps, size), then a kernel over the whole region,
// chosen per call among the SIMD targets.

template <class T>
using RegionFwdFn = void (*)(const T* src, int src_step, T* low, int low_step, T* high,
                             int high_step, KroiSize size, bool phase);
template <class T>
using RegionInvFn = void (*)(const T* low, int low_step, const T* high, int high_step,
                             KroiSize size, T* dst, int dst_step, bool phase);

inline KroStatus CheckRegion(const void* a, int a_step, const void* b, int b_step, const void* c,
                             int c_step, KroiSize size) {
  if (a == nullptr || b == nullptr || c == nullptr) return kroStatusNullPointer;
  if (BadStep(a_step, b_step, c_step)) return kroStatusBadStep;
  if (BadSize(size)) return kroStatusBadSize;
  return kroStatusOk;
}

template <class T>
KroStatus FwdRegion(RegionFwdFn<T> kernel, const T* pSrc, int srcStep, T* pDstLow, int dstLowStep,
                    T* pDstHigh, int dstHighStep, KroiSize dstRoiSize, int phase) {
  const KroStatus st =
      CheckRegion(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep, dstRoiSize);
  if (st != kroStatusOk) return st;
  kernel(pSrc, srcStep, pDstLow, dstLowStep, pDstHigh, dstHighStep, dstRoiSize, phase != 0);
  return kroStatusOk;
}

template <class T>
KroStatus InvRegion(RegionInvFn<T> kernel, const T* pSrcLow, int srcLowStep, const T* pSrcHigh,
                    int srcHighStep, KroiSize srcRoiSize, T* pDst, int dstStep, int phase) {
  const KroStatus st =
      CheckRegion(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, pDst, dstStep, srcRoiSize);
  if (st != kroStatusOk) return st;
  kernel(pSrcLow, srcLowStep, pSrcHigh, srcHighStep, srcRoiSize, pDst, dstStep, phase != 0);
  return kroStatusOk;
}

// Reference region kernels, one band row or column at a time: Kernel::Fwd(src_line,
// low_line, high_line, n, phase) and Kernel::Inv(low_line, high_line, dst_line, n,
// phase) on Contig rows or Strided columns.
template <class T>
struct Region53Ref {
  template <class Src, class Dst>
  static void Fwd(const Src& x, const Dst& low, const Dst& high, int n, bool phase) {
    ref::Fwd53Region<ref::Lift53<T>>(x, low, high, n, phase);
  }
  template <class Src, class Dst>
  static void Inv(const Src& low, const Src& high, const Dst& y, int n, bool phase) {
    ref::Inv53Region<ref::Lift53<T>>(low, high, y, n, phase);
  }
};
template <class T>
struct Region97Ref {
  template <class Src, class Dst>
  static void Fwd(const Src& x, const Dst& low, const Dst& high, int n, bool phase) {
    ref::Fwd97Region<D97<T>>(x, low, high, n, phase);
  }
  template <class Src, class Dst>
  static void Inv(const Src& low, const Src& high, const Dst& y, int n, bool phase) {
    ref::Inv97Region<D97<T>>(low, high, y, n, phase);
  }
};

template <class T, class Kernel>
void RefFwdRows(const T* src, int src_step, T* low, int low_step, T* high, int high_step,
                KroiSize size, bool phase) {
  for (int y = 0; y < size.height; ++y) {
    Kernel::Fwd(Contig<const T>{RowPtr(src, src_step, y)}, Contig<T>{RowPtr(low, low_step, y)},
                Contig<T>{RowPtr(high, high_step, y)}, size.width, phase);
  }
}
template <class T, class Kernel>
void RefInvRows(const T* low, int low_step, const T* high, int high_step, KroiSize size, T* dst,
                int dst_step, bool phase) {
  for (int y = 0; y < size.height; ++y) {
    Kernel::Inv(Contig<const T>{RowPtr(low, low_step, y)},
                Contig<const T>{RowPtr(high, high_step, y)}, Contig<T>{RowPtr(dst, dst_step, y)},
                size.width, phase);
  }
}
template <class T, class Kernel>
void RefFwdCols(const T* src, int src_step, T* low, int low_step, T* high, int high_step,
                KroiSize size, bool phase) {
  for (int x = 0; x < size.width; ++x) {
    Kernel::Fwd(Strided<const T>{src + x, src_step}, Strided<T>{low + x, low_step},
                Strided<T>{high + x, high_step}, size.height, phase);
  }
}
template <class T, class Kernel>
void RefInvCols(const T* low, int low_step, const T* high, int high_step, KroiSize size, T* dst,
                int dst_step, bool phase) {
  for (int x = 0; x < size.width; ++x) {
    Kernel::Inv(Strided<const T>{low + x, low_step}, Strided<const T>{high + x, high_step},
                Strided<T>{dst + x, dst_step}, size.height, phase);
  }
}

// Streaming column steps: every row pointer non-null, then the width.
template <class... P>
inline KroStatus CheckLift(int width, const P*... rows) {
  if (AnyNull(rows...)) return kroStatusNullPointer;
  if (BadLen(width)) return kroStatusBadSize;
  return kroStatusOk;
}

}  // namespace kro

#endif  // KROJ_SRC_WAVELET_IMPL_H_
