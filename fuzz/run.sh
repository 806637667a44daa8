#!/usr/bin/env bash
# The body of ./run fuzz, which sources it.

fuzz_targets=(lines messages replies calls)

# run_fuzz [--time SECONDS] [--keep] [TARGET...]
run_fuzz() {
  local seconds=10 keep='' targets=()
  while [[ $# -gt 0 ]]; do
    case $1 in
      --time)
        [[ ${2:-} =~ ^[1-9][0-9]*$ ]] || misuse "--time takes a number of seconds, but got '${2:-}'."
        seconds=$2
        shift
        ;;
      --keep) keep=1 ;;
      *)
        [[ " ${fuzz_targets[*]} " == *" $1 "* ]] ||
          misuse "there is no fuzz target '$1'; there are: ${fuzz_targets[*]}"
        targets+=("$1")
        ;;
    esac
    shift
  done
  [[ ${#targets[@]} -gt 0 ]] || targets=("${fuzz_targets[@]}")

  build fuzz "${targets[@]/%/_fuzzer}"
  # As many at a time as there are processors: each target uses one.
  local at target pid running failed=''
  for ((at = 0; at < ${#targets[@]}; at += $(nproc))); do
    running=()
    for target in "${targets[@]:at:$(nproc)}"; do
      fuzz_target "$target" "$seconds" &
      running+=($!)
    done
    for pid in "${running[@]}"; do wait "$pid" || failed=1; done
  done
  [[ -z $failed ]] || exit 1
  [[ -z $keep ]] || for target in "${targets[@]}"; do keep_corpus "$target"; done
}

# fuzz_target TARGET SECONDS: from the kept corpus and what earlier runs found; new inputs go to
# build/fuzz/found, and so does one that finds a fault.
fuzz_target() {
  local target=$1 seconds=$2 found=build/fuzz/found/$1
  mkdir -p "$found"
  say "fuzzing $target for $seconds s"
  # shellcheck disable=SC2154 # run sets it
  "${without_address_randomisation[@]}" "build/fuzz/fuzz/${target}_fuzzer" -max_total_time="$seconds" -max_len=400 -len_control=0 \
    -dict=fuzz/dictionary.txt -print_final_stats=1 -verbosity=0 -artifact_prefix="$found-" \
    "$found" "fuzz/corpus/$target" ||
    die "$target found a fault (see above). To see it again: build/fuzz/fuzz/${target}_fuzzer FILE, with the" \
      "file named above. Once it is mended, put the file into fuzz/corpus/$target."
}

# keep_corpus TARGET: takes over what reaches more of the code than the corpus does.
keep_corpus() {
  local corpus=fuzz/corpus/$1
  say "taking new inputs into $corpus"
  "build/fuzz/fuzz/${1}_fuzzer" -merge=1 -use_counters=0 -verbosity=0 "$corpus" "build/fuzz/found/$1" ||
    die "the new inputs could not be taken over (see above)."
}
