#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Turns the benchmark outputs into a report: markdown tables and SVG charts.

Inputs (all written by `make bench`):
  <dir>/bench.json              kroj_bench, best SIMD target, one thread
  <dir>/bench-target-<T>.json   kroj_bench --kroj_target=<T> over the streaming,
                                DCT and wavelet families
  <dir>/rd.json                 kroj_rd: rate against PSNR of the example codecs
Output: <dir>/report/README.md and the SVG files it shows. The summary table is
also printed on stdout.

Benchmarks are named BM_<family>_<function>/<args>; BM_peer_<family>_... is the peer
measured on the same work, BM_yardstick_<family>_memcpy/... the memcpy bandwidth of
the family's image size (else BM_yardstick_parallel_memcpy, 9 Mpixel), counted as
bytes read plus written like the kernels. BM_parallel_<function>/.../threads:<n>
are the row-parallel functions with one and two threads.
Python 3 standard library only.
"""
import argparse
import glob
import html
import json
import math
import os
import re
import statistics
import sys

# Families shown against memcpy; of these, the streaming kernels (colour conversion,
# sampling, level shift, component transforms, copies, sets, logical operations) are
# held to half of memcpy's bandwidth.
SHOW_MEMCPY = {"colour", "component", "dct", "image", "signal", "wavelet"}
# Families whose peer is memcpy (or memset) of the same bytes.
MEMCPY_PEERS = {"image", "signal"}


def is_streaming(family, rest):
    if family in ("colour", "component", "image", "parallel"):
        return True
    if family == "dct":
        return re.search(r"Add128|Sub128", rest) is not None
    if family == "signal":
        return re.search(r"Copy|Set|Zero", rest) is not None
    return False

PEERS = {
    "colour": "TurboJPEG's YUV plane functions (memcpy for the samplers)",
    "dct": "libjpeg-turbo's inverse DCT",
    "huffman": "libjpeg-turbo's jpeg_write_coefficients / jpeg_read_coefficients",
    "codeblock": "OpenJPEG",
    "image": "memcpy / memset",
    "signal": "memcpy / memset",
    "jpeg": "tjCompress2 / tjDecompress2",
    "jpegcodec": "tjCompress2 / tjDecompress2",
    "j2k": "opj_encode / opj_decode (1 thread)",
    "j2kcodec": "opj_encode / opj_decode (1 thread)",
}
CODECS = {"jpeg", "jpegcodec", "j2k", "j2kcodec"}
TARGET_ORDER = ["AVX3_DL", "AVX3", "AVX2", "SSE4", "SSSE3", "EMU128", "SCALAR"]
TARGET_RE = re.compile(r"/(%s)$" % "|".join(TARGET_ORDER))
PARALLEL_GOAL = 1.7
MEMCPY_GOAL = 0.5

NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


# ---------------------------------------------------------------- reading

def load_runs(path):
    """name -> {time_ns, bytes, items} from a Google Benchmark JSON file, using the
    median over repetitions where there are several."""
    with open(path) as f:
        doc = json.load(f)
    per_name = {}
    medians = {}
    for b in doc.get("benchmarks", []):
        if b.get("error_occurred"):
            continue
        name = b.get("run_name", b["name"]).replace("/real_time", "")
        entry = {
            "time_ns": b["real_time"] * NS.get(b.get("time_unit", "ns"), 1.0),
            "bytes": b.get("bytes_per_second"),
            "items": b.get("items_per_second"),
        }
        if b.get("run_type") == "aggregate":
            if b.get("aggregate_name") == "median":
                medians[name] = entry
        else:
            per_name.setdefault(name, []).append(entry)
    out = {}
    for name, entries in per_name.items():
        out[name] = {k: median([e[k] for e in entries]) for k in entries[0]}
    out.update(medians)
    return doc.get("context", {}), out


def median(values):
    values = [v for v in values if v is not None]
    return statistics.median(values) if values else None


def split(name):
    """BM_<family>_<rest> -> (kind, family, rest); kind is '', 'peer' or 'yardstick'."""
    if not name.startswith("BM_"):
        return None
    body = name[3:]
    kind = ""
    for k in ("peer_", "yardstick_"):
        if body.startswith(k):
            kind, body = k[:-1], body[len(k):]
            break
    if "_" not in body:
        return None
    family, rest = body.split("_", 1)
    return kind, family, rest


# ---------------------------------------------------------------- formatting

def fmt_rate(r):
    if r is None:
        return "—"
    for unit, scale in (("G", 1e9), ("M", 1e6), ("k", 1e3)):
        if r >= scale:
            return "%.3g %s" % (r / scale, unit)
    return "%.3g" % r


def fmt_time(ns):
    if ns is None:
        return "—"
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= scale:
            return "%.3g %s" % (ns / scale, unit)
    return "%.3g ns" % ns


def fmt_x(x):
    return "—" if x is None else "%.2fx" % x


def throughput(r):
    """(value, unit) of a run: MB/s when bytes are counted, else Mitems/s."""
    if r.get("bytes"):
        return r["bytes"] / 1e6, "MB/s"
    if r.get("items"):
        return r["items"] / 1e6, "Mitem/s"
    return None, None


# ---------------------------------------------------------------- SVG

COLOURS = ["#1f77b4", "#ff7f0e", "#2ca02c", "#d62728", "#9467bd", "#8c564b", "#e377c2"]


def esc(s):
    return html.escape(str(s), quote=True)


def svg_bars(path, title, rows, series, unit, goal=None):
    """Horizontal grouped bars. rows: [(label, [value or None per series])]."""
    label_w, bar_h, gap, chart_w = 330, 11, 8, 430
    n = len(series)
    group_h = n * bar_h + gap
    top = 50
    height = top + len(rows) * group_h + 40
    vmax = max([v for _, vals in rows for v in vals if v] + [goal or 0] + [1e-9])
    scale = chart_w / (vmax * 1.05)
    out = ['<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" '
           'font-family="sans-serif" font-size="11">' % (label_w + chart_w + 90, height),
           '<rect width="100%" height="100%" fill="white"/>',
           '<text x="10" y="18" font-size="14" font-weight="bold">%s</text>' % esc(title)]
    step = 150 if n <= 3 else 85
    for i, s in enumerate(series):
        x = label_w + i * step
        out.append('<rect x="%d" y="28" width="10" height="10" fill="%s"/>' % (x, COLOURS[i]))
        out.append('<text x="%d" y="37">%s</text>' % (x + 14, esc(s)))
    for r, (label, vals) in enumerate(rows):
        y0 = top + r * group_h
        out.append('<text x="%d" y="%d" text-anchor="end">%s</text>'
                   % (label_w - 6, y0 + n * bar_h / 2 + 4, esc(label[:52])))
        for i, v in enumerate(vals):
            if not v:
                continue
            w = max(1, v * scale)
            y = y0 + i * bar_h
            out.append('<rect x="%d" y="%d" width="%.1f" height="%d" fill="%s"/>'
                       % (label_w, y, w, bar_h - 1, COLOURS[i % len(COLOURS)]))
            out.append('<text x="%.1f" y="%d" font-size="9">%.3g</text>'
                       % (label_w + w + 3, y + bar_h - 2, v))
    axis_y = top + len(rows) * group_h
    out.append('<line x1="%d" y1="%d" x2="%d" y2="%d" stroke="black"/>'
               % (label_w, top - 4, label_w, axis_y))
    out.append('<text x="%d" y="%d">%s (longer is faster)</text>' % (label_w, axis_y + 20, esc(unit)))
    if goal:
        gx = label_w + goal * scale
        out.append('<line x1="%.1f" y1="%d" x2="%.1f" y2="%d" stroke="red" stroke-dasharray="4,3"/>'
                   % (gx, top - 4, gx, axis_y))
        out.append('<text x="%.1f" y="%d" fill="red">%g</text>' % (gx + 3, axis_y + 12, goal))
    out.append("</svg>")
    with open(path, "w") as f:
        f.write("\n".join(out))


def svg_lines(path, title, curves, xlabel, ylabel):
    """curves: [(label, [(x, y)])]"""
    w, h, left, bottom, top, right = 640, 420, 60, 50, 40, 200
    pts = [p for _, c in curves for p in c]
    if not pts:
        return False
    x0, x1 = 0.0, max(x for x, _ in pts) * 1.05
    y0 = math.floor(min(y for _, y in pts) - 1)
    y1 = math.ceil(max(y for _, y in pts) + 1)
    pw, ph = w - left - right, h - top - bottom

    def X(x):
        return left + (x - x0) / (x1 - x0) * pw

    def Y(y):
        return top + ph - (y - y0) / (y1 - y0) * ph

    out = ['<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" '
           'font-family="sans-serif" font-size="11">' % (w, h),
           '<rect width="100%" height="100%" fill="white"/>',
           '<text x="10" y="20" font-size="14" font-weight="bold">%s</text>' % esc(title),
           '<rect x="%d" y="%d" width="%d" height="%d" fill="none" stroke="black"/>'
           % (left, top, pw, ph)]
    for k in range(6):
        xv = x0 + (x1 - x0) * k / 5
        yv = y0 + (y1 - y0) * k / 5
        out.append('<text x="%.1f" y="%d" text-anchor="middle">%.2f</text>' % (X(xv), top + ph + 15, xv))
        out.append('<text x="%d" y="%.1f" text-anchor="end">%.1f</text>' % (left - 4, Y(yv) + 4, yv))
        out.append('<line x1="%d" y1="%.1f" x2="%d" y2="%.1f" stroke="#ddd"/>'
                   % (left, Y(yv), left + pw, Y(yv)))
    out.append('<text x="%d" y="%d" text-anchor="middle">%s</text>'
               % (left + pw / 2, h - 12, esc(xlabel)))
    out.append('<text x="14" y="%d" transform="rotate(-90 14 %d)" text-anchor="middle">%s</text>'
               % (top + ph / 2, top + ph / 2, esc(ylabel)))
    for i, (label, c) in enumerate(curves):
        col = COLOURS[i % len(COLOURS)]
        c = sorted(c)
        dash = ' stroke-dasharray="5,3"' if "own decoder" in label else ""
        out.append('<polyline fill="none" stroke="%s" stroke-width="2"%s points="%s"/>'
                   % (col, dash, " ".join("%.1f,%.1f" % (X(x), Y(y)) for x, y in c)))
        for x, y in c:
            out.append('<circle cx="%.1f" cy="%.1f" r="2.5" fill="%s"/>' % (X(x), Y(y), col))
        ly = top + 10 + i * 18
        out.append('<line x1="%d" y1="%d" x2="%d" y2="%d" stroke="%s" stroke-width="2"%s/>'
                   % (left + pw + 10, ly, left + pw + 30, ly, col, dash))
        out.append('<text x="%d" y="%d">%s</text>' % (left + pw + 34, ly + 4, esc(label)))
    out.append("</svg>")
    with open(path, "w") as f:
        f.write("\n".join(out))
    return True


# ---------------------------------------------------------------- report

class Report:
    def __init__(self, out_dir):
        self.out_dir = out_dir
        self.md = []
        self.summary = []  # (what, figure, note)

    def chart(self, name, caption):
        self.md.append("![%s](%s)\n" % (caption, name))

    def table(self, header, rows):
        self.md.append("| " + " | ".join(header) + " |")
        self.md.append("|" + "|".join("---" for _ in header) + "|")
        for r in rows:
            self.md.append("| " + " | ".join(str(c) for c in r) + " |")
        self.md.append("")


def slug(s):
    return re.sub(r"[^A-Za-z0-9]+", "_", s).strip("_")


def family_sections(rep, runs):
    fams = {}
    for name, r in runs.items():
        parts = split(name)
        if not parts or TARGET_RE.search(name):
            continue
        kind, fam, rest = parts
        if kind == "" and fam != "parallel":
            fams.setdefault(fam, []).append((rest, r))
    yard = {}
    for name, r in runs.items():
        parts = split(name)
        if parts and parts[0] == "yardstick" and parts[2].startswith("memcpy") and r.get("bytes"):
            yard[parts[1]] = r["bytes"]
    fallback = yard.get("parallel")
    rep.md.append("## Throughput by family\n")
    rep.md.append("One thread, best SIMD target. *memcpy* is the bandwidth of memcpy on an image "
                  "of the family's size, counted like the kernels as bytes read plus written "
                  "(for the image and signal families, whose peer is memcpy or memset of the "
                  "same bytes, the peer itself); *of memcpy* is our bandwidth as a fraction of "
                  "it (streaming kernels aim at %g or more). *speed-up* is the peer's time over "
                  "ours on the same work.\n" % MEMCPY_GOAL)
    streaming_fracs = []
    peer_ratios = {}
    for fam in sorted(fams):
        rows = []
        chart_rows = []
        family_memcpy = yard.get(fam, fallback) if fam in SHOW_MEMCPY else None
        for rest, r in sorted(fams[fam]):
            peer = runs.get("BM_peer_%s_%s" % (fam, rest))
            tp, unit = throughput(r)
            ratio = peer["time_ns"] / r["time_ns"] if peer and r["time_ns"] else None
            memcpy = family_memcpy
            if fam in MEMCPY_PEERS:
                memcpy = peer.get("bytes") if peer else None
            frac = r["bytes"] / memcpy if memcpy and r.get("bytes") else None
            if fam in MEMCPY_PEERS and ratio is not None:
                frac = ratio  # the peer moves the same bytes in the same run
            if frac is not None and is_streaming(fam, rest):
                streaming_fracs.append((fam + "_" + rest, frac))
            if ratio is not None:
                peer_ratios.setdefault(fam, []).append(ratio)
            ptp, _ = throughput(peer) if peer else (None, None)
            rows.append([rest, fmt_time(r["time_ns"]),
                         "%.4g %s" % (tp, unit) if tp else "—",
                         "%.0f MB/s" % (memcpy / 1e6) if frac is not None else "—",
                         "%.2f" % frac if frac is not None else "—",
                         fmt_time(peer["time_ns"]) if peer else "—",
                         "%.4g %s" % (ptp, unit) if ptp else "—",
                         fmt_x(ratio)])
            chart_rows.append((rest, r, peer, memcpy if fam not in MEMCPY_PEERS else None, ratio))
        rep.md.append("### %s\n" % fam)
        if fam in PEERS:
            rep.md.append("Peer: %s.\n" % PEERS[fam])
        rep.table(["benchmark", "time", "ours", "memcpy", "of memcpy", "peer time", "peer",
                   "speed-up"], rows)
        svg = "family_%s.svg" % slug(fam)
        if all(r.get("bytes") for _, r, _, _, _ in chart_rows):
            series = ["ours", "peer", "memcpy"]
            data = [(rest, [r["bytes"] / 1e6,
                            peer["bytes"] / 1e6 if peer and peer.get("bytes") else None,
                            memcpy / 1e6 if memcpy else None])
                    for rest, r, peer, memcpy, _ in chart_rows]
            svg_bars(os.path.join(rep.out_dir, svg), "%s: bandwidth" % fam, data, series, "MB/s")
            rep.chart(svg, fam)
        elif any(ratio for *_, ratio in chart_rows):
            data = [(rest, [ratio]) for rest, _, _, _, ratio in chart_rows if ratio]
            svg_bars(os.path.join(rep.out_dir, svg), "%s: speed-up against the peer" % fam, data,
                     ["peer time / our time"], "x", goal=1.0)
            rep.chart(svg, fam)
    return streaming_fracs, peer_ratios


def parallel_section(rep, runs):
    pairs = []
    for name, r in runs.items():
        if name.startswith("BM_parallel_") and name.endswith("/threads:2"):
            one = runs.get(name[:-1] + "1")
            if one:
                fn = name[len("BM_parallel_"):].split("/")[0]
                pairs.append((fn, one, r, one["time_ns"] / r["time_ns"]))
    if not pairs:
        return None, []
    pairs.sort()
    memcpy = next((r.get("bytes") for n, r in runs.items()
                   if n.startswith("BM_yardstick_parallel_memcpy")), None)
    rep.md.append("## Row-parallel functions: one thread against two (3000x3000)\n")
    rep.md.append("Goal: %gx or more with two threads. *of memcpy*: one-thread bandwidth over "
                  "memcpy's on the same image size (%s).\n"
                  % (PARALLEL_GOAL, "%.0f MB/s" % (memcpy / 1e6) if memcpy else "not measured"))
    rows = []
    for fn, one, two, s in pairs:
        rows.append([fn, fmt_time(one["time_ns"]), fmt_time(two["time_ns"]),
                     "%.0f MB/s" % (one["bytes"] / 1e6) if one.get("bytes") else "—",
                     "%.2f" % (one["bytes"] / memcpy) if memcpy and one.get("bytes") else "—",
                     "%.2fx" % s, "yes" if s >= PARALLEL_GOAL else "**no**"])
    rep.table(["function", "1 thread", "2 threads", "1-thread bandwidth", "of memcpy", "speed-up",
               ">= %g" % PARALLEL_GOAL], rows)
    svg_bars(os.path.join(rep.out_dir, "parallel.svg"), "Row-parallel: 2-thread speed-up",
             [(fn, [s]) for fn, _, _, s in pairs], ["time 1 thread / time 2 threads"], "x",
             goal=PARALLEL_GOAL)
    rep.chart("parallel.svg", "row-parallel speed-ups")
    fracs = [("parallel_%s/threads:1" % fn, one["bytes"] / memcpy)
             for fn, one, _, _ in pairs if memcpy and one.get("bytes")]
    return (pairs, memcpy), fracs


def target_section(rep, runs, main_target, target_runs):
    """Per-target figures: kroj_bench --kroj_target runs, the main run (on the best
    target) for the same benchmarks, and the main run's own benchmarks that name their
    target."""
    table = {}  # base name -> {target: run}
    for name, r in runs.items():
        m = TARGET_RE.search(name)
        if m:
            table.setdefault(name[:m.start()], {})[m.group(1)] = r
    for target, tr in target_runs.items():
        for name, r in tr.items():
            if not split(name) or split(name)[0] or TARGET_RE.search(name):
                continue
            table.setdefault(name, {})[target] = r
            if main_target in TARGET_ORDER and name in runs:
                table[name].setdefault(main_target, runs[name])
    targets = [t for t in TARGET_ORDER if any(t in v for v in table.values())]
    if not table or len(targets) < 2:
        return None
    rep.md.append("## Throughput by SIMD target\n")
    rep.md.append("The same benchmarks with run-time dispatch restricted to one target "
                  "(one thread). Figures are MB/s (or Mitem/s); the last column is the best "
                  "target's speed-up over SCALAR.\n")
    by_family = {}
    for base in sorted(table):
        by_family.setdefault(split(base)[1], []).append(base)
    speedups = []
    for fam, bases in sorted(by_family.items()):
        rows, chart = [], []
        for base in bases:
            vals = table[base]
            cells, rel = [], []
            scalar = vals.get("SCALAR")
            for t in targets:
                r = vals.get(t)
                tp, unit = throughput(r) if r else (None, None)
                cells.append("%.4g" % tp if tp else (fmt_time(r["time_ns"]) if r else "—"))
                rel.append(scalar["time_ns"] / r["time_ns"] if r and scalar else None)
            best = max([x for x in rel if x] or [0]) or None
            if best and len(vals) >= 2:
                speedups.append(best)
            rows.append([base[3 + len(fam) + 1:]] + cells + [fmt_x(best)])
            chart.append((base[3 + len(fam) + 1:], rel))
        rep.md.append("### %s\n" % fam)
        rep.table(["benchmark"] + targets + ["best / SCALAR"], rows)
        svg = "targets_%s.svg" % slug(fam)
        svg_bars(os.path.join(rep.out_dir, svg), "%s: speed relative to SCALAR" % fam, chart,
                 targets, "x SCALAR", goal=1.0)
        rep.chart(svg, fam + " per target")
    return targets, speedups


def rd_section(rep, rd):
    rep.md.append("## Rate against PSNR (%s, %dx%d)\n" % (rd["image"], rd["width"], rd["height"]))
    rep.md.append("Each encoder's files are read by the same decoder (the peer's) so that the "
                  "curves compare encoders; *own decoder* is our file read by our decoder. "
                  "Rates are whole files. *ΔPSNR* is the mean PSNR difference of the first "
                  "curve to the peer's at equal rate over the rates both cover.\n")
    result = {}
    for codec, title, param in (("jpeg", "JPEG 4:2:0", "quality"), ("j2k", "JPEG 2000 9/7", "ratio")):
        curves = [c for c in rd["curves"] if c["codec"] == codec and c["points"]]
        if not curves:
            continue
        labelled = []
        for c in curves:
            if c["encoder"] == c["decoder"] == "krojmx":
                label = "krojmx, own decoder"
            elif c["encoder"] == "krojmx":
                label = "krojmx -> %s" % c["decoder"]
            else:
                label = c["encoder"]
            labelled.append((label, c))
        svg = "rd_%s.svg" % codec
        svg_lines(os.path.join(rep.out_dir, svg), "%s: %s" % (title, rd["image"]),
                  [(l, [(p["bpp"], p["psnr"]) for p in c["points"]]) for l, c in labelled],
                  "bits per pixel", "PSNR (dB)")
        rep.md.append("### %s\n" % title)
        rep.chart(svg, title)
        params = sorted({p["param"] for _, c in labelled for p in c["points"]})
        rows = []
        for prm in params:
            row = ["%g" % prm if codec == "jpeg" else "%g:1" % prm]
            for _, c in labelled:
                p = next((p for p in c["points"] if p["param"] == prm), None)
                row.append("%.3f / %.2f" % (p["bpp"], p["psnr"]) if p else "—")
            rows.append(row)
        rep.table([param] + ["%s (bpp / dB)" % l for l, _ in labelled], rows)
        ours = next((c for l, c in labelled if l.startswith("krojmx ->")), None)
        for peer in [c for l, c in labelled if not l.startswith("krojmx")]:
            d = delta_psnr(ours["points"], peer["points"]) if ours else None
            if d is not None:
                rep.md.append("ΔPSNR ours − %s: **%+.2f dB**\n" % (peer["encoder"], d))
                result[(codec, peer["encoder"])] = d
    return result


def interp(points, x):
    pts = sorted((p["bpp"], p["psnr"]) for p in points)
    for (xa, ya), (xb, yb) in zip(pts, pts[1:]):
        if xa <= x <= xb and xb > xa:
            return ya + (yb - ya) * (x - xa) / (xb - xa)
    return None


def delta_psnr(ours, peer):
    lo = max(min(p["bpp"] for p in ours), min(p["bpp"] for p in peer))
    hi = min(max(p["bpp"] for p in ours), max(p["bpp"] for p in peer))
    if hi <= lo:
        return None
    xs = [lo + (hi - lo) * k / 20 for k in range(21)]
    d = [interp(ours, x) - interp(peer, x) for x in xs
         if interp(ours, x) is not None and interp(peer, x) is not None]
    return sum(d) / len(d) if d else None


def codec_section(rep, runs):
    rows = []
    for name, r in sorted(runs.items()):
        parts = split(name)
        if not parts or parts[0] or parts[1] not in CODECS:
            continue
        peer = runs.get("BM_peer_%s_%s" % (parts[1], parts[2]))
        if peer:
            rows.append((name[3:], peer["time_ns"] / r["time_ns"], PEERS.get(parts[1], "")))
    return rows


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--dir", default="build-bench", help="directory of the JSON files")
    ap.add_argument("--out", default=None, help="report directory (default <dir>/report)")
    args = ap.parse_args()
    out_dir = args.out or os.path.join(args.dir, "report")
    os.makedirs(out_dir, exist_ok=True)
    for old in glob.glob(os.path.join(out_dir, "*.svg")):
        os.remove(old)

    main_json = os.path.join(args.dir, "bench.json")
    if not os.path.exists(main_json):
        sys.exit("bench_report: %s not found (run make bench)" % main_json)
    context, runs = load_runs(main_json)
    target_runs = {}
    for path in sorted(glob.glob(os.path.join(args.dir, "bench-target-*.json"))):
        ctx, tr = load_runs(path)
        target_runs[ctx.get("kroj_target", path.rsplit("-", 1)[-1][:-5])] = tr

    load = "?"
    load_path = os.path.join(args.dir, "loadavg.txt")
    if os.path.exists(load_path):
        with open(load_path) as f:
            load = " ".join(f.read().split()[:3])
    rep = Report(out_dir)
    rep.md.append("# libkrojmx benchmark report\n")
    rep.md.append("Machine: %s CPUs at %s MHz, load average %s before the run, %s; "
                  "kroj_bench threads %s, target %s. Figures come from one run on a possibly "
                  "shared machine: read ratios from the same run, not absolute times (on a "
                  "loaded machine the two-thread figures mostly measure the wait for a free "
                  "core).\n"
                  % (context.get("num_cpus", "?"), context.get("mhz_per_cpu", "?"), load,
                     context.get("date", ""), context.get("kroj_threads", "?"),
                     context.get("kroj_target", "?")))
    summary_at = len(rep.md)

    fracs, peer_ratios = family_sections(rep, runs)
    par, par_fracs = parallel_section(rep, runs)
    fracs += par_fracs
    tgt = target_section(rep, runs, context.get("kroj_target"), target_runs)
    codec_rows = codec_section(rep, runs)
    rd = {}
    rd_path = os.path.join(args.dir, "rd.json")
    if os.path.exists(rd_path):
        with open(rd_path) as f:
            rd = rd_section(rep, json.load(f))

    # Summary, at the top of the report and on stdout.
    s = ["## Summary\n", "| figure | value |", "|---|---|"]
    if fracs:
        low = [n for n, f in fracs if f < MEMCPY_GOAL]
        s.append("| streaming kernels at >= %g of memcpy's bandwidth | %d of %d (median %.2f, "
                 "lowest %.2f) |" % (MEMCPY_GOAL, len(fracs) - len(low), len(fracs),
                                     statistics.median(f for _, f in fracs), min(f for _, f in fracs)))
        if low:
            s.append("| below %g of memcpy | %s |" % (MEMCPY_GOAL, ", ".join(sorted(low)[:12])
                                                      + (" …" if len(low) > 12 else "")))
    if par:
        pairs, _ = par
        sp = [x for *_, x in pairs]
        ok = sum(1 for x in sp if x >= PARALLEL_GOAL)
        s.append("| row-parallel functions >= %gx with 2 threads | %d of %d (median %.2fx, lowest "
                 "%.2fx) |" % (PARALLEL_GOAL, ok, len(sp), statistics.median(sp), min(sp)))
    for fam, ratios in sorted(peer_ratios.items()):
        s.append("| %s against %s: median speed-up | %.2fx (%d benchmarks, %.2fx–%.2fx) |"
                 % (fam, PEERS.get(fam, "peer"), statistics.median(ratios), len(ratios),
                    min(ratios), max(ratios)))
    for name, ratio, peer in codec_rows:
        s.append("| %s against %s | %.2fx |" % (name, peer, ratio))
    if tgt:
        targets, speedups = tgt
        if speedups:
            s.append("| best SIMD target over SCALAR (%s) | median %.2fx over %d benchmarks |"
                     % (", ".join(targets), statistics.median(speedups), len(speedups)))
    for (codec, peer), d in sorted(rd.items()):
        s.append("| %s rate–PSNR, ours − %s at equal rate | %+.2f dB |"
                 % ("JPEG" if codec == "jpeg" else "JPEG 2000", peer, d))
    try:
        busy = float(load.split()[0]) > float(context.get("num_cpus", 0)) - 0.5
    except ValueError:
        busy = False
    if busy:
        s.append("| note | load average %s on %s CPUs before the run: the second thread "
                 "waited for a core, so two-thread figures say little |"
                 % (load.split()[0], context.get("num_cpus", "?")))
    s.append("")
    rep.md[summary_at:summary_at] = s

    path = os.path.join(out_dir, "README.md")
    with open(path, "w") as f:
        f.write("\n".join(rep.md) + "\n")
    print("\n".join(s))
    print("report: %s" % path)


if __name__ == "__main__":
    main()
