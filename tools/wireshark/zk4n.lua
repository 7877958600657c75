-- Wireshark dissector of the Zentrel K4N / L5S wire protocol: a file for the folder of personal Lua
-- plugins (Help, About, Folders), or for `tshark -X lua_script:zk4n.lua`. Wireshark 3.6 or newer.
--
-- Messages are found on TCP port 8888, and on any other port by the header word of a connection's
-- first request. Filters begin with "zk4n.": zk4n.command, zk4n.parameter, zk4n.status,
-- zk4n.number, zk4n.time, zk4n.points, and each element by its parameter, in its unit:
-- zk4n.frequency.start > 1e9.

local HEADER_WORD = 0x55AA
local HEADER_SIZE = 16
local REQUEST_STATUS = -0x8000 -- in every request
local WRITE, READ, DATA = 3, 4, 6
local FILE, IDENTITY, SERIAL_NUMBER = 10, 15, 83
local PATH_AT = 10 -- of the path in the body of a file request
local POINT_SIZE = 12
local DEFAULT_PORT = 8888

-- Tables: made by make_dissector_tables
local command_names = {
  [0] = "nothing",
  [1] = "recover",
  [3] = "write",
  [4] = "read",
  [6] = "data",
}
local status_names = {
  [0] = "good",
  [6] = "level not settled",
  [-32767] = "command not supported",
  [-32766] = "request not supported",
  [-32765] = "form not supported",
  [-32761] = "PLL unlocked",
  [-32740] = "ERG fault",
  [-32509] = "no such file",
}
local parameter_names = {
  [0] = "frequency",
  [2] = "frequency list",
  [3] = "instrument kind",
  [4] = "averaging",
  [5] = "dwell",
  [7] = "trigger input",
  [8] = "trigger output",
  [10] = "file",
  [11] = "compensation mode",
  [12] = "level",
  [15] = "identity",
  [17] = "reference",
  [23] = "feature mask",
  [26] = "frequency table",
  [31] = "pulse train",
  [34] = "RF button",
  [37] = "sync generator",
  [76] = "level list",
  [79] = "level",
  [83] = "serial number",
  [92] = "phase delay",
}
local forms = {
  {id = 0, count = 1, type = 96, signed = false,
   elements = {{"frequency", "Hz"}},
   entry = {}},
  {id = 0, count = 3, type = 64, signed = false,
   elements = {{"start", "Hz"}, {"points", ""}, {"step", "Hz"}},
   entry = {}},
  {id = 0, count = 3, type = 96, signed = true,
   elements = {{"start", "Hz"}, {"points", ""}, {"step", "Hz"}},
   entry = {}},
  {id = 0, count = 4, type = 96, signed = true,
   elements = {{"start", "Hz"}, {"points", ""}, {"step", "Hz"}, {"stop", "Hz"}},
   entry = {}},
  {id = 2, count = 0, type = 96, signed = false,
   elements = {},
   entry = {{"frequency", "Hz"}}},
  {id = 3, count = 1, type = 32, signed = false,
   elements = {{"kind", ""}},
   entry = {}},
  {id = 4, count = 1, type = 16, signed = false,
   elements = {{"factor", ""}},
   entry = {}},
  {id = 5, count = 2, type = 64, signed = false,
   elements = {{"selector", ""}, {"dwell", "ns"}},
   entry = {}},
  {id = 7, count = 5, type = 16, signed = false,
   elements = {{"code", ""}, {"falling edge", ""}, {"value", ""}, {"flag", ""}, {"last", ""}},
   entry = {}},
  {id = 7, count = 10, type = 16, signed = false,
   elements = {{"code", ""}, {"falling edge", ""}, {"value", ""}, {"flag", ""}, {"last", ""},
      {"second code", ""}, {"second falling edge", ""}, {"second value", ""}, {"second flag", ""},
      {"second last", ""}},
   entry = {}},
  {id = 8, count = 5, type = 16, signed = false,
   elements = {{"code", ""}, {"inverse", ""}, {"width", "us"}, {"flag", ""}, {"last", ""}},
   entry = {}},
  {id = 8, count = 10, type = 16, signed = false,
   elements = {{"code", ""}, {"inverse", ""}, {"width", "us"}, {"flag", ""}, {"last", ""},
      {"second code", ""}, {"second inverse", ""}, {"second width", "us"}, {"second flag", ""},
      {"second last", ""}},
   entry = {}},
  {id = 11, count = 1, type = 32, signed = false,
   elements = {{"mode", ""}},
   entry = {}},
  {id = 12, count = 2, type = 33, signed = true,
   elements = {{"output", ""}, {"level", "dBm"}},
   entry = {}},
  {id = 12, count = 2, type = 66, signed = true,
   elements = {{"output", ""}, {"level", "dBm"}},
   entry = {}},
  {id = 12, count = 4, type = 66, signed = true,
   elements = {{"output", ""}, {"level", "dBm"}, {"points", ""}, {"step", "dB"}},
   entry = {}},
  {id = 17, count = 1, type = 16, signed = false,
   elements = {{"enabled", ""}},
   entry = {}},
  {id = 17, count = 2, type = 64, signed = false,
   elements = {{"enabled", ""}, {"frequency", "Hz"}},
   entry = {}},
  {id = 23, count = 1, type = 32, signed = false,
   elements = {{"mask", ""}},
   entry = {}},
  {id = 31, count = 2, type = 64, signed = false,
   elements = {{"mode", ""}, {"source", ""}},
   entry = {{"width", "ns"}, {"gap", "ns"}}},
  {id = 31, count = 3, type = 64, signed = false,
   elements = {{"mode", ""}, {"source", ""}, {"inverse", ""}},
   entry = {{"width", "ns"}, {"gap", "ns"}}},
  {id = 34, count = 1, type = 32, signed = false,
   elements = {{"pressed", ""}},
   entry = {}},
  {id = 37, count = 3, type = 64, signed = false,
   elements = {{"width", "ns"}, {"gap", "ns"}, {"delay", "ns"}},
   entry = {}},
  {id = 76, count = 4, type = 66, signed = true,
   elements = {{"output", ""}, {"attenuator mode", ""}, {"setting 1", ""}, {"setting 2", ""}},
   entry = {{"level", "dBm"}}},
  {id = 79, count = 5, type = 66, signed = true,
   elements = {{"output", ""}, {"attenuator mode", ""}, {"setting 1", ""}, {"setting 2", ""},
      {"level", "dBm"}},
   entry = {}},
  {id = 79, count = 7, type = 66, signed = true,
   elements = {{"output", ""}, {"attenuator mode", ""}, {"setting 1", ""}, {"setting 2", ""},
      {"level", "dBm"}, {"points", ""}, {"step", "dB"}},
   entry = {}},
  {id = 79, count = 8, type = 66, signed = true,
   elements = {{"output", ""}, {"attenuator mode", ""}, {"setting 1", ""}, {"setting 2", ""},
      {"level", "dBm"}, {"points", ""}, {"step", "dB"}, {"stop", "dBm"}},
   entry = {}},
  {id = 79, count = 5, type = 98, signed = true,
   elements = {{"output", ""}, {"attenuator mode", ""}, {"setting 1", ""}, {"setting 2", ""},
      {"level", "dBm"}},
   entry = {}},
  {id = 79, count = 7, type = 98, signed = true,
   elements = {{"output", ""}, {"attenuator mode", ""}, {"setting 1", ""}, {"setting 2", ""},
      {"level", "dBm"}, {"points", ""}, {"step", "dB"}},
   entry = {}},
  {id = 79, count = 8, type = 98, signed = true,
   elements = {{"output", ""}, {"attenuator mode", ""}, {"setting 1", ""}, {"setting 2", ""},
      {"level", "dBm"}, {"points", ""}, {"step", "dB"}, {"stop", "dBm"}},
   entry = {}},
  {id = 92, count = 1, type = 66, signed = true,
   elements = {{"delay", ""}},
   entry = {}},
}
-- End of tables

local zk4n = Proto("zk4n", "Zentrel K4N / L5S")

-- Fields ------------------------------------------------------------------------------------------

local fields = {
  word = ProtoField.uint16("zk4n.word", "Header word", base.HEX),
  command = ProtoField.uint16("zk4n.command", "Command", base.DEC, command_names),
  status = ProtoField.int16("zk4n.status", "Status", base.DEC, status_names),
  length = ProtoField.uint16("zk4n.length", "Length of the body (bytes)"),
  count = ProtoField.uint8("zk4n.count", "Elements"),
  type = ProtoField.uint8("zk4n.type", "Type (size, fraction)", base.HEX),
  mark = ProtoField.string("zk4n.mark", "Format mark"),
  number = ProtoField.uint32("zk4n.number", "Number"),
  is_request = ProtoField.bool("zk4n.is_request", "Request"),
  parameter = ProtoField.uint16("zk4n.parameter", "Parameter", base.DEC, parameter_names),
  element = ProtoField.double("zk4n.element", "Element"),
  offset = ProtoField.double("zk4n.offset", "Offset of the chunk"),
  entries = ProtoField.double("zk4n.entries", "Entries of the chunk"),
  text = ProtoField.string("zk4n.text", "Text"),
  body = ProtoField.bytes("zk4n.body", "Body"),
  points = ProtoField.uint32("zk4n.points", "Points"),
  block_status = ProtoField.int16("zk4n.block_status", "Block status", base.DEC, status_names),
  reading_a = ProtoField.double("zk4n.reading.a", "A"),
  reading_b = ProtoField.double("zk4n.reading.b", "B"),
  reading_r = ProtoField.double("zk4n.reading.r", "R"),
  request_in = ProtoField.framenum("zk4n.request_in", "Request in", base.NONE, frametype.REQUEST),
  response_in = ProtoField.framenum("zk4n.response_in", "Answer in", base.NONE, frametype.RESPONSE),
  time = ProtoField.relative_time("zk4n.time", "Time from the request"),
}

-- The field of an element: zk4n.frequency.start. Two parameters of one name share theirs.
local function abbreviation(parameter, element)
  local function word(text) return (text:lower():gsub("%W", "_")) end
  return "zk4n." .. word(parameter) .. "." .. word(element)
end

local element_fields = {}
local registered = {}
for _, field in pairs(fields) do table.insert(registered, field) end
for _, form in ipairs(forms) do
  for _, elements in ipairs({form.elements, form.entry}) do
    for _, element in ipairs(elements) do
      local name, unit = element[1], element[2]
      local key = abbreviation(parameter_names[form.id], name)
      if not element_fields[key] then
        local in_unit = unit ~= "" and " (" .. unit .. ")" or ""
        local label = name:sub(1, 1):upper() .. name:sub(2) .. in_unit
        element_fields[key] = ProtoField.double(key, label)
        table.insert(registered, element_fields[key])
      end
    end
  end
end
zk4n.fields = registered

local group, severity = expert.group, expert.severity
local function expert_of(name, text, group, severity)
  return ProtoExpert.new("zk4n." .. name, text, group, severity)
end
local experts = {
  refused = expert_of("refused", "Negative status", group.RESPONSE_CODE, severity.WARN),
  header_word = expert_of("bad_header_word", "No header word", group.MALFORMED, severity.ERROR),
  length = expert_of("bad_length", "Wrong length", group.MALFORMED, severity.ERROR),
  mismatch = expert_of("mismatch", "Answer to something else", group.PROTOCOL, severity.WARN),
  unpaired = expert_of("unpaired", "Answer without a request", group.SEQUENCE, severity.WARN),
  unanswered = expert_of(
    "unanswered", "The request before has no answer", group.SEQUENCE, severity.NOTE),
  late = expert_of("late", "The answer to an earlier request", group.SEQUENCE, severity.WARN),
  order = expert_of("bad_number", "Number out of order", group.SEQUENCE, severity.WARN),
}
local expert_list = {}
for _, entry in pairs(experts) do table.insert(expert_list, entry) end
zk4n.experts = expert_list

-- Connections: what the first pass finds out about each message, for that pass and the later ones -

local tcp_stream = Field.new("tcp.stream")
local frame_time = Field.new("frame.time_epoch")
local connections = {} -- by TCP stream: client, requests by number, last request
local exchanges = {} -- by message: request, answer, what is wrong

function zk4n.init()
  connections = {}
  exchanges = {}
end

local function connection_of()
  local stream = tcp_stream()
  local key = stream and stream.value or -1
  connections[key] = connections[key] or {requests = {}}
  return connections[key]
end

-- The side that sends status 0x8000 first is the client; an answer may have this status, too.
local function sender(pinfo) return tostring(pinfo.src) .. ":" .. pinfo.src_port end
local function is_request(pinfo, connection, status)
  if not connection.client and status == REQUEST_STATUS then connection.client = sender(pinfo) end
  return connection.client == sender(pinfo)
end

local function begin_request(message, connection, pinfo)
  local last = connection.last
  message.frame, message.time = pinfo.number, frame_time().value
  local follows = not last or message.number == (last.number + 1) % 0x100000000
  message.out_of_order = not follows and last.number or nil
  message.unanswered = last and not last.answer and last.number or nil
  connection.requests[message.number] = message
  connection.last = message
end

-- By its number; an instrument that does not repeat numbers answers the last request.
local function pair_answer(message, connection, pinfo)
  message.frame, message.time = pinfo.number, frame_time().value
  local request = connection.requests[message.number]
  local last = connection.last
  if not request and last and not last.answer then request = last end
  if request and not request.answer then
    request.answer, message.request = message, request
    message.late = request ~= connection.last and connection.last.number or nil
  end
end

-- Numbers of a body -------------------------------------------------------------------------------

local function integer(range, is_signed)
  local value, weight = 0, 1
  for i = 0, range:len() - 1 do
    value = value + range(i, 1):uint() * weight
    weight = weight * 256
  end
  if is_signed and value >= weight / 2 then value = value - weight end
  return value
end

local function size_of(type) return math.floor(type / 16) end
local function fraction_of(type) return type % 16 end

local function form_of(message)
  for _, form in ipairs(forms) do
    local same_form = form.count == message.count and form.type == message.type
    if form.id == message.parameter and same_form then return form end
  end
end

-- Name, unit and field of an element, counted from 1.
local function element_at(form, index)
  if not form then return "", "", fields.element end
  local element
  if index <= form.count then
    element = form.elements[index]
  elseif index == form.count + 1 then
    return "offset", "", fields.offset
  elseif index == form.count + 2 then
    return "count", "", fields.entries
  else
    element = form.entry[(index - form.count - 3) % #form.entry + 1]
  end
  return element[1], element[2], element_fields[abbreviation(parameter_names[form.id], element[1])]
end

-- The rest of the table's elements is not shown in the summary.
local SHOWN = 4

local function add_elements(tree, body, message)
  local size = size_of(message.type)
  if size < 1 or size > 8 or fraction_of(message.type) >= size then return "" end
  local form = form_of(message)
  local is_signed = fraction_of(message.type) > 0
  if form then is_signed = form.signed end
  local divisor = 256 ^ fraction_of(message.type)
  local count = math.floor((body:len() - 2) / size)
  if form and #form.entry == 0 then count = math.min(count, form.count) end
  local shown = {}
  for i = 1, count do
    local name, unit, field = element_at(form, i)
    local range = body(2 + (i - 1) * size, size)
    local value = integer(range, is_signed) / divisor
    tree:add(field, range, value)
    if i <= SHOWN then
      local text = string.format("%s %.12g %s", name, value, unit)
      table.insert(shown, text:match("^%s*(.-)%s*$"))
    end
  end
  if count > SHOWN then table.insert(shown, "...") end
  return #shown > 0 and ": " .. table.concat(shown, ", ") or ""
end

-- Bodies ------------------------------------------------------------------------------------------

local function is_file(message)
  return message.command == READ and message.parameter == FILE and message.count == 2 and
    message.type == 0x40
end
local function is_serial_number(message)
  return message.command == READ and message.parameter == SERIAL_NUMBER and message.count == 1 and
    message.type == 0x20
end

-- Up to the zero that ends it, or to the end.
local function text_range(body, offset)
  local last = offset
  while last < body:len() and body(last, 1):uint() ~= 0 do last = last + 1 end
  return body(offset, last - offset)
end

local function add_text(tree, range)
  if range:len() == 0 then return "" end
  local text = range:string(ENC_WINDOWS_1251):gsub("%c", " "):match("^(.-)%s*$")
  tree:add(fields.text, range, text)
  return ": " .. text
end

-- A request carries the path; the answer repeats it, and the file's content follows.
local function add_file(tree, body, is_answer)
  if body:len() <= PATH_AT then return "" end
  local path = text_range(body, PATH_AT)
  if not is_answer then return add_text(tree, path) end
  local content = PATH_AT + path:len() + 1
  return content < body:len() and add_text(tree, body(content)) or ""
end

-- Each character times the request's key, modulo 65537, is a word; a checksum follows.
local function add_serial_number(tree, body, key)
  local text = {}
  for at = 2, body:len() - 4, 2 do
    table.insert(text, string.char(body(at, 2):le_uint() * key % 65537 % 256))
  end
  local joined = table.concat(text):gsub("%c", " ")
  if joined == "" then return "" end
  tree:add(fields.text, body(2), joined)
  return ": " .. joined
end

local function add_parameter(tree, body, message)
  if body:len() < 2 then return "" end
  tree:add_le(fields.parameter, body(0, 2))
  local is_answer = not message.is_request
  if is_file(message) then return add_file(tree, body, is_answer) end
  if message.command == READ and not is_answer then
    if is_serial_number(message) and body:len() >= 4 then message.key = body(2, 2):le_uint() end
    return "" -- the values of a read request mean nothing
  end
  if message.command == READ and message.parameter == IDENTITY then
    return add_text(tree, text_range(body, 2))
  end
  if is_serial_number(message) then
    local key = message.request and message.request.key
    return key and add_serial_number(tree, body, key) or ""
  end
  return add_elements(tree, body, message)
end

local function add_point(tree, range, index, divisor)
  local point = tree:add(zk4n, range, "Point " .. index)
  for i, field in ipairs({fields.reading_a, fields.reading_b, fields.reading_r}) do
    local reading = range((i - 1) * 4, 4)
    point:add(field, reading, reading:le_int() / divisor)
  end
end

local function status_text(status)
  local name = status_names[status]
  if status == 0 then return name end
  local number = status < 0 and string.format("0x%04X", status + 0x10000) or tostring(status)
  return name and number .. " " .. name or number
end

local function add_block(tree, body, message)
  local points = (body:len() - 2) / POINT_SIZE
  if points < 0 or points ~= math.floor(points) then
    local text = "A block is 12 n + 2 bytes long, this one " .. body:len()
    tree:add(fields.body, body):add_proto_expert_info(experts.length, text)
    return ": " .. body:len() .. " bytes"
  end
  tree:add(fields.points, body(0, body:len() - 2), points)
  local divisor = message.mark == "A" and 256 or 1
  for i = 1, points do add_point(tree, body((i - 1) * POINT_SIZE, POINT_SIZE), i, divisor) end
  local range = body(body:len() - 2, 2)
  local item = tree:add_le(fields.block_status, range)
  local status = range:le_int()
  if status < 0 then
    item:add_proto_expert_info(experts.refused, "Block status " .. status_text(status))
  end
  return string.format(": %d points, %s", points, status_text(status))
end

-- Messages ----------------------------------------------------------------------------------------

local function header_of(tvb, offset)
  local message = {
    command = tvb(offset + 2, 2):le_uint(),
    status = tvb(offset + 4, 2):le_int(),
    length = tvb(offset + 6, 2):le_uint(),
    count = tvb(offset + 8, 1):uint(),
    type = tvb(offset + 9, 1):uint(),
    number = tvb(offset + 12, 4):le_uint(),
  }
  if message.command == DATA then
    message.mark = message.type >= 0x20 and message.type < 0x7F and string.char(message.type) or "?"
  end
  return message
end

-- In a frame the same message may be met more than once; a later pass takes what the first one
-- found out.
local function remember(message, pinfo, connection, body)
  message.is_request = is_request(pinfo, connection, message.status)
  if (message.command == WRITE or message.command == READ) and body:len() >= 2 then
    message.parameter = body(0, 2):le_uint()
  end
  local words = {pinfo.number, sender(pinfo), message.number, message.command, message.status}
  local key = table.concat(words, " ")
  if exchanges[key] then return exchanges[key] end
  exchanges[key] = message
  if message.is_request then
    begin_request(message, connection, pinfo)
  else
    pair_answer(message, connection, pinfo)
  end
  return message
end

local function add_header(tree, tvb, offset, message)
  tree:add_le(fields.word, tvb(offset, 2))
  tree:add(fields.is_request, message.is_request):set_generated()
  tree:add_le(fields.command, tvb(offset + 2, 2))
  local status = tree:add_le(fields.status, tvb(offset + 4, 2))
  if message.is_request then
    status:append_text(" (a request)")
  elseif message.status < 0 then
    status:add_proto_expert_info(experts.refused, status_text(message.status))
  end
  tree:add_le(fields.length, tvb(offset + 6, 2))
  if message.mark then
    tree:add(fields.mark, tvb(offset + 9, 1), message.mark)
  else
    tree:add(fields.count, tvb(offset + 8, 1))
    tree:add(fields.type, tvb(offset + 9, 1))
  end
  tree:add_le(fields.number, tvb(offset + 12, 4))
end

local function check_request(tree, message)
  if message.out_of_order then
    tree:add_proto_expert_info(experts.order, string.format(
      "Request %d follows request %d", message.number, message.out_of_order))
  end
  if message.unanswered then
    tree:add_proto_expert_info(
      experts.unanswered, "Request " .. message.unanswered .. " has no answer")
  end
end

local function check_answer(tree, message)
  local request = message.request
  if not request then
    tree:add_proto_expert_info(experts.unpaired, "No request waits for this answer")
    return
  end
  if message.late then
    tree:add_proto_expert_info(
      experts.late, "Request " .. message.late .. " was sent before this answer came")
  end
  if request.command ~= message.command then
    tree:add_proto_expert_info(experts.mismatch, "The request had command " .. request.command)
  elseif message.parameter and request.parameter ~= message.parameter then
    tree:add_proto_expert_info(
      experts.mismatch, "The request was of parameter " .. tostring(request.parameter))
  elseif message.mark and message.mark ~= "A" and message.mark ~= "@" then
    tree:add_proto_expert_info(experts.mismatch, "A block's mark is A or @")
  end
  local length = request.length
  local has_its_length = (message.command == WRITE or message.command == READ) and
    message.status >= 0 and not is_file(request) and not is_serial_number(request)
  -- A byte may have been added to the request.
  if has_its_length and message.length ~= length and message.length + 1 ~= length then
    tree:add_proto_expert_info(experts.length, string.format(
      "A body of %d bytes instead of %d", message.length, length))
  end
end

local function add_pairing(tree, message)
  if message.answer then tree:add(fields.response_in, message.answer.frame):set_generated() end
  if message.request then
    tree:add(fields.request_in, message.request.frame):set_generated()
    tree:add(fields.time, message.time - message.request.time):set_generated()
  end
end

local function title_of(message)
  local title = command_names[message.command] or "command " .. message.command
  if message.parameter then
    local name = parameter_names[message.parameter] or "parameter"
    title = title .. " " .. name .. " #" .. message.parameter
  end
  return title
end

local function add_body(tree, body, message)
  if body:len() == 0 then return "" end
  if message.is_request or message.status >= 0 then
    if message.command == WRITE or message.command == READ then
      return add_parameter(tree, body, message)
    end
    if message.command == DATA and not message.is_request then
      return add_block(tree, body, message)
    end
  end
  tree:add(fields.body, body)
  return ""
end

local function dissect_message(tvb, offset, pinfo, tree, connection)
  local header = header_of(tvb, offset)
  local body = tvb:range(offset + HEADER_SIZE, header.length)
  local message = remember(header, pinfo, connection, body)
  local subtree = tree:add(zk4n, tvb(offset, HEADER_SIZE + message.length))
  add_header(subtree, tvb, offset, message)
  local content = add_body(subtree, body, message)
  add_pairing(subtree, message)
  if message.is_request then check_request(subtree, message) else check_answer(subtree, message) end
  local title = message.number .. " " .. title_of(message)
  if not message.is_request then title = title .. " -> " .. status_text(message.status) end
  subtree:append_text(", " .. title .. content)
  pinfo.cols.info:append((connection.separator or "") .. title .. content)
  connection.separator = "; "
end

-- What does not begin with the header word cannot be told apart: the driver, too, throws it away.
local function add_foreign(tvb, offset, pinfo, tree)
  local range = tvb(offset)
  local subtree = tree:add(zk4n, range)
  subtree:add(fields.body, range)
  if range:len() >= 2 then subtree:add_le(fields.word, range(0, 2)) end
  subtree:add_proto_expert_info(experts.header_word, range:len() .. " bytes without a header word")
  subtree:append_text(", no header word")
  pinfo.cols.info:append("no header word")
end

local function waits_for(pinfo, offset, missing)
  pinfo.desegment_offset = offset
  pinfo.desegment_len = missing
end

function zk4n.dissector(tvb, pinfo, tree)
  local connection = connection_of()
  pinfo.cols.protocol = "ZK4N"
  pinfo.cols.info = ""
  connection.separator = nil
  local offset = 0
  while offset < tvb:reported_length_remaining() do
    local left = tvb:reported_length_remaining(offset)
    if left >= 2 and tvb(offset, 2):le_uint() ~= HEADER_WORD then
      add_foreign(tvb, offset, pinfo, tree)
      break
    end
    if left < HEADER_SIZE then
      waits_for(pinfo, offset, DESEGMENT_ONE_MORE_SEGMENT)
      break
    end
    local size = HEADER_SIZE + tvb(offset + 6, 2):le_uint()
    if left < size then
      waits_for(pinfo, offset, size - left)
      break
    end
    dissect_message(tvb, offset, pinfo, tree, connection)
    offset = offset + size
  end
  return tvb:reported_length_remaining()
end

-- A connection on another port is taken from its first request on.
local function looks_like_a_request(tvb)
  if tvb:len() < HEADER_SIZE or tvb(0, 2):le_uint() ~= HEADER_WORD then return false end
  return command_names[tvb(2, 2):le_uint()] ~= nil and tvb(4, 2):le_int() == REQUEST_STATUS and
    tvb(10, 2):le_uint() == 0
end

zk4n:register_heuristic("tcp", function(tvb, pinfo, tree)
  if not looks_like_a_request(tvb) then return false end
  pinfo.conversation = zk4n
  zk4n.dissector(tvb, pinfo, tree)
  return true
end)
DissectorTable.get("tcp.port"):add(DEFAULT_PORT, zk4n)
