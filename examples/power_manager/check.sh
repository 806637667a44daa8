#!/bin/sh
# Tries the power manager in each scenario beside this file, all at the same time, on boards whose MCU runs 20
# times as fast as in the vehicle. Needs rolu-sim in PATH. Exit status: 0 if every expectation was met, else 1.
# usage: check.sh POWER_MANAGER [SAVING_MS]
folder=$(dirname "$0")
program=$1
saving=${2:-200}
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT

# At this speed the warning comes 0.2 s after the ignition goes off, and the power is cut 5 s after it.
try() {
  rolu-sim run --mcu-speed 20 \
    --set ignition.off-event-delay=4 --set ignition.hard-off-delay=100 \
    --set battery.low-event-delay=4 --set battery.low-hard-off-delay=100 \
    --scenario "$1" -- "$program" "$work/$2.state" "$saving" >"$work/$2.output" 2>&1
  echo $? >"$work/$2.status"
}

for scenario in "$folder"/*.json; do
  try "$scenario" "$(basename "$scenario" .json)" &
done
wait

failed=0
for scenario in "$folder"/*.json; do
  name=$(basename "$scenario" .json)
  status=$(cat "$work/$name.status")
  if [ "$status" -eq 0 ] && [ -s "$work/$name.state" ]; then
    echo "passed  $name"
  else
    failed=1
    echo "FAILED  $name (exit status $status):"
    sed 's/^/        /' "$work/$name.output"
  fi
done
exit $failed
