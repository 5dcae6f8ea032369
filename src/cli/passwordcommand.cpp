#include "cli/clicommand.h"
#include "cli/documentloading.h"
#include "platform/messages.h"
#include "storage/password.h"

#include <cstdio>

namespace {

QString readLine(QTextStream &in)
{
    QString line = in.readLine();
    if (line.endsWith(QLatin1Char('\r')))
        line.chop(1);
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
                       "new password and confirmation differ, or too long), 5 the save failed.")
            .arg(Password::MaxLength));
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The .qbx document."));
    if (const int status = DocumentLoading::parse(parser, arguments, "password", 1, 1); status >= 0)
        return status;
    const QString path = parser.positionalArguments().at(0);
    Document document;
    if (const int status = DocumentLoading::load(path, &document))
        return status;

    QTextStream in(stdin);
    const QString current = readLine(in);
    const QString newPassword = readLine(in);
    const QString confirmation = readLine(in);
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
    QString error;
    if (!DocumentFile::save(document, path, &error)) {
        err << Messages::SaveFailed << "\n" << error << "\n";
        return 5;
    }
    QTextStream(stdout) << (result == Password::Result::Removed ? "Password removed\n" : "Password set\n");
    return 0;
}

const CliCommand command("password", "Set, change or remove a document's password", run);

} // namespace
