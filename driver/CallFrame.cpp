#include "driver/CallFrame.h"

#include "driver/ErrorMessage.h"
#include "platform/com/Raii.h"

namespace driver {

namespace {

constexpr std::string_view kPutPrefix = "put_";
constexpr std::string_view kGetPrefix = "get_";

// An unregistered class has no ProgID; its errors then carry no source.
void SetSource(ICreateErrorInfo& info, const CLSID& class_id) {
  OLECHAR* prog_id = nullptr;
  if (SUCCEEDED(ProgIDFromCLSID(class_id, &prog_id))) {
    info.SetSource(prog_id);
    CoTaskMemFree(prog_id);
  }
}

}  // namespace

HRESULT CallFrame::WideError(os::WideString text, REFIID iid, Status code) const {
  ComPtr<ICreateErrorInfo> info;
  if (FAILED(CreateErrorInfo(info.Put()))) return ToCode(code);
  info->SetGUID(iid);
  SetSource(*info, class_id_);
  info->SetDescription(text.data());
  info->SetHelpContext(0);
  if (const auto finished = info.As<IErrorInfo>()) SetErrorInfo(0, finished.Get());
  return ToCode(code);
}

HRESULT CallFrame::Error(std::string_view text, REFIID iid, Status code) const {
  return WideError(os::ToWide(text), iid, code);
}

HRESULT CallFrame::BuiltError(REFIID iid, Status code, std::string_view insert_1,
                              std::string_view insert_2, std::string_view insert_3) const {
  const auto message =
      BuildErrorMessage(code, os::ToWide(insert_1), os::ToWide(insert_2), os::ToWide(insert_3));
  return WideError(PrefixedMessage(message), iid, code);
}

HRESULT CallFrame::BuiltError(REFIID iid, Status code, os::WideView insert) const {
  return WideError(PrefixedMessage(BuildErrorMessage(code, insert)), iid, code);
}

HRESULT CallFrame::NotSupported(std::string_view member, REFIID iid) const noexcept {
  return Frame([&] {
    if (member.starts_with(kPutPrefix) || member.starts_with(kGetPrefix)) {
      return BuiltError(iid, Status::kPropertyNotSupported, member.substr(kPutPrefix.size()));
    }
    return BuiltError(iid, Status::kMethodNotSupported, member);
  });
}

HRESULT CallFrame::GetInterface(IUnknown* target, REFIID wanted, REFIID declaring,
                                std::string_view wanted_name, void** out) const noexcept {
  return Frame({out}, [&]() -> HRESULT {
    *out = nullptr;
    if (target != nullptr && target->QueryInterface(wanted, out) == S_OK) return S_OK;
    return BuiltError(declaring, Status::kPropertyNotSupported, wanted_name);
  });
}

}  // namespace driver
