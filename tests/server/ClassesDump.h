// What the registry holds for one scope, line by line.
#pragma once

#include <set>
#include <string>

#include "server/Registrar.h"

/// One line, in UTF-8, for each key ("CLSID\{...}") and value ("CLSID\{...} AppID=..."; the default
/// value has no name) below the scope's Software\Classes.
using ClassesLines = std::set<std::string>;
ClassesLines DumpClasses(server::RegistrationScope scope);

#ifdef _WIN32
/// The same of one key, which `path` names in the lines. Values that are not texts with their end
/// appear as type:bytes.
void DumpKey(HKEY parent, const std::wstring& name, const std::string& path, ClassesLines& lines);
#endif

/// The scopes whose classes this system finds by ProgID. Wine's HKEY_CLASSES_ROOT shows the
/// machine's part alone.
extern const std::set<server::RegistrationScope> kScopesFoundByProgId;
