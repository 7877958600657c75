#include "tests/typelib/TypeLibraryText.h"

#include <array>
#include <cstdio>
#include <source_location>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "platform/com/Raii.h"
#include "platform/os/Text.h"

namespace {

std::string Format(const char* format, auto... values) {
  std::array<char, 80> text{};
  std::snprintf(text.data(), text.size(), format, values...);
  return text.data();
}

void Require(HRESULT result, std::source_location at = std::source_location::current()) {
  if (FAILED(result)) throw std::runtime_error(Format("line %u: 0x%08lX", at.line(), result));
}

struct ValueName {
  unsigned value;
  std::string_view name;
};

constexpr std::array kTypeFlags{
    ValueName{TYPEFLAG_FCANCREATE, "creatable"}, ValueName{TYPEFLAG_FHIDDEN, "hidden"},
    ValueName{TYPEFLAG_FDUAL, "dual"}, ValueName{TYPEFLAG_FOLEAUTOMATION, "oleautomation"},
    ValueName{TYPEFLAG_FDISPATCHABLE, "dispatchable"}};
constexpr std::array kParameterFlags{
    ValueName{PARAMFLAG_FIN, "in"}, ValueName{PARAMFLAG_FOUT, "out"},
    ValueName{PARAMFLAG_FRETVAL, "retval"}, ValueName{PARAMFLAG_FOPT, "optional"}};

constexpr std::array kTypeKinds{ValueName{TKIND_ENUM, "enum"},
                                ValueName{TKIND_INTERFACE, "interface"},
                                ValueName{TKIND_COCLASS, "coclass"}};
constexpr std::array kMemberKinds{ValueName{INVOKE_FUNC, "method"},
                                  ValueName{INVOKE_PROPERTYGET, "get"},
                                  ValueName{INVOKE_PROPERTYPUT, "put"}};
constexpr std::array kTypes{ValueName{VT_I4, "long"}, ValueName{VT_R8, "double"},
                            ValueName{VT_BSTR, "BSTR"}, ValueName{VT_BOOL, "VARIANT_BOOL"}};

/// The name of a number, "kind 7" for one without.
std::string NameOf(std::span<const ValueName> names, int number) {
  for (const auto& [value, name] : names) {
    if (value == static_cast<unsigned>(number)) return std::string(name);
  }
  return Format("kind %d", number);
}

/// The names of the bits set, with commas between; the bits without one as a number.
std::string Bits(unsigned bits, std::span<const ValueName> names) {
  std::string text;
  const auto add = [&](std::string_view name) {
    text.append(text.empty() ? "" : ",").append(name);
  };
  for (const auto& [bit, name] : names) {
    if ((bits & bit) != 0) {
      add(name);
      bits &= ~bit;
    }
  }
  if (bits != 0) add(Format("0x%X", bits));
  return text;
}

std::string Utf8(os::WideView text) { return os::ToNarrow(text, os::kUtf8CodePage); }

std::string Identifier(const GUID& guid) {
  std::array<wchar_t, 40> text{};
  StringFromGUID2(guid, text.data(), text.size());
  return Utf8(text.data());
}

/// Reads one library; its help strings are bytes, which the system hands out as if they were of its
/// ANSI code page.
class Reader {
 public:
  Reader(ITypeLib& library, unsigned help_code_page)
      : library_(library), help_code_page_(help_code_page) {}

  std::vector<std::string> Read() {
    DescribeLibrary();
    for (int kind = 0; kind < TKIND_MAX; ++kind) DescribeTypes(static_cast<TYPEKIND>(kind));
    return std::move(lines_);
  }

 private:
  void DescribeLibrary() {
    TLIBATTR* attributes = nullptr;
    Require(library_.GetLibAttr(&attributes));
    Bstr name, help, help_file;
    Require(library_.GetDocumentation(-1, name.Put(), help.Put(), nullptr, help_file.Put()));
    lines_.push_back("library " + Utf8(name.View()) + " " + Identifier(attributes->guid));
    lines_.push_back(Format("  version %u.%u", attributes->wMajorVerNum, attributes->wMinorVerNum));
    lines_.push_back(Format("  locale 0x%lX", attributes->lcid));
    lines_.push_back(attributes->syskind == SYS_WIN64 ? "  system win64" : "  system other");
    lines_.push_back("  help file " + Utf8(help_file.View()));
    lines_.push_back("  help" + Help(help));
    library_.ReleaseTLibAttr(attributes);
  }

  void DescribeTypes(TYPEKIND wanted) {
    for (UINT i = 0; i < library_.GetTypeInfoCount(); ++i) {
      TYPEKIND kind = TKIND_MAX;
      Require(library_.GetTypeInfoType(i, &kind));
      if (kind != wanted) continue;
      ComPtr<ITypeInfo> type;
      TYPEATTR* attributes = nullptr;
      Require(library_.GetTypeInfo(i, type.Put()));
      Require(type->GetTypeAttr(&attributes));
      DescribeType(*type, *attributes);
      type->ReleaseTypeAttr(attributes);
    }
  }

  void DescribeType(ITypeInfo& type, const TYPEATTR& attributes) {
    const auto [name, help] = WordsOf(type, MEMBERID_NIL);
    std::string line = NameOf(kTypeKinds, attributes.typekind) + " " + name;
    if (attributes.typekind != TKIND_ENUM) {
      line += " " + Identifier(attributes.guid) + " " + Bits(attributes.wTypeFlags, kTypeFlags);
    }
    lines_.push_back(line + help);
    for (UINT i = 0; i < attributes.cImplTypes; ++i) {
      DescribeImplemented(type, i, attributes.typekind);
    }
    for (UINT i = 0; i < attributes.cVars; ++i) DescribeConstant(type, i);
    last_named_ = MEMBERID_NIL;
    for (UINT i = 0; i < attributes.cFuncs; ++i) DescribeMember(type, i);
  }

  void DescribeImplemented(ITypeInfo& type, UINT index, TYPEKIND kind) {
    HREFTYPE reference = 0;
    INT flags = 0;
    Require(type.GetRefTypeOfImplType(index, &reference));
    Require(type.GetImplTypeFlags(index, &flags));
    const char* const relation = kind != TKIND_COCLASS                  ? "  derives from "
                                 : (flags & IMPLTYPEFLAG_FDEFAULT) != 0 ? "  default "
                                                                        : "  lists ";
    lines_.push_back(relation + TypeName(type, reference));
  }

  void DescribeConstant(ITypeInfo& type, UINT index) {
    VARDESC* constant = nullptr;
    Require(type.GetVarDesc(index, &constant));
    const VARIANT& value = *constant->lpvarValue;
    lines_.push_back(
        "  " + WordsOf(type, constant->memid).name + " = " +
        (value.vt == VT_I4 ? Format("%ld", value.lVal) : Format("value of kind %d", value.vt)));
    type.ReleaseVarDesc(constant);
  }

  void DescribeMember(ITypeInfo& type, UINT index) {
    FUNCDESC* member = nullptr;
    Require(type.GetFuncDesc(index, &member));
    const std::vector<std::string> names = Names(type, *member);
    std::string line =
        Format("  slot %d id 0x%lX ", member->oVft / int{sizeof(void*)}, member->memid);
    line += NameOf(kMemberKinds, member->invkind);
    line += " " + names[0] + "(";
    for (SHORT i = 0; i < member->cParams; ++i) {
      line += i > 0 ? ", " : "";
      line += Parameter(type, member->lprgelemdescParam[i], names[static_cast<std::size_t>(i) + 1]);
    }
    lines_.push_back(line + ")" + WordsOf(type, member->memid).help);
    if (member->elemdescFunc.tdesc.vt != VT_HRESULT || member->callconv != CC_STDCALL ||
        member->funckind != FUNC_PUREVIRTUAL || member->wFuncFlags != 0) {
      lines_.push_back(Format("  ... returns %d, convention %d, kind %d, flags 0x%X",
                              member->elemdescFunc.tdesc.vt, member->callconv, member->funckind,
                              member->wFuncFlags));
    }
    type.ReleaseFuncDesc(member);
  }

  /// The names of a member and its parameters, asked for by its identifier. A second member of the
  /// same identifier has names that nobody can ask for; like the value of a put, which has none,
  /// they are empty.
  std::vector<std::string> Names(ITypeInfo& type, const FUNCDESC& member) {
    std::array<BSTR, 16> texts{};
    UINT named = 0;
    Require(type.GetNames(member.memid, texts.data(), texts.size(), &named));
    std::vector<std::string> names;
    for (BSTR text : std::span(texts).first(named)) {
      names.push_back(text == nullptr ? "" : Utf8(text));
      SysFreeString(text);
    }
    if (std::exchange(last_named_, member.memid) == member.memid) names.resize(1);
    names.resize(static_cast<std::size_t>(member.cParams) + 1);
    return names;
  }

  std::string Parameter(ITypeInfo& type, const ELEMDESC& parameter, const std::string& name) const {
    std::string text;
    if (const unsigned flags = parameter.paramdesc.wParamFlags; flags != 0) {
      text.append("[").append(Bits(flags, kParameterFlags)).append("] ");
    }
    text += TypeText(type, parameter.tdesc);
    return name.empty() ? text : text + " " + name;
  }

  /// Name and help string of a type or its member.
  struct Words {
    std::string name, help;
  };
  Words WordsOf(ITypeInfo& type, MEMBERID id) const {
    Bstr name, help;
    Require(type.GetDocumentation(id, name.Put(), help.Put(), nullptr, nullptr));
    return {Utf8(name.View()), Help(help)};
  }

  std::string TypeName(ITypeInfo& type, HREFTYPE reference) const {
    ComPtr<ITypeInfo> referred;
    Require(type.GetRefTypeInfo(reference, referred.Put()));
    return WordsOf(*referred, MEMBERID_NIL).name;
  }

  std::string TypeText(ITypeInfo& type, const TYPEDESC& description) const {
    switch (description.vt) {
      case VT_PTR:
        return TypeText(type, *description.lptdesc) + "*";
      case VT_SAFEARRAY:
        return "SAFEARRAY(" + TypeText(type, *description.lptdesc) + ")";
      case VT_USERDEFINED:
        return TypeName(type, description.hreftype);
      default:
        return NameOf(kTypes, description.vt);
    }
  }

  std::string Help(const Bstr& text) const {
    if (text.View().empty()) return "";
    const std::string bytes = os::ToNarrow(text.View(), GetACP());
    return " \"" + Utf8(os::ToWide(bytes, help_code_page_)) + "\"";
  }

  ITypeLib& library_;
  unsigned help_code_page_;
  std::vector<std::string> lines_;
  MEMBERID last_named_ = MEMBERID_NIL;
};

}  // namespace

std::vector<std::string> DescribeTypeLibrary(ITypeLib& library, unsigned help_code_page) {
  return Reader(library, help_code_page).Read();
}
