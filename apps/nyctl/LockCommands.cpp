// The commands about locks.
#include "apps/nyctl/Hold.h"
#include "apps/nyctl/ShareModeOption.h"
#include "NyServer/records/NySeLockArray.h"
#include "NyServer/records/NySeShareMode.h"

namespace apps::nyctl {

namespace {

Run defineLock(CLI::App& command) {
    auto name = argument<std::string>(command, "NAME", "The lock's name");
    auto mode = shareModeOption(command, NySe::exclude1 | NySe::exclude2);
    return [name, mode](Context& context) {
        if (const ExitStatus status = ensureRegistered(context); status != exitYes) return status;
        const bool granted = context.client().lock(fromUtf8(*name), *mode);
        const ExitStatus status = granted ? exitYes : ifAlive(context, exitNo);
        if (status == exitNoReply) return status;
        context.output.record({{"lock", *name},
                               {"granted", granted},
                               {"mode", shareModeDigits(*mode)},
                               {"words", NySe::shareModeWords(*mode)}});
        return status;
    };
}

Run defineUnlock(CLI::App& command) {
    return [name = argument<std::string>(command, "NAME", "The lock's name")](Context& context) {
        context.client().unLock(fromUtf8(*name));
        return ifAlive(context, exitYes);
    };
}

Run defineHolders(CLI::App& command) {
    return [name = argument<std::string>(command, "NAME", "The lock's name")](Context& context) {
        NySeUserPtrArray users;
        const bool held = context.client().isLockBy(fromUtf8(*name), users);
        // Held without a holder: the table that follows the status was lost.
        if (held && users.GetSize() == 0) return noReply(context);
        const ExitStatus status = held ? exitYes : ifAlive(context, exitNo);
        if (status != exitNoReply) printUsers(context, users);
        return status;
    };
}

Record describe(const NySeLock& lock, const NySeSessionLock& holder,
                const NySeUserPtrArray& users) {
    const NySeUser* user = users.findBySessionNumber(holder.getSessionNumber());
    return {{"lock", toUtf8(lock.getStrLockName())},
            {"session", holder.getSessionNumber()},
            {"user", user != nullptr ? toUtf8(user->getStrUserName()) : std::string()},
            {"mode", shareModeDigits(holder.getLockState())},
            {"words", NySe::shareModeWords(holder.getLockState())}};
}

Run defineLocks(CLI::App&) {
    return [](Context& context) {
        NySeLockArray locks;
        NySeUserPtrArray users;
        context.client().getLock(locks);
        context.client().getAllUser(users);
        std::vector<Record> rows;
        for (INT_PTR i = 0; i < locks.GetSize(); ++i) {
            const NySeSessionLockPtrArray& holders = locks[i]->getHolders();
            for (INT_PTR j = 0; j < holders.GetSize(); ++j) {
                rows.push_back(describe(*locks[i], *holders[j], users));
            }
        }
        // An empty table may also mean that no reply arrived.
        const bool isCertain = !rows.empty() && users.GetSize() > 0;
        const ExitStatus status = isCertain ? exitYes : ifAlive(context, exitYes);
        if (status == exitYes) {
            context.output.table({"lock", "session", "user", "mode", "words"}, rows);
        }
        return status;
    };
}

}  // namespace

const std::vector<Command> kLockCommands = {
    {"lock", "Request a lock under a share mode", "lock part/42 --mode access1+exclude2",
     &defineLock},
    {"unlock", "Release a lock", "unlock part/42", &defineUnlock},
    {"hold", "Hold a lock while a command runs, and exit with the command's status",
     "hold part/42 --wait 10 -- convert part42.igs", &defineHold},
    {"holders", "List the users who hold a lock", "holders part/42", &defineHolders},
    {"locks", "List all locks and their holders", "locks", &defineLocks},
};

}  // namespace apps::nyctl
