// The table of members that the console calls by, against the published surface.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <regex>
#include <string>

#include "tests/typelib/Surface.h"
#include "zk4n/members/MemberTable.h"

namespace {

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

}  // namespace
