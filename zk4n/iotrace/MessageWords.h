// What a message carries, for people: text, or elements by name in their units.
#pragma once

#include <string>
#include <vector>

#include "simulator/MessageText.h"
#include "zk4n/iotrace/Exchange.h"

namespace iotrace {

/// Content of a message: a text, or elements. Both are empty where the message has none.
struct Content {
  std::string text;  ///< UTF-8: of a file, the identity record, the serial number
  std::vector<simulator::NamedValue> elements;
};

Content RequestContent(const Exchange& exchange);
/// Empty unless there is an answer, and the request was carried out.
Content AnswerContent(const Exchange& exchange);

/// "write averaging #4", "data"; "unknown request" for one that the trace does not hold.
std::string TitleOf(const Exchange& exchange);

/// "start 1 GHz, points 201"; of many elements the first ten and their number.
std::string ElementsText(const std::vector<simulator::NamedValue>& elements);

/// Elements of the answer that the instrument left otherwise than asked for; all of them when it
/// has another number.
std::vector<simulator::NamedValue> Changed(const std::vector<simulator::NamedValue>& asked,
                                           const std::vector<simulator::NamedValue>& answered);

}  // namespace iotrace
