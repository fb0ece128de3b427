"""Clang under Visual C++'s rules (layout, slots, names), with the headers of GCC's library and platform, since that
compiler's own cannot be had here."""
import re
import subprocess

TARGET = "x86_64-pc-windows-msvc"
# The platform's headers ask for the macros of their own compiler.
RULES = ["-fdeclspec", "-D__MINGW32__", "-D__MINGW64__", "-D_WIN64", "-DZO_OVERLOADS_BACKWARDS",
         "-D__declspec(a)=__attribute__((a))"]


def library_options(clang, gcc):
    """No dialect of either compiler, and the folders of GCC's headers but for those of its built-in functions."""
    words = subprocess.run([gcc, "-E", "-v", "-x", "c++", "/dev/null"], capture_output=True, text=True).stderr
    folders = re.search(r"#include <.*\n((?: .*\n)+)", words)[1].split()
    own = subprocess.run([clang, "-print-resource-dir"], capture_output=True, text=True).stdout.strip() + "/include"
    options = ["-nostdinc", "-fno-ms-compatibility", "-fno-ms-extensions"]
    for folder in [own, *(name for name in folders if not re.search(r"-posix/include(-fixed)?$", name))]:
        options += ["-isystem", folder]
    return options
