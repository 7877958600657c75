#include "tests/typelib/TypeLibraryText.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
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

void Require(HRESULT result, const char* what) {
  if (FAILED(result)) throw std::runtime_error(std::string(what) + Format(": 0x%08lX", result));
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
    for (const auto& kind : kTypeKinds)
      DescribeTypes([&](unsigned its) { return its == kind.value; });
    DescribeTypes(
        [](unsigned its) { return std::ranges::count(kTypeKinds, its, &ValueName::value) == 0; });
    return std::move(lines_);
  }

 private:
  void DescribeLibrary() {
    TLIBATTR* attributes = nullptr;
    Require(library_.GetLibAttr(&attributes), "library attributes");
    Bstr name, help, help_file;
    Require(library_.GetDocumentation(-1, name.Put(), help.Put(), nullptr, help_file.Put()),
            "library documentation");
    lines_.push_back("library " + Utf8(name.View()) + " " + Identifier(attributes->guid));
    lines_.push_back(Format("  version %u.%u", attributes->wMajorVerNum, attributes->wMinorVerNum));
    lines_.push_back(Format("  locale 0x%lX", attributes->lcid));
    lines_.push_back(attributes->syskind == SYS_WIN64 ? "  system win64" : "  system other");
    lines_.push_back("  help file " + Utf8(help_file.View()));
    lines_.push_back("  help" + Help(help));
    library_.ReleaseTLibAttr(attributes);
  }

  void DescribeTypes(auto wanted) {
    for (UINT i = 0; i < library_.GetTypeInfoCount(); ++i) {
      TYPEKIND kind = TKIND_MAX;
      Require(library_.GetTypeInfoType(i, &kind), "kind of a type");
      if (!wanted(static_cast<unsigned>(kind))) continue;
      ComPtr<ITypeInfo> type;
      TYPEATTR* attributes = nullptr;
      Require(library_.GetTypeInfo(i, type.Put()), "type");
      Require(type->GetTypeAttr(&attributes), "attributes of a type");
      DescribeType(*type, *attributes);
      type->ReleaseTypeAttr(attributes);
    }
  }

  void DescribeType(ITypeInfo& type, const TYPEATTR& attributes) {
    Bstr name, help;
    Require(type.GetDocumentation(MEMBERID_NIL, name.Put(), help.Put(), nullptr, nullptr),
            "documentation of a type");
    std::string line = NameOf(kTypeKinds, attributes.typekind) + " " + Utf8(name.View());
    if (attributes.typekind != TKIND_ENUM) {
      line += " " + Identifier(attributes.guid) + " " + Bits(attributes.wTypeFlags, kTypeFlags);
    }
    lines_.push_back(line + Help(help));
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
    Require(type.GetRefTypeOfImplType(index, &reference), "implemented type");
    if (kind == TKIND_COCLASS) {
      Require(type.GetImplTypeFlags(index, &flags), "flags of an implemented type");
      lines_.push_back((flags & IMPLTYPEFLAG_FDEFAULT ? "  default " : "  lists ") +
                       TypeName(type, reference));
    } else {
      lines_.push_back("  derives from " + TypeName(type, reference));
    }
  }

  void DescribeConstant(ITypeInfo& type, UINT index) {
    VARDESC* constant = nullptr;
    Require(type.GetVarDesc(index, &constant), "constant");
    const VARIANT& value = *constant->lpvarValue;
    lines_.push_back(
        "  " + MemberName(type, constant->memid) + " = " +
        (value.vt == VT_I4 ? Format("%ld", value.lVal) : Format("value of kind %d", value.vt)));
    type.ReleaseVarDesc(constant);
  }

  void DescribeMember(ITypeInfo& type, UINT index) {
    FUNCDESC* member = nullptr;
    Require(type.GetFuncDesc(index, &member), "member");
    const std::vector<std::string> names = Names(type, *member);
    std::string line =
        Format("  slot %d id 0x%lX ", member->oVft / int{sizeof(void*)}, member->memid);
    line += NameOf(kMemberKinds, member->invkind);
    line += " " + names[0] + "(";
    for (SHORT i = 0; i < member->cParams; ++i) {
      line += i > 0 ? ", " : "";
      line += Parameter(type, member->lprgelemdescParam[i], names[static_cast<std::size_t>(i) + 1]);
    }
    Bstr help;
    Require(type.GetDocumentation(member->memid, nullptr, help.Put(), nullptr, nullptr),
            "documentation of a member");
    lines_.push_back(line + ")" + Help(help));
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
    Require(type.GetNames(member.memid, texts.data(), texts.size(), &named), "names");
    std::vector<std::string> names;
    for (BSTR text : std::span(texts).first(named)) {
      names.push_back(text == nullptr ? "" : Utf8(text));
      SysFreeString(text);
    }
    if (std::exchange(last_named_, member.memid) == member.memid) names.resize(1);
    names.resize(static_cast<std::size_t>(member.cParams) + 1);
    return names;
  }

  static std::string Parameter(ITypeInfo& type, const ELEMDESC& parameter,
                               const std::string& name) {
    std::string text;
    if (const unsigned flags = parameter.paramdesc.wParamFlags; flags != 0) {
      text.append("[").append(Bits(flags, kParameterFlags)).append("] ");
    }
    text += TypeText(type, parameter.tdesc);
    return name.empty() ? text : text + " " + name;
  }

  std::string MemberName(ITypeInfo& type, MEMBERID id) {
    Bstr name;
    Require(type.GetDocumentation(id, name.Put(), nullptr, nullptr, nullptr), "name of a member");
    return Utf8(name.View());
  }

  static std::string TypeName(ITypeInfo& type, HREFTYPE reference) {
    ComPtr<ITypeInfo> referred;
    Bstr name;
    Require(type.GetRefTypeInfo(reference, referred.Put()), "type referred to");
    Require(referred->GetDocumentation(MEMBERID_NIL, name.Put(), nullptr, nullptr, nullptr),
            "name of a type");
    return Utf8(name.View());
  }

  static std::string TypeText(ITypeInfo& type, const TYPEDESC& description) {
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
