#include "canvas/WarningSentences.h"

using namespace Qt::StringLiterals;

namespace {

QString numberText(double number)
{
    QString text = QString::number(number, 'f', 1);
    if (text.endsWith(".0"_L1))
        text.chop(2);
    return text.replace(u'.', u',');
}

}    // namespace

QStringList warningSentences(const QList<TextWarning>& warnings)
{
    QStringList sentences;
    for (const TextWarning& warning : warnings) {
        const QString name = row(warning.slot).displayName.toString();
        if (warning.overflows)
            sentences.append(u"%1: no cabe en su caja."_s.arg(name));
        if (warning.lacksGlyphs)
            sentences.append(
                u"%1: alguno de sus signos no está en ninguna fuente instalada."_s.arg(name));
        if (warning.contrast) {
            sentences.append(u"%1: contraste bajo (%2; lo mínimo es %3)."_s.arg(
                name, numberText(*warning.contrast), numberText(warning.leastContrast)));
        }
    }
    return sentences;
}
