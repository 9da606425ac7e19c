-- Reads and shows an archive in the bytes of a message.
--
-- Nothing is read beyond the end of the archive: a missing or invalid value is a fault. A fault ends the reading and is
-- marked in the tree at its position.
local known = require "nyserver.fields"
local f, remarks = known.fields, known.remarks

-- Tags. Classes and objects share one sequence of numbers from 1.
local kNewClass = 0xFFFF
local kBigTag = 0x7FFF -- a 4-byte tag follows
local kClassFlag = 0x8000
local kBigClassFlag = 0x80000000
local kLongestClassName = 63
local kDeepestNesting = 100

local kWideMark = 0xFFFE
local kLongestString = 0x7FFFFFFF
local kWide = ENC_UTF_16 + ENC_LITTLE_ENDIAN
local kNarrow = ENC_WINDOWS_1252

-- Wireshark fails on a frame with a million items.
local kMostItems = 50000

local Fault = {}
local function fail(text)
    error(setmetatable({ text = text }, Fault))
end
-- Thrown where the rest cannot be decoded.
local kEnough = {}

local Archive = { bodies = {} } -- bodies: what reads the inside of an object, by its class

Archive.__index = Archive

-- An archive in `tvb` from offset `first` up to before `last`, shown below `tree`.
function Archive.new(tvb, first, last, tree)
    return setmetatable({
        tvb = tvb,
        at = first,
        last = last,
        tree = tree,
        root = tree,
        numbers = {},
        depth = 0,
        items_left = kMostItems,
    }, Archive)
end

-- Runs `read` on the archive. Returns its result, nil after a fault. Remaining bytes are shown undecoded.
function Archive:decode(read)
    local succeeded, result = pcall(read, self)
    if not succeeded then
        if getmetatable(result) == Fault then
            self.tree:add_proto_expert_info(remarks.malformed, result.text)
        elseif result ~= kEnough then
            error(result, 0)
        end
        self.tree, result = self.root, nil
    end
    if self.at < self.last then
        local item = self.root:add(f.opaque, self:rest())
        if succeeded then item:add_proto_expert_info(remarks.rest) end
    end
    self.at = self.last
    return result
end

-- Clears the known classes and objects: what follows was written by a separate archive.
function Archive:restart()
    self.numbers = {}
end

function Archive:rest()
    return self.tvb:range(self.at, self.last - self.at)
end

function Archive:since(start)
    return self.tvb:range(start, self.at - start)
end

function Archive:take(count)
    local left = self.last - self.at
    if count > left then fail(string.format("%.0f bytes are needed here and %d are left", count, left)) end
    self.at = self.at + count
    return self.tvb:range(self.at - count, count)
end

-- Whether one more item may be added to the tree.
function Archive:may_show()
    self.items_left = self.items_left - 1
    if self.items_left == 0 then self.root:add_proto_expert_info(remarks.hidden) end
    return self.items_left > 0
end

-- Adds an item to the tree; nil when there are too many.
function Archive:show(field, range, ...)
    if self:may_show() then return self.tree:add(field, range, ...) end
end

-- The same for characters; an item that is given its text instead would cut it to as many bytes as it covers.
function Archive:show_characters(field, range, encoding)
    if self:may_show() then return (self.tree:add_packet_field(field, range, encoding)) end
end

function Archive:remark(remark)
    if self.items_left > 0 then self.tree:add_proto_expert_info(remark) end
end

-- Runs `read`, which shows its items below `item`.
function Archive:below(item, read)
    local outer = self.tree
    self.tree = item or outer
    read()
    self.tree = outer
end

-- Values

function Archive:byte(field)
    local range = self:take(1)
    if field then self:show(field, range, range:uint()) end
    return range:uint()
end

function Archive:word()
    return self:take(2):le_uint()
end

function Archive:long(field)
    local range = self:take(4)
    self:show(field, range, range:le_int())
    return range:le_int()
end

function Archive:double(field)
    local range = self:take(8)
    self:show(field, range, range:le_float())
    return range:le_float()
end

-- A share mode, with its bits.
function Archive:mode()
    local range = self:take(4)
    local value = range:le_uint()
    self:below(self:show(f.mode, range, value), function()
        for _, bit in ipairs { f.mode_access1, f.mode_access2, f.mode_exclude1, f.mode_exclude2 } do
            self:show(bit, range, value)
        end
    end)
    return value
end

function Archive:count()
    local start = self.at
    local count = self:word()
    if count == 0xFFFF then count = self:take(4):le_uint() end
    self:show(f.count, self:since(start), count)
    return count
end

-- Returns the number of characters, and of bytes for each.
function Archive:string_length()
    local width = 1
    local length = self:byte()
    if length ~= 0xFF then return length, width end
    length = self:word()
    if length == kWideMark then
        width = 2
        length = self:byte()
        if length ~= 0xFF then return length, width end
        length = self:word() -- the mark's value is a length here
    end
    if length == 0xFFFF then length = self:take(4):le_uint() end
    if length > kLongestString then fail "a string longer than 2,147,483,647 characters" end
    return length, width
end

function Archive:string(field)
    local start = self.at
    local length, width = self:string_length()
    local prefix = self:since(start)
    local range = self:take(length * width)
    local item, text
    if length == 0 then
        item, text = self:show(field, prefix, ""), ""
    elseif width == 2 then
        item, text = self:show_characters(field, range, kWide), range:le_ustring()
    else
        item, text = self:show_characters(field, range, kNarrow), range:string(kNarrow)
    end
    self:below(item, function()
        self:show(f.string_prefix, prefix)
        self:show(f.string_length, prefix, length)
        self:show(f.string_width, prefix, width)
    end)
    return text
end

-- Objects

function Archive:remember(what)
    self.numbers[#self.numbers + 1] = what
    return #self.numbers
end

function Archive:new_class(start)
    self:show(f.tag, self:since(start), "new class")
    local schema = self:take(2)
    self:show(f.class_schema, schema, schema:le_uint())
    local length = self:take(2)
    self:show(f.class_name_length, length, length:le_uint())
    if length:le_uint() == 0 or length:le_uint() > kLongestClassName then fail "a class name with an invalid length" end
    local name = self:take(length:le_uint())
    self:show(f.class, name, name:string())
    local class = { class = name:string(), schema = schema:le_uint() }
    class.number = self:remember(class)
    self:show(f.class_number, name, class.number)
    return class
end

-- The class of the object that begins here; or nil and the object that is referred to, nil for null.
function Archive:class()
    local start = self.at
    local tag = self:word()
    if tag == kNewClass then return self:new_class(start) end
    local number, is_class = tag, false
    if tag == kBigTag then
        number = self:take(4):le_uint()
        if number >= kBigClassFlag then number, is_class = number - kBigClassFlag, true end
    elseif tag >= kClassFlag then
        number, is_class = tag - kClassFlag, true
    end
    if number == 0 and not is_class then
        self:show(f.tag, self:since(start), "null")
        return nil
    end
    local earlier = self.numbers[number]
    self:show(f.tag, self:since(start), string.format("%s %.0f", is_class and "class" or "object", number))
    if not earlier or (earlier.schema ~= nil) ~= is_class then fail "a reference to an unknown class or object" end
    self:show(f.class, self:since(start), earlier.class)
    if is_class then return earlier end
    return nil, earlier
end

-- The fields of an object.
function Archive:body(class)
    local number = self:remember { class = class.class }
    self:show(f.object_number, self.tvb:range(self.at, 0), number)
    local read = Archive.bodies[class.class]
    if not read then
        self:remark(remarks.unknown_class)
        error(kEnough, 0)
    end
    if self.depth == kDeepestNesting then fail "objects nested too deeply" end
    self.depth = self.depth + 1
    local result = read(self, class.schema)
    self.depth = self.depth - 1
    return result
end

-- An object. `read` is given its class and reads the rest; the ordinary body unless given. Returns the name of the class,
-- nil for null, and what `read` returns.
function Archive:object(read)
    local start = self.at
    local item = self:show(f.object, self:rest())
    local name, result
    self:below(item, function()
        local class, earlier = self:class()
        name = (class or earlier or {}).class
        if item then item:append_text(": " .. (name or "null")) end
        if class then result = (read or self.body)(self, class) end
    end)
    if item then item:set_len(self.at - start) end
    return name, result
end

-- An object of one class, where a reader takes no other and no null.
function Archive:object_of(class)
    local name, result = self:object()
    if name ~= class then self:remark(remarks.wrong_class) end
    return result
end

return Archive
