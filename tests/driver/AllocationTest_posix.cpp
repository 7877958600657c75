// A client's memory runs out. The linker leads the program's calls of SysAllocStringLen through
// here.
#include <gtest/gtest.h>

#include "driver/ZentrelK4N.h"
#include "tests/driver/DriverModule.h"

namespace {
bool out_of_memory = false;
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" BSTR __real_SysAllocStringLen(const OLECHAR* text, UINT length);
extern "C" BSTR __wrap_SysAllocStringLen(const OLECHAR* text, UINT length);
BSTR __wrap_SysAllocStringLen(const OLECHAR* text, UINT length) {
  return out_of_memory ? nullptr : __real_SysAllocStringLen(text, length);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace driver_test {
namespace {

TEST(Allocation, WithoutMemoryForAChannelsNameTheClientKeepsItsText) {
  const auto root = ComPtr<ComObject<CZentrelK4N>>::Adopt(ComObject<CZentrelK4N>::Create());
  BSTR name = Text("before").Detach();
  const BSTR before = name;
  out_of_memory = true;
  const HRESULT result = root->get_Name(2, &name);
  out_of_memory = false;
  EXPECT_EQ(result, E_OUTOFMEMORY);
  EXPECT_EQ(name, before);
  EXPECT_EQ(root->get_Name(2, &name), S_OK);
  EXPECT_EQ(TakeText(name), "ChannelB");
}

}  // namespace
}  // namespace driver_test
