-- The names for display filters: the fields, and the expert information. The field of the action is in messages.lua,
-- with the names of the actions.
local M = {}

-- The two bits have the same effect.
local kExcludes = "Refuses later requests for access of either kind, by any session"

M.fields = {
    -- Frames
    length = ProtoField.int32("nyserver.length", "Payload length"),
    payload = ProtoField.none("nyserver.payload", "Payload"),
    request = ProtoField.bool("nyserver.request", "Request"),
    reply = ProtoField.bool("nyserver.reply", "Reply"),
    notification = ProtoField.bool("nyserver.notification", "Notification"),
    request_in = ProtoField.framenum("nyserver.request_in", "Request in frame", base.NONE, frametype.REQUEST),
    reply_in = ProtoField.framenum("nyserver.reply_in", "Reply in frame", base.NONE, frametype.RESPONSE),
    reply_time = ProtoField.double("nyserver.reply.time", "Seconds since the request"),

    -- Scalar replies
    byte = ProtoField.uint8("nyserver.reply.byte", "Reply value"),
    number = ProtoField.int32("nyserver.reply.number", "Reply value"),
    version = ProtoField.double("nyserver.reply.version", "Version"),
    server_time = ProtoField.absolute_time("nyserver.reply.server_time", "Server time", base.UTC),
    text = ProtoField.string("nyserver.reply.text", "Text"),

    -- Arguments of requests
    schema = ProtoField.int32("nyserver.schema", "Schema"),
    user_name = ProtoField.string("nyserver.user_name", "User name"),
    event_count = ProtoField.int32("nyserver.event_count", "Argument"),
    zero = ProtoField.int32("nyserver.zero", "Always 0"),
    first = ProtoField.int32("nyserver.data.first", "First number"),
    second = ProtoField.int32("nyserver.data.second", "Second number"),

    -- The archive
    object = ProtoField.none("nyserver.object", "Object"),
    tag = ProtoField.string("nyserver.tag", "Tag"),
    class = ProtoField.string("nyserver.class", "Class"),
    class_schema = ProtoField.uint16("nyserver.class.schema", "Schema of the class"),
    class_name_length = ProtoField.uint16("nyserver.class.name_length", "Length of the class name"),
    class_number = ProtoField.uint32("nyserver.class.number", "Number of the class"),
    object_number = ProtoField.uint32("nyserver.object.number", "Number of the object"),
    count = ProtoField.uint32("nyserver.count", "Count"),
    string_prefix = ProtoField.bytes("nyserver.string.prefix", "Prefix"),
    string_length = ProtoField.uint32("nyserver.string.length", "Characters"),
    string_width = ProtoField.uint8("nyserver.string.width", "Bytes a character"),
    opaque = ProtoField.bytes("nyserver.opaque", "Not decoded"),

    -- Records
    user_port = ProtoField.int32("nyserver.user.port", "Port"),
    user_host = ProtoField.string("nyserver.user.host", "Host"),
    user_user = ProtoField.string("nyserver.user.name", "User"),
    user_computer = ProtoField.string("nyserver.user.computer", "Computer"),
    user_session = ProtoField.int32("nyserver.user.session", "Session"),
    user_schema = ProtoField.int32("nyserver.user.schema", "Schema"),
    user_soft_type = ProtoField.int32("nyserver.user.soft_type", "Soft type"),
    connection_name = ProtoField.string("nyserver.connection.name", "Connection"),
    connection_id = ProtoField.int32("nyserver.connection.id", "Id"),
    connection_opens = ProtoField.int32("nyserver.connection.opens", "Opens not yet closed"),
    last_id = ProtoField.int32("nyserver.connections.last_id", "Last id"),
    free_id = ProtoField.int32("nyserver.connections.free_id", "Free id"),
    lock_name = ProtoField.string("nyserver.lock.name", "Lock"),
    mode = ProtoField.uint32("nyserver.lock.mode", "Share mode", base.HEX),
    mode_access1 = ProtoField.bool("nyserver.lock.mode.access1", "Requests access of the first kind", 32, nil, 0x01),
    mode_access2 = ProtoField.bool("nyserver.lock.mode.access2", "Requests access of the second kind", 32, nil, 0x02),
    mode_exclude1 = ProtoField.bool("nyserver.lock.mode.exclude1", kExcludes, 32, nil, 0x08),
    mode_exclude2 = ProtoField.bool("nyserver.lock.mode.exclude2", kExcludes, 32, nil, 0x10),
    holder_session = ProtoField.int32("nyserver.holder.session", "Session"),
    message = ProtoField.string("nyserver.message", "Message"),
}

local function malformed(name, text)
    return ProtoExpert.new("nyserver." .. name, text, expert.group.MALFORMED, expert.severity.ERROR)
end
local function odd(name, text)
    return ProtoExpert.new("nyserver." .. name, text, expert.group.PROTOCOL, expert.severity.WARN)
end
local function note(name, text)
    return ProtoExpert.new("nyserver." .. name, text, expert.group.UNDECODED, expert.severity.NOTE)
end

M.remarks = {
    malformed = malformed("malformed", "Malformed"),
    bad_length = malformed("bad_length", "The payload length is negative or above the limit"),
    lost = note("lost", "Not decoded: an earlier payload length is invalid"),
    no_request = note("no_request", "The request is not in this capture"),
    unknown_action = odd("unknown_action", "An unknown action"),
    unknown_class = note("unknown_class", "A class that the application defines"),
    wrong_class = odd("wrong_class", "Not the class that is expected here"),
    negative_length = odd("negative_length", "A negative length"),
    rest = odd("rest", "Bytes after the last value"),
    not_alive = odd("not_alive", "The reply is not 512"),
    cut = note("cut", "The capture does not have all of this message"),
    hidden = note("hidden", "Too many values: the rest is read but not shown"),
}

return M
