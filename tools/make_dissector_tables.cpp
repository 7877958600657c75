// make_dissector_tables FILE: writes the names of commands, statuses and parameters into a
// Wireshark dissector (tools/wireshark/zk4n.lua), between its two marks.
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <sstream>
#include <string>

#include "simulator/ParameterTable.h"

namespace {

constexpr std::string_view kBegin = "-- Tables: made by make_dissector_tables\n";
constexpr std::string_view kEnd = "-- End of tables\n";
constexpr std::size_t kColumns = 100;

/// A table of names by number; the names hold nothing that Lua would want escaped.
template <typename Row, typename Key>
void WriteNames(std::ostream& out, const char* name, std::span<const Row> rows, Key Row::*key) {
  out << "local " << name << " = {\n";
  for (const Row& row : rows) out << "  [" << row.*key << "] = \"" << row.name << "\",\n";
  out << "}\n";
}

/// A field of a form, with as many elements on a line as fit.
void WriteElements(std::ostream& out, const char* name,
                   std::span<const simulator::ElementName> elements) {
  std::string line = std::string("   ") + name + " = {";
  const char* separator = "";
  for (const auto& [element, unit] : elements) {
    std::string entry("{\"");
    entry.append(element).append("\", \"").append(SymbolOf(unit)).append("\"}");
    if (line.size() + entry.size() + 5 > kColumns) {
      out << line << ",\n";
      line = "      ";
      separator = "";
    }
    line += separator + entry;
    separator = ", ";
  }
  out << line << "}";
}

std::string Tables() {
  std::ostringstream out;
  WriteNames(out, "command_names", simulator::CommandNames(), &simulator::CommandName::command);
  WriteNames(out, "status_names", simulator::StatusNames(), &simulator::StatusName::status);
  WriteNames(out, "parameter_names", simulator::ParameterNames(), &simulator::ParameterName::id);
  out << "local forms = {\n";
  for (const simulator::ParameterForm& form : simulator::ParameterForms()) {
    out << "  {id = " << form.id << ", count = " << int{form.count} << ", type = " << int{form.type}
        << ", signed = " << (form.is_signed ? "true" : "false") << ",\n";
    WriteElements(out, "elements", form.elements.first(form.count));
    out << ",\n";
    WriteElements(out, "entry", form.entry);
    out << "},\n";
  }
  out << "}\n";
  return out.str();
}

int Update(const char* file) {
  std::string text{std::istreambuf_iterator<char>(std::ifstream(file).rdbuf()), {}};
  const std::size_t begin = text.find(kBegin);
  const std::size_t end = text.find(kEnd);
  if (begin == std::string::npos || end == std::string::npos || end < begin) {
    std::cerr << "make_dissector_tables: no marks in " << file << "\n";
    return 1;
  }
  text.replace(begin + kBegin.size(), end - begin - kBegin.size(), Tables());
  std::ofstream out(file, std::ios::binary);
  out << text;
  out.close();
  return out ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_dissector_tables FILE\n";
    return 2;
  }
  return Update(argv[1]);
}
