#include "reading/TextStore.h"

namespace halvorine {

char* TextStore::Allocate(std::size_t size) {
  // The free room stays where it is.
  if (size > kBlockSize) {
    return blocks_.emplace_back(std::make_unique_for_overwrite<char[]>(size)).get();
  }
  if (size > left_) {
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(kBlockSize));
    free_ = blocks_.back().get();
    left_ = kBlockSize;
  }
  char* const room = free_;
  free_ += size;
  left_ -= size;
  return room;
}

void TextStore::Clear() {
  blocks_.clear();
  free_ = nullptr;
  left_ = 0;
}

}  // namespace halvorine
