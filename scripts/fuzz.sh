#!/bin/sh
# Builds the fuzz targets with clang (both sanitizers, libFuzzer) into
# build-fuzz and runs each one after the other for a fixed number of inputs or
# a fixed time, whichever ends first. Each target starts from a small seed
# corpus made here from real files: the sample media committed with the tests,
# MP3 files and tool status lines made with ffmpeg, the default settings.
#
#   scripts/fuzz.sh [runs] [seconds] [target...]
#
# Defaults: 1000000 runs, 600 seconds, every target. A crash, a leak or a
# hang stops the script with the fuzzer's report; the input that caused it is
# left in build-fuzz/findings. VELMORA_FUZZ_FLAGS adds flags of the fuzzer's
# own, for example -detect_leaks=0, which checks for leaks once at the end
# rather than after every input whose allocations do not balance.
set -eu

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${VELMORA_FUZZ_BUILD_DIR:-$ROOT/build-fuzz}
RUNS=${1:-1000000}
SECONDS_LIMIT=${2:-600}
[ $# -gt 0 ] && shift
[ $# -gt 0 ] && shift
TARGETS=${*:-"ID3Reader Mp3FrameWalker JoinedTag Mp3Fixer ListFile IniFile ToolStatus PasteItem"}

if [ ! -f "$BUILD_DIR/build.ninja" ]; then
    CC=clang CXX=clang++ cmake -S "$ROOT" -B "$BUILD_DIR" -G Ninja \
        -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMORA_FUZZ=ON \
        -DVELMORA_BUILD_TESTS=OFF -DVELMORA_BUILD_BENCH=OFF
fi
build_targets=""
for target in $TARGETS; do
    build_targets="$build_targets fuzz_$target"
done
# shellcheck disable=SC2086
cmake --build "$BUILD_DIR" -j2 --target $build_targets

SEEDS=$BUILD_DIR/seeds
SAMPLES=$ROOT/tests/data/samples
make_seeds() {
    rm -rf "$SEEDS"
    mkdir -p "$SEEDS/ID3Reader" "$SEEDS/Mp3FrameWalker" "$SEEDS/JoinedTag" "$SEEDS/Mp3Fixer" \
        "$SEEDS/ListFile" "$SEEDS/IniFile" "$SEEDS/ToolStatus" "$SEEDS/PasteItem"
    work=$(mktemp -d)

    # MP3 files: a short CBR file with an ID3v1 tag and a VBR one from ffmpeg,
    # and the head and tail of each sample MP3 (the reader looks at no more).
    ffmpeg -v error -f lavfi -i sine=frequency=440:duration=0.2 -c:a libmp3lame -b:a 128k \
        -metadata title=Seed -metadata artist=Velmora -write_id3v1 1 -id3v2_version 0 \
        "$work/cbr.mp3"
    ffmpeg -v error -f lavfi -i sine=frequency=880:duration=0.2 -c:a libmp3lame -q:a 4 \
        "$work/vbr.mp3"
    for file in "$work/cbr.mp3" "$work/vbr.mp3" "$SAMPLES"/*.mp3; do
        [ -f "$file" ] || continue
        name=$(basename "$file" .mp3)
        head -c 6200 "$file" >"$SEEDS/ID3Reader/$name.head"
        { head -c 512 "$file"; tail -c 128 "$file"; } >"$SEEDS/ID3Reader/$name.tail"
    done
    cp "$work/cbr.mp3" "$SEEDS/ID3Reader/cbr.mp3"

    # Raw joins for the MP3 fix tool's frame walker: whole small files of
    # each MPEG version end to end, with their tags.
    ffmpeg -v error -f lavfi -i sine=frequency=660:duration=0.1 -ar 22050 -ac 1 -c:a libmp3lame \
        -b:a 32k -metadata title=Two "$work/mpeg2.mp3"
    ffmpeg -v error -f lavfi -i sine=frequency=330:duration=0.1 -ar 8000 -c:a libmp3lame \
        -q:a 6 "$work/mpeg25.mp3"
    cat "$work/cbr.mp3" "$work/vbr.mp3" >"$SEEDS/Mp3FrameWalker/mpeg1"
    cat "$work/mpeg2.mp3" "$work/cbr.mp3" >"$SEEDS/Mp3FrameWalker/mpeg2"
    cat "$work/mpeg25.mp3" "$work/mpeg25.mp3" >"$SEEDS/Mp3FrameWalker/mpeg25"

    # Tags for the joined file's tag: a sources file, then the ID3v2 tag and
    # the ID3v1 tag of each source (ID3v2.3 and 2.4 with a cover, 2.4 with a
    # chapter, an ID3v1 tag alone), cut apart by "@@@@".
    ffmpeg -v error -f lavfi -i testsrc=size=32x32:duration=1 -frames:v 1 "$work/cover.png"
    for version in 3 4; do
        ffmpeg -v error -f lavfi -i sine=duration=0.1 -i "$work/cover.png" -map 0:a -map 1:v \
            -c:v copy -disposition:v attached_pic -c:a libmp3lame -id3v2_version $version \
            -metadata title="Tëst Ω" -metadata album=Seed -metadata artist=Velmora \
            -metadata track=3 -metadata date=2020 -metadata genre=Rock "$work/tag$version.mp3"
        # shellcheck disable=SC2046
        set -- $(od -An -tu1 -j6 -N4 "$work/tag$version.mp3")
        head -c $((10 + ($1 << 21 | $2 << 14 | $3 << 7 | $4))) "$work/tag$version.mp3" \
            >"$work/tag$version.id3"
    done
    tail -c 128 "$work/cbr.mp3" >"$work/v1.tag"
    { printf 'Velmora join sources 1\n100 one.mp3\n200 two%%0A.mp3\n@@@@'; cat "$work/tag3.id3"
      printf '@@@@'; cat "$work/v1.tag"; printf '@@@@'; cat "$work/tag4.id3"; printf '@@@@@@@@'
      cat "$work/v1.tag"; } >"$SEEDS/JoinedTag/three"
    { printf '@@@@'; cat "$work/tag4.id3"; } >"$SEEDS/JoinedTag/one"

    # Raw joins for the whole fix: the sources' names (from which the fuzzer
    # makes a sources file that adds up) or a sources file of its own, then
    # each source's bytes, cut apart by "@@@@". Small files of each MPEG
    # version, with and without tags, with a LAME header or none.
    ffmpeg -v error -f lavfi -i sine=frequency=550:duration=0.1 -c:a libmp3lame -b:a 32k \
        -write_xing 0 -metadata title=Plain "$work/plain.mp3"
    { printf 'one.mp3\ntwo.mp3\n@@@@'; cat "$work/cbr.mp3"; printf '@@@@'
      cat "$work/vbr.mp3"; } >"$SEEDS/Mp3Fixer/mpeg1"
    { printf 'Velmora join sources 1\n%s a.mp3\n%s b%%25.mp3\n@@@@' \
        "$(wc -c <"$work/mpeg2.mp3")" "$(wc -c <"$work/plain.mp3")"
      cat "$work/mpeg2.mp3"; printf '@@@@'; cat "$work/plain.mp3"; } >"$SEEDS/Mp3Fixer/given"
    { printf 'low.mp3\n@@@@'; cat "$work/mpeg25.mp3"; printf '@@@@@@@@'
      cat "$work/mpeg25.mp3"; } >"$SEEDS/Mp3Fixer/mpeg25"

    # List files of both types, and clipboard entries of their rows.
    printf 'VLR List v1.0\r\n<MP3>\r\ncbr.mp3|128|44100|%s|00:00:00|3 KB|Seed|Velmora\r\n' \
        "$work/cbr.mp3" >"$SEEDS/ListFile/mp3.vlr"
    printf 'VLR List v1.0\r\n<MPEG>\r\na.mpg|1,000 KB|00:00:01|/tmp/a.mpg|MPEG-2V|320x240\r\n' \
        >"$SEEDS/ListFile/mpeg.vlr"
    printf 'VLR List v1.0\r\n<MP3>\r\n' >"$SEEDS/ListFile/empty.vlr"
    printf 'VLR:cbr.mp3|128|44100|%s|00:00:00|3 KB' "$work/cbr.mp3" >"$SEEDS/PasteItem/mp3"
    printf 'VLR:a.mpg|1,000 KB|00:00:01|%s/mimetype-mpeg.mpeg|MPEG-2V' "$SAMPLES" \
        >"$SEEDS/PasteItem/mpeg"
    printf '"a.mp3","128"\r\n' >"$SEEDS/PasteItem/list"

    # Settings: the first byte of each seed is the section's length, and so on
    # (the fuzzer's data provider takes the names from the end).
    cp "$ROOT/data/DefaultSettings.ini" "$SEEDS/IniFile/default"
    printf '[Settings]\nOpenList=/home\n\n[Join]\nLast=1\n' >"$SEEDS/IniFile/small"

    # Status lines of the MPEG-2 tool, as ffmpeg writes them while it works.
    ffmpeg -f lavfi -i testsrc=size=160x120:rate=25:duration=2 -c:v mpeg2video -f mpeg \
        -stats_period 0.1 -y "$work/status.mpg" 2>"$work/status.txt" || true
    tr '\n' '\r' <"$work/status.txt" | split -b 600 - "$SEEDS/ToolStatus/piece."
    printf '00:00:02frame=   50 fps=0.0 q=2.0 size=     120kB time=00:00:01.96 bitrate= 500.0kbits/s speed=5x\r' \
        >"$SEEDS/ToolStatus/line"
    rm -rf "$work"
}
make_seeds

mkdir -p "$BUILD_DIR/findings"
for target in $TARGETS; do
    corpus=$BUILD_DIR/corpus/$target
    mkdir -p "$corpus"
    echo "== fuzz_$target: $RUNS runs or $SECONDS_LIMIT s"
    log=$BUILD_DIR/findings/$target.log
    status=0
    # Allocation stacks are kept two frames deep. The system libraries the
    # targets call into (TagLib, MediaInfo) are built without frame pointers,
    # so a deeper stack taken at each allocation runs into their frames and
    # picks up values that are no return addresses: nearly every stack is then
    # new, and the sanitizer's store of them grows without end, slowing each
    # input more than the last. The stack of a fault itself is still taken in
    # full when it is reported.
    ASAN_OPTIONS=halt_on_error=1:detect_leaks=1:malloc_context_size=2 \
    UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    LSAN_OPTIONS=suppressions=$ROOT/scripts/sanitizer-leaks.supp \
        "$BUILD_DIR/fuzz/fuzz_$target" "$corpus" "$SEEDS/$target" \
        -runs="$RUNS" -max_total_time="$SECONDS_LIMIT" -timeout=10 -rss_limit_mb=2048 \
        -max_len=8192 -print_final_stats=1 ${VELMORA_FUZZ_FLAGS:-} \
        -artifact_prefix="$BUILD_DIR/findings/$target-" >"$log" 2>&1 || status=$?
    grep -E '^(#[0-9]+ +DONE|Done [0-9]+ runs|stat::number_of_executed_units|stat::peak_rss_mb)' "$log" || true
    if [ "$status" -ne 0 ]; then
        tail -n 60 "$log"
        echo "fuzz_$target failed (exit $status); the input is in $BUILD_DIR/findings" >&2
        exit "$status"
    fi
done
