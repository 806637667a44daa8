#!/bin/sh
# Uses every device file of the board as a shell does. Says nothing when all is as on the board.

backlight=/sys/devices/omapdss/display0/backlight/vorn512p/brightness
lux=/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux
gpio=/sys/class/gpio
work=$(mktemp -d) && trap 'rm -r "$work"' EXIT
failed=0

is() {
  [ "$2" = "$3" ] && return
  echo "$1: '$2', not '$3'"
  failed=1
}

# succeeds COMMAND, refuses COMMAND: its exit status, and no message of its own.
succeeds() { eval "$1" 2>/dev/null || is "$1" "status $?" "status 0"; }
refuses() { ! eval "$1" 2>/dev/null || is "$1" "status 0" failure; }

# Each way to write.
succeeds "echo 1 > $backlight" && is "echo" "$(cat $backlight)" 1
succeeds "echo 2 >> $backlight" && is "echo, appending" "$(cat $backlight)" 2
succeeds "/usr/bin/printf 3 > $backlight" && is "a program's stdio" "$(cat $backlight)" 3
succeeds "(echo 4 | cat > $backlight)" && is "a pipe's end" "$(cat $backlight)" 4
succeeds "(exec > $backlight && echo 5)" && is "a shell's output" "$(cat $backlight)" 5
succeeds "echo 6 | tee $backlight > /dev/null" && is "tee" "$(cat $backlight)" 6
succeeds "echo 7 | dd of=$backlight status=none" && is "dd" "$(cat $backlight)" 7
refuses "echo 11 > $backlight"
refuses "/usr/bin/printf 11 > $backlight"
refuses "cat $lux > $backlight"
refuses "echo 1 > $lux"
is "refused levels" "$(cat $backlight)" 7

# Each way to read.
is "cat" "$(cat $lux)" 350
is "cat, from its input" "$(cat < $lux)" 350
is "sed" "$(sed -n 1p < $lux)" 350
is "head" "$(head -c 2 $lux)" 35
is "wc" "$(wc -c < $lux)" 4
read -r line < $lux && is "read" "$line" 350
exec 7< $lux
is "the first program to read" "$(head -c 1 <&7)" 3
is "the next program goes on" "$(cat <&7)" 50
is "and the next is at the end" "$(cat <&7)" ""
exec 7<&-
succeeds "cp $lux $work/copy" && is "cp" "$(cat "$work/copy")" 350

is "ls, of what no program has exported" "$(ls -m $gpio)" export
refuses "[ -e $gpio/gpio37 ]"
refuses "echo out > $gpio/gpio37/direction"
succeeds "echo 37 > $gpio/export"
refuses "echo 37 > $gpio/export"
succeeds "echo out > $gpio/gpio37/direction"
succeeds "echo 1 > $gpio/gpio37/value"
is "the line's level" "$(cat $gpio/gpio37/value)" 1
is "ls" "$(ls -m $gpio)" "export, gpio37"
is "ls -l" "$(ls -lR $gpio $lux /dev/i2c-3 /proc/vpm_serial 2>&1 > /dev/null)" ""
is "a pattern" "$(echo $gpio/gpio*/value)" $gpio/gpio37/value
is "find" "$(find /sys/devices/omapdss -type f)" $backlight
is "realpath" "$(realpath $gpio//gpio37/../gpio37)" $gpio/gpio37
is "work in a directory" "$(cd $gpio/gpio37 && echo 0 > value && cat ../gpio37/value && /bin/pwd)" \
  "$(printf '0\n%s' $gpio/gpio37)"
succeeds "[ -d $gpio/gpio37 ] && [ -w $gpio/gpio37/value ]"
refuses "cd $gpio/gpio36"

exec 3<> /dev/i2c-3 && refuses "printf x >&3" # the bus needs an address first
exec 3>&-

exec 4<> /proc/vpm_serial
succeeds "printf 'MCVG\r' >&4"
read -r line <&4 && is "the microcontroller's answer" "$line" "$(printf '0333\r')"
exec 4>&-

exit $failed
