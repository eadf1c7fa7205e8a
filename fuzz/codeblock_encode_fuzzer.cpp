// SPDX-License-Identifier: BSD-3-Clause
// The code-block encoder fed sign-magnitude coefficients from the input, with the block
// size, sub-band, style flags, termination and coded planes taken from the input. The
// pass and segment counts must follow from the significant planes; the bytes, drained
// in chunks of any size, must add up to the segment lengths; and the one-call decoder
// must give back every magnitude bit of the coded planes, with its sign, and find no
// corruption (predictable termination checked when it was used).
//
// Input: width, height, sub-band, flags, termination, coded planes, a shift, a chunk
// size, then two bytes per coefficient.
#include <string.h>

#include "fuzz_util.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kro_fuzz;
  Input in(data, size);
  const int w = in.Range(1, 64), h = in.Range(1, 64);
  const int subband = in.Range(0, 3);
  const int style = in.Byte() & 63;  // causal, bypass, every pass, reset, segmentation, lossless
  const int term = in.Range(0, 2);
  const int mb = in.Range(1, 31), shift = in.Range(0, 15), chunk = in.Range(1, 4096);
  std::vector<int32_t> coef(static_cast<size_t>(w) * h);
  for (int32_t& c : coef) {
    const uint32_t v = in.U16();
    c = static_cast<int32_t>(((v & 0x7FFF) << shift) | (v & 0x8000) << 16);
  }

  static KroiEncodeState_JPEG2K* state = [] {
    KroiEncodeState_JPEG2K* s = nullptr;
    FUZZ_CHECK(kroiEncodeInitAlloc_JPEG2K(&s, {64, 64}) == kroStatusOk);
    return s;
  }();
  int sf = -1, passes = -1, segments = -1;
  FUZZ_CHECK(kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(coef.data(), w * 4, {w, h}, state, subband, mb, term, 0, style, &sf,
                                                    &passes, &segments) == kroStatusOk);
  uint32_t max_mag = 0;
  for (int32_t c : coef) max_mag |= static_cast<uint32_t>(c) & 0x7FFFFFFFu;
  int want_sf = 0;
  while (max_mag >> want_sf) ++want_sf;
  const int p_low = 31 - mb, top = sf - 1;
  FUZZ_CHECK(sf == want_sf);
  FUZZ_CHECK(passes == (top >= p_low ? 1 + 3 * (top - p_low) : 0));
  if (style & 4) {
    FUZZ_CHECK(segments == passes);
  } else {
    FUZZ_CHECK(segments >= 1 && segments <= std::max(passes, 1));
  }

  std::vector<uint8_t> coded;
  int more = passes > 0;
  for (int guard = 0; more; ++guard) {
    FUZZ_CHECK(guard < 1 << 20);
    std::vector<uint8_t> piece(static_cast<size_t>(chunk));
    int len = chunk;
    FUZZ_CHECK(kroiEncodeStoreBits_JPEG2K_1u(piece.data(), &len, state, &more) == kroStatusOk);
    FUZZ_CHECK(len >= 0 && len <= chunk);
    coded.insert(coded.end(), piece.begin(), piece.begin() + len);
  }
  if (passes == 0) return 0;
  std::vector<int> lengths(static_cast<size_t>(segments));
  size_t total = 0;
  for (int s = 0; s < segments; ++s) {
    FUZZ_CHECK(kroiEncodeGetTermPassLen_JPEG2K(state, s, &lengths[s]) == kroStatusOk);
    FUZZ_CHECK(lengths[s] >= 0);
    total += static_cast<size_t>(lengths[s]);
  }
  FUZZ_CHECK(total == coded.size());
  int last_rate = 0;
  FUZZ_CHECK(kroiEncodeGetRate_JPEG2K(state, passes - 1, &last_rate) == kroStatusOk);
  FUZZ_CHECK(static_cast<size_t>(last_rate) <= coded.size());

  // The decoder takes the same style bits; it checks predictable termination on request.
  const int flags = (style & 31) | (term == 2 ? 1048576 : 0);
  std::vector<int32_t> back(coef.size());
  std::vector<uint8_t> dstate;
  int bytes = 0;
  FUZZ_CHECK(kroiDecodeGetBufSize_JPEG2K({w, h}, &bytes) == kroStatusOk);
  dstate.resize(static_cast<size_t>(bytes));
  coded.push_back(0);  // a valid pointer even when every segment is empty
  FUZZ_CHECK(kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(coded.data(), back.data(), w * 4, {w, h}, subband, sf, passes,
                                                  lengths.data(), segments, flags, nullptr,
                                                  reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(dstate.data())) ==
             kroStatusOk);
  const uint32_t coded_bits = ~((1u << p_low) - 1) & 0x7FFFFFFFu;
  for (size_t i = 0; i < coef.size(); ++i) {
    const uint32_t a = static_cast<uint32_t>(coef[i]), b = static_cast<uint32_t>(back[i]);
    FUZZ_CHECK((a & coded_bits) == (b & coded_bits));
    if (a & coded_bits) FUZZ_CHECK((a >> 31) == (b >> 31));
  }
  return 0;
}
