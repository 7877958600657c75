// Carries out the console's commands on one driver object.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "zk4n/DriverClient.h"
#include "zk4n/members/MemberTable.h"
#include "zk4n/shell/Command.h"

namespace shell {

/// One argument that came out of a call.
struct Output {
  const members::Parameter* parameter = nullptr;
  members::Value value;
};

/// The calling thread's error information after a call. Texts are UTF-8; nothing for null ones.
struct ErrorText {
  std::optional<std::string> description;
  std::optional<std::string> source;
  IID iid{};
};

/// Equal records in a row of the driver's error trail.
struct TrailRun {
  HRESULT status = S_OK;
  std::string location;  ///< the place in the driver that noticed them
  std::uint64_t count = 0;
};

struct Result {
  HRESULT hresult = S_OK;
  std::optional<Output> value;  ///< [out,retval]
  /// The other arguments that come out, and the arrays that went in, which members correct.
  std::vector<Output> out;
  std::optional<ErrorText> error;
  std::string text;  ///< of help
  std::optional<std::vector<TrailRun>> trail;
};

class Console {
 public:
  using Create = std::function<zk4n::DriverClient()>;

  /// Creates the object at once. Throws what `create` throws.
  explicit Console(Create create);

  /// Carries out one command other than kNothing and kQuit. Throws Fault when a name is not in the
  /// library, an argument does not fit, or there is no object; then no member has been called.
  Result Run(const Command& command);

 private:
  /// A call on the way along a path, with its arguments.
  struct Step;

  static std::vector<Step> Resolve(const Path& path, const std::optional<Literal>& assigned);
  IZentrelK4N* Root() const;
  Result CallPath(std::vector<Step> steps, ComPtr<IUnknown>& object) const;
  Result CallMember(const Command& command) const;
  Result Supports(const Command& command) const;
  Result Query(REFIID iid) const;
  Result Trail() const;
  Result New();
  Result Release();

  Create create_;
  std::optional<zk4n::DriverClient> driver_;
};

/// What names an element of a path: the root object's members, and the two interfaces that are
/// reached by query, as "Identity" and "Operation".
struct Target {
  const members::Interface* group = nullptr;  ///< the interface it leads to, if any
  const members::Member* member = nullptr;    ///< null for the root object itself and for a query
};
/// Where a path leads, by the table alone. The last element may be a get or a method; with
/// `is_assigned` it is a put. Throws Fault.
Target FindTarget(const Path& path, bool is_assigned);

/// Names that may follow a path, groups with a dot behind them; none where there are none.
std::vector<std::string> NamesAfter(const Path& path);

}  // namespace shell
