// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 code-stream syntax (T.800 annex A): the main and tile-part header
// parameters this codec reads and writes, the marker segment parser and writer, and
// the JP2 file wrapper (T.800 annex I).
#ifndef KROJCODEC_J2K_STREAM_H_
#define KROJCODEC_J2K_STREAM_H_

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

namespace krojcodec::j2k {

inline constexpr int kMaxLevels = 32;
inline constexpr int kMaxBands = 3 * kMaxLevels + 1;

// Code-block style bits of COD/COC (T.800 table A.19).
enum CodeBlockStyle : int {
  kStyleBypass = 1,
  kStyleReset = 2,
  kStyleTermAll = 4,
  kStyleCausal = 8,
  kStylePredictable = 16,
  kStyleSegSymbols = 32,
};

enum Progression : int { kLRCP = 0, kRLCP = 1, kRPCL = 2, kPCRL = 3, kCPRL = 4 };

// Coding style of one component: SPcod / SPcoc.
struct ComponentStyle {
  int levels = 5;
  int cbw_log2 = 6;  // code-block width 2^cbw_log2
  int cbh_log2 = 6;
  int cb_style = 0;  // CodeBlockStyle bits
  bool reversible = true;
  bool custom_precincts = false;
  uint8_t ppx[kMaxLevels + 1] = {};  // precinct exponents per resolution (15 by default)
  uint8_t ppy[kMaxLevels + 1] = {};
};

// Quantisation of one component: Sqcd / SPqcd.
struct ComponentQuant {
  int style = 0;  // 0 none, 1 scalar derived, 2 scalar expounded
  int guard_bits = 2;
  int count = 0;                   // entries present
  uint16_t value[kMaxBands] = {};  // exponent << 11 | mantissa (style 0: exponent only)
};

struct Component {
  int precision = 8;
  bool is_signed = false;
  int dx = 1, dy = 1;
};

// Everything the tile decoder needs from the headers of a single-tile code-stream.
struct Header {
  uint32_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;    // image area on the reference grid
  uint32_t tx0 = 0, ty0 = 0, tw = 0, th = 0;  // tile grid
  std::vector<Component> comps;
  int progression = kLRCP;
  int layers = 1;
  bool mct = false;
  bool sop = false, eph = false;
  std::vector<ComponentStyle> style;  // per component, after COC and tile-part overrides
  std::vector<ComponentQuant> quant;  // per component, after QCC and tile-part overrides
};

// Writes SOC, SIZ, COD and QCD. All components share the first style and quantisation.
void WriteMainHeader(const Header& h, std::vector<uint8_t>* out);
// Writes SOT (one tile-part of tile 0 holding body_length bytes of packets) and SOD.
void WriteTilePartHeader(size_t body_length, std::vector<uint8_t>* out);
void WriteEndOfCodestream(std::vector<uint8_t>* out);

// Parses a code-stream with one tile. On success fills *h and points *tile_data at the
// tile's packets (into the code-stream, or into *storage when the tile came in several
// tile-parts). Fails with a message for malformed or unsupported streams.
bool ParseCodestream(const uint8_t* data, size_t size, Header* h, const uint8_t** tile_data,
                     size_t* tile_size, std::vector<uint8_t>* storage, std::string* error);

// JP2 file wrapper: signature, file type, header (image header, colour) and code-stream.
// Bytes that the JP2 boxes add around a code-stream.
size_t Jp2Overhead();
void WrapJp2(const std::vector<uint8_t>& codestream, int width, int height, int channels,
             std::vector<uint8_t>* out);
// If data is a JP2 file, points *codestream at its contiguous code-stream box.
// Returns false with a message when it is a JP2 file without a usable code-stream;
// returns true and leaves the arguments as they are for a bare code-stream.
bool UnwrapJp2(const uint8_t** data, size_t* size, std::string* error);

}  // namespace krojcodec::j2k

#endif  // KROJCODEC_J2K_STREAM_H_
