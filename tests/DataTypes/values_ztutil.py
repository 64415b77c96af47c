#!/usr/bin/env python3
"""ztutil's base64 and guid commands against Python's own base64 and uuid modules.

Sizes cross ztutil's 192 KiB input blocks, so the streaming joins are exercised.
Usage: values_ztutil.py ZTUTIL
"""
import base64
import os
import re
import subprocess
import sys
import tempfile
import uuid

ZTUTIL = sys.argv[1]
failures = []


def run(args, data=None):
    return subprocess.run([ZTUTIL] + args, input=data, capture_output=True)


def check(condition, what):
    if not condition:
        failures.append(what)


block = 3 * 64 * 1024
with tempfile.TemporaryDirectory() as tmp:
    for size in (0, 1, 2, 3, 57, block - 1, block, block + 1, 3 * block + 2):
        data = os.urandom(size)
        path = os.path.join(tmp, "in.bin")
        with open(path, "wb") as f:
            f.write(data)
        expected = base64.b64encode(data)
        out = run(["base64", "encode", path])
        check(out.returncode == 0, f"encode {size}: exit {out.returncode}")
        check(out.stdout == (expected + b"\n" if size else b""), f"encode {size}: wrong text")
        # Standard input, and text broken into MIME lines as Python writes it.
        back = run(["base64", "decode"], base64.encodebytes(data))
        check(back.returncode == 0 and back.stdout == data, f"decode {size}: wrong bytes")

bad = run(["base64", "decode"], b"TWFu\nTW!u\n")
check(bad.returncode == 1 and b"offset 7" in bad.stderr, "a bad character is not refused")
check(run(["base64", "encode", "/no/such/file"]).returncode == 1, "a missing file succeeds")
check(run(["base64", "sideways"]).returncode == 2, "a wrong mode is not a usage error")

new = run(["guid", "new"])
text = new.stdout.decode().strip()
check(new.returncode == 0 and uuid.UUID(text).version == 4, f"guid new gave {text!r}")
check(re.fullmatch(r"[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}", text),
      f"guid new is not lower-case version 4: {text!r}")
parsed = run(["guid", "parse", "{6B29FC40-CA47-1067-B31D-00DD010662DA}"])
check(parsed.stdout == b"6b29fc40-ca47-1067-b31d-00dd010662da\n", "guid parse of a braced text")
check(run(["guid", "parse", "nonsense"]).returncode == 1, "guid parse accepts nonsense")
check(run(["guid"]).returncode == 2, "guid without a mode is not a usage error")

for failure in failures:
    print("FAIL:", failure)
sys.exit(1 if failures else 0)
