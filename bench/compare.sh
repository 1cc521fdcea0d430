#!/bin/sh
# Runs the mask and backdrop benchmarks and prints each against its yardstick, as a ratio of mean
# real times (lower is better): BM_FeatherMask / BM_WriteFloor, BM_BackdropBlur / BM_BackdropBlurOpenCV and
# BM_ApplyLook12MP / BM_ApplyLookFFmpeg (a colour look on 12 MP against FFmpeg's lut3d, both on one thread) and
# BM_FaceSwap / BM_SeamlessCloneOpenCV (a whole swap of a 12 MP photo against its Poisson blend alone),
# BM_EncodeJpeg12MP / BM_EncodeJpegTurbo and BM_EncodePngCanvas / BM_EncodePngOpenCV (writing pictures, the
# PNG also by the size of its file).
# Usage: bench/compare.sh [path/to/lumivex_bench] [repetitions]
set -eu
bench=${1:-build/bin/lumivex_bench}
reps=${2:-5}
out=$(mktemp)
trap 'rm -f "$out"' EXIT
"$bench" --benchmark_filter='^BM_(FeatherMask|WriteFloor|BackdropBlur|BackdropBlurOpenCV|FeatherDragMainThread|ApplyLook12MP|ApplyLookFFmpeg|ApplyLook12MPPool|FaceSwap|SeamlessCloneOpenCV|IntakeEightPhotos|DecodeEightPhotosOpenCV|EncodeJpeg12MP|EncodeJpegTurbo|EncodePngCanvas|EncodePngOpenCV)(/|$)' \
    --benchmark_repetitions="$reps" --benchmark_report_aggregates_only=true \
    --benchmark_format=json >"$out"
python3 - "$out" <<'PY'
import json, sys
runs = json.load(open(sys.argv[1]))["benchmarks"]
def stat(name, agg):
    for r in runs:
        run = r.get("run_name", "")
        if (run == name or run.startswith(name + "/")) and r.get("aggregate_name") == agg:
            return r["real_time"], r["time_unit"]
    raise SystemExit("missing " + name)
for num, den, target in (("BM_FeatherMask", "BM_WriteFloor", 2.0),
                         ("BM_BackdropBlur", "BM_BackdropBlurOpenCV", 1.0),
                         ("BM_ApplyLook12MP", "BM_ApplyLookFFmpeg", 0.25),
                         ("BM_FaceSwap", "BM_SeamlessCloneOpenCV", 25.0),
                         ("BM_IntakeEightPhotos", "BM_DecodeEightPhotosOpenCV", 1.0),
                         ("BM_EncodeJpeg12MP", "BM_EncodeJpegTurbo", 1.1),
                         ("BM_EncodePngCanvas", "BM_EncodePngOpenCV", 0.8)):
    (a, ua), (b, ub) = stat(num, "mean"), stat(den, "mean")
    (ma, _), (mb, _) = stat(num, "median"), stat(den, "median")
    assert ua == ub, "time units differ"
    print(f"{num} / {den}: mean {a:.3f} / {b:.3f} {ua} = {a / b:.2f}  "
          f"(median ratio {ma / mb:.2f}, target <= {target})")
def size(name):
    for r in runs:
        run = r.get("run_name", "")
        if (run == name or run.startswith(name + "/")) and r.get("aggregate_name") == "mean":
            return r["bytes"]
    raise SystemExit("missing " + name)
for num, den, target in (("BM_EncodeJpeg12MP", "BM_EncodeJpegTurbo", None),
                         ("BM_EncodePngCanvas", "BM_EncodePngOpenCV", 1.1)):
    a, b = size(num), size(den)
    print(f"{num} / {den}: file {a:.0f} / {b:.0f} bytes = {a / b:.3f}"
          + (f"  (target <= {target})" if target else ""))
drag, unit = stat("BM_FeatherDragMainThread", "mean")
scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0}[unit]
print(f"BM_FeatherDragMainThread: {drag * scale:.3f} ms of main-thread work per slider event "
      f"= {drag * scale:.2f} of the 1 ms budget")
pool, unit = stat("BM_ApplyLook12MPPool", "mean")
print(f"BM_ApplyLook12MPPool: {pool:.1f} {unit} for the 12 MP look on the whole worker pool")
PY
# Peak memory of one intake, each in a process of its own (targets: 400 MB for the photos, 1.5 GB for the PNGs).
"$bench" --intake-peak=photos
"$bench" --intake-peak=huge-png
