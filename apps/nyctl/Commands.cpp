#include "apps/nyctl/Commands.h"

#include "apps/nyctl/CommandTools.h"

namespace {

void addCommand(CLI::App& app, const Command& row, Session& session, const Output& output,
                ExitStatus& status) {
    CLI::App* const command = app.add_subcommand(row.name, row.help);
    command->footer(std::string("Example: nyctl ") + row.example);
    const Run run = row.define(*command);
    command->callback([&session, &output, &status, run] {
        Context context{session, output};
        status = session.open() ? run(context) : noAnswer(context);
    });
}

}  // namespace

void addCommands(CLI::App& app, Session& session, const Output& output, ExitStatus& status) {
    for (const auto* family :
         {&kServerCommands, &kUserCommands, &kLockCommands, &kConnectionCommands}) {
        for (const Command& row : *family) addCommand(app, row, session, output, status);
    }
}
