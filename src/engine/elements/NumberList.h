// The numbers of a numeric element. Nearly every element of a directory holds one number, so one
// is kept inline and only a longer list is allocated: a parsed tree holds hundreds of thousands.
#ifndef HALVORINE_ENGINE_ELEMENTS_NUMBERLIST_H
#define HALVORINE_ENGINE_ELEMENTS_NUMBERLIST_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace DicomEngine {

template <typename Number>
class NumberList {
 public:
  NumberList() = default;
  // count zeros.
  explicit NumberList(std::size_t count) { Resize(count); }
  NumberList(std::initializer_list<Number> numbers) { Assign(numbers.begin(), numbers.size()); }
  NumberList(const std::vector<Number>& numbers) { Assign(numbers.data(), numbers.size()); }
  NumberList(const NumberList& other) { Assign(other.data(), other.size()); }
  NumberList& operator=(const NumberList& other) {
    if (this != &other) Assign(other.data(), other.size());
    return *this;
  }
  // A moved-from list is empty.
  NumberList(NumberList&& other) noexcept
      : one_(other.one_), size_(std::exchange(other.size_, 0)), many_(std::move(other.many_)) {}
  NumberList& operator=(NumberList&& other) noexcept {
    one_ = other.one_;
    size_ = std::exchange(other.size_, 0);
    many_ = std::move(other.many_);
    return *this;
  }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  Number* data() { return many_ ? many_.get() : &one_; }
  const Number* data() const { return many_ ? many_.get() : &one_; }
  Number* begin() { return data(); }
  Number* end() { return data() + size_; }
  const Number* begin() const { return data(); }
  const Number* end() const { return data() + size_; }
  Number& operator[](std::size_t index) { return data()[index]; }
  const Number& operator[](std::size_t index) const { return data()[index]; }
  const Number& front() const { return data()[0]; }
  const Number& at(std::size_t index) const {
    if (index >= size_) throw std::out_of_range("NumberList::at");
    return data()[index];
  }
  friend bool operator==(const NumberList& left, const NumberList& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end());
  }

 private:
  void Resize(std::size_t count) {
    one_ = Number{};
    many_.reset(count > 1 ? new Number[count]() : nullptr);
    size_ = static_cast<std::uint32_t>(count);
  }
  void Assign(const Number* numbers, std::size_t count) {
    Resize(count);
    std::copy_n(numbers, count, data());
  }

  Number one_{};
  std::uint32_t size_ = 0;
  std::unique_ptr<Number[]> many_;
};

}  // namespace DicomEngine

#endif  // HALVORINE_ENGINE_ELEMENTS_NUMBERLIST_H
