// SPDX-License-Identifier: BSD-3-Clause
// Tier-2 of the example JPEG 2000 codec where the interoperability tests rarely reach:
// header bytes after 0xFF, tag trees over odd grids, and packets with long pass counts,
// long segments and several layers read back exactly as written.
#include <gtest/gtest.h>
#include <vector>

#include "test_util.h"

#if defined(KROJ_HAVE_CODEC)
#include "codec/j2k_tagtree.h"
#include "codec/j2k_tier2.h"
#include "codec/j2k_tile.h"

namespace {

using namespace krojcodec::j2k;

TEST(J2kTier2, HeaderBitsAfter0xFFCarrySevenBits) {
  kro_test::Rng rng(7);
  for (int trial = 0; trial < 200; ++trial) {
    // Long runs of ones make 0xFF bytes; the run may end the header.
    std::vector<int> bits;
    const int n = static_cast<int>(rng.Int(1, 300));
    while (static_cast<int>(bits.size()) < n) {
      const int run = static_cast<int>(rng.Int(1, 20));
      const int value = static_cast<int>(rng.Int(0, 3) > 0);
      for (int i = 0; i < run; ++i) bits.push_back(value);
    }
    std::vector<uint8_t> bytes;
    HeaderBitWriter bw(&bytes);
    for (int b : bits) bw.Bit(b);
    bw.Finish();
    ASSERT_NE(bytes.back(), 0xFF);
    for (size_t i = 0; i + 1 < bytes.size(); ++i)
      if (bytes[i] == 0xFF) ASSERT_LT(bytes[i + 1], 0x80) << "byte " << i;
    bytes.push_back(0xAB);  // the packet body follows
    HeaderBitReader br(bytes.data(), bytes.size());
    for (size_t i = 0; i < bits.size(); ++i) ASSERT_EQ(br.Bit(), bits[i]) << "bit " << i;
    br.Align();
    EXPECT_EQ(br.consumed(), bytes.size() - 1);
    EXPECT_FALSE(br.overrun());
  }
}

// Values revealed layer by layer (inclusion) and in full (missing bit-planes), with
// the decoder asking the same questions in the same order as the encoder answered them.
TEST(J2kTier2, TagTreesReadBackWhatWasWritten) {
  kro_test::Rng rng(11);
  for (int w = 1; w <= 7; ++w) {
    for (int h = 1; h <= 5; ++h) {
      std::vector<int> values(static_cast<size_t>(w * h));
      for (int& v : values) v = static_cast<int>(rng.Int(0, 9));
      TagTree enc, dec;
      enc.Init(w, h);
      dec.Init(w, h);
      enc.Reset([&](int i) { return values[i]; }, w * h);
      dec.Reset();
      std::vector<uint8_t> bytes;
      HeaderBitWriter bw(&bytes);
      for (int t = 1; t <= 10; ++t)
        for (int i = 0; i < w * h; ++i)
          if (values[i] >= t - 1) enc.Encode(bw, i, t);  // as inclusion: until included
      for (int i = 0; i < w * h; ++i) enc.Encode(bw, i, TagTree::kUnknown);
      bw.Finish();
      HeaderBitReader br(bytes.data(), bytes.size());
      for (int t = 1; t <= 10; ++t)
        for (int i = 0; i < w * h; ++i)
          if (values[i] >= t - 1) ASSERT_EQ(dec.Decode(br, i, t), values[i] < t) << w << "x" << h;
      for (int i = 0; i < w * h; ++i) {
        int t = 1;
        while (!dec.Decode(br, i, t)) ++t;
        ASSERT_EQ(dec.Value(i), values[i]);
      }
      EXPECT_FALSE(br.overrun());
    }
  }
}

// Packets of a small tile with deep sub-bands: pass counts up to 61, segment lengths
// that make lblock grow, blocks joining in later layers and blocks never included.
TEST(J2kTier2, PacketsReadBackWhatWasWritten) {
  Header h;
  h.x1 = 150;
  h.y1 = 90;
  h.tw = h.x1;
  h.th = h.y1;
  h.comps.resize(1);
  h.layers = 4;
  ComponentStyle s;
  s.levels = 2;
  s.cbw_log2 = 5;
  s.cbh_log2 = 4;
  ComponentQuant q;
  q.count = 3 * s.levels + 1;
  for (int b = 0; b < q.count; ++b) q.value[b] = 20 << 11;  // 21 magnitude bit-planes
  h.style = {s};
  h.quant = {q};
  Tile tile;
  std::string error;
  ASSERT_TRUE(BuildTile(h, &tile, &error)) << error;

  kro_test::Rng rng(3);
  const int nb = tile.num_blocks;
  std::vector<EncodedBlock> blocks(static_cast<size_t>(nb));
  std::vector<std::vector<int>> lengths(nb), layers(nb);
  std::vector<std::vector<uint8_t>> data(nb);
  for (int b = 0; b < nb; ++b) {
    const int zero_planes = static_cast<int>(rng.Int(0, 20));
    const int passes =
        rng.Int(0, 4) == 0 ? 0 : static_cast<int>(rng.Int(1, 3 * (21 - zero_planes) - 2));
    lengths[b].push_back(0);
    for (int j = 0; j < passes; ++j)
      lengths[b].push_back(lengths[b].back() + static_cast<int>(rng.Int(0, 3000)));
    data[b].resize(static_cast<size_t>(lengths[b].back()));
    for (uint8_t& v : data[b]) v = static_cast<uint8_t>(rng.Int(0, 255));
    int cut = 0;
    for (int l = 0; l < h.layers; ++l) {
      cut = l == h.layers - 1 || b % 3 == 0 ? passes : static_cast<int>(rng.Int(cut, passes));
      layers[b].push_back(cut);
    }
    blocks[b] = {data[b].data(), lengths[b].data(), layers[b].data(), zero_planes};
  }
  std::vector<PacketId> order;
  ASSERT_TRUE(PacketOrder(tile, h.layers, kLRCP, &order, &error));
  // Measuring and writing passes agree packet by packet.
  std::vector<size_t> measured;
  std::vector<uint8_t> stream;
  StartPacketEncoding(&tile, blocks.data(), h.layers);
  for (const PacketId& id : order) {
    Precinct& p = tile.comps[0].res[id.res].precincts[id.precinct];
    measured.push_back(EncodePacket(&p, id.layer, blocks.data(), false, &stream));
    stream.clear();
  }
  StartPacketEncoding(&tile, blocks.data(), h.layers);
  for (size_t i = 0; i < order.size(); ++i) {
    Precinct& p = tile.comps[0].res[order[i].res].precincts[order[i].precinct];
    ASSERT_EQ(EncodePacket(&p, order[i].layer, blocks.data(), true, &stream), measured[i]);
  }

  ResetTier2(&tile);
  PacketReader reader;
  size_t pos = 0;
  for (const PacketId& id : order) {
    const Resolution& res = tile.comps[0].res[id.res];
    Precinct& p = tile.comps[0].res[id.res].precincts[id.precinct];
    size_t used = 0;
    ASSERT_EQ(reader.Read(&p, res, 0, id.layer, false, false, stream.data() + pos,
                          stream.size() - pos, &used, &error),
              PacketStatus::kOk)
        << error;
    pos += used;
  }
  EXPECT_EQ(pos, stream.size());
  for (const Resolution& res : tile.comps[0].res)
    for (const Precinct& p : res.precincts)
      for (int k = 0; k < p.nbands; ++k)
        for (const CodeBlock& cb : p.bands[k].blocks) {
          const int b = cb.index;
          ASSERT_EQ(cb.passes, layers[b].back()) << "block " << b;
          if (cb.passes == 0) continue;
          EXPECT_EQ(cb.zero_planes, blocks[b].zero_planes);
          std::vector<uint8_t> got;
          for (int c = cb.first_chunk; c >= 0; c = reader.chunks()[c].next)
            got.insert(got.end(), reader.chunks()[c].data,
                       reader.chunks()[c].data + reader.chunks()[c].length);
          EXPECT_TRUE(got == data[b]) << "block " << b;
        }
}

}  // namespace

#endif
