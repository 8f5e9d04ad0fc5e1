#!/usr/bin/env bash
# Makes the seed corpus with dcmtk (tools/setup.sh installs it): one small data set with nested
# sequences, a private element and every numeric code, in each encoding that dcmconv writes.
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cat > "$work/source.dump" <<'DUMP'
(0002,0010) UI =LittleEndianExplicit
(0008,0005) CS [ISO_IR 100]
(0008,0016) UI =MediaStorageDirectoryStorage
(0008,1115) SQ (Sequence)
  (fffe,e000) na (Item)
    (0008,1140) SQ (Sequence)
      (fffe,e000) na (Item)
        (0008,1155) UI [1.2.3.4.5]
      (fffe,e00d) na (ItemDelimitationItem)
    (fffe,e0dd) na (SequenceDelimitationItem)
    (0004,1430) CS [PATIENT]
  (fffe,e00d) na (ItemDelimitationItem)
(fffe,e0dd) na (SequenceDelimitationItem)
(0009,1001) UN 01\02\03\04
(0010,0010) PN [Doe^John]
(0018,2043) FL 1.5\-2
(0018,6020) SL -1\2
(0018,9087) FD 0.5
(0018,9219) SS -5
(0028,0009) AT (0018,1063)\(7fe0,0010)
(0028,0010) US 64
(0028,1201) OW 0201\0403
(0040,a160) UT [Some text]
DUMP
dump2dcm "$work/source.dump" corpus/explicit-defined.dcm
dcmconv -e corpus/explicit-defined.dcm corpus/explicit-undefined.dcm
dcmconv +ti corpus/explicit-defined.dcm corpus/implicit-defined.dcm
dcmconv +ti -e +g corpus/explicit-defined.dcm corpus/implicit-undefined-group-lengths.dcm
dcmconv +te -F corpus/explicit-defined.dcm corpus/explicit-data-set.dcm
dcmconv +ti -F -e corpus/explicit-defined.dcm corpus/implicit-data-set.dcm
