// SPDX-License-Identifier: BSD-3-Clause
// Tile geometry (T.800 B.2 to B.7) and packet order (T.800 B.12).
#include "codec/j2k_tile.h"

#include <math.h>

#include <algorithm>
#include <array>

namespace krojcodec::j2k {
namespace {

// Limits that keep a hostile header from asking for absurd amounts of structure.
constexpr int64_t kMaxPrecincts = int64_t{1} << 22;
constexpr int64_t kMaxBlocks = int64_t{1} << 24;
constexpr int64_t kMaxPackets = int64_t{1} << 21;

int64_t CeilShift(int64_t a, int k) { return -((-a) >> k); }
int64_t FloorShift(int64_t a, int k) { return a >> k; }
int64_t CeilDiv(int64_t a, int64_t b) { return (a + b - 1) / b; }

bool Fail(std::string* error, const std::string& what) {
  *error = what;
  return false;
}

// Magnitude bit-planes and step size of a sub-band from the quantisation parameters
// (T.800 E.1): delta = 2^(R - eps) (1 + mu / 2^11), Mb = G + eps - 1, with the nominal
// range R the sample precision plus the sub-band's gain bits, for both filters.
bool SetQuantisation(const ComponentQuant& q, const ComponentStyle& s, int precision,
                     int band_index, Band* b, std::string* error) {
  int eps, mu;
  if (q.style == 1) {
    eps = (q.value[0] >> 11) - s.levels + b->level;
    mu = q.value[0] & 0x7FF;
  } else {
    if (band_index >= q.count) return Fail(error, "too few quantisation step sizes");
    eps = q.value[band_index] >> 11;
    mu = q.value[band_index] & 0x7FF;
  }
  if (eps < 0) return Fail(error, "invalid quantisation exponent");
  b->mb = q.guard_bits + eps - 1;
  if (b->mb > 30) return Fail(error, "more magnitude bit-planes than this decoder supports");
  const int range = precision + OrientationGainBits(b->orient);
  b->step = s.reversible ? 1.0 : ldexp(1.0 + mu / 2048.0, range - eps);
  return true;
}

// The code-blocks of one sub-band inside one precinct (T.800 B.6, B.7).
bool BuildPrecinctBand(const Band& band, int64_t px0, int64_t py0, int64_t px1, int64_t py1,
                       PrecinctBand* pb, Tile* tile, std::string* error) {
  const int64_t x0 = std::max(band.x0, px0), x1 = std::min(band.x1, px1);
  const int64_t y0 = std::max(band.y0, py0), y1 = std::min(band.y1, py1);
  if (x1 <= x0 || y1 <= y0) return true;
  const int cw = band.cbw_log2, ch = band.cbh_log2;
  const int64_t bx = FloorShift(x0, cw), by = FloorShift(y0, ch);
  const int64_t nx = CeilShift(x1, cw) - bx, ny = CeilShift(y1, ch) - by;
  if (tile->num_blocks + nx * ny > kMaxBlocks) return Fail(error, "too many code-blocks");
  pb->ncbx = static_cast<int>(nx);
  pb->ncby = static_cast<int>(ny);
  pb->blocks.resize(static_cast<size_t>(nx * ny));
  for (int64_t j = 0; j < ny; ++j) {
    for (int64_t i = 0; i < nx; ++i) {
      CodeBlock& cb = pb->blocks[static_cast<size_t>(j * nx + i)];
      cb.x0 = std::max(x0, (bx + i) << cw);
      cb.x1 = std::min(x1, (bx + i + 1) << cw);
      cb.y0 = std::max(y0, (by + j) << ch);
      cb.y1 = std::min(y1, (by + j + 1) << ch);
      cb.index = tile->num_blocks++;
      cb.ResetTier2();
    }
  }
  pb->inclusion.Init(pb->ncbx, pb->ncby);
  pb->zero_planes.Init(pb->ncbx, pb->ncby);
  return true;
}

bool BuildResolution(const Header& h, int c, int r, TileComponent* tc, Tile* tile,
                     int64_t* precinct_count, std::string* error) {
  const ComponentStyle& s = h.style[c];
  const int nl = s.levels;
  Resolution& res = tc->res[r];
  res.x0 = CeilShift(tc->x0, nl - r);
  res.y0 = CeilShift(tc->y0, nl - r);
  res.x1 = CeilShift(tc->x1, nl - r);
  res.y1 = CeilShift(tc->y1, nl - r);
  res.ppx = s.custom_precincts ? s.ppx[r] : 15;
  res.ppy = s.custom_precincts ? s.ppy[r] : 15;

  // Sub-bands: LL at the lowest resolution, HL, LH and HH at the others.
  res.nbands = r == 0 ? 1 : 3;
  const int level = r == 0 ? nl : nl - r + 1;
  for (int k = 0; k < res.nbands; ++k) {
    Band& b = res.bands[k];
    b.orient = r == 0 ? kLL : k + 1;
    b.level = level;
    const int64_t xo = (b.orient & 1) ? int64_t{1} << (level - 1) : 0;
    const int64_t yo = (b.orient >> 1) ? int64_t{1} << (level - 1) : 0;
    b.x0 = CeilShift(tc->x0 - xo, level);
    b.y0 = CeilShift(tc->y0 - yo, level);
    b.x1 = CeilShift(tc->x1 - xo, level);
    b.y1 = CeilShift(tc->y1 - yo, level);
    if (r > 0) {
      const Resolution& low = tc->res[r - 1];
      b.buf_x = (b.orient & 1) ? low.width() : 0;
      b.buf_y = (b.orient >> 1) ? low.height() : 0;
    }
    b.cbw_log2 = std::min(s.cbw_log2, r == 0 ? res.ppx : res.ppx - 1);
    b.cbh_log2 = std::min(s.cbh_log2, r == 0 ? res.ppy : res.ppy - 1);
    const int band_index = r == 0 ? 0 : 3 * (r - 1) + k + 1;
    if (!SetQuantisation(h.quant[c], s, h.comps[c].precision, band_index, &b, error)) return false;
  }

  // Precincts (T.800 B.6): a grid of 2^pp anchored at the origin of the resolution's
  // coordinates; in the sub-bands of r > 0 the grid is half as fine.
  if (res.x1 <= res.x0 || res.y1 <= res.y0) return true;
  const int64_t first_px = FloorShift(res.x0, res.ppx), first_py = FloorShift(res.y0, res.ppy);
  const int64_t npx = CeilShift(res.x1, res.ppx) - first_px;
  const int64_t npy = CeilShift(res.y1, res.ppy) - first_py;
  *precinct_count += npx * npy;
  if (*precinct_count > kMaxPrecincts) return Fail(error, "too many precincts");
  res.npx = static_cast<int>(npx);
  res.npy = static_cast<int>(npy);
  res.precincts.resize(static_cast<size_t>(npx * npy));
  const int shift = r == 0 ? 0 : 1;
  const Component& comp = h.comps[c];
  for (int64_t j = 0; j < npy; ++j) {
    for (int64_t i = 0; i < npx; ++i) {
      Precinct& p = res.precincts[static_cast<size_t>(j * npx + i)];
      const int64_t kx = first_px + i, ky = first_py + j;
      p.nbands = res.nbands;
      for (int k = 0; k < res.nbands; ++k) {
        p.bands[k].band = k;
        const int sx = res.ppx - shift, sy = res.ppy - shift;
        if (!BuildPrecinctBand(res.bands[k], kx << sx, ky << sy, (kx + 1) << sx, (ky + 1) << sy,
                               &p.bands[k], tile, error))
          return false;
      }
      // T.800 B.12.1.3: a precinct is visited where the position loops reach its top left
      // corner on the reference grid, or the tile's corner for the first row and column.
      p.ref_x = std::max<int64_t>(int64_t{h.x0}, (kx << (res.ppx + nl - r)) * comp.dx);
      p.ref_y = std::max<int64_t>(int64_t{h.y0}, (ky << (res.ppy + nl - r)) * comp.dy);
    }
  }
  return true;
}

}  // namespace

bool BuildTile(const Header& h, Tile* tile, std::string* error) {
  tile->comps.assign(h.comps.size(), TileComponent{});
  tile->num_blocks = 0;
  int64_t precincts = 0;
  for (size_t c = 0; c < h.comps.size(); ++c) {
    TileComponent& tc = tile->comps[c];
    const Component& comp = h.comps[c];
    const ComponentStyle& s = h.style[c];
    // One tile: the tile is the image area.
    tc.x0 = CeilDiv(h.x0, comp.dx);
    tc.y0 = CeilDiv(h.y0, comp.dy);
    tc.x1 = CeilDiv(h.x1, comp.dx);
    tc.y1 = CeilDiv(h.y1, comp.dy);
    tc.levels = s.levels;
    tc.reversible = s.reversible;
    tc.cb_style = s.cb_style;
    tc.res.assign(static_cast<size_t>(s.levels) + 1, Resolution{});
    for (int r = 0; r <= s.levels; ++r)
      if (!BuildResolution(h, static_cast<int>(c), r, &tc, tile, &precincts, error)) return false;
  }
  return true;
}

void ResetTier2(Tile* tile) {
  for (TileComponent& tc : tile->comps)
    for (Resolution& res : tc.res)
      for (Precinct& p : res.precincts)
        for (int k = 0; k < p.nbands; ++k) {
          PrecinctBand& pb = p.bands[k];
          for (CodeBlock& cb : pb.blocks) cb.ResetTier2();
          pb.inclusion.Reset();
          pb.zero_planes.Reset();
        }
}

bool PacketOrder(const Tile& tile, int layers, int progression, std::vector<PacketId>* order,
                 std::string* error) {
  int64_t total = 0;
  for (const TileComponent& tc : tile.comps)
    for (const Resolution& res : tc.res)
      total += static_cast<int64_t>(res.precincts.size()) * layers;
  if (total > kMaxPackets) return Fail(error, "too many packets");

  // Every packet gets a sort key from its progression's loop nest; precincts of one
  // resolution are in raster order, which is also their position order.
  struct Keyed {
    std::array<int64_t, 5> key;
    PacketId id;
  };
  std::vector<Keyed> keyed;
  keyed.reserve(static_cast<size_t>(total));
  for (int c = 0; c < static_cast<int>(tile.comps.size()); ++c) {
    const TileComponent& tc = tile.comps[c];
    for (int r = 0; r <= tc.levels; ++r) {
      const Resolution& res = tc.res[r];
      for (int p = 0; p < static_cast<int>(res.precincts.size()); ++p) {
        const int64_t y = res.precincts[p].ref_y, x = res.precincts[p].ref_x;
        for (int l = 0; l < layers; ++l) {
          std::array<int64_t, 5> k;
          switch (progression) {
            case kRLCP:
              k = {r, l, c, p, 0};
              break;
            case kRPCL:
              k = {r, y, x, c, l};
              break;
            case kPCRL:
              k = {y, x, c, r, l};
              break;
            case kCPRL:
              k = {c, y, x, r, l};
              break;
            default:
              k = {l, r, c, p, 0};
              break;
          }
          keyed.push_back({k, PacketId{l, r, c, p}});
        }
      }
    }
  }
  std::sort(keyed.begin(), keyed.end(),
            [](const Keyed& a, const Keyed& b) { return a.key < b.key; });
  order->resize(keyed.size());
  for (size_t i = 0; i < keyed.size(); ++i) (*order)[i] = keyed[i].id;
  return true;
}

}  // namespace krojcodec::j2k
