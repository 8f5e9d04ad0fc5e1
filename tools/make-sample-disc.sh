#!/usr/bin/env bash
# Makes data/sample-disc: a handful of tiny images (2 x 2 pixels) and the DICOMDIR that dcmmkdir
# writes for them. dump2dcm and dcmmkdir come with dcmtk (tools/setup.sh). The result is
# committed; run this again only to change it.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
disc=$root/data/sample-disc
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

rm -rf "$disc"
mkdir -p "$disc"

# image FILE PATIENT_NAME PATIENT_ID STUDY STUDY_DATE SERIES MODALITY INSTANCE
image() {
  local file=$1 name=$2 id=$3 study=$4 date=$5 series=$6 modality=$7 instance=$8
  local uid=1.3.6.1.4.1.58217.99.$study.$series.$instance
  mkdir -p "$disc/$(dirname "$file")"
  cat > "$work/image.txt" <<DUMP
(0002,0001) OB 00\\01
(0002,0002) UI =SecondaryCaptureImageStorage
(0002,0003) UI $uid
(0002,0010) UI =LittleEndianExplicit
(0008,0016) UI =SecondaryCaptureImageStorage
(0008,0018) UI $uid
(0008,0020) DA $date
(0008,0030) TM 093000
(0008,0050) SH ACC$study
(0008,0060) CS $modality
(0008,1030) LO Sample study $study
(0010,0010) PN $name
(0010,0020) LO $id
(0020,000d) UI 1.3.6.1.4.1.58217.99.$study
(0020,000e) UI 1.3.6.1.4.1.58217.99.$study.$series
(0020,0010) SH ST$study
(0020,0011) IS $series
(0020,0013) IS $instance
(0028,0002) US 1
(0028,0004) CS MONOCHROME2
(0028,0010) US 2
(0028,0011) US 2
(0028,0100) US 8
(0028,0101) US 8
(0028,0102) US 7
(0028,0103) US 0
(7fe0,0010) OB 00\\40\\80\\ff
DUMP
  dump2dcm --write-file "$work/image.txt" "$disc/$file"
}

image DICOM/PA1/ST1/SE1/IM1 'Sample^Alice' PID001 1 20240309 1 CT 1
image DICOM/PA1/ST1/SE1/IM2 'Sample^Alice' PID001 1 20240309 1 CT 2
image DICOM/PA1/ST1/SE2/IM1 'Sample^Alice' PID001 1 20240309 2 MR 1
image DICOM/PA2/ST1/SE1/IM1 'Sample^Bob' PID002 2 20231224 1 OT 1
image DICOM/PA2/ST1/SE1/IM2 'Sample^Bob' PID002 2 20231224 1 OT 2

cd "$disc"
dcmmkdir --fileset-id SAMPLE +r DICOM
