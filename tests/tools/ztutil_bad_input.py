#!/usr/bin/env python3
"""ztutil given what a careless or hostile user gives it: output that cannot be written, Base64
text with misplaced padding, and subscription files that are not regular files.

Usage: ztutil_bad_input.py ZTUTIL
"""
import os
import subprocess
import sys
import tempfile

ZTUTIL = sys.argv[1]
failures = []


def run(args, data=b"", stdout=subprocess.PIPE):
    return subprocess.run([ZTUTIL] + args, input=data, stdout=stdout, stderr=subprocess.PIPE,
                          timeout=10)


def check(condition, what):
    if not condition:
        failures.append(what)


# Output that cannot be written is a failure with a message, never exit 0.
with open("/dev/full", "wb") as full:
    for args, data in ((["--help"], b""), (["--version"], b""), (["calc", "1+2"], b""),
                       (["money", "5", "+", "1"], b""), (["guid", "new"], b""), (["demo"], b""),
                       (["base64", "decode"], b"QUJD" * 100000), (["base64", "encode"], b"x"),
                       (["ops", "check", os.path.join(os.path.dirname(__file__), "..", "..",
                                                      "examples", "Diagnostics.ops")], b"")):
        out = run(args, data, stdout=full)
        check(out.returncode != 0 and b"standard output" in out.stderr,
              f"{' '.join(args)} into /dev/full: exit {out.returncode}, {out.stderr[-200:]!r}")

# Base64: padding only at the end of the last group; the offset of the first bad character.
for text, offset in ((b"====", 0), (b"=QQQ", 0), (b"QQ=Q", 3), (b"QQ==QQ==", 4),
                     (b"QUJD\nQQ==\nQ", 10), (b"QUJ", 3), (b"QUJD!", 4)):
    out = run(["base64", "decode"], text)
    check(out.returncode == 1 and f"at offset {offset}".encode() in out.stderr,
          f"decode {text!r}: exit {out.returncode}, {out.stderr!r}")
for text, decoded in ((b"QQ==", b"A"), (b"QUI=\r\n", b"AB"), (b" Q U J D ", b"ABC"), (b"", b"")):
    out = run(["base64", "decode"], text)
    check(out.returncode == 0 and out.stdout == decoded, f"decode {text!r}: {out.stdout!r}")
check(run(["base64", "decode", ""]).returncode == 2, "an empty file name reads standard input")

# Subscription files: only regular files, with the system's reason, and no waiting.
with tempfile.TemporaryDirectory() as tmp:
    fifo = os.path.join(tmp, "f.ops")
    os.mkfifo(fifo)
    for path, reason in ((tmp, b"Is a directory"), (fifo, b"not a regular file"),
                         ("/dev/zero", b"not a regular file"),
                         ("/x/%Foo%bar.ops", b"\"/x/%Foo%bar.ops\" cannot be read")):
        out = run(["ops", "check", path])
        check(out.returncode == 1 and reason in out.stderr,
              f"ops check {path}: exit {out.returncode}, {out.stderr!r}")

for failure in failures:
    print("FAIL:", failure)
sys.exit(1 if failures else 0)
