// SPDX-License-Identifier: BSD-3-Clause
// The step-wise code-block decoder fed segment by segment, with queries between the
// steps. A state not yet attached must refuse to step; after attaching, every step ends
// in 0 or the corrupt-block status, which then sticks; the pass counter only goes down
// and the bit-plane never rises. The block must equal what the one-call decoder makes
// of the same segments.
//
// Input: width, height, sub-band, bit-planes, passes, flags, segment count and lengths,
// then the coded data.
#include <string.h>

#include "fuzz_util.h"

namespace {

constexpr int kFlagBits[] = {1, 2, 4, 8, 16, 524288, 1048576};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kro_fuzz;
  Input in(data, size);
  const int w = in.Range(1, 64), h = in.Range(1, 64);
  const int subband = in.Range(0, 3), sf_bits = in.Range(0, 31), passes = in.Range(0, 109);
  const uint8_t flag_choice = in.Byte();
  int flags = 0;
  for (int i = 0; i < 7; ++i)
    if (flag_choice >> i & 1) flags |= kFlagBits[i];
  const int segments = in.Range(1, 16);
  std::vector<int> lengths(static_cast<size_t>(segments));
  for (int& l : lengths) l = in.Range(0, 600);
  std::vector<uint8_t> src = in.Rest();
  size_t used = 0;
  for (int& l : lengths) {
    l = static_cast<int>(std::min<size_t>(static_cast<size_t>(l), src.size() - used));
    used += static_cast<size_t>(l);
  }
  src.push_back(0);  // never a null segment pointer, even for an empty input

  int state_bytes = 0;
  FUZZ_CHECK(kroiDecodeCBProgrGetStateSize_JPEG2K({w, h}, &state_bytes) == kroStatusOk);
  std::vector<uint8_t> state_mem(static_cast<size_t>(state_bytes));
  auto* state = reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state_mem.data());
  FUZZ_CHECK(kroiDecodeCBProgrInit_JPEG2K(state) == kroStatusOk);
  FUZZ_CHECK(kroiDecodeCBProgrStep_JPEG2K(src.data(), lengths[0], state) == kroStatusJPEG2KNotAttached);

  std::vector<int32_t> block(static_cast<size_t>(w) * h, 0x5A5A5A5A);
  FUZZ_CHECK(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(block.data(), w * 4, {w, h}, state, subband, sf_bits, flags) ==
             kroStatusOk);
  FUZZ_CHECK(kroiDecodeCBProgrSetPassCounter_JPEG2K(passes, state) == kroStatusOk);
  int left = passes, plane = sf_bits - 1;
  KroStatus last = kroStatusOk;
  const uint8_t* seg = src.data();
  for (int s = 0; s < segments; ++s) {
    const KroStatus st = kroiDecodeCBProgrStep_JPEG2K(seg, lengths[s], state);
    seg += lengths[s];
    FUZZ_CHECK_STATUS(st == kroStatusOk || st == kroStatusJPEG2KCorruptCodeBlock, st);
    FUZZ_CHECK(last == kroStatusOk || st == last);  // corruption sticks
    int now_left = -1, now_plane = -1;
    FUZZ_CHECK(kroiDecodeCBProgrGetPassCounter_JPEG2K(state, &now_left) == kroStatusOk);
    FUZZ_CHECK(kroiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(state, &now_plane) == kroStatusOk);
    FUZZ_CHECK(now_left >= 0 && now_left <= left && now_plane <= plane);
    left = now_left;
    plane = now_plane;
    if (st != kroStatusOk) {
      last = st;
      break;
    }
  }

  // The one-call decoder stops at the same step; it clears the low bits unless told
  // not to, and must not conceal here.
  std::vector<int32_t> again(block.size(), 0x5A5A5A5A);
  std::vector<uint8_t> state2(state_mem.size());
  const KroStatus st = kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
      src.data(), again.data(), w * 4, {w, h}, subband, sf_bits, passes, lengths.data(), segments, flags | 262144,
      nullptr, reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state2.data()));
  FUZZ_CHECK_STATUS(st == last, st);
  FUZZ_CHECK(again == block);
  return 0;
}
