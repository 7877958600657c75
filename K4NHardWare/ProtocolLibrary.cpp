#include "K4NHardWare/ProtocolLibrary.h"

namespace k4n {

ProtocolLibrary::~ProtocolLibrary() { Close(); }

std::optional<Status> ProtocolLibrary::Open() {
  if (!module_.Load("ProtocolLib.dll")) return std::nullopt;
  auto* const open_session = module_.FunctionOf<OpenSessionFunction>("OpenSession");
  auto* const load = module_.FunctionOf<LoadFunction>("ProtLoadFromFile");
  describe_ = module_.FunctionOf<DescribeFunction>("GetErrorDescription");
  close_session_ = module_.FunctionOf<CloseSessionFunction>("CloseSession");
  if (open_session == nullptr || load == nullptr || describe_ == nullptr ||
      close_session_ == nullptr) {
    module_.Unload();
    return std::nullopt;
  }
  session_ = 0;
  const Status opened{open_session(&session_)};
  // The result is ignored: without its file the library still gives texts, of its own.
  load(session_, "Protocol.xml");
  return opened;
}

void ProtocolLibrary::Close() {
  if (!module_.IsLoaded()) return;
  close_session_(session_);
  module_.Unload();
}

std::optional<std::string> ProtocolLibrary::Describe(Status code) const {
  if (!module_.IsLoaded()) return std::nullopt;
  const char* const text = describe_(session_, ToCode(code));
  if (text == nullptr) return std::nullopt;
  return text;
}

}  // namespace k4n
