// SPDX-License-Identifier: BSD-3-Clause
// MCU conversion, encoder side: one MCU of interleaved pixels -> level-shifted 8x8
// blocks of Kro16s, with colour conversion and chroma box-filter down-sampling in
// the 444 (8x8), 422 (16x8) and 411 (16x16) geometries. The kernels are compiled
// per SIMD target (simd/mcu-inl.h) and chosen at each call; every value truncates
// (ref::McuY, ref::McuCb, ref::McuCr).
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "mcu_encoder.cpp"
#include <hwy/foreach_target.h>  // IWYU pragma: keep

#include "simd/mcu-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kro {
namespace HWY_NAMESPACE {

void ownpj_BGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu411, PackedInV<ref::Bgr555>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu422, PackedInV<ref::Bgr555>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu444, PackedInV<ref::Bgr555>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu411, PackedInV<ref::Bgr565>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu422, PackedInV<ref::Bgr565>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu444, PackedInV<ref::Bgr565>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGRToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu411, BytesInV<3, 2>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGRToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu422, BytesInV<3, 2>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_BGRToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu444, BytesInV<3, 2>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_CMYKToYCCK411LS_MCU_8u16s_C4P4R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu411, BytesInV<4, 0>, McuKind::kYCCK>(src, step, dst);
}
void ownpj_CMYKToYCCK422LS_MCU_8u16s_C4P4R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu422, BytesInV<4, 0>, McuKind::kYCCK>(src, step, dst);
}
void ownpj_CMYKToYCCK444LS_MCU_8u16s_C4P4R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu444, BytesInV<4, 0>, McuKind::kYCCK>(src, step, dst);
}
void ownpj_RGBToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu411, BytesInV<3, 0>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_RGBToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu422, BytesInV<3, 0>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_RGBToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu444, BytesInV<3, 0>, McuKind::kYCbCr>(src, step, dst);
}
void ownpj_SampleDown411LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu411, BytesInV<3, 0>, McuKind::kNone>(src, step, dst);
}
void ownpj_SampleDown422LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu422, BytesInV<3, 0>, McuKind::kNone>(src, step, dst);
}
void ownpj_SampleDown444LS_MCU_8u16s_C3P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  EncodeMcuSimd<Mcu444, BytesInV<3, 0>, McuKind::kNone>(src, step, dst);
}
void ownpj_Split422LS_MCU_8u16s_C2P3R(const Kro8u* src, int step, Kro16s* const* dst) {
  Split422Simd(src, step, dst);
}

}  // namespace HWY_NAMESPACE
}  // namespace kro
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kro {

HWY_EXPORT(ownpj_BGRToYCbCr411LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_BGRToYCbCr422LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_BGRToYCbCr444LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_BGR555ToYCbCr411LS_MCU_16u16s_C3P3R);
HWY_EXPORT(ownpj_BGR555ToYCbCr422LS_MCU_16u16s_C3P3R);
HWY_EXPORT(ownpj_BGR555ToYCbCr444LS_MCU_16u16s_C3P3R);
HWY_EXPORT(ownpj_BGR565ToYCbCr411LS_MCU_16u16s_C3P3R);
HWY_EXPORT(ownpj_BGR565ToYCbCr422LS_MCU_16u16s_C3P3R);
HWY_EXPORT(ownpj_BGR565ToYCbCr444LS_MCU_16u16s_C3P3R);
HWY_EXPORT(ownpj_CMYKToYCCK411LS_MCU_8u16s_C4P4R);
HWY_EXPORT(ownpj_CMYKToYCCK422LS_MCU_8u16s_C4P4R);
HWY_EXPORT(ownpj_CMYKToYCCK444LS_MCU_8u16s_C4P4R);
HWY_EXPORT(ownpj_RGBToYCbCr411LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_RGBToYCbCr422LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_RGBToYCbCr444LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_SampleDown411LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_SampleDown422LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_SampleDown444LS_MCU_8u16s_C3P3R);
HWY_EXPORT(ownpj_Split422LS_MCU_8u16s_C2P3R);

// Checks, in this order: pSrc or pDstMCU null -8; srcStep < 1 -14; each component
// buffer null -8. Then the kernel of the chosen target.
template <int kComponents, class T>
KroStatus EncodeMcu(const T* pSrc, int srcStep, Kro16s* const* pDstMCU,
                    void (*kernel)(const T*, int, Kro16s* const*)) {
  if (AnyNull(pSrc, pDstMCU)) return kroStatusNullPointer;
  if (BadStep(srcStep)) return kroStatusBadStep;
  for (int k = 0; k < kComponents; ++k)
    if (pDstMCU[k] == nullptr) return kroStatusNullPointer;
  kernel(pSrc, srcStep, pDstMCU);
  return kroStatusOk;
}

}  // namespace kro

using kro::EncodeMcu;

KRO_EXPORT KroStatus kroiBGRToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGRToYCbCr411LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGRToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGRToYCbCr422LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGRToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGRToYCbCr444LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR555ToYCbCr411LS_MCU_16u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR555ToYCbCr422LS_MCU_16u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR555ToYCbCr444LS_MCU_16u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR565ToYCbCr411LS_MCU_16u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR565ToYCbCr422LS_MCU_16u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R(const Kro16u* pSrc, int srcStep,
                                                             Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_BGR565ToYCbCr444LS_MCU_16u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiCMYKToYCCK411LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[4]) {
  return EncodeMcu<4>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_CMYKToYCCK411LS_MCU_8u16s_C4P4R));
}
KRO_EXPORT KroStatus kroiCMYKToYCCK422LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[4]) {
  return EncodeMcu<4>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_CMYKToYCCK422LS_MCU_8u16s_C4P4R));
}
KRO_EXPORT KroStatus kroiCMYKToYCCK444LS_MCU_8u16s_C4P4R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[4]) {
  return EncodeMcu<4>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_CMYKToYCCK444LS_MCU_8u16s_C4P4R));
}
KRO_EXPORT KroStatus kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_RGBToYCbCr411LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiRGBToYCbCr422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_RGBToYCbCr422LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiRGBToYCbCr444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_RGBToYCbCr444LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiSampleDown411LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_SampleDown411LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiSampleDown422LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_SampleDown422LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiSampleDown444LS_MCU_8u16s_C3P3R(const Kro8u* pSrc, int srcStep,
                                                         Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU, HWY_DYNAMIC_DISPATCH(kro::ownpj_SampleDown444LS_MCU_8u16s_C3P3R));
}
KRO_EXPORT KroStatus kroiSplit422LS_MCU_8u16s_C2P3R(const Kro8u* pSrc, int srcStep,
                                                    Kro16s* pDstMCU[3]) {
  return EncodeMcu<3>(pSrc, srcStep, pDstMCU,
                      HWY_DYNAMIC_DISPATCH(kro::ownpj_Split422LS_MCU_8u16s_C2P3R));
}
#endif  // HWY_ONCE
