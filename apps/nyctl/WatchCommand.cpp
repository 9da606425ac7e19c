#include "apps/nyctl/WatchCommand.h"

#include "apps/nyctl/Watch.h"

namespace apps::nyctl {

Run defineWatch(CLI::App& command) {
    constexpr double kLongest = 1e6;
    auto count = std::make_shared<unsigned long>(0);
    auto seconds = std::make_shared<double>(0);
    command.add_option("--count", *count, "Exit with status 0 after this many notifications")
        ->check(CLI::Range(1UL, 1'000'000'000UL));
    command
        .add_option(
            "--timeout", *seconds,
            "Exit after this many seconds: with status 4 if fewer than --count arrived, with 0 "
            "without --count")
        ->check(CLI::Range(0.001, kLongest));
    return [count, seconds](Context& context) {
        const WatchLimits limits{*count, std::chrono::duration<double>(*seconds)};
        if (context.output.options().isShell && !limits.hasCount() && !limits.hasTime()) {
            Output::complain("in the shell, watch needs --count or --timeout");
            return exitUsage;
        }
        return Watch(context, limits).run();
    };
}

}  // namespace apps::nyctl
