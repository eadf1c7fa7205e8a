// SPDX-License-Identifier: BSD-3-Clause
// Constant tables shared across families. Each family declares its tables in its own
// section; the definitions live in tables.cpp.
#ifndef KROJ_SRC_TABLES_H_
#define KROJ_SRC_TABLES_H_

#include "kro_base.h"

namespace kro {

// ---- Huffman coding ----

// ---- Quantisation, DCT and zig-zag ----

// ---- Colour conversion and sampling ----

// ---- JPEG 2000 transforms ----

// ---- JPEG 2000 tier-1 (MQ coder, contexts, distortion) ----

// ---- Image and signal primitives ----

}  // namespace kro

#endif  // KROJ_SRC_TABLES_H_
