// SPDX-License-Identifier: BSD-3-Clause
// Packet headers and bodies (T.800 B.9, B.10).
#include "codec/j2k_tier2.h"

#include <algorithm>

namespace krojcodec::j2k {
namespace {

int FloorLog2(uint32_t v) {
  int n = -1;
  while (v) {
    v >>= 1;
    ++n;
  }
  return n;
}
int BitLength(uint32_t v) { return FloorLog2(v) + 1; }

// Number of coding passes (T.800 table B.4).
void WritePassCount(HeaderBitWriter& bw, int n) {
  if (n == 1) {
    bw.Bit(0);
  } else if (n == 2) {
    bw.Bits(2, 2);
  } else if (n <= 5) {
    bw.Bits(3, 2);
    bw.Bits(static_cast<uint32_t>(n - 3), 2);
  } else if (n <= 36) {
    bw.Bits(15, 4);
    bw.Bits(static_cast<uint32_t>(n - 6), 5);
  } else {
    bw.Bits(511, 9);
    bw.Bits(static_cast<uint32_t>(n - 37), 7);
  }
}

int ReadPassCount(HeaderBitReader& br) {
  if (!br.Bit()) return 1;
  if (!br.Bit()) return 2;
  const int two = static_cast<int>(br.Bits(2));
  if (two < 3) return 3 + two;
  const int five = static_cast<int>(br.Bits(5));
  if (five < 31) return 6 + five;
  return 37 + static_cast<int>(br.Bits(7));
}

}  // namespace

int SegmentOfPass(int pass, int cb_style) {
  if (cb_style & kStyleTermAll) return pass;
  if (!(cb_style & kStyleBypass) || pass < 10) return 0;
  // After the first ten passes, each bit-plane has a raw segment (significance and
  // refinement) and an MQ segment (cleanup).
  const int k = pass - 10;
  return 1 + 2 * (k / 3) + (k % 3 == 2 ? 1 : 0);
}

int SegmentEnd(int pass, int cb_style) {
  if (cb_style & kStyleTermAll) return pass + 1;
  if (!(cb_style & kStyleBypass)) return kMaxPasses;
  if (pass < 10) return 10;
  const int k = pass - 10;
  return 10 + 3 * (k / 3) + (k % 3 == 2 ? 3 : 2);
}

void StartPacketEncoding(Tile* tile, const EncodedBlock* blocks, int layers) {
  for (TileComponent& tc : tile->comps)
    for (Resolution& res : tc.res)
      for (Precinct& p : res.precincts)
        for (int k = 0; k < p.nbands; ++k) {
          PrecinctBand& pb = p.bands[k];
          auto first_layer = [&](int i) {
            const EncodedBlock& eb = blocks[pb.blocks[i].index];
            for (int l = 0; l < layers; ++l)
              if (eb.layer_passes[l] > 0) return l;
            return layers;
          };
          auto zero_planes = [&](int i) { return blocks[pb.blocks[i].index].zero_planes; };
          const int n = static_cast<int>(pb.blocks.size());
          pb.inclusion.Reset(first_layer, n);
          pb.zero_planes.Reset(zero_planes, n);
          for (CodeBlock& cb : pb.blocks) cb.ResetTier2();
        }
}

size_t EncodePacket(Precinct* p, int layer, const EncodedBlock* blocks, bool write_body,
                    std::vector<uint8_t>* out) {
  const size_t start = out->size();
  auto passes_at = [&](const CodeBlock& cb, int l) {
    return l < 0 ? 0 : blocks[cb.index].layer_passes[l];
  };
  bool any = false;
  for (int k = 0; k < p->nbands && !any; ++k)
    for (const CodeBlock& cb : p->bands[k].blocks)
      if (passes_at(cb, layer) > passes_at(cb, layer - 1)) {
        any = true;
        break;
      }

  HeaderBitWriter bw(out);
  bw.Bit(any);
  size_t body = 0;
  if (any) {
    for (int k = 0; k < p->nbands; ++k) {
      PrecinctBand& pb = p->bands[k];
      for (int i = 0; i < static_cast<int>(pb.blocks.size()); ++i) {
        CodeBlock& cb = pb.blocks[i];
        const EncodedBlock& eb = blocks[cb.index];
        const int before = passes_at(cb, layer - 1);
        const int added = passes_at(cb, layer) - before;
        if (!cb.included) {
          pb.inclusion.Encode(bw, i, layer + 1);
          if (added == 0) continue;
          pb.zero_planes.Encode(bw, i, TagTree::kUnknown);
          cb.included = true;
        } else {
          bw.Bit(added > 0);
          if (added == 0) continue;
        }
        WritePassCount(bw, added);
        // One codeword segment: its length in lblock + floor(log2(added)) bits, after
        // raising lblock as far as the length needs (T.800 B.10.7.1).
        const uint32_t len = static_cast<uint32_t>(eb.length[before + added] - eb.length[before]);
        const int extra = FloorLog2(static_cast<uint32_t>(added));
        const int increase = std::max(0, BitLength(len) - extra - cb.lblock);
        for (int j = 0; j < increase; ++j) bw.Bit(1);
        bw.Bit(0);
        cb.lblock += increase;
        bw.Bits(len, cb.lblock + extra);
        cb.passes = before + added;
        body += len;
      }
    }
  }
  bw.Finish();
  if (write_body && body > 0) {
    for (int k = 0; k < p->nbands; ++k)
      for (const CodeBlock& cb : p->bands[k].blocks) {
        const EncodedBlock& eb = blocks[cb.index];
        const int before = passes_at(cb, layer - 1), after = passes_at(cb, layer);
        out->insert(out->end(), eb.data + eb.length[before], eb.data + eb.length[after]);
      }
  }
  return out->size() - start + (write_body ? 0 : body);
}

PacketStatus PacketReader::Read(Precinct* p, const Resolution& res, int cb_style, int layer,
                                bool sop, bool eph, const uint8_t* data, size_t size,
                                size_t* consumed, std::string* error) {
  size_t pos = 0;
  if (sop && size >= 6 && data[0] == 0xFF && data[1] == 0x91) pos = 6;
  HeaderBitReader br(data + pos, size - pos);
  pending_.clear();
  auto corrupt = [&](const char* what) {
    *error = what;
    return PacketStatus::kCorrupt;
  };
  if (br.Bit()) {
    for (int k = 0; k < p->nbands; ++k) {
      PrecinctBand& pb = p->bands[k];
      const int mb = res.bands[pb.band].mb;
      for (int i = 0; i < static_cast<int>(pb.blocks.size()); ++i) {
        CodeBlock& cb = pb.blocks[i];
        if (!cb.included) {
          if (!pb.inclusion.Decode(br, i, layer + 1)) continue;
          int t = 1;
          while (!pb.zero_planes.Decode(br, i, t)) {
            if (++t > mb + 1 || br.overrun()) return corrupt("corrupt packet header (bit-planes)");
          }
          cb.zero_planes = pb.zero_planes.Value(i);
          cb.included = true;
        } else if (!br.Bit()) {
          continue;
        }
        const int added = ReadPassCount(br);
        const int planes = mb - cb.zero_planes;
        if (planes < 1 || cb.passes + added > 3 * planes - 2)
          return corrupt("corrupt packet header (pass count)");
        while (br.Bit()) {
          if (++cb.lblock > 32 || br.overrun()) return corrupt("corrupt packet header (length)");
        }
        // The new passes, split at the ends of codeword segments, each piece with its
        // own length (T.800 B.10.7.2).
        int pass = cb.passes;
        const int end = cb.passes + added;
        while (pass < end) {
          const int take = std::min(end, SegmentEnd(pass, cb_style)) - pass;
          const int bits = cb.lblock + FloorLog2(static_cast<uint32_t>(take));
          if (bits > 31) return corrupt("corrupt packet header (length)");
          const int len = static_cast<int>(br.Bits(bits));
          pending_.push_back({&cb, cb.passes, SegmentOfPass(pass, cb_style), len});
          pass += take;
        }
        cb.passes = end;
      }
    }
  }
  br.Align();
  pos += br.consumed();
  size_t body = 0;
  for (const Pending& q : pending_) body += static_cast<size_t>(q.length);
  if (!br.overrun() && eph && size - pos >= 2 && data[pos] == 0xFF && data[pos + 1] == 0x92)
    pos += 2;
  if (br.overrun() || pos > size || body > size - pos) {
    for (const Pending& q : pending_) q.cb->passes = std::min(q.cb->passes, q.passes_before);
    return PacketStatus::kTruncated;
  }
  for (const Pending& q : pending_) {
    if (q.length > 0) {
      const int id = static_cast<int>(chunks_.size());
      chunks_.push_back({data + pos, q.length, q.segment, -1});
      if (q.cb->last_chunk >= 0)
        chunks_[q.cb->last_chunk].next = id;
      else
        q.cb->first_chunk = id;
      q.cb->last_chunk = id;
    }
    pos += static_cast<size_t>(q.length);
  }
  *consumed = pos;
  return PacketStatus::kOk;
}

}  // namespace krojcodec::j2k
