"""Uses every device file of the board as a Python program does. Fails where it is not as on the board."""

import errno
import fcntl
import os
import shutil
import stat
import tempfile

BACKLIGHT = "/sys/devices/omapdss/display0/backlight/vorn512p/brightness"
LUX = "/sys/devices/platform/ehci-omap.0/usb1/1-2/1-2.4/1-2.4:1.3/ttyUSB3/tty/ttyUSB3/serio1/lux"
GPIO = "/sys/class/gpio"
I2C = "/dev/i2c-3"
I2C_SLAVE_FORCE = 0x0706


def text_of(path):
    with open(path) as file:
        return file.read()


def write(path, text):
    with open(path, "w") as file:
        file.write(text)


def is_(what, found, expected):
    assert found == expected, f"{what}: {found!r}, not {expected!r}"


def refuses(error, call, *arguments):
    try:
        call(*arguments)
    except OSError as refusal:
        is_(call.__name__, errno.errorcode[refusal.errno], errno.errorcode[error])
    else:
        raise AssertionError(f"{call.__name__}{arguments} was not refused")


write(BACKLIGHT, "4")
is_("the level", text_of(BACKLIGHT), "4\n")
refuses(errno.EINVAL, write, BACKLIGHT, "11")
with open(BACKLIGHT, "r+") as file:
    file.write("5")
    file.seek(0)
    is_("a level that was written just now", file.read(), "5\n")

with tempfile.TemporaryDirectory() as directory:
    is_("a copied file", text_of(shutil.copyfile(LUX, directory + "/copy")), "350\n")
assert stat.S_ISREG(os.stat(LUX).st_mode) and os.access(LUX, os.R_OK)
refuses(errno.EACCES, write, LUX, "1")

is_("what no program has exported", os.listdir(GPIO), ["export"])
refuses(errno.ENOENT, text_of, GPIO + "/gpio37/value")
write(GPIO + "/export", "37")
refuses(errno.EPERM, write, GPIO + "/gpio37/value", "1")
write(GPIO + "/gpio37/direction", "out")
value = os.open(GPIO + "/gpio37/value", os.O_RDWR)
is_("a low line", os.pread(value, 8, 0), b"0\n")
write(GPIO + "/gpio37/value", "1")
is_("a line that went high", os.pread(value, 8, 0), b"1\n")
os.close(value)
is_("files", sorted(entry.path for entry in os.scandir(GPIO + "/gpio37") if entry.is_file()),
    [GPIO + "/gpio37/direction", GPIO + "/gpio37/value"])
is_("directories", [path for path, _, _ in os.walk(GPIO)], [GPIO, GPIO + "/gpio37"])
directory = os.open(GPIO, os.O_RDONLY | os.O_DIRECTORY)
with open(os.open("gpio37/value", os.O_RDONLY, dir_fd=directory)) as file:
    is_("a file of an open directory", file.read(), "1\n")
os.chdir(GPIO)
is_("the working directory", os.getcwd(), GPIO)
is_("a path from there", os.path.realpath("gpio37/value"), GPIO + "/gpio37/value")
os.chdir("/")

bus = os.open(I2C, os.O_RDWR)
assert stat.S_ISCHR(os.fstat(bus).st_mode)
refuses(errno.ESPIPE, os.lseek, bus, 0, os.SEEK_SET)
fcntl.ioctl(bus, I2C_SLAVE_FORCE, 0x50)
os.write(bus, b"\x10\xab\xcd")
copy = os.dup(bus)
os.close(bus)
os.write(copy, b"\x10")
is_("registers", os.read(copy, 2), b"\xab\xcd")
fcntl.ioctl(copy, I2C_SLAVE_FORCE, 0x33)
refuses(errno.EREMOTEIO, os.read, copy, 1)

with open("/proc/vpm_serial", "r+b", buffering=0) as port:
    port.write(b"MCVG\r")
    is_("the microcontroller's answer", port.readline(), b"0333\r\n")
