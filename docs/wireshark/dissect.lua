-- From here on written by hand. It works from the tables above: a Wireshark field for each field of each value, and one
-- for each thing that the dictionary names in it. Nothing in a frame is taken for what it claims to be.

local proto = Proto("rsvp_mor", "RSVP management protocol")

local function describe(number, words)
  return words[number] or tostring(number) .. "?"
end

local common = {
  direction = ProtoField.string("rsvp_mor.direction", "Direction"),
  client = ProtoField.uint32("rsvp_mor.client", "Client"),
  process = ProtoField.uint32("rsvp_mor.process", "Process of the client"),
  exchange = ProtoField.uint32("rsvp_mor.exchange", "Exchange"),
  masked = ProtoField.bool("rsvp_mor.masked", "Key material is masked"),
  class = ProtoField.uint8("rsvp_mor.class", "Class", base.DEC, protocol.classes),
  op = ProtoField.uint8("rsvp_mor.op", "Operation", base.DEC, protocol.operations),
  length = ProtoField.uint16("rsvp_mor.bodyLength", "Length of the body"),
  status = ProtoField.uint32("rsvp_mor.status", "Status", base.HEX, protocol.statuses),
  item = ProtoField.string("rsvp_mor.item", "Item"),
  itemType = ProtoField.uint16("rsvp_mor.item.type", "Type"),
  itemLength = ProtoField.uint16("rsvp_mor.item.length", "Length"),
  count = ProtoField.uint32("rsvp_mor.item.count", "Count"),
  text = ProtoField.string("rsvp_mor.item.text", "Text"),
  bytes = ProtoField.bytes("rsvp_mor.item.bytes", "Bytes"),
  problem = ProtoField.string("rsvp_mor.problem", "Problem"),
}
local malformed = ProtoExpert.new("rsvp_mor.malformed", "Out of format", expert.group.MALFORMED, expert.severity.ERROR)
proto.experts = { malformed }

-- ---- A field for each field of the tables ---------------------------------------------------------------------------

local function unsigned(width)
  local types = { ftypes.UINT8, ftypes.UINT16, ftypes.UINT24, ftypes.UINT32 }
  return types[width] or ftypes.UINT64
end

local function signed(width)
  local types = { ftypes.INT8, ftypes.INT16, ftypes.INT24, ftypes.INT32 }
  return types[width] or ftypes.INT64
end

-- The Wireshark type of a form, and how numbers of it are shown.
local types = {
  number = function(width) return unsigned(width), base.DEC end,
  signed = function(width) return signed(width), base.DEC end,
  hex = function(width) return unsigned(width), base.HEX end,
  address = function() return ftypes.IPv4 end,
  bytes = function() return ftypes.BYTES end,
  single = function() return ftypes.FLOAT end,
  rate = function() return ftypes.FLOAT end,
  wirerate = function() return ftypes.DOUBLE end,
  bool = function() return ftypes.BOOLEAN end,
  words = function() return ftypes.STRING end,
  bits = function() return ftypes.STRING end,
  text = function() return ftypes.STRINGZ end,
  secret = function() return ftypes.STRING end,
}

local all = {}

-- "slots[0].slotSender" becomes "slots.0.slotSender": brackets have a meaning of their own in a filter.
local function make_field(layout, name, form, width)
  local kind, shown = types[form](width)
  local filter = "rsvp_mor." .. layout .. "." .. name:gsub("%[(%d+)%]", ".%1")
  local field = ProtoField.new(name:match("[^.]*$"), filter, kind, nil, shown)
  all[#all + 1] = field
  return field
end

for _, field in pairs(common) do
  all[#all + 1] = field
end
for name, layout in pairs(protocol.layouts) do
  for _, field in ipairs(layout) do
    if field.form ~= "holder" then -- the fields inside are shown in its place
      field.shown = make_field(name, field.name, field.form, field.width)
    end
    local object = field.name:match("^(.*%.)") or ""
    for _, meaning in ipairs(field.named or {}) do
      meaning.shown = make_field(name, object .. meaning.name, meaning.form, meaning.width)
    end
  end
end
proto.fields = all

-- ---- Values ---------------------------------------------------------------------------------------------------------

-- Only for numbers of up to 32 bits; a wider one is never decided by.
local function number_at(range)
  return range:len() <= 4 and range:uint() or 0
end

local function has_bit(number, bit)
  return math.floor(number / 2 ^ bit) % 2 == 1
end

-- A rate crosses the wire as a whole number whose bytes are reversed, written as a single, least significant byte
-- first.
local function rate_of(range)
  local rate = range:le_float()
  local whole = 0
  if rate >= 4294967296 then
    whole = 4294967295
  elseif rate >= 1 then
    whole = math.floor(rate)
  end
  local reversed = 0
  for _ = 1, 4 do
    reversed = reversed * 256 + whole % 256
    whole = math.floor(whole / 256)
  end
  return Struct.unpack(">f", Struct.pack(">f", reversed)) -- as coarse as a single is
end

local function word_of(meaning, number)
  return meaning.words[number] or meaning.other or tostring(number)
end

local function words_of_bits(meaning, range)
  local number = number_at(range)
  local words = {}
  for bit = 0, 8 * range:len() - 1 do
    if has_bit(number, bit) then
      words[#words + 1] = meaning.words[bit] or "bit " .. bit
    end
  end
  return table.concat(words, ", ")
end

-- How a value is added to the tree, if not as its bytes stand.
local add_as = {
  secret = function(tree, field, range) return tree:add(field.shown, range, "********") end,
  wirerate = function(tree, field, range) return tree:add(field.shown, range, rate_of(range)) end,
  bool = function(tree, field, range) return tree:add(field.shown, range, number_at(range) ~= 0) end,
  words = function(tree, field, range) return tree:add(field.shown, range, word_of(field, number_at(range))) end,
  bits = function(tree, field, range) return tree:add(field.shown, range, words_of_bits(field, range)) end,
}

local function add_value(tree, field, range)
  local add = add_as[field.form]
  local added = add and add(tree, field, range) or tree:add(field.shown, range)
  if field.unit and field.unit ~= "count" then
    added:append_text(" " .. field.unit)
  end
  return added
end

local function is_there(field, range)
  local when = field.when
  if not when then
    return true
  end
  local kind = number_at(range:range(when.at, when.width))
  return (when.kinds[kind] or false) == when.among
end

-- The subtree of the object that a dotted name is in; `trees` has those that were made for this value.
local function object_of(trees, name, range)
  local object = name:match("^(.*)%.[^.]*$")
  if not object then
    return trees[""]
  end
  if not trees[object] then
    trees[object] = object_of(trees, object, range):add(range, object:match("[^.]*$"))
  end
  return trees[object]
end

local function add_fields(tree, layout, range)
  local trees = { [""] = tree }
  for _, field in ipairs(layout) do
    if is_there(field, range) then
      local under = object_of(trees, field.name, range:range(field.at, field.width * field.count))
      for i = 0, field.shown and field.count - 1 or -1 do
        local added = add_value(under, field, range:range(field.at + i * field.width, field.width))
        if field.count > 1 then
          added:prepend_text("[" .. i .. "] ")
        end
      end
      for _, meaning in ipairs(field.named or {}) do
        add_value(under, meaning, range:range(meaning.at, meaning.width)):set_generated()
      end
    end
  end
end

local function add_entries(tree, list, range)
  local layout = protocol.layouts[list.entry]
  tree:add(common.count, range:range(0, list.width))
  local at, number = list.width, 0
  while range:len() - at >= layout.size do
    number = number + 1
    local entry = range:range(at, layout.size)
    add_fields(tree:add(entry, list.entry .. " " .. number), layout, entry)
    at = at + layout.size
  end
end

-- ---- Frames ---------------------------------------------------------------------------------------------------------

local function kind_of(frame, type, is_first)
  local known
  if frame.is_reply then
    known = protocol.replies[frame.asked]
  else
    local requests = protocol.requests[frame.class]
    known = requests and (is_first and requests.first or requests.other)
  end
  return known and known[type] or { name = "?" }
end

local function add_item(tree, kind, range, length)
  if range:len() < length or length == 0 then
    return length ~= 0 and range:len() > 0 and tree:add(common.bytes, range)
  end
  local layout = protocol.layouts[kind.layout]
  local list = protocol.lists[kind.list]
  if layout and layout.size == length then
    add_fields(tree, layout, range)
  elseif list and length >= list.width then
    add_entries(tree, list, range)
  elseif kind.text then
    tree:add(common.text, range)
  else
    tree:add(common.bytes, range)
  end
end

-- Adds the items and returns their names, and what is wrong with the last one.
local function add_items(tree, frame, body)
  local names, problem = {}, nil
  local at, size = 0, body:len()
  while at < size do
    if size - at < 4 then
      return names, "less than the header of an item"
    end
    local type, length = body:range(at, 2):uint(), body:range(at + 2, 2):uint()
    local kind = kind_of(frame, type, #names == 0)
    local left = math.min(length, size - at - 4)
    local item = tree:add(common.item, body:range(at, 4 + left), kind.name)
    if kind.meaning then
      item:append_text(" (" .. kind.meaning .. ")")
    end
    item:add(common.itemType, body:range(at, 2))
    item:add(common.itemLength, body:range(at + 2, 2))
    if length > left then
      problem = "an item runs past the end"
    end
    if left > 0 then
      add_item(item, kind, body:range(at + 4, left), length)
    end
    names[#names + 1] = kind.name
    at = at + 4 + left
  end
  return names, problem
end

local function tell(tree, pinfo, problem)
  tree:add(common.problem, problem):set_generated()
  tree:add_proto_expert_info(malformed, problem)
  pinfo.cols.info:append(" [" .. problem .. "]")
end

local function add_header(tree, frame, range)
  tree:add(common.direction, range:range(1, 1), frame.is_reply and "reply" or "request")
  tree:add(common.masked, range:range(1, 1), frame.is_masked)
  tree:add(common.client, range:range(4, 4))
  tree:add(common.process, range:range(8, 4))
  tree:add(common.exchange, range:range(12, 4))
end

function proto.dissector(buffer, pinfo, root)
  local size = buffer:len()
  pinfo.cols.protocol = "RSVP-MOR"
  if size < protocol.header or buffer(0, 1):uint() ~= protocol.version then
    return 0
  end
  local flags = buffer(1, 1):uint()
  local frame = {
    is_reply = has_bit(flags / protocol.reply, 0),
    is_masked = has_bit(flags / protocol.masked, 0),
    asked = buffer(2, 2):uint(),
  }
  local client = "client " .. buffer(4, 4):uint()
  pinfo.cols.src = frame.is_reply and "daemon" or client
  pinfo.cols.dst = frame.is_reply and client or "daemon"
  local tree = root:add(proto, buffer())
  add_header(tree, frame, buffer(0, protocol.header))
  if size - protocol.header < 8 then
    pinfo.cols.info = ""
    tell(tree, pinfo, "less than a header")
    return size
  end
  local header = buffer(protocol.header, 8)
  frame.class = header:range(0, 1):uint()
  local op, status = header:range(1, 1):uint(), header:range(4, 4):uint()
  tree:add(common.class, header:range(0, 1))
  tree:add(common.op, header:range(1, 1))
  tree:add(common.length, header:range(2, 2))
  tree:add(common.status, header:range(4, 4))
  local problem
  local length = size - protocol.header - 8
  if header:range(2, 2):uint() ~= length then
    problem = "the body is not as long as the header says"
  end
  local names = {}
  if length > 0 then
    local later
    names, later = add_items(tree, frame, buffer(protocol.header + 8, length))
    problem = later or problem
  end
  pinfo.cols.info = (frame.is_reply and "< " or "> ") .. describe(frame.class, protocol.classes) .. " "
    .. describe(op, protocol.operations) .. (frame.is_reply and string.format(" status 0x%08x", status) or "") .. " "
    .. table.concat(names, " ")
  if problem then
    tell(tree, pinfo, problem)
  end
  return size
end

-- The encapsulation has another number than the link type in the file.
DissectorTable.get("wtap_encap"):add(wtap["USER" .. protocol.link - 147], proto)
