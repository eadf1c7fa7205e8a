// SPDX-License-Identifier: BSD-3-Clause
// Progressive Huffman coding against libjpeg-turbo: every scan of the progressive
// files it writes decodes, following the file's own scan headers, to the coefficients
// it reads; re-encoding gives the scan bytes back; statistics give its tables.
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "huffman_test_util.h"
#include "jpeg_oracle.h"
#include "test_util.h"

namespace {

using namespace kro_oracle;
using kro_test::DecTable;
using kro_test::EncTable;
using kro_test::ProgItem;
using kro_test::ScanSpec;

struct Sample {
  std::string name;
  std::vector<uint8_t> file;
};

std::vector<Sample> ProgressiveCorpus() {
  const Image astronaut = ReadPnm(kro_test::DataPath("astronaut.ppm"));
  const Image chelsea = ReadPnm(kro_test::DataPath("chelsea.ppm"));
  const Image camera = ReadPnm(kro_test::DataPath("camera.pgm"));
  auto simple = [](int q, int h, int v, int rst) {
    WriteOptions o;
    o.quality = q;
    o.h0 = h;
    o.v0 = v;
    o.progressive = true;
    o.restart_mcus = rst;
    return o;
  };
  // Custom scripts: spectral selection only, and deep successive approximation.
  WriteOptions spectral = simple(80, 2, 2, 0);
  spectral.progressive = false;
  spectral.script = {{3, {0, 1, 2, 0}, 0, 0, 0, 0}, {1, {0, 0, 0, 0}, 1, 5, 0, 0},
                     {1, {0, 0, 0, 0}, 6, 63, 0, 0}, {1, {1, 0, 0, 0}, 1, 63, 0, 0},
                     {1, {2, 0, 0, 0}, 1, 63, 0, 0}};
  WriteOptions deep = simple(95, 1, 1, 0);
  deep.progressive = false;
  // Bands start at Al 5 and 4 and are refined bit by bit down to 0.
  deep.script = {{1, {0, 0, 0, 0}, 0, 0, 0, 4}, {1, {0, 0, 0, 0}, 1, 9, 0, 5}, {1, {0, 0, 0, 0}, 10, 63, 0, 4},
                 {1, {0, 0, 0, 0}, 1, 9, 5, 4}, {1, {0, 0, 0, 0}, 1, 63, 4, 3}, {1, {0, 0, 0, 0}, 1, 63, 3, 2},
                 {1, {0, 0, 0, 0}, 1, 63, 2, 1}, {1, {0, 0, 0, 0}, 1, 63, 1, 0}, {1, {0, 0, 0, 0}, 0, 0, 4, 3},
                 {1, {0, 0, 0, 0}, 0, 0, 3, 2}, {1, {0, 0, 0, 0}, 0, 0, 2, 1}, {1, {0, 0, 0, 0}, 0, 0, 1, 0}};
  return {
      {"astronaut 420 simple", WriteJpeg(astronaut, simple(75, 2, 2, 0))},
      {"astronaut 444 simple q98 rst5", WriteJpeg(astronaut, simple(98, 1, 1, 5))},
      {"chelsea 422 simple rst2", WriteJpeg(chelsea, simple(60, 2, 1, 2))},
      {"chelsea 420 spectral", WriteJpeg(chelsea, spectral)},
      {"camera grey deep", WriteJpeg(camera, deep)},
      {"camera grey simple", WriteJpeg(camera, simple(90, 1, 1, 0))},
  };
}

// The items of one scan over a block store, with the scan's tables.
struct ScanRun {
  std::vector<ProgItem> items;
  std::map<int, std::unique_ptr<EncTable>> enc;
  std::map<int, std::unique_ptr<DecTable>> dec;
  ScanRun(const Parsed& j, const Scan& s, Coefficients& store) {
    const bool dc = s.ss == 0;
    for (size_t k = 0; k < s.comps.size(); ++k) {
      const int id = dc ? s.dc_tbl[k] : s.ac_tbl[k];
      const HuffTable& t = dc ? s.dc[id] : s.ac[id];
      if (!t.bits.empty() && !enc.count(id)) {
        enc[id] = std::make_unique<EncTable>(t.bits, t.vals);
        dec[id] = std::make_unique<DecTable>(t.bits, t.vals);
      }
    }
    for (const BlockRef& b : ScanBlocks(j, s)) {
      const int id = dc ? s.dc_tbl[b.scan_comp] : s.ac_tbl[b.scan_comp];
      const bool has = enc.count(id) > 0;
      items.push_back({store.comps[b.comp].block(b.bx, b.by), b.scan_comp, b.restart_before, id,
                       has ? enc[id]->get() : nullptr, has ? dec[id]->get() : nullptr});
    }
  }
};

TEST(ProgressiveOracle, ScansMatchLibjpeg) {
  size_t scans = 0, blocks = 0, tables = 0;
  for (const Sample& sm : ProgressiveCorpus()) {
    SCOPED_TRACE(sm.name);
    ASSERT_FALSE(sm.file.empty());
    const Parsed j = Parse(sm.file);
    ASSERT_TRUE(j.ok && j.progressive);
    Coefficients want = ReadCoefficients(sm.file);
    ASSERT_TRUE(want.ok);
    Coefficients got = want;
    for (auto& c : got.comps) std::fill(c.data.begin(), c.data.end(), 0);
    std::vector<uint8_t> rebuilt(sm.file.begin(), sm.file.begin() + long(j.scans[0].begin));
    for (size_t si = 0; si < j.scans.size(); ++si) {
      const Scan& s = j.scans[si];
      SCOPED_TRACE("scan " + std::to_string(si));
      const ScanSpec spec{s.ss, s.se, s.ah, s.al};
      const std::vector<uint8_t> data(sm.file.begin() + long(s.begin), sm.file.begin() + long(s.end));
      ScanRun dec_run(j, s, got);
      ASSERT_EQ(0, kro_test::ProgDecode(spec, data, dec_run.items));
      blocks += dec_run.items.size();

      // Re-encode libjpeg-turbo's final coefficients: scans carry only their bits.
      ScanRun enc_run(j, s, want);
      KroStatus st;
      const std::vector<uint8_t> again = kro_test::ProgEncode(spec, enc_run.items, &st);
      ASSERT_EQ(0, st);
      EXPECT_EQ(data.size(), again.size());
      EXPECT_TRUE(data == again) << "re-encoded scan differs";

      // Statistics of the same scan give the tables libjpeg-turbo chose for it.
      if (!(s.ss == 0 && s.ah > 0)) {
        std::vector<std::vector<int>> stats(4, std::vector<int>(256, 0));
        ASSERT_EQ(0, kro_test::ProgStats(spec, enc_run.items, stats));
        for (auto& [id, unused] : enc_run.enc) {
          std::vector<uint8_t> bits(16), vals(256);
          ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats[id].data(), bits.data(), vals.data()));
          const HuffTable& t = s.ss == 0 ? s.dc[id] : s.ac[id];
          vals.resize(t.vals.size());
          EXPECT_EQ(t.bits, bits) << "table " << id;
          EXPECT_EQ(t.vals, vals) << "table " << id;
          ++tables;
        }
      }
      // The file again, with this scan's bytes from the encoder.
      const size_t hdr_from = si == 0 ? j.scans[0].begin : j.scans[si - 1].end;
      if (si > 0) rebuilt.insert(rebuilt.end(), sm.file.begin() + long(hdr_from), sm.file.begin() + long(s.begin));
      rebuilt.insert(rebuilt.end(), again.begin(), again.end());
      ++scans;
    }
    rebuilt.insert(rebuilt.end(), sm.file.begin() + long(j.scans.back().end), sm.file.end());
    for (size_t c = 0; c < want.comps.size(); ++c) EXPECT_TRUE(want.comps[c].data == got.comps[c].data) << c;
    Coefficients back = ReadCoefficients(rebuilt);
    ASSERT_TRUE(back.ok);
    for (size_t c = 0; c < want.comps.size(); ++c) EXPECT_TRUE(want.comps[c].data == back.comps[c].data) << c;
  }
  printf("[ oracle   ] %zu progressive scans, %zu block decodes; %zu optimal tables equal to libjpeg-turbo's\n",
         scans, blocks, tables);
}

// Corrupted progressive scans: documented statuses only, no read past the data.
TEST(ProgressiveOracle, CorruptedScansReturnDocumentedStatuses) {
  const Image camera = ReadPnm(kro_test::DataPath("camera.pgm"));
  Image small;
  small.width = small.height = 40;
  small.comps = 1;
  for (int y = 0; y < 40; ++y)
    for (int x = 0; x < 40; ++x) small.pixels.push_back(camera.pixels[(y + 200) * 512 + 200 + x]);
  WriteOptions o;
  o.progressive = true;
  o.quality = 95;
  const std::vector<uint8_t> file = WriteJpeg(small, o);
  const Parsed j = Parse(file);
  ASSERT_TRUE(j.ok);
  Coefficients store = ReadCoefficients(file);
  kro_test::Rng rng(9);
  std::map<int, int> seen;
  for (int v = 0; v < 1500; ++v) {
    const Scan& s = j.scans[size_t(v) % j.scans.size()];
    std::vector<uint8_t> d(file.begin() + long(s.begin), file.begin() + long(s.end));
    switch (v % 3) {
      case 0:
        for (int i = 0, n = int(rng.Int(1, 6)); i < n && !d.empty(); ++i)
          d[size_t(rng.Int(0, long(d.size()) - 1))] ^= uint8_t(1 << rng.Int(0, 7));
        break;
      case 1:
        d.resize(size_t(rng.Int(1, long(std::max<size_t>(d.size(), 1)))));
        break;
      default:
        d.insert(d.begin() + rng.Int(0, long(d.size())), {0xFF, uint8_t(rng.Int(0xC0, 0xFE))});
    }
    ScanRun run(j, s, store);
    const KroStatus st = kro_test::ProgDecode({s.ss, s.se, s.ah, s.al}, d, run.items);
    ASSERT_TRUE(st == 0 || st == kroStatusJPEGOutOfBuffer || st == kroStatusJPEGDataError || st == kroStatusError)
        << st;
    ++seen[st];
  }
  for (auto [st, n] : seen) printf("[ corrupt  ] status %d: %d scans\n", st, n);
  EXPECT_GT(seen[kroStatusJPEGDataError] + seen[kroStatusJPEGOutOfBuffer], 0);
}

}  // namespace
