#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
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

TEST(SafeArray, AcceptsExactlyTheIndicesWithinTheBounds) {
  const struct {
    LONG lower;
    ULONG count;
    LONG upper;
  } cases[] = {{0, 3, 2}, {5, 3, 7}, {-2, 3, 0}, {1, 1, 1}, {0, 0, -1}, {10, 0, 9}};
  for (const auto& b : cases) {
    SCOPED_TRACE(testing::Message() << b.count << " elements from " << b.lower);
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
}

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

// Put adds a reference and releases the one it replaces; get hands the caller one.
TEST(SafeArray, PutAndGetCountReferences) {
  CountingUnknown first;
  CountingUnknown second;
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 1, 2);
  ASSERT_NE(array, nullptr);
  ASSERT_EQ(Put(array, 2, &first), S_OK);
  EXPECT_EQ(first.references(), 1u);
  IUnknown* got = nullptr;
  LONG index = 2;
  ASSERT_EQ(SafeArrayGetElement(array, &index, &got), S_OK);
  EXPECT_EQ(got, &first);
  EXPECT_EQ(first.references(), 2u);
  got->Release();
  ASSERT_EQ(Put(array, 2, &second), S_OK);
  EXPECT_EQ(first.references(), 0u);
  EXPECT_EQ(second.references(), 1u);
  ASSERT_EQ(Put(array, 2, nullptr), S_OK);
  EXPECT_EQ(second.references(), 0u);
  EXPECT_EQ(Peek(array, 2), nullptr);
  ASSERT_EQ(Put(array, 1, &first), S_OK);
  SafeArrayDestroy(array);
  EXPECT_EQ(first.references(), 0u);
}

// The copy has the source's bounds: Peek fails outside them. Destroy refuses a locked array.
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
  EXPECT_EQ(a.references(), 2u);
  EXPECT_EQ(b.references(), 2u);
  EXPECT_EQ(Peek(copy, 4), &a);
  EXPECT_EQ(Peek(copy, 5), nullptr);
  EXPECT_EQ(Peek(copy, 6), &b);

  Put(array, 4, nullptr);
  EXPECT_EQ(Peek(copy, 4), &a) << "a change to the source reached the copy";
  EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
  EXPECT_EQ(a.references(), 0u);
  // A locked array stays whole.
  array->cLocks = 1;
  EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(b.references(), 1u);
  array->cLocks = 0;
  EXPECT_EQ(b.references(), 1u);
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(b.references(), 0u);
}

TEST(SafeArray, NullsOtherTypesAndOtherDimensions) {
  EXPECT_EQ(SafeArrayCreateVector(VT_EMPTY, 0, 1), nullptr);
  EXPECT_EQ(SafeArrayCreateVector(8 /* VT_BSTR */, 0, 1), nullptr);
  EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 0, 1);
  ASSERT_NE(array, nullptr);
  SAFEARRAY* copy = array;
  EXPECT_EQ(SafeArrayCopy(nullptr, &copy), S_OK);
  EXPECT_EQ(copy, nullptr);
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
