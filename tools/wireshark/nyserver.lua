-- Wireshark dissector for the protocol between clients, central server and listeners. README.md describes how to
-- install it.
--
-- One side of a connection sends requests: a client to its central server, or the central server to a client's
-- listener. A request is an action, a length and a payload; the other side sends only replies, in the order of the
-- requests, and a reply does not identify its request. So the first pass over a capture keeps a queue of open requests
-- for each connection, and records for every message which request it belongs to; later passes look that up.
local known = require "nyserver.fields"
local Archive = require "nyserver.archive"
local messages = require "nyserver.messages"
require "nyserver.records"
local f, remarks = known.fields, known.remarks

local kHeader = 4 + 4
local kLength = 4
local kDisconnect = 666

local nyserver = Proto("nyserver", "NyServer")
nyserver.fields = f
nyserver.experts = remarks
nyserver.prefs.ports =
    Pref.range("Ports of central servers", "", "TCP ports whose traffic is always decoded as this protocol", 65535)
nyserver.prefs.heuristic =
    Pref.bool("Recognise other connections", true, "Recognise a connection on any port by its first message")
nyserver.prefs.longest = Pref.uint("Longest payload", 16 * 1024 * 1024, "In bytes; a longer one is malformed")

-- Connections

local conversations = {} -- by their two ends
local notes = {} -- by frame: its connection, and by place in the frame what is known of a message

function nyserver.init()
    conversations = {}
    notes = {}
end

local function is_invalid(length)
    return length < 0 or length > nyserver.prefs.longest
end

-- Whether the bytes from `at` on may be the start of a request.
local function may_be_request(tvb, at)
    local left = tvb:len() - at
    if left < 4 then return true end
    local row = messages[tvb:range(at, 4):le_int()]
    if not row then return false end
    if row.bare or left < kHeader then return true end
    local length = tvb:range(at + 4, 4):le_int()
    return not is_invalid(length) and length >= row.least and length <= row.most
end

-- Returns the offset after the message at `at`; nil if the bytes there are not a request, or not the start of one in
-- the library's own form.
local function end_of_request(tvb, at)
    if not may_be_request(tvb, at) then return nil end
    local row = messages[tvb:range(at, 4):le_int()]
    if row.bare then return at + 4 end
    if at + kHeader > tvb:len() then return at > 0 and tvb:len() or nil end
    local length = tvb:range(at + 4, 4):le_int()
    local start = row.starts or ""
    local seen = math.min(length, #start / 2, tvb:len() - at - kHeader)
    local bytes = seen > 0 and tvb:range(at + kHeader, seen):bytes():tohex() or ""
    return bytes == start:sub(1, #bytes) and at + kHeader + length or nil
end

-- Whether the first bytes of a connection are of this protocol.
local function is_recognised(tvb)
    local at = 0
    while at and at + 4 <= tvb:len() do
        at = end_of_request(tvb, at)
    end
    return at ~= nil and at > 0
end

-- Whether this port is in the preference.
local function is_server_port(port)
    for first, last in nyserver.prefs.ports:gmatch "(%d+)%-?(%d*)" do
        if port >= tonumber(first) and port <= (tonumber(last) or tonumber(first)) then return true end
    end
    return false
end

local function source_sends_requests(tvb, pinfo)
    if is_server_port(pinfo.dst_port) ~= is_server_port(pinfo.src_port) then return is_server_port(pinfo.dst_port) end
    return may_be_request(tvb, 0)
end

local function end_point(address, port)
    return tostring(address) .. " " .. port
end

local function name_of(pinfo)
    local source, target = end_point(pinfo.src, pinfo.src_port), end_point(pinfo.dst, pinfo.dst_port)
    return source < target and source .. " " .. target or target .. " " .. source
end

local function new_conversation(tvb, pinfo)
    local source, target = end_point(pinfo.src, pinfo.src_port), end_point(pinfo.dst, pinfo.dst_port)
    return {
        requester = source_sends_requests(tvb, pinfo) and source or target,
        open = {}, -- requests without a reply yet, from number `oldest` on
        oldest = 1,
        newest = 0,
        lost = {}, -- directions that cannot be decoded any more
    }
end

-- A request after a disconnect is on another connection between the same two ends.
local function conversation_of(tvb, pinfo)
    if pinfo.visited and notes[pinfo.number] then return notes[pinfo.number].conversation end
    local name = name_of(pinfo)
    local conversation = conversations[name]
    local source = end_point(pinfo.src, pinfo.src_port)
    local is_over = conversation and conversation.is_over and conversation.requester == source
    if not conversation or is_over then
        conversation = new_conversation(tvb, pinfo)
        conversations[name] = conversation
    end
    notes[pinfo.number] = notes[pinfo.number] or { conversation = conversation }
    return conversation
end

-- Returns what the first pass has recorded, or records now, about the next message of the frame.
local function note_of(conversation, pinfo, is_request)
    local place = tonumber(pinfo.private.nyserver_place or 1)
    local frame = notes[pinfo.number]
    if not pinfo.visited or not frame[place] then
        frame[place] = {
            lost = conversation.lost[is_request],
            request = is_request and {} or conversation.open[conversation.oldest],
            notifies = conversation.notifies,
        }
    end
    return frame[place]
end

local function step_to_next_note(pinfo)
    pinfo.private.nyserver_place = tostring(tonumber(pinfo.private.nyserver_place or 1) + 1)
end

local function has_reply(row)
    return (row.scalar or row.message) ~= nil
end

-- Records on the first pass that a message is complete.
local function settle(conversation, pinfo, is_request, message)
    local request = message.note.request
    if message.has_invalid_length and not (is_request and message.note.notifies and message.length < 0) then
        conversation.lost[is_request] = true
    end
    if is_request then
        if message.row.notification then conversation.notifies = true end
        if message.action == kDisconnect then conversation.is_over = true end
        request.action, request.row = message.action, message.row
        request.frame, request.time = pinfo.number, pinfo.abs_ts
        if has_reply(message.row) then
            conversation.newest = conversation.newest + 1
            conversation.open[conversation.newest] = request
        end
    elseif request then
        request.reply_frame = pinfo.number
        message.note.seconds = pinfo.abs_ts - request.time
        conversation.open[conversation.oldest] = nil
        conversation.oldest = conversation.oldest + 1
    end
end

-- The extent of a message: these return its `size` as far as known from the bytes so far, and `is_open` while more
-- bytes may make it larger.

local function measure_request(tvb, at, note)
    local left = tvb:len() - at
    if left < 4 then return { size = 4, is_open = true } end
    local action = tvb:range(at, 4):le_int()
    local message = { action = action, row = messages[action] or messages.unknown, size = 4 }
    if message.row.bare and not note.notifies then return message end
    message.size = kHeader
    if left < kHeader then
        message.is_open = true
        return message
    end
    message.length = tvb:range(at + 4, 4):le_int()
    message.has_invalid_length = is_invalid(message.length)
    if not message.has_invalid_length then message.size = kHeader + message.length end
    return message
end

local function measure_reply(tvb, at, note)
    local left = tvb:len() - at
    if not note.request then return { size = left } end
    local row = note.request.row
    local message = { action = note.request.action, row = row, size = row.scalar or 0 }
    if not row.message then return message end
    if row.scalar and left < row.scalar then
        message.is_open = true
        return message
    end
    message.length_at = message.size
    if row.scalar and tvb:range(at, 1):uint() ~= 1 then
        message.length_at = nil
        return message
    end
    message.size = message.size + kLength
    if left < message.size then
        message.is_open = true
        return message
    end
    message.length = tvb:range(at + message.length_at, kLength):le_int()
    -- A client treats a negative length as an empty message.
    message.has_invalid_length = message.length > nyserver.prefs.longest
    if not message.has_invalid_length then message.size = message.size + math.max(message.length, 0) end
    return message
end

local function measure(tvb, at, note, is_request)
    if note.lost then return { size = tvb:len() - at } end
    return is_request and measure_request(tvb, at, note) or measure_reply(tvb, at, note)
end

-- The tree

local function generated(tree, field, value)
    tree:add(field, value):set_generated()
end

local function show_length(tree, tvb, at, message)
    local item = tree:add_le(f.length, tvb:range(at, kLength))
    if message.has_invalid_length then
        item:add_proto_expert_info(remarks.bad_length)
    elseif message.length < 0 then
        item:add_proto_expert_info(remarks.negative_length)
    end
end

-- Shows the payload between two offsets. Returns a short description.
local function show_payload(tree, tvb, first, last, read)
    local item = tree
    if last > first then item = tree:add(f.payload, tvb:range(first, last - first)) end
    return Archive.new(tvb, first, last, item):decode(read)
end

local function show_request(tree, tvb, at, message)
    local last = math.min(at + message.size, tvb:len())
    local row, request = message.row, message.note.request
    local action = tree:add_le(f.action, tvb:range(at, 4))
    if row == messages.unknown then action:add_proto_expert_info(remarks.unknown_action) end
    generated(tree, row.notification and f.notification or f.request, true)
    if request.reply_frame then generated(tree, f.reply_in, request.reply_frame) end
    if not message.length then return row.name end
    show_length(tree, tvb, at + 4, message)
    if message.has_invalid_length then return row.name .. " with an invalid length" end
    local summary = show_payload(tree, tvb, at + kHeader, last, row.payload)
    return row.name .. (summary and " " .. summary or "")
end

local function show_reply(tree, tvb, at, message)
    local last = math.min(at + message.size, tvb:len())
    local row, request = message.row, message.note.request
    generated(tree, f.action, message.action)
    generated(tree, f.reply, true)
    generated(tree, f.request_in, request.frame)
    if message.note.seconds then generated(tree, f.reply_time, message.note.seconds) end
    local summary
    if row.scalar then summary = Archive.new(tvb, at, math.min(at + row.scalar, last), tree):decode(row.read_scalar) end
    if message.length then
        show_length(tree, tvb, at + message.length_at, message)
        if message.length > 0 and not message.has_invalid_length then
            local first = at + message.length_at + kLength
            local found = show_payload(tree, tvb, first, last, row.message)
            summary = summary and summary .. ", " .. (found or "") or found
        end
    end
    return row.name .. ": " .. (summary or "nothing")
end

local function show(tree, tvb, at, message, is_request)
    local last = math.min(at + message.size, tvb:len())
    local range = tvb:range(at, last - at)
    local branch = tree:add(nyserver, range)
    local summary
    if message.note.lost then
        branch:add(f.opaque, range):add_proto_expert_info(remarks.lost)
        summary = "not decoded"
    elseif message.is_open then
        branch:add(f.opaque, range):add_proto_expert_info(remarks.cut)
        summary = "cut"
    elseif not message.row then
        branch:add(f.opaque, range):add_proto_expert_info(remarks.no_request)
        summary = "reply to a request that is not in this capture"
    else
        if last < at + message.size then branch:add_proto_expert_info(remarks.cut) end
        summary = (is_request and show_request or show_reply)(branch, tvb, at, message)
    end
    branch:append_text(", " .. summary)
    return summary
end

-- Frames

local function dissect(tvb, pinfo, tree)
    local conversation = conversation_of(tvb, pinfo)
    local is_request = conversation.requester == end_point(pinfo.src, pinfo.src_port)
    pinfo.cols.protocol = "NyServer"
    local summaries = {}
    local at = 0
    while at < tvb:len() do
        local note = note_of(conversation, pinfo, is_request)
        local message = measure(tvb, at, note, is_request)
        local missing = at + message.size - tvb:len()
        if (missing > 0 or message.is_open) and pinfo.can_desegment > 0 then
            pinfo.desegment_offset = at
            pinfo.desegment_len = message.is_open and DESEGMENT_ONE_MORE_SEGMENT or missing
            break
        end
        message.note = note
        if not pinfo.visited and message.row and not message.is_open then
            settle(conversation, pinfo, is_request, message)
        end
        summaries[#summaries + 1] = show(tree, tvb, at, message, is_request)
        step_to_next_note(pinfo)
        at = at + message.size
    end
    if #summaries > 0 then pinfo.cols.info = table.concat(summaries, "; ") end
end

nyserver.dissector = dissect

local function recognise(tvb, pinfo, tree)
    if not nyserver.prefs.heuristic or not is_recognised(tvb) then return false end
    if not pinfo.visited then conversations[name_of(pinfo)] = nil end -- Wireshark sees a new connection
    pinfo.conversation = nyserver
    dissect(tvb, pinfo, tree) -- called through its protocol, it could not ask for more segments
    return true
end

local tcp_port = DissectorTable.get "tcp.port"
tcp_port:add_for_decode_as(nyserver)
nyserver:register_heuristic("tcp", recognise)

local registered_ports = ""
function nyserver.prefs_changed()
    if nyserver.prefs.ports == registered_ports then return end
    if registered_ports ~= "" then tcp_port:remove(registered_ports, nyserver) end
    registered_ports = nyserver.prefs.ports
    if registered_ports ~= "" then tcp_port:add(registered_ports, nyserver) end
end
