// The gdcm peer of "halvorine load --quiet": reads a DICOMDIR with gdcm's Reader, resolves the
// record offsets from the items' encoded lengths, and follows the links from the root, reading
// the attributes that a load of the component reads.
#include <gdcmReader.h>
#include <gdcmSequenceOfItems.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

namespace {

const gdcm::Tag kAttributes[] = {
    {0x0004, 0x1430}, {0x0010, 0x0010}, {0x0010, 0x0020}, {0x0008, 0x0020}, {0x0008, 0x0030},
    {0x0008, 0x0050}, {0x0008, 0x1030}, {0x0008, 0x0080}, {0x0020, 0x000D}, {0x0020, 0x0010},
    {0x0008, 0x0060}, {0x0020, 0x000E}, {0x0020, 0x0011}, {0x0004, 0x1500}, {0x0004, 0x1510},
    {0x0004, 0x1511}, {0x0020, 0x0013}};

using Index = std::map<unsigned long, const gdcm::Item*>;

unsigned long Link(const gdcm::DataSet& set, const gdcm::Tag& tag) {
  const gdcm::ByteValue* value = set.GetDataElement(tag).GetByteValue();
  if (value == nullptr || value->GetLength() < 4) return 0;
  unsigned int number = 0;
  value->GetBuffer(reinterpret_cast<char*>(&number), 4);
  return number;
}

unsigned long WalkChain(const Index& index, unsigned long offset) {
  unsigned long read = 0;
  while (offset != 0) {
    const auto found = index.find(offset);
    if (found == index.end()) std::exit(1);
    const gdcm::DataSet& record = found->second->GetNestedDataSet();
    for (const gdcm::Tag& tag : kAttributes) {
      const gdcm::ByteValue* value = record.GetDataElement(tag).GetByteValue();
      if (value != nullptr) read += std::string(value->GetPointer(), value->GetLength()).size();
    }
    read += WalkChain(index, Link(record, gdcm::Tag(0x0004, 0x1420)));
    offset = Link(record, gdcm::Tag(0x0004, 0x1400));
  }
  return read;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DICOMDIR\n", argv[0]);
    return 2;
  }
  gdcm::Reader reader;
  reader.SetFileName(argv[1]);
  if (!reader.Read()) return 1;
  const gdcm::File& file = reader.GetFile();
  const gdcm::DataSet& set = file.GetDataSet();
  const gdcm::Tag sequenceTag(0x0004, 0x1220);
  // The header's length counts the preamble and "DICM". The benchmark's files are explicit VR
  // with a sequence of defined length, whose header takes 12 bytes.
  unsigned long offset = file.GetHeader().GetFullLength();
  for (const gdcm::DataElement& element : set.GetDES()) {
    if (element.GetTag() == sequenceTag) break;
    offset += element.GetLength<gdcm::ExplicitDataElement>();
  }
  offset += 12;
  Index index;
  gdcm::SmartPointer<gdcm::SequenceOfItems> items = set.GetDataElement(sequenceTag).GetValueAsSQ();
  for (gdcm::SequenceOfItems::SizeType i = 1; i <= items->GetNumberOfItems(); ++i) {
    const gdcm::Item& item = items->GetItem(i);
    index[offset] = &item;
    offset += item.GetLength<gdcm::ExplicitDataElement>();
  }
  return WalkChain(index, Link(set, gdcm::Tag(0x0004, 0x1200))) == 0 ? 1 : 0;
}
