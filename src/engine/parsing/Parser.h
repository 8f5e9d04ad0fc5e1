// Turns the bytes of a DICOM data set into element objects, one per data element, sequences and
// items included, in one forward pass. The encoding is decided element by element from the
// element's group: groups up to 2 use headerSyntax, and so does every group until (0002,0010) has
// been met; from then on the groups above 2 use the syntax that it names. An element looks like
// this (sizes in bytes; every number least significant byte first, in every syntax):
//
//   explicit (vrForm 2), OB OW SQ UN UT   group 2 | element 2 | VR 2 | reserved 2 | length 4
//   explicit (vrForm 2), any other VR     group 2 | element 2 | VR 2 | length 2
//   implicit (vrForm 1)                   group 2 | element 2 | length 4 (VR from dictionary)
//   not set (vrForm 0)                    group 2 | element 2 | VR 2 | length 4
//   group FFFE, in every syntax           group 2 | element 2 | length 4
//
// The delimiters (FFFE,E00D) and (FFFE,E0DD) stay in the tree as VRSequenceItem entries, so that
// the sizes of a tree of undefined lengths still add up to the file's.
#ifndef HALVORINE_ENGINE_PARSING_PARSER_H
#define HALVORINE_ENGINE_PARSING_PARSER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "engine/dictionary/TransferSyntax.h"
#include "engine/elements/VR.h"
#include "engine/elements/VRContainer.h"
#include "engine/parsing/BufferReader.h"
#include "engine/parsing/ElementBin.h"
#include "engine/parsing/PlainItem.h"

namespace DicomEngine {

class Parser {
 public:
  // Sequences may nest this deep; one more fails instead of exhausting the stack.
  static constexpr int kMaxSequenceDepth = 64;

  // Without a reader: Parse fails until a subclass gives it one.
  Parser();
  // A parser over reader, whose first guess at the encoding is headerSyntax.
  Parser(std::unique_ptr<BufferReader> reader, SyntaxRecord headerSyntax);
  Parser(const Parser&) = delete;
  Parser& operator=(const Parser&) = delete;
  virtual ~Parser();

  // Appends the elements to container in file order, until the reader is exhausted or an item
  // delimiter has been read, which is appended last. On a failure the elements appended so far
  // stay in container.
  void Parse(VRContainer& container);
  // Frees the bytes once they are parsed; the syntaxes stay for the size questions below. Parse
  // fails from then on.
  void ReleaseReader() { reader_.reset(); }

  // Called with each entry of a sequence at the data set's top level as soon as the entry is
  // complete, items and delimiters alike, before it is appended to the sequence and before the
  // sequence itself is appended: a caller that needs one entry at a time may take it, and the
  // sequence then goes without it.
  using EntryHandler = std::function<void(const VR& sequence, std::unique_ptr<VR>& entry)>;
  void SetEntryHandler(EntryHandler handler) { entryHandler_ = std::move(handler); }
  // Offered first, at the top level too, each item of defined length that is plain (see PlainItem)
  // and whose bytes lie in one chunk, while no element is traced. A handler that returns true has
  // taken the item: the parser goes on behind it, and neither the entry handler nor the sequence
  // sees it. On false the item is parsed as any other.
  using PlainItemHandler =
      std::function<bool(const VR& sequence, const PlainItem& item, std::uint32_t itemLength)>;
  void SetPlainItemHandler(PlainItemHandler handler) { plainItemHandler_ = std::move(handler); }
  // Takes back elements that the caller is done with, so that later elements reuse them.
  void Recycle(std::unique_ptr<VR> element) { bin_->Put(std::move(element)); }
  // Whether the syntaxes are final, (0002,0010) having been met: until then the size questions
  // may give other answers at the end of the parse.
  bool IsSyntaxSettled() const { return syntaxKnown_; }

  // The encoded sizes of an element's header, on the syntaxes as parsing left them: 4 for the
  // tag, then GetVRFieldSize, then GetLengthFieldSize (reserved bytes included) up to the value.
  std::uint32_t GetVRFieldSize(std::uint16_t group, std::uint16_t element) const;
  std::uint32_t GetLengthFieldSize(std::string_view vrCode, std::uint16_t group,
                                   std::uint16_t element) const;

 protected:
  // For a subclass that finds the bytes and the first guess itself.
  void SetReader(std::unique_ptr<BufferReader> reader, SyntaxRecord headerSyntax);

 private:
  // The parser of one item: the syntaxes of its parent, and a depth one below.
  Parser(std::unique_ptr<BufferReader> reader, const Parser& parent);

  SyntaxRecord GetSyntaxForGroup(std::uint16_t group) const;
  // The code's text lives in the dictionary, in a literal or in explicitCode_, until the next read.
  std::pair<std::string_view, std::uint32_t> ReadVRAndLength(std::uint16_t group,
                                                             std::uint16_t element);
  std::string_view ChooseVR(std::uint16_t group, std::uint16_t element);
  std::uint32_t ReadLength(std::string_view vrCode, std::uint16_t group, std::uint16_t element);
  // Null for a code that has no class; the cursor then stands on the value's first byte.
  std::unique_ptr<VR> MakeElement(std::string_view vrCode, std::uint16_t group,
                                  std::uint16_t element, std::uint32_t length);
  template <class Text>
  std::unique_ptr<VR> MakeText(VRCode code, std::uint16_t group, std::uint16_t element,
                               std::uint32_t length);
  std::unique_ptr<VR> ParseSequence(std::uint16_t group, std::uint16_t element,
                                    std::string_view vrCode, std::uint32_t length);
  // One item, fragment or sequence delimiter. consumed counts the item headers and defined item
  // lengths read so far; finished tells the sequence to end.
  // Null for an item that the plain item handler took.
  std::unique_ptr<VR> ParseSequenceItem(const VR& sequence, bool binaryItems,
                                        std::uint32_t sequenceLength, std::uint32_t& consumed,
                                        bool& finished);
  bool OfferPlainItem(const VR& sequence, std::uint32_t itemLength);
  std::unique_ptr<VR> ParseNestedItem(std::uint32_t itemLength);
  void ApplyTransferSyntax(const VR* object);

  std::unique_ptr<BufferReader> reader_;
  SyntaxRecord headerSyntax_;
  SyntaxRecord dataSetSyntax_;
  bool syntaxKnown_ = false;
  int depth_ = 0;              // the sequences around what this parser reads
  VRCode explicitCode_;        // the last code read from the stream
  EntryHandler entryHandler_;  // for the top level only
  PlainItemHandler plainItemHandler_;  // for the top level only
  ElementBin ownBin_;          // used by the top-level parser only
  ElementBin* bin_;            // the top level's
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_PARSING_PARSER_H
