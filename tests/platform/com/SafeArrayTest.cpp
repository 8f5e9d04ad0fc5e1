#include <halvorine/com.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "platform/com/CountingUnknown.h"

namespace halvorine {
namespace {

HRESULT Put(SAFEARRAY* array, LONG index, IUnknown* element) {
  return SafeArrayPutElement(array, &index, element);
}

// The element at index, with the reference that the get added already dropped again.
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
  } cases[] = {{0, 3}, {5, 3}, {-2, 3}, {1, 1}, {0, 0}, {10, 0}};
  for (const auto& b : cases) {
    SCOPED_TRACE(testing::Message() << b.count << " elements from " << b.lower);
    SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, b.lower, b.count);
    ASSERT_NE(array, nullptr);
    const LONG upper = b.lower + static_cast<LONG>(b.count) - 1;
    LONG bound[2] = {};
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &bound[0]), S_OK);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &bound[1]), S_OK);
    EXPECT_EQ(bound[0], b.lower);
    EXPECT_EQ(bound[1], upper);
    CountingUnknown element;
    for (LONG index = b.lower; index <= upper; ++index)
      EXPECT_EQ(Put(array, index, &element), S_OK);
    for (LONG outside : {b.lower - 1, upper + 1}) {
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

// Put adds a reference and releases the one it replaces; get and copy add one each; a copy is
// independent of its source; a locked array isn't destroyed.
TEST(SafeArray, CountsReferencesThroughPutGetCopyAndDestroy) {
  CountingUnknown a;
  CountingUnknown b;
  SAFEARRAY* array = SafeArrayCreateVector(VT_UNKNOWN, 4, 3);
  ASSERT_NE(array, nullptr);
  ASSERT_EQ(Put(array, 4, &b), S_OK);
  ASSERT_EQ(Put(array, 4, &a), S_OK);
  EXPECT_EQ(b.references(), 0u);
  Put(array, 6, &b);
  EXPECT_EQ(Peek(array, 4), &a);
  EXPECT_EQ(a.references(), 1u);
  SAFEARRAY* copy = nullptr;
  ASSERT_EQ(SafeArrayCopy(array, &copy), S_OK);
  EXPECT_EQ(a.references(), 2u);
  EXPECT_EQ(Peek(copy, 5), nullptr);
  EXPECT_EQ(Peek(copy, 6), &b);
  Put(array, 4, nullptr);
  EXPECT_EQ(a.references(), 1u);
  EXPECT_EQ(Peek(copy, 4), &a) << "a change to the source reached the copy";
  EXPECT_EQ(SafeArrayDestroy(copy), S_OK);
  EXPECT_EQ(a.references(), 0u);
  array->cLocks = 1;
  EXPECT_EQ(SafeArrayDestroy(array), DISP_E_ARRAYISLOCKED);
  EXPECT_EQ(b.references(), 1u);
  array->cLocks = 0;
  EXPECT_EQ(SafeArrayDestroy(array), S_OK);
  EXPECT_EQ(b.references(), 0u);
}

// The memory layout is what a host reads directly: one dimension of pointers, the type in front.
TEST(SafeArray, LayoutAndRefusalsOfOtherTypesOtherDimensionsAndNullArguments) {
  EXPECT_EQ(SafeArrayCreateVector(VT_EMPTY, 0, 1), nullptr);
  EXPECT_EQ(SafeArrayCreateVector(8 /* VT_BSTR */, 0, 1), nullptr);
  EXPECT_EQ(SafeArrayDestroy(nullptr), S_OK);
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
  SAFEARRAY* copy = array;
  EXPECT_EQ(SafeArrayCopy(nullptr, &copy), S_OK);
  EXPECT_EQ(copy, nullptr);
  LONG index = 3;
  LONG bound = 0;
  IUnknown* element = nullptr;
  int call = 0;
  for (const HRESULT status :
       {SafeArrayPutElement(nullptr, &index, nullptr), SafeArrayPutElement(array, nullptr, nullptr),
        SafeArrayGetElement(nullptr, &index, &element),
        SafeArrayGetElement(array, nullptr, &element), SafeArrayGetElement(array, &index, nullptr),
        SafeArrayGetLBound(nullptr, 1, &bound), SafeArrayGetLBound(array, 1, nullptr),
        SafeArrayGetUBound(nullptr, 1, &bound), SafeArrayGetUBound(array, 1, nullptr),
        SafeArrayCopy(array, nullptr)}) {
    EXPECT_EQ(status, E_INVALIDARG) << "call " << call++;
  }
  for (UINT dimension : {0u, 2u}) {
    EXPECT_EQ(SafeArrayGetLBound(array, dimension, &bound), DISP_E_BADINDEX) << dimension;
    EXPECT_EQ(SafeArrayGetUBound(array, dimension, &bound), DISP_E_BADINDEX) << dimension;
  }
  SafeArrayDestroy(array);
}

}  // namespace
}  // namespace halvorine
