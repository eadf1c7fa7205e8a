// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 encoder: one tile, LRCP, 64x64 code-blocks. Reversible (RCT + 5/3) or
// irreversible (ICT + 9/7 with scalar quantisation) coding through the library, then
// rate control over the code-blocks' truncation points and tier-2 packet assembly.
//
// Where the time goes (3 MP photo, one thread): lossless, nine tenths in the code-block
// coder (its passes about 55%, MQ coding about 40%), the rest in the transforms, the
// copies into and out of the coder and tier-2. At 20:1 the coder codes two planes fewer
// (see Run) and takes two fifths; deciding the exact truncation lengths by decoding
// takes as much again, the transforms and copies most of the rest; rate control and
// packet assembly stay near 2%.
#include <math.h>
#include <string.h>

#include <algorithm>
#include <limits>

#include "codec/j2k_codec.h"
#include "codec/j2k_rate.h"
#include "codec/j2k_stream.h"
#include "codec/j2k_tier2.h"
#include "codec/j2k_tile.h"
#include "kroj.h"

namespace krojcodec {
namespace {

using namespace j2k;

// The irreversible path carries samples in fixed point with this many fraction bits, so
// that the integer 9/7 transform, which truncates its results, loses nothing visible.
constexpr int kFracBits = 8;
constexpr int kBlockLog2 = 6;
constexpr int kBlockSize = 1 << kBlockLog2;
constexpr int kMaxLayers = 64;

bool Fail(std::string* error, const std::string& what) {
  *error = what;
  return false;
}

bool LibraryFailed(KroStatus st, const char* call, std::string* error) {
  if (st >= 0) return false;
  *error = std::string(call) + " failed with status " + std::to_string(static_cast<int>(st));
  return true;
}

// The step size nearest to delta that QCD can express: 2^(range - eps) (1 + mu / 2^11).
uint16_t ExpoundStep(double delta, int range) {
  int e = static_cast<int>(floor(log2(delta)));
  int mu = static_cast<int>(lround((delta / ldexp(1.0, e) - 1.0) * 2048.0));
  if (mu >= 2048) {
    mu = 0;
    ++e;
  }
  const int eps = std::clamp(range - e, 0, 31);
  return static_cast<uint16_t>(eps << 11 | mu);
}

// Squared-error weight of each component in the RGB image: the squared norms of the
// columns of the inverse component transform.
double ComponentWeight(int channels, bool reversible, int c) {
  if (channels == 1) return 1.0;
  if (reversible) return c == 0 ? 3.0 : 11.0 / 16.0;  // RCT: Y adds to R, G, B alike
  static const double kIct[3] = {3.0, 0.34413 * 0.34413 + 1.772 * 1.772,
                                 1.402 * 1.402 + 0.71414 * 0.71414};
  return kIct[c];
}

// Code-block coder results kept for rate control and packet assembly.
struct CodedBlock {
  size_t data = 0;   // offset of the coded bytes in the arena
  size_t first = 0;  // offset of length[0] in the per-pass arrays
  int passes = 0;
  int zero_planes = 0;
  int dropped = 0;  // lowest magnitude bit-planes not coded
};

class Encoder {
 public:
  Encoder(const Image& img, const J2kEncodeOptions& opt) : img_(img), opt_(opt) {}
  ~Encoder() {
    if (state_) kroiEncodeFree_JPEG2K(state_);
  }
  bool Run(std::vector<uint8_t>* out, std::string* error);

 private:
  void SetHeader();
  void LoadPlanes();
  bool Transform(std::string* error);
  bool SetGuardBits(std::string* error);
  template <class Visit>
  bool ForEachBlock(Visit visit);
  bool CodeBlocks(std::string* error);
  bool CodeOneBlock(int c, const Band& band, const j2k::CodeBlock& cb, double weight, int drop,
                    std::string* error);
  bool RecodeBlocksAtTheirEnd(const std::vector<int>& cut, bool all, bool* recoded,
                              std::string* error);
  bool AllocateLayers(size_t budget, std::string* error);
  size_t PacketBytes(int last_layer);
  void TightenFinalCuts();
  void SetLayer(const std::vector<int>& cut, int layer);
  void WritePackets(std::vector<uint8_t>* body);

  const Image& img_;
  const J2kEncodeOptions& opt_;
  Header header_;
  Tile tile_;
  int layers_ = 1;
  int drop_planes_ = 0;  // lowest bit-planes left uncoded at first (rate-targeted files)
  int recode_rounds_ = 0;
  std::vector<std::vector<int32_t>> planes_;
  KroiEncodeState_JPEG2K* state_ = nullptr;
  std::vector<uint8_t> arena_;
  uint8_t bytes_[8192];
  std::vector<CodedBlock> blocks_;
  std::vector<int> length_;        // per block: bytes after 0..passes passes
  std::vector<double> dist_;       // per block: weighted distortion reduction after 0..passes
  std::vector<int> layer_passes_;  // per block and layer
  std::vector<EncodedBlock> encoded_;
  std::vector<PacketId> order_;
  RateAllocator rate_;
};

void Encoder::SetHeader() {
  const int w = img_.width, h = img_.height;
  header_.x1 = static_cast<uint32_t>(w);
  header_.y1 = static_cast<uint32_t>(h);
  header_.tw = header_.x1;
  header_.th = header_.y1;
  header_.comps.assign(static_cast<size_t>(img_.channels), Component{});
  header_.progression = kLRCP;
  layers_ = std::clamp(opt_.layers, 1, kMaxLayers);
  header_.layers = layers_;
  header_.mct = img_.channels == 3;

  ComponentStyle s;
  // Every resolution keeps at least one sample in each direction.
  s.levels = std::clamp(opt_.levels, 0, kMaxLevels);
  while (s.levels > 0 && (std::min(w, h) >> s.levels) == 0) --s.levels;
  s.cbw_log2 = s.cbh_log2 = kBlockLog2;
  s.reversible = opt_.lossless;

  // Reversible: no quantisation, the exponents give the nominal ranges. Irreversible:
  // steps inverse to the square root of each sub-band's synthesis gain, so that a
  // quantisation error costs the same in every sub-band.
  ComponentQuant q;
  q.style = s.reversible ? 0 : 2;
  q.count = 3 * s.levels + 1;
  for (int b = 0; b < q.count; ++b) {
    const int orient = b == 0 ? kLL : (b - 1) % 3 + 1;
    const int level = b == 0 ? s.levels : s.levels - (b - 1) / 3;
    if (s.reversible) {
      q.value[b] = static_cast<uint16_t>((8 + OrientationGainBits(orient)) << 11);
    } else {
      const int range = 8 + OrientationGainBits(orient);
      q.value[b] = ExpoundStep(1.0 / sqrt(SynthesisGain(false, orient, level)), range);
    }
  }
  header_.style.assign(header_.comps.size(), s);
  header_.quant.assign(header_.comps.size(), q);
}

// Level shift and component transform into one 32-bit plane per component.
void Encoder::LoadPlanes() {
  const int w = img_.width, h = img_.height, nc = img_.channels;
  const int shift = opt_.lossless ? 0 : kFracBits;
  planes_.assign(static_cast<size_t>(nc), std::vector<int32_t>(static_cast<size_t>(w) * h));
  for (int y = 0; y < h; ++y) {
    const uint8_t* src = img_.row(y);
    for (int c = 0; c < nc; ++c) {
      int32_t* dst = planes_[c].data() + static_cast<size_t>(y) * w;
      for (int x = 0; x < w; ++x) dst[x] = (src[x * nc + c] - 128) * (1 << shift);
    }
  }
  if (nc == 3) {
    Kro32s* p[3] = {planes_[0].data(), planes_[1].data(), planes_[2].data()};
    const KroiSize size = {w, h};
    if (opt_.lossless)
      kroiRCTFwd_JPEG2K_32s_P3IR(p, w * 4, size);
    else
      kroiICTFwd_JPEG2K_32s_P3IR(p, w * 4, size);
  }
}

// Each level transforms the previous level's low-pass quadrant in place.
bool Encoder::Transform(std::string* error) {
  const int w = img_.width;
  for (size_t c = 0; c < planes_.size(); ++c) {
    const TileComponent& tc = tile_.comps[c];
    KroiRect full = {0, 0, tc.width(), tc.height()};
    int size = 0;
    if (opt_.lossless)
      kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(&full, &size);
    else
      kroiWTGetBufSize_D97_JPEG2K_32s_C1IR(&full, &size);
    std::vector<uint8_t> buffer(static_cast<size_t>(std::max(size, 1)));
    for (int r = tc.levels; r > 0; --r) {
      const Resolution& res = tc.res[r];
      KroiRect rect = {static_cast<int>(res.x0), static_cast<int>(res.y0), res.width(),
                       res.height()};
      const KroStatus st =
          opt_.lossless
              ? kroiWTFwd_B53_JPEG2K_32s_C1IR(planes_[c].data(), w * 4, &rect, buffer.data())
              : kroiWTFwd_D97_JPEG2K_32s_C1IR(planes_[c].data(), w * 4, &rect, buffer.data());
      if (LibraryFailed(st, "forward wavelet transform", error)) return false;
    }
  }
  return true;
}

// Two guard bits unless some sub-band's largest quantised magnitude needs more.
bool Encoder::SetGuardBits(std::string* error) {
  const int w = img_.width;
  int guard = 2;
  for (size_t c = 0; c < planes_.size(); ++c) {
    for (const Resolution& res : tile_.comps[c].res) {
      for (int k = 0; k < res.nbands; ++k) {
        const Band& b = res.bands[k];
        // The extremes rather than the largest magnitude: a loop that vectorises.
        int32_t lo = 0, hi = 0;
        for (int y = 0; y < b.height(); ++y) {
          const int32_t* row = planes_[c].data() + static_cast<size_t>(b.buf_y + y) * w + b.buf_x;
          for (int x = 0; x < b.width(); ++x) {
            lo = row[x] < lo ? row[x] : lo;
            hi = row[x] > hi ? row[x] : hi;
          }
        }
        const int64_t peak = std::max<int64_t>(hi, -int64_t{lo});
        const double q =
            opt_.lossless ? static_cast<double>(peak) : peak / ldexp(b.step, kFracBits);
        int bits = 0;
        while (bits < 40 && ldexp(1.0, bits) <= q) ++bits;
        const int eps = b.mb + 1 - header_.quant[c].guard_bits;
        guard = std::max(guard, bits - eps + 1);
      }
    }
  }
  if (guard > 7) return Fail(error, "sample range too large for the quantisation");
  for (ComponentQuant& q : header_.quant) q.guard_bits = guard;
  return BuildTile(header_, &tile_, error);
}

bool Encoder::CodeBlocks(std::string* error) {
  if (LibraryFailed(kroiEncodeInitAlloc_JPEG2K(&state_, KroiSize{kBlockSize, kBlockSize}),
                    "code-block encoder allocation", error))
    return false;
  blocks_.assign(static_cast<size_t>(tile_.num_blocks), CodedBlock{});
  arena_.reserve(img_.pixels.size() / (opt_.lossless ? 1 : 2) + 4096);
  return ForEachBlock([&](int c, const Band& band, const j2k::CodeBlock& cb, double weight) {
    return CodeOneBlock(c, band, cb, weight, drop_planes_, error);
  });
}

// Calls visit(component, band, code-block, distortion weight) for every code-block
// while it returns true.
template <class Visit>
bool Encoder::ForEachBlock(Visit visit) {
  for (size_t c = 0; c < tile_.comps.size(); ++c) {
    const TileComponent& tc = tile_.comps[c];
    const double cw = ComponentWeight(img_.channels, tc.reversible, static_cast<int>(c));
    for (const Resolution& res : tc.res) {
      for (const Precinct& p : res.precincts) {
        for (int k = 0; k < p.nbands; ++k) {
          const Band& band = res.bands[p.bands[k].band];
          const double weight =
              cw * band.step * band.step * SynthesisGain(tc.reversible, band.orient, band.level);
          for (const j2k::CodeBlock& cb : p.bands[k].blocks)
            if (!visit(static_cast<int>(c), band, cb, weight)) return false;
        }
      }
    }
  }
  return true;
}

// A block whose final cut took every coded pass may have wanted some of the planes left
// uncoded: code it again with all of them (its new bytes go to the end of the arena),
// and the caller allocates again. The new allocation may bring a few more blocks to
// their end; after four rounds, or when everything fits the budget (all), every block
// still short of planes is coded again, those without any coded pass included.
bool Encoder::RecodeBlocksAtTheirEnd(const std::vector<int>& cut, bool all, bool* recoded,
                                     std::string* error) {
  all = all || recode_rounds_ >= 4;
  *recoded = false;
  const bool ok =
      ForEachBlock([&](int c, const Band& band, const j2k::CodeBlock& cb, double weight) {
        const CodedBlock& b = blocks_[cb.index];
        if (b.dropped == 0 || (!all && (b.passes == 0 || cut[cb.index] < b.passes))) return true;
        *recoded = true;
        return CodeOneBlock(c, band, cb, weight, 0, error);
      });
  recode_rounds_ += *recoded;
  return ok;
}

// Tier-1 coding of one code-block: sign-magnitude words with the band's Mb magnitude
// bit-planes left-aligned (bits 30 down to 31 - Mb); on the irreversible path the bits
// below carry the fraction of |coefficient| / step, which the coder does not code but
// uses for its distortion estimates.
bool Encoder::CodeOneBlock(int c, const Band& band, const j2k::CodeBlock& cb, double weight,
                           int drop, std::string* error) {
  const int w = cb.width(), h = cb.height(), stride = img_.width;
  const int32_t* src = planes_[c].data() +
                       static_cast<size_t>(band.buf_y + cb.y0 - band.y0) * stride + band.buf_x +
                       (cb.x0 - band.x0);
  int32_t words[kBlockSize * kBlockSize];
  const int low_plane = 31 - band.mb;
  const double scale = opt_.lossless ? 0.0 : ldexp(1.0 / band.step, low_plane - kFracBits);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const int32_t v = src[static_cast<size_t>(y) * stride + x];
      const uint32_t a = static_cast<uint32_t>(v < 0 ? -int64_t{v} : v);
      uint32_t mag;
      if (opt_.lossless) {
        mag = a << low_plane;
      } else {
        mag = static_cast<uint32_t>(std::min(a * scale, 2147483647.0));
      }
      words[y * w + x] = static_cast<int32_t>(mag | (v < 0 ? 0x80000000u : 0));
    }
  }
  // Lossless coding makes the last plane exact, which flag 32 tells the distortion
  // estimates. The block's one segment ends with the plain flush: the shortest
  // termination saves about a byte per block but makes the coder offer its queue after
  // every decision, which cost a fifth of the encoding time. Dropped planes are simply
  // not coded: the coder stops drop planes early, and its distortions come in units of
  // the last plane it codes.
  const int coded_mb = std::max(std::min(band.mb, 1), band.mb - drop);
  int sf_bits = 0, passes = 0, segments = 0;
  KroStatus st = kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(
      words, w * 4, KroiSize{w, h}, state_, CoderSubband(band.orient), coded_mb, kroMQTermFlush,
      0, opt_.lossless ? 32 : 0, &sf_bits, &passes, &segments);
  if (LibraryFailed(st, "code-block encoder", error)) return false;

  CodedBlock& out = blocks_[cb.index];
  out.data = arena_.size();
  out.first = length_.size();
  out.passes = passes;
  out.zero_planes = std::min(31 - sf_bits, band.mb);
  out.dropped = band.mb - coded_mb;
  const double unit = ldexp(weight, 2 * out.dropped);
  // The bytes come through a scratch buffer: growing the arena by a whole request would
  // clear it first, which cost more than the copy.
  int not_finished = passes > 0;
  while (not_finished) {
    int len = static_cast<int>(sizeof(bytes_));
    st = kroiEncodeStoreBits_JPEG2K_1u(bytes_, &len, state_, &not_finished);
    if (LibraryFailed(st, "code-block byte output", error)) return false;
    arena_.insert(arena_.end(), bytes_, bytes_ + len);
  }
  const uint8_t* data = arena_.data() + out.data;
  length_.push_back(0);
  dist_.push_back(0.0);
  for (int j = 0; j < passes; ++j) {
    int rate = 0;
    double d = 0.0;
    kroiEncodeGetRate_JPEG2K(state_, j, &rate);
    kroiEncodeGetDist_JPEG2K(state_, j, &d);
    // A truncated segment need not end on 0xFF: the decoder reads 0xFF past the end.
    if (j + 1 < passes && rate > 0 && data[rate - 1] == 0xFF) --rate;
    length_.push_back(rate);
    dist_.push_back(d * unit);
  }
  // Keep the lengths non-decreasing after the trimming above.
  for (size_t j = length_.size() - 1; j > out.first + 1; --j)
    length_[j - 1] = std::min(length_[j - 1], length_[j]);
  return true;
}

// Layer l and every layer after it take cut[b] passes of block b.
void Encoder::SetLayer(const std::vector<int>& cut, int layer) {
  for (int b = 0; b < tile_.num_blocks; ++b)
    for (int k = layer; k < layers_; ++k)
      layer_passes_[static_cast<size_t>(b) * layers_ + k] = cut[b];
}

// Bytes of the packets of layers 0..last_layer with the current layer_passes_.
size_t Encoder::PacketBytes(int last_layer) {
  StartPacketEncoding(&tile_, encoded_.data(), layers_);
  std::vector<uint8_t> scratch;
  size_t total = 0;
  for (const PacketId& id : order_) {
    if (id.layer > last_layer) continue;
    scratch.clear();
    Precinct& p = tile_.comps[id.comp].res[id.res].precincts[id.precinct];
    total += EncodePacket(&p, id.layer, encoded_.data(), false, &scratch);
  }
  return total;
}

// Chooses, layer by layer, the passes of every code-block: layer budgets grow
// geometrically up to the whole budget; budget 0 means keep every pass in the last layer.
bool Encoder::AllocateLayers(size_t budget, std::string* error) {
  const int nb = tile_.num_blocks;
  rate_ = RateAllocator();
  layer_passes_.assign(static_cast<size_t>(nb) * layers_, 0);
  encoded_.assign(static_cast<size_t>(nb), EncodedBlock{});
  for (int b = 0; b < nb; ++b) {
    EncodedBlock& e = encoded_[b];
    e.data = arena_.data() + blocks_[b].data;
    e.length = length_.data() + blocks_[b].first;
    e.layer_passes = layer_passes_.data() + static_cast<size_t>(b) * layers_;
    e.zero_planes = blocks_[b].zero_planes;
    rate_.AddBlock(blocks_[b].passes, e.length, dist_.data() + blocks_[b].first);
  }
  if (!PacketOrder(tile_, layers_, kLRCP, &order_, error)) return false;

  std::vector<int> cut(static_cast<size_t>(nb));
  for (int b = 0; b < nb; ++b) cut[b] = blocks_[b].passes;
  SetLayer(cut, 0);
  const size_t everything = PacketBytes(layers_ - 1);
  const bool keep_all = budget == 0 || everything <= budget;
  const size_t top = keep_all ? everything : budget;
  const double step = layers_ > 1 ? std::min(1.0, 6.0 / (layers_ - 1)) : 1.0;
  double lambda = std::numeric_limits<double>::infinity();
  std::vector<int> floor_cut(static_cast<size_t>(nb), 0);  // what the previous layer took
  bool recoded = false;
  for (int l = 0; l < layers_; ++l) {
    if (l == layers_ - 1 && keep_all) {
      for (int b = 0; b < nb; ++b) cut[b] = blocks_[b].passes;
      if (!RecodeBlocksAtTheirEnd(cut, true, &recoded, error)) return false;
      if (recoded) return AllocateLayers(budget, error);
      SetLayer(cut, l);
      break;
    }
    const size_t target =
        static_cast<size_t>(static_cast<double>(top) * exp2(-(layers_ - 1 - l) * step));
    auto measure = [&]() {
      SetLayer(cut, l);
      return PacketBytes(l);
    };
    lambda = rate_.Search(target, lambda, [&](double t) {
      for (int b = 0; b < nb; ++b) cut[b] = std::max(floor_cut[b], rate_.Cut(b, t));
      return measure();
    });
    for (int b = 0; b < nb; ++b) cut[b] = std::max(floor_cut[b], rate_.Cut(b, lambda));
    rate_.Fill(target, &cut, measure);
    SetLayer(cut, l);
    if (l == layers_ - 1) {
      if (!RecodeBlocksAtTheirEnd(cut, false, &recoded, error)) return false;
      if (recoded) return AllocateLayers(budget, error);
    }
    if (l == layers_ - 1 && opt_.exact_truncation) {
      TightenFinalCuts();
      rate_.Fill(target, &cut, measure);  // spend what the shorter cuts freed
      SetLayer(cut, l);
    }
    floor_cut = cut;
  }
  return true;
}

// The library's truncation lengths are safe upper bounds: the coder's registers may hold
// bytes that the decoder does not need. The cuts of the last layer decide the size of
// the file; for each truncated block, find by decoding whether a prefix two or one byte
// shorter still decodes to the same coefficients (usually it does).
void Encoder::TightenFinalCuts() {
  int size = 0;
  kroiDecodeGetBufSize_JPEG2K(KroiSize{kBlockSize, kBlockSize}, &size);
  std::vector<uint8_t> state(static_cast<size_t>(size));
  auto* decoder = reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state.data());
  int32_t reference[kBlockSize * kBlockSize], trial[kBlockSize * kBlockSize];
  const size_t last = static_cast<size_t>(layers_) - 1;
  for (const TileComponent& tc : tile_.comps)
    for (const Resolution& res : tc.res)
      for (const Precinct& p : res.precincts)
        for (int k = 0; k < p.nbands; ++k) {
          const Band& band = res.bands[p.bands[k].band];
          for (const j2k::CodeBlock& cb : p.bands[k].blocks) {
            const CodedBlock& coded = blocks_[cb.index];
            const int* passes = layer_passes_.data() + static_cast<size_t>(cb.index) * layers_;
            const int n = passes[last];
            if (n == 0 || n == coded.passes) continue;
            int* length = length_.data() + coded.first;
            const int previous_layer_end = last > 0 ? length[passes[last - 1]] : 0;
            const uint8_t* data = arena_.data() + coded.data;
            const int w = cb.width(), h = cb.height();
            auto decode = [&](int bytes, int32_t* out) {
              kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
                  data, out, w * 4, KroiSize{w, h}, CoderSubband(band.orient),
                  band.mb - coded.zero_planes + 1, n, &bytes, 1, 262144, nullptr, decoder);
            };
            decode(length[n], reference);
            for (int shorter = length[n] - 2; shorter < length[n]; ++shorter) {
              if (shorter < previous_layer_end || (shorter > 0 && data[shorter - 1] == 0xFF))
                continue;
              decode(shorter, trial);
              if (memcmp(reference, trial, sizeof(int32_t) * w * h) == 0) {
                for (int j = n; j >= 0 && length[j] > shorter; --j) length[j] = shorter;
                break;
              }
            }
          }
        }
}

void Encoder::WritePackets(std::vector<uint8_t>* body) {
  StartPacketEncoding(&tile_, encoded_.data(), layers_);
  for (const PacketId& id : order_) {
    Precinct& p = tile_.comps[id.comp].res[id.res].precincts[id.precinct];
    EncodePacket(&p, id.layer, encoded_.data(), true, body);
  }
}

bool Encoder::Run(std::vector<uint8_t>* out, std::string* error) {
  if (img_.channels != 1 && img_.channels != 3)
    return Fail(error, "JPEG 2000 encoding takes grey or RGB images");
  if (img_.width < 1 || img_.height < 1 || int64_t{img_.width} * img_.height > (int64_t{1} << 28))
    return Fail(error, "image size out of range");
  if (img_.pixels.size() != img_.row_bytes() * img_.height)
    return Fail(error, "image buffer does not match its size");
  SetHeader();
  if (!BuildTile(header_, &tile_, error)) return false;
  LoadPlanes();
  // At a target rate the lowest bit-planes are rarely kept, and they are the costliest to
  // code: leave out some, fewer the more bits per sample the target allows (0.4 bits per
  // sample, 20:1 for RGB, drops two; a bit per sample or more drops none). The blocks that turn out to need them are coded
  // again with every plane.
  if (opt_.bits_per_pixel > 0) {
    const double per_sample = opt_.bits_per_pixel / img_.channels;
    drop_planes_ = static_cast<int>(std::clamp(floor(log2(1.6 / per_sample)), 0.0, 3.0));
  }
  if (!Transform(error) || !SetGuardBits(error) || !CodeBlocks(error)) return false;

  std::vector<uint8_t> cs;
  WriteMainHeader(header_, &cs);
  const size_t overhead = cs.size() + 14 + 2 + (opt_.jp2 ? Jp2Overhead() : 0);
  size_t budget = 0;
  if (opt_.bits_per_pixel > 0) {
    const double bytes = floor(opt_.bits_per_pixel * img_.width * img_.height / 8.0);
    budget = bytes > overhead + 1 ? static_cast<size_t>(bytes) - overhead : 1;
  }
  if (!AllocateLayers(budget, error)) return false;
  std::vector<uint8_t> body;
  body.reserve(budget ? budget : arena_.size() + 4096);
  WritePackets(&body);
  WriteTilePartHeader(body.size(), &cs);
  cs.insert(cs.end(), body.begin(), body.end());
  WriteEndOfCodestream(&cs);
  out->clear();
  if (opt_.jp2)
    WrapJp2(cs, img_.width, img_.height, img_.channels, out);
  else
    out->swap(cs);
  return true;
}

}  // namespace

bool EncodeJ2k(const Image& img, const J2kEncodeOptions& options, std::vector<uint8_t>* out,
               std::string* error) {
  Encoder enc(img, options);
  return enc.Run(out, error);
}

}  // namespace krojcodec
