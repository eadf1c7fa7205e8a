// SPDX-License-Identifier: BSD-3-Clause
// Constant tables: colour conversion, zig-zag, Huffman sizes, MQ and context
// tables, distortion tables.
#include "tables.h"

namespace kro {

// ---- Huffman coding ----

// ---- Quantisation, DCT and zig-zag ----

// ---- Colour conversion and sampling ----

// ---- JPEG 2000 transforms ----

// ---- JPEG 2000 tier-1 (MQ coder, contexts, distortion) ----

// ---- Image and signal primitives ----

}  // namespace kro
