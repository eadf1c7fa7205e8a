// SPDX-License-Identifier: BSD-3-Clause
// Reference kernels of JPEG quantisation: quality scaling of a raw table, and the
// block quantiser and dequantiser. The per-coefficient arithmetic is that of the
// scaled vector multiplications, taken from signal_ref.h.
#ifndef KROJ_SRC_REF_QUANT_REF_H_
#define KROJ_SRC_REF_QUANT_REF_H_

#include <stdint.h>

#include "kro_base.h"
#include "ref/signal_ref.h"

namespace kro::ref {

// Quality scaling of a raw table in place. S = 5000 / q below 50, 200 - 2q from 50
// on; each step becomes (step * S + 50) / 100 (32-bit, truncating toward zero),
// clamped to 1..255. q = 50 keeps the table, q >= 100 or q < 0 gives all ones.
// q must not be 0 (the exported function refuses it).
inline void QualityScaleTable(uint8_t* table, int q) {
  const int32_t s = q < 50 ? 5000 / q : SubWrap32(200, MulWrap32(2, q));
  for (int k = 0; k < 64; ++k) {
    int32_t v = AddWrap32(MulWrap32(table[k], s), 50) / 100;
    if (v > 255) v = 255;
    if (v < 1) v = 1;
    table[k] = static_cast<uint8_t>(v);
  }
}

// Step k of a forward working table: 32768 / step as a 15-bit fraction, from the
// 16.16 reverse division (rounds to nearest for every step 1..255, no ties there).
constexpr uint16_t QuantReciprocal(uint32_t step) { return DivCRev16u(32768, step); }

// block[k] = round_half_even(recip[k] * block[k] / 2^15), saturated to 16 bits:
// the unsigned-by-signed 16-bit product with scale factor 15.
inline void QuantFwdBlock(int16_t* block, const uint16_t* recip) {
  MulScaledRow<int16_t, ProductWord<uint16_t, int16_t, int16_t>>(recip, block, block, 64, 15);
}

// block[k] = block[k] * step[k] saturated to 16 bits; the steps are read as signed.
inline void QuantInvBlock(const int16_t* src, const uint16_t* step, int16_t* dst) {
  MulScaledRow<int16_t, ProductWord<int16_t, int16_t, int16_t>>(
      reinterpret_cast<const int16_t*>(step), src, dst, 64, 0);
}

}  // namespace kro::ref

#endif  // KROJ_SRC_REF_QUANT_REF_H_
