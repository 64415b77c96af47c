#!/usr/bin/env python3
"""Checks the dynamic symbols the built library exports.

1. Every export belongs to the library: a name in Util, FileSystem or Norvane, or a global
   name (class, function, C function) that a public header under inc/Util declares with
   ZTUTIL_API. The only others allowed are vague-linkage instantiations of std, __gnu_cxx and
   boost templates (weak or unique symbols): the compiler gives those default visibility
   whatever the library says.
   Anything else (the Intel decimal library, pugixml, RE2, the library's internals) is a leak.
2. Every name of the list of required exports (exports.txt beside this script, function and
   class names without parameters, as both the Linux library and the Windows DLL export them)
   is still exported. The list is a floor, the names common to both platforms' builds:
   --print-names prints a build's names, and the list is what two such outputs share.

Usage: check_exports.py --format elf|pe --library FILE --headers DIR --required FILE
                        [--nm NM] [--objdump OBJDUMP] [--cxxfilt CXXFILT] [--print-names]
"""

import argparse
import re
import subprocess
import sys
from pathlib import Path

LIBRARY_NAMESPACES = {"Util", "FileSystem", "Norvane"}
TEMPLATE_NAMESPACES = {"std", "__gnu_cxx", "boost"}
VAGUE_LINKAGE_TYPES = {"W", "V", "u"}  # nm: weak function, weak object, unique global
# Symbols the linker itself defines in every ELF shared object.
LINKER_NAMES = {"_init", "_fini", "_edata", "_end", "__bss_start"}
# AddressSanitizer's one-definition-rule indicators, one per exported global variable (GCC,
# clang): they carry the variable's own name.
ODR_INDICATOR_PREFIXES = ("__odr_asan.", "__odr_asan_gen_")
# Itanium abbreviations that stand for std:: names (St, Sa, Sb, Ss, Si, So, Sd).
STD_ABBREVIATIONS = ("St", "Sa", "Sb", "Ss", "Si", "So", "Sd")


def run(command, stdin_text=None):
    result = subprocess.run(command, input=stdin_text, capture_output=True, text=True)
    if result.returncode != 0:
        sys.exit("{} failed: {}".format(" ".join(command), result.stderr.strip()))
    return result.stdout


def elf_exports(library, nm):
    """(name, nm type) of every defined dynamic symbol."""
    exports = []
    for line in run([nm, "-D", "--defined-only", "--format=posix", library]).splitlines():
        fields = line.split()
        if len(fields) >= 2:
            exports.append((fields[0], fields[1]))
    return exports


def pe_exports(library, objdump):
    """Names of the DLL's export table; a DLL exports only what the library marked."""
    exports, in_table = [], False
    for line in run([objdump, "-p", library]).splitlines():
        if "[Ordinal/Name Pointer] Table" in line:
            in_table = True
        elif in_table and re.match(r"^\s*\[\s*\d+\]", line):
            exports.append((line.split()[-1], "T"))
        elif in_table and exports and not line.strip():
            break
    return exports


def read_number(text, pos):
    start = pos
    while pos < len(text) and text[pos].isdigit():
        pos += 1
    return (int(text[start:pos]) if pos > start else None), pos


def outermost_scope(mangled):
    """The outermost namespace or global name of a mangled C++ name, or the C name itself."""
    for prefix in ODR_INDICATOR_PREFIXES:
        if mangled.startswith(prefix):
            mangled = mangled[len(prefix) :]
    if not mangled.startswith("_Z"):
        return mangled
    s = mangled[2:]
    while True:
        if s[:2] in ("TV", "TI", "TS", "TT", "GV", "GR", "TW", "TH"):
            s = s[2:]  # vtable, typeinfo, typeinfo name, VTT, guard, reference temporary, TLS
        elif s[:2] == "Th":  # non-virtual thunk: h <offset> _
            s = s[s.index("_") + 1 :]
        elif s[:2] == "Tv":  # virtual thunk: v <offset> _ <virtual offset> _
            s = s[s.index("_", s.index("_") + 1) + 1 :]
        elif s[:2] == "TC":  # construction vtable: named after the complete class
            s = s[2:]
        elif s[:1] == "Z":  # entity local to a function: scoped by that function
            s = s[1:]
        else:
            break
    if s[:1] == "N":
        s = s[1:].lstrip("rVKRO")
    if s[:2] in STD_ABBREVIATIONS:
        return "std"
    length, pos = read_number(s, 0)
    if length is not None:
        return s[pos : pos + length]
    return "operator"  # a global operator (ZtDecimal64's and BalType's arithmetic)


def exported_identifiers(headers):
    """Identifiers on the public headers' ZTUTIL_API declarations (the names declared there and
    the types they use), comments and qualifying names (pugi::) left out."""
    names = set()
    for header in sorted(Path(headers).glob("*.h")):
        text = header.read_text(encoding="utf-8", errors="replace")
        text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
        text = re.sub(r"//[^\n]*", " ", text)
        for line in text.splitlines():
            if "ZTUTIL_API" in line:
                names.update(re.findall(r"\b([A-Za-z_][A-Za-z0-9_]*)\b(?!\s*::)", line))
    return names


def foreign_exports(exports, declared):
    foreign = []
    for name, kind in exports:
        scope = outermost_scope(name)
        if scope in LIBRARY_NAMESPACES or scope == "operator" or name in LINKER_NAMES:
            continue
        if scope in TEMPLATE_NAMESPACES and kind in VAGUE_LINKAGE_TYPES:
            continue
        if scope not in TEMPLATE_NAMESPACES and scope in declared:
            continue
        foreign.append(name)
    return foreign


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--format", choices=("elf", "pe"), required=True)
    parser.add_argument("--library", required=True)
    parser.add_argument("--headers", required=True)
    parser.add_argument("--required", required=True)
    parser.add_argument("--nm", default="nm")
    parser.add_argument("--objdump", default="objdump")
    parser.add_argument("--cxxfilt", default="c++filt")
    parser.add_argument("--print-names", action="store_true")
    args = parser.parse_args()

    if args.format == "elf":
        exports = elf_exports(args.library, args.nm)
    else:
        exports = pe_exports(args.library, args.objdump)
    if not exports:
        sys.exit("no exports found in " + args.library)
    mangled = [name for name, _ in exports]
    # -p: names without parameter types, which differ between LP64 and LLP64.
    names = run([args.cxxfilt, "-p"], "\n".join(mangled) + "\n").splitlines()
    exported_names = set(names)
    if args.print_names:
        # Strong definitions only: a weak one is an inline function or a template that an
        # optimised build may inline everywhere and not emit at all.
        strong = {name for name, (_, kind) in zip(names, exports) if kind not in VAGUE_LINKAGE_TYPES}
        sys.stdout.write("".join(name + "\n" for name in sorted(strong)))
        return 0
    print("{}: {} exported symbols, {} distinct names".format(
        args.library, len(exports), len(exported_names)))

    failed = False
    foreign = foreign_exports(exports, exported_identifiers(args.headers))
    if foreign:
        failed = True
        demangled = run([args.cxxfilt], "\n".join(foreign) + "\n").splitlines()
        print("exported although no public header declares them ({}):".format(len(foreign)))
        for raw, pretty in sorted(zip(foreign, demangled)):
            print("  {}  ({})".format(pretty, raw))

    required = [line.strip() for line in Path(args.required).read_text().splitlines()]
    required = [line for line in required if line and not line.startswith("#")]
    missing = [name for name in required if name not in exported_names]
    if missing:
        failed = True
        print("required exports missing ({}), see {}:".format(len(missing), args.required))
        for name in missing:
            print("  " + name)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
