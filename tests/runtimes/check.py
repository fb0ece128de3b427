#!/usr/bin/env python3
"""Links clients of each of Visual C++'s runtimes with a DLL of each: only the same one may do, and the linker's words
must say why. Clang makes such objects, and no library of that compiler is needed: the DLL has the mark alone.

usage: check.py CLANG LLD-LINK INCLUDE-FOLDER SOURCE-OF-THE-MARK FOLDER-TO-WORK-IN
"""
import os
import subprocess
import sys

CLIENT = "#include <zo/config.h>\nextern \"C\" int start() { return 0; }\n"
RUNTIMES = {"dll": "release", "dll_dbg": "debug"}


def main():
    clang, lld, include, mark, folder = sys.argv[1:]
    os.makedirs(folder, exist_ok=True)
    os.chdir(folder)
    with open("client.cpp", "w") as file:
        file.write(CLIENT)

    def run(*command):
        return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def compiled(source, runtime, to, *options):
        return run(clang, "--target=x86_64-pc-windows-msvc", "-std=c++20", f"-fms-runtime-lib={runtime}", "-nostdinc",
                   f"-I{include}", *options, "-c", source, "-o", to)

    def link(*arguments):
        return run(lld, "/nodefaultlib", *arguments)

    wrong = []
    for runtime in RUNTIMES:
        for done in (compiled(mark, runtime, f"mark_{runtime}.obj", "-DZO_COM_BUILD"),
                     compiled("client.cpp", runtime, f"client_{runtime}.obj"),
                     link("/dll", "/noentry", f"/out:{runtime}.dll", f"mark_{runtime}.obj")):
            wrong += [done.stdout] if done.returncode else []
    for client, kind in RUNTIMES.items():
        for dll in RUNTIMES:
            done = link("/entry:start", "/subsystem:console", "/out:client.exe", f"client_{client}.obj", f"{dll}.lib")
            says = f"zo_com_has_the_{kind}_runtime" in done.stdout
            if (done.returncode != 0) != (client != dll) or says != (client != dll):
                wrong.append(f"a client with {client} and a DLL with {dll}: {done.returncode} {done.stdout}")
    static = compiled("client.cpp", "static", "static.obj")
    if static.returncode == 0 or "shares the C++ runtime" not in static.stdout:
        wrong.append(f"a client with its own runtime: {static.stdout}")
    print("\n".join(wrong) or "as it should be")
    sys.exit(bool(wrong))


if __name__ == "__main__":
    main()
