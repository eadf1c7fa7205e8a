// SPDX-License-Identifier: BSD-3-Clause
// Packet header bits (T.800 B.10.1: a byte after 0xFF carries only seven bits) and the
// tag trees that code code-block inclusion and missing bit-planes (T.800 B.10.2).
#ifndef KROJCODEC_J2K_TAGTREE_H_
#define KROJCODEC_J2K_TAGTREE_H_

#include <stddef.h>
#include <stdint.h>

#include <vector>

namespace krojcodec::j2k {

class HeaderBitWriter {
 public:
  explicit HeaderBitWriter(std::vector<uint8_t>* out) : out_(out) {}
  void Bit(int b) {
    if (free_ == 0) Flush8();
    acc_ = acc_ << 1 | (b & 1);
    --free_;
  }
  void Bits(uint32_t v, int n) {
    for (int i = n - 1; i >= 0; --i) Bit(static_cast<int>(v >> i) & 1);
  }
  // Pads the last byte with zeros; a final 0xFF is followed by a zero byte, so the
  // packet body never starts right after a 0xFF of the header.
  void Finish() {
    acc_ <<= free_;
    free_ = 0;
    Flush8();
    if (last_ == 0xFF) out_->push_back(0);
  }

 private:
  void Flush8() {
    if (free_ != 0) return;
    if (bits_ > 0) {
      last_ = static_cast<uint8_t>(acc_);
      out_->push_back(last_);
    }
    bits_ = last_ == 0xFF ? 7 : 8;
    free_ = bits_;
    acc_ = 0;
  }
  std::vector<uint8_t>* out_;
  uint32_t acc_ = 0;
  int bits_ = 0;  // bits of the byte being filled (0 before the first)
  int free_ = 0;
  uint8_t last_ = 0;
};

// Reads packet header bits; past the end it yields zeros and remembers the overrun.
class HeaderBitReader {
 public:
  HeaderBitReader(const uint8_t* p, size_t n) : p_(p), n_(n) {}
  int Bit() {
    if (left_ == 0) {
      const bool after_ff = cur_ == 0xFF;
      if (pos_ >= n_) {
        overrun_ = true;
        cur_ = 0;
      } else {
        cur_ = p_[pos_++];
      }
      left_ = after_ff ? 7 : 8;
    }
    --left_;
    return (cur_ >> left_) & 1;
  }
  uint32_t Bits(int n) {
    uint32_t v = 0;
    for (int i = 0; i < n; ++i) v = v << 1 | static_cast<uint32_t>(Bit());
    return v;
  }
  // Skips the rest of the byte, and the zero byte that follows a final 0xFF.
  void Align() {
    left_ = 0;
    if (cur_ == 0xFF) {
      if (pos_ < n_)
        ++pos_;
      else
        overrun_ = true;
    }
    cur_ = 0;
  }
  size_t consumed() const { return pos_; }
  bool overrun() const { return overrun_; }

 private:
  const uint8_t* p_;
  size_t n_;
  size_t pos_ = 0;
  int left_ = 0;
  uint32_t cur_ = 0;
  bool overrun_ = false;
};

// A tag tree over a w x h grid of leaves. Each node knows the lower bound its value has
// been shown to reach (low) and whether the value itself has been sent.
class TagTree {
 public:
  static constexpr int kUnknown = 1 << 30;

  void Init(int w, int h) {
    nodes_.clear();
    int lw = w, lh = h;
    for (;;) {
      level_start_.push_back(static_cast<int>(nodes_.size()));
      nodes_.resize(nodes_.size() + static_cast<size_t>(lw) * lh);
      if (lw <= 1 && lh <= 1) break;
      lw = (lw + 1) / 2;
      lh = (lh + 1) / 2;
    }
    // Parent links, level by level.
    lw = w;
    lh = h;
    for (size_t k = 0; k + 1 < level_start_.size(); ++k) {
      const int pw = (lw + 1) / 2;
      for (int y = 0; y < lh; ++y)
        for (int x = 0; x < lw; ++x)
          nodes_[level_start_[k] + y * lw + x].parent = level_start_[k + 1] + (y / 2) * pw + x / 2;
      lw = pw;
      lh = (lh + 1) / 2;
    }
    level_start_.clear();
  }

  // Decoder start: every value unknown.
  void Reset() {
    for (Node& n : nodes_) n = Node{n.parent, kUnknown, 0, false};
  }
  // Encoder start: leaves get their values, inner nodes the minimum of their children.
  template <class LeafValue>
  void Reset(LeafValue leaf_value, int leaves) {
    for (Node& n : nodes_) n = Node{n.parent, kUnknown, 0, false};
    for (int i = 0; i < leaves; ++i) {
      const int v = leaf_value(i);
      for (int k = i; k >= 0 && nodes_[k].value > v; k = nodes_[k].parent) nodes_[k].value = v;
    }
  }

  // Sends what is needed for the decoder to know whether the leaf's value is below
  // threshold (and the value itself once it is).
  void Encode(HeaderBitWriter& bw, int leaf, int threshold) {
    int path[40];
    int depth = Path(leaf, path);
    int low = 0;
    while (depth > 0) {
      Node& n = nodes_[path[--depth]];
      if (low > n.low)
        n.low = low;
      else
        low = n.low;
      while (low < threshold) {
        if (low >= n.value) {
          if (!n.known) {
            bw.Bit(1);
            n.known = true;
          }
          break;
        }
        bw.Bit(0);
        ++low;
      }
      n.low = low;
    }
  }

  // Returns whether the leaf's value is below threshold.
  bool Decode(HeaderBitReader& br, int leaf, int threshold) {
    int path[40];
    int depth = Path(leaf, path);
    int low = 0;
    while (depth > 0) {
      Node& n = nodes_[path[--depth]];
      if (low > n.low)
        n.low = low;
      else
        low = n.low;
      while (low < threshold && low < n.value) {
        if (br.Bit())
          n.value = low;
        else
          ++low;
      }
      n.low = low;
    }
    return nodes_[leaf].value < threshold;
  }
  int Value(int leaf) const { return nodes_[leaf].value; }

 private:
  struct Node {
    int parent = -1;
    int value = kUnknown;
    int low = 0;
    bool known = false;
  };
  // Leaf-to-root path; the root is last.
  int Path(int leaf, int* path) const {
    int d = 0;
    for (int k = leaf; k >= 0; k = nodes_[k].parent) path[d++] = k;
    return d;
  }
  std::vector<Node> nodes_;
  std::vector<int> level_start_;
};

}  // namespace krojcodec::j2k

#endif  // KROJCODEC_J2K_TAGTREE_H_
