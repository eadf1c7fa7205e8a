// SPDX-License-Identifier: BSD-3-Clause
// Helpers shared by the fuzz targets: a reader that turns the fuzzer's bytes into
// choices, Huffman tables built from such bytes through the library's own builders,
// and a check that stops the run (so that the fuzzer keeps the input) when an
// invariant breaks.
#ifndef KROJ_FUZZ_FUZZ_UTIL_H_
#define KROJ_FUZZ_FUZZ_UTIL_H_

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>
#include <vector>

#include "kroj.h"

namespace kro_fuzz {

[[noreturn]] inline void Fail(const char* what, const char* file, int line) {
  fprintf(stderr, "%s:%d: check failed: %s\n", file, line, what);
  abort();
}
[[noreturn]] inline void FailStatus(const char* what, long status, const char* file, int line) {
  fprintf(stderr, "%s:%d: check failed: %s (status %ld)\n", file, line, what, status);
  abort();
}

#define FUZZ_CHECK(cond)                                      \
  do {                                                        \
    if (!(cond)) ::kro_fuzz::Fail(#cond, __FILE__, __LINE__); \
  } while (0)
// The same, printing a status when the check fails.
#define FUZZ_CHECK_STATUS(cond, st)                                                        \
  do {                                                                                     \
    if (!(cond)) ::kro_fuzz::FailStatus(#cond, static_cast<long>(st), __FILE__, __LINE__); \
  } while (0)

// Reads choices from the front of the input; an exhausted input reads as zeros.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : p_(data), n_(size) {}
  size_t remaining() const { return n_; }
  uint8_t Byte() {
    if (n_ == 0) return 0;
    --n_;
    return *p_++;
  }
  uint16_t U16() {
    const uint16_t lo = Byte();
    return static_cast<uint16_t>(lo | Byte() << 8);
  }
  // An integer in [lo, hi]; the span must stay below 65536.
  int Range(int lo, int hi) {
    const uint32_t span = static_cast<uint32_t>(hi - lo) + 1;
    const uint32_t v = span > 256 ? U16() : Byte();
    return lo + static_cast<int>(v % span);
  }
  bool Flag() { return (Byte() & 1) != 0; }
  // Up to n bytes: fewer at the end of the input.
  std::vector<uint8_t> Bytes(size_t n) {
    n = std::min(n, n_);
    std::vector<uint8_t> v(p_, p_ + n);
    p_ += n;
    n_ -= n;
    return v;
  }
  std::vector<uint8_t> Rest() { return Bytes(n_); }

 private:
  const uint8_t* p_;
  size_t n_;
};

// BITS and HUFFVAL as a DHT segment carries them. Most inputs give counts that fit the
// code space of each length (the shape real tables have); a first byte with its top
// bit set takes the counts as they come, for the builders to accept or refuse.
struct HuffLists {
  Kro8u bits[16] = {};
  Kro8u vals[256] = {};
  int total = 0;
  bool Has(int symbol) const {
    for (int i = 0; i < total; ++i)
      if (vals[i] == symbol) return true;
    return false;
  }
};

inline HuffLists ReadLists(Input& in) {
  HuffLists t;
  const bool raw = (in.Byte() & 0x80) != 0;
  int64_t free_codes = 2;  // codes of the current length still unassigned
  for (int i = 0; i < 16; ++i) {
    int c = in.Byte();
    if (!raw) c = static_cast<int>(std::min<int64_t>(c % 64, std::min<int64_t>(free_codes - (i == 15), 256 - t.total)));
    c = std::max(c, 0);
    t.bits[i] = static_cast<Kro8u>(c);
    t.total += c;
    free_codes = (free_codes - c) * 2;
  }
  t.total = std::min(t.total, 256);
  const std::vector<uint8_t> v = in.Bytes(static_cast<size_t>(t.total));
  for (int i = 0; i < t.total; ++i) t.vals[i] = i < static_cast<int>(v.size()) ? v[i] : static_cast<Kro8u>(i);
  return t;
}

// A library buffer of the size its query reports, in 8-byte words.
template <class T>
class LibBuffer {
 public:
  explicit LibBuffer(KroStatus (*query)(int*)) {
    int bytes = 0;
    query(&bytes);
    words_.assign(static_cast<size_t>(bytes + 7) / 8, 0);
  }
  T* get() { return reinterpret_cast<T*>(words_.data()); }

 private:
  std::vector<uint64_t> words_;
};

struct DecodeTable : LibBuffer<KroiDecodeHuffmanSpec> {
  DecodeTable() : LibBuffer(kroiDecodeHuffmanSpecGetBufSize_JPEG_8u) {}
  KroStatus Build(const HuffLists& t) { return kroiDecodeHuffmanSpecInit_JPEG_8u(t.bits, t.vals, get()); }
};
struct EncodeTable : LibBuffer<KroiEncodeHuffmanSpec> {
  EncodeTable() : LibBuffer(kroiEncodeHuffmanSpecGetBufSize_JPEG_8u) {}
  KroStatus Build(const HuffLists& t) { return kroiEncodeHuffmanSpecInit_JPEG_8u(t.bits, t.vals, get()); }
};
struct DecodeState : LibBuffer<KroiDecodeHuffmanState> {
  DecodeState() : LibBuffer(kroiDecodeHuffmanStateGetBufSize_JPEG_8u) { kroiDecodeHuffmanStateInit_JPEG_8u(get()); }
};
struct EncodeState : LibBuffer<KroiEncodeHuffmanState> {
  EncodeState() : LibBuffer(kroiEncodeHuffmanStateGetBufSize_JPEG_8u) { kroiEncodeHuffmanStateInit_JPEG_8u(get()); }
};

// The optimal table for a set of counts, as lists.
inline bool OptimalLists(const int counts[256], HuffLists* t) {
  *t = HuffLists();
  if (kroiEncodeHuffmanRawTableInit_JPEG_8u(counts, t->bits, t->vals) != kroStatusOk) return false;
  for (int i = 0; i < 16; ++i) t->total += t->bits[i];
  return true;
}

// Magnitude category of a difference or coefficient: the bits of |v|.
inline int Category(int v) {
  int n = 0;
  for (uint32_t a = static_cast<uint32_t>(v < 0 ? -static_cast<int64_t>(v) : v); a != 0; a >>= 1) ++n;
  return n;
}

}  // namespace kro_fuzz

#endif  // KROJ_FUZZ_FUZZ_UTIL_H_
