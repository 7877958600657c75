// The registry's functions: the same on every system.
#include "tests/platform/RegistryFixture.h"

namespace {

constexpr const OLECHAR* kTestKey = OLESTR("Software\\Zentrel Platform Test");

class Registry : public RegistryTest {
 protected:
  ~Registry() override { RegDeleteTreeW(HKEY_CURRENT_USER, kTestKey); }
  Key root_{HKEY_CURRENT_USER, kTestKey};
};

TEST_F(Registry, DefaultAndNamedValuesAreApart) {
  ASSERT_EQ(root_.Result(), ERROR_SUCCESS);
  EXPECT_EQ(SetText(root_.Get(), nullptr, OLESTR("default")), ERROR_SUCCESS);
  EXPECT_EQ(SetText(root_.Get(), OLESTR("Model"), OLESTR("Both \"quoted\" \\ \u0414\r\n")),
            ERROR_SUCCESS);
  EXPECT_EQ(TextOf(root_.Get(), OLESTR("")), OLESTR("default"));
  EXPECT_EQ(TextOf(root_.Get(), OLESTR("Model")), OLESTR("Both \"quoted\" \\ \u0414\r\n"));
  EXPECT_EQ(TextOf(root_.Get(), OLESTR("Missing")), OLESTR("error 2"));
  EXPECT_EQ(RegDeleteValueW(root_.Get(), OLESTR("MODEL")), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueW(root_.Get(), OLESTR("Model")), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, NamesHaveNoCase) {
  const Key first(root_.Get(), OLESTR("Some\\Class"));
  EXPECT_EQ(first.Disposition(), REG_CREATED_NEW_KEY);
  const Key second(root_.Get(), OLESTR("SOME\\class"));
  EXPECT_EQ(second.Disposition(), REG_OPENED_EXISTING_KEY);
  SetText(first.Get(), OLESTR("Name"), OLESTR("one"));
  SetText(second.Get(), OLESTR("NAME"), OLESTR("two"));
  EXPECT_EQ(TextOf(first.Get(), OLESTR("name")), OLESTR("two"));
}

TEST_F(Registry, SmallBufferTellsTheSizeNeeded) {
  SetText(root_.Get(), OLESTR("Name"), OLESTR("text"));
  BYTE buffer[10] = {};
  DWORD size = 9;
  DWORD type = 0;
  EXPECT_EQ(RegQueryValueExW(root_.Get(), OLESTR("Name"), nullptr, &type, buffer, &size),
            ERROR_MORE_DATA);
  EXPECT_EQ(size, 10U);
  size = 0;
  EXPECT_EQ(RegQueryValueExW(root_.Get(), OLESTR("Name"), nullptr, &type, nullptr, &size),
            ERROR_SUCCESS);
  EXPECT_EQ(size, 10U);
  EXPECT_EQ(type, REG_SZ);
}

TEST_F(Registry, EnumeratesSubkeysOnly) {
  const Key deep(root_.Get(), OLESTR("A\\Deep"));
  const Key other(root_.Get(), OLESTR("B"));
  EXPECT_EQ(NamesIn(root_.Get()),
            std::pair(std::vector<os::WideString>{OLESTR("A"), OLESTR("B")}, ERROR_NO_MORE_ITEMS));
  OLECHAR name[1] = {};
  DWORD length = 1;
  EXPECT_EQ(RegEnumKeyExW(root_.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr),
            ERROR_MORE_DATA);
}

TEST_F(Registry, KeyWithSubkeysIsOnlyDeletedAsATree) {
  const Key deep(root_.Get(), OLESTR("A\\Deep"));
  EXPECT_EQ(RegDeleteKeyW(root_.Get(), OLESTR("A")), ERROR_ACCESS_DENIED);
  EXPECT_TRUE(KeyExists(root_.Get(), OLESTR("A\\Deep")));
  EXPECT_EQ(RegDeleteTreeW(root_.Get(), OLESTR("A")), ERROR_SUCCESS);
  EXPECT_FALSE(KeyExists(root_.Get(), OLESTR("A")));
  EXPECT_EQ(RegDeleteTreeW(root_.Get(), OLESTR("A")), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteKeyW(root_.Get(), OLESTR("A")), ERROR_FILE_NOT_FOUND);
}

TEST_F(Registry, TreeWithoutANameEmptiesTheKey) {
  const Key deep(root_.Get(), OLESTR("A\\Deep"));
  SetText(root_.Get(), nullptr, OLESTR("default"));
  EXPECT_EQ(RegDeleteTreeW(root_.Get(), nullptr), ERROR_SUCCESS);
  EXPECT_FALSE(KeyExists(root_.Get(), OLESTR("A")));
  EXPECT_EQ(TextOf(root_.Get(), nullptr), OLESTR("error 2"));
}

TEST_F(Registry, OpenKeyNoticesThatItWasDeleted) {
  const Key key(root_.Get(), OLESTR("Gone"));
  ASSERT_EQ(RegDeleteKeyW(root_.Get(), OLESTR("gone")), ERROR_SUCCESS);
  EXPECT_EQ(SetText(key.Get(), nullptr, OLESTR("x")), ERROR_KEY_DELETED);
  EXPECT_EQ(TextOf(key.Get(), nullptr), OLESTR("error 1018"));
}

TEST_F(Registry, RootsStayOpen) {
  EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);
  EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, kTestKey));
}

}  // namespace
