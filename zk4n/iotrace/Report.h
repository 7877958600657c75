// A trace as its reader sees it: a line an exchange, or one JSON object a line.
#pragma once

#include <functional>
#include <string>

#include "zk4n/iotrace/Summary.h"

namespace iotrace {

/// Takes whole lines, "\n" at their end.
using Output = std::function<void(const std::string&)>;

class Report : public Listener {
 public:
  /// `name` is the file's, for the places of damaged lines.
  Report(std::string name, Output output) : name_(std::move(name)), output_(std::move(output)) {}

  void On(const Exchange& exchange) final;
  void On(const Call& call) final;
  void OnDamaged(std::size_t line, const std::string& why) final;
  /// Another file has taken the place of the one that was read.
  virtual void OnReplaced() = 0;
  /// The figures, at the end.
  virtual void End() = 0;

 protected:
  virtual void Tell(const Exchange& exchange) = 0;
  virtual void Tell(const Call& call) = 0;
  virtual void TellDamaged(std::size_t line, const std::string& why) = 0;

  void Put(const std::string& text) const { output_(text); }
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const Summary& summary() const { return summary_; }

 private:
  std::string name_;
  Output output_;
  Summary summary_;
};

class TextReport : public Report {
 public:
  using Report::Report;
  void OnReplaced() override;
  void End() override;

 protected:
  void Tell(const Exchange& exchange) override;
  void Tell(const Call& call) override;
  void TellDamaged(std::size_t line, const std::string& why) override;
};

class JsonReport : public Report {
 public:
  using Report::Report;
  void OnReplaced() override;
  void End() override;

 protected:
  void Tell(const Exchange& exchange) override;
  void Tell(const Call& call) override;
  void TellDamaged(std::size_t line, const std::string& why) override;
};

/// "2026-11-25 16:18:50.123456"
std::string TimeText(TimePoint time);

}  // namespace iotrace
