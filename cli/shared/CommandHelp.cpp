#include "cli/shared/CommandHelp.h"

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QString usualMeaning(ExitStatus status)
{
    switch (status) {
    case exitDone:
        return u"hecho"_s;
    case exitSomeFailed:
        return u"no se ha podido hacer"_s;
    case exitWrongUse:
        return u"mal uso"_s;
    case exitNotSignedIn:
        return u"nadie ha iniciado sesión"_s;
    case exitTooFewCredits:
        return u"no hay créditos suficientes"_s;
    case exitNoNetwork:
        return u"no hay conexión con el servicio de cuentas"_s;
    case exitUnknown:
        return u"no se sabe si se ha hecho"_s;
    case exitInterrupted:
        return u"interrumpido"_s;
    }
    Q_UNREACHABLE();
}

}    // namespace

QString exitStatusHelp(const QList<ExitMeaning>& statuses)
{
    QString text = u"\nEstado de salida:\n"_s;
    for (const auto& [status, meaning] : statuses) {
        text += u"  %1  %2\n"_s.arg(QString::number(status), -3)
                    .arg(meaning.isEmpty() ? usualMeaning(status) : meaning);
    }
    return text;
}

void printCommandHelp(const QCommandLineParser& parser, const QString& usage,
                      const QList<ExitMeaning>& statuses)
{
    // Replaces the first line, in which QCommandLineParser leaves out the command.
    QString text = parser.helpText();
    text.replace(0, text.indexOf(u'\n'), u"Uso: moltiva "_s + usage);
    text = text.trimmed() + u'\n' + exitStatusHelp(statuses);
    std::fputs(text.toUtf8().constData(), stdout);    // not print(), which is for single lines
}
