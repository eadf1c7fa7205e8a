// SPDX-License-Identifier: BSD-3-Clause
// The geometry of one JPEG 2000 tile (T.800 annex B): tile components, resolutions,
// sub-bands, precincts and code-blocks, with the tier-2 state of every code-block and
// the order of the packets in each progression.
#ifndef KROJCODEC_J2K_TILE_H_
#define KROJCODEC_J2K_TILE_H_

#include <stdint.h>

#include <string>
#include <vector>

#include "codec/j2k_stream.h"
#include "codec/j2k_tagtree.h"

namespace krojcodec::j2k {

// Sub-band orientations in their order within a resolution (T.800 B.5).
enum Orientation : int { kLL = 0, kHL = 1, kLH = 2, kHH = 3 };

struct CodeBlock {
  int64_t x0, y0, x1, y1;  // sub-band coordinates
  int index;               // running number over the tile, for per-block coder data
  // Tier-2 state.
  int lblock;
  int passes;  // coding passes sent or received so far
  int zero_planes;
  bool included;
  // Decoder: the coded data received, a list of chunks (see Chunk).
  int first_chunk, last_chunk;

  int width() const { return static_cast<int>(x1 - x0); }
  int height() const { return static_cast<int>(y1 - y0); }
  void ResetTier2() {
    lblock = 3;
    passes = 0;
    zero_planes = 0;
    included = false;
    first_chunk = last_chunk = -1;
  }
};

// A piece of one codeword segment of a code-block, as one packet carried it.
struct Chunk {
  const uint8_t* data;
  int length;
  int segment;
  int next;  // next chunk of the same code-block, -1 at the end
};

struct PrecinctBand {
  int band = 0;  // index into Resolution::bands
  int ncbx = 0, ncby = 0;
  std::vector<CodeBlock> blocks;  // raster order
  TagTree inclusion, zero_planes;
};

struct Precinct {
  int nbands = 0;
  PrecinctBand bands[3];
  int64_t ref_x = 0, ref_y = 0;  // reference-grid point where position orders visit it
};

struct Band {
  int orient = kLL;
  int level = 0;             // decomposition level nb
  int64_t x0, y0, x1, y1;    // sub-band coordinates
  int buf_x = 0, buf_y = 0;  // where the band sits in the component's coefficient layout
  int mb = 0;                // magnitude bit-planes, guard bits included
  double step = 1.0;         // quantisation step (irreversible)
  int cbw_log2 = 6, cbh_log2 = 6;

  int width() const { return static_cast<int>(x1 - x0); }
  int height() const { return static_cast<int>(y1 - y0); }
};

struct Resolution {
  int64_t x0, y0, x1, y1;
  int ppx = 15, ppy = 15;
  int npx = 0, npy = 0;
  int nbands = 0;
  Band bands[3];
  std::vector<Precinct> precincts;

  int width() const { return static_cast<int>(x1 - x0); }
  int height() const { return static_cast<int>(y1 - y0); }
};

struct TileComponent {
  int64_t x0, y0, x1, y1;
  int levels = 0;
  bool reversible = true;
  int cb_style = 0;
  std::vector<Resolution> res;

  int width() const { return static_cast<int>(x1 - x0); }
  int height() const { return static_cast<int>(y1 - y0); }
};

struct Tile {
  std::vector<TileComponent> comps;
  int num_blocks = 0;
};

// Builds the structure of the only tile of an image described by h. The coefficients of
// a tile component sit in one plane in the layout the in-place wavelet transform leaves:
// each level's low-pass quadrant top left, its HL, LH and HH quadrants beside and below.
// Fails for parameters that do not describe a valid tile (too few step sizes, more
// magnitude bit-planes than a code-block can carry).
bool BuildTile(const Header& h, Tile* tile, std::string* error);

// Clears the tier-2 state of every code-block and tag tree (decoder side).
void ResetTier2(Tile* tile);

struct PacketId {
  int layer, res, comp, precinct;
};
// The tile's packets in the order of the progression (T.800 B.12). Fails when the
// stream would have an absurd number of packets.
bool PacketOrder(const Tile& tile, int layers, int progression, std::vector<PacketId>* order,
                 std::string* error);

// Bits of the nominal dynamic range gain of a sub-band (T.800 table E.1), added to the
// sample precision to give the sub-band's nominal range.
inline int OrientationGainBits(int orient) { return (orient & 1) + (orient >> 1); }

// The code-block coder's sub-band code of an orientation (it numbers LH before HL).
inline int CoderSubband(int orient) {
  constexpr int kCodes[4] = {0, 2, 1, 3};
  return kCodes[orient];
}

}  // namespace krojcodec::j2k

#endif  // KROJCODEC_J2K_TILE_H_
