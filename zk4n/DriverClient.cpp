#include "zk4n/DriverClient.h"

#include <system_error>
#include <utility>

#include "platform/os/Text.h"
#include "status/HresultName.h"
#include "zk4n/Arguments.h"

namespace zk4n {
namespace {

constexpr HRESULT kNoSession = 10057;
constexpr int kTrailRecordsShown = 3;
constexpr int kTrailRecordsRead = 10000;  ///< a failing reader may fill it without an end

/// The calling thread's error description, which is taken away with it; empty when there is none.
std::string TakeDescription() {
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.Put()) != S_OK || !info) return {};
  Bstr description;
  if (info->GetDescription(description.Put()) != S_OK) return {};
  return DriverClient::Utf8(description);
}

/// "0x80047060 (unknown resource): Unknown resource ...".
std::string ResultText(HRESULT result, const std::string& description) {
  std::string text = HresultText(result) + " (" + std::string(HresultName(result)) + ")";
  if (!description.empty()) text += ": " + description;
  return text;
}

}  // namespace

std::filesystem::path ShippedFile(const char* name) {
  const std::filesystem::path here = os::ThisModuleFolder();
  const std::filesystem::path installed = (here / ZK_MODULE_FOLDER / name).lexically_normal();
  std::error_code error;
  return std::filesystem::exists(installed, error) ? installed : here / name;
}

std::filesystem::path DefaultDriverModule() { return ShippedFile(ZK_DRIVER_FILE_NAME); }

DriverClient::DriverClient(const std::filesystem::path& module_file) {
  using GetClassObject = HRESULT STDMETHODCALLTYPE(REFCLSID, REFIID, void**);
  if (!module_.Load(module_file)) {
    throw DriverError(E_FAIL, "cannot load the driver module " + Utf8Of(module_file));
  }
  auto* const get_class_object = module_.FunctionOf<GetClassObject>("DllGetClassObject");
  if (get_class_object == nullptr) {
    throw DriverError(
        E_FAIL, Utf8Of(module_file) + " is not the driver module: it has no DllGetClassObject");
  }
  ComPtr<IClassFactory> factory;
  Check(get_class_object(__uuidof(ZentrelK4N), __uuidof(IClassFactory),
                         reinterpret_cast<void**>(factory.Put())),
        "DllGetClassObject");
  Check(factory->CreateInstance(nullptr, __uuidof(IZentrelK4N),
                                reinterpret_cast<void**>(root_.Put())),
        "CreateInstance");
}

DriverClient DriverClient::Registered(const char* prog_id) {
  DriverClient client;
  CLSID class_id{};
  client.Check(CLSIDFromProgID(os::ToWide(prog_id, os::kUtf8CodePage).c_str(), &class_id), prog_id);
  client.Check(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IZentrelK4N),
                                client.root_.PutVoid()),
               "CoCreateInstance");
  return client;
}

std::string DriverClient::Utf8(const Bstr& text) {
  return os::ToNarrow(text.View(), os::kUtf8CodePage);
}

void DriverClient::Check(HRESULT result, const char* member) const {
  // Taken of every call: what one that succeeds leaves is nothing of the next one's.
  const std::string description = TakeDescription();
  if (result >= 0 && result != kNoSession) return;
  std::string text = std::string(member) + ": " + ResultText(result, description);
  throw DriverError(result, text + ErrorTrail());
}

void DriverClient::CheckTrail(const char* what) const {
  const std::optional<TrailRecord> oldest = TakeTrailRecord();
  if (!oldest) return;
  const std::string text = std::string(what) + ": " + ResultText(oldest->code, oldest->message);
  throw DriverError(oldest->code, text + ErrorTrail());
}

void DriverClient::ClearTrail() const {
  for (int record = 0; record < kTrailRecordsRead && TakeTrailRecord(); ++record) {
  }
}

std::optional<DriverClient::TrailRecord> DriverClient::TakeTrailRecord() const {
  if (!root_) return std::nullopt;
  ComPtr<IIviDriverUtility> utility;
  if (root_->get_Utility(utility.Put()) != S_OK) return std::nullopt;
  LONG code = 0;
  Bstr message;
  const HRESULT result = utility->ErrorQuery(&code, message.Put());
  // The look at the trail must not leave error information of its own behind.
  SetErrorInfo(0, nullptr);
  if (result != S_OK || code == 0) return std::nullopt;
  std::string text = Utf8(message);
  if (text == std::to_string(code)) text.clear();
  return TrailRecord{static_cast<HRESULT>(code), std::move(text)};
}

std::string DriverClient::ErrorTrail() const {
  std::string trail;
  int shown = 0;
  std::optional<TrailRecord> last;
  for (int read = 0; read < kTrailRecordsRead && shown < kTrailRecordsShown; ++read) {
    const std::optional<TrailRecord> record = TakeTrailRecord();
    if (!record) break;
    if (record == last) continue;  // a failing read is repeated again and again
    trail += (shown == 0 ? " [error trail: " : "; ") + ResultText(record->code, record->message);
    last = record;
    ++shown;
  }
  return trail.empty() ? trail : trail + "]";
}

}  // namespace zk4n
