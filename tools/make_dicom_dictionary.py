#!/usr/bin/env python3
"""Makes data/dicom_dictionary.txt, the tag dictionary that the parser reads for implicit VRs.

Source: the data dictionary of DCMTK that Debian's package libdcmtk17 (pulled in by the package
dcmtk, which tools/setup.sh installs) puts in /usr/share/libdcmtk17/dicom.dic. The file in the
repository was made from libdcmtk17 3.6.7-9~deb12u4, whose dictionary was generated from the
standard's PS3.6 and PS3.7, edition 2022b. The output names the package version and the edition
in its header, and depends on nothing else: the same input gives the same bytes.

    tools/make_dicom_dictionary.py [--source PATH] [--output PATH]

What is taken:
- Every public entry (version DICOM, DICOM/retired, DICOM/DICONDE, DICOM/DICOS), retired ones
  included, with its VR, VM and keyword as the name. Group 0000 (commands, PS3.7) comes along.
- The overlay family (60xx,eeee), written out for each of the 128 even groups 6000 to 60FE.
What is left out:
- The retired repeating families: curves (50xx,eeee), the retired overlay attributes, variable
  pixel data (7Fxx,eeee) and the source image IDs (0020,31xx).
- The generic, illegal and private entries (group lengths and private creators in ranges): the
  parser answers "UL" for any element 0 and reads no private VR from the dictionary.
- The item and delimiters of group FFFE, which have no VR: the parser never looks them up.

The line format is: (gggg,eeee) VR="..." VM="..." Name="..."
"""

import argparse
import re
import subprocess
import sys
from pathlib import Path

DEFAULT_SOURCE = Path("/usr/share/libdcmtk17/dicom.dic")
DEFAULT_OUTPUT = Path(__file__).resolve().parent.parent / "data" / "dicom_dictionary.txt"

# The codes that the parser makes an element for, written as they stand.
PARSER_CODES = {
    "AE", "AS", "AT", "CS", "DA", "DS", "DT", "FD", "FL", "IS", "LO", "LT", "OB", "OT", "OW",
    "PN", "SH", "SL", "SQ", "SS", "ST", "TM", "UI", "UL", "UN", "US", "UT",
}

# Every other code of the source, with the code written for it and why. The dictionary serves
# implicit files only, where the VR decides how the value's bytes are read; each choice keeps the
# value whole and readable as a binary block, a text or a number.
MAPPED_CODES = {
    # "US or SS": the parser folds the text into US.
    "xs": "US or SS",
    # "OB or OW": the parser folds the text into OB.
    "ox": "OW/OB",
    # Pixel Data, "OB or OW" as well.
    "px": "OW/OB",
    # LUT Data, "US or OW" ("US or SS or OW" for the retired gray table): an implicit file holds it
    # as OW, a binary block.
    "lt": "OW",
    # The offsets of group 0004: the standard's VR is UL, which DCMTK marks as a pointer.
    "up": "UL",
    # Unlimited Characters and URI: texts of any length, like UT, which has their 32-bit length.
    "UC": "UT",
    "UR": "UT",
    # Other Float, Other Double, Other Long, Other 64-bit Very Long: lists of binary numbers for
    # which the parser has no class; kept whole as a block of bytes.
    "OF": "OB",
    "OD": "OB",
    "OL": "OB",
    "OV": "OB",
    # Signed and unsigned 64-bit integers: no class reads 64-bit numbers; kept whole as bytes.
    "SV": "OB",
    "UV": "OB",
}

# Codes whose tags are left out: the items and delimiters, which have no VR.
LEFT_OUT_CODES = {"na"}

PUBLIC_VERSIONS = {"DICOM", "DICOM/retired", "DICOM/DICONDE", "DICOM/DICOS"}

OVERLAY_GROUPS = range(0x6000, 0x6100, 2)

TAG = re.compile(r"^\(([0-9A-F]{4})(?:-([0-9A-F]{4}))?,([0-9A-F]{4})(?:-([0-9A-F]{4}))?\)$")
EDITION = re.compile(r"^# Generated automatically from (.+)\.$")


def package_version(source):
    """The version of the Debian package that owns source."""
    owner = subprocess.run(["dpkg-query", "-S", str(source)], capture_output=True, text=True,
                           check=True).stdout.split(":")[0]
    return owner, subprocess.run(["dpkg-query", "-W", "-f=${Version}", owner],
                                 capture_output=True, text=True, check=True).stdout


def written_code(code, tag):
    if code in PARSER_CODES:
        return code
    if code in MAPPED_CODES:
        return MAPPED_CODES[code]
    sys.exit(f"{tag}: the VR code {code} has no mapping; add one to MAPPED_CODES")


def expand(tag, version):
    """The (group, element) pairs of one source line; an empty list for a family left out."""
    match = TAG.match(tag)
    if not match:
        sys.exit(f"{tag}: not a tag this script understands")
    group, group_last, element, element_last = match.groups()
    if element_last:
        return []
    if group_last:
        if (group, group_last) != ("6000", "60FF") or version != "DICOM":
            return []
        return [(overlay, int(element, 16)) for overlay in OVERLAY_GROUPS]
    return [(int(group, 16), int(element, 16))]


def read_entries(source):
    entries = {}
    edition = None
    for line in source.read_text(encoding="ascii").splitlines():
        if line.startswith("#"):
            found = EDITION.match(line)
            if found and edition is None:
                edition = found.group(1)
            continue
        if not line.strip():
            continue
        fields = line.split("\t")
        if len(fields) != 5:
            sys.exit(f"not five fields: {line!r}")
        tag, code, name, vm, version = fields
        if version not in PUBLIC_VERSIONS or code in LEFT_OUT_CODES:
            continue
        for key in expand(tag, version):
            if key in entries:
                sys.exit(f"{tag}: listed twice")
            entries[key] = (written_code(code, tag), vm, name)
    if edition is None:
        sys.exit("the source names no edition of the standard")
    return edition, entries


def render(source, edition, entries):
    package, version = package_version(source)
    lines = [
        "REM The tag dictionary of the DICOM standard, for the VRs of implicit encodings.",
        f"REM Made by tools/make_dicom_dictionary.py from {source}",
        f"REM of the Debian package {package} {version}, generated from {edition}.",
        "REM Name is the standard's keyword. Do not edit: run the script.",
    ]
    for (group, element), (code, vm, name) in sorted(entries.items()):
        lines.append(f'({group:04X},{element:04X}) VR="{code}" VM="{vm}" Name="{name}"')
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--source", type=Path, default=DEFAULT_SOURCE)
    parser.add_argument("--output", type=Path, default=DEFAULT_OUTPUT)
    arguments = parser.parse_args()
    edition, entries = read_entries(arguments.source)
    arguments.output.write_text(render(arguments.source, edition, entries), encoding="ascii",
                                newline="\n")


if __name__ == "__main__":
    main()
