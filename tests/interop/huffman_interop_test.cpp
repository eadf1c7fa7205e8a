// SPDX-License-Identifier: BSD-3-Clause
// Baseline Huffman coding against libjpeg-turbo: real files and files it writes decode
// to its coefficients, re-encode to the same bytes, and statistics give the tables its
// optimize_coding chooses. Corrupted scans return documented statuses only.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>

#include "huffman_test_util.h"
#include "jpeg_oracle.h"
#include "test_util.h"

namespace {

using namespace kro_oracle;
using kro_test::DecStateBuf;
using kro_test::DecTable;
using kro_test::EncStateBuf;
using kro_test::EncTable;

struct Sample {
  std::string name;
  std::vector<uint8_t> file;
  bool optimized;
};

std::vector<Sample> BaselineCorpus() {
  std::vector<Sample> out;
  for (const char* f : {"rocket.jpg", "hubble_deep_field.jpg", "retina.jpg"})
    out.push_back({f, ReadFile(kro_test::DataPath(f)), false});
  const Image astronaut = ReadPnm(kro_test::DataPath("astronaut.ppm"));
  const Image coffee = ReadPnm(kro_test::DataPath("coffee.ppm"));
  const Image chelsea = ReadPnm(kro_test::DataPath("chelsea.ppm"));
  const Image camera = ReadPnm(kro_test::DataPath("camera.pgm"));
  struct Cfg {
    const char* name;
    const Image* img;
    WriteOptions o;
  };
  auto opt = [](int q, int h, int v, bool optimize, int rst) {
    WriteOptions o;
    o.quality = q;
    o.h0 = h;
    o.v0 = v;
    o.optimize = optimize;
    o.restart_mcus = rst;
    return o;
  };
  const Cfg cfgs[] = {
      {"astronaut 444 q75", &astronaut, opt(75, 1, 1, false, 0)},
      {"astronaut 422 q50 opt", &astronaut, opt(50, 2, 1, true, 0)},
      {"astronaut 420 q90 rst7", &astronaut, opt(90, 2, 2, false, 7)},
      {"coffee 444 q95 opt rst3", &coffee, opt(95, 1, 1, true, 3)},
      {"coffee 420 q100 opt", &coffee, opt(100, 2, 2, true, 0)},
      {"chelsea 420 q30", &chelsea, opt(30, 2, 2, false, 0)},
      {"chelsea 422 q85 opt rst1", &chelsea, opt(85, 2, 1, true, 1)},
      {"camera grey q75", &camera, opt(75, 1, 1, false, 0)},
      {"camera grey q100 opt rst5", &camera, opt(100, 1, 1, true, 5)},
  };
  for (const Cfg& c : cfgs) out.push_back({c.name, WriteJpeg(*c.img, c.o), c.o.optimize});
  return out;
}

struct ScanTables {
  std::map<int, std::unique_ptr<EncTable>> edc, eac;
  std::map<int, std::unique_ptr<DecTable>> ddc, dac;
  explicit ScanTables(const Scan& s) {
    for (size_t k = 0; k < s.comps.size(); ++k) {
      const HuffTable& dc = s.dc[s.dc_tbl[k]];
      const HuffTable& ac = s.ac[s.ac_tbl[k]];
      if (!edc.count(s.dc_tbl[k])) {
        edc[s.dc_tbl[k]] = std::make_unique<EncTable>(dc.bits, dc.vals);
        ddc[s.dc_tbl[k]] = std::make_unique<DecTable>(dc.bits, dc.vals);
      }
      if (!eac.count(s.ac_tbl[k])) {
        eac[s.ac_tbl[k]] = std::make_unique<EncTable>(ac.bits, ac.vals);
        dac[s.ac_tbl[k]] = std::make_unique<DecTable>(ac.bits, ac.vals);
      }
    }
  }
};

// Index just past the marker at or after p (a 0xFF not followed by 0x00).
size_t PastMarker(const std::vector<uint8_t>& d, size_t p) {
  while (p + 1 < d.size() && !(d[p] == 0xFF && d[p + 1] != 0 && d[p + 1] != 0xFF)) ++p;
  return p + 2;
}

TEST(HuffmanOracle, DecodeAndReencodeMatchLibjpeg) {
  size_t files = 0, blocks_checked = 0;
  for (const Sample& sm : BaselineCorpus()) {
    SCOPED_TRACE(sm.name);
    ASSERT_FALSE(sm.file.empty());
    const Parsed j = Parse(sm.file);
    ASSERT_TRUE(j.ok);
    ASSERT_FALSE(j.progressive);
    Coefficients co = ReadCoefficients(sm.file);
    ASSERT_TRUE(co.ok);
    for (const Scan& s : j.scans) {
      ScanTables t(s);
      const std::vector<BlockRef> blocks = ScanBlocks(j, s);
      // The scan alone, exactly sized, and for the Direct decoder with the marker
      // that follows it in the file.
      const std::vector<uint8_t> data(sm.file.begin() + long(s.begin), sm.file.begin() + long(s.end));
      std::vector<uint8_t> direct_src = data;
      direct_src.push_back(0xFF);
      direct_src.push_back(sm.file[s.end + 1]);

      DecStateBuf ds;
      std::vector<Kro16s> last(s.comps.size(), 0), dlast(s.comps.size(), 0);
      int pos = 0, marker = 0, dpos = 0, dmarker = 0, nvalid = 0;
      Kro32u acc = 0;
      Kro16s out[64], dout[64];
      for (const BlockRef& b : blocks) {
        if (b.restart_before) {
          if (marker == 0) pos = static_cast<int>(PastMarker(data, size_t(pos)));
          if (dmarker == 0) dpos = static_cast<int>(PastMarker(direct_src, size_t(dpos >> 3))) * 8;
          marker = dmarker = nvalid = 0;
          kroiDecodeHuffmanStateInit_JPEG_8u(ds.get());
          std::fill(last.begin(), last.end(), 0);
          std::fill(dlast.begin(), dlast.end(), 0);
        }
        const int k = b.scan_comp;
        ASSERT_EQ(0, kroiDecodeHuffman8x8_JPEG_1u16s_C1(data.data(), int(data.size()), &pos, out, &last[k], &marker,
                                                        t.ddc[s.dc_tbl[k]]->get(), t.dac[s.ac_tbl[k]]->get(),
                                                        ds.get()));
        ASSERT_EQ(0, kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(direct_src.data(), &dpos, dout, &dlast[k], &dmarker,
                                                               &acc, &nvalid, t.ddc[s.dc_tbl[k]]->get(),
                                                               t.dac[s.ac_tbl[k]]->get()));
        const int16_t* want = co.comps[b.comp].block(b.bx, b.by);
        ASSERT_EQ(0, memcmp(want, out, 128)) << b.comp << " " << b.bx << "," << b.by;
        ASSERT_EQ(0, memcmp(want, dout, 128)) << b.comp << " " << b.bx << "," << b.by;
        ++blocks_checked;
      }

      // Re-encode libjpeg-turbo's coefficients with the file's tables: the same bytes.
      std::vector<uint8_t> enc(data.size() + 1024);
      EncStateBuf es;
      int epos = 0, rst = 0;
      std::fill(last.begin(), last.end(), 0);
      for (const BlockRef& b : blocks) {
        if (b.restart_before) {
          kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, enc.data(), int(enc.size()), &epos, nullptr, nullptr, nullptr,
                                             es.get(), 1);
          enc[epos++] = 0xFF;
          enc[epos++] = static_cast<uint8_t>(0xD0 + (rst++ & 7));
          std::fill(last.begin(), last.end(), 0);
        }
        const int k = b.scan_comp;
        ASSERT_EQ(0, kroiEncodeHuffman8x8_JPEG_16s1u_C1(co.comps[b.comp].block(b.bx, b.by), enc.data(),
                                                        int(enc.size()), &epos, &last[k], t.edc[s.dc_tbl[k]]->get(),
                                                        t.eac[s.ac_tbl[k]]->get(), es.get(), 0));
      }
      kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, enc.data(), int(enc.size()), &epos, nullptr, nullptr, nullptr,
                                         es.get(), 1);
      enc.resize(size_t(epos));
      EXPECT_EQ(data.size(), enc.size());
      EXPECT_TRUE(data == enc) << "re-encoded scan differs";
    }
    ++files;
  }
  printf("[ oracle   ] %zu files, %zu blocks decoded by both decoders as libjpeg-turbo reads them\n", files,
         blocks_checked);
}

// Statistics and optimal tables against the tables libjpeg-turbo's optimize_coding
// writes for the same coefficients.
TEST(HuffmanOracle, OptimalTablesMatchOptimizeCoding) {
  int compared = 0;
  for (const Sample& sm : BaselineCorpus()) {
    if (!sm.optimized) continue;
    SCOPED_TRACE(sm.name);
    const Parsed j = Parse(sm.file);
    Coefficients co = ReadCoefficients(sm.file);
    ASSERT_TRUE(j.ok && co.ok);
    for (const Scan& s : j.scans) {
      std::map<int, std::vector<int>> dc, ac;
      for (size_t k = 0; k < s.comps.size(); ++k) {
        dc[s.dc_tbl[k]].assign(256, 0);
        ac[s.ac_tbl[k]].assign(256, 0);
      }
      std::vector<Kro16s> last(s.comps.size(), 0);
      for (const BlockRef& b : ScanBlocks(j, s)) {
        if (b.restart_before) std::fill(last.begin(), last.end(), 0);
        const int k = b.scan_comp;
        ASSERT_EQ(0, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(co.comps[b.comp].block(b.bx, b.by),
                                                             dc[s.dc_tbl[k]].data(), ac[s.ac_tbl[k]].data(),
                                                             &last[k]));
      }
      for (auto* m : {&dc, &ac}) {
        for (auto& [id, stats] : *m) {
          std::vector<uint8_t> bits(16), vals(256);
          ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats.data(), bits.data(), vals.data()));
          const HuffTable& want = (m == &dc ? s.dc : s.ac)[id];
          vals.resize(want.vals.size());
          EXPECT_EQ(want.bits, bits) << (m == &dc ? "DC " : "AC ") << id;
          EXPECT_EQ(want.vals, vals) << (m == &dc ? "DC " : "AC ") << id;
          ++compared;
        }
      }
    }
  }
  printf("[ oracle   ] %d optimal tables equal to libjpeg-turbo's\n", compared);
  EXPECT_GE(compared, 10);
}

// Corrupted scans: bit flips, cuts, inserted markers and 0xFF runs. Every call returns
// a documented status; the buffered decoder gets an exactly sized heap copy, so a read
// past srcLenBytes is caught by AddressSanitizer; the Direct decoder gets the same data
// ending in a marker, as its contract requires.
TEST(HuffmanOracle, CorruptedScansReturnDocumentedStatuses) {
  const Image astronaut = ReadPnm(kro_test::DataPath("astronaut.ppm"));
  Image small;
  small.width = small.height = 48;
  small.comps = 3;
  for (int y = 0; y < 48; ++y)
    for (int x = 0; x < 48 * 3; ++x) small.pixels.push_back(astronaut.pixels[(y + 100) * 512 * 3 + 600 + x]);
  WriteOptions o;
  o.h0 = o.v0 = 2;
  o.restart_mcus = 2;
  o.quality = 90;
  const std::set<int> allowed = {0, kroStatusError, kroStatusJPEGOutOfBuffer, kroStatusJPEGDataError};
  std::map<int, int> seen;

  // truncated.jpg ends inside its tables, before any scan: its bytes from the second
  // table on, read as a scan with the annex K tables, fail cleanly.
  const std::vector<uint8_t> cut = ReadFile(kro_test::DataPath("truncated.jpg"));
  ASSERT_FALSE(Parse(cut).ok);
  {
    DecTable dc(kro_test::kLumDcBits, kro_test::kLumDcVals), ac(kro_test::kLumAcBits, kro_test::kLumAcVals);
    std::unique_ptr<uint8_t[]> tail(new uint8_t[200]);
    std::copy(cut.end() - 200, cut.end(), tail.get());
    DecStateBuf ds;
    int pos = 0, marker = 0;
    Kro16s out[64], last = 0;
    KroStatus st = kroStatusOk;
    for (int b = 0; b < 100 && st == kroStatusOk; ++b) {
      st = kroiDecodeHuffman8x8_JPEG_1u16s_C1(tail.get(), 200, &pos, out, &last, &marker, dc.get(), ac.get(),
                                              ds.get());
      ASSERT_TRUE(allowed.count(st)) << st;
    }
    EXPECT_NE(kroStatusOk, st);
  }

  std::vector<Sample> sources = {{"small 420", WriteJpeg(small, o), false}};
  kro_test::Rng rng(77);
  for (const Sample& sm : sources) {
    const Parsed j = Parse(sm.file);
    ASSERT_TRUE(j.ok) << sm.name;
    const Scan& s = j.scans[0];
    ScanTables t(s);
    const std::vector<BlockRef> blocks = ScanBlocks(j, s);
    const std::vector<uint8_t> clean(sm.file.begin() + long(s.begin), sm.file.begin() + long(s.end));
    const int variants = 3000;
    for (int v = 0; v < variants; ++v) {
      std::vector<uint8_t> d = clean;
      switch (v % 4) {
        case 0:
          for (int i = 0, n = int(rng.Int(1, 8)); i < n && !d.empty(); ++i)
            d[size_t(rng.Int(0, long(d.size()) - 1))] ^= uint8_t(1 << rng.Int(0, 7));
          break;
        case 1:
          d.resize(size_t(rng.Int(0, long(d.size()))));
          break;
        case 2:
          d.insert(d.begin() + rng.Int(0, long(d.size())), {0xFF, uint8_t(rng.Int(0xC0, 0xFE))});
          break;
        default: {
          const size_t at = size_t(rng.Int(0, long(d.size())));
          const size_t n = std::min(d.size() - at, size_t(rng.Int(1, 40)));
          std::fill(d.begin() + long(at), d.begin() + long(at + n), 0xFF);
        }
      }
      // Heap copies of exactly the data (plus the terminating marker for Direct).
      std::unique_ptr<uint8_t[]> buf(new uint8_t[d.size() + 1]);
      std::copy(d.begin(), d.end(), buf.get());
      std::unique_ptr<uint8_t[]> dbuf(new uint8_t[d.size() + 2]);
      std::copy(d.begin(), d.end(), dbuf.get());
      dbuf[d.size()] = 0xFF;
      dbuf[d.size() + 1] = 0xD9;
      DecStateBuf ds;
      std::vector<Kro16s> last(s.comps.size(), 0);
      int pos = 0, marker = 0, dpos = 0, dmarker = 0, nvalid = 0;
      Kro32u acc = 0;
      Kro16s out[64];
      bool buffered_done = false, direct_done = false;
      for (const BlockRef& b : blocks) {
        const int k = b.scan_comp;
        const auto* dct = t.ddc[s.dc_tbl[k]]->get();
        const auto* act = t.dac[s.ac_tbl[k]]->get();
        if (!buffered_done) {
          if (marker >= 0xD0 && marker <= 0xD7) {
            marker = 0;
            kroiDecodeHuffmanStateInit_JPEG_8u(ds.get());
          }
          const KroStatus st = kroiDecodeHuffman8x8_JPEG_1u16s_C1(buf.get(), int(d.size()), &pos, out, &last[k],
                                                                  &marker, dct, act, ds.get());
          ASSERT_TRUE(allowed.count(st)) << st;
          ASSERT_TRUE(pos >= 0 && pos <= int(d.size()));
          ++seen[st];
          buffered_done = st == kroStatusJPEGOutOfBuffer;
        }
        if (!direct_done) {
          if (dmarker >= 0xD0 && dmarker <= 0xD7) dmarker = nvalid = 0;
          const KroStatus st = kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(dbuf.get(), &dpos, out, &last[k], &dmarker,
                                                                         &acc, &nvalid, dct, act);
          // A code read from the zero-padded last bits before a marker may be longer
          // than they are: the count left negative is refused by the next call (-5).
          ASSERT_TRUE(allowed.count(st) || st == kroStatusBadArgument) << st;
          ASSERT_LE(dpos, int(d.size() + 2) * 8);
          ++seen[st + 1000];
          direct_done = st != 0;
        }
      }
    }
  }
  for (auto [st, n] : seen) printf("[ corrupt  ] %s status %d: %d calls\n", st > 500 ? "direct  " : "buffered", st > 500 ? st - 1000 : st, n);
  EXPECT_GT(seen[kroStatusJPEGDataError], 0);
  EXPECT_GT(seen[kroStatusJPEGOutOfBuffer], 0);
}

}  // namespace
