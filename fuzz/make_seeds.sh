#!/usr/bin/env bash
# Regenerates the seed corpora of the fuzz targets in fuzz/corpus/: builds make_seeds in
# the build directory given (default build/), runs it on tests/data, and adds JPEG 2000
# files written by OpenJPEG's encoder with other code-block styles, progressions, tiles
# and markers when opj_compress is installed. Inputs found by fuzzing (crashers
# included) live in the same directories and are kept.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
cmake --build "$build" --target make_seeds
crops=$(mktemp -d)
trap 'rm -rf "$crops"' EXIT
"$build"/fuzz/make_seeds tests/data fuzz/corpus "$crops"
if command -v opj_compress >/dev/null; then
  opj() {  # name, input, options...
    local name=$1 in=$2
    shift 2
    opj_compress -i "$crops/$in" -o "fuzz/corpus/j2k_file/opj-$name" "$@" >/dev/null
  }
  opj styles.j2k crop.ppm -M 63 -b 16,16 -n 3
  opj bypass-rate.j2k crop.ppm -M 1 -r 20
  opj ict-layers.j2k crop.ppm -I -r 40,20,10
  opj tiles.j2k crop.pgm -t 32,32 -n 2
  opj precincts-rlcp.j2k crop.ppm -c [32,32],[16,16] -p RLCP -n 2
  opj sop-eph.j2k crop.pgm -SOP -EPH -M 16
  opj grey.jp2 crop.pgm -r 10
fi
du -sh fuzz/corpus
