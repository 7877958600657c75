#include "visa/Objects.h"

#include <vector>

namespace zevisa {

Objects& Objects::Instance() {
  static Objects objects;
  return objects;
}

ViSession Objects::AddManager() {
  auto manager = std::make_shared<Attributes>(Owner::kManager);
  manager->SetText(Slot::kClass, "RM");
  const ViSession number = NewNumber();
  const std::lock_guard guard(mutex_);
  managers_.emplace(number, std::move(manager));
  return number;
}

std::shared_ptr<Attributes> Objects::FindManager(ViSession manager) {
  const std::lock_guard guard(mutex_);
  const auto found = managers_.find(manager);
  return found == managers_.end() ? nullptr : found->second;
}

ViSession Objects::NewNumber() {
  const std::lock_guard guard(mutex_);
  do {
    ++last_number_;
  } while (last_number_ == 0 || managers_.contains(last_number_) ||
           sessions_.contains(last_number_));
  return last_number_;
}

bool Objects::AddSession(ViSession number, const std::shared_ptr<Session>& session) {
  const std::lock_guard guard(mutex_);
  return managers_.contains(session->manager()) && sessions_.emplace(number, session).second;
}

std::shared_ptr<Session> Objects::FindSession(ViSession number) {
  const std::lock_guard guard(mutex_);
  const auto found = sessions_.find(number);
  return found == sessions_.end() ? nullptr : found->second;
}

bool Objects::Close(ViObject object) {
  std::vector<std::shared_ptr<Session>> closing;  // outside the table's lock
  {
    const std::lock_guard guard(mutex_);
    const bool is_manager = managers_.erase(object) > 0;
    std::erase_if(sessions_, [&](const auto& entry) {
      const bool goes = entry.first == object || (is_manager && entry.second->manager() == object);
      if (goes) closing.push_back(entry.second);
      return goes;
    });
    if (!is_manager && closing.empty()) return false;
  }
  for (const auto& session : closing) session->Close();
  return true;
}

}  // namespace zevisa
