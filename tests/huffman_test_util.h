// SPDX-License-Identifier: BSD-3-Clause
// Test-side helpers for the Huffman coders: the example tables of T.81 annex K,
// canonical codes and the zig-zag order computed independently of the library,
// library-sized buffers, a bit string that stuffs and pads like a JPEG writer, a bit
// reader written from the byte-wise refill rule, and progressive scans driven block
// by block through the library.
#ifndef KROJ_TESTS_HUFFMAN_TEST_UTIL_H_
#define KROJ_TESTS_HUFFMAN_TEST_UTIL_H_

#include <stdint.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "kroj.h"

namespace kro_test {

// T.81 table K.3 (luminance DC) and K.5 (luminance AC).
inline const std::vector<uint8_t> kLumDcBits = {0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0};
inline const std::vector<uint8_t> kLumDcVals = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
inline const std::vector<uint8_t> kLumAcBits = {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7d};
inline const std::vector<uint8_t> kLumAcVals = {
    0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61,
    0x07, 0x22, 0x71, 0x14, 0x32, 0x81, 0x91, 0xa1, 0x08, 0x23, 0x42, 0xb1, 0xc1, 0x15, 0x52,
    0xd1, 0xf0, 0x24, 0x33, 0x62, 0x72, 0x82, 0x09, 0x0a, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x25,
    0x26, 0x27, 0x28, 0x29, 0x2a, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3a, 0x43, 0x44, 0x45,
    0x46, 0x47, 0x48, 0x49, 0x4a, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5a, 0x63, 0x64,
    0x65, 0x66, 0x67, 0x68, 0x69, 0x6a, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7a, 0x83,
    0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8a, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99,
    0x9a, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7, 0xa8, 0xa9, 0xaa, 0xb2, 0xb3, 0xb4, 0xb5, 0xb6,
    0xb7, 0xb8, 0xb9, 0xba, 0xc2, 0xc3, 0xc4, 0xc5, 0xc6, 0xc7, 0xc8, 0xc9, 0xca, 0xd2, 0xd3,
    0xd4, 0xd5, 0xd6, 0xd7, 0xd8, 0xd9, 0xda, 0xe1, 0xe2, 0xe3, 0xe4, 0xe5, 0xe6, 0xe7, 0xe8,
    0xe9, 0xea, 0xf1, 0xf2, 0xf3, 0xf4, 0xf5, 0xf6, 0xf7, 0xf8, 0xf9, 0xfa};

// Natural index of zig-zag position k, walked along the anti-diagonals (T.81 A.3.6);
// positions 64..71 stand for coefficient 63.
inline int ZigZag(int k) {
  static const std::array<int, 64> zz = [] {
    std::array<int, 64> t{};
    for (int d = 0, k = 0; d < 15; ++d)
      for (int i = 0; i <= d; ++i) {
        const int r = d % 2 == 0 ? d - i : i, c = d - r;  // even diagonals run upwards
        if (r < 8 && c < 8) t[k++] = r * 8 + c;
      }
    return t;
  }();
  return k < 64 ? zz[k] : 63;
}

struct Code {
  uint32_t code = 0;
  int len = 0;
};
using CodeTable = std::array<Code, 256>;

// Canonical codes per symbol (T.81 C.2), len 0 for symbols not listed.
inline CodeTable Canonical(const std::vector<uint8_t>& bits, const std::vector<uint8_t>& vals) {
  CodeTable t{};
  uint32_t code = 0;
  size_t p = 0;
  for (int len = 1; len <= 16; ++len, code <<= 1)
    for (int i = 0; i < bits[len - 1]; ++i) t[vals[p++]] = {code++, len};
  return t;
}

// Magnitude category: bits of |v|.
inline int Category(int v) {
  int n = 0;
  for (unsigned a = static_cast<unsigned>(v < 0 ? -v : v); a; a >>= 1) ++n;
  return n;
}

// Library buffers of the size the library reports.
template <class T>
struct LibBuf {
  std::vector<uint64_t> buf;
  explicit LibBuf(KroStatus (*size)(int*)) {
    int n = 0;
    size(&n);
    buf.resize((n + 7) / 8);
  }
  T* get() { return reinterpret_cast<T*>(buf.data()); }
};
struct EncTable : LibBuf<KroiEncodeHuffmanSpec> {
  KroStatus status;
  EncTable(const std::vector<uint8_t>& bits, const std::vector<uint8_t>& vals)
      : LibBuf(kroiEncodeHuffmanSpecGetBufSize_JPEG_8u),
        status(kroiEncodeHuffmanSpecInit_JPEG_8u(bits.data(), vals.data(), get())) {}
};
struct DecTable : LibBuf<KroiDecodeHuffmanSpec> {
  KroStatus status;
  DecTable(const std::vector<uint8_t>& bits, const std::vector<uint8_t>& vals)
      : LibBuf(kroiDecodeHuffmanSpecGetBufSize_JPEG_8u),
        status(kroiDecodeHuffmanSpecInit_JPEG_8u(bits.data(), vals.data(), get())) {}
};
struct EncStateBuf : LibBuf<KroiEncodeHuffmanState> {
  EncStateBuf() : LibBuf(kroiEncodeHuffmanStateGetBufSize_JPEG_8u) { kroiEncodeHuffmanStateInit_JPEG_8u(get()); }
};
struct DecStateBuf : LibBuf<KroiDecodeHuffmanState> {
  DecStateBuf() : LibBuf(kroiDecodeHuffmanStateGetBufSize_JPEG_8u) { kroiDecodeHuffmanStateInit_JPEG_8u(get()); }
};

// A bit string of '0'/'1' characters.
struct Bits {
  std::string s;
  void Put(uint32_t v, int n) {
    for (int i = n - 1; i >= 0; --i) s.push_back(((v >> i) & 1) ? '1' : '0');
  }
  // Whole bytes, padded with 1-bits, 0x00 after each 0xFF.
  std::vector<uint8_t> Stuffed() const {
    std::string t = s;
    while (t.size() % 8) t.push_back('1');
    std::vector<uint8_t> out;
    for (size_t i = 0; i < t.size(); i += 8) {
      out.push_back(static_cast<uint8_t>(std::stoi(t.substr(i, 8), nullptr, 2)));
      if (out.back() == 0xFF) out.push_back(0);
    }
    return out;
  }
};

// The buffered bit reader written from T.81 F.2.2.5 and the documented refill rule:
// bytes enter only when an operation lacks bits, one at a time up to 25 bits; a
// marker stops reading for good. Symbols are found by their canonical codes.
struct RefReader {
  const std::vector<uint8_t>& src;
  int pos = 0, marker = 0, bits = 0;
  uint32_t acc = 0;
  int Fill(int n) {
    if (marker != 0) return n > bits ? kroStatusJPEGDataError : 0;
    if (bits >= 25) return 0;
    while (pos < int(src.size())) {
      int b = src[pos++];
      if (b == 0xFF) {
        for (;;) {
          if (pos >= int(src.size())) return kroStatusJPEGOutOfBuffer;
          const int c = src[pos++];
          if (c == 0) break;
          if (c != 0xFF) return marker = c, 0;
        }
      }
      acc = acc << 8 | uint32_t(b);
      bits += 8;
      if (bits >= 25) return 0;
    }
    return n > bits ? kroStatusJPEGOutOfBuffer : 0;
  }
  uint32_t Take(int n) {  // bits missing after a marker read as zeros
    const uint32_t v = bits >= n ? acc >> (bits - n) : acc << (n - bits);
    bits = std::max(bits - n, 0);
    return v & ((1u << n) - 1);
  }
  int Raw(int n, uint32_t* v) {  // n bits, refilling first when fewer are held
    if (bits < n) {
      if (int st = Fill(n)) return st;
    }
    *v = Take(n);
    return 0;
  }
  int Receive(int s, int* v) {  // s extra bits, extended (T.81 F.2.2.1)
    uint32_t u;
    if (int st = Raw(s, &u)) return st;
    *v = int(u) < (1 << (s - 1)) ? int(u) - (1 << s) + 1 : int(u);
    return 0;
  }
  int Symbol(const CodeTable& t, int* sym) {
    int L = 1;
    if (bits < 8) {
      if (int st = Fill(0)) return st;
    }
    if (bits >= 8) {  // codes of up to 8 bits straight from the next 8 bits
      const uint32_t peek = (acc >> (bits - 8)) & 255;
      for (int s = 0; s < 256; ++s)
        if (t[s].len > 0 && t[s].len <= 8 && peek >> (8 - t[s].len) == t[s].code) return bits -= t[s].len, *sym = s, 0;
      L = 9;
    }
    uint32_t code;
    if (int st = Raw(L, &code)) return st;
    for (;; ++L) {
      for (int s = 0; s < 256; ++s)
        if (t[s].len == L && t[s].code == code) return *sym = s, 0;
      if (L == 16) return kroStatusJPEGDataError;
      uint32_t bit;
      if (int st = Raw(1, &bit)) return st;
      code = code << 1 | bit;
    }
  }
};

// ---- Progressive scans driven block by block through the library ----

struct ScanSpec {
  int ss, se, ah, al;
};

// One block of a scan: its coefficients, DC predictor slot (component in the scan),
// whether a restart marker precedes it, its table (index for statistics, specs for
// coding).
struct ProgItem {
  Kro16s* blk;
  int comp;
  bool restart;
  int tbl;
  const KroiEncodeHuffmanSpec* etab;
  const KroiDecodeHuffmanSpec* dtab;
};

// Symbol counts of a scan, per table index.
inline KroStatus ProgStats(const ScanSpec& s, const std::vector<ProgItem>& items,
                           std::vector<std::vector<int>>& stats) {
  EncStateBuf st;
  std::vector<Kro16s> last(8, 0);
  KroStatus r = kroStatusOk;
  auto ac = [&](const ProgItem& it, const Kro16s* blk, int flush) {
    return (s.ah == 0 ? kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1 : kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1)(
        blk, stats[it.tbl].data(), s.ss, s.se, s.al, st.get(), flush);
  };
  for (size_t i = 0; i <= items.size(); ++i) {
    const bool end = i == items.size();
    if (s.ss > 0 && !items.empty() && (end || items[i].restart)) r = std::min(r, ac(items[i - end], nullptr, 1));
    if (end) break;
    const ProgItem& it = items[i];
    if (it.restart) std::fill(last.begin(), last.end(), 0);
    if (s.ss > 0)
      r = std::min(r, ac(it, it.blk, 0));
    else if (s.ah == 0)
      r = std::min(r, kroiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(it.blk, stats[it.tbl].data(), &last[it.comp], s.al));
  }
  return r;
}

// One block (blk non-null) or a flush of a scan through the matching encoder.
inline KroStatus ProgEncodeOne(const ScanSpec& s, const Kro16s* blk, Kro16s* last, const KroiEncodeHuffmanSpec* t,
                               std::vector<uint8_t>& out, int* pos, KroiEncodeHuffmanState* st) {
  const int len = static_cast<int>(out.size()), flush = blk == nullptr;
  if (s.ss == 0 && s.ah == 0)
    return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, out.data(), len, pos, last, s.al, t, st, flush);
  if (s.ss == 0) return kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(blk, out.data(), len, pos, s.al, st, flush);
  return (s.ah == 0 ? kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1 : kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1)(
      blk, out.data(), len, pos, s.ss, s.se, s.al, t, st, flush);
}

// Encodes a scan; restart markers RST0..7 between intervals. *status: first failure.
inline std::vector<uint8_t> ProgEncode(const ScanSpec& s, const std::vector<ProgItem>& items, KroStatus* status) {
  std::vector<uint8_t> out(items.size() * 300 + 4096);
  EncStateBuf st;
  std::vector<Kro16s> last(8, 0);
  int pos = 0, rst = 0;
  *status = kroStatusOk;
  auto note = [&](KroStatus k) {
    if (*status == kroStatusOk) *status = k;
  };
  for (const ProgItem& it : items) {
    if (it.restart) {
      note(ProgEncodeOne(s, nullptr, nullptr, it.etab, out, &pos, st.get()));
      out[size_t(pos++)] = 0xFF;
      out[size_t(pos++)] = static_cast<uint8_t>(0xD0 + (rst++ & 7));
      std::fill(last.begin(), last.end(), 0);
    }
    note(ProgEncodeOne(s, it.blk, &last[it.comp], it.etab, out, &pos, st.get()));
  }
  note(ProgEncodeOne(s, nullptr, nullptr, items.empty() ? nullptr : items.back().etab, out, &pos, st.get()));
  out.resize(static_cast<size_t>(pos));
  return out;
}

// One block of a scan through the matching decoder.
inline KroStatus ProgDecodeOne(const ScanSpec& s, const std::vector<uint8_t>& data, int* pos, Kro16s* blk,
                               Kro16s* last, int* marker, const KroiDecodeHuffmanSpec* t, KroiDecodeHuffmanState* st) {
  const int len = static_cast<int>(data.size());
  if (s.ss == 0 && s.ah == 0)
    return kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(data.data(), len, pos, blk, last, marker, s.al, t, st);
  if (s.ss == 0) return kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(data.data(), len, pos, blk, marker, s.al, st);
  return (s.ah == 0 ? kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1 : kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1)(
      data.data(), len, pos, blk, marker, s.ss, s.se, s.al, t, st);
}

// Just past the next marker at or after p (0xFF followed by neither 0x00 nor 0xFF).
inline int PastMarker(const std::vector<uint8_t>& d, int p) {
  while (p + 1 < int(d.size()) && !(d[size_t(p)] == 0xFF && d[size_t(p) + 1] != 0 && d[size_t(p) + 1] != 0xFF)) ++p;
  return p + 2;
}

// Decodes a scan into the items' blocks (refined in place). Returns the first failure.
inline KroStatus ProgDecode(const ScanSpec& s, const std::vector<uint8_t>& data, const std::vector<ProgItem>& items) {
  DecStateBuf st;
  std::vector<Kro16s> last(8, 0);
  int pos = 0, marker = 0;
  for (const ProgItem& it : items) {
    if (it.restart) {
      if (marker == 0) pos = PastMarker(data, pos);
      marker = 0;
      kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
      std::fill(last.begin(), last.end(), 0);
    }
    if (KroStatus k = ProgDecodeOne(s, data, &pos, it.blk, &last[it.comp], &marker, it.dtab, st.get())) return k;
  }
  return kroStatusOk;
}

}  // namespace kro_test

#endif  // KROJ_TESTS_HUFFMAN_TEST_UTIL_H_
