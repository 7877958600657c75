#include "K4NHardWare/VisaLibrary.h"

namespace uDevice {

bool EntryPointBase::Bind(const os::Module& module) {
  const auto address = module.FunctionOf<void()>(name_);
  address_ = address != nullptr ? address : stand_by_;
  return address != nullptr;
}

int VisaLibrary::Bind(const std::filesystem::path& name) {
  Reset();
  const bool loaded = name.empty() ? module_.Load("zevisa64.dll") || module_.Load("zevisa.dll")
                                   : module_.Load(name);
  if (!loaded) return kNotLoaded;
  missing_count_ = 0;
  for (EntryPointBase* entry : entries_) {
    if (!entry->Bind(module_)) ++missing_count_;
  }
  return missing_count_;
}

void VisaLibrary::Reset() {
  for (EntryPointBase* entry : entries_) entry->Reset();
  module_.Unload();
  missing_count_ = kNotLoaded;
}

}  // namespace uDevice
