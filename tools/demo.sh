#!/bin/bash
# The main job, end to end: a lamp of known candela distribution is photographed by a simulated camera with
# dark level, noise, defects and lens distortion; the capture is then measured through the whole chain and the
# figures are held against the true ones. Each tolerance follows from the noise. Fails when one is exceeded.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
program=$(realpath "${1:-$root/build/release/bin/tqimage}")
out=$root/build/demo
mkdir -p "$out"
cd "$out"

"$program" simulate -o lamp.png --seed 20 --spot 21 \
    --size 2400,1800 --pels-per-meter 1200 --distance 2.5 \
    --candela 850 --exponent 3 --tilt 6,-3 \
    --dark-level 240 --electrons-per-grey 0.8 --read-noise 3 --hot-pixels 60 --dead-columns 4 \
    --lens-radial=-0.06,0.008 \
    --region 'target=rect:0,0,0,0' \
    --region 'zone=rect:900,600,1499,1199' \
    --region 'axis=ellipse:1200,900,60,60' \
    --region 'corner=ellipse:2060,340,90,70' \
    --region 'panel=poly:560,1080;620,1060;650,1130;600,1160;540,1140'

status=0
"$program" measure lamp.png --dark lamp.dark.png --defects lamp.defects.csv --lens lamp.lens.map --spot 21 \
    --expect lamp.truth.json --json=report.json --bitmap lamp.bmp >report.txt || status=$?
cat report.txt
echo
echo "In $out: report.txt, report.json, lamp.bmp (the corrected image in false colours)"
exit $status
