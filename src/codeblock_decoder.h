// SPDX-License-Identifier: BSD-3-Clause
// The step-wise code-block decoder's state and the decoding passes it runs.
#ifndef KROJ_SRC_CODEBLOCK_DECODER_H_
#define KROJ_SRC_CODEBLOCK_DECODER_H_

#include "codeblock_impl.h"
#include "kro_base.h"
#include "mq_coder.h"

// Fixed part of the caller's state buffer; the neighbourhood states follow at the next
// 32-byte boundary.
struct KroiDecodeCBProgrState_JPEG2K {
  Kro32u id;
  Kro32s step;  // destination row step in bytes
  Kro32s* dst;
  KroiSize size;
  Kro32s bitplane;  // current bit-plane; lowered after each cleanup that has a successor
  const Kro32u* zc;
  uint32_t* nbh;
  kro::MqDecoder mq;
  kro::RawReader raw;
  Kro32s kind;       // next pass, kind values below
  Kro32s remaining;  // passes still to decode
  Kro32s first_raw;  // highest bit-plane whose propagation and refinement are raw (0: none)
  Kro32s flags;
  Kro32s error;
  Kro32s attached;
};

namespace kro::t1 {

inline constexpr Kro32u kProgrId = 0x4c4d536au;  // "jSML"
// Room the state keeps for its fixed part and the alignment of the neighbourhood buffer.
inline constexpr int kProgrFixedBytes = 472;
static_assert(sizeof(KroiDecodeCBProgrState_JPEG2K) + 31 <= kProgrFixedBytes);

// Kinds of the next pass.
enum PassKind : Kro32s {
  kCleanupFirst = 0,
  kRefinementNext = 1,
  kPropagationNext = 2,
  kCleanupAfterRaw = 3,
  kRawRefinementNext = 4,
  kRawPropagationNext = 5,
};

inline uint32_t* ProgrNbh(KroiDecodeCBProgrState_JPEG2K* s) {
  const uintptr_t end = reinterpret_cast<uintptr_t>(s) + sizeof(KroiDecodeCBProgrState_JPEG2K);
  return reinterpret_cast<uint32_t*>((end + 31) & ~uintptr_t{31});
}

}  // namespace kro::t1

namespace kro {

using ProgrState = KroiDecodeCBProgrState_JPEG2K;

// The decoding passes at the state's current bit-plane; each returns 1 when it finds the
// data corrupt (segmentation symbol or termination check), else 0. Reset of the contexts
// after the pass follows the state's flags.
int cleanup(ProgrState& s, bool check);
int significancePropagation(ProgrState& s, bool check);
int magnitudeRefinement(ProgrState& s, bool check);
int significancePropagationRaw(ProgrState& s, bool check);
int magnitudeRefinementRaw(ProgrState& s, bool check);

// Keeps the bits from bit-plane p upward and marks the reconstruction at p.
void concealError(Kro32s* block, int step, KroiSize size, int p);
// Removes the reconstruction bits below bit-plane p.
void ClearBelow(Kro32s* block, int step, KroiSize size, int p);

// The same on the attached block at the state's current bit-plane.
KroStatus cbProgrConcealError(ProgrState* pState);
KroStatus cbProgrClearLeastSfBits(ProgrState* pState);

}  // namespace kro

#endif  // KROJ_SRC_CODEBLOCK_DECODER_H_
