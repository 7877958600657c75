// The sessions behind the numbers that clients hold.
#pragma once

#include <memory>
#include <mutex>
#include <unordered_map>

#include "visa/Attributes.h"
#include "visa/Session.h"
#include "visa/Visa.h"

namespace zevisa {

/// Every operation may be called from any thread. An object that is found stays alive for its
/// finder, also when another thread closes it meanwhile. Numbers are not given again soon.
class Objects {
 public:
  /// The one table of the library; what clients leave open goes with it.
  static Objects& Instance();

  ViSession AddManager();
  std::shared_ptr<Attributes> FindManager(ViSession manager);

  /// A number for a session to be opened.
  ViSession NewNumber();
  /// Makes an open session known; false when its manager has been closed meanwhile.
  bool AddSession(ViSession number, const std::shared_ptr<Session>& session);
  std::shared_ptr<Session> FindSession(ViSession number);

  /// Closes a session, or a manager with its sessions; false when there is no such object.
  bool Close(ViObject object);

 private:
  std::mutex mutex_;
  ViObject last_number_ = 0;
  std::unordered_map<ViObject, std::shared_ptr<Attributes>> managers_;
  std::unordered_map<ViObject, std::shared_ptr<Session>> sessions_;
};

}  // namespace zevisa
