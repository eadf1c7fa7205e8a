// SPDX-License-Identifier: BSD-3-Clause
// Baseline Huffman coding on the quantised coefficients of a real photo, against
// libjpeg-turbo writing and reading the same coefficients (jpeg_write_coefficients,
// jpeg_read_coefficients), and the progressive scan kinds against libjpeg-turbo reading
// a progressive file of the same coefficients. Figures are blocks per second.
#include <benchmark/benchmark.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <vector>

#include "../tests/huffman_test_util.h"
#include "bench_util.h"
#include "kroj.h"

#ifdef KROJ_HAVE_PEER_JPEG
#include <jpeglib.h>

namespace {

void Quiet(j_common_ptr, int) {}

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

// BITS (16 counts) and HUFFVAL of one table.
struct RawTable {
  std::vector<uint8_t> bits, vals;
};
RawTable Raw(const JHUFF_TBL* t) {
  RawTable r;
  r.bits.assign(t->bits + 1, t->bits + 17);
  int n = 0;
  for (uint8_t b : r.bits) n += b;
  r.vals.assign(t->huffval, t->huffval + n);
  return r;
}

// Writes a baseline file of the coefficients with libjpeg-turbo's default tables;
// the tables it used go to dc/ac when given.
std::vector<uint8_t> WriteCoefficients(jpeg_decompress_struct* src, jvirt_barray_ptr* arrays,
                                       RawTable* dc = nullptr, RawTable* ac = nullptr) {
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
  for (int i = 0; dc != nullptr && i < 2; ++i) {
    dc[i] = Raw(c.dc_huff_tbl_ptrs[i]);
    ac[i] = Raw(c.ac_huff_tbl_ptrs[i]);
  }
  jpeg_destroy_compress(&c);
  std::vector<uint8_t> out(mem, mem + size);
  free(mem);
  return out;
}

// One block of the interleaved scan: where its coefficients are, and its component.
struct Unit {
  size_t offset;
  int comp;
};

// The photo (1411 x 1411, 4:2:0) as libjpeg-turbo writes it: every component's blocks
// padded to whole MCUs, the interleaved block order of the scan with the dummy blocks
// at the right and bottom edges (DC copied from the block before, AC zero), and the
// file's tables (luminance for component 0, chrominance for the others). Encoding
// these units in order with those tables gives the peer file's scan byte for byte.
struct Photo {
  std::vector<Kro16s> blocks;  // the real blocks, component after component (progressive)
  std::vector<Kro16s> padded;  // every component padded to whole MCUs
  std::vector<Unit> units;
  RawTable dc[2], ac[2];
  int ncomp = 0;
  std::vector<uint8_t> peer_file;
  std::vector<uint8_t> peer_scan;  // the entropy-coded data of peer_file, then FF D9
  int count() const { return static_cast<int>(blocks.size() / 64); }
  int units_count() const { return static_cast<int>(units.size()); }
};

const Photo& GetPhoto() {
  static const Photo photo = [] {
    Photo p;
    const std::vector<uint8_t> file = kro_bench::ReadFile(kro_bench::DataPath("retina.jpg"));
    Reader r(file);
    jpeg_decompress_struct* d = &r.d;
    p.ncomp = d->num_components;
    std::vector<size_t> base(p.ncomp);
    std::vector<int> stride(p.ncomp);
    for (int ci = 0; ci < p.ncomp; ++ci) {
      const jpeg_component_info* comp = &d->comp_info[ci];
      stride[ci] = static_cast<int>(d->MCUs_per_row) * comp->h_samp_factor;
      base[ci] = p.padded.size();
      const int rows = static_cast<int>(d->total_iMCU_rows) * comp->v_samp_factor;
      p.padded.resize(p.padded.size() + size_t(64) * stride[ci] * rows, 0);
      for (JDIMENSION by = 0; by < comp->height_in_blocks; ++by) {
        JBLOCKARRAY row = (*d->mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(d), r.arrays[ci], by, 1, FALSE);
        const Kro16s* b = reinterpret_cast<const Kro16s*>(row[0]);
        p.blocks.insert(p.blocks.end(), b, b + 64 * comp->width_in_blocks);
        std::copy(b, b + 64 * comp->width_in_blocks, &p.padded[base[ci] + size_t(64) * stride[ci] * by]);
      }
    }
    for (JDIMENSION my = 0; my < d->total_iMCU_rows; ++my)
      for (JDIMENSION mx = 0; mx < d->MCUs_per_row; ++mx)
        for (int ci = 0; ci < p.ncomp; ++ci) {
          const jpeg_component_info* comp = &d->comp_info[ci];
          for (int y = 0; y < comp->v_samp_factor; ++y)
            for (int x = 0; x < comp->h_samp_factor; ++x) {
              const JDIMENSION bx = mx * comp->h_samp_factor + x, by = my * comp->v_samp_factor + y;
              const size_t off = base[ci] + 64 * (size_t(stride[ci]) * by + bx);
              if (bx >= comp->width_in_blocks || by >= comp->height_in_blocks)
                p.padded[off] = p.padded[p.units.back().offset];  // dummy block
              p.units.push_back({off, ci});
            }
        }
    p.peer_file = WriteCoefficients(d, r.arrays, p.dc, p.ac);
    size_t i = 2;  // past SOI: skip marker segments up to and including SOS
    for (;;) {
      const int m = p.peer_file[i + 1];
      i += 2 + (p.peer_file[i + 2] << 8 | p.peer_file[i + 3]);
      if (m == 0xDA) break;
    }
    p.peer_scan.assign(p.peer_file.begin() + i, p.peer_file.end());  // ends in FF D9
    return p;
  }();
  return photo;
}

// Library tables and states for the photo's two table pairs.
struct Tables {
  kro_test::EncTable edc[2], eac[2];
  kro_test::DecTable ddc[2], dac[2];
  kro_test::EncStateBuf es;
  kro_test::DecStateBuf ds;
  explicit Tables(const Photo& p)
      : edc{{p.dc[0].bits, p.dc[0].vals}, {p.dc[1].bits, p.dc[1].vals}},
        eac{{p.ac[0].bits, p.ac[0].vals}, {p.ac[1].bits, p.ac[1].vals}},
        ddc{{p.dc[0].bits, p.dc[0].vals}, {p.dc[1].bits, p.dc[1].vals}},
        dac{{p.ac[0].bits, p.ac[0].vals}, {p.ac[1].bits, p.ac[1].vals}} {}
};

// The whole scan: every block of every component with its table, then the flush.
// Returns the scan's length.
int EncodeAll(const Photo& p, Tables& t, std::vector<uint8_t>& out) {
  kroiEncodeHuffmanStateInit_JPEG_8u(t.es.get());
  int pos = 0;
  Kro16s last[4] = {};
  const int len = static_cast<int>(out.size());
  for (const Unit& u : p.units) {
    const int k = u.comp == 0 ? 0 : 1;
    kroiEncodeHuffman8x8_JPEG_16s1u_C1(&p.padded[u.offset], out.data(), len, &pos, &last[u.comp], t.edc[k].get(),
                                       t.eac[k].get(), t.es.get(), 0);
  }
  kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out.data(), len, &pos, nullptr, nullptr, nullptr, t.es.get(), 1);
  return pos;
}

void SetRate(benchmark::State& state, int blocks) {
  state.counters["blocks/s"] = benchmark::Counter(blocks, benchmark::Counter::kIsIterationInvariantRate);
}

// Both sides code the same interleaved scan with the same tables; the library's
// output is checked against the peer's once, outside the timing.
void BM_huffman_EncodeBaseline(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Tables t(p);
  std::vector<uint8_t> out(p.padded.size() * 4 + 1024);
  const int len = EncodeAll(p, t, out);
  if (len + 2 != static_cast<int>(p.peer_scan.size()) || !std::equal(out.begin(), out.begin() + len, p.peer_scan.begin()))
    state.SkipWithError("scan differs from the peer's");
  for (auto _ : state) benchmark::DoNotOptimize(EncodeAll(p, t, out));
  SetRate(state, p.units_count());
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

// Decoding the peer's scan into every block's own place in the padded coefficients,
// as libjpeg-turbo does into its coefficient arrays.
void BM_huffman_DecodeBaseline(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Tables t(p);
  std::vector<Kro16s> out(p.padded.size());
  const int len = static_cast<int>(p.peer_scan.size());
  for (auto _ : state) {
    kroiDecodeHuffmanStateInit_JPEG_8u(t.ds.get());
    int pos = 0, marker = 0;
    Kro16s last[4] = {};
    for (const Unit& u : p.units) {
      const int k = u.comp == 0 ? 0 : 1;
      kroiDecodeHuffman8x8_JPEG_1u16s_C1(p.peer_scan.data(), len, &pos, &out[u.offset], &last[u.comp], &marker,
                                         t.ddc[k].get(), t.dac[k].get(), t.ds.get());
    }
    benchmark::DoNotOptimize(out[0]);
  }
  if (out != p.padded) state.SkipWithError("decoded blocks differ");
  SetRate(state, p.units_count());
}

void BM_huffman_DecodeDirect(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Tables t(p);
  std::vector<Kro16s> out(p.padded.size());
  for (auto _ : state) {
    int bitpos = 0, marker = 0, nbits = 0;
    Kro32u acc = 0;
    Kro16s last[4] = {};
    for (const Unit& u : p.units) {
      const int k = u.comp == 0 ? 0 : 1;
      kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(p.peer_scan.data(), &bitpos, &out[u.offset], &last[u.comp], &marker,
                                                &acc, &nbits, t.ddc[k].get(), t.dac[k].get());
    }
    benchmark::DoNotOptimize(out[0]);
  }
  if (out != p.padded) state.SkipWithError("decoded blocks differ");
  SetRate(state, p.units_count());
}

// libjpeg-turbo on the same coefficients: whole-file calls, so its figures include
// writing or parsing the headers (about 600 bytes against 1 MB of scan) and setting
// up its coefficient arrays, as ours include clearing every block.
void BM_peer_huffman_EncodeBaseline(benchmark::State& state) {
  const Photo& p = GetPhoto();
  Reader r(p.peer_file);
  for (auto _ : state) benchmark::DoNotOptimize(WriteCoefficients(&r.d, r.arrays).size());
  SetRate(state, p.units_count());
}

void PeerRead(benchmark::State& state) {
  const Photo& p = GetPhoto();
  for (auto _ : state) {
    Reader r(p.peer_file);
    benchmark::DoNotOptimize(r.arrays);
  }
  SetRate(state, p.units_count());
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
