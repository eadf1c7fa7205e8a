// SPDX-License-Identifier: BSD-3-Clause
// JPEG 2000 marker segments (T.800 annex A) and the JP2 boxes (T.800 annex I).
#include "codec/j2k_stream.h"

#include <string.h>

#include <algorithm>
#include <optional>

namespace krojcodec::j2k {
namespace {

enum Marker : uint16_t {
  kSOC = 0xFF4F,
  kCAP = 0xFF50,
  kSIZ = 0xFF51,
  kCOD = 0xFF52,
  kCOC = 0xFF53,
  kQCD = 0xFF5C,
  kQCC = 0xFF5D,
  kRGN = 0xFF5E,
  kPOC = 0xFF5F,
  kPPM = 0xFF60,
  kPPT = 0xFF61,
  kSOT = 0xFF90,
  kSOD = 0xFF93,
  kEOC = 0xFFD9,
};

void Put8(std::vector<uint8_t>* o, uint32_t v) { o->push_back(static_cast<uint8_t>(v)); }
void Put16(std::vector<uint8_t>* o, uint32_t v) {
  Put8(o, v >> 8);
  Put8(o, v);
}
void Put32(std::vector<uint8_t>* o, uint32_t v) {
  Put16(o, v >> 16);
  Put16(o, v);
}

// Big-endian reader over one buffer; reading past the end sets a sticky failure flag
// and yields zeros, so a parser checks once per segment.
class Reader {
 public:
  Reader(const uint8_t* p, size_t n) : p_(p), n_(n) {}
  uint32_t U8() {
    if (pos_ >= n_) {
      bad_ = true;
      return 0;
    }
    return p_[pos_++];
  }
  uint32_t U16() { return U8() << 8 | U8(); }
  uint32_t U32() { return U16() << 16 | U16(); }
  void Skip(size_t k) {
    if (k > n_ - std::min(pos_, n_)) bad_ = true;
    pos_ = std::min(n_, pos_ + k);
  }
  size_t pos() const { return pos_; }
  size_t left() const { return n_ - pos_; }
  bool bad() const { return bad_; }

 private:
  const uint8_t* p_;
  size_t n_;
  size_t pos_ = 0;
  bool bad_ = false;
};

bool Fail(std::string* error, const std::string& what) {
  *error = what;
  return false;
}

// Parameters of COD or COC other than the global ones of COD.
bool ParseComponentStyle(Reader& r, bool precincts, ComponentStyle* s, std::string* error) {
  s->levels = static_cast<int>(r.U8());
  s->cbw_log2 = static_cast<int>(r.U8()) + 2;
  s->cbh_log2 = static_cast<int>(r.U8()) + 2;
  s->cb_style = static_cast<int>(r.U8());
  const uint32_t transform = r.U8();
  if (r.bad()) return Fail(error, "truncated coding style segment");
  if (s->levels > kMaxLevels) return Fail(error, "more than 32 decomposition levels");
  if (s->cbw_log2 > 10 || s->cbh_log2 > 10 || s->cbw_log2 + s->cbh_log2 > 12)
    return Fail(error, "invalid code-block size");
  if (s->cb_style & ~0x3F)
    return Fail(error, "unsupported code-block style (high-throughput or extended coding)");
  if (transform > 1) return Fail(error, "unsupported wavelet filter");
  s->reversible = transform == 1;
  s->custom_precincts = precincts;
  for (int i = 0; i <= s->levels; ++i) {
    const uint32_t pp = precincts ? r.U8() : 0xFF;
    s->ppx[i] = static_cast<uint8_t>(pp & 15);
    s->ppy[i] = static_cast<uint8_t>(pp >> 4);
    if (i > 0 && (s->ppx[i] == 0 || s->ppy[i] == 0)) return Fail(error, "invalid precinct size");
  }
  if (r.bad()) return Fail(error, "truncated precinct sizes");
  return true;
}

bool ParseQuant(Reader& r, size_t length, ComponentQuant* q, std::string* error) {
  const uint32_t s = r.U8();
  q->style = static_cast<int>(s & 31);
  q->guard_bits = static_cast<int>(s >> 5);
  if (length < 1) return Fail(error, "truncated quantisation segment");
  const size_t rest = length - 1;
  size_t count;
  if (q->style == 0) {
    count = rest;
  } else if (q->style == 1) {
    count = 1;
  } else if (q->style == 2) {
    count = rest / 2;
  } else {
    return Fail(error, "unsupported quantisation style");
  }
  if (count < 1 || count > static_cast<size_t>(kMaxBands))
    return Fail(error, "invalid number of quantisation step sizes");
  q->count = static_cast<int>(count);
  for (size_t i = 0; i < count; ++i)
    q->value[i] = static_cast<uint16_t>(q->style == 0 ? (r.U8() >> 3) << 11 : r.U16());
  if (r.bad()) return Fail(error, "truncated quantisation segment");
  return true;
}

bool ParseSiz(Reader& r, Header* h, std::string* error) {
  const uint32_t rsiz = r.U16();
  h->x1 = r.U32();
  h->y1 = r.U32();
  h->x0 = r.U32();
  h->y0 = r.U32();
  h->tw = r.U32();
  h->th = r.U32();
  h->tx0 = r.U32();
  h->ty0 = r.U32();
  const uint32_t csiz = r.U16();
  if (r.bad()) return Fail(error, "truncated SIZ segment");
  if (rsiz & 0xC000)
    return Fail(error, "code-stream uses extensions this decoder does not support");
  if (csiz < 1 || csiz > 16384) return Fail(error, "invalid number of components");
  if (h->x1 <= h->x0 || h->y1 <= h->y0) return Fail(error, "empty image area");
  if (h->tw == 0 || h->th == 0 || h->tx0 > h->x0 || h->ty0 > h->y0 ||
      uint64_t{h->tx0} + h->tw <= h->x0 || uint64_t{h->ty0} + h->th <= h->y0)
    return Fail(error, "invalid tile grid");
  const uint64_t tiles_x = (uint64_t{h->x1} - h->tx0 + h->tw - 1) / h->tw;
  const uint64_t tiles_y = (uint64_t{h->y1} - h->ty0 + h->th - 1) / h->th;
  if (tiles_x * tiles_y != 1)
    return Fail(error, "code-streams with several tiles are not supported");
  h->comps.resize(csiz);
  for (Component& c : h->comps) {
    const uint32_t ssiz = r.U8();
    c.precision = static_cast<int>(ssiz & 0x7F) + 1;
    c.is_signed = (ssiz & 0x80) != 0;
    c.dx = static_cast<int>(r.U8());
    c.dy = static_cast<int>(r.U8());
    if (c.dx == 0 || c.dy == 0) return Fail(error, "invalid component sub-sampling");
  }
  if (r.bad()) return Fail(error, "truncated SIZ segment");
  return true;
}

// Coding parameters as the marker segments give them, before precedence is applied.
struct CodingSegments {
  std::optional<uint32_t> scod;  // and the global parameters below
  int progression = 0, layers = 1;
  bool mct = false;
  std::optional<ComponentStyle> cod;
  std::optional<ComponentQuant> qcd;
  std::vector<std::optional<ComponentStyle>> coc;
  std::vector<std::optional<ComponentQuant>> qcc;
};

uint32_t ComponentIndex(Reader& r, size_t ncomps) { return ncomps < 257 ? r.U8() : r.U16(); }

// One marker segment of the main header or of a tile-part header.
bool ParseCodingSegment(uint16_t marker, Reader& r, size_t length, size_t ncomps,
                        CodingSegments* cs, std::string* error) {
  switch (marker) {
    case kCOD: {
      const uint32_t scod = r.U8();
      cs->progression = static_cast<int>(r.U8());
      cs->layers = static_cast<int>(r.U16());
      const uint32_t mct = r.U8();
      if (r.bad()) return Fail(error, "truncated COD segment");
      if (cs->progression > kCPRL) return Fail(error, "invalid progression order");
      if (cs->layers < 1) return Fail(error, "invalid number of layers");
      if (mct > 1) return Fail(error, "unsupported multiple component transform");
      cs->mct = mct == 1;
      cs->scod = scod;
      ComponentStyle s;
      if (!ParseComponentStyle(r, scod & 1, &s, error)) return false;
      cs->cod = s;
      return true;
    }
    case kCOC: {
      const uint32_t c = ComponentIndex(r, ncomps);
      const uint32_t scoc = r.U8();
      if (r.bad() || c >= ncomps) return Fail(error, "invalid COC segment");
      ComponentStyle s;
      if (!ParseComponentStyle(r, scoc & 1, &s, error)) return false;
      cs->coc[c] = s;
      return true;
    }
    case kQCD: {
      ComponentQuant q;
      if (!ParseQuant(r, length, &q, error)) return false;
      cs->qcd = q;
      return true;
    }
    case kQCC: {
      const size_t index_bytes = ncomps < 257 ? 1 : 2;
      const uint32_t c = ComponentIndex(r, ncomps);
      if (r.bad() || c >= ncomps || length < index_bytes) return Fail(error, "invalid QCC segment");
      ComponentQuant q;
      if (!ParseQuant(r, length - index_bytes, &q, error)) return false;
      cs->qcc[c] = q;
      return true;
    }
    case kPOC:
      return Fail(error, "progression order changes are not supported");
    case kPPM:
    case kPPT:
      return Fail(error, "packed packet headers are not supported");
    case kRGN:
      return Fail(error, "regions of interest are not supported");
    case kCAP:
      return Fail(error, "high-throughput and extended code-streams are not supported");
    default:
      return true;  // COM, TLM, PLM, PLT, CRG and other informative segments
  }
}

// Precedence (T.800 A.6): tile-part COC > tile-part COD > main COC > main COD, and the
// same for QCC/QCD.
void Apply(const CodingSegments& cs, Header* h) {
  if (cs.scod) {
    h->progression = cs.progression;
    h->layers = cs.layers;
    h->mct = cs.mct;
    h->sop = (*cs.scod & 2) != 0;
    h->eph = (*cs.scod & 4) != 0;
  }
  for (size_t c = 0; c < h->comps.size(); ++c) {
    if (cs.cod) h->style[c] = *cs.cod;
    if (cs.coc[c]) h->style[c] = *cs.coc[c];
    if (cs.qcd) h->quant[c] = *cs.qcd;
    if (cs.qcc[c]) h->quant[c] = *cs.qcc[c];
  }
}

}  // namespace

void WriteMainHeader(const Header& h, std::vector<uint8_t>* out) {
  Put16(out, kSOC);
  const size_t nc = h.comps.size();
  Put16(out, kSIZ);
  Put16(out, static_cast<uint32_t>(38 + 3 * nc));
  Put16(out, 0);  // Rsiz: no restrictions
  for (uint32_t v : {h.x1, h.y1, h.x0, h.y0, h.tw, h.th, h.tx0, h.ty0}) Put32(out, v);
  Put16(out, static_cast<uint32_t>(nc));
  for (const Component& c : h.comps) {
    Put8(out, static_cast<uint32_t>(c.precision - 1) | (c.is_signed ? 0x80 : 0));
    Put8(out, static_cast<uint32_t>(c.dx));
    Put8(out, static_cast<uint32_t>(c.dy));
  }
  const ComponentStyle& s = h.style[0];
  Put16(out, kCOD);
  Put16(out, 12 + (s.custom_precincts ? s.levels + 1 : 0));
  Put8(out, (s.custom_precincts ? 1 : 0) | (h.sop ? 2 : 0) | (h.eph ? 4 : 0));
  Put8(out, static_cast<uint32_t>(h.progression));
  Put16(out, static_cast<uint32_t>(h.layers));
  Put8(out, h.mct ? 1 : 0);
  Put8(out, static_cast<uint32_t>(s.levels));
  Put8(out, static_cast<uint32_t>(s.cbw_log2 - 2));
  Put8(out, static_cast<uint32_t>(s.cbh_log2 - 2));
  Put8(out, static_cast<uint32_t>(s.cb_style));
  Put8(out, s.reversible ? 1 : 0);
  if (s.custom_precincts)
    for (int r = 0; r <= s.levels; ++r) Put8(out, s.ppx[r] | s.ppy[r] << 4);
  const ComponentQuant& q = h.quant[0];
  const int entry_bytes = q.style == 0 ? 1 : 2;
  Put16(out, kQCD);
  Put16(out, static_cast<uint32_t>(3 + entry_bytes * q.count));
  Put8(out, static_cast<uint32_t>(q.guard_bits << 5 | q.style));
  for (int i = 0; i < q.count; ++i) {
    if (q.style == 0)
      Put8(out, (q.value[i] >> 11) << 3);
    else
      Put16(out, q.value[i]);
  }
}

void WriteTilePartHeader(size_t body_length, std::vector<uint8_t>* out) {
  Put16(out, kSOT);
  Put16(out, 10);
  Put16(out, 0);                                        // tile index
  Put32(out, static_cast<uint32_t>(14 + body_length));  // SOT + SOD + packets
  Put8(out, 0);                                         // tile-part index
  Put8(out, 1);                                         // tile-parts of the tile
  Put16(out, kSOD);
}

void WriteEndOfCodestream(std::vector<uint8_t>* out) { Put16(out, kEOC); }

bool ParseCodestream(const uint8_t* data, size_t size, Header* h, const uint8_t** tile_data,
                     size_t* tile_size, std::vector<uint8_t>* storage, std::string* error) {
  Reader r(data, size);
  if (r.U16() != kSOC) return Fail(error, "not a JPEG 2000 code-stream (no SOC marker)");
  if (r.U16() != kSIZ) return Fail(error, "SIZ marker missing after SOC");
  {
    const size_t lsiz = r.U16();
    if (lsiz < 41 || lsiz - 2 > r.left()) return Fail(error, "truncated SIZ segment");
    Reader seg(data + r.pos(), lsiz - 2);
    if (!ParseSiz(seg, h, error)) return false;
    if (lsiz != 38 + 3 * h->comps.size()) return Fail(error, "inconsistent SIZ length");
    r.Skip(lsiz - 2);
  }
  const size_t nc = h->comps.size();
  h->style.assign(nc, ComponentStyle{});
  h->quant.assign(nc, ComponentQuant{});
  CodingSegments main;
  main.coc.resize(nc);
  main.qcc.resize(nc);

  // Main header up to the first SOT.
  for (;;) {
    const uint32_t marker = r.U16();
    if (r.bad()) return Fail(error, "code-stream ends inside the main header");
    if (marker == kSOT) break;
    if ((marker >> 8) != 0xFF) return Fail(error, "corrupt main header (marker expected)");
    if (marker >= 0xFF30 && marker <= 0xFF3F) continue;  // reserved, no segment
    const size_t len = r.U16();
    if (r.bad() || len < 2 || len - 2 > r.left()) return Fail(error, "truncated marker segment");
    Reader seg(data + r.pos(), len - 2);
    if (!ParseCodingSegment(static_cast<uint16_t>(marker), seg, len - 2, nc, &main, error))
      return false;
    r.Skip(len - 2);
  }
  if (!main.cod) return Fail(error, "COD marker missing from the main header");
  if (!main.qcd) return Fail(error, "QCD marker missing from the main header");
  Apply(main, h);

  // Tile-parts. r stands just after an SOT marker code.
  CodingSegments tile;
  tile.coc.resize(nc);
  tile.qcc.resize(nc);
  std::vector<std::pair<size_t, size_t>> parts;  // offset, length of each tile-part body
  for (;;) {
    const size_t sot_pos = r.pos() - 2;
    const size_t lsot = r.U16();
    const uint32_t isot = r.U16();
    const uint32_t psot = r.U32();
    const uint32_t tpsot = r.U8();
    r.U8();  // TNsot
    if (r.bad() || lsot != 10) return Fail(error, "corrupt SOT segment");
    if (isot != 0) return Fail(error, "code-streams with several tiles are not supported");
    size_t end = psot == 0 ? size : sot_pos + psot;
    if (psot != 0 && psot < 14) return Fail(error, "corrupt SOT segment");
    end = std::min(end, size);  // a truncated stream keeps what it has
    for (;;) {
      const uint32_t marker = r.U16();
      if (r.bad() || r.pos() > end)
        return Fail(error, "code-stream ends inside a tile-part header");
      if (marker == kSOD) break;
      if ((marker >> 8) != 0xFF) return Fail(error, "corrupt tile-part header (marker expected)");
      const size_t len = r.U16();
      if (r.bad() || len < 2 || len - 2 > end - std::min(end, r.pos()))
        return Fail(error, "truncated marker segment in a tile-part header");
      Reader seg(data + r.pos(), len - 2);
      const bool coding = marker == kCOD || marker == kCOC || marker == kQCD || marker == kQCC;
      if (coding && tpsot != 0) return Fail(error, "coding parameters in a later tile-part");
      if (!ParseCodingSegment(static_cast<uint16_t>(marker), seg, len - 2, nc, &tile, error))
        return false;
      r.Skip(len - 2);
    }
    size_t body_end = end;
    if (psot == 0 && body_end >= r.pos() + 2 && data[body_end - 2] == 0xFF &&
        data[body_end - 1] == 0xD9)
      body_end -= 2;  // the last tile-part runs up to EOC
    parts.emplace_back(r.pos(), body_end - r.pos());
    if (end >= size) break;
    r.Skip(end - r.pos());
    const uint32_t next = r.U16();
    if (r.bad() || next != kSOT) break;  // EOC, or anything else ends the tile data
  }
  Apply(tile, h);

  if (parts.size() == 1) {
    *tile_data = data + parts[0].first;
    *tile_size = parts[0].second;
  } else {
    storage->clear();
    for (const auto& [off, len] : parts)
      storage->insert(storage->end(), data + off, data + off + len);
    *tile_data = storage->data();
    *tile_size = storage->size();
  }
  return true;
}

namespace {

constexpr uint8_t kJp2Signature[12] = {0, 0, 0, 12, 'j', 'P', ' ', ' ', 0x0D, 0x0A, 0x87, 0x0A};
constexpr uint32_t Tag(const char (&s)[5]) {
  return uint32_t(uint8_t(s[0])) << 24 | uint32_t(uint8_t(s[1])) << 16 |
         uint32_t(uint8_t(s[2])) << 8 | uint8_t(s[3]);
}

}  // namespace

size_t Jp2Overhead() { return 12 + 20 + 45 + 8; }

void WrapJp2(const std::vector<uint8_t>& codestream, int width, int height, int channels,
             std::vector<uint8_t>* out) {
  out->insert(out->end(), kJp2Signature, kJp2Signature + 12);
  Put32(out, 20);
  Put32(out, Tag("ftyp"));
  Put32(out, Tag("jp2 "));  // brand
  Put32(out, 0);            // minor version
  Put32(out, Tag("jp2 "));  // compatibility list
  Put32(out, 45);
  Put32(out, Tag("jp2h"));
  Put32(out, 22);
  Put32(out, Tag("ihdr"));
  Put32(out, static_cast<uint32_t>(height));
  Put32(out, static_cast<uint32_t>(width));
  Put16(out, static_cast<uint32_t>(channels));
  Put8(out, 7);  // 8-bit unsigned samples
  Put8(out, 7);  // JPEG 2000 compression
  Put8(out, 0);  // colour space known
  Put8(out, 0);  // no intellectual property box
  Put32(out, 15);
  Put32(out, Tag("colr"));
  Put8(out, 1);  // enumerated colour space
  Put8(out, 0);
  Put8(out, 0);
  Put32(out, channels == 1 ? 17 : 16);  // greyscale or sRGB
  Put32(out, static_cast<uint32_t>(8 + codestream.size()));
  Put32(out, Tag("jp2c"));
  out->insert(out->end(), codestream.begin(), codestream.end());
}

bool UnwrapJp2(const uint8_t** data, size_t* size, std::string* error) {
  if (*size < 12 || memcmp(*data, kJp2Signature, 12) != 0) return true;
  Reader r(*data, *size);
  r.Skip(12);
  while (r.left() >= 8) {
    const size_t box_start = r.pos();
    uint64_t len = r.U32();
    const uint32_t type = r.U32();
    if (len == 1) {
      len = uint64_t{r.U32()} << 32;
      len |= r.U32();
    } else if (len == 0) {
      len = *size - box_start;
    }
    const size_t header = r.pos() - box_start;
    if (r.bad() || len < header || len > *size - box_start) break;
    if (type == Tag("jp2c")) {
      *data += r.pos();
      *size = static_cast<size_t>(len - header);
      return true;
    }
    r.Skip(static_cast<size_t>(len - header));
  }
  return Fail(error, "JP2 file without a readable code-stream box");
}

}  // namespace krojcodec::j2k
