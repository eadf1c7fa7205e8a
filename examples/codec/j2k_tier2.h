// SPDX-License-Identifier: BSD-3-Clause
// Tier-2 coding (T.800 B.9, B.10): packet headers with their tag trees, inclusion,
// missing bit-planes, pass counts and segment lengths, followed by the packet bodies.
#ifndef KROJCODEC_J2K_TIER2_H_
#define KROJCODEC_J2K_TIER2_H_

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "codec/j2k_tile.h"

namespace krojcodec::j2k {

inline constexpr int kMaxPasses = 109;  // 3 * 37 - 2 for 37 magnitude bit-planes

// Codeword segments (T.800 D.4.1): which terminated segment holds a coding pass, and
// where that segment ends, for a code-block style.
int SegmentOfPass(int pass, int cb_style);
int SegmentEnd(int pass, int cb_style);

// What the packet writer knows of one code-block: its bytes form a single codeword
// segment, of which the first n passes take length[n] bytes.
struct EncodedBlock {
  const uint8_t* data = nullptr;
  const int* length = nullptr;        // length[0..passes]
  const int* layer_passes = nullptr;  // passes included up to each layer, non-decreasing
  int zero_planes = 0;
};

// Sets the tag trees and tier-2 state of every code-block for a pass over the packets.
void StartPacketEncoding(Tile* tile, const EncodedBlock* blocks, int layers);
// Appends the packet of a precinct at one layer: the header and, when write_body, the
// body. Returns the packet's total length (header and body) either way.
size_t EncodePacket(Precinct* p, int layer, const EncodedBlock* blocks, bool write_body,
                    std::vector<uint8_t>* out);

enum class PacketStatus { kOk, kTruncated, kCorrupt };

// Reads packets, collecting the code-blocks' chunks of coded data.
class PacketReader {
 public:
  // Reads the packet of precinct p (of the given resolution and component) at one
  // layer from data. On kOk, *consumed is its length. On kTruncated the stream ended
  // inside the packet and nothing of it was kept.
  PacketStatus Read(Precinct* p, const Resolution& res, int cb_style, int layer, bool sop, bool eph,
                    const uint8_t* data, size_t size, size_t* consumed, std::string* error);
  const std::vector<Chunk>& chunks() const { return chunks_; }
  void Clear() { chunks_.clear(); }

 private:
  struct Pending {
    CodeBlock* cb;
    int passes_before;
    int segment;
    int length;
  };
  std::vector<Chunk> chunks_;
  std::vector<Pending> pending_;
};

}  // namespace krojcodec::j2k

#endif  // KROJCODEC_J2K_TIER2_H_
