// The C++ header of the interfaces against the published surface: what a C++ client and our classes
// are compiled with has the identities, the slot order, the types and the values that other clients
// read from the type library.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <regex>
#include <string>

#include "tests/typelib/Surface.h"

namespace {

using Matches = std::sregex_iterator;

/// "a, b, c" with `convert` applied to each part.
template <typename Convert>
std::string EachParameter(const std::string& list, Convert convert) {
  static const std::regex parameter(R"(\s*([^,\s][^,]*))");
  std::string text;
  for (Matches i(list.begin(), list.end(), parameter), end; i != end; ++i) {
    text += (text.empty() ? "" : ", ") + convert((*i)[1].str());
  }
  return text;
}

/// "LONG *Name" as "LONG* Name"; "LONG a" as "LONG", because that is what the header makes of no
/// name.
std::string HeaderParameter(const std::string& parameter) {
  static const std::regex pointer(R"( (\*+))");
  static const std::regex no_name(R"( a$)");
  return std::regex_replace(std::regex_replace(parameter, pointer, "$1 "), no_name, "");
}

/// "long* Name" as "LONG* Name": the library's `long` has 32 bits on every system.
std::string SurfaceParameter(const std::string& parameter) {
  static const std::regex integer(R"(^long\b)");
  static const std::regex array(R"(^SAFEARRAY\(double\))");
  return std::regex_replace(std::regex_replace(parameter, integer, "LONG"), array, "SAFEARRAY*");
}

void AddEnumerations(const std::string& header, Lines& lines) {
  static const std::regex block(R"(typedef enum (\w+) : int \{([^}]*)\})");
  static const std::regex constant(R"((\w+) = (?:\(int\))?(-?\w+))");
  for (Matches i(header.begin(), header.end(), block), end; i != end; ++i) {
    const std::string body = (*i)[2];
    lines.push_back("enum " + (*i)[1].str());
    for (Matches c(body.begin(), body.end(), constant); c != end; ++c) {
      const auto value = static_cast<std::int32_t>(std::stoll((*c)[2], nullptr, 0));
      lines.push_back("  " + (*c)[1].str() + " = " + std::to_string(value));
    }
  }
}

void AddInterfaces(const std::string& header, Lines& lines) {
  static const std::regex block(
      R"re(MIDL_INTERFACE\("([-0-9a-f]+)"\)\s*(\w+) : public IUnknown\s*\{([^}]*)\})re");
  static const std::regex member(R"(virtual HRESULT STDMETHODCALLTYPE (\w+)\(([^)]*)\) = 0;)");
  for (Matches i(header.begin(), header.end(), block), end; i != end; ++i) {
    const std::string body = (*i)[3];
    lines.push_back("interface " + (*i)[2].str() + " " + (*i)[1].str());
    int slot = 3;  // after the three of IUnknown
    for (Matches m(body.begin(), body.end(), member); m != end; ++m) {
      lines.push_back("  slot " + std::to_string(slot++) + " " + (*m)[1].str() + "(" +
                      EachParameter((*m)[2], HeaderParameter) + ")");
    }
  }
}

void AddClasses(const std::string& header, Lines& lines) {
  static const std::regex declaration(R"re(class DECLSPEC_UUID\("([-0-9a-f]+)"\) (\w+);)re");
  for (Matches i(header.begin(), header.end(), declaration), end; i != end; ++i) {
    lines.push_back("coclass " + (*i)[2].str() + " " + (*i)[1].str());
  }
}

std::string LowerCase(std::string text) {
  for (char& c : text) {
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return text;
}

/// What a header can show of the published surface.
Lines HeaderView(const Lines& surface) {
  static const std::regex enumeration(R"(enum \w+)");
  static const std::regex type(R"((interface|coclass) (\w+) \{([-0-9A-F]+)\}.*)");
  static const std::regex constant(R"(  \w+ = -?\d+)");
  static const std::regex flags(R"(\[[^\]]*\] )");
  static const std::regex member(R"((  slot \d+) id \w+ (get|put|method) (\w+)\((.*?)\)(?: ".*)?)");
  Lines lines;
  for (const auto& line : surface) {
    std::smatch match;
    if (std::regex_search(line, match, enumeration, std::regex_constants::match_continuous)) {
      lines.push_back(match[0]);
    } else if (std::regex_match(line, match, type)) {
      lines.push_back(match[1].str() + " " + match[2].str() + " " + LowerCase(match[3]));
    } else if (std::regex_match(line, match, constant)) {
      lines.push_back(line);
    } else if (std::regex_match(line, match, member)) {
      const std::string prefix = match[2] == "method" ? "" : match[2].str() + "_";
      lines.push_back(
          match[1].str() + " " + prefix + match[3].str() + "(" +
          EachParameter(std::regex_replace(match[4].str(), flags, ""), SurfaceParameter) + ")");
    }
  }
  return lines;
}

TEST(InterfaceHeaderTest, HasTheSlotsAndValuesOfTheTypeLibrary) {
  const std::string header = ReadTextFile(ZK_INTERFACE_HEADER);
  Lines actual;
  AddEnumerations(header, actual);
  AddInterfaces(header, actual);
  AddClasses(header, actual);
  ExpectSameSurface(actual, HeaderView(ReadExpectedSurface()));
}

}  // namespace
