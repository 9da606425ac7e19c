-- The records and tables: their fields in the order of the wire. Each body returns a short text for the packet list.
local known = require "nyserver.fields"
local Archive = require "nyserver.archive"
local f = known.fields
local bodies = Archive.bodies

local kCurrentSchema = 2015

-- The fields up to the schema; the schema that the user's client speaks, and the user's name.
local function user(archive)
    archive:long(f.user_port)
    archive:string(f.user_host)
    local name = archive:string(f.user_user)
    archive:string(f.user_computer)
    archive:long(f.user_session)
    return archive:long(f.user_schema), name
end

function bodies.NySeUser(archive, schema)
    local _, name = user(archive)
    if schema >= kCurrentSchema then archive:long(f.user_soft_type) end
    return name
end

function bodies.NySeConnection(archive)
    local name = archive:string(f.connection_name)
    archive:long(f.connection_id)
    archive:long(f.connection_opens)
    return name
end

function bodies.NySeSessionLock(archive)
    archive:mode()
    archive:long(f.holder_session)
end

function bodies.NySeMessage(archive)
    return archive:string(f.message)
end

local function elements(archive, class)
    local count = archive:count()
    for _ = 1, count do
        archive:object_of(class)
    end
    return tostring(count)
end

function bodies.NySeLock(archive)
    local name = archive:string(f.lock_name)
    elements(archive, "NySeSessionLock")
    return name
end

function bodies.NySeUserPtrArray(archive)
    return elements(archive, "NySeUser")
end

function bodies.NySeLockArray(archive)
    return elements(archive, "NySeLock")
end

function bodies.NySeSessionLockPtrArray(archive)
    return elements(archive, "NySeSessionLock")
end

function bodies.NySeConnectionArray(archive)
    local result = elements(archive, "NySeConnection")
    archive:long(f.last_id)
    for _ = 1, archive:count() do
        archive:long(f.free_id)
    end
    return result
end

local M = {}

-- The user at the start of getPortClient and sendUserData: archived separately, under the schema in its own field,
-- which determines whether the soft type is present.
function M.user_by_its_own_schema(archive)
    local _, name = archive:object(function(_, class)
        if class.class ~= "NySeUser" then return archive:body(class) end
        archive:remember { class = class.class }
        local schema, user_name = user(archive)
        if bit.band(schema, 0x7FFFFFFF) >= kCurrentSchema then archive:long(f.user_soft_type) end
        return user_name
    end)
    archive:restart()
    return name
end

return M
