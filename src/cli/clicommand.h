#pragma once

#include <QStringList>
#include <vector>

/// One subcommand of qbx. Each command file defines a static CliCommand, so
/// adding a command touches no other file.
class CliCommand {
public:
    using Run = int (*)(const QStringList &arguments);
    CliCommand(const char *name, const char *summary, Run run);

    const char *name;
    const char *summary;
    Run run;

    static std::vector<const CliCommand *> &all();
};
