#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "platform/messages.h"
#include "storage/password.h"

#include <cstdio>
#include <termios.h>
#include <unistd.h>

namespace {

QString readLine(QTextStream &in)
{
    QString line = in.readLine();
    if (line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    return line;
}

// On a terminal each line is asked for on stderr and typed without echo; from
// a pipe the lines are read silently.
QString ask(QTextStream &in, const char *prompt)
{
    if (!::isatty(STDIN_FILENO))
        return readLine(in);
    // Echo goes off before the prompt shows, and nothing typed ahead is
    // thrown away.
    termios saved;
    const bool quiet = ::tcgetattr(STDIN_FILENO, &saved) == 0;
    if (quiet) {
        termios silent = saved;
        silent.c_lflag &= ~tcflag_t(ECHO);
        silent.c_lflag |= ECHONL;
        ::tcsetattr(STDIN_FILENO, TCSANOW, &silent);
    }
    QTextStream(stderr) << prompt << " " << Qt::flush;
    const QString line = readLine(in);
    if (quiet)
        ::tcsetattr(STDIN_FILENO, TCSANOW, &saved);
    return line;
}

int run(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Sets, changes or removes a document's password. Reads three lines from standard input: "
                       "the current password (ignored when the document has none), the new password and its "
                       "confirmation. Both new lines empty removes the password. A password has at most %1 "
                       "characters.\n"
                       "Exit status: 0 saved, 1, 2 or 4 as for 'check', 3 refused (wrong current password, "
                       "new password and confirmation differ, or too long), 5 the save failed, 6 another program held the document, 7 the file changed on "
                       "disk meanwhile (--force saves anyway).")
            .arg(Password::MaxLength));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    parser.addOption(DocumentLoading::forceOption());
    if (const int status = DocumentLoading::parse(parser, arguments, "password", 1, 1); status >= 0)
        return status;
    const QString path = parser.positionalArguments().at(0);
    Document document;
    DocumentLoading::Update update(path);
    if (const int status = DocumentLoading::loadForUpdate(&update, &document))
        return status;

    QTextStream in(stdin);
    const QString current = ask(in, "Current password:");
    const QString newPassword = ask(in, "New password:");
    const QString confirmation = ask(in, "Confirm:");
    QTextStream err(stderr);
    const Password::Result result = Password::change(&document, current, newPassword, confirmation);
    switch (result) {
    case Password::Result::NotCorrect:
    case Password::Result::Mismatch:
        err << Password::message(result) << "\n";
        return 3;
    case Password::Result::TooLong:
        err << "qbx: a password has at most " << Password::MaxLength << " characters\n";
        return 3;
    default:
        break;
    }
    if (const int status = DocumentLoading::saveUpdate(update, document, parser.isSet(QStringLiteral("force"))))
        return status;
    QTextStream(stdout) << (result == Password::Result::Removed ? "Password removed\n" : "Password set\n");
    return 0;
}

const CliCommand command("password", "Set, change or remove a document's password", run);

} // namespace
