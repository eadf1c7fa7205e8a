// SPDX-License-Identifier: BSD-3-Clause
// Argument sweep over every exported function: each required pointer null, sizes and
// steps of 0 and -1, and the out-of-range values each family checks, alone and in
// pairs that pin the order of the checks. Every failing call must return its
// documented status and leave every byte it was given as it was.
//
// The functions come from the export manifest (kro_exports.inc, generated at configure
// time); their parameter names are read from kroj.h at run time. A family is described
// by one line of checks: groups in check order, "status:targets" separated by ';'.
// Targets: a parameter name (a pointer: null; a step or size: 0 and -1), name[] (each
// element of an array), name.w / name.h (one field of a size or rectangle),
// name=v,v (values; a&b joins two assignments into one call), *name=v (the int it
// points to), name# (a state of another kind), name#fresh (a state never attached),
// and @ptr / @step / @size for every such parameter the line does not name otherwise.
// A new export that no line describes, or a pointer, step or size that no line probes,
// fails the test.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "kroj.h"
#include "test_util.h"

namespace {

// ---------------------------------------------------------------------------
// Families, first matching pattern wins ('*' matches any run of characters).
struct Rule {
  const char* pattern;
  const char* checks;
  const char* setup = "";  // nobase | opt:NAME | marker:NAME (source of 0xFF 0xD9 pairs)
};

const Rule kRules[] = {
    {"krojGetLibVersion", ""},
    {"krosMalloc_*", "null:len=0,-1"},
    {"krosFree", "0:ptr", "nobase"},
    // Huffman tables, baseline, statistics, progressive, lossless.
    {"kroi*Huffman*Free_JPEG_8u", "-8:@ptr", "nobase"},
    {"kroi*Huffman*_JPEG_8u", "-8:@ptr"},  // GetBufSize, Init, InitAlloc, RawTableInit
    {"kroiEncodeHuffman8x8_JPEG_16s1u_C1", "-8:pDst; -6:dstLenBytes; -8:pDstCurrPos pEncHuffState; -8:@ptr"},
    {"kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1", "-8:@ptr"},
    {"kroiDecodeHuffman8x8_JPEG_1u16s_C1", "-8:pSrc; -5:srcLenBytes=-1; -8:@ptr"},
    {"kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1",
     "-8:pSrc pSrcBitsLen; -5:*pSrcBitsLen=-1; -8:pDst pLastDC pMarker pPrefetchedBits "
     "pNumValidPrefetchedBits; -5:*pNumValidPrefetchedBits=-1; -8:@ptr",
     "marker:pSrc"},
    {"kroiGetHuffmanStatistics8x8_JPEG_16s_C1", "-8:@ptr"},
    {"kroiEncodeHuffman8x8_DCFirst_*",
     "-8:pDst; -6:dstLenBytes; -8:pDstCurrPos pEncHuffState; -8:pSrc pLastDC; -5:Al=-1,14; -8:pDcTable"},
    {"kroiEncodeHuffman8x8_DCRefine_*", "-8:pDst; -6:dstLenBytes; -8:pDstCurrPos pEncHuffState; -8:pSrc; -5:Al=-1,14"},
    {"kroiEncodeHuffman8x8_AC*",
     "-8:pDst; -6:dstLenBytes; -8:pDstCurrPos pAcTable pEncHuffState; -8:pSrc; "
     "-5:Al=-1,14 Ss=0,64 Se=64 Ss=9&Se=8"},
    {"kroiGetHuffmanStatistics8x8_DCFirst_*", "-8:@ptr; -5:Al=-1,14"},
    {"kroiGetHuffmanStatistics8x8_AC*",
     "-8:pAcStatistics pEncHuffState; -8:pSrc; -5:Al=-1,14 Ss=0,64 Se=64 Ss=9&Se=8"},
    {"kroiDecodeHuffman8x8_DCFirst_*",
     "-8:pSrc; -6:srcLenBytes; -8:pSrcCurrPos pDst pLastDC pMarker; -5:Al=-1,14; -8:@ptr"},
    {"kroiDecodeHuffman8x8_DCRefine_*", "-8:pSrc; -6:srcLenBytes; -8:pSrcCurrPos pDst pMarker; -5:Al=-1,14; -8:@ptr"},
    {"kroiDecodeHuffman8x8_AC*",
     "-8:pSrc; -6:srcLenBytes; -8:pSrcCurrPos pDst pMarker; -5:Al=-1,14 Ss=0,64 Se=64 Ss=9&Se=8; -8:@ptr"},
    {"kroi*PredFirstRow_JPEG_16s_C1", "-8:@ptr; -6:width; -5:P=1,17 Pt=-1"},
    {"kroi*PredRow_JPEG_16s_C1", "-8:@ptr; -6:width; -5:predictor=0,8"},
    {"kroiEncodeHuffmanOne_*", "-8:pDst; -6:dstLenBytes; -8:pDstCurrPos pEncHuffState; -8:@ptr"},
    {"kroiDecodeHuffmanOne_*", "-8:pSrc; -5:srcLenBytes=-1; -8:@ptr"},
    {"kroiGetHuffmanStatisticsOne_*", "-8:@ptr"},
    // Quantisation, DCT, level shift, zig-zag.
    {"kroiDCTQuantFwd8x8LS_*", "-8:pSrc pDst; -14:srcStep; -8:pQuantFwdTable"},
    {"kroiDCTQuantInv8x8LS_*", "-8:pSrc pDst; -14:dstStep; -8:pQuantInvTable"},
    {"kroiQuant*", "-8:@ptr"},
    {"kroiDCT*", "-8:@ptr"},
    {"kroiZigzag*", "-8:@ptr"},
    {"kroiSub128_*", "-8:pSrc; -14:srcStep; -8:pDst; -14:dstStep; -6:roiSize"},
    {"kroiAdd128_*", "-8:pSrc; -14:srcStep; -8:pDst; -14:dstStep; -6:roiSize"},
    // MCU conversion (decoder side takes 16s blocks), sampling, colour.
    {"kroi*_MCU_16s*", "-8:pSrcMCU pDst; -8:pSrcMCU[]; -14:dstStep"},
    {"kroi*_MCU_*", "-8:pSrc pDstMCU; -14:srcStep; -8:pDstMCU[]"},
    {"kroiSample*Row*", "-8:@ptr; -6:srcWidth"},
    {"kroiSample*_C1R",
     "-8:pSrc; -14:srcStep; -6:srcRoiSize; -8:pDst; -14:dstStep; -6:dstRoiSize.w; -6:dstRoiSize.h"},
    {"kroi*_JPEG_*", "-8:@ptr; -14:@step; -6:roiSize.w; -6:roiSize.h"},
    // JPEG 2000 component and wavelet transforms.
    {"kroi?CT*_P3IR", "-8:@ptr; -14:srcDstStep; -6:roiSize"},
    {"kroi?CT*", "-8:@ptr; -14:@step; -6:roiSize"},
    {"kroiWTGetBufSize_*", "-8:@ptr"},
    {"kroiWT*_C1IR", "-8:pSrcDst; -14:srcDstStep; -8:@ptr"},
    {"kroiWTFwd_*_C1R",
     "-8:pSrc pDstBand dstBandStep pTileRect pBuffer; -14:srcStep; -8:pDstBand[]; -14:dstBandStep[]; "
     "-6:pTileRect.w pTileRect.h"},
    {"kroiWTInv_*_C1R",
     "-8:pSrcBand srcBandStep pDst pTileRect pBuffer; -14:dstStep; -8:pSrcBand[]; -14:srcBandStep[]; "
     "-6:pTileRect.w pTileRect.h"},
    {"kroiWT*_C1", "-8:@ptr; -6:width"},
    {"kroiWT*_C1R", "-8:@ptr; -14:@step; -6:@size"},
    // JPEG 2000 code-block coding.
    {"kroiEncodeInitAlloc_JPEG2K", "-8:ppState; -6:maxCodeBlockSize"},
    {"kroiEncodeFree_JPEG2K", "-8:pState", "nobase"},
    {"kroiEncodeLoadCodeBlock_*",
     "-8:pState; -17:pState#; -8:pSfBits pNOfPasses pNOfTermPasses; -6:codeBlockSize; -8:pSrc; -14:srcStep"},
    {"kroiEncodeStoreBits_*", "-8:pState; -17:pState#; -8:@ptr; -5:*pDstLen=0,-1"},
    {"kroiEncodeGetTermPassLen_*", "-8:pState; -17:pState#; -8:@ptr; -113:nTermPass=-1,200"},
    {"kroiEncodeGet*_JPEG2K", "-8:pState; -17:pState#; -8:@ptr; -113:nPass=-1,200"},
    {"kroiDecodeCodeBlock_*", "-8:pSrc pState; -6:codeBlockSize; -8:pTermLen pDst; -14:dstStep",
     "opt:pErrorBitPlane"},
    {"kroiDecode*GetBufSize_JPEG2K", "-8:pSize; -6:codeBlockSize"},
    {"kroiDecodeCBProgrGetStateSize_JPEG2K", "-8:pSize; -6:codeBlockSize"},
    {"kroiDecodeCBProgrInit_JPEG2K", "-8:pState"},
    {"kroiDecodeCBProgrInitAlloc_JPEG2K", "-8:ppState; -6:codeBlockSize"},
    {"kroiDecodeCBProgrFree_JPEG2K", "-8:pState; -17:pState#", "nobase"},
    {"kroiDecodeCBProgrAttach_*", "-8:pState; -17:pState#; -8:pDst; -14:dstStep; -6:codeBlockSize"},
    {"kroiDecodeCBProgrSetPassCounter_*", "-8:pState; -17:pState#"},
    {"kroiDecodeCBProgrGetPassCounter_*", "-8:pState pNOfPasses; -17:pState#"},
    {"kroiDecodeCBProgrGetCurBitPlaneNum_*", "-8:pState; -17:pState#; -8:pBitPlane"},
    {"kroiDecodeCBProgrStep_*", "-8:pSegment pState; -17:pState#; -180:pState#fresh"},
    // Image and signal primitives. Copies do not check their steps.
    {"kroiCopy_*", "-8:@ptr; -6:roiSize; 0:@step"},
    {"kroiSet_*", "-8:@ptr; -6:roiSize; -14:@step"},
    {"kroiConvert_*", "-8:@ptr; -6:roiSize; -14:@step"},
    {"kroiAnd*", "-8:@ptr; -14:@step; -6:roiSize"},
    {"kroiOr*", "-8:@ptr; -14:@step; -6:roiSize"},
    {"kroiXor*", "-8:@ptr; -14:@step; -6:roiSize"},
    {"kroiNot*", "-8:@ptr; -14:@step; -6:roiSize"},
    {"krosDivC_*", "-8:@ptr; -6:len; -10:val=0,-0"},
    {"kros*", "-8:@ptr; -6:len"},
};

// Values of the parameters in the valid call that every probe starts from.
constexpr int kStep = 128;  // bytes; wide enough for 16 pixels of 4 channels of 32f
constexpr KroiSize kSize = {4, 4};
const std::map<std::string, int> kIntDefaults = {
    {"Ss", 1},          {"Se", 63},        {"P", 8},           {"predictor", 1},  {"sfBits", 4},
    {"magnitudeBits", 8}, {"nOfPasses", 3}, {"nOfTermPasses", 1}, {"qualityFactor", 50},
    {"segmentLength", 16}, {"srcLenBytes", 64}, {"dstLenBytes", 1024}, {"len", 16}, {"width", 4},
    {"srcWidth", 4}};
// Ints that pointers point to (everything else an int* points to starts at 0).
const std::map<std::string, int> kPointeeDefaults = {{"pDstLen", 64}, {"pTermLen", 16}};

// ---------------------------------------------------------------------------
// The header, as parameter lists.
enum class Kind { kInt, kSize, kScalar, kPtr, kPtrArray, kPtrPtr };

struct Param {
  std::string type;  // without const, '*' and array suffix
  std::string name;
  Kind kind = Kind::kInt;
  int count = 0;  // elements of an array parameter
};

std::string Strip(const std::string& s) {
  const size_t b = s.find_first_not_of(" \t\n");
  const size_t e = s.find_last_not_of(" \t\n");
  return b == std::string::npos ? std::string() : s.substr(b, e - b + 1);
}

Param ParseParam(std::string p) {
  Param out;
  int count = 0;
  if (p.back() == ']') {
    const size_t open = p.rfind('[');
    count = atoi(p.c_str() + open + 1);
    p = Strip(p.substr(0, open));
  }
  const size_t name_at = p.find_last_of(" *") + 1;
  out.name = p.substr(name_at);
  std::string type = p.substr(0, name_at);
  const int stars = static_cast<int>(std::count(type.begin(), type.end(), '*'));
  std::string words;
  std::istringstream in(type);
  for (std::string w; in >> w;) {
    w.erase(std::remove(w.begin(), w.end(), '*'), w.end());
    if (!w.empty() && w != "const") words = w;
  }
  out.type = words;
  out.count = count;
  if (stars == 2) {
    out.kind = Kind::kPtrPtr;
  } else if (stars == 1) {
    out.kind = count > 0 ? Kind::kPtrArray : Kind::kPtr;
  } else if (count > 0) {
    out.kind = Kind::kPtr;  // array of values: a pointer to count elements
  } else {
    out.kind = out.type == "int" ? Kind::kInt : (out.type == "KroiSize" ? Kind::kSize : Kind::kScalar);
  }
  return out;
}

std::map<std::string, std::vector<Param>> ReadHeader() {
  const std::string header = std::string(KROJ_TEST_DATA_DIR) + "/../../include/kroj.h";
  const std::vector<uint8_t> bytes = kro_test::ReadFile(header);
  std::string text(bytes.begin(), bytes.end()), code;
  for (size_t i = 0; i < text.size(); ++i) {  // drop comments
    if (text.compare(i, 2, "/*") == 0) {
      i = text.find("*/", i + 2) + 1;
    } else if (text.compare(i, 2, "//") == 0) {
      i = text.find('\n', i);
    } else {
      code += text[i];
    }
  }
  std::map<std::string, std::vector<Param>> out;
  for (size_t at = code.find("KRO_API"); at != std::string::npos; at = code.find("KRO_API", at + 1)) {
    const size_t end = code.find(';', at);
    const std::string decl = code.substr(at, end - at);
    const size_t open = decl.find('(');
    if (open == std::string::npos) continue;  // the thread-count variable
    const std::string head = Strip(decl.substr(0, open));
    const std::string name = head.substr(head.find_last_of(" *") + 1);
    const std::string list = Strip(decl.substr(open + 1, decl.rfind(')') - open - 1));
    std::vector<Param> params;
    if (list != "void") {
      std::istringstream in(list);
      for (std::string p; std::getline(in, p, ',');) params.push_back(ParseParam(Strip(p)));
    }
    out[name] = params;
  }
  return out;
}

bool Glob(const char* pat, const char* s) {
  if (*pat == 0) return *s == 0;
  if (*pat == '*') return Glob(pat + 1, s) || (*s && Glob(pat, s + 1));
  return *s && (*pat == '?' || *pat == *s) && Glob(pat + 1, s + 1);
}

// ---------------------------------------------------------------------------
// Arguments and calls. Each argument is an ArgVal; the template below turns it into
// the parameter's real type, so every function is called through its own prototype.
struct ArgVal {
  void* p = nullptr;
  int i = 0;
  KroiSize size = {0, 0};
  double re = 0, im = 0;
};

constexpr long kNullResult = 1000;  // a pointer-returning function returned null

template <class A>
A Get(const ArgVal& v) {
  if constexpr (std::is_pointer_v<A>) {
    return static_cast<A>(v.p);
  } else if constexpr (std::is_same_v<A, KroiSize>) {
    return v.size;
  } else if constexpr (std::is_same_v<A, int>) {
    return v.i;
  } else if constexpr (std::is_arithmetic_v<A>) {
    return static_cast<A>(v.re);
  } else {
    A c;
    c.re = static_cast<decltype(c.re)>(v.re);
    c.im = static_cast<decltype(c.im)>(v.im);
    return c;
  }
}

template <class R, class... A, size_t... I>
long CallWith(R (*f)(A...), const ArgVal* a, std::index_sequence<I...>) {
  if constexpr (std::is_void_v<R>) {
    f(Get<A>(a[I])...);
    return 0;
  } else if constexpr (std::is_pointer_v<R>) {
    R r = f(Get<A>(a[I])...);
    if (r == nullptr) return kNullResult;
    if constexpr (!std::is_same_v<R, const KroLibraryVersion*>) krosFree(r);
    return 0;
  } else {
    return static_cast<long>(f(Get<A>(a[I])...));
  }
}

struct Export {
  const char* name;
  long (*call)(const ArgVal*);
  size_t arity;
};

template <class R, class... A>
constexpr size_t Arity(R (*)(A...)) {
  return sizeof...(A);
}

template <auto F>
long Call(const ArgVal* a) {
  return CallWith(F, a, std::make_index_sequence<Arity(F)>{});
}

#define KRO_SWEEP_FN(name) {#name, &Call<&name>, Arity(&name)},
const Export kExports[] = {
#include "kro_exports.inc"
};
#undef KRO_SWEEP_FN

// ---------------------------------------------------------------------------
// Buffers: every pointer gets 4 KiB with the argument 1 KiB in, so that functions that
// read around their region (wavelet borders, up-sampling) stay inside it.
constexpr size_t kBufBytes = 4096;
constexpr size_t kBufLead = 1024;

// Each buffer holds its own random bytes, so that a copy from one to another shows.
struct Buffer {
  explicit Buffer(uint64_t seed) {
    kro_test::Rng rng(seed);
    rng.Fill(bytes.data(), bytes.size(), 0, 255);
  }
  std::vector<uint8_t> bytes = std::vector<uint8_t>(kBufBytes);
  std::vector<uint8_t> saved;
  uint8_t* arg() { return bytes.data() + kBufLead; }
};

const Kro8u kBits[16] = {0, 0, 0, 0, 0, 0, 0, 255, 1};  // all 256 symbols coded

size_t ElementBytes(const std::string& t) {
  static const std::map<std::string, size_t> sizes = {
      {"Kro8u", 1},   {"Kro8s", 1},    {"Kro16u", 2},   {"Kro16s", 2},  {"Kro32u", 4},
      {"Kro32s", 4},  {"Kro32f", 4},   {"int", 4},      {"Kro64s", 8},  {"Kro64f", 8},
      {"double", 8},  {"Kro16sc", 4},  {"Kro32sc", 8},  {"Kro32fc", 8}, {"Kro64sc", 16},
      {"Kro64fc", 16}, {"KroiRect", 16}, {"void", 1}};
  const auto it = sizes.find(t);
  return it == sizes.end() ? 1 : it->second;
}

// One function under test: its arguments for the valid call, the buffers behind them,
// and the states that the library allocated.
class Harness {
 public:
  Harness(const std::vector<Param>& params, const std::string& setup) : params_(params) {
    args_.resize(params.size());
    for (size_t k = 0; k < params.size(); ++k) Prepare(k, setup);
  }
  ~Harness() {
    for (KroiEncodeState_JPEG2K* s : enc_states_) kroiEncodeFree_JPEG2K(s);
  }

  const std::vector<ArgVal>& args() const { return args_; }
  Buffer& buffer(size_t k) { return *buffers_[param_buffer_[k]]; }
  // A state of another kind (its identification word is not the expected one).
  uint8_t* Garbage() {
    if (garbage_ == nullptr) garbage_ = Settled(buffers_[NewBuffer()]->arg());
    return garbage_;
  }
  // A step-wise decoder state that was initialised but never attached.
  uint8_t* FreshDecodeState() {
    if (fresh_ == nullptr) fresh_ = Settled(DecodeState(false));
    return fresh_;
  }

  // After the valid call: release what it allocated, then remember every byte.
  void Settle() {
    ReleaseAll();
    for (auto& b : buffers_) b->saved = b->bytes;
    for (auto* s : enc_states_) {
      enc_saved_.emplace_back(reinterpret_cast<uint8_t*>(s), reinterpret_cast<uint8_t*>(s) + 256);
    }
  }
  void ReleaseAll() {
    for (size_t k = 0; k < params_.size(); ++k) ReleaseOut(k);
  }
  void ReleaseOut(size_t k) {
    if (params_[k].kind != Kind::kPtrPtr) return;
    void** slot = reinterpret_cast<void**>(buffer(k).arg());
    void* p = *slot;
    if (p != kStaleSlot && p != nullptr) {
      const std::string& t = params_[k].type;
      if (t == "KroiEncodeHuffmanSpec") kroiEncodeHuffmanSpecFree_JPEG_8u(static_cast<KroiEncodeHuffmanSpec*>(p));
      if (t == "KroiDecodeHuffmanSpec") kroiDecodeHuffmanSpecFree_JPEG_8u(static_cast<KroiDecodeHuffmanSpec*>(p));
      if (t == "KroiEncodeHuffmanState") kroiEncodeHuffmanStateFree_JPEG_8u(static_cast<KroiEncodeHuffmanState*>(p));
      if (t == "KroiDecodeHuffmanState") kroiDecodeHuffmanStateFree_JPEG_8u(static_cast<KroiDecodeHuffmanState*>(p));
      if (t == "KroiEncodeState_JPEG2K") kroiEncodeFree_JPEG2K(static_cast<KroiEncodeState_JPEG2K*>(p));
      if (t == "KroiDecodeCBProgrState_JPEG2K") kroiDecodeCBProgrFree_JPEG2K(static_cast<KroiDecodeCBProgrState_JPEG2K*>(p));
    }
    *slot = kStaleSlot;
  }
  // Describes the first byte that differs from what Settle() saw, or "".
  std::string Changed() const {
    for (const auto& b : buffers_) {
      for (size_t i = 0; i < kBufBytes; ++i) {
        if (b->bytes[i] != b->saved[i]) return "byte " + std::to_string(static_cast<long>(i) - static_cast<long>(kBufLead)) + " of a buffer";
      }
    }
    for (size_t s = 0; s < enc_states_.size(); ++s) {
      if (memcmp(enc_states_[s], enc_saved_[s].data(), enc_saved_[s].size()) != 0) return "the encoder state";
    }
    return "";
  }
  void Restore() {
    for (auto& b : buffers_) b->bytes = b->saved;
  }

 private:
  // Written into out-pointer slots, so that a failed call that stores even a null there
  // is seen.
  static inline void* const kStaleSlot = reinterpret_cast<void*>(uintptr_t{0xA5A5A5A5A5A5A5A5});

  size_t NewBuffer() {
    buffers_.push_back(std::make_unique<Buffer>(buffers_.size() + 1));
    return buffers_.size() - 1;
  }
  // Buffers made after Settle() are remembered as they are now.
  uint8_t* Settled(uint8_t* mem) {
    for (auto& b : buffers_)
      if (b->saved.empty()) b->saved = b->bytes;
    return mem;
  }

  void Prepare(size_t k, const std::string& setup) {
    const Param& p = params_[k];
    ArgVal& a = args_[k];
    param_buffer_[k] = 0;
    switch (p.kind) {
      case Kind::kInt: {
        const auto it = kIntDefaults.find(p.name);
        a.i = it != kIntDefaults.end() ? it->second : (p.name.size() > 4 && p.name.ends_with("Step") ? kStep : 0);
        return;
      }
      case Kind::kSize:
        a.size = kSize;
        return;
      case Kind::kScalar:
        a.re = a.im = 1;
        return;
      default:
        break;
    }
    const size_t b = NewBuffer();
    param_buffer_[k] = b;
    uint8_t* mem = buffers_[b]->arg();
    a.p = mem;
    if (p.kind == Kind::kPtrPtr) {
      *reinterpret_cast<void**>(mem) = kStaleSlot;
    } else if (p.kind == Kind::kPtrArray) {
      for (int e = 0; e < p.count; ++e) reinterpret_cast<void**>(mem)[e] = buffers_[NewBuffer()]->arg();
    } else if (p.type == "KroiEncodeHuffmanSpec") {
      std::vector<Kro8u> vals(256);
      for (int v = 0; v < 256; ++v) vals[v] = static_cast<Kro8u>(v);
      kroiEncodeHuffmanSpecInit_JPEG_8u(kBits, vals.data(), reinterpret_cast<KroiEncodeHuffmanSpec*>(mem));
    } else if (p.type == "KroiDecodeHuffmanSpec") {
      std::vector<Kro8u> vals(256);
      for (int v = 0; v < 256; ++v) vals[v] = static_cast<Kro8u>(v);
      kroiDecodeHuffmanSpecInit_JPEG_8u(kBits, vals.data(), reinterpret_cast<KroiDecodeHuffmanSpec*>(mem));
    } else if (p.type == "KroiEncodeHuffmanState") {
      kroiEncodeHuffmanStateInit_JPEG_8u(reinterpret_cast<KroiEncodeHuffmanState*>(mem));
    } else if (p.type == "KroiDecodeHuffmanState") {
      kroiDecodeHuffmanStateInit_JPEG_8u(reinterpret_cast<KroiDecodeHuffmanState*>(mem));
    } else if (p.type == "KroiEncodeState_JPEG2K") {
      a.p = EncodeState();
    } else if (p.type == "KroiDecodeCBProgrState_JPEG2K") {
      a.p = DecodeState(true);
    } else if (p.type == "KroiRect") {
      const KroiRect r = {0, 0, kSize.width, kSize.height};
      memcpy(mem, &r, sizeof(r));
    } else if (p.type == "int" || p.type == "Kro32u") {
      const auto it = kPointeeDefaults.find(p.name);
      int v = it != kPointeeDefaults.end() ? it->second : 0;
      if (p.name.ends_with("Step")) v = kStep;
      if (p.name.find("Statistics") != std::string::npos) v = -1;
      for (int e = 0; e < 256; ++e) reinterpret_cast<int*>(mem)[e] = v == -1 ? e % 5 : v;
    } else if (p.name == "pListBits") {
      memcpy(mem, kBits, sizeof(kBits));
    } else if (p.name == "pListVals") {
      for (int v = 0; v < 256; ++v) mem[v] = static_cast<uint8_t>(v);
    }
    if (setup.find("marker:" + p.name) != std::string::npos) {
      for (size_t i = 0; i + 1 < kBufBytes - kBufLead; i += 2) mem[i] = 0xFF, mem[i + 1] = 0xD9;
    }
  }

  // An encoder state holding a coded 4x4 block whose bytes have all been taken.
  void* EncodeState() {
    KroiEncodeState_JPEG2K* s = nullptr;
    kroiEncodeInitAlloc_JPEG2K(&s, {16, 16});
    enc_states_.push_back(s);
    const Kro32s block[16] = {5 << 20, 3 << 20, 0, 1 << 20, 0, 0, 7 << 20, 0, 0, 0, 0, 0, 2 << 20, 0, 0, 1};
    int sf = 0, passes = 0, segments = 0, len = 0, more = 1;
    kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(block, 16, {4, 4}, s, 0, 12, 0, 0, 0, &sf, &passes, &segments);
    uint8_t out[256];
    while (more) {
      len = sizeof(out);
      if (kroiEncodeStoreBits_JPEG2K_1u(out, &len, s, &more) != kroStatusOk) break;
    }
    return s;
  }

  // A step-wise decoder state in a buffer of our own, attached to a 4x4 block unless
  // `attach` is false.
  uint8_t* DecodeState(bool attach) {
    int bytes = 0;
    kroiDecodeCBProgrGetStateSize_JPEG2K({16, 16}, &bytes);
    EXPECT_LE(static_cast<size_t>(bytes), kBufBytes - kBufLead);
    uint8_t* mem = buffers_[NewBuffer()]->arg();
    auto* st = reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(mem);
    kroiDecodeCBProgrInit_JPEG2K(st);
    if (attach) {
      auto* dst = reinterpret_cast<Kro32s*>(buffers_[NewBuffer()]->arg());
      kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(dst, kStep, kSize, st, 0, 4, 0);
      kroiDecodeCBProgrSetPassCounter_JPEG2K(3, st);
    }
    return mem;
  }

  std::vector<Param> params_;
  std::vector<ArgVal> args_;
  std::vector<std::unique_ptr<Buffer>> buffers_;
  std::map<size_t, size_t> param_buffer_;
  std::vector<KroiEncodeState_JPEG2K*> enc_states_;
  std::vector<std::vector<uint8_t>> enc_saved_;
  uint8_t* garbage_ = nullptr;
  uint8_t* fresh_ = nullptr;
};

// ---------------------------------------------------------------------------
// Probes: the changes one call makes to the valid arguments.
struct Mod {
  enum Op { kArgPtr, kArgInt, kWidth, kHeight, kScalar, kPointee32, kPointee64, kGarbage, kFresh } op;
  size_t param;
  long value = 0;
  double real = 0;
  size_t offset = 0;  // bytes into the pointee
};

struct Probe {
  std::string text;
  std::vector<Mod> mods;
};

struct Group {
  long status;
  std::vector<Probe> probes;
};

struct Plan {
  std::vector<Group> groups;
  std::string error;  // why the line does not fit the function
};

bool IsStep(const Param& p) { return p.kind == Kind::kInt && p.name.ends_with("Step"); }
bool IsSizeInt(const Param& p) { return p.kind == Kind::kInt && (p.name == "len" || p.name == "width" || p.name == "srcWidth"); }

std::vector<long> ParseValues(const std::string& s, std::vector<double>* reals) {
  std::vector<long> out;
  std::istringstream in(s);
  for (std::string v; std::getline(in, v, ',');) {
    out.push_back(strtol(v.c_str(), nullptr, 10));
    if (reals) reals->push_back(strtod(v.c_str(), nullptr));
  }
  return out;
}

Plan MakePlan(const std::vector<Param>& params, const Rule& rule) {
  Plan plan;
  auto find = [&](const std::string& name) -> int {
    for (size_t k = 0; k < params.size(); ++k)
      if (params[k].name == name) return static_cast<int>(k);
    return -1;
  };
  // What the line names explicitly, so that the wildcards take the rest.
  std::vector<bool> named_null(params.size()), named_elems(params.size()), named_other(params.size());
  std::vector<bool> optional(params.size());
  {
    std::istringstream in(rule.setup);
    for (std::string w; in >> w;) {
      if (w.rfind("opt:", 0) == 0) {
        const int k = find(w.substr(4));
        if (k < 0) plan.error = "no parameter " + w;
        else optional[k] = true;
      }
    }
  }
  struct Token {
    size_t group;
    std::string text;
  };
  std::vector<Token> tokens;
  std::istringstream lines(rule.checks);
  for (std::string g; std::getline(lines, g, ';');) {
    g = Strip(g);
    if (g.empty()) continue;
    const size_t colon = g.find(':');
    const std::string st = g.substr(0, colon);
    plan.groups.push_back({st == "null" ? kNullResult : strtol(st.c_str(), nullptr, 10), {}});
    std::istringstream in(g.substr(colon + 1));
    for (std::string t; in >> t;) {
      tokens.push_back({plan.groups.size() - 1, t});
      if (t[0] == '@') continue;
      std::string base = t.substr(t[0] == '*' ? 1 : 0);
      base = base.substr(0, base.find_first_of("[.=#&"));
      const int k = find(base);
      if (k < 0) {
        plan.error = "no parameter " + base + " for " + t;
        return plan;
      }
      if (t.find('[') != std::string::npos) named_elems[k] = true;
      else if (t == base) (IsStep(params[k]) || params[k].kind == Kind::kSize || IsSizeInt(params[k]) ? named_other : named_null)[k] = true;
      else named_other[k] = true;
    }
  }
  auto size_probes = [](size_t k, bool w, bool h, const std::string& name) {
    std::vector<Probe> out;
    for (long v : {0L, -1L}) {
      if (w) out.push_back({name + ".width=" + std::to_string(v), {{Mod::kWidth, k, v}}});
      if (h) out.push_back({name + ".height=" + std::to_string(v), {{Mod::kHeight, k, v}}});
    }
    return out;
  };
  for (const Token& tok : tokens) {
    std::vector<Probe>& out = plan.groups[tok.group].probes;
    const std::string& t = tok.text;
    if (t == "@ptr") {
      for (size_t k = 0; k < params.size(); ++k) {
        if (params[k].kind == Kind::kPtr || params[k].kind == Kind::kPtrArray || params[k].kind == Kind::kPtrPtr) {
          if (!named_null[k] && !optional[k]) out.push_back({params[k].name + "=null", {{Mod::kArgPtr, k}}});
        }
        if (params[k].kind == Kind::kPtrArray && !named_elems[k]) {
          for (int e = 0; e < params[k].count; ++e)
            out.push_back({params[k].name + "[" + std::to_string(e) + "]=null", {{Mod::kPointee64, k, 0, 0, 8u * e}}});
        }
      }
    } else if (t == "@step" || t == "@size") {
      for (size_t k = 0; k < params.size(); ++k) {
        if (named_other[k]) continue;
        if (t == "@step" && IsStep(params[k])) {
          for (long v : {0L, -1L}) out.push_back({params[k].name + "=" + std::to_string(v), {{Mod::kArgInt, k, v}}});
        }
        if (t == "@size" && IsSizeInt(params[k])) {
          for (long v : {0L, -1L}) out.push_back({params[k].name + "=" + std::to_string(v), {{Mod::kArgInt, k, v}}});
        }
        if (t == "@size" && params[k].kind == Kind::kSize) {
          for (Probe& p : size_probes(k, true, true, params[k].name)) out.push_back(p);
        }
      }
    } else if (t.find('=') != std::string::npos) {
      // name=v,v or a=v&b=v or *name=v,v
      std::vector<std::pair<std::string, std::string>> assigns;
      std::istringstream in(t);
      for (std::string a; std::getline(in, a, '&');) {
        const size_t eq = a.find('=');
        assigns.push_back({a.substr(0, eq), a.substr(eq + 1)});
      }
      std::vector<double> reals;
      const std::vector<long> first = ParseValues(assigns[0].second, &reals);
      for (size_t v = 0; v < first.size(); ++v) {
        Probe probe{assigns[0].first + "=" + std::to_string(first[v]), {}};
        for (size_t a = 0; a < assigns.size(); ++a) {
          const bool pointee = assigns[a].first[0] == '*';
          const size_t k = static_cast<size_t>(find(assigns[a].first.substr(pointee ? 1 : 0)));
          std::vector<double> rv;
          const std::vector<long> vals = ParseValues(assigns[a].second, &rv);
          const long value = a == 0 ? first[v] : vals[0];
          if (a > 0) probe.text += "&" + assigns[a].first + "=" + std::to_string(value);
          if (pointee) probe.mods.push_back({Mod::kPointee32, k, value});
          else if (params[k].kind == Kind::kScalar) probe.mods.push_back({Mod::kScalar, k, 0, a == 0 ? reals[v] : rv[0]});
          else probe.mods.push_back({Mod::kArgInt, k, value});
        }
        out.push_back(probe);
      }
    } else if (t.ends_with("#") || t.ends_with("#fresh")) {
      const size_t k = static_cast<size_t>(find(t.substr(0, t.find('#'))));
      out.push_back({t, {{t.ends_with("#") ? Mod::kGarbage : Mod::kFresh, k}}});
    } else if (t.ends_with("[]")) {
      const size_t k = static_cast<size_t>(find(t.substr(0, t.size() - 2)));
      for (int e = 0; e < params[k].count; ++e) {
        const std::string name = params[k].name + "[" + std::to_string(e) + "]";
        if (params[k].kind == Kind::kPtrArray) {
          out.push_back({name + "=null", {{Mod::kPointee64, k, 0, 0, 8u * e}}});
        } else {
          for (long v : {0L, -1L})
            out.push_back({name + "=" + std::to_string(v), {{Mod::kPointee32, k, v, 0, 4u * e}}});
        }
      }
    } else if (t.find('.') != std::string::npos) {
      const std::string name = t.substr(0, t.find('.'));
      const size_t k = static_cast<size_t>(find(name));
      const bool w = t.ends_with(".w");
      if (params[k].kind == Kind::kSize) {
        for (Probe& p : size_probes(k, w, !w, name)) out.push_back(p);
      } else {  // a KroiRect: x, y, width, height
        for (long v : {0L, -1L})
          out.push_back({t + "=" + std::to_string(v), {{Mod::kPointee32, k, v, 0, w ? 8u : 12u}}});
      }
    } else {
      const size_t k = static_cast<size_t>(find(t));
      const Param& p = params[k];
      if (p.kind == Kind::kSize) {
        for (Probe& pr : size_probes(k, true, true, t)) out.push_back(pr);
      } else if (p.kind == Kind::kInt) {
        for (long v : {0L, -1L}) out.push_back({t + "=" + std::to_string(v), {{Mod::kArgInt, k, v}}});
      } else {
        out.push_back({t + "=null", {{Mod::kArgPtr, k}}});
      }
    }
  }
  // Every pointer, pointer element, step and size must be probed somewhere.
  std::vector<bool> probed_ptr(params.size()), probed_other(params.size());
  std::vector<std::vector<bool>> probed_elem(params.size());
  for (size_t k = 0; k < params.size(); ++k) probed_elem[k].assign(params[k].count, false);
  for (const Group& g : plan.groups) {
    for (const Probe& p : g.probes) {
      for (const Mod& m : p.mods) {
        if (m.op == Mod::kArgPtr) probed_ptr[m.param] = true;
        else if (m.op == Mod::kPointee64) probed_elem[m.param][m.offset / 8] = true;
        else probed_other[m.param] = true;
        if (m.op == Mod::kPointee32 && params[m.param].kind == Kind::kPtr && params[m.param].count > 0)
          probed_elem[m.param][m.offset / 4] = true;
      }
    }
  }
  for (size_t k = 0; k < params.size(); ++k) {
    const Param& p = params[k];
    const bool pointer = p.kind == Kind::kPtr || p.kind == Kind::kPtrArray || p.kind == Kind::kPtrPtr;
    if (pointer && !probed_ptr[k] && !optional[k]) plan.error = "pointer " + p.name + " is never null";
    if (p.kind == Kind::kPtrArray)
      for (bool e : probed_elem[k])
        if (!e) plan.error = "an element of " + p.name + " is never null";
    if ((IsStep(p) || IsSizeInt(p) || p.kind == Kind::kSize) && !probed_other[k])
      plan.error = p.name + " is never probed";
  }
  return plan;
}

// Applies a probe, calls, and undoes the changes to pointees.
long RunProbe(Harness& h, long (*call)(const ArgVal*), const std::vector<const Probe*>& probes) {
  std::vector<ArgVal> args = h.args();
  struct Undo {
    uint8_t* at;
    uint8_t old[8];
    size_t n;
  };
  std::vector<Undo> undo;
  for (const Probe* probe : probes) {
    for (const Mod& m : probe->mods) {
      ArgVal& a = args[m.param];
      switch (m.op) {
        case Mod::kArgPtr: a.p = nullptr; break;
        case Mod::kArgInt: a.i = static_cast<int>(m.value); break;
        case Mod::kWidth: a.size.width = static_cast<int>(m.value); break;
        case Mod::kHeight: a.size.height = static_cast<int>(m.value); break;
        case Mod::kScalar: a.re = a.im = m.real; break;
        case Mod::kGarbage: a.p = h.Garbage(); break;
        case Mod::kFresh: a.p = h.FreshDecodeState(); break;
        case Mod::kPointee32:
        case Mod::kPointee64: {
          const size_t n = m.op == Mod::kPointee32 ? 4 : 8;
          Undo u{static_cast<uint8_t*>(a.p) + m.offset, {}, n};
          memcpy(u.old, u.at, n);
          const int64_t v64 = m.value;
          const int32_t v32 = static_cast<int32_t>(m.value);
          memcpy(u.at, n == 4 ? static_cast<const void*>(&v32) : &v64, n);
          undo.push_back(u);
          break;
        }
      }
    }
  }
  const long status = call(args.data());
  for (auto it = undo.rbegin(); it != undo.rend(); ++it) memcpy(it->at, it->old, it->n);
  return status;
}

bool SameParameter(const Probe& a, const Probe& b) {
  for (const Mod& x : a.mods)
    for (const Mod& y : b.mods)
      if (x.param == y.param) return true;
  return false;
}

bool ArgumentStatus(long s) {
  return s == -5 || s == -6 || s == -8 || s == -10 || s == -14 || s == -17 || s == -113 || s == -180 ||
         s == kNullResult;
}

TEST(ArgumentSweep, EveryExport) {
  const auto header = ReadHeader();
  size_t calls = 0;
  for (const Export& ex : kExports) {
    SCOPED_TRACE(ex.name);
    const auto decl = header.find(ex.name);
    ASSERT_NE(decl, header.end()) << "not declared in kroj.h";
    ASSERT_EQ(decl->second.size(), ex.arity) << "kroj.h and the compiled prototype disagree";
    const Rule* rule = nullptr;
    for (const Rule& r : kRules) {
      if (Glob(r.pattern, ex.name)) {
        rule = &r;
        break;
      }
    }
    ASSERT_NE(rule, nullptr) << "no family line describes this function";
    const Plan plan = MakePlan(decl->second, *rule);
    ASSERT_EQ(plan.error, "") << "family line " << rule->pattern;

    Harness h(decl->second, rule->setup);
    if (strstr(rule->setup, "nobase") == nullptr) {
      const long base = RunProbe(h, ex.call, {});
      ++calls;
      EXPECT_FALSE(ArgumentStatus(base)) << "the valid call returns " << base;
    }
    h.Settle();
    auto expect = [&](const std::vector<const Probe*>& probes, long status) {
      const long got = RunProbe(h, ex.call, probes);
      ++calls;
      std::string what;
      for (const Probe* p : probes) what += (what.empty() ? "" : ", ") + p->text;
      EXPECT_EQ(got, status) << what;
      if (status < 0 || status == kNullResult) {
        const std::string changed = h.Changed();
        EXPECT_EQ(changed, "") << what << " changed memory";
      }
      h.ReleaseAll();
      h.Restore();
    };
    for (const Group& g : plan.groups)
      for (const Probe& p : g.probes) expect({&p}, g.status);
    // Pairs across groups: the earlier check decides.
    for (size_t i = 0; i < plan.groups.size(); ++i) {
      for (size_t j = i + 1; j < plan.groups.size(); ++j) {
        const Group& a = plan.groups[i];
        const Group& b = plan.groups[j];
        if (a.status == b.status || a.status == 0 || a.probes.empty() || b.probes.empty()) continue;
        for (const auto& [x, y] : {std::pair(&a.probes.front(), &b.probes.front()),
                                   std::pair(&a.probes.back(), &b.probes.back())}) {
          if (!SameParameter(*x, *y)) expect({x, y}, a.status);
        }
      }
    }
  }
  RecordProperty("calls", static_cast<int>(calls));
}

}  // namespace

// ---------------------------------------------------------------------------
// Sizes whose products leave 32 bits.

// The allocators count bytes in 64 bits: a length whose byte count wraps a 32-bit
// product to a few bytes must give the whole block or null, never the few bytes.
TEST(HostileSizes, AllocationsCountBytesIn64Bits) {
  struct Alloc {
    void* (*fn)(int);
    int64_t elem;
  };
  const Alloc allocs[] = {
      {[](int n) -> void* { return krosMalloc_8u(n); }, 1},   {[](int n) -> void* { return krosMalloc_16s(n); }, 2},
      {[](int n) -> void* { return krosMalloc_32f(n); }, 4},  {[](int n) -> void* { return krosMalloc_64f(n); }, 8},
      {[](int n) -> void* { return krosMalloc_64fc(n); }, 16}};
  for (const Alloc& a : allocs) {
    const int len = a.elem == 1 ? INT_MAX : static_cast<int>((int64_t{1} << 32) / a.elem + 1);
    auto* p = static_cast<uint8_t*>(a.fn(len));
    if (p == nullptr) continue;  // the system refused: as documented
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 32, 0u);
    p[0] = 1;
    p[len * a.elem - 1] = 1;  // the last byte of the block is ours
    krosFree(p);
  }
}

// The wavelet buffer-size queries keep the low 32 bits of the line-buffer size (computed
// in 64 bits) and wrap the working-image size in 32 bits, as documented: a huge tile
// gets a size no caller can use, and never signed overflow.
TEST(HostileSizes, WaveletBufferSizesWrapAsDocumented) {
  struct Query {
    KroStatus (*fn)(const KroiRect*, int*);
    uint32_t bytes, ext;
    bool d97, out_of_place;
  };
  const Query queries[] = {{kroiWTGetBufSize_B53_JPEG2K_16s_C1IR, 2, 4, false, false},
                           {kroiWTGetBufSize_B53_JPEG2K_16s_C1R, 2, 4, false, true},
                           {kroiWTGetBufSize_B53_JPEG2K_32s_C1IR, 4, 4, false, false},
                           {kroiWTGetBufSize_B53_JPEG2K_32s_C1R, 4, 4, false, true},
                           {kroiWTGetBufSize_D97_JPEG2K_16s_C1IR, 2, 8, true, false},
                           {kroiWTGetBufSize_D97_JPEG2K_16s_C1R, 2, 8, true, true},
                           {kroiWTGetBufSize_D97_JPEG2K_32s_C1IR, 4, 8, true, false},
                           {kroiWTGetBufSize_D97_JPEG2K_32s_C1R, 4, 8, true, true}};
  const KroiRect rects[] = {{0, 0, (1 << 30) + 5, 7}, {1, 1, 3, (1 << 29) + 3}, {0, 1, INT_MAX, INT_MAX}};
  for (const KroiRect& r : rects) {
    for (const Query& q : queries) {
      const int64_t longest = std::max<int64_t>(r.width, r.height);
      const bool tiny = q.d97 ? r.width < 2 && r.height < 2 : r.width <= 2 && r.height <= 2;
      const uint32_t line = tiny ? 0 : static_cast<uint32_t>(q.bytes * (longest + q.ext));
      const uint32_t step = (static_cast<uint32_t>(r.width) * q.bytes + 31) & ~31u;
      const uint32_t want = q.out_of_place ? step * static_cast<uint32_t>(r.height) + line : line;
      int size = 0;
      ASSERT_EQ(q.fn(&r, &size), kroStatusOk);
      EXPECT_EQ(static_cast<uint32_t>(size), want) << r.width << " x " << r.height;
    }
  }
}

// Code-block states for blocks no memory holds: refused, or a size at least the true one.
TEST(HostileSizes, CodeBlockStatesRefuseWhatDoesNotFit) {
  for (const KroiSize s : {KroiSize{INT_MAX, INT_MAX}, KroiSize{1 << 30, 1 << 20}, KroiSize{3, INT_MAX}}) {
    // The bytes a state needs, in double: the product leaves 64 bits for the largest sizes.
    const double need = double((int64_t{4} * s.width + 8 + 31) / 32 * 32) * double((int64_t{s.height} + 1) / 2 + 2) + 472;
    int size = 0;
    for (auto query : {kroiDecodeGetBufSize_JPEG2K, kroiDecodeCBProgrGetStateSize_JPEG2K}) {
      const KroStatus st = query(s, &size);
      EXPECT_TRUE(st == kroStatusBadSize || (st == kroStatusOk && size >= need)) << st << " " << size;
    }
    KroiDecodeCBProgrState_JPEG2K* progr = nullptr;
    const KroStatus st = kroiDecodeCBProgrInitAlloc_JPEG2K(&progr, s);
    EXPECT_TRUE(st == kroStatusBadSize || st == kroStatusNoMemory) << st << " for " << s.width << " x " << s.height;
    EXPECT_EQ(progr, nullptr);
    KroiEncodeState_JPEG2K* enc = nullptr;
    const KroStatus est = kroiEncodeInitAlloc_JPEG2K(&enc, s);
    EXPECT_TRUE(est == kroStatusBadSize || est == kroStatusNoMemory) << est;
    EXPECT_EQ(enc, nullptr);
  }
}
