// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 decoder for single-tile code-streams: markers and packets are read here,
// code-blocks, wavelet and component transforms run through the library.
#include <math.h>
#include <string.h>

#include <algorithm>

#include "codec/j2k_codec.h"
#include "codec/j2k_stream.h"
#include "codec/j2k_tier2.h"
#include "codec/j2k_tile.h"
#include "kroj.h"

namespace krojcodec {
namespace {

using namespace j2k;

// Irreversible components are reconstructed in fixed point with this many fraction bits
// (the library's integer 9/7 transform truncates its results).
constexpr int kFracBits = 8;

bool Fail(std::string* error, const std::string& what) {
  *error = what;
  return false;
}

// Code-stream code-block style bits to the decoder's flags. The decoder also keeps the
// reconstruction bits below the last decoded plane (262144): with one more plane than
// coded, this gives the usual midpoint reconstruction.
int DecoderFlags(int cb_style) {
  int f = 262144;
  if (cb_style & kStyleCausal) f |= 1;
  if (cb_style & kStyleBypass) f |= 2;
  if (cb_style & kStyleTermAll) f |= 4;
  if (cb_style & kStyleReset) f |= 8;
  if (cb_style & kStyleSegSymbols) f |= 16;
  if (cb_style & kStylePredictable) f |= 1048576;
  return f;
}

class Decoder {
 public:
  explicit Decoder(const J2kDecodeOptions& options) : options_(options) {}
  ~Decoder() = default;
  bool Run(const uint8_t* data, size_t size, Image* img, std::string* error);

 private:
  bool CheckSupported(std::string* error) const;
  bool ReadPackets(const uint8_t* data, size_t size, std::string* error);
  bool DecodeBlocks(std::string* error);
  bool DecodeBlock(int c, const Band& band, const j2k::CodeBlock& cb, int flags,
                   std::string* error);
  bool InverseTransforms(std::string* error);
  void Output(Image* img) const;
  template <int kNc>
  void OutputUnsigned8(Image* img) const;

  J2kDecodeOptions options_;
  Header header_;
  Tile tile_;
  PacketReader packets_;
  std::vector<std::vector<int32_t>> planes_;
  std::vector<uint8_t> state_;
  std::vector<uint8_t> segment_data_{0};  // never empty: the decoder wants a pointer
};

bool Decoder::CheckSupported(std::string* error) const {
  const size_t nc = header_.comps.size();
  if (nc != 1 && nc != 3)
    return Fail(error, "only grey and three-component images are supported (" + std::to_string(nc) +
                           " components)");
  for (const Component& c : header_.comps) {
    if (c.dx != 1 || c.dy != 1) return Fail(error, "sub-sampled components are not supported");
    if (c.precision > 16) return Fail(error, "samples above 16 bits are not supported");
  }
  const int64_t w = int64_t{header_.x1} - header_.x0, h = int64_t{header_.y1} - header_.y0;
  const int64_t most = options_.max_samples;
  if (w > most || h > most || (w > 0 && h > most / static_cast<int64_t>(nc) / w))
    return Fail(error, "image too large (" + std::to_string(w) + " x " + std::to_string(h) + ")");
  if (header_.mct) {
    if (nc != 3) return Fail(error, "component transform on other than three components");
    const bool rev = header_.style[0].reversible;
    if (header_.style[1].reversible != rev || header_.style[2].reversible != rev)
      return Fail(error, "component transform over components with different filters");
  }
  return true;
}

bool Decoder::ReadPackets(const uint8_t* data, size_t size, std::string* error) {
  std::vector<PacketId> order;
  if (!PacketOrder(tile_, header_.layers, header_.progression, &order, error)) return false;
  size_t pos = 0;
  for (const PacketId& id : order) {
    if (pos >= size) break;  // a truncated stream: decode what arrived
    TileComponent& tc = tile_.comps[id.comp];
    const Resolution& res = tc.res[id.res];
    Precinct& p = tc.res[id.res].precincts[id.precinct];
    size_t used = 0;
    const PacketStatus st = packets_.Read(&p, res, tc.cb_style, id.layer, header_.sop, header_.eph,
                                          data + pos, size - pos, &used, error);
    if (st == PacketStatus::kCorrupt) return false;
    if (st == PacketStatus::kTruncated) break;
    pos += used;
  }
  return true;
}

// Decodes one code-block straight into its place in the component plane and
// dequantises it there.
bool Decoder::DecodeBlock(int c, const Band& band, const j2k::CodeBlock& cb, int flags,
                          std::string* error) {
  if (cb.passes == 0) return true;  // the plane is zero already
  const TileComponent& tc = tile_.comps[c];
  // The codeword segments back to back, with their lengths. Data that came in one
  // piece is read where it lies in the code-stream.
  const std::vector<Chunk>& chunks = packets_.chunks();
  int lengths[kMaxPasses] = {};
  const int segments = SegmentOfPass(cb.passes - 1, tc.cb_style) + 1;
  int64_t total = 0;
  for (int k = cb.first_chunk; k >= 0; k = chunks[k].next) {
    total += chunks[k].length;
    lengths[chunks[k].segment] += chunks[k].length;
  }
  if (total > INT32_MAX) return Fail(error, "code-block data too long");
  const uint8_t* src = segment_data_.data();
  if (cb.first_chunk >= 0 && cb.first_chunk == cb.last_chunk) {
    src = chunks[cb.first_chunk].data;
  } else if (total > 0) {
    segment_data_.resize(static_cast<size_t>(total));
    src = segment_data_.data();
    size_t at = 0;
    for (int k = cb.first_chunk; k >= 0; k = chunks[k].next) {
      memcpy(segment_data_.data() + at, chunks[k].data, static_cast<size_t>(chunks[k].length));
      at += static_cast<size_t>(chunks[k].length);
    }
  }

  const int stride = tc.width();
  int32_t* dst = planes_[c].data() + static_cast<size_t>(band.buf_y + cb.y0 - band.y0) * stride +
                 band.buf_x + (cb.x0 - band.x0);
  const int w = cb.width(), h = cb.height();
  // One plane more than coded: the decoder's midpoint half-bits land in bit 0.
  const int sf_bits = band.mb - cb.zero_planes + 1;
  const KroStatus st = kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
      src, dst, stride * 4, KroiSize{w, h}, CoderSubband(band.orient), sf_bits, cb.passes, lengths,
      segments, flags, nullptr, reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state_.data()));
  // Corrupt data that the termination checks catch keeps what was decoded before it.
  if (st < 0 && st != kroStatusJPEG2KCorruptCodeBlock) {
    *error = "code-block decoder failed with status " + std::to_string(static_cast<int>(st));
    return false;
  }

  // Sign-magnitude with one fraction bit to two's complement coefficients. The loops
  // have no branch on the data, so that they vectorise: the sign s (0 or -1) negates
  // by (v ^ s) - s, and the magnitude converts to double from a signed integer.
  const double scale = ldexp(band.step, kFracBits - 1);
  for (int y = 0; y < h; ++y) {
    int32_t* row = dst + static_cast<size_t>(y) * stride;
    if (tc.reversible) {
      for (int x = 0; x < w; ++x) {
        const int32_t s = row[x] >> 31;
        const int32_t v = (row[x] & 0x7FFFFFFF) >> 1;
        row[x] = (v ^ s) - s;
      }
    } else {
      for (int x = 0; x < w; ++x) {
        const int32_t s = row[x] >> 31;
        const double mag = static_cast<double>(row[x] & 0x7FFFFFFF);
        const int32_t v = static_cast<int32_t>(std::min(mag * scale + 0.5, 2147483647.0));
        row[x] = (v ^ s) - s;
      }
    }
  }
  return true;
}

bool Decoder::DecodeBlocks(std::string* error) {
  int max_w = 1, max_h = 1;
  for (const TileComponent& tc : tile_.comps)
    for (const Resolution& res : tc.res)
      for (int k = 0; k < res.nbands; ++k) {
        max_w = std::max(max_w, 1 << res.bands[k].cbw_log2);
        max_h = std::max(max_h, 1 << res.bands[k].cbh_log2);
      }
  int state_size = 0;
  kroiDecodeGetBufSize_JPEG2K(KroiSize{max_w, max_h}, &state_size);
  state_.assign(static_cast<size_t>(state_size), 0);
  for (size_t c = 0; c < tile_.comps.size(); ++c) {
    const TileComponent& tc = tile_.comps[c];
    planes_[c].assign(static_cast<size_t>(tc.width()) * tc.height(), 0);
    const int flags = DecoderFlags(tc.cb_style);
    for (const Resolution& res : tc.res)
      for (const Precinct& p : res.precincts)
        for (int k = 0; k < p.nbands; ++k)
          for (const j2k::CodeBlock& cb : p.bands[k].blocks)
            if (!DecodeBlock(static_cast<int>(c), res.bands[p.bands[k].band], cb, flags, error))
              return false;
  }
  return true;
}

bool Decoder::InverseTransforms(std::string* error) {
  for (size_t c = 0; c < tile_.comps.size(); ++c) {
    const TileComponent& tc = tile_.comps[c];
    KroiRect full = {static_cast<int>(tc.x0 & 1), static_cast<int>(tc.y0 & 1), tc.width(),
                     tc.height()};
    int size = 0;
    if (tc.reversible)
      kroiWTGetBufSize_B53_JPEG2K_32s_C1IR(&full, &size);
    else
      kroiWTGetBufSize_D97_JPEG2K_32s_C1IR(&full, &size);
    std::vector<uint8_t> buffer(static_cast<size_t>(std::max(size, 1)));
    for (int r = 1; r <= tc.levels; ++r) {
      const Resolution& res = tc.res[r];
      if (res.width() == 0 || res.height() == 0) continue;
      // Only the parity of the origin matters to the transform.
      KroiRect rect = {static_cast<int>(res.x0 & 1), static_cast<int>(res.y0 & 1), res.width(),
                       res.height()};
      const KroStatus st = tc.reversible
                               ? kroiWTInv_B53_JPEG2K_32s_C1IR(planes_[c].data(), tc.width() * 4,
                                                               &rect, buffer.data())
                               : kroiWTInv_D97_JPEG2K_32s_C1IR(planes_[c].data(), tc.width() * 4,
                                                               &rect, buffer.data());
      if (st < 0) return Fail(error, "inverse wavelet transform failed");
    }
  }
  if (header_.mct) {
    const TileComponent& tc = tile_.comps[0];
    Kro32s* p[3] = {planes_[0].data(), planes_[1].data(), planes_[2].data()};
    const KroiSize size = {tc.width(), tc.height()};
    const KroStatus st = tc.reversible ? kroiRCTInv_JPEG2K_32s_P3IR(p, tc.width() * 4, size)
                                       : kroiICTInv_JPEG2K_32s_P3IR(p, tc.width() * 4, size);
    if (st < 0) return Fail(error, "inverse component transform failed");
  }
  return true;
}

// Undoes the level shift and the fixed-point scale, and maps the samples to 8 bits.
void Decoder::Output(Image* img) const {
  const int nc = static_cast<int>(tile_.comps.size());
  img->width = tile_.comps[0].width();
  img->height = tile_.comps[0].height();
  img->channels = nc;
  img->pixels.resize(img->row_bytes() * img->height);
  bool unsigned8 = true;
  for (const Component& comp : header_.comps)
    unsigned8 = unsigned8 && comp.precision == 8 && !comp.is_signed;
  if (unsigned8) {
    if (nc == 3)
      OutputUnsigned8<3>(img);
    else
      OutputUnsigned8<1>(img);
    return;
  }
  for (int c = 0; c < nc; ++c) {
    const TileComponent& tc = tile_.comps[c];
    const Component& comp = header_.comps[c];
    const int frac = tc.reversible ? 0 : kFracBits;
    const int64_t round = frac ? int64_t{1} << (frac - 1) : 0;
    const int64_t offset = comp.is_signed ? 0 : int64_t{1} << (comp.precision - 1);
    const int64_t maxval = (int64_t{1} << comp.precision) - 1;
    const int64_t lo = comp.is_signed ? -(maxval + 1) / 2 : 0;
    const int64_t hi = comp.is_signed ? maxval / 2 : maxval;
    const int64_t to_unsigned = comp.is_signed ? (maxval + 1) / 2 : 0;
    for (int y = 0; y < img->height; ++y) {
      const int32_t* src = planes_[c].data() + static_cast<size_t>(y) * tc.width();
      uint8_t* dst = img->row(y) + c;
      for (int x = 0; x < img->width; ++x) {
        int64_t v = ((int64_t{src[x]} + round) >> frac) + offset;
        v = std::clamp(v, lo, hi) + to_unsigned;
        if (comp.precision >= 8)
          v >>= comp.precision - 8;
        else
          v = (v * 255 + maxval / 2) / maxval;
        dst[x * nc] = static_cast<uint8_t>(v);
      }
    }
  }
}

// The common case of Output: each row of each component rounded off, level shifted and
// clamped to 0..255 on its own (a loop that vectorises), then interleaved. Samples are
// first limited to +-2^30, which changes no result and keeps the rounding in 32 bits.
template <int kNc>
void Decoder::OutputUnsigned8(Image* img) const {
  const size_t w = static_cast<size_t>(img->width);
  std::vector<uint8_t> rows(w * kNc);
  constexpr int32_t kLimit = 1 << 30;
  for (int y = 0; y < img->height; ++y) {
    for (int c = 0; c < kNc; ++c) {
      const int frac = tile_.comps[c].reversible ? 0 : kFracBits;
      const int32_t round = frac ? 1 << (frac - 1) : 0;
      const int32_t* src = planes_[c].data() + y * w;
      uint8_t* out = kNc == 1 ? img->row(y) : rows.data() + c * w;
      for (size_t x = 0; x < w; ++x) {
        const int32_t v = std::min(std::max(src[x], -kLimit), kLimit);
        out[x] = static_cast<uint8_t>(std::min(std::max(((v + round) >> frac) + 128, 0), 255));
      }
    }
    if constexpr (kNc > 1) {
      uint8_t* dst = img->row(y);
      for (size_t x = 0; x < w; ++x)
        for (int c = 0; c < kNc; ++c) dst[x * kNc + c] = rows[c * w + x];
    }
  }
}

bool Decoder::Run(const uint8_t* data, size_t size, Image* img, std::string* error) {
  if (!data || size == 0) return Fail(error, "empty input");
  if (!UnwrapJp2(&data, &size, error)) return false;
  const uint8_t* tile_data = nullptr;
  size_t tile_size = 0;
  std::vector<uint8_t> storage;
  if (!ParseCodestream(data, size, &header_, &tile_data, &tile_size, &storage, error)) return false;
  if (!CheckSupported(error) || !BuildTile(header_, &tile_, error)) return false;
  if (!ReadPackets(tile_data, tile_size, error)) return false;
  planes_.resize(tile_.comps.size());
  if (!DecodeBlocks(error) || !InverseTransforms(error)) return false;
  Output(img);
  return true;
}

}  // namespace

bool DecodeJ2k(const uint8_t* data, size_t size, Image* img, std::string* error,
               const J2kDecodeOptions& options) {
  Decoder dec(options);
  return dec.Run(data, size, img, error);
}

}  // namespace krojcodec
