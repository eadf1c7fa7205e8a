// SPDX-License-Identifier: BSD-3-Clause
// Image copy, set, convert and logical operations on images of 1024 rows whose widest
// side has 4 KB rows (4 MB), in bytes of the larger image per second. Each member's
// peer (BM_peer_image_<name>) is memcpy, or memset for the fills, of as many bytes
// in the same run, so the printed speed-up is the fraction of memcpy's bandwidth.
// Masks select about half of the pixels at random; the per-channel constants differ.
#include <stdlib.h>
#include <string.h>

#include <benchmark/benchmark.h>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "bench_util.h"
#include "kroj.h"

namespace {

constexpr int kRows = 1024;
constexpr int kWidestRow = 4096;
constexpr size_t kBufferBytes = size_t{kWidestRow} * kRows + 4096;

Kro8u* Buffer(uint64_t seed) {
  auto* p = static_cast<Kro8u*>(aligned_alloc(64, kBufferBytes));
  const auto v = kro_bench::RandomVector<Kro8u>(kBufferBytes, 0, 255, seed);
  memcpy(p, v.data(), kBufferBytes);
  return p;
}

// Two sources, a destination, four planes and a mask, shared by every case (never
// freed: they live as long as the process).
struct Buffers {
  Kro8u* src = Buffer(1);
  Kro8u* src2 = Buffer(2);
  Kro8u* dst = Buffer(3);
  Kro8u* planes[4] = {Buffer(4), Buffer(5), Buffer(6), Buffer(7)};
  Kro8u* mask = Buffer(8);
  Buffers() {
    for (size_t i = 0; i < kBufferBytes; ++i) mask[i] = mask[i] & 1 ? mask[i] : 0;
  }
};
Buffers& Bufs() {
  static Buffers* b = new Buffers;
  return *b;
}

int RoundUp64(int n) { return (n + 63) & ~63; }

// Geometry of a case: samples per pixel on each side (0: planes), sample size.
struct Geometry {
  int src_ch, dst_ch, size;
  int width() const { return kWidestRow / (std::max(std::max(src_ch, dst_ch), 1) * size); }
  int step(int ch) const { return RoundUp64(width() * std::max(ch, 1) * size); }
  int mask_step() const { return RoundUp64(width()); }
  KroiSize roi() const { return {width(), kRows}; }
  int64_t bytes() const { return int64_t{kRows} * std::max(step(src_ch), step(dst_ch)); }
};

Geometry GeometryOf(const std::string& name, int size) {
  static const struct {
    const char* layout;
    int src_ch, dst_ch;
  } kLayouts[] = {{"C1", 1, 1},     {"C3", 3, 3},     {"C4", 4, 4},     {"AC4", 4, 4},
                  {"C3C1", 3, 1},   {"C1C3", 1, 3},   {"C4C1", 4, 1},   {"C1C4", 1, 4},
                  {"C3C", 3, 3},    {"C4C", 4, 4},    {"AC4C3", 4, 3},  {"C3AC4", 3, 4},
                  {"C3P3", 3, 0},   {"P3C3", 0, 3},   {"C4P4", 4, 0},   {"P4C4", 0, 4}};
  // The layout without the access suffix (R, IR, MR; CR keeps its C).
  std::string layout = name.substr(name.rfind('_') + 1);
  layout.pop_back();
  if (layout.back() == 'I' || layout.back() == 'M') layout.pop_back();
  for (const auto& l : kLayouts) {
    if (layout == l.layout) return {l.src_ch, l.dst_ch, size};
  }
  abort();
}

struct Case {
  std::string name;
  Geometry g;
  bool fill;
  std::function<void()> run;
};

// Adapters by signature: each binds the shared buffers in the case's geometry.
template <class T>
struct Bind {
  Geometry g;
  const T* s() const { return reinterpret_cast<const T*>(Bufs().src); }
  const T* s2() const { return reinterpret_cast<const T*>(Bufs().src2); }
  T* d() const { return reinterpret_cast<T*>(Bufs().dst); }
  T* plane(int c) const { return reinterpret_cast<T*>(Bufs().planes[c]); }
  int ss() const { return g.step(g.src_ch); }
  int ds() const { return g.step(g.dst_ch); }
  const T* value() const {
    static const T v[4] = {static_cast<T>(0x35), static_cast<T>(0x5A), static_cast<T>(0x0F),
                           static_cast<T>(0x71)};
    return v;
  }
};

template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, int, T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] { f(b.s(), b.ss(), b.d(), b.ds(), b.g.roi()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, int, T*, int, KroiSize, const Kro8u*, int)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] {
            f(b.s(), b.ss(), b.d(), b.ds(), b.g.roi(), Bufs().mask, b.g.mask_step());
          }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, int, T**, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] {
            T* p[4] = {b.plane(0), b.plane(1), b.plane(2), b.plane(3)};
            f(b.s(), b.ss(), p, b.g.step(1), b.g.roi());
          }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T**, int, T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] {
            const T* p[4] = {b.plane(0), b.plane(1), b.plane(2), b.plane(3)};
            f(p, b.g.step(1), b.d(), b.ds(), b.g.roi());
          }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(T, T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, true, [=] { f(b.value()[0], b.d(), b.ds(), b.g.roi()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, true, [=] { f(b.value(), b.d(), b.ds(), b.g.roi()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(T, T*, int, KroiSize, const Kro8u*, int)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, true,
          [=] { f(b.value()[0], b.d(), b.ds(), b.g.roi(), Bufs().mask, b.g.mask_step()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, T*, int, KroiSize, const Kro8u*, int)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, true,
          [=] { f(b.value(), b.d(), b.ds(), b.g.roi(), Bufs().mask, b.g.mask_step()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, int, const T*, int, T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] { f(b.s(), b.ss(), b.s2(), b.ss(), b.d(), b.ds(), b.g.roi()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, int, T, T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] { f(b.s(), b.ss(), b.value()[0], b.d(), b.ds(), b.g.roi()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(const T*, int, const T*, T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] { f(b.s(), b.ss(), b.value(), b.d(), b.ds(), b.g.roi()); }};
}
template <class T>
Case Make(const char* n, KroStatus (*f)(T*, int, KroiSize)) {
  const Bind<T> b{GeometryOf(n, sizeof(T))};
  return {n, b.g, false, [=] { f(b.d(), b.ds(), b.g.roi()); }};
}
Case Make(const char* n, KroStatus (*f)(const Kro8u*, int, Kro16u*, int, KroiSize)) {
  const Geometry g{1, 2, 1};  // a 16-bit destination as wide as two 8-bit channels
  return {n, g, false, [=] {
            f(Bufs().src, g.step(1), reinterpret_cast<Kro16u*>(Bufs().dst), g.step(2),
              g.roi());
          }};
}

#define K(fn) Make(#fn, fn)

std::vector<Case> Cases() {
  return {
      K(kroiCopy_8u_C1R),     K(kroiCopy_8u_C3R),     K(kroiCopy_8u_AC4R),
      K(kroiCopy_16s_AC4R),   K(kroiCopy_32f_AC4R),   K(kroiCopy_8u_C3C1R),
      K(kroiCopy_8u_C4C1R),   K(kroiCopy_8u_C1C3R),   K(kroiCopy_8u_C1C4R),
      K(kroiCopy_16s_C1C3R),  K(kroiCopy_32f_C3C1R),  K(kroiCopy_8u_C3CR),
      K(kroiCopy_8u_C4CR),    K(kroiCopy_32f_C3CR),   K(kroiCopy_8u_AC4C3R),
      K(kroiCopy_8u_C3AC4R),  K(kroiCopy_16s_C3AC4R), K(kroiCopy_8u_C1MR),
      K(kroiCopy_8u_C3MR),    K(kroiCopy_8u_C4MR),    K(kroiCopy_8u_AC4MR),
      K(kroiCopy_16s_C1MR),   K(kroiCopy_16s_AC4MR),  K(kroiCopy_32f_C3MR),
      K(kroiCopy_8u_C3P3R),   K(kroiCopy_8u_P3C3R),   K(kroiCopy_8u_C4P4R),
      K(kroiCopy_8u_P4C4R),   K(kroiCopy_16s_C3P3R),  K(kroiCopy_16s_P4C4R),
      K(kroiCopy_32f_C3P3R),  K(kroiCopy_32f_P3C3R),  K(kroiSet_8u_C1R),
      K(kroiSet_8u_C3R),      K(kroiSet_8u_C4R),      K(kroiSet_8u_AC4R),
      K(kroiSet_16s_C3R),     K(kroiSet_32f_AC4R),    K(kroiSet_8u_C3CR),
      K(kroiSet_16s_C4CR),    K(kroiSet_8u_C1MR),     K(kroiSet_8u_C3MR),
      K(kroiSet_8u_AC4MR),    K(kroiSet_32f_C4MR),    K(kroiConvert_8u16u_C1R),
      K(kroiAnd_8u_C1R),      K(kroiAnd_8u_AC4R),     K(kroiXor_16u_AC4IR),
      K(kroiOr_32s_AC4R),     K(kroiAndC_8u_C1R),     K(kroiAndC_16u_C1IR),
      K(kroiAndC_8u_C3R),     K(kroiOrC_16u_C4R),     K(kroiXorC_8u_AC4R),
      K(kroiXorC_32s_AC4IR),  K(kroiAndC_32s_C3IR),   K(kroiNot_8u_C1R),
      K(kroiNot_8u_AC4IR),
  };
}

const int kRegistered = [] {
  for (const Case& c : Cases()) {
    const Geometry g = c.g;
    const auto run = c.run;
    const std::string size = "/" + std::to_string(g.width()) + "x" + std::to_string(kRows);
    benchmark::RegisterBenchmark(("BM_image_" + c.name + size).c_str(),
                                 [=](benchmark::State& state) {
                                   Bufs();  // filled before the clock starts
                                   for (auto _ : state) {
                                     run();
                                     benchmark::ClobberMemory();
                                   }
                                   state.SetBytesProcessed(state.iterations() * g.bytes());
                                 });
    const bool fill = c.fill;
    benchmark::RegisterBenchmark(("BM_peer_image_" + c.name + size).c_str(),
                                 [=](benchmark::State& state) {
                                   Bufs();
                                   for (auto _ : state) {
                                     if (fill) {
                                       memset(Bufs().dst, 7, g.bytes());
                                     } else {
                                       memcpy(Bufs().dst, Bufs().src, g.bytes());
                                     }
                                     benchmark::ClobberMemory();
                                   }
                                   state.SetBytesProcessed(state.iterations() * g.bytes());
                                 });
  }
  return 0;
}();

}  // namespace
