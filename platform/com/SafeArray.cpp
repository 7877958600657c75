// Automation arrays.
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <span>

#include "platform/com/Com.h"

namespace {

// In front of the array's structure; its last four bytes are the element type.
constexpr std::size_t kPrefixSize = 16;
constexpr ULONG kMostLocks = 0xFFFF;

struct ElementSize {
  VARTYPE type;
  ULONG size;
};
constexpr ElementSize kElementSizes[] = {{VT_I2, 2}, {VT_I4, 4},   {VT_R4, 4},
                                         {VT_R8, 8}, {VT_BOOL, 2}, {VT_UI1, 1}};

ULONG SizeOfElement(VARTYPE type) {
  for (const ElementSize& entry : kElementSizes) {
    if (entry.type == type) return entry.size;
  }
  return 0;
}

/// Bytes of all elements; false when they do not fit into an array.
bool TotalSize(ULONG element, std::span<const SAFEARRAYBOUND> bounds, std::size_t& total) {
  total = element;
  for (const SAFEARRAYBOUND& bound : bounds) {
    total *= bound.cElements;
    if (total > std::numeric_limits<ULONG>::max()) return false;
  }
  return true;
}

char* BlockOf(SAFEARRAY* array) { return reinterpret_cast<char*>(array) - kPrefixSize; }

const SAFEARRAYBOUND* BoundOf(const SAFEARRAY* array, UINT dimension) {
  if (dimension == 0 || dimension > array->cDims) return nullptr;
  return array->rgsabound + (array->cDims - dimension);
}

SAFEARRAY* AllocateDescriptor(VARTYPE type, UINT dimensions) {
  const std::size_t size = sizeof(SAFEARRAY) + (dimensions - 1) * sizeof(SAFEARRAYBOUND);
  auto* const block = static_cast<char*>(std::calloc(1, kPrefixSize + size));
  if (block == nullptr) return nullptr;
  const DWORD stored_type = type;
  std::memcpy(block + kPrefixSize - sizeof(stored_type), &stored_type, sizeof(stored_type));
  return reinterpret_cast<SAFEARRAY*>(block + kPrefixSize);
}

}  // namespace

SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  const ULONG element = SizeOfElement(type);
  std::size_t total = 0;
  if (element == 0 || dimensions == 0 || dimensions > std::numeric_limits<USHORT>::max() ||
      bounds == nullptr || !TotalSize(element, {bounds, dimensions}, total)) {
    return nullptr;
  }
  SAFEARRAY* const array = AllocateDescriptor(type, dimensions);
  if (array == nullptr) return nullptr;
  array->cDims = static_cast<USHORT>(dimensions);
  array->fFeatures = FADF_HAVEVARTYPE;
  array->cbElements = element;
  for (UINT i = 0; i < dimensions; ++i) array->rgsabound[dimensions - 1 - i] = bounds[i];
  // An empty array has an address as well.
  array->pvData = std::calloc(1, total == 0 ? 1 : total);
  if (array->pvData == nullptr) {
    std::free(BlockOf(array));
    return nullptr;
  }
  return array;
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lower_bound, ULONG elements) {
  SAFEARRAYBOUND bound = {elements, lower_bound};
  return SafeArrayCreate(type, 1, &bound);
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  if (array == nullptr) return S_OK;
  if (std::atomic_ref(array->cLocks) != 0) return DISP_E_ARRAYISLOCKED;
  std::free(array->pvData);
  std::free(BlockOf(array));
  return S_OK;
}

UINT SafeArrayGetDim(SAFEARRAY* array) { return array == nullptr ? 0 : array->cDims; }

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND* const found = BoundOf(array, dimension);
  if (found == nullptr) return DISP_E_BADINDEX;
  *bound = found->lLbound;
  return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  const SAFEARRAYBOUND* const found = BoundOf(array, dimension);
  if (found == nullptr) return DISP_E_BADINDEX;
  *bound = static_cast<LONG>(static_cast<ULONG>(found->lLbound) + found->cElements - 1);
  return S_OK;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
  // Without the mark there is nothing in front of the structure that could be read.
  if (array == nullptr || type == nullptr || (array->fFeatures & FADF_HAVEVARTYPE) == 0) {
    return E_INVALIDARG;
  }
  DWORD stored_type = 0;
  std::memcpy(&stored_type, BlockOf(array) + kPrefixSize - sizeof(stored_type),
              sizeof(stored_type));
  *type = static_cast<VARTYPE>(stored_type);
  return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  const std::atomic_ref locks(array->cLocks);
  if (++locks > kMostLocks) {
    --locks;
    return E_UNEXPECTED;
  }
  return S_OK;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  const std::atomic_ref locks(array->cLocks);
  for (ULONG held = locks; held != 0;) {
    if (locks.compare_exchange_weak(held, held - 1)) return S_OK;
  }
  return E_UNEXPECTED;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  const HRESULT result = SafeArrayLock(array);
  if (SUCCEEDED(result)) *data = array->pvData;
  return result;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) { return SafeArrayUnlock(array); }
