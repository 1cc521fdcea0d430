#!/usr/bin/env bash
# Installs every Debian package Lumivex needs to build, run, test and benchmark.
# Idempotent: packages already present are left alone. Run as root (or with sudo available).
set -euo pipefail

PACKAGES=(
  # toolchain
  build-essential cmake ninja-build pkg-config git clang-format
  # Qt 6: widgets, network, svg, image format plugins (TIFF, WebP), multimedia
  qt6-base-dev qt6-base-dev-tools qt6-svg-dev qt6-image-formats-plugins qt6-multimedia-dev
  qt6-qpa-plugins libgl-dev
  # media playback back end for Qt Multimedia
  gstreamer1.0-plugins-good gstreamer1.0-libav
  # vision and pixel work, with the Haar cascades and sample photographs
  libopencv-dev opencv-data opencv-doc
  # face detection and the 68-point landmark model of the face swap service; a public-domain portrait
  libdlib-dev libdlib-data python3-skimage
  # reduced decoding of photos: scaled-DCT JPEG, row-by-row PNG
  libturbojpeg0-dev libpng-dev
  # HEIC and AVIF photos; heif-enc for the tests that make such files
  libheif-dev libheif-examples
  # fast deflate for the PNGs we write
  libdeflate-dev
  # video
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev libswresample-dev
  # the lut3d filter the colour look benchmark measures against
  libavfilter-dev
  # PDF, HTTP
  libhpdf-dev libcpp-httplib-dev
  # CMYK conversion for print PDFs: Little CMS, and Ghostscript's standard CMYK output profile
  liblcms2-dev libgs-common
  # tests and benchmarks
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  # the background removal tests write a tiny ONNX segmentation model to load
  python3-onnx
  # independent readers of the files the format sheets write (tests): djpeg, tiffinfo, rsvg-convert, xmllint
  libjpeg-turbo-progs
  libtiff-tools
  librsvg2-bin
  libxml2-utils
  # PDFs read back with Poppler (pdfinfo, pdfimages, pdftoppm, pdftotext) and qpdf; videos with ffprobe
  poppler-utils qpdf ffmpeg
  # a display for the window on headless machines, fonts
  xvfb xauth fonts-dejavu-core fonts-noto-color-emoji
  # artwork generator: icon font, and the free faces behind the caption font list
  fonts-material-design-icons-iconfont fonts-liberation2 fonts-bebas-neue fonts-lobstertwo fonts-dancingscript
  fonts-kaushanscript fonts-leckerli-one fonts-cherrybomb fonts-comfortaa fonts-cabin fonts-cabinsketch
  fonts-league-spartan fonts-roboto-slab fonts-yanone-kaffeesatz fonts-jura fonts-blankenburg fonts-kristi
  fonts-staypuft fonts-creep2 fonts-play fonts-quicksand fonts-oldstandard fonts-tomsontalks fonts-dosis
  fonts-summersby fonts-radisnoir fonts-national-park fonts-isabella fonts-rufscript fonts-manrope
  fonts-sixtyfour fonts-comic-neue
)

missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all packages present"
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
