// SPDX-License-Identifier: BSD-3-Clause
// The Huffman encoders fed coefficients from the input, with the optimal tables that
// the statistics functions and the table builder make for them, so every symbol has a
// code and every call must succeed:
//  - baseline blocks, written buffered (sometimes into a buffer too small, which must
//    stop with the position inside it) and decoded back;
//  - a progressive script (DC first and refinements, two AC bands each with a first
//    scan and refinements) decoded back to the exact coefficients;
//  - lossless differences, one by one.
//
// Input: a mode byte, a block count (or difference count), then the values.
#include <string.h>

#include "fuzz_util.h"

namespace {

using namespace kro_fuzz;

struct TablePair {
  EncodeTable enc;
  DecodeTable dec;
  // Builds both from counts; the builders must accept what the optimiser made.
  void FromCounts(const int counts[256]) {
    HuffLists lists;
    FUZZ_CHECK(OptimalLists(counts, &lists));
    FUZZ_CHECK(enc.Build(lists) == kroStatusOk && dec.Build(lists) == kroStatusOk);
  }
};

void Baseline(const std::vector<int16_t>& blocks, int capacity_cut) {
  const int n = static_cast<int>(blocks.size() / 64);
  int dc_counts[256] = {}, ac_counts[256] = {};
  Kro16s last = 0;
  for (int b = 0; b < n; ++b)
    FUZZ_CHECK(kroiGetHuffmanStatistics8x8_JPEG_16s_C1(&blocks[b * 64], dc_counts, ac_counts, &last) == kroStatusOk);
  TablePair dc, ac;
  dc.FromCounts(dc_counts);
  ac.FromCounts(ac_counts);

  const int full = n * 600 + 16;
  const int cap = capacity_cut > 0 ? std::max(1, full * capacity_cut / 256) : full;
  std::vector<uint8_t> coded(static_cast<size_t>(cap));
  EncodeState es;
  int pos = 0;
  KroStatus st = kroStatusOk;
  last = 0;
  for (int b = 0; b < n && st == kroStatusOk; ++b)
    st = kroiEncodeHuffman8x8_JPEG_16s1u_C1(&blocks[b * 64], coded.data(), cap, &pos, &last, dc.enc.get(), ac.enc.get(),
                                            es.get(), 0);
  if (st == kroStatusOk)
    st = kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, coded.data(), cap, &pos, nullptr, nullptr, nullptr, es.get(), 1);
  FUZZ_CHECK(pos >= 0 && pos <= cap);
  if (capacity_cut == 0) FUZZ_CHECK_STATUS(st == kroStatusOk, st);
  if (st != kroStatusOk) {
    FUZZ_CHECK_STATUS(st == kroStatusJPEGOutOfBuffer, st);
    return;
  }
  DecodeState ds;
  int rpos = 0, marker = 0;
  Kro16s dlast = 0;
  for (int b = 0; b < n; ++b) {
    int16_t block[64];
    FUZZ_CHECK(kroiDecodeHuffman8x8_JPEG_1u16s_C1(coded.data(), pos, &rpos, block, &dlast, &marker, dc.dec.get(),
                                                  ac.dec.get(), ds.get()) == kroStatusOk);
    FUZZ_CHECK(memcmp(block, &blocks[b * 64], sizeof(block)) == 0);
  }
}

struct Scan {
  int kind;  // 0 DC first, 1 DC refine, 2 AC first, 3 AC refine
  int ss, se, al;
};

// Codes one scan over all blocks and decodes it into `out`.
void RunScan(const Scan& s, const std::vector<int16_t>& blocks, std::vector<int16_t>* out) {
  const int n = static_cast<int>(blocks.size() / 64);
  int counts[256] = {};
  TablePair t;
  if (s.kind != 1) {
    EncodeState stats_state;
    Kro16s last = 0;
    for (int b = 0; b <= n; ++b) {
      const Kro16s* blk = b < n ? &blocks[b * 64] : nullptr;
      const int flush = b == n;
      KroStatus st = kroStatusOk;
      if (s.kind == 0 && !flush) st = kroiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(blk, counts, &last, s.al);
      if (s.kind == 2) st = kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(blk, counts, s.ss, s.se, s.al, stats_state.get(), flush);
      if (s.kind == 3) st = kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(blk, counts, s.ss, s.se, s.al, stats_state.get(), flush);
      FUZZ_CHECK_STATUS(st == kroStatusOk, st);
    }
    // A table needs at least one symbol.
    bool any = false;
    for (int c : counts) any |= c != 0;
    if (!any) counts[0] = 1;
    t.FromCounts(counts);
  }
  const int cap = n * 1200 + 1100;  // symbols, extra bits and up to 937 buffered bits
  std::vector<uint8_t> coded(static_cast<size_t>(cap));
  EncodeState es;
  int pos = 0;
  Kro16s last = 0;
  for (int b = 0; b <= n; ++b) {
    const Kro16s* blk = b < n ? &blocks[b * 64] : nullptr;
    const int flush = b == n;
    KroStatus st = kroStatusOk;
    switch (s.kind) {
      case 0: st = kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, coded.data(), cap, &pos, &last, s.al, t.enc.get(), es.get(), flush); break;
      case 1: st = kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(blk, coded.data(), cap, &pos, s.al, es.get(), flush); break;
      case 2: st = kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, coded.data(), cap, &pos, s.ss, s.se, s.al, t.enc.get(), es.get(), flush); break;
      default: st = kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(blk, coded.data(), cap, &pos, s.ss, s.se, s.al, t.enc.get(), es.get(), flush); break;
    }
    FUZZ_CHECK_STATUS(st == kroStatusOk, st);
  }
  if (pos == 0) return;  // nothing written: nothing to decode (a scan of empty bands and no runs)
  DecodeState ds;
  int rpos = 0, marker = 0;
  Kro16s dlast = 0;
  for (int b = 0; b < n; ++b) {
    Kro16s* blk = &(*out)[b * 64];
    KroStatus st;
    switch (s.kind) {
      case 0: st = kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(coded.data(), pos, &rpos, blk, &dlast, &marker, s.al, t.dec.get(), ds.get()); break;
      case 1: st = kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(coded.data(), pos, &rpos, blk, &marker, s.al, ds.get()); break;
      case 2: st = kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(coded.data(), pos, &rpos, blk, &marker, s.ss, s.se, s.al, t.dec.get(), ds.get()); break;
      default: st = kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(coded.data(), pos, &rpos, blk, &marker, s.ss, s.se, s.al, t.dec.get(), ds.get()); break;
    }
    FUZZ_CHECK_STATUS(st == kroStatusOk, st);
  }
}

void Progressive(std::vector<int16_t> blocks, Input& in) {
  // Magnitudes the progressive coder takes: DC differences of category 11 at most, AC
  // sizes of 10 at most (the statistics' limit).
  for (int16_t& v : blocks) v = static_cast<int16_t>(v % 1024);
  const int dc_al = in.Range(0, 4), ac_al = in.Range(0, 4), split = in.Range(1, 63);
  std::vector<Scan> script = {{0, 0, 0, dc_al}};
  for (int al = dc_al - 1; al >= 0; --al) script.push_back({1, 0, 0, al});
  for (const auto& [ss, se] : {std::pair(1, split), std::pair(split + 1, 63)}) {
    if (ss > se) continue;
    script.push_back({2, ss, se, ac_al});
    for (int al = ac_al - 1; al >= 0; --al) script.push_back({3, ss, se, al});
  }
  std::vector<int16_t> out(blocks.size(), 0);
  for (const Scan& s : script) RunScan(s, blocks, &out);
  FUZZ_CHECK(out == blocks);
}

void Lossless(const std::vector<int16_t>& diffs) {
  int counts[256] = {};
  for (int16_t d : diffs) FUZZ_CHECK(kroiGetHuffmanStatisticsOne_JPEG_16s_C1(&d, counts) == kroStatusOk);
  TablePair t;
  t.FromCounts(counts);
  std::vector<uint8_t> coded(diffs.size() * 8 + 8);
  EncodeState es;
  int pos = 0;
  const int cap = static_cast<int>(coded.size());
  for (size_t i = 0; i <= diffs.size(); ++i) {
    const bool flush = i == diffs.size();
    FUZZ_CHECK(kroiEncodeHuffmanOne_JPEG_16s1u_C1(flush ? nullptr : &diffs[i], coded.data(), cap, &pos, t.enc.get(),
                                                  es.get(), flush) == kroStatusOk);
  }
  DecodeState ds;
  int rpos = 0, marker = 0;
  for (int16_t want : diffs) {
    Kro16s d = 0;
    FUZZ_CHECK(kroiDecodeHuffmanOne_JPEG_1u16s_C1(coded.data(), pos, &rpos, &d, &marker, t.dec.get(), ds.get()) ==
               kroStatusOk);
    FUZZ_CHECK(d == want);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  const int mode = in.Range(0, 2);
  const int count = in.Range(1, mode == 2 ? 512 : 16);
  const int capacity_cut = in.Byte();
  std::vector<int16_t> values(static_cast<size_t>(count) * (mode == 2 ? 1 : 64));
  for (auto& v : values) v = static_cast<int16_t>(in.U16());
  if (mode == 0) {
    // Coefficients within -32767..32767, DC differences within category 15.
    for (size_t i = 0; i < values.size(); ++i) {
      if (values[i] == -32768) values[i] = -32767;
      if (i % 64 == 0) values[i] = static_cast<int16_t>(values[i] / 2);
    }
    Baseline(values, capacity_cut & 1 ? capacity_cut : 0);
  } else if (mode == 1) {
    Progressive(values, in);
  } else {
    Lossless(values);
  }
  return 0;
}
