// The table of members that the console calls by: against the published surface, and what a call
// leaves in its arguments.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <regex>
#include <string>

#include "server/interface/ZentrelK4NLib.h"
#include "tests/typelib/Surface.h"
#include "zk4n/members/MemberTable.h"

namespace {

using members::Argument;
using members::Kind;

constexpr std::array kInherent{"IIviDriverIdentity", "IIviDriverOperation"};

bool IsInherent(const members::Interface& entry) {
  return std::ranges::count(kInherent, entry.name) != 0;
}

std::string Text(const members::Parameter& parameter) {
  constexpr std::array kDirections{"in", "out", "in,out", "out,retval", ""};
  std::string text = kDirections.at(static_cast<std::size_t>(parameter.direction));
  if (parameter.optional) text += ",optional";
  if (!text.empty()) text = "[" + text + "] ";
  text += parameter.type_name;
  if (parameter.type == members::Type::kArray || parameter.IsOut()) text += "*";
  if (parameter.type == members::Type::kInterface) text += "*";
  return parameter.name.empty() ? text : text.append(" ").append(parameter.name);
}

std::string Text(const members::Member& member) {
  constexpr std::array kKinds{" get ", " put ", " method "};
  std::string list;
  for (const auto& parameter : member.parameters) {
    list += (list.empty() ? "" : ", ") + Text(parameter);
  }
  return "  slot " + std::to_string(member.slot) +
         kKinds.at(static_cast<std::size_t>(member.kind)) + std::string(member.name) + "(" + list +
         ")";
}

std::string Text(const members::Interface& entry) {
  std::array<OLECHAR, 39> id{};
  StringFromGUID2(entry.id, id.data(), static_cast<int>(id.size()));
  return "interface " + std::string(entry.name) + " " + std::string(id.begin(), id.end() - 1);
}

/// What the table can show of the published surface.
Lines PublishedMembers() {
  static const std::regex type(R"((interface \w+ \{[-0-9A-F]+\}).*)");
  static const std::regex member(R"((  slot \d+) id \w+( \w+ \w+\((?:[^()]|\(double\))*\)).*)");
  Lines lines;
  for (const std::string& line : ReadExpectedSurface()) {
    std::smatch match;
    if (std::regex_match(line, match, type)) lines.push_back(match[1]);
    if (std::regex_match(line, match, member)) lines.push_back(match[1].str() + match[2].str());
  }
  return lines;
}

TEST(MemberTableTest, IsThePublishedSurface) {
  Lines lines;
  for (const auto& entry : members::Interfaces()) {
    if (IsInherent(entry)) continue;
    lines.push_back(Text(entry));
    for (const auto& member : entry.members) lines.push_back(Text(member));
  }
  ExpectSameSurface(lines, PublishedMembers());
}

TEST(MemberTableTest, HasTheInherentInterfacesAsTheirHeaderDeclaresThem) {
  static const std::regex member(R"(virtual HRESULT STDMETHODCALLTYPE (\w+)\()");
  const std::string header = ReadTextFile(ZK_INHERENT_HEADER);
  Lines declared;
  for (std::sregex_iterator i(header.begin(), header.end(), member), end; i != end; ++i) {
    declared.push_back((*i)[1]);
  }
  constexpr std::array kPrefixes{"get_", "put_", ""};
  Lines described;
  for (const auto& entry : members::Interfaces()) {
    for (int slot = 3; const auto& listed : entry.members) {
      EXPECT_EQ(listed.slot, slot++) << entry.name << "." << listed.name;
      if (!IsInherent(entry)) continue;
      described.push_back(kPrefixes.at(static_cast<std::size_t>(listed.kind)) +
                          std::string(listed.name));
    }
  }
  EXPECT_EQ(described, declared);
}

/// Writes what it is told to, and keeps what it was given.
class ScriptedChannels final : public IZentrelK4NChannels {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** /*object*/) override {
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
  ULONG STDMETHODCALLTYPE Release() override { return --references; }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override {
    if (count == nullptr) return E_POINTER;
    if (writes) *count = 3;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Name(LONG index, BSTR* name) override {
    if (!writes) return E_FAIL;
    SysFreeString(*name);
    *name = SysAllocString(index == 7 ? OLESTR("seven") : OLESTR("other"));
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_Item(BSTR name, IZentrelK4NChannel** item) override {
    given_null = name == nullptr;
    if (writes) *item = nullptr;
    return S_FALSE;
  }

  ULONG references = 1;
  bool writes = true;
  bool given_null = false;
};

HRESULT Call(ScriptedChannels& object, const char* name, std::span<Argument> arguments) {
  const auto* entry = members::FindInterface(__uuidof(IZentrelK4NChannels));
  return entry->Find(name, Kind::kGet)->Call(&object, arguments);
}

TEST(MemberCallTest, TellsWhetherAnArgumentWasWritten) {
  for (const bool writes : {true, false}) {
    ScriptedChannels object;
    object.writes = writes;
    std::array<Argument, 1> count;
    EXPECT_EQ(Call(object, "Count", count), S_OK);
    EXPECT_EQ(count[0].written, writes);
    EXPECT_EQ(std::holds_alternative<LONG>(count[0].value), writes);

    std::array<Argument, 2> name;
    name[0].value = LONG{7};
    EXPECT_EQ(Call(object, "Name", name), writes ? S_OK : E_FAIL);
    EXPECT_EQ(name[1].written, writes);
    ASSERT_EQ(std::holds_alternative<Bstr>(name[1].value), writes);
    if (writes) {
      EXPECT_TRUE(std::get<Bstr>(name[1].value).View() == OLESTR("seven"));
    }

    std::array<Argument, 2> item;
    EXPECT_EQ(Call(object, "Item", item), S_FALSE);
    EXPECT_TRUE(object.given_null) << "a text without a value is null";
    EXPECT_EQ(item[1].written, writes) << "null is written, too";
  }
}

TEST(MemberCallTest, PassesNullReferencesAndRefusesWhatDoesNotFit) {
  ScriptedChannels object;
  std::array<Argument, 1> count;
  count[0].value = members::NullReference{};
  EXPECT_EQ(Call(object, "Count", count), E_POINTER);
  EXPECT_FALSE(count[0].written);
  std::array<Argument, 2> name;
  EXPECT_THROW(Call(object, "Count", name), std::invalid_argument);
  name[0].value = 7.0;
  EXPECT_THROW(Call(object, "Name", name), std::bad_variant_access);
}

}  // namespace
