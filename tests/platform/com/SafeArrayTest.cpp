#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <ostream>
#include <utility>
#include <vector>

#include "platform/com/CountingUnknown.h"

namespace halvorine {
namespace {

HRESULT Put(SAFEARRAY* array, LONG index, IUnknown* element) {
  return SafeArrayPutElement(array, &index, element);
}

// Gives the element at index with the reference that the get added already dropped again.
IUnknown* Peek(SAFEARRAY* array, LONG index) {
  IUnknown* element = nullptr;
  EXPECT_EQ(SafeArrayGetElement(array, &index, &element), S_OK);
  if (element != nullptr) element->Release();
  return element;
}

struct Bounds {
  LONG lower;
  ULONG count;
  LONG upper;
};

void PrintTo(const Bounds& b, std::ostream* os) { *os << b.count << " elements from " << b.lower; }

class SafeArrayBounds : public testing::TestWithParam<Bounds> {};

TEST_P(SafeArrayBounds, AcceptsExactlyTheIndicesWithinTheBounds) {
  const Bounds& b = GetParam();
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, b.lower, b.count);
  ASSERT_NE(array, nullptr);
  LONG lower = 0;
  LONG upper = 0;
  EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), S_OK);
  EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), S_OK);
  EXPECT_EQ(lower, b.lower);
  EXPECT_EQ(upper, b.upper);

  CountingUnknown element;
  for (LONG index = b.lower; index <= b.upper; ++index) {
    EXPECT_EQ(Put(array, index, &element), S_OK) << index;
  }
  for (LONG outside : {b.lower - 1, b.upper + 1}) {
    IUnknown* got = &element;
    EXPECT_EQ(Put(array, outside, &element), DISP_E_BADINDEX) << outside;
    EXPECT_EQ(SafeArrayGetElement(array, &outside, &got), DISP_E_BADINDEX) << outside;
    EXPECT_EQ(got, &element) << "a refused get wrote its out";
  }
  EXPECT_EQ(element.references(), b.count);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(element.references(), 0u);
}

INSTANTIATE_TEST_SUITE_P(Vectors, SafeArrayBounds,
                         testing::Values(Bounds{0, 3, 2}, Bounds{5, 3, 7}, Bounds{-2, 3, 0},
                                         Bounds{1, 1, 1}, Bounds{0, 0, -1}, Bounds{10, 0, 9}));

TEST(SafeArray, LayoutIsOneDimensionOfPointersWithTheTypeInFront) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 3, 4);
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(array->cDims, 1);
  EXPECT_EQ(array->fFeatures, FADF_HAVEVARTYPE | FADF_UNKNOWN);
  EXPECT_EQ(array->cbElements, sizeof(IUnknown*));
  EXPECT_EQ(array->cLocks, 0u);
  EXPECT_EQ(array->rgsabound[0].cElements, 4u);
  EXPECT_EQ(array->rgsabound[0].lLbound, 3);
  std::uint32_t vartype = 0;
  std::memcpy(&vartype, reinterpret_cast<const char*>(array) - sizeof(vartype), sizeof(vartype));
  EXPECT_EQ(vartype, VT_UNKNOWN);
  auto* slots = static_cast<IUnknown**>(array->pvData);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(slots[i], nullptr);
  SafeArrayDestroy(array);
}

TEST(SafeArray, MakesOnlyArraysOfUnknown) {
  EXPECT_EQ(SafeArrayCreateVector(VT_EMPTY, 0, 1), nullptr);
  EXPECT_EQ(SafeArrayCreateVector(8 /* VT_BSTR */, 0, 1), nullptr);
}

TEST(SafeArray, PutAddsAReferenceAndReleasesTheOneItReplaces) {
  CountingUnknown first;
  CountingUnknown second;
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 0, 2);
  ASSERT_NE(array, nullptr);
  ASSERT_EQ(Put(array, 0, &first), S_OK);
  EXPECT_EQ(first.references(), 1u);
  ASSERT_EQ(Put(array, 0, &second), S_OK);
  EXPECT_EQ(first.references(), 0u);
  EXPECT_EQ(second.references(), 1u);
  ASSERT_EQ(Put(array, 0, nullptr), S_OK);
  EXPECT_EQ(second.references(), 0u);
  EXPECT_EQ(Peek(array, 0), nullptr);
  SafeArrayDestroy(array);
}

TEST(SafeArray, GetHandsTheCallerAReference) {
  CountingUnknown element;
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 1, 2);
  ASSERT_NE(array, nullptr);
  ASSERT_EQ(Put(array, 2, &element), S_OK);
  IUnknown* got = nullptr;
  LONG index = 2;
  ASSERT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
  EXPECT_EQ(got, &element);
  EXPECT_EQ(element.references(), 2u);
  got->Release();

  IUnknown* empty = &element;
  index = 1;
  ASSERT_EQ(SafeArrayGetElement(array, &index, &empty), S_OK);
  EXPECT_EQ(empty, nullptr);
  SafeArrayDestroy(array);
  EXPECT_EQ(element.references(), 0u);
}

TEST(SafeArray, CopyAddsAReferenceToEachElementAndKeepsNullSlots) {
  CountingUnknown a;
  CountingUnknown b;
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 4, 3);
  ASSERT_NE(array, nullptr);
  Put(array, 4, &a);
  Put(array, 6, &b);
  SAFEARRAY* copy = nullptr;
  ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy, array);
  EXPECT_NE(copy->pvData, array->pvData);
  EXPECT_EQ(a.references(), 2u);
  EXPECT_EQ(b.references(), 2u);
  LONG lower = 0;
  LONG upper = 0;
  SafeArrayGetLBound(copy, 1, &lower);
  SafeArrayGetUBound(copy, 1, &upper);
  EXPECT_EQ(lower, 4);
  EXPECT_EQ(upper, 6);
  EXPECT_EQ(Peek(copy, 4), &a);
  EXPECT_EQ(Peek(copy, 5), nullptr);
  EXPECT_EQ(Peek(copy, 6), &b);

  Put(array, 4, nullptr);
  EXPECT_EQ(Peek(copy, 4), &a) << "a change to the source reached the copy";
  EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
  EXPECT_EQ(a.references(), 0u);
  EXPECT_EQ(b.references(), 1u);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(b.references(), 0u);
}

TEST(SafeArray, CopyOfNullIsNull) {
  SAFEARRAY* copy = SafeArrayCreateVector(VT_UNKNOWN, 0, 1);
  SAFEARRAY* held = copy;
  EXPECT_EQ(SafeArrayCopy(nullptr, &copy), S_OK);
  EXPECT_EQ(copy, nullptr);
  SafeArrayDestroy(held);
}

TEST(SafeArray, DestroyOfNullSucceeds) { EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK); }

TEST(SafeArray, DestroyRefusesALockedArray) {
  CountingUnknown element;
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 0, 1);
  ASSERT_NE(array, nullptr);
  Put(array, 0, &element);
  array->cLocks = 1;
  EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(element.references(), 1u);
  array->cLocks = 0;
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
}

TEST(SafeArray, RefusesNullArgumentsAndOtherDimensions) {
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 0, 1);
  ASSERT_NE(array, nullptr);
  LONG index = 0;
  LONG bound = 0;
  IUnknown* element = nullptr;
  const std::vector<std::pair<const char*, HRESULT>> calls = {
      {"put, null array", SafeArrayPutElement(nullptr, &index, nullptr)},
      {"put, null indices", SafeArrayPutElement(array, nullptr, nullptr)},
      {"get, null array", SafeArrayGetElement(nullptr, &index, &element)},
      {"get, null indices", SafeArrayGetElement(array, nullptr, &element)},
      {"get, null out", SafeArrayGetElement(array, &index, nullptr)},
      {"lbound, null array", SafeArrayGetLBound(nullptr, 1, &bound)},
      {"lbound, null out", SafeArrayGetLBound(array, 1, nullptr)},
      {"ubound, null array", SafeArrayGetUBound(nullptr, 1, &bound)},
      {"ubound, null out", SafeArrayGetUBound(array, 1, nullptr)},
      {"copy, null out", SafeArrayCopy(array, nullptr)},
  };
  for (const auto& [call, status] : calls) EXPECT_EQ(status, E_INVALIDARG) << call;
  for (UINT dimension : {0u, 2u}) {
    EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), DISP_E_BADINDEX) << dimension;
    EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), DISP_E_BADINDEX) << dimension;
  }
  SafeArrayDestroy(array);
}

}  // namespace
}  // namespace halvorine
