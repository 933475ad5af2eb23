#!/usr/bin/env bash
# tools/fuzz.sh [TARGET|all] [MINUTES]: fuzzes, guided by coverage, with the sanitizers. New inputs go to
# build/fuzz/found/TARGET, failing ones to build/fuzz/crashes. Needs clang 16 or newer. The source of a target is
# tests/fuzz/TARGET_fuzz.cpp.
# tools/fuzz.sh --coverage: prints the lines that the corpus reaches, by room.
# tools/fuzz.sh --merge [TARGET|all]: adds inputs that reach new code to tests/fuzz/corpus.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
# shellcheck source=tools/common.sh
source tools/common.sh

case $* in
  -h | --help) usage tools/fuzz.sh && exit ;;
esac
all_targets=$(cd tests/fuzz && ls -- *_fuzz.cpp | sed 's/_fuzz\.cpp$//')
target="(all|${all_targets//$'\n'/|})"
[[ $* =~ ^(--coverage|--merge( $target)?|($target( [1-9][0-9]*)?)?)$ ]] || refuse tools/fuzz.sh "$*"
for version in '' -19 -18 -17 -16; do
  command -v "clang++$version" >/dev/null || continue
  [ "$("clang++$version" -dumpversion | cut -d. -f1)" -ge 16 ] && break
done
command -v "clang++$version" >/dev/null && [ "$("clang++$version" -dumpversion | cut -d. -f1)" -ge 16 ] ||
  fail "clang 16 or newer is needed: apt-get install clang-16 libclang-rt-16-dev llvm-16"

# build FOLDER CMAKE-ARGUMENTS...: builds all targets.
build() {
  local folder=$1 target list=()
  shift
  for target in $all_targets; do list+=("kelvora_fuzz_$target"); done
  cmake --preset fuzz -B "$folder" -DCMAKE_CXX_COMPILER="clang++$version" "$@" >/dev/null ||
    fail "cmake could not configure $folder."
  cmake --build "$folder" --target kelvora_generate_protocol "${list[@]}" || fail "The build failed; see above."
}

# coverage: prints one line per room
coverage() {
  local folder=build/fuzz-coverage target objects=()
  build "$folder" -DKELVORA_FUZZ_COVERAGE=ON
  rm -f "$folder"/*.profraw
  for target in $all_targets; do
    LLVM_PROFILE_FILE="$folder/$target.profraw" "$folder/tests/kelvora_fuzz_$target" -runs=0 \
      "tests/fuzz/corpus/$target" $([ -d "build/fuzz/found/$target" ] && echo "build/fuzz/found/$target") \
      >"$folder/$target.log" 2>&1 || fail "$target failed: see $folder/$target.log"
    objects+=(-object "$folder/tests/kelvora_fuzz_$target")
  done
  "llvm-profdata$version" merge -o "$folder/all.profdata" "$folder"/*.profraw
  "llvm-cov$version" export -summary-only "${objects[@]}" -instr-profile "$folder/all.profdata" | python3 -c '
import json, os, sys
rooms = {}
for file in json.load(sys.stdin)["data"][0]["files"]:
    path = os.path.relpath(os.path.realpath(file["filename"]))
    lines = rooms.setdefault(os.path.dirname(path), [0, 0])
    lines[0] += file["summary"]["lines"]["covered"]
    lines[1] += file["summary"]["lines"]["count"]
for room, (covered, count) in sorted(rooms.items()):
    if not room.startswith(("tests", "..")):
        print(f"{room:20} {covered:5} of {count:5} lines {100 * covered / count:5.1f} %")'
}

case ${1:-all} in
  --coverage)
    coverage
    exit
    ;;
  --merge)
    targets=${2:-all}
    [ "$targets" = all ] && targets=$all_targets
    for target in $targets; do
      corpus=tests/fuzz/corpus/$target
      build/fuzz/tests/kelvora_fuzz_"$target" -set_cover_merge=1 -use_counters=0 -max_len=1024 "$corpus" \
        "build/fuzz/found/$target" >"build/fuzz/$target-merge.log" 2>&1 ||
        fail "$target could not be merged: see build/fuzz/$target-merge.log"
      for file in "$corpus"/*; do
        [[ $file == *.input ]] || mv "$file" "$corpus/$(basename "$file" | cut -c 1-12).input"
      done
      say "$target: $(find "$corpus" -type f | wc -l) inputs"
    done
    exit
    ;;
esac

targets=${1:-all}
[ "$targets" = all ] && targets=$all_targets
minutes=${2:-10}
build build/fuzz
mkdir -p build/fuzz/crashes
status=0
for target in $targets; do
  mkdir -p "build/fuzz/found/$target"
  say "$target for $minutes minutes"
  words=()
  [[ " wire chat arena " == *" $target "* ]] && words=(-dict=build/fuzz/generated/protocol.dict)
  [ -f "tests/fuzz/$target.dict" ] && words=("-dict=tests/fuzz/$target.dict")
  build/fuzz/tests/kelvora_fuzz_"$target" "${words[@]}" -max_total_time=$((minutes * 60)) -timeout=25 -rss_limit_mb=2048 \
    -max_len=4096 -print_final_stats=1 -artifact_prefix="build/fuzz/crashes/$target-" \
    "build/fuzz/found/$target" "tests/fuzz/corpus/$target" || status=1
done
exit $status
