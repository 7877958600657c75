// Detector files (".det"): which versions there are, where they lie, how one becomes a channel's
// table.
#pragma once

#include <memory>
#include <string>

#include "measurement/DetectorTable.h"
#include "measurement/ICustomMatrix.h"
#include "measurement/SimpleMatrix.h"
#include "measurement/Status.h"

/// The folder that all programs of the instrument family share, with a trailing separator: the
/// common files folder followed by "\Zentrel Shared\Detectors\". Kept: the suffix stands alone when
/// the system tells no common files folder.
std::string GetDetectorFolder();

/// Reads a detector file of version 0 (no level column, no digest) or 3 (digest required). `header`
/// may be null; it receives all header lines. Levels stay linear, as the file has them. Neither
/// argument is touched on failure. Returns 0, 0x80047002 (cannot be opened) or 0x8004705C (bad
/// content, another version).
Status LoadDetectorFile(ICustomMatrix<double>& matrix, const std::string& path,
                        std::string* header);

/// Replaces every item of the level axis by its base-10 logarithm.
void ConvertLevelAxisToLog10(CSimpleMatrix& matrix);

/// Loads a detector file, with its level axis made logarithmic, into a new table; `table` keeps
/// what it has when that fails. Returns as LoadDetectorFile.
Status LoadDetectorTable(const std::string& path, std::shared_ptr<const DetectorTable>& table);
