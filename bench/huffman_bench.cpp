// SPDX-License-Identifier: BSD-3-Clause
// Baseline Huffman coding on the quantised coefficients of a real photo, against
// libjpeg-turbo writing and reading the same coefficients (jpeg_write_coefficients,
// jpeg_read_coefficients), and the progressive scan kinds against libjpeg-turbo reading
// a progressive file of the same coefficients. Figures are blocks per second.
#include <benchmark/benchmark.h>
#include <stdio.h>
#include <string.h>

#include <vector>

#include "../tests/huffman_test_util.h"
#include "bench_util.h"
#include "kroj.h"

#ifdef KROJ_HAVE_PEER_JPEG
#include <jpeglib.h>

namespace {

// T.81 K.3 / K.5: the tables libjpeg-turbo uses by default for luminance.
const Kro8u kDcBits[16] = {0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0};
const Kro8u kDcVals[12] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
const Kro8u kAcBits[16] = {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7d};
const Kro8u kAcVals[162] = {
    0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61, 0x07, 0x22,
    0x71, 0x14, 0x32, 0x81, 0x91, 0xa1, 0x08, 0x23, 0x42, 0xb1, 0xc1, 0x15, 0x52, 0xd1, 0xf0, 0x24, 0x33,
    0x62, 0x72, 0x82, 0x09, 0x0a, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2a, 0x34,
    0x35, 0x36, 0x37, 0x38, 0x39, 0x3a, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4a, 0x53, 0x54, 0x55,
    0x56, 0x57, 0x58, 0x59, 0x5a, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6a, 0x73, 0x74, 0x75, 0x76,
    0x77, 0x78, 0x79, 0x7a, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8a, 0x92, 0x93, 0x94, 0x95, 0x96,
    0x97, 0x98, 0x99, 0x9a, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7, 0xa8, 0xa9, 0xaa, 0xb2, 0xb3, 0xb4, 0xb5,
    0xb6, 0xb7, 0xb8, 0xb9, 0xba, 0xc2, 0xc3, 0xc4, 0xc5, 0xc6, 0xc7, 0xc8, 0xc9, 0xca, 0xd2, 0xd3, 0xd4,
    0xd5, 0xd6, 0xd7, 0xd8, 0xd9, 0xda, 0xe1, 0xe2, 0xe3, 0xe4, 0xe5, 0xe6, 0xe7, 0xe8, 0xe9, 0xea, 0xf1,
    0xf2, 0xf3, 0xf4, 0xf5, 0xf6, 0xf7, 0xf8, 0xf9, 0xfa};

void Quiet(j_common_ptr, int) {}

// The photo's coefficients, all components one after the other, and a
// libjpeg-turbo file of them written with the default (annex K) tables.
struct Photo {
  std::vector<Kro16s> blocks;
  std::vector<uint8_t> peer_file;
  int count() const { return static_cast<int>(blocks.size() / 64); }
};

std::vector<uint8_t> WriteCoefficients(jpeg_decompress_struct* src, jvirt_barray_ptr* arrays) {
  jpeg_compress_struct c;
  jpeg_error_mgr err;
  c.err = jpeg_std_error(&err);
  jpeg_create_compress(&c);
  unsigned char* mem = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&c, &mem, &size);
  jpeg_copy_critical_parameters(src, &c);
  c.optimize_coding = FALSE;
  jpeg_write_coefficients(&c, arrays);
  jpeg_finish_compress(&c);
  jpeg_destroy_compress(&c);
  std::vector<uint8_t> out(mem, mem + size);
  free(mem);
  return out;
}

// Opens a decompressor on a file and reads its coefficients.
struct Reader {
  jpeg_decompress_struct d;
  jpeg_error_mgr err;
  jvirt_barray_ptr* arrays;
  explicit Reader(const std::vector<uint8_t>& file) {
    d.err = jpeg_std_error(&err);
    err.emit_message = Quiet;
    jpeg_create_decompress(&d);
    jpeg_mem_src(&d, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&d, TRUE);
    arrays = jpeg_read_coefficients(&d);
  }
  ~Reader() { jpeg_destroy_decompress(&d); }
};

const Photo& GetPhoto() {
  static const Photo photo = [] {
    Photo p;
    const std::vector<uint8_t> file = kro_bench::ReadFile(kro_bench::DataPath("retina.jpg"));
    Reader r(file);
    for (int ci = 0; ci < r.d.num_components; ++ci) {
      const jpeg_component_info* comp = &r.d.comp_info[ci];
      for (JDIMENSION by = 0; by < comp->height_in_blocks; ++by) {
        JBLOCKARRAY row = (*r.d.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&r.d), r.arrays[ci], by,
                                                         1, FALSE);
        const Kro16s* b = reinterpret_cast<const Kro16s*>(row[0]);
        p.blocks.insert(p.blocks.end(), b, b + 64 * comp->width_in_blocks);
      }
    }
    p.peer_file = WriteCoefficients(&r.d, r.arrays);
    return p;
  }();
  return photo;
}

struct Tables {
  std::vector<uint8_t> edc, eac, ddc, dac, estate, dstate;
  Tables() {
    int n;
    kroiEncodeHuffmanSpecGetBufSize_JPEG_8u(&n);
    edc.resize(n);
    eac.resize(n);
    kroiDecodeHuffmanSpecGetBufSize_JPEG_8u(&n);
    ddc.resize(n);
    dac.resize(n);
    kroiEncodeHuffmanStateGetBufSize_JPEG_8u(&n);
    estate.resize(n);
    kroiDecodeHuffmanStateGetBufSize_JPEG_8u(&n);
    dstate.resize(n);
    kroiEncodeHuffmanSpecInit_JPEG_8u(kDcBits, kDcVals, Enc(edc));
    kroiEncodeHuffmanSpecInit_JPEG_8u(kAcBits, kAcVals, Enc(eac));
    kroiDecodeHuffmanSpecInit_JPEG_8u(kDcBits, kDcVals, Dec(ddc));
    kroiDecodeHuffmanSpecInit_JPEG_8u(kAcBits, kAcVals, Dec(dac));
  }
  static KroiEncodeHuffmanSpec* Enc(std::vector<uint8_t>& v) { return reinterpret_cast<KroiEncodeHuffmanSpec*>(v.data()); }
  static KroiDecodeHuffmanSpec* Dec(std::vector<uint8_t>& v) { return reinterpret_cast<KroiDecodeHuffmanSpec*>(v.data()); }
  KroiEncodeHuffmanState* es() { return reinterpret_cast<KroiEncodeHuffmanState*>(estate.data()); }
  KroiDecodeHuffmanState* ds() { return reinterpret_cast<KroiDecodeHuffmanState*>(dstate.data()); }
};

// Encodes every block into one scan; returns its length.
int EncodeAll(const Photo& p, Tables& t, std::vector<uint8_t>& out) {
  kroiEncodeHuffmanStateInit_JPEG_8u(t.es());
  int pos = 0;
  Kro16s last = 0;
  const int len = static_cast<int>(out.size());
  for (int b = 0; b < p.count(); ++b)
    kroiEncodeHuffman8x8_JPEG_16s1u_C1(&p.blocks[64 * b], out.data(), len, &pos, &last, Tables::Enc(t.edc),
                                       Tables::Enc(t.eac), t.es(), 0);
  kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), len, &pos, nullptr, nullptr, nullptr, t.es(), 1);
  out[pos] = 0xFF;  // end the scan with a marker, as in a file (the Direct decoder needs one)
  out[pos + 1] = 0xD9;
  return pos;
}

void SetRate(benchmark::State& state, int blocks) {
  state.counters["blocks/s"] = benchmark::Counter(blocks, benchmark::Counter::kIsIterationInvariantRate);
}

void BM_huffman_EncodeBaseline(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Tables t;
  std::vector<uint8_t> out(p.blocks.size() * 4 + 1024);
  for (auto _ : state) benchmark::DoNotOptimize(EncodeAll(p, t, out));
  SetRate(state, p.count());
}

void BM_huffman_GetStatistics(benchmark::State& state) {
  const Photo& p = GetPhoto();
  for (auto _ : state) {
    int dc[256] = {}, ac[256] = {};
    Kro16s last = 0;
    for (int b = 0; b < p.count(); ++b) kroiGetHuffmanStatistics8x8_JPEG_16s_C1(&p.blocks[64 * b], dc, ac, &last);
    benchmark::DoNotOptimize(ac[0]);
  }
  SetRate(state, p.count());
}

void BM_huffman_DecodeBaseline(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Tables t;
  std::vector<uint8_t> scan(p.blocks.size() * 4 + 1024);
  const int len = EncodeAll(p, t, scan);
  std::vector<Kro16s> out(64);
  for (auto _ : state) {
    kroiDecodeHuffmanStateInit_JPEG_8u(t.ds());
    int pos = 0, marker = 0;
    Kro16s last = 0;
    for (int b = 0; b < p.count(); ++b)
      kroiDecodeHuffman8x8_JPEG_1u16s_C1(scan.data(), len, &pos, out.data(), &last, &marker, Tables::Dec(t.ddc),
                                         Tables::Dec(t.dac), t.ds());
    benchmark::DoNotOptimize(out[0]);
  }
  SetRate(state, p.count());
}

void BM_huffman_DecodeDirect(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Tables t;
  std::vector<uint8_t> scan(p.blocks.size() * 4 + 1024);
  EncodeAll(p, t, scan);
  std::vector<Kro16s> out(64);
  for (auto _ : state) {
    int bitpos = 0, marker = 0, nbits = 0;
    Kro32u acc = 0;
    Kro16s last = 0;
    for (int b = 0; b < p.count(); ++b)
      kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(scan.data(), &bitpos, out.data(), &last, &marker, &acc, &nbits,
                                                Tables::Dec(t.ddc), Tables::Dec(t.dac));
    benchmark::DoNotOptimize(out[0]);
  }
  SetRate(state, p.count());
}

// libjpeg-turbo on the same coefficients (whole-file calls: headers are a few
// hundred bytes against about a megabyte of entropy-coded data).
void BM_peer_huffman_EncodeBaseline(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Reader r(p.peer_file);
  for (auto _ : state) benchmark::DoNotOptimize(WriteCoefficients(&r.d, r.arrays).size());
  SetRate(state, p.count());
}

void PeerRead(benchmark::State& state) {
  const Photo& p = GetPhoto();
  for (auto _ : state) {
    Reader r(p.peer_file);
    benchmark::DoNotOptimize(r.arrays);
  }
  SetRate(state, p.count());
}
void BM_peer_huffman_DecodeBaseline(benchmark::State& state) { PeerRead(state); }
void BM_peer_huffman_DecodeDirect(benchmark::State& state) { PeerRead(state); }

BENCHMARK(BM_huffman_EncodeBaseline)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_peer_huffman_EncodeBaseline)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_DecodeBaseline)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_peer_huffman_DecodeBaseline)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_DecodeDirect)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_peer_huffman_DecodeDirect)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_GetStatistics)->Arg(1411)->Unit(benchmark::kMillisecond);

// ---- Progressive scans --------------------------------------------------------
// The photo's blocks as one sequence through the scan script libjpeg-turbo uses for
// luminance (jpeg_simple_progression), tables from the statistics of each scan.

struct ProgScan {
  kro_test::ScanSpec spec;
  std::vector<uint8_t> bits, vals, data;
  std::vector<Kro16s> before;  // decoder's coefficients before this scan
};

struct ProgSet {
  std::vector<ProgScan> scans;
  std::vector<uint8_t> peer_file;  // libjpeg-turbo's progressive file of the photo
};

const ProgSet& GetProg() {
  static const ProgSet set = [] {
    ProgSet ps;
    Photo p = GetPhoto();
    const std::vector<kro_test::ScanSpec> script = {{0, 0, 0, 1}, {1, 5, 0, 2},  {6, 63, 0, 2},
                                                     {1, 63, 2, 1}, {0, 0, 1, 0}, {1, 63, 1, 0}};
    std::vector<Kro16s> decoded(p.blocks.size(), 0);
    for (const auto& spec : script) {
      ProgScan sc;
      sc.spec = spec;
      std::vector<kro_test::ProgItem> items;
      for (int b = 0; b < p.count(); ++b) items.push_back({&p.blocks[64 * size_t(b)], 0, false, 0, nullptr, nullptr});
      std::vector<std::vector<int>> stats(1, std::vector<int>(256, 0));
      kro_test::ProgStats(spec, items, stats);
      sc.bits.assign(16, 0);
      sc.vals.assign(256, 0);
      kroiEncodeHuffmanRawTableInit_JPEG_8u(stats[0].data(), sc.bits.data(), sc.vals.data());
      kro_test::EncTable e(sc.bits, sc.vals);
      for (auto& it : items) it.etab = e.get();
      KroStatus st;
      sc.data = kro_test::ProgEncode(spec, items, &st);
      sc.before = decoded;
      kro_test::DecTable d(sc.bits, sc.vals);
      for (int b = 0; b < p.count(); ++b) items[b] = {&decoded[64 * size_t(b)], 0, false, 0, nullptr, d.get()};
      kro_test::ProgDecode(spec, sc.data, items);
      ps.scans.push_back(std::move(sc));
    }
    const std::vector<uint8_t> file = kro_bench::ReadFile(kro_bench::DataPath("retina.jpg"));
    Reader r(file);
    jpeg_compress_struct c;
    jpeg_error_mgr err;
    c.err = jpeg_std_error(&err);
    jpeg_create_compress(&c);
    unsigned char* mem = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&c, &mem, &size);
    jpeg_copy_critical_parameters(&r.d, &c);
    jpeg_simple_progression(&c);
    jpeg_write_coefficients(&c, r.arrays);
    jpeg_finish_compress(&c);
    jpeg_destroy_compress(&c);
    ps.peer_file.assign(mem, mem + size);
    free(mem);
    return ps;
  }();
  return set;
}

enum class Kind { kDCFirst, kDCRefine, kACFirst, kACRefine };
Kind KindOf(const kro_test::ScanSpec& s) {
  if (s.ss == 0) return s.ah == 0 ? Kind::kDCFirst : Kind::kDCRefine;
  return s.ah == 0 ? Kind::kACFirst : Kind::kACRefine;
}

// Blocks per second over all scans of one kind.
void ProgEncodeKind(benchmark::State& state, Kind kind) {
  Photo p = GetPhoto();
  const ProgSet& ps = GetProg();
  int blocks = 0;
  for (auto _ : state) {
    blocks = 0;
    for (const ProgScan& sc : ps.scans) {
      if (KindOf(sc.spec) != kind) continue;
      kro_test::EncTable e(sc.bits, sc.vals);
      std::vector<kro_test::ProgItem> items;
      for (int b = 0; b < p.count(); ++b) items.push_back({&p.blocks[64 * size_t(b)], 0, false, 0, e.get(), nullptr});
      KroStatus st;
      benchmark::DoNotOptimize(kro_test::ProgEncode(sc.spec, items, &st).size());
      blocks += p.count();
    }
  }
  SetRate(state, blocks);
}

void ProgDecodeKind(benchmark::State& state, Kind kind, bool all) {
  const ProgSet& ps = GetProg();
  const int n = GetPhoto().count();
  std::vector<Kro16s> work;
  int blocks = 0;
  for (auto _ : state) {
    blocks = 0;
    for (const ProgScan& sc : ps.scans) {
      if (!all && KindOf(sc.spec) != kind) continue;
      state.PauseTiming();
      work = sc.before;
      kro_test::DecTable d(sc.bits, sc.vals);
      std::vector<kro_test::ProgItem> items;
      for (int b = 0; b < n; ++b) items.push_back({&work[64 * size_t(b)], 0, false, 0, nullptr, d.get()});
      state.ResumeTiming();
      benchmark::DoNotOptimize(kro_test::ProgDecode(sc.spec, sc.data, items));
      blocks += n;
    }
  }
  SetRate(state, blocks);
}

void BM_huffman_ProgEncodeDCFirst(benchmark::State& s) { ProgEncodeKind(s, Kind::kDCFirst); }
void BM_huffman_ProgEncodeDCRefine(benchmark::State& s) { ProgEncodeKind(s, Kind::kDCRefine); }
void BM_huffman_ProgEncodeACFirst(benchmark::State& s) { ProgEncodeKind(s, Kind::kACFirst); }
void BM_huffman_ProgEncodeACRefine(benchmark::State& s) { ProgEncodeKind(s, Kind::kACRefine); }
void BM_huffman_ProgDecodeDCFirst(benchmark::State& s) { ProgDecodeKind(s, Kind::kDCFirst, false); }
void BM_huffman_ProgDecodeDCRefine(benchmark::State& s) { ProgDecodeKind(s, Kind::kDCRefine, false); }
void BM_huffman_ProgDecodeACFirst(benchmark::State& s) { ProgDecodeKind(s, Kind::kACFirst, false); }
void BM_huffman_ProgDecodeACRefine(benchmark::State& s) { ProgDecodeKind(s, Kind::kACRefine, false); }
// All six scans against libjpeg-turbo reading a progressive file of the same
// coefficients with the same script (its three components each get their scans).
void BM_huffman_ProgDecodeAll(benchmark::State& s) { ProgDecodeKind(s, Kind::kDCFirst, true); }
void BM_peer_huffman_ProgDecodeAll(benchmark::State& state) {
  const ProgSet& ps = GetProg();
  for (auto _ : state) {
    Reader r(ps.peer_file);
    benchmark::DoNotOptimize(r.arrays);
  }
  SetRate(state, GetPhoto().count() * 6);
}

BENCHMARK(BM_huffman_ProgEncodeDCFirst)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgEncodeDCRefine)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgEncodeACFirst)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgEncodeACRefine)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgDecodeDCFirst)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgDecodeDCRefine)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgDecodeACFirst)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgDecodeACRefine)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_huffman_ProgDecodeAll)->Arg(1411)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_peer_huffman_ProgDecodeAll)->Arg(1411)->Unit(benchmark::kMillisecond);

}  // namespace

#endif  // KROJ_HAVE_PEER_JPEG
