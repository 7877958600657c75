// The registration scripts' syntax.
#include "server/RegistryScript.h"

#include <gtest/gtest.h>

#include "platform/os/Text.h"
#include "tests/link/Hex.h"

using namespace server;

namespace {

os::WideString Wide(std::string_view text) { return os::ToWide(text, os::kUtf8CodePage); }

std::string ShownText(os::WideView text) { return os::ToNarrow(text, os::kUtf8CodePage); }

/// A value's text, or its type's number and its bytes.
std::string ShownValue(const ScriptValue& value) {
  if (value.type == ValueType::kText) {
    const auto* const text = reinterpret_cast<const os::WideChar*>(value.data.data());
    return ShownText({text, value.data.size() / sizeof(os::WideChar) - 1});
  }
  return std::to_string(static_cast<unsigned>(value.type)) + ":" + ToHex(value.data);
}

/// Keys as one line: "name[removal](value=text)...{keys};".
std::string ShownKeys(const std::vector<ScriptKey>& keys) {
  std::string text;
  for (const ScriptKey& key : keys) {
    text += ShownText(key.name);
    if (key.removal == KeyRemoval::kNever) text += "[no]";
    if (key.removal == KeyRemoval::kForced) text += "[force]";
    if (key.removal == KeyRemoval::kBefore) text += "[before]";
    for (const ScriptValue& value : key.values) {
      text.append("(")
          .append(ShownText(value.name))
          .append("=")
          .append(ShownValue(value))
          .append(")");
    }
    if (!key.keys.empty()) text.append("{").append(ShownKeys(key.keys)).append("}");
    text += ';';
  }
  return text;
}

struct ScriptCase {
  const char* name;
  const char* script;
  const char* expected;  ///< the keys, or the error
};

constexpr ScriptCase kScripts[] = {
    {"EmptyRoot", "HKCR { }", "HKCR[no];"},
    {"SeveralRoots", "HKCR { a } HKCU { b } HKLM { c }", "HKCR[no]{a;};HKCU[no]{b;};HKLM[no]{c;};"},
    {"DefaultValue", "HKCR\n{\r\n\tA.B.1 = s 'A Class'\n}", "HKCR[no]{A.B.1(=A Class);};"},
    {"RemovalMarks", "HKCR { NoRemove A { ForceRemove B = s 'b' { C } } Delete D }",
     "HKCR[no]{A[no]{B[force](=b){C;};};D[before];};"},
    {"LongRoots", "HKEY_CLASSES_ROOT { } HKEY_CURRENT_USER { } HKEY_LOCAL_MACHINE { }",
     "HKCR[no];HKCU[no];HKLM[no];"},
    {"NumbersAndBytes", "HKCR { K = d '258' { val H = d '0xFFFFFFFF' val B = b '01aF' } }",
     "HKCR[no]{K(=4:02 01 00 00)(H=4:FF FF FF FF)(B=3:01 AF);};"},
    {"Texts", "HKCR { K = m 'a\\0b' L = m '\\0b' }",
     "HKCR[no]{K(=7:61 00 00 00 62 00 00 00 00 00);L(=7:00 00 62 00 00 00 00 00);};"},
    {"NamedValues", "HKCR { K = s 'd' { val One = s '1' val 'The Two' = s '' } }",
     "HKCR[no]{K(=d)(One=1)(The Two=);};"},
    {"BracesInNames", "HKCR { {0-1} = s '{2-3}' }", "HKCR[no]{{0-1}(={2-3});};"},
    {"QuotedWordsAreNoSyntax", "HKCR { 'NoRemove' 'val' '}' }", "HKCR[no]{NoRemove;val;};};"},
    {"ApostropheTwice", "HKCR { K = s 'it''s' L = s '''' }", "HKCR[no]{K(=it's);L(=');};"},
    {"Replacements", "HKCR { %ID% { val M = s '%MODULE%, 202' val P = s '5 %%' } }",
     "HKCR[no]{{1-2}(M=C:\\it's 100%\\x.dll, 202)(P=5 %);};"},
    {"PathAsName", "HKCR { A\\B }", "HKCR[no]{A\\B;};"},
    {"NothingAtAll", " \n ", "line 2: the script ends where a root key should be"},
    {"UnknownRoot", "HKXX { }", "line 1: HKXX is no root key"},
    {"QuotedRoot", "'HKCR' { }", "line 1: HKCR is no root key"},
    {"MissingBrace", "HKCR\n{\nK {", "line 3: the script ends where a key's name should be"},
    {"BraceTooMany", "HKCR { } }", "line 1: a root key should be where } is"},
    {"OpenApostrophe", "HKCR {\n K = s 'abc }", "line 2: the closing apostrophe is missing"},
    {"BareText", "HKCR { K = s abc }", "line 1: a text in apostrophes should be where abc is"},
    {"TypeMissing", "HKCR { K =", "line 1: the script ends where a value's type should be"},
    {"TextMissing", "HKCR { K = s", "line 1: the script ends where a text should be"},
    {"OtherValueType", "HKCR { K = x '1' }", "line 1: x is no type of a value"},
    {"NoNumber", "HKCR { K = d '4294967296' }", "line 1: 4294967296 is no value of its type"},
    {"NoBytes", "HKCR { K = b '0g' }", "line 1: 0g is no value of its type"},
    {"HalfAByte", "HKCR { K = b '012' }", "line 1: 012 is no value of its type"},
    {"ValueOfARoot", "HKCR { val N = s '1' }", "line 1: no value can stand here"},
    {"ValueWithoutText", "HKCR { K { val N } }", "line 1: = should be where } is"},
    {"NameMissing", "HKCR {\n= s 'x' }", "line 2: a key's name should be where = is"},
    {"ValueNameMissing", "HKCR { K { val = s 'x' } }",
     "line 1: a value's name should be where = is"},
    {"EmptyName", "HKCR { ForceRemove '' }", "line 1: a key without a name"},
    {"UnknownReplacement", "HKCR {\n\n%OTHER% }", "line 3: nothing stands for %OTHER%"},
    {"LonePerCent", "HKCR { K = s '50%' }", "line 1: % without its second in 50%"},
};

std::string Outcome(std::string_view script, const Replacements& replacements) {
  try {
    return ShownKeys(ParseRegistryScript(script, replacements));
  } catch (const ScriptError& error) {
    return error.what();
  }
}

TEST(RegistryScript, IsReadOrRefused) {
  // An apostrophe and a per cent sign of a file's name are no signs of the script.
  const Replacements replacements = {{"MODULE", Wide("C:\\it's 100%\\x.dll")},
                                     {"ID", Wide("{1-2}")}};
  for (const ScriptCase& row : kScripts) {
    EXPECT_EQ(Outcome(row.script, replacements), row.expected) << row.name;
  }
}

TEST(RegistryScript, IsNestedNoDeeperThanAnyRegistry) {
  std::string head = "HKCR {";
  std::string tail = " }";
  for (int depth = 1; depth < 512; ++depth) {
    head += " K {";
    tail += " }";
  }
  EXPECT_TRUE(Outcome(head + tail, {}).starts_with("HKCR[no]{K{K{"));
  EXPECT_EQ(Outcome(head + " K { }" + tail, {}), "line 1: keys are nested too deep");
}

}  // namespace
