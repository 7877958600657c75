// Detector files (".det"): which versions there are, where they lie, how one becomes a channel's
// table.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "measurement/DetectorTable.h"
#include "measurement/ICustomMatrix.h"
#include "measurement/MatrixText.h"
#include "measurement/SimpleMatrix.h"
#include "status/Status.h"

namespace measurement {

/// The folders that all programs of the instrument family share, in order of precedence, each with
/// a trailing separator: each common files folder followed by "\Zentrel Shared\Detectors\". Kept:
/// if the system has no common files folder, the suffix is used by itself.
std::vector<std::filesystem::path> GetDetectorFolders();

/// Versions of detector files.
inline constexpr int kVersionWithoutLevels = 0;  ///< no level column, no digest
inline constexpr int kVersionSigned = 3;         ///< a level column, and a digest that is required

/// A detector file as it was read, good or not.
class DetectorFile {
 public:
  enum class Fault {
    kNone,
    kCannotOpen,  ///< or no regular file
    kNoNumbers,   ///< also an empty file, or one over 1 GiB
    kUnevenRows,
    kUnknownVersion,
    kNoDigest,
    kWrongDigest,
    kDataBehindDigest,
  };

  /// Reads a file. Once an object.
  Fault Read(const std::filesystem::path& path);
  [[nodiscard]] Fault ReadFault() const { return fault_; }
  /// The fault as the driver's status: 0, 0x80047002 (cannot be opened) or 0x8004705C (bad
  /// content).
  [[nodiscard]] Status ReadStatus() const;

  /// Nothing if it does not fit into an integer or the file is empty.
  [[nodiscard]] std::optional<int> Version() const { return version_; }
  /// What the file holds: its counts, digests and header lines.
  [[nodiscard]] const MatrixText& Text() const { return text_; }
  /// True if the numbers form a table, even with a wrong digest.
  [[nodiscard]] bool HasTable() const;
  /// Stores the table, with a level column and linear levels in any version. Only with HasTable.
  Status Fill(ICustomMatrix<double>& matrix) const;

 private:
  [[nodiscard]] Fault FindFault(Status read) const;

  MatrixText text_;
  std::optional<int> version_;
  Fault fault_ = Fault::kCannotOpen;
};

/// Reads a detector file of version 0 (no level column, no digest) or 3 (digest required). `header`
/// may be null; it receives all header lines. Levels stay linear, as the file has them. Neither
/// argument is touched on failure. Returns 0, 0x80047002 (cannot be opened) or 0x8004705C (bad
/// content, another version).
Status LoadDetectorFile(ICustomMatrix<double>& matrix, const std::filesystem::path& path,
                        std::string* header);

/// Replaces every item of the level axis by its base-10 logarithm.
void ConvertLevelAxisToLog10(CSimpleMatrix& matrix);

/// Loads a detector file, with its level axis made logarithmic, into a new table; `table` keeps
/// what it has when that fails. Returns as LoadDetectorFile.
Status LoadDetectorTable(const std::filesystem::path& path,
                         std::shared_ptr<const DetectorTable>& table);

}  // namespace measurement
