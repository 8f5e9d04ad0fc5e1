#!/usr/bin/env bash
# Makes the seed corpus with dcmtk (tools/setup.sh installs it): one small data set with nested
# sequences, a private element and every numeric code, in each encoding that dcmconv writes.
# FileParserDcmtkTest makes the same files in a folder of its own, the argument, and compares the
# parser's tree of each with dcmdump's listing.
set -euo pipefail
out=${1:-$(dirname "$0")/corpus}
mkdir -p "$out"
cd "$out"
cat > source.dump <<'DUMP'
(0002,0010) UI =LittleEndianExplicit
(0008,0005) CS [ISO_IR 100]
(0008,0016) UI =SecondaryCaptureImageStorage
(0008,0020) DA [20240309]
(0008,0060) CS (no value available)
(0008,1115) SQ (Sequence)
  (fffe,e000) na (Item)
    (0008,1140) SQ (Sequence)
      (fffe,e000) na (Item)
        (0008,1155) UI [1.2.3.4.5]
      (fffe,e00d) na (ItemDelimitationItem)
      (fffe,e000) na (Item)
      (fffe,e00d) na (ItemDelimitationItem)
    (fffe,e0dd) na (SequenceDelimitationItem)
    (0008,1150) UI [1.2.840.10008.5.1.4.1.1.7]
  (fffe,e00d) na (ItemDelimitationItem)
(fffe,e0dd) na (SequenceDelimitationItem)
(0009,1001) UN 01\02\03\04
(0010,0010) PN [Doe^John]
(0018,2043) FL 1.5\-2
(0018,6020) SL -1\2
(0018,9087) FD 0.5
(0018,9219) SS -5
(0020,000d) UI [1.2.3]
(0028,0009) AT (0018,1063)\(7fe0,0010)
(0028,0010) US 64\65535
(0028,1201) OW 0201\0403
(0040,a160) UT [Some text]
DUMP
dump2dcm source.dump explicit-defined.dcm
rm source.dump
dcmconv -e explicit-defined.dcm explicit-undefined.dcm
dcmconv +ti explicit-defined.dcm implicit-defined.dcm
dcmconv +ti -e +g explicit-defined.dcm implicit-undefined-group-lengths.dcm
dcmconv +te -F explicit-defined.dcm explicit-data-set.dcm
dcmconv +ti -F -e explicit-defined.dcm implicit-data-set.dcm
