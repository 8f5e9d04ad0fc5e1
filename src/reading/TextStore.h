// Room for many short texts that live and go together, as the texts of a load's index do: taken
// from large blocks that never move, so that a text's place holds until Clear, and a record costs
// no allocation of its own.
#ifndef HALVORINE_READING_TEXTSTORE_H
#define HALVORINE_READING_TEXTSTORE_H

#include <cstddef>
#include <memory>
#include <vector>

namespace halvorine {

class TextStore {
 public:
  static constexpr std::size_t kBlockSize = 64 * 1024;

  // Room for size bytes, valid until Clear; a size beyond kBlockSize gets a block of its own.
  char* Allocate(std::size_t size);
  // Gives back every block.
  void Clear();

 private:
  std::vector<std::unique_ptr<char[]>> blocks_;
  char* free_ = nullptr;  // in the block of kBlockSize taken last
  std::size_t left_ = 0;
};

}  // namespace halvorine

#endif  // HALVORINE_READING_TEXTSTORE_H
