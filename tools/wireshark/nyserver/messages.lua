-- The payload and the reply of each action. A row has:
--
--   name         of the client's call
--   payload      reads the arguments; returns a short description
--   least        the least number of bytes of a payload
--   most         the greatest; no limit unless given
--   starts       the first bytes of a payload that the library writes
--   bare         a request is the 4 bytes of the action, without a length
--   scalar       the number of bytes of the scalar in the reply
--   read_scalar  reads it; returns a short description
--   message      reads the message in the reply; if there is a scalar, a message follows only when that is 1
-- A row with neither scalar nor message has no reply.
local known = require "nyserver.fields"
local records = require "nyserver.records"
local f, remarks = known.fields, known.remarks

local kAlive = 512
local kWideString = "FFFEFF"
local kNewClass = "FFFF"

local function quoted(text)
    return '"' .. text .. '"'
end

local function string_of(field)
    return function(archive)
        return quoted(archive:string(field))
    end
end

local function long_of(field)
    return function(archive)
        return tostring(archive:long(field))
    end
end

local function any_object(archive)
    local name, words = archive:object()
    return (name or "null") .. (words and " " .. words or "")
end

local function object_of(class)
    return function(archive)
        return class .. " " .. (archive:object_of(class) or "")
    end
end

local function yes_or_no(yes, no)
    return function(archive)
        return archive:byte(f.byte) ~= 0 and yes or no
    end
end

local function number(archive)
    return tostring(archive:long(f.number))
end

local function alive(archive)
    local value = archive:long(f.number)
    if value == kAlive then return "alive" end
    archive:remark(remarks.not_alive)
    return tostring(value)
end

local function seconds(archive)
    local range = archive:rest()
    local value = archive:long(f.number)
    archive:show(f.server_time, range, NSTime.new(value, 0))
    return tostring(value)
end

local function text(archive)
    return quoted(archive:string(f.text))
end

local M = {
    [1] = { name = "isAlive", most = 0, scalar = 4, read_scalar = alive },
    [2] = { name = "getConnection", most = 0, message = object_of "NySeConnectionArray" },
    [3] = {
        name = "openConnection",
        payload = string_of(f.connection_name),
        least = 1,
        starts = kWideString,
        scalar = 4,
        read_scalar = number,
    },
    [4] = { name = "closeConnection", payload = long_of(f.connection_id), least = 4, most = 4 },
    [6] = {
        name = "isOpenConnectionBy",
        payload = long_of(f.connection_id),
        least = 4,
        most = 4,
        message = object_of "NySeUserPtrArray",
    },
    [10] = { name = "getLock", most = 0, message = object_of "NySeLockArray" },
    [11] = {
        name = "lock",
        payload = function(archive)
            return string.format('"%s" 0x%02X', archive:string(f.lock_name), archive:mode())
        end,
        least = 5,
        starts = kWideString,
        scalar = 1,
        read_scalar = yes_or_no("granted", "refused"),
    },
    [12] = { name = "unLock", payload = string_of(f.lock_name), least = 1, starts = kWideString },
    [13] = {
        name = "isLockBy",
        payload = function(archive)
            local name = archive:string(f.lock_name)
            archive:long(f.zero)
            return quoted(name)
        end,
        least = 5,
        starts = kWideString,
        scalar = 1,
        read_scalar = yes_or_no("held", "not held"),
        message = object_of "NySeUserPtrArray",
    },
    [70] = { name = "getAllUser", most = 0, message = object_of "NySeUserPtrArray" },
    [71] = { name = "getAnotherPort", most = 0, scalar = 4, read_scalar = number },
    [72] = {
        name = "sendConnectionData",
        payload = function(archive)
            local first, second = archive:long(f.first), archive:long(f.second)
            return string.format("%d %d %s", first, second, any_object(archive))
        end,
        least = 8,
    },
    [73] = {
        name = "sendUserData",
        payload = function(archive)
            local name = records.user_by_its_own_schema(archive)
            return string.format("to %s %s", name or "null", any_object(archive))
        end,
        least = 2,
        starts = kNewClass,
    },
    [74] = { name = "sendAllUserData", payload = any_object, least = 2, starts = kNewClass },
    [75] = {
        name = "updateUserName",
        payload = string_of(f.user_name),
        least = 1,
        starts = kWideString,
        scalar = 1,
        read_scalar = yes_or_no("done", "refused"),
    },
    [77] = { name = "shutDownServer", most = 0 },
    [84] = { name = "getCurrentTime", most = 0, scalar = 4, read_scalar = seconds },
    [89] = { name = "verifyCoherancy", most = 0 },
    [90] = { name = "getMachineIdentifiant", most = 0, message = text },
    [95] = {
        name = "getEventListFromEventViewer",
        payload = long_of(f.event_count),
        least = 4,
        most = 4,
        message = text,
    },
    [96] = {
        name = "getPortClient",
        payload = records.user_by_its_own_schema,
        least = 2,
        starts = kNewClass,
        message = object_of "NySeUser",
    },
    [97] = {
        name = "initializeSchema",
        payload = long_of(f.schema),
        least = 4,
        most = 4,
        scalar = 4,
        read_scalar = number,
    },
    [106] = {
        name = "getVersion",
        bare = true,
        scalar = 8,
        read_scalar = function(archive)
            return tostring(archive:double(f.version))
        end,
    },
    [666] = { name = "disconnect", bare = true },
}

for action = 50, 58 do
    local name = "notification " .. action
    M[action] = { name = name, payload = any_object, notification = true, starts = kNewClass }
end

local names = {}
for action, row in pairs(M) do
    names[action] = row.name
    row.payload = row.payload or function() end
    row.least = row.least or 0
    row.most = row.most or math.huge
end
f.action = ProtoField.int32("nyserver.action", "Action", base.DEC, names)

-- The row of an unknown action.
M.unknown = {
    name = "unknown action",
    payload = function(archive)
        archive:show(f.opaque, archive:take(archive.last - archive.at))
    end,
}

return M
